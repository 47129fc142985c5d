#include "literal/codec_comparison.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>

#include "codec/block_test.h"
#include "literal/literal_codec.h"

namespace clipfix::test {
namespace {

void CompareSets264(RandomSource& random) {
    const ByteVector sps = Varied(RandomSps264(random), random);
    ASSERT_TRUE(Same(CSPS(sps), LiteralSps264(sps))) << Hex(sps);
    const ByteVector pps = Varied(RandomPps264(random), random);
    ASSERT_TRUE(Same(CPPS(pps), LiteralPps264(pps))) << Hex(pps);
}

struct Tallies265 {
    Tally vps;
    Tally sps;
    Tally pps;
};

void CompareSets265(RandomSource& random, Tallies265& tallies) {
    const ByteVector vpsBytes = Varied(RandomVps265(random), random);
    CVPS vps;
    const auto vpsModel = LiteralVps265(vpsBytes);
    ASSERT_EQ(vps.Parse(vpsBytes), vpsModel.accepted) << Hex(vpsBytes);
    ASSERT_TRUE(Same(vps, vpsModel.object)) << Hex(vpsBytes);
    tallies.vps.Note(vpsModel.accepted);

    const PictureSize size = RandomPictureSize(random);
    const ByteVector spsBytes = Varied(RandomSps265(random, size), random);
    const PictureSize expected = ExpectedSize(random, size);
    SPS_265 sps;
    const auto spsModel = LiteralSps265(spsBytes, Signed(expected.width), Signed(expected.height));
    ASSERT_EQ(sps.Parse(spsBytes, Signed(expected.width), Signed(expected.height)),
              spsModel.accepted)
        << Hex(spsBytes) << " expected " << expected.width << " x " << expected.height;
    // A search without a place leaves nothing that counts.
    if (spsModel.object.conformance_window_flag != -1 && spsBytes.size() > 3) {
        ASSERT_TRUE(Same(sps, spsModel.object))
            << Hex(spsBytes) << " expected " << expected.width << " x " << expected.height;
    }
    tallies.sps.Note(spsModel.accepted);

    const ByteVector ppsBytes = Varied(RandomPps265(random), random);
    const SPS_265* given = random.OneIn(6) ? nullptr : &sps;
    PPS_265 pps;
    const auto ppsModel = LiteralPps265(ppsBytes, given);
    ASSERT_EQ(pps.Parse(ppsBytes, given), ppsModel.accepted) << Hex(ppsBytes);
    ASSERT_TRUE(Same(pps, ppsModel.object)) << Hex(ppsBytes);
    tallies.pps.Note(ppsModel.accepted);
}

// Reference sets of a healthy file, of a damaged one, or of values that no file would have.
struct RandomReference {
    CSPS sps;
    CPPS pps;
    CVPS vps;
    SPS_265 sps265;
    PPS_265 pps265;
    PictureSize size;
    ReferenceParameterSets sets;

    RandomReference(RandomSource& random, bool isH265) : size(RandomPictureSize(random)) {
        isH265 ? Make265(random) : Make264(random);
    }
    RandomReference(const RandomReference&) = delete;
    RandomReference& operator=(const RandomReference&) = delete;

  private:
    static std::int32_t Value(RandomSource& random) {
        if (random.OneIn(20)) {
            return Signed(static_cast<std::uint32_t>(random.Next())) >> random.Below(31);
        }
        return Signed(random.Below(random.OneIn(3) ? 20 : 3)) - (random.OneIn(5) ? 1 : 0);
    }
    template <typename Object, std::size_t kCount>
    static void Fill(Object& object, const NamedField<Object> (&fields)[kCount],
                     RandomSource& random) {
        for (const auto& [name, field] : fields) {
            object.*field = Value(random);
        }
    }

    void Make264(RandomSource& random) {
        if (random.OneIn(3)) {
            Fill(sps, kSps264Fields, random);
            Fill(pps, kPps264Fields, random);
        } else {
            sps = CSPS(Varied(RandomSps264(random), random));
            pps = CPPS(Varied(RandomPps264(random), random));
        }
        sets.sps = random.OneIn(30) ? nullptr : &sps;
        sets.pps = random.OneIn(30) ? nullptr : &pps;
    }

