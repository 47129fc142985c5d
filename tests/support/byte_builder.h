#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "base/bytes.h"

namespace clipfix::test {

// Builds a byte-exact input in a few readable lines:
//     ByteBuilder().Big32(16).Text("ftyp").Text("qt  ").Zeros(4).Take()
class ByteBuilder {
  public:
    ByteBuilder& U8(std::uint8_t value) {
        bytes_.push_back(value);
        return *this;
    }
    ByteBuilder& Big16(std::uint16_t value) {
        AppendBig16(bytes_, value);
        return *this;
    }
    ByteBuilder& Big32(std::uint32_t value) {
        AppendBig32(bytes_, value);
        return *this;
    }
    ByteBuilder& Big64(std::uint64_t value) {
        AppendBig64(bytes_, value);
        return *this;
    }
    ByteBuilder& Little16(std::uint16_t value) {
        AppendLittle16(bytes_, value);
        return *this;
    }
    ByteBuilder& Little32(std::uint32_t value) {
        AppendLittle32(bytes_, value);
        return *this;
    }
    ByteBuilder& Text(std::string_view letters) {
        AppendText(bytes_, letters);
        return *this;
    }
    ByteBuilder& Zeros(std::size_t count) {
        AppendZeros(bytes_, count);
        return *this;
    }
    ByteBuilder& Fill(std::size_t count, std::uint8_t value) {
        bytes_.insert(bytes_.end(), count, value);
        return *this;
    }
    ByteBuilder& Bytes(ByteView more) {
        AppendBytes(bytes_, more);
        return *this;
    }
    ByteBuilder& Bytes(std::initializer_list<std::uint8_t> more) {
        bytes_.insert(bytes_.end(), more.begin(), more.end());
        return *this;
    }

    [[nodiscard]] std::size_t Size() const { return bytes_.size(); }
    [[nodiscard]] const ByteVector& View() const { return bytes_; }
    [[nodiscard]] ByteVector Take() { return std::exchange(bytes_, {}); }

  private:
    ByteVector bytes_;
};

}  // namespace clipfix::test
