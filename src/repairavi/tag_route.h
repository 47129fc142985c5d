#pragma once

#include "repairavi/pass.h"

namespace clipfix {

// "dc", "db", "xx" or "wb" met: the third and fourth letter of what may be a data chunk's id. It
// is taken when two digits stand ahead of it, its size keeps it inside the file, and something
// that looks like a chunk's head stands behind it; else the scan steps on by one byte.
Next OnTag(Pass& pass);

// Whether OnTag does nothing but step on by one byte wherever no two digits stand ahead of a tag.
[[nodiscard]] bool MayPassTagWithoutDigits(const Pass& pass);

}  // namespace clipfix
