#pragma once

#include <cstdint>

namespace clipfix::platform {

// Bytes of memory that the machine has; 0 where that is not known.
[[nodiscard]] std::uint64_t PhysicalMemory();

}  // namespace clipfix::platform
