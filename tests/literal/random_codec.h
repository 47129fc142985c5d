#pragma once

#include <cstdint>

#include "base/bytes.h"
#include "literal/random_source.h"

namespace clipfix::test {

// Parameter sets, slices, records and descriptors of random streams, written as encoders write
// them, with every branch of their syntax; then damaged. The same for the same state of the source.

struct PictureSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};
[[nodiscard]] PictureSize RandomPictureSize(RandomSource& random);

[[nodiscard]] ByteVector RandomSps264(RandomSource& random);
[[nodiscard]] ByteVector RandomPps264(RandomSource& random);
[[nodiscard]] ByteVector RandomVps265(RandomSource& random);
[[nodiscard]] ByteVector RandomSps265(RandomSource& random, PictureSize size);
[[nodiscard]] ByteVector RandomPps265(RandomSource& random);
// Behind the unit's head.
[[nodiscard]] ByteVector RandomSlice264(RandomSource& random);
[[nodiscard]] ByteVector RandomSlice265(RandomSource& random);

// A length word, a head and a start of a body; often cut to the bytes that a probe shows, padded
// with zeros, or short.
[[nodiscard]] ByteVector RandomUnit(RandomSource& random, bool isH265, std::uint32_t nalLengthSize,
                                    PictureSize size);

[[nodiscard]] ByteVector RandomAvcC(RandomSource& random);
[[nodiscard]] ByteVector RandomHvcC(RandomSource& random, PictureSize size);
[[nodiscard]] ByteVector RandomObjectDescriptor(RandomSource& random);
[[nodiscard]] ByteVector RandomEsds(RandomSource& random);

// At most `most` - 1 bytes of noise or zeros.
void AppendRest(ByteVector& bytes, RandomSource& random, std::uint32_t most);

// Flips, overwrites, cuts and adds a little; now and then nothing.
void DamageSlightly(ByteVector& bytes, RandomSource& random);

}  // namespace clipfix::test
