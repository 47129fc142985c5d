#include "repairmov/head_reader.h"

#include <algorithm>

namespace clipfix {

ByteView HeadReader::At(std::uint64_t offset) {
    const std::uint64_t fileSize = file_.Size();
    if (offset >= fileSize) {
        return {};
    }
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(CNALU::kProbeLength, fileSize - offset));
    const bool holds = offset >= start_ && offset - start_ <= length_ &&
                       wanted <= length_ - static_cast<std::size_t>(offset - start_);
    if (!holds) {
        const auto got = file_.ReadAt(offset, block_);
        if (!got || got.Value() < wanted) {
            length_ = 0;
            return careful_.View(offset, wanted);
        }
        start_ = offset;
        length_ = got.Value();
    }
    return SubView(block_, static_cast<std::size_t>(offset - start_), wanted);
}

}  // namespace clipfix
