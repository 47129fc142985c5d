#pragma once

#include <cstdint>
#include <random>

#include "base/bytes.h"

namespace clipfix::test {

// Numbers that look random and are the same in every run.
class Random {
  public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    // 0 to `limit` - 1.
    std::uint32_t Below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(engine_() % limit);
    }
    std::uint8_t Byte() { return static_cast<std::uint8_t>(engine_()); }
    bool OneIn(std::uint32_t chances) { return Below(chances) == 0; }
    ByteVector Bytes(std::size_t count) {
        ByteVector bytes(count);
        for (auto& byte : bytes) {
            byte = Byte();
        }
        return bytes;
    }

  private:
    std::mt19937_64 engine_;
};

}  // namespace clipfix::test
