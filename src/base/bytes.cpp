#include "base/bytes.h"

namespace clipfix {

namespace {

void AppendBig(ByteVector& bytes, std::uint64_t value, std::size_t width) {
    const std::size_t at = bytes.size();
    bytes.resize(at + width);
    StoreBig(bytes, at, value, width);
}

void AppendLittle(ByteVector& bytes, std::uint64_t value, std::size_t width) {
    const std::size_t at = bytes.size();
    bytes.resize(at + width);
    StoreLittle(bytes, at, value, width);
}

}  // namespace

void AppendBig16(ByteVector& bytes, std::uint16_t value) {
    AppendBig(bytes, value, 2);
}
void AppendBig32(ByteVector& bytes, std::uint32_t value) {
    AppendBig(bytes, value, 4);
}
void AppendBig64(ByteVector& bytes, std::uint64_t value) {
    AppendBig(bytes, value, 8);
}
void AppendLittle16(ByteVector& bytes, std::uint16_t value) {
    AppendLittle(bytes, value, 2);
}
void AppendLittle32(ByteVector& bytes, std::uint32_t value) {
    AppendLittle(bytes, value, 4);
}
void AppendBytes(ByteVector& bytes, ByteView more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}
void AppendText(ByteVector& bytes, std::string_view letters) {
    bytes.insert(bytes.end(), letters.begin(), letters.end());
}
void AppendZeros(ByteVector& bytes, std::size_t count) {
    bytes.resize(bytes.size() + count);
}

}  // namespace clipfix
