#include "repairmov/nal_run.h"

#include <gtest/gtest.h>

#include "codec/avc_configuration_record.h"
#include "codec/hevc_configuration_record.h"
#include "support/nal_stream.h"

namespace clipfix::test {
namespace {

// The facts of units, without bytes.

UnitFacts Facts264(std::int32_t type, std::uint32_t size = 10) {
    UnitFacts facts;
    facts.nal_unit_type = type;
    facts.size = size;
    return facts;
}
UnitFacts Slice(std::int32_t firstMb, std::int32_t frameNum = 0, std::int32_t sliceType = 5,
                std::int32_t type = 1, std::uint32_t size = 10) {
    UnitFacts facts = Facts264(type, size);
    facts.first_mb_in_slice = firstMb;
    facts.frame_num = frameNum;
    facts.slice_type = sliceType;
    return facts;
}
UnitFacts Facts265(std::int32_t type, std::int32_t isFirst = -1, std::uint32_t size = 10) {
    UnitFacts facts;
    facts.nal_unit_type = type;
    facts.size = size;
    facts.first_mb_in_slice = isFirst;
    facts.name = CNALU::NameOfType265(type).value_or("refused");
    return facts;
}
constexpr std::int32_t kVps = 32;
constexpr std::int32_t kSps = 33;
constexpr std::int32_t kPps = 34;
constexpr std::int32_t kAud = 35;
constexpr std::int32_t kSei = 39;

NalRun RunOf(bool isH265, std::initializer_list<UnitFacts> units) {
    NalRun run(isH265);
    std::uint64_t offset = 1000;
    for (const UnitFacts& unit : units) {
        run.Add(offset, unit);
        offset += unit.size;
    }
    return run;
}

// SignedSizes of the records; those that are no samples of the output as negative numbers.
std::vector<std::int64_t> SizesOf(const NalRun& run) {
    std::vector<std::int64_t> sizes;
    for (const CSample& record : run.Records().samples) {
        const auto size = static_cast<std::int64_t>(record.size);
        sizes.push_back(record.isOutputSample ? size : -size);
    }
    return sizes;
}
using SignedSizes = std::vector<std::int64_t>;

TEST(NalRun264, SlicesOfOnePictureInRisingOrderAreOneRecord) {
    const NalRun run = RunOf(false, {Slice(0), Slice(396), Slice(0, 1)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{20, 10}));
    EXPECT_EQ(run.SampleCount(), 2U);
    EXPECT_EQ(run.UnitCount(), 3U);
    EXPECT_EQ(run.Records().recordCount, 2U);
    EXPECT_EQ(run.End(), 1030U);
}

TEST(NalRun264, PicturesOfOneFrameNumberAreTwoRecordsBecauseEachStartsAtTheTop) {
    const NalRun run = RunOf(false, {Slice(0, 4), Slice(0, 4), Slice(0, 4)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{10, 10, 10}));
    EXPECT_EQ(run.SampleCount(), 3U);
}

TEST(NalRun264, EachOfTheFourValuesKeepsSlicesApart) {
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(0), Slice(9)})), (SignedSizes{20}));
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(0), Slice(9, 1)})), (SignedSizes{10, 10}));
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(0), Slice(9, 0, 7)})), (SignedSizes{10, 10}));
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(0), Slice(9, 0, 5, 5)})), (SignedSizes{10, 10}));
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(9), Slice(9)})), (SignedSizes{10, 10}));
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(9), Slice(3)})), (SignedSizes{10, 10}));
}

// An I slice and a P slice in one frame make one counted record for each change of the type.
TEST(NalRun264, APictureOfMixedSliceTypesIsSeveralSamples) {
    const NalRun run = RunOf(false, {Slice(0, 0, 7), Slice(5, 0, 5), Slice(9, 0, 7)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{10, 10, 10}));
    EXPECT_EQ(run.SampleCount(), 3U);
}

TEST(NalRun264, ValuesOfFirstMbAreComparedAsSignedNumbers) {
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(-5), Slice(3)})), (SignedSizes{20}));
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(3), Slice(-5)})), (SignedSizes{10, 10}));
}

