#pragma once

#include "repairavi/pass.h"

namespace clipfix {

// The output's first twelve bytes and its main header: what the damaged file still has of them is
// taken over, what it has not is made up. (AVI RIFF: RIFF header, AVIMAINHEADER.)

// "RIFF" met: the first one opens the output, notes the codec and the frame time at the places
// where a well-formed file has them, and looks for a thumbnail. Every later one is stepped into.
Next OnRiff(Pass& pass);

// "AVI " met.
Next OnAvi(Pass& pass);

// Writes "RIFF" with an empty size, and "AVI ", where the output lacks them.
void MakeSureOfRiffHead(Pass& pass);
void MakeSureOfAviWord(Pass& pass);

// Writes the default main header block of 76 bytes where the output has none yet. It comes ahead
// of everything else that is written, so the output always has its main header at offset 12.
void MakeSureOfMainHeader(Pass& pass);

// `LIST hdrl` met: the first 76 bytes of the first one are repaired and taken over.
Next OnHdrlList(Pass& pass);

}  // namespace clipfix
