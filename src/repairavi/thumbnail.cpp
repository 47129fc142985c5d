#include "repairavi/thumbnail.h"

#include <algorithm>

namespace clipfix {

namespace {

constexpr std::array<std::uint8_t, 3> kPictureStart = {0xFF, 0xD8, 0xFF};
constexpr std::array<std::uint8_t, 2> kPictureEnd = {0xFF, 0xD9};

// The first index from `from` on, below `limit`, at which the bytes stand; `limit` when there is
// none, and `from` when `limit` lies below it.
template <std::size_t kCount>
std::uint32_t Search(ByteView bytes, std::uint32_t from, std::uint32_t limit,
                     const std::array<std::uint8_t, kCount>& wanted) {
    for (; from < limit; ++from) {
        const ByteView at = SubView(bytes, from, kCount);
        if (at.size() == kCount && std::equal(at.begin(), at.end(), wanted.begin())) {
            break;
        }
    }
    return from;
}

}  // namespace

void ExtractThumbnail(Pass& pass) {
    const ByteVector bytes = pass.sBuffer.AllBytes();
    const std::uint32_t limit = pass.BufferRest();
    const std::uint32_t start = Search(bytes, pass.nBufferPos, limit, kPictureStart);
    if (start >= limit) {
        return;
    }
    // The second search's limit counts from the picture's start as if that were the buffer's; it
    // may lie below the start, and then three bytes are written. Both, and the one byte more than
    // the end marker has, are meant.
    const std::uint32_t end = Search(bytes, start, limit - start, kPictureEnd);
    ByteVector picture;
    AppendBytes(picture, SubView(bytes, start, end - start + 3));
    picture.resize(end - start + 3);
    if (pass.thumbnail) {
        static_cast<void>(pass.thumbnail->WriteAt(0, picture));
    }
}

}  // namespace clipfix