TEST(NalRun264, UnitsWithoutASliceNeverMerge) {
    EXPECT_EQ(RunOf(false, {Facts264(7), Facts264(7), Facts264(7)}).Records().recordCount, 3U);
    EXPECT_EQ(RunOf(false, {Facts264(6), Facts264(6), Facts264(6)}).Records().recordCount, 3U);
}

// A set of sequence parameters is a counted sample, by design of the rule.
TEST(NalRun264, CountsSlicesAndSequenceSetsOnly) {
    const NalRun run = RunOf(false, {Facts264(9), Facts264(7), Facts264(8), Facts264(6), Slice(0)});
    EXPECT_EQ(run.SampleCount(), 2U);
    EXPECT_EQ(run.Records().recordCount, 5U);
    // The delimiter belongs to the set, the two in the middle to the slice.
    EXPECT_EQ(SizesOf(run), (SignedSizes{20, 30}));
    EXPECT_EQ(run.Records().samples[0].offset, 1000U);
    EXPECT_EQ(run.Records().samples[1].offset, 1020U);
}

TEST(NalRun264, ThreeDelimitersAreARunWithoutASample) {
    const NalRun run = RunOf(false, {Facts264(9, 6), Facts264(9, 6), Facts264(9, 6)});
    EXPECT_EQ(run.UnitCount(), 3U);
    EXPECT_EQ(run.SampleCount(), 0U);
    EXPECT_EQ(SizesOf(run), (SignedSizes{-18}));
}

TEST(NalRun264, WhatIsNoSampleAtTheEndStaysByItself) {
    EXPECT_EQ(SizesOf(RunOf(false, {Slice(0), Facts264(6), Facts264(9)})), (SignedSizes{10, -20}));
}

TEST(NalRun264, SlicesMergeIntoARecordThatHoldsAnSei) {
    const NalRun run = RunOf(false, {Facts264(6), Slice(0), Slice(4)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{30}));
    EXPECT_EQ(run.SampleCount(), 1U);
}

// Records are copied by the low 32 bits of their sizes. Folding must not bring a size there, and
// one that comes there by itself is not mixed with what stands ahead of it.
TEST(NalRun264, ARecordOfFourGigabytesIsNotFolded) {
    constexpr std::uint32_t kUnit = 2000000;
    NalRun run(false);
    std::uint64_t offset = 0;
    const auto add = [&](UnitFacts unit) {
        run.Add(offset, unit);
        offset += unit.size;
    };
    add(Facts264(6, 500));
    for (std::int32_t i = 0; i < 3000; ++i) {
        add(Slice(i, 0, 5, 1, kUnit));
    }
    add(Facts264(6, 700));
    EXPECT_EQ(SizesOf(run), (SignedSizes{-500, 6000000000, -700}));
    EXPECT_EQ(run.Records().samples[1].offset, 500U);
    EXPECT_EQ(run.Records().samples[1].CopiedBytes(), 1705032704U);
    EXPECT_EQ(run.End(), offset);
}

TEST(NalRun265, SetsThenSeiThenSliceMakeTwoCountedSamples) {
    const NalRun run = RunOf(
        true, {Facts265(kVps), Facts265(kSps), Facts265(kPps), Facts265(kSei), Facts265(19, 1)});
    EXPECT_EQ(run.SampleCount(), 2U);
    EXPECT_EQ(run.Records().recordCount, 4U);
    EXPECT_EQ(SizesOf(run), (SignedSizes{20, 30}));
}

// The slice goes into the record of the PPS, which is no sample: neither is counted. Kept so.
TEST(NalRun265, ASliceBehindAPpsIsNoSample) {
    const NalRun run =
        RunOf(true, {Facts265(kVps), Facts265(kSps), Facts265(kPps), Facts265(19, 1)});
    EXPECT_EQ(run.SampleCount(), 1U);
    EXPECT_EQ(run.Records().recordCount, 2U);
    EXPECT_EQ(SizesOf(run), (SignedSizes{20, -20}));
}