    void Make265(RandomSource& random) {
        if (random.OneIn(2)) {
            Fill(sps265, kSps265Fields, random);
            Fill(pps265, kPps265Fields, random);
            sps265.nuh_layer_id = random.OneIn(10) ? Signed(random.Below(64)) : 0;
            sps265.pic_width_in_luma_samples = Signed(size.width);
            sps265.pic_height_in_luma_samples = Signed(size.height);
            sps265.picSizeInMinCbs = random.OneIn(8) ? Value(random) : Signed(random.Below(200000));
            sps265.picHeightRemainder = Signed(random.Below(64));
            pps265.num_extra_slice_header_bits = Signed(random.Below(8));
            pps265.dependent_slice_segments_enabled_flag = random.OneIn(4) ? 0 : 1;
        } else {
            const ByteVector spsBytes = RandomSps265(random, size);
            const ByteVector ppsBytes = RandomPps265(random);
            const bool isSps = sps265.Parse(spsBytes, Signed(size.width), Signed(size.height));
            const bool isPps = pps265.Parse(ppsBytes, &sps265);
            if (!isSps || !isPps) {
                sps265.pic_width_in_luma_samples = Signed(size.width);
                sps265.pic_height_in_luma_samples = Signed(size.height);
            }
        }
        sets.vps = &vps;
        sets.sps265 = random.OneIn(40) ? nullptr : &sps265;
        sets.pps265 = random.OneIn(40) ? nullptr : &pps265;
    }
};

std::uint32_t RandomLengthSize(RandomSource& random) {
    return random.OneIn(3) ? random.Below(5) : 4;
}

void CompareSlices(RandomSource& random, Tally& slices264, Tally& slices265) {
    CNALU nalu;
    const RandomReference of264(random, false);
    nalu.nal_unit_type = random.OneIn(10) ? Signed(random.Below(32)) : random.OneIn(2) ? 1 : 5;
    nalu.nal_ref_idc = Signed(random.Below(4));
    const ByteVector bytes264 = Varied(RandomSlice264(random), random);
    CSliceHeader real264;
    const auto model264 = LiteralSlice264(bytes264, nalu, of264.sps, of264.pps);
    ASSERT_EQ(real264.Parse(bytes264, nalu, of264.sps, of264.pps), model264.accepted)
        << Hex(bytes264);
    ASSERT_TRUE(Same(real264, model264.object)) << Hex(bytes264);
    slices264.Note(model264.accepted);

    const RandomReference of265(random, true);
    nalu.nal_unit_type = Signed(random.OneIn(3) ? 16 + random.Below(8) : random.Below(22));
    const ByteVector bytes265 = Varied(RandomSlice265(random), random);
    SliceHeader_265 real265;
    const auto model265 = LiteralSlice265(bytes265, nalu, of265.sps265, of265.pps265);
    ASSERT_EQ(real265.Parse(bytes265, nalu, of265.sps265, of265.pps265), model265.accepted)
        << Hex(bytes265);
    ASSERT_TRUE(Same(real265, model265.object)) << Hex(bytes265);
    slices265.Note(model265.accepted);
}

void CompareUnits(RandomSource& random, Tally& units264, Tally& units265) {
    const bool isH265 = random.OneIn(2);
    const RandomReference reference(random, isH265);
    const std::uint32_t lengthSize = RandomLengthSize(random);
    for (int i = 0; i < 6; ++i) {
        const ByteVector unit = random.OneIn(12)
                                    ? RandomNoise(random)
                                    : RandomUnit(random, isH265, lengthSize, reference.size);
        const auto real = CNALU::Parse(unit, lengthSize, reference.sets);
        const auto model = LiteralNalu(unit, lengthSize, reference.sets);
        ASSERT_EQ(real.has_value(), model.has_value()) << Hex(unit) << " length " << lengthSize;
        if (real) {
            ASSERT_TRUE(Same(*real, *model)) << Hex(unit) << " length " << lengthSize;
        }
        (isH265 ? units265 : units264).Note(model.has_value());
    }
}

TEST(Codec, ReadsParameterSetsOfH264AsTheLiteralModelDoes) {
    ForEachSeed(20000, [](RandomSource& random) { CompareSets264(random); });
}

TEST(Codec, ReadsParameterSetsOfH265AsTheLiteralModelDoes) {
    Tallies265 tallies;
    ForEachSeed(12000, [&](RandomSource& random) { CompareSets265(random, tallies); });
    Record("vps", tallies.vps);
    Record("sps", tallies.sps);
    Record("pps", tallies.pps);
}

TEST(Codec, ReadsSlicesAsTheLiteralModelDoes) {
    Tally slices264;
    Tally slices265;
    ForEachSeed(20000, [&](RandomSource& random) { CompareSlices(random, slices264, slices265); });
    Record("h264", slices264);
    Record("h265", slices265);
}

TEST(Codec, JudgesUnitsAsTheLiteralModelDoes) {
    Tally units264;
    Tally units265;
    ForEachSeed(10000, [&](RandomSource& random) { CompareUnits(random, units264, units265); });
    Record("h264", units264);
    Record("h265", units265);
}

// Every head, with the sizes around each limit.
void CompareHeads(const ReferenceParameterSets& sets, std::uint32_t lengthSize, ByteView body) {
    static constexpr std::uint32_t kSizes[] = {0, 1, 3, 6, 7, 8, 800, 801, 1000, 1001, 0xFFFFFFFF};
    for (const std::uint32_t size : kSizes) {
        ByteVector unit;
        AppendBig32(unit, size - lengthSize);
        unit.resize(lengthSize + 2);
        AppendBytes(unit, body);
        for (std::uint32_t head = 0; head < 256; ++head) {
            for (const std::uint8_t second :
                 {std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{0x29}}) {
                unit[lengthSize] = static_cast<std::uint8_t>(head);
                unit[lengthSize + 1] = second;
                const auto real = CNALU::Parse(unit, lengthSize, sets);
                const auto model = LiteralNalu(unit, lengthSize, sets);
                ASSERT_EQ(real.has_value(), model.has_value()) << Hex(unit);
                if (real) {
                    ASSERT_TRUE(Same(*real, *model)) << Hex(unit);
                }
            }
        }
    }
}

TEST(Codec, JudgesEveryHeadAsTheLiteralModelDoes) {
    RandomSource random(1);
    for (std::uint32_t lengthSize = 0; lengthSize <= 4; ++lengthSize) {
        for (int i = 0; i < 4; ++i) {
            const RandomReference of264(random, false);
            CompareHeads(of264.sets, lengthSize, RandomSlice264(random));
            const RandomReference of265(random, true);
            CompareHeads(of265.sets, lengthSize, RandomSlice265(random));
        }
    }
    for (std::int32_t type = -1; type <= 64; ++type) {
        EXPECT_EQ(CNALU::NameOfType265(type), LiteralName265(type)) << type;
    }
}

// The test of whole blocks.

// Zeros and ones that pass for lengths, bytes of which many pass for heads, and noise.
ByteVector RandomFiller(RandomSource& random) {
    static constexpr std::uint8_t kFrequent[] = {0x00, 0x00, 0x00, 0x01, 0xFF, 0x21,
                                                 0x41, 0x65, 0x06, 0x68, 0x02, 0x26};
    switch (random.Below(8)) {
        case 0:
            return ByteVector(random.Below(600),
                              random.OneIn(4) ? std::uint8_t{0xFF} : std::uint8_t{0});
        case 1:
        case 2: {
            ByteVector bytes = random.Bytes(random.Below(300));
            for (auto& byte : bytes) {
                byte = kFrequent[byte % std::size(kFrequent)];
            }
            return bytes;
        }
        case 3:
            return random.Bytes(random.Below(300));
        default:
            return ByteVector(random.Below(20), 0);
    }
}

ByteVector RandomBlock(RandomSource& random, bool isH265, std::uint32_t lengthSize,
                       PictureSize size) {
    ByteVector block;
    const std::uint32_t pieces = 1 + random.Below(8);
    for (std::uint32_t i = 0; i < pieces; ++i) {
        AppendBytes(block, RandomUnit(random, isH265, lengthSize, size));
        AppendBytes(block, RandomFiller(random));
    }
    return block;
}

std::uint32_t RandomMaximum(RandomSource& random) {
    static constexpr std::uint32_t kMaxima[] = {
        std::numeric_limits<std::uint32_t>::max(), 2199999, 65535, 65536, 800, 3, 0};
    return random.OneIn(5) ? static_cast<std::uint32_t>(random.Next()) >> random.Below(32)
                           : kMaxima[random.Below(7)];
}

struct BlockTally {
    Tally positions;   // accepted by the model, within the largest size
    Tally candidates;  // given by the block test
};

void CompareBlock(RandomSource& random, BlockTally& tally) {
    const bool isH265 = random.OneIn(2);
    const RandomReference reference(random, isH265);
    const std::uint32_t lengthSize = RandomLengthSize(random);
    const std::uint32_t maximum = RandomMaximum(random);
    const ByteVector block = RandomBlock(random, isH265, lengthSize, reference.size);
    const BlockTest test(reference.sets, lengthSize, maximum);
    const auto size = static_cast<std::uint32_t>(block.size());
    const std::uint32_t from = random.OneIn(2) ? 0 : random.Below(size + 1);
    const std::uint32_t to = random.OneIn(2) ? size : from + random.Below(size - from + 1);
    const auto found = test.FindAll(block, from, to);
    ASSERT_TRUE(std::is_sorted(found.begin(), found.end()));
    std::size_t next = from;
    for (std::size_t at = from; at < to; ++at) {
        const bool isFound = std::binary_search(found.begin(), found.end(), at);
        if (at >= next) {
            next = test.FindNext(block, at, to);
            ASSERT_EQ(isFound, next == at);
            next = isFound ? at + 1 : next;
        }
        ASSERT_EQ(isFound, test.CouldStandAt(block, at)) << at;
        const auto unit =
            LiteralNalu(SubView(block, at, CNALU::kProbeLength), lengthSize, reference.sets);
        const bool isUnit = unit.has_value() && unit->size <= maximum;
        ASSERT_TRUE(isFound || !isUnit)
            << "passes over " << at << " in " << Hex(block) << " length " << lengthSize;
        tally.positions.Note(isUnit);
        tally.candidates.Note(isFound);
    }
    for (const std::size_t at : found) {
        ASSERT_TRUE(at >= from && at < to);
    }
}

TEST(Codec, TheBlockTestPassesOverNothingThatTheLiteralModelAccepts) {
    BlockTally tally;
    ForEachSeed(2000, [&](RandomSource& random) { CompareBlock(random, tally); });
    Record("units", tally.positions);
    Record("candidates", tally.candidates);
}

}  // namespace
}  // namespace clipfix::test
