#include "codec/block_test.h"

#include <algorithm>

#include "codec/h265_sps.h"
#include "codec/nal_head_tests.h"

namespace clipfix {

BlockTest::BlockTest(const ReferenceParameterSets& reference, std::uint32_t nalLengthSize,
                     std::uint32_t maximumSize)
    : isH265_(reference.IsH265()),
      isNothingAccepted_(isH265_ && (reference.sps265 == nullptr || reference.pps265 == nullptr)),
      hasSliceSets_(reference.sps != nullptr && reference.pps != nullptr),
      nalLengthSize_(nalLengthSize),
      maximumSize_(maximumSize),
      layerId_(isH265_ && reference.sps265 != nullptr ? reference.sps265->nuh_layer_id : 0) {}

bool BlockTest::CouldStandAt(ByteView block, std::size_t at) const {
    const std::uint32_t size = UnitSize(ReadBig32(block, at), nalLengthSize_);
    if (size > maximumSize_) {
        return false;
    }
    const std::size_t headAt = at + nalLengthSize_;
    if (isH265_) {
        const auto head = NalHead265::From(ByteAt(block, headAt), ByteAt(block, headAt + 1));
        return IsBelievable(head, size, layerId_);
    }
    const auto head = NalHead264::From(ByteAt(block, headAt));
    return IsBelievable(head, size);
}

std::size_t BlockTest::FindNext(ByteView block, std::size_t from, std::size_t to) const {
    if (isNothingAccepted_) {
        return kNone;
    }
    for (std::size_t at = from; at < std::min(to, block.size()); ++at) {
        if (CouldStandAt(block, at)) {
            return at;
        }
    }
    return kNone;
}

std::vector<std::size_t> BlockTest::FindAll(ByteView block, std::size_t from,
                                            std::size_t to) const {
    std::vector<std::size_t> found;
    for (std::size_t at = FindNext(block, from, to); at != kNone;
         at = FindNext(block, at + 1, to)) {
        found.push_back(at);
    }
    return found;
}

}  // namespace clipfix