TEST(NalRun265, ASliceBehindVpsOrSpsJoinsIt) {
    EXPECT_EQ(SizesOf(RunOf(true, {Facts265(kSps), Facts265(19, 1)})), (SignedSizes{20}));
    EXPECT_EQ(SizesOf(RunOf(true, {Facts265(kVps), Facts265(19, 1)})), (SignedSizes{20}));
}

TEST(NalRun265, VpsAndSpsFoldInAnyOrder) {
    for (const auto& [a, b] : {std::pair{kVps, kSps}, std::pair{kSps, kVps}, std::pair{kVps, kVps},
                               std::pair{kSps, kSps}}) {
        const NalRun run = RunOf(true, {Facts265(a), Facts265(b)});
        EXPECT_EQ(SizesOf(run), (SignedSizes{20}));
        EXPECT_EQ(run.SampleCount(), 1U);
    }
}

TEST(NalRun265, APpsFoldsIntoAPpsAndNotIntoAnSps) {
    EXPECT_EQ(RunOf(true, {Facts265(kPps), Facts265(kPps)}).Records().recordCount, 1U);
    EXPECT_EQ(RunOf(true, {Facts265(kSps), Facts265(kPps)}).Records().recordCount, 2U);
    EXPECT_EQ(RunOf(true, {Facts265(kVps), Facts265(kPps)}).Records().recordCount, 2U);
    EXPECT_EQ(RunOf(true, {Facts265(kPps), Facts265(kSps)}).Records().recordCount, 2U);
    EXPECT_EQ(RunOf(true, {Facts265(kPps), Facts265(kVps)}).Records().recordCount, 2U);
}

TEST(NalRun265, SlicesOfAPictureFoldOnceAFirstSliceWasSeen) {
    const NalRun run = RunOf(
        true, {Facts265(1, 1), Facts265(1, 0), Facts265(1, 0), Facts265(1, 1), Facts265(1, 0)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{30, 20}));
    EXPECT_EQ(run.SampleCount(), 2U);
}

TEST(NalRun265, SlicesThatAreNoFirstOnesAreEachASampleUntilAFirstOneCame) {
    const NalRun run = RunOf(true, {Facts265(1, 0), Facts265(1, 0), Facts265(1, 0)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{10, 10, 10}));
    EXPECT_EQ(run.SampleCount(), 3U);
}

TEST(NalRun265, TheMarkOfAFirstSliceStaysForTheRun) {
    // Behind the SEI a slice of another picture that is no first one: another unit lies between.
    const NalRun run =
        RunOf(true, {Facts265(1, 1), Facts265(kAud), Facts265(1, 0), Facts265(1, 0)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{10, 30}));
}

// The first slice went into the record of a parameter set, so it set no mark.
TEST(NalRun265, AFirstSliceThatIsMergedSetsNoMark) {
    const NalRun run = RunOf(true, {Facts265(kSps), Facts265(1, 1), Facts265(1, 0)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{20, 10}));
    EXPECT_EQ(run.SampleCount(), 2U);
}

TEST(NalRun265, SlicesOfAnotherTypeDoNotFold) {
    EXPECT_EQ(SizesOf(RunOf(true, {Facts265(1, 1), Facts265(0, 0)})), (SignedSizes{10, 10}));
}

TEST(NalRun265, AnUnspecifiedUnitFoldsIntoASliceAndIsElsewhereNoSample) {
    EXPECT_EQ(SizesOf(RunOf(true, {Facts265(1, 1), Facts265(48)})), (SignedSizes{20}));
    const NalRun run = RunOf(true, {Facts265(kSei), Facts265(50), Facts265(1, 1)});
    EXPECT_EQ(SizesOf(run), (SignedSizes{30}));
    EXPECT_EQ(run.Records().recordCount, 3U);
    EXPECT_EQ(run.SampleCount(), 1U);
}

