#pragma once

#include "repairavi/pass.h"

namespace clipfix {

// `LIST movi` met: its head is taken over. A second one, as in an `AVIX` part of a large file, is
// not opened; its chunks are found by their tags and join the one `movi` of the output.
Next OnMoviList(Pass& pass);

// The word "movi" met. What the output still lacks ahead of the data is made up, and the chunk
// that should follow the word is tried: the first-chunk route. Where that chunk is refused, the
// word alone is written and the scan goes on behind it, so it may still be taken by its tag.
Next OnMoviWord(Pass& pass);

}  // namespace clipfix
