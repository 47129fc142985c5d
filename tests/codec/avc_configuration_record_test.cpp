#include "codec/avc_configuration_record.h"

#include <gtest/gtest.h>

#include "base/fourcc.h"
#include "support/byte_builder.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::ByteBuilder;

// A baseline set of 32 x 16 with id 0: 1 1 1 011 010 0 | 010 1 1 1 0 0 1.
const ByteVector kSps{0x67, 66, 0xC0, 30, 0b11101101, 0b00010111, 0b10010000};
// The same with id 1.
const ByteVector kSpsOne{0x67, 66, 0xC0, 31, 0b01011011, 0b01000101, 0b11100100};
// Ids 0 and 0; and 1 and 0.
const ByteVector kPps{0x68, 0b11001111, 0x80};
const ByteVector kPpsOne{0x68, 0b01010011, 0xE0};

// Everything in front of the sets; size and type included.
ByteBuilder Head(std::uint8_t lengthByte, std::uint8_t countByte) {
    ByteBuilder box;
    box.Big32(0x1234).Text("avcC").Bytes({1, 77, 0xC0, 30, lengthByte, countByte});
    return box;
}

ByteBuilder& Set(ByteBuilder& box, const ByteVector& set) {
    return box.Big16(static_cast<std::uint16_t>(set.size())).Bytes(set);
}

TEST(CAVCDecoderConfigurationRecord, ReadsItsFieldsAndSets) {
    ByteBuilder box = Head(0xFF, 0xE1);
    Set(box, kSps).U8(1);
    Set(box, kPps);
    const CAVCDecoderConfigurationRecord record(box.View());
    EXPECT_EQ(record.size, box.Size());  // the length handed over, not the box's own word
    EXPECT_EQ(record.type, FourCC("avcC"));
    EXPECT_EQ(record.configurationVersion, 1);
    EXPECT_EQ(record.AVCProfileIndication, 77);
    EXPECT_EQ(record.profile_compatibility, 0xC0);
    EXPECT_EQ(record.AVCLevelIndication, 30);
    EXPECT_EQ(record.lengthSizeMinusOne, 3);
    EXPECT_EQ(record.numOfSequenceParameterSets, 1U);
    EXPECT_EQ(record.numOfPictureParameterSets, 1);
    EXPECT_EQ(record.spsLength, kSps.size());
    EXPECT_EQ(record.ppsLength, kPps.size());
    EXPECT_EQ(record.spsBytes, kSps);
    EXPECT_EQ(record.ppsBytes, kPps);
    ASSERT_TRUE(record.sps);
    EXPECT_EQ(record.sps->profile_idc, 66);
    EXPECT_EQ(record.sps->seq_parameter_set_id, 0);
    ASSERT_TRUE(record.pps);
    EXPECT_EQ(record.pps->pic_parameter_set_id, 0);
}

TEST(CAVCDecoderConfigurationRecord, KeepsTwoBitsOfTheLengthSize) {
    EXPECT_EQ(CAVCDecoderConfigurationRecord(Head(0xFF, 0xE0).View()).lengthSizeMinusOne, 3);
    EXPECT_EQ(CAVCDecoderConfigurationRecord(Head(0xFC, 0xE0).View()).lengthSizeMinusOne, 0);
    EXPECT_EQ(CAVCDecoderConfigurationRecord(Head(0x01, 0xE0).View()).lengthSizeMinusOne, 1);
}

TEST(CAVCDecoderConfigurationRecord, KeepsFiveBitsOfTheNumberOfSequenceSets) {
    ByteBuilder box = Head(0xFF, 0xE1);
    EXPECT_EQ(CAVCDecoderConfigurationRecord(Set(box, kSps).View()).numOfSequenceParameterSets, 1U);
    EXPECT_EQ(CAVCDecoderConfigurationRecord(Head(0xFF, 0xFF).View()).numOfSequenceParameterSets,
              31U);
}

TEST(CAVCDecoderConfigurationRecord, HasNoSetsWhereItCountsNone) {
    const CAVCDecoderConfigurationRecord record(Head(0xFF, 0xE0).U8(0).Bytes(kSps).View());
    EXPECT_FALSE(record.sps);
    EXPECT_FALSE(record.pps);
    EXPECT_EQ(record.numOfPictureParameterSets, 0);
}

TEST(CAVCDecoderConfigurationRecord, HasNothingOfNoBytes) {
    const CAVCDecoderConfigurationRecord record{ByteView{}};
    EXPECT_EQ(record.size, 0U);
    EXPECT_EQ(record.type, 0U);
    EXPECT_FALSE(record.sps);
    EXPECT_FALSE(record.pps);
}

TEST(CAVCDecoderConfigurationRecord, ReadsZerosBehindARecordThatIsTooShort) {
    const CAVCDecoderConfigurationRecord record(SubView(Head(0xFF, 0xE1).View(), 0, 10));
    EXPECT_EQ(record.AVCProfileIndication, 77);
    EXPECT_EQ(record.profile_compatibility, 0);
    EXPECT_EQ(record.lengthSizeMinusOne, 0);
    EXPECT_FALSE(record.sps);
}