// Units of type 36 and 63 have no name: not counted here, and samples of the output all the same.
TEST(NalRun265, UnitsWithoutANameAreOutputSamplesThatAreNotCounted) {
    const NalRun run = RunOf(true, {Facts265(36), Facts265(63), Facts265(1, 1)});
    EXPECT_EQ(run.SampleCount(), 1U);
    EXPECT_EQ(SizesOf(run), (SignedSizes{10, 10, 10}));
}

// Walks over bytes.

struct Walked {
    CAVCDecoderConfigurationRecord avc{AvcC(0xFF, Sps264(), Pps264())};
    HVCDecoderConfigurationRecord hevc;
    ByteVector bytes;
    int looks = 0;

    explicit Walked(ByteVector stream) : bytes(std::move(stream)) { hevc.Parse(HvcC265(), 64, 48); }
    NalRun At(std::uint64_t offset, bool isH265 = false, std::uint32_t lengthSize = 4,
              int stopAtLook = -1) {
        ReferenceParameterSets sets;
        if (isH265) {
            sets.vps = hevc.vps.get();
            sets.sps265 = hevc.sps.get();
            sets.pps265 = hevc.pps.get();
        } else {
            sets.sps = avc.sps.get();
            sets.pps = avc.pps.get();
        }
        const NalWalker walker(sets, lengthSize, [this](std::uint64_t at) {
            return SubView(bytes, at, CNALU::kProbeLength);
        });
        looks = 0;
        return walker.WalkNalRun(offset, [this, stopAtLook] { return ++looks != stopAtLook; });
    }
};

TEST(NalWalker, FollowsAChainToTheFirstRefusal) {
    Walked walked(ByteBuilder()
                      .Fill(7, 0xFF)
                      .Bytes(Aud264())
                      .Bytes(SpsUnit264())
                      .Bytes(PpsUnit264())
                      .Bytes(Sei264())
                      .Bytes(Idr264(300))
                      .Bytes(P264(1, 77))
                      .Fill(60, 0xFF)
                      .Take());
    const NalRun run = walked.At(7);
    EXPECT_EQ(run.UnitCount(), 6U);
    EXPECT_EQ(run.SampleCount(), 3U);
    EXPECT_EQ(SizesOf(run), (SignedSizes{26, 340, 77}));
    EXPECT_EQ(run.Records().samples[0].offset, 7U);
    EXPECT_EQ(run.End(), walked.bytes.size() - 60);
    EXPECT_EQ(walked.At(8).UnitCount(), 0U);
}

TEST(NalWalker, FollowsAChainInH265) {
    Walked walked(ByteBuilder()
                      .Bytes(Aud265())
                      .Bytes(VpsUnit265())
                      .Bytes(SpsUnit265())
                      .Bytes(PpsUnit265())
                      .Bytes(Sei265())
                      .Bytes(Slice265(true, 19, 200))
                      .Bytes(Slice265(false, 19, 201))
                      .Bytes(Slice265(true, 1, 90))
                      .Bytes(Unit265(48, 9))
                      .Fill(60, 0xFF)
                      .Take());
    const NalRun run = walked.At(0, true);
    EXPECT_EQ(run.UnitCount(), 9U);
    const auto sps = static_cast<std::int64_t>(SpsUnit265().size());
    EXPECT_EQ(SizesOf(run), (SignedSizes{37 + sps, 30 + 30 + 401, 99}));
    EXPECT_EQ(run.SampleCount(), 3U);
}

TEST(NalWalker, AnSpsOfAnotherIdEndsARunOfH265) {
    Walked walked(
        ByteBuilder().Bytes(Slice265(true)).Bytes(SpsUnit265(1)).Bytes(Slice265(true)).Take());
    EXPECT_EQ(walked.At(0, true).UnitCount(), 1U);
}

TEST(NalWalker, AUnitOfTwoMillionTwoHundredThousandBytesIsNotPartOfARun) {
    const ByteVector start = ByteBuilder().Bytes(P264(1)).Bytes(P264(2)).Take();
    for (const auto& [size, units] : {std::pair{2199999U, 3U}, std::pair{2200000U, 2U}}) {
        Walked walked(ByteBuilder().Bytes(start).Bytes(P264(3, size)).Take());
        EXPECT_EQ(walked.At(0).UnitCount(), units);
    }
    Walked first(P264(3, 2200000));
    EXPECT_EQ(first.At(0).UnitCount(), 0U);
}

