#pragma once

#include "repairavi/pass.h"

namespace clipfix {

// "LIST" met: makes sure of the output's first twelve bytes, and goes by the list's type. A type
// that is not known is stepped into, so that a `LIST rec ` around data chunks disappears and its
// chunks are found; `LIST odml` is not taken over either.
Next OnList(Pass& pass);

// "JUNK" met, also between data chunks: skips it, and writes nothing.
Next OnJunk(Pass& pass);

}  // namespace clipfix
