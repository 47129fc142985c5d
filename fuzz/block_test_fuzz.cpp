// Holds the test of whole blocks against the parser, position by position. The input: the parameter
// sets as codec_sets.h tells, the largest size in four bytes, and the block.

#include <algorithm>

#include "codec/block_test.h"
#include "codec_sets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace clipfix;
    using fuzz::Demand;
    fuzz::Input input(data, size);
    const fuzz::Reference reference(input);
    const std::uint32_t largest = (std::uint32_t{input.Big16()} << 16U) | input.Big16();
    const ByteView block = input.Rest();
    const BlockTest test(reference.View(), reference.lengthSize, largest);
    const auto found = test.FindAll(block, 0, block.size());
    Demand(std::is_sorted(found.begin(), found.end()));
    for (std::size_t at = 0; at < block.size(); ++at) {
        const bool isFound = std::binary_search(found.begin(), found.end(), at);
        Demand(isFound == test.CouldStandAt(block, at));
        const auto unit = CNALU::Parse(SubView(block, at, CNALU::kProbeLength),
                                       reference.lengthSize, reference.View());
        Demand(!unit || unit->size > largest || isFound);
    }
    return 0;
}
