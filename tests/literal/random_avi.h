#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace clipfix::test {

// An AVI put together and damaged at random: headers, lists, chunks, old indexes and junk in usual
// and unusual orders, sizes around the engine's buffer, and then overwritten, deleted, inserted and
// cut stretches. The same for the same seed. At most about two megabytes.
[[nodiscard]] ByteVector RandomDamagedAvi(std::uint64_t seed);

}  // namespace clipfix::test