TEST(CAVCDecoderConfigurationRecord, KeepsTheLastOfSeveralSets) {
    ByteBuilder box = Head(0xFF, 0xE2);
    Set(box, kSps);
    Set(box, kSpsOne).U8(2);
    Set(box, kPps);
    Set(box, kPpsOne);
    const CAVCDecoderConfigurationRecord record(box.View());
    EXPECT_EQ(record.sps->seq_parameter_set_id, 1);
    EXPECT_EQ(record.spsBytes, kSpsOne);
    EXPECT_EQ(record.pps->pic_parameter_set_id, 1);
    EXPECT_EQ(record.ppsBytes, kPpsOne);
}

TEST(CAVCDecoderConfigurationRecord, CountsPictureSetsByTheWholeByte) {
    ByteBuilder box = Head(0xFF, 0xE1);
    Set(box, kSps).U8(0xE1);
    Set(box, kPps);
    const CAVCDecoderConfigurationRecord record(box.View());
    EXPECT_EQ(record.numOfPictureParameterSets, 0xE1);
    EXPECT_EQ(record.pps->pic_parameter_set_id, 0);
    // Two hundred and twenty-five of them: the last one stands.
    ByteBuilder many = Head(0xFF, 0xE1);
    Set(many, kSps).U8(0xE1);
    for (int i = 0; i < 0xE0; ++i) {
        Set(many, kPps);
    }
    Set(many, kPpsOne);
    EXPECT_EQ(CAVCDecoderConfigurationRecord(many.View()).pps->pic_parameter_set_id, 1);
}

TEST(CAVCDecoderConfigurationRecord, PassesOverASetThatDoesNotFitAndGoesOnBehindItsLength) {
    ByteBuilder box = Head(0xFF, 0xE2);
    // The first claims 1000 bytes; the length of the second stands right behind that word.
    box.Big16(1000);
    Set(box, kSps).U8(1);
    Set(box, kPps);
    const CAVCDecoderConfigurationRecord record(box.View());
    ASSERT_TRUE(record.sps);
    EXPECT_EQ(record.sps->seq_parameter_set_id, 0);
    ASSERT_TRUE(record.pps);
    EXPECT_EQ(record.spsLength, kSps.size());
}

TEST(CAVCDecoderConfigurationRecord, KeepsTheLengthOfASetThatDoesNotFit) {
    const CAVCDecoderConfigurationRecord record(Head(0xFF, 0xE1).Big16(1000).U8(0).View());
    EXPECT_EQ(record.spsLength, 1000);
    EXPECT_FALSE(record.sps);
    EXPECT_TRUE(record.spsBytes.empty());
}

TEST(CAVCDecoderConfigurationRecord, TakesASetThatEndsWithTheBoxAndNoneThatEndsBehindIt) {
    ByteBuilder box = Head(0xFF, 0xE1);
    Set(box, kSps);
    EXPECT_TRUE(CAVCDecoderConfigurationRecord(box.View()).sps);
    EXPECT_FALSE(CAVCDecoderConfigurationRecord(SubView(box.View(), 0, box.Size() - 1)).sps);
}

TEST(CAVCDecoderConfigurationRecord, SkipsThePictureSetsOfARecordCutBehindTheSequenceSet) {
    ByteBuilder box = Head(0xFF, 0xE1);
    Set(box, kSps);
    const CAVCDecoderConfigurationRecord cut(box.View());
    EXPECT_TRUE(cut.sps);
    EXPECT_EQ(cut.numOfPictureParameterSets, 0);
    EXPECT_FALSE(cut.pps);
    // One byte more is the count, and each of its sets is skipped.
    const CAVCDecoderConfigurationRecord counted(box.U8(200).View());
    EXPECT_EQ(counted.numOfPictureParameterSets, 200);
    EXPECT_FALSE(counted.pps);
    EXPECT_EQ(counted.ppsLength, 0);
}

TEST(CAVCDecoderConfigurationRecord, MakesASetOfNoBytes) {
    const CAVCDecoderConfigurationRecord record(Head(0xFF, 0xE1).Big16(0).U8(1).Big16(0).View());
    ASSERT_TRUE(record.sps);
    EXPECT_EQ(record.sps->profile_idc, 0);
    ASSERT_TRUE(record.pps);
    EXPECT_EQ(record.pps->pic_parameter_set_id, 0);
}

TEST(CAVCDecoderConfigurationRecord, ReadsAnyBytes) {
    test::Random random(10);
    for (int i = 0; i < 5000; ++i) {
        ByteVector bytes = random.Bytes(random.Below(120));
        for (auto& byte : bytes) {
            byte = random.OneIn(2) ? byte & 7 : byte;
        }
        const CAVCDecoderConfigurationRecord record(bytes);
        EXPECT_LE(record.lengthSizeMinusOne, 3);
        EXPECT_LE(record.spsBytes.size() + record.ppsBytes.size(), bytes.size());
    }
}

}  // namespace
}  // namespace clipfix
