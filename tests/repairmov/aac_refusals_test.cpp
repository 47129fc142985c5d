#include "repairmov/aac_refusals.h"

#include <gtest/gtest.h>

#include "aac_elements.h"
#include "small_movies.h"
#include "support/random.h"

namespace clipfix::test {
namespace {

const ByteVector kLowComplexity{0x12, 0x10};

AacDecoder::Answer Refused(std::uint8_t error) {
    return {.hasResult = false, .bytesConsumed = 0, .error = error, .isReplaced = false};
}
AacDecoder::Answer Frame() {
    return {.hasResult = true, .bytesConsumed = 6, .error = 0, .isReplaced = false};
}
// The first three bits name the element.
ByteVector Starting(unsigned element, std::uint8_t rest = 0x04) {
    return {static_cast<std::uint8_t>((element << 5U) | rest), 0x10, 0x04, 0x60, 0x8C, 0x1C};
}

class AacRefusalsTest : public testing::Test {
  protected:
    void SetUp() override {
        if (AacDecoder::LibraryVersion() != "2.10.1") {
            GTEST_SKIP() << "nothing is known of this version";
        }
    }
    AacRefusals refusals_{kLowComplexity};
};

TEST_F(AacRefusalsTest, KnowsAFrameWithoutChannelsFromTheStart) {
    EXPECT_TRUE(refusals_.IsCertain(Starting(kEnd)));
    EXPECT_TRUE(refusals_.IsCertain(Starting(kCoupling)));
    for (const unsigned element : {kSingle, kPair, kEffects, kConfiguration}) {
        EXPECT_FALSE(refusals_.IsCertain(Starting(element))) << element;
    }
}

// What the synthesis remembers of a frame is cleared by the refusal behind it.
TEST_F(AacRefusalsTest, KnowsNothingRightBehindAFrame) {
    refusals_.Note(Starting(kPair), Frame());
    EXPECT_FALSE(refusals_.IsCertain(Starting(kEnd)));
    refusals_.Note(Starting(kEnd), Refused(12));
    EXPECT_TRUE(refusals_.IsCertain(Starting(kEnd)));
}

TEST_F(AacRefusalsTest, KnowsTheOtherKindsOnceOneWasLookedIntoAndAnotherRefused) {
    refusals_.Note(Starting(kPair), Refused(9));
    EXPECT_FALSE(refusals_.IsCertain(Starting(kSingle)));
    refusals_.Note(Starting(kEffects), Refused(21));
    EXPECT_TRUE(refusals_.IsCertain(Starting(kSingle)));
    EXPECT_TRUE(refusals_.IsCertain(Starting(kEffects)));
    EXPECT_FALSE(refusals_.IsCertain(Starting(kPair)));
}

TEST_F(AacRefusalsTest, AsksAboutThePairOnceMoreBecauseItLeavesAMark) {
    refusals_.Note(Starting(kSingle), Refused(9));
    refusals_.Note(Starting(kEffects), Refused(21));
    EXPECT_FALSE(refusals_.IsCertain(Starting(kPair)));
    refusals_.Note(Starting(kPair), Refused(21));
    EXPECT_TRUE(refusals_.IsCertain(Starting(kPair)));
}

TEST_F(AacRefusalsTest, KnowsTheReservedBit) {
    refusals_.Note(Starting(kPair), Refused(9));
    // Common window data: the bit is the first of the second byte. Otherwise that of the third.
    EXPECT_TRUE(refusals_.IsCertain(ByteVector{0x21, 0x80, 0x00}));
    EXPECT_FALSE(refusals_.IsCertain(ByteVector{0x21, 0x7F, 0xFF}));
    EXPECT_TRUE(refusals_.IsCertain(ByteVector{0x20, 0x00, 0x80}));
    EXPECT_FALSE(refusals_.IsCertain(ByteVector{0x20, 0xFF, 0x7F}));
    EXPECT_FALSE(refusals_.IsCertain(ByteVector{0x20, 0xFF})) << "the bit is not there";
}

TEST_F(AacRefusalsTest, LooksBehindDataAndFilling) {
    // Data: tag 0, not aligned, 1 byte, the byte; behind it the end.
    EXPECT_TRUE(refusals_.IsCertain(
        BitWriter().Bits(kData, 3).Bits(0, 5).Bits(1, 8).Bits(0xAB, 8).Bits(kEnd, 3).View()));
    EXPECT_FALSE(
        refusals_.IsCertain(BitWriter().Bits(kData, 3).Bits(0, 5).Bits(9, 8).Bits(kEnd, 3).View()))
        << "cut short";
    // Filling of one byte of kind 0, then a configuration that is not the first element.
    EXPECT_TRUE(refusals_.IsCertain(BitWriter()
                                        .Bits(kFilling, 3)
                                        .Bits(1, 4)
                                        .Bits(0, 8)
                                        .Bits(kConfiguration, 3)
                                        .Bits(0, 20)
                                        .View()));
    // Band replication without channels; dynamic range, which leaves a trace.
    EXPECT_TRUE(refusals_.IsCertain(
        BitWriter().Bits(kFilling, 3).Bits(2, 4).Bits(13, 4).Bits(0, 40).View()));
    EXPECT_FALSE(refusals_.IsCertain(
        BitWriter().Bits(kFilling, 3).Bits(2, 4).Bits(11, 4).Bits(0x1FFFFFFF, 40).View()));
}

TEST_F(AacRefusalsTest, KnowsNothingOfOtherObjectsAndOfADecoderThatTookOver) {
    for (const ByteVector& start : {ByteVector{0x8A, 0x10}, ByteVector{0x2B, 0x92}, ByteVector{}}) {
        EXPECT_FALSE(AacRefusals(start).IsCertain(Starting(kEnd)));
    }
    AacDecoder::Answer replaced = Refused(21);
    replaced.isReplaced = true;
    refusals_.Note(Starting(kPair), replaced);
    EXPECT_FALSE(refusals_.IsCertain(Starting(kEnd)));
}

TEST_F(AacRefusalsTest, OnNoiseMostPlacesNeedNoQuestion) {
    Random random(2);
    const ByteVector noise = random.Bytes(20000);
    const auto decoder = AacDecoder::Start(std::span<const std::uint8_t, 2>(kLowComplexity));
    int asked = 0;
    for (std::size_t place = 0; place < noise.size(); ++place) {
        const ByteView shown = SubView(noise, place, 1024);
        if (shown[0] != 0 && !refusals_.IsCertain(shown)) {
            ++asked;
            refusals_.Note(shown, decoder->Decode(shown, shown.size()));
        }
    }
    EXPECT_LT(asked, 8000);
}

}  // namespace
}  // namespace clipfix::test