TEST(NalWalker, AUnitThatEndsBehindTheFileClosesTheRun) {
    Walked walked(ByteBuilder().Bytes(P264(1)).Bytes(P264(2)).Bytes(P264(3, 5000)).Take());
    walked.bytes.resize(260);
    const NalRun run = walked.At(0);
    EXPECT_EQ(run.UnitCount(), 3U);
    EXPECT_EQ(run.End(), 5200U);
}

TEST(NalWalker, DataPartitionsAndHighTypesEndARun) {
    for (const std::uint8_t head : ByteVector{0x22, 0x23, 0x24, 0x2A, 0x2B, 0x2C, 0x34, 0x3F}) {
        Walked walked(
            ByteBuilder().Bytes(P264(1)).Bytes(UnitOf(ByteVector{head, 0x9A}, 50)).Take());
        EXPECT_EQ(walked.At(0).UnitCount(), 1U) << int{head};
    }
    for (const unsigned type : {10U, 15U, 22U, 31U, 37U, 38U, 41U, 47U}) {
        Walked walked(ByteBuilder().Bytes(Slice265(true)).Bytes(Unit265(type)).Take());
        EXPECT_EQ(walked.At(0, true).UnitCount(), 1U) << type;
    }
}

// The length is read from four bytes whatever the record says; only the place of the head and what
// is added change. So these units are two bytes shorter than their words and sizes tell.
TEST(NalWalker, ALengthSizeOfTwoStillReadsFourBytes) {
    ByteBuilder stream;
    for (int i = 0; i < 3; ++i) {
        // 0x00000109 counts 265; the head is the third byte, 0x01; then 0x09 begins the slice:
        // first_mb 8 in 0001001, and so on.
        stream.Bytes({0x00, 0x00, 0x01, 0x09, 0xFF}).Fill(262, kFiller);
    }
    Walked walked(stream.Take());
    const NalRun run = walked.At(0, false, 2);
    EXPECT_EQ(run.UnitCount(), 3U);
    EXPECT_EQ(run.End(), 3U * 267U);
}

// The head is then the first byte of the length word, which is 0 for every unit of believable size.
TEST(NalWalker, ALengthSizeOfZeroFindsNothingInPlainStreams) {
    Walked walked(ByteBuilder().Bytes(P264(1)).Bytes(P264(2)).Bytes(P264(3)).Take());
    EXPECT_EQ(walked.At(0, false, 4).UnitCount(), 3U);
    EXPECT_EQ(walked.At(0, false, 0).UnitCount(), 0U);
}

// 0xFFFFFFFF and 4 give 3, and the chain goes on three bytes further.
TEST(NalWalker, ALengthWordThatWrapsMovesThreeBytesOn) {
    // FF FF FF [FF FF FF] 00 ...: the next word starts three bytes later.
    Walked walked(ByteVector{0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0xFF, 0xFF, 0xFF, 0xFF});
    const NalRun run = walked.At(0);
    ASSERT_GE(run.UnitCount(), 1U);
    EXPECT_EQ(run.Records().samples[0].size, 3U);
}

TEST(NalWalker, ALeftWalkGivesNothing) {
    Walked walked(ByteBuilder().Bytes(P264(1)).Bytes(P264(2)).Bytes(P264(3)).Take());
    EXPECT_EQ(walked.At(0, false, 4, 3).UnitCount(), 0U);
    EXPECT_EQ(walked.looks, 3);
    EXPECT_EQ(walked.At(0).UnitCount(), 3U);
}

TEST(NalWalker, NothingStandsBehindTheEndOfTheFile) {
    Walked walked(P264(1));
    EXPECT_EQ(walked.At(100).UnitCount(), 0U);
    EXPECT_EQ(walked.At(UINT64_MAX).UnitCount(), 0U);
    EXPECT_EQ(walked.At(97).UnitCount(), 0U);
}

}  // namespace
}  // namespace clipfix::test
