#pragma once

#include <cstdint>
#include <cstdlib>

#include "base/bytes.h"

namespace clipfix::fuzz {

// What must hold for every input.
inline void Demand(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Takes an input apart, front to back; behind its end there are zeros and empty blocks.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

    std::uint8_t Byte() { return TakeView(1).empty() ? std::uint8_t{0} : taken_[0]; }
    std::uint16_t Big16() { return ReadBig16(TakeView(2), 0); }
    // A length byte and as many bytes, or those that are left.
    ByteView Block() { return TakeView(Byte()); }
    ByteView Rest() { return TakeView(bytes_.size()); }

  private:
    ByteView TakeView(std::size_t length) {
        taken_ = SubView(bytes_, 0, length);
        bytes_ = SubView(bytes_, taken_.size());
        return taken_;
    }

    ByteView bytes_;
    ByteView taken_;
};

}  // namespace clipfix::fuzz
