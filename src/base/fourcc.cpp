#include "base/fourcc.h"

namespace clipfix {

std::string PrintableFourCC(std::uint32_t code) {
    std::string text;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        const auto byte = static_cast<std::uint8_t>(code >> shift);
        text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
    }
    return text;
}

}  // namespace clipfix
