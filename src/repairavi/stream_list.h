#pragma once

#include "repairavi/pass.h"

namespace clipfix {

// `LIST strl` met, anywhere in the file: its stream header and format are repaired, its end is
// found by walking over its chunks, and what lies before that end is taken over. Gives up where
// the list cannot serve. (AVI RIFF: AVISTREAMHEADER, BITMAPINFO, WAVEFORMATEX.)
Next OnStrlList(Pass& pass);

}  // namespace clipfix
