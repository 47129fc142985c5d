#pragma once

#include <cstdint>
#include <cstdlib>

#include "base/bytes.h"

namespace clipfix::test {

// Numbers that look random and are the same in every run for the same seed.
class RandomSource {
  public:
    explicit RandomSource(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15ULL + 1) {}

    std::uint64_t Next() {
        state_ ^= state_ << 13U;
        state_ ^= state_ >> 7U;
        state_ ^= state_ << 17U;
        return state_ * 0x2545F4914F6CDD1DULL;
    }
    // 0 to bound - 1.
    std::uint32_t Below(std::uint32_t bound) {
        return bound == 0 ? 0 : static_cast<std::uint32_t>((Next() >> 33U) % bound);
    }
    bool OneIn(std::uint32_t n) { return Below(n) == 0; }

    ByteVector Bytes(std::size_t count) {
        ByteVector bytes(count);
        for (auto& byte : bytes) {
            byte = static_cast<std::uint8_t>(Next() >> 40U);
        }
        return bytes;
    }

  private:
    std::uint64_t state_;
};

// For runs that are longer than usual, or repeat one seed.
inline std::uint64_t NumberFromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* set = std::getenv(name);
    return set != nullptr ? std::strtoull(set, nullptr, 10) : otherwise;
}

}  // namespace clipfix::test
