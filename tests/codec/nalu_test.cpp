#include "codec/nalu.h"

#include <gtest/gtest.h>

#include "codec/h264_slice_header.h"
#include "codec/h265_slice_header.h"
#include "codec/reference_sets.h"
#include "support/bit_writer.h"
#include "support/byte_builder.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;
using test::ByteBuilder;
using test::ReferenceSets;

// A unit of `size` bytes in all, whose length word has four bytes, as far as a probe shows it.
ByteVector Unit(std::uint32_t size, std::initializer_list<std::uint8_t> head, ByteView body = {}) {
    ByteBuilder bytes;
    bytes.Big32(size - 4).Bytes(head).Bytes(body);
    bytes.Zeros(CNALU::kProbeLength - bytes.Size());
    return bytes.Take();
}

ByteVector SliceBody264(std::uint32_t sliceType = 5) {
    return BitWriter().Ue(17).Ue(sliceType).Ue(0).Bits(9, 4).Bits(33, 6).Se(-4).View();
}

class CNALU264 : public testing::Test {
  protected:
    [[nodiscard]] std::optional<CNALU> Parse(ByteView bytes, std::uint32_t lengthSize = 4) const {
        return CNALU::Parse(bytes, lengthSize, sets_.H264());
    }

    ReferenceSets sets_;
};

TEST_F(CNALU264, ParsesASlice) {
    const auto unit = Parse(Unit(5000, {0x61}, SliceBody264()));
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->forbidden_zero_bit, 0);
    EXPECT_EQ(unit->nal_ref_idc, 3);
    EXPECT_EQ(unit->nal_unit_type, 1);
    EXPECT_EQ(unit->size, 5000U);
    EXPECT_EQ(unit->name, "");
    EXPECT_EQ(unit->slice_type, 5);
    EXPECT_EQ(unit->first_mb_in_slice, 17);
    EXPECT_EQ(unit->frame_num, 9);
    const auto* slice = std::get_if<std::shared_ptr<const CSliceHeader>>(&unit->payload);
    ASSERT_NE(slice, nullptr);
    EXPECT_EQ((*slice)->slice_qp_delta, -4);
}

TEST_F(CNALU264, RefusesZeroBytesAtTheEndOfAFile) {
    EXPECT_FALSE(Parse(ByteVector(50)));
    EXPECT_FALSE(Parse({}));
    EXPECT_FALSE(Parse(ByteVector(3)));
    // The last four bytes of a file: a length, and a head that is not there.
    EXPECT_FALSE(Parse(ByteVector{0, 0, 0, 9}));
}

TEST_F(CNALU264, RefusesTheForbiddenBit) {
    EXPECT_TRUE(Parse(Unit(5000, {0x41}, SliceBody264())));
    EXPECT_FALSE(Parse(Unit(5000, {0xC1}, SliceBody264())));
    EXPECT_TRUE(Parse(Unit(50, {0x06})));
    EXPECT_FALSE(Parse(Unit(50, {0x86})));
}

TEST_F(CNALU264, TakesTypesOneFiveAndSixToNine) {
    for (std::uint8_t type = 0; type < 32; ++type) {
        const bool hasReference = type != 6 && type != 9;
        const auto head = static_cast<std::uint8_t>(type | (hasReference ? 0x60 : 0));
        const ByteVector body = SliceBody264(7);
        const bool expected = type == 1 || (type >= 5 && type <= 9);
        // The id of a set from the stream begins with its last byte here, and is 0.
        const ByteVector bytes =
            type == 7 ? Unit(30, {head, 66, 0, 30, 0, 0x80}) : Unit(30, {head}, body);
        EXPECT_EQ(Parse(bytes).has_value(), expected) << int{type};
    }
}

TEST_F(CNALU264, WantsAReferenceCountOtherThanZeroForIdrSlicesAndSets) {
    const ByteVector slice = SliceBody264(7);
    EXPECT_TRUE(Parse(Unit(500, {0x25}, slice)));
    EXPECT_FALSE(Parse(Unit(500, {0x05}, slice)));
    EXPECT_TRUE(Parse(Unit(30, {0x27, 66, 0, 30, 0, 0x80})));
    EXPECT_FALSE(Parse(Unit(30, {0x07, 66, 0, 30, 0, 0x80})));
    EXPECT_TRUE(Parse(Unit(30, {0x28})));
    EXPECT_FALSE(Parse(Unit(30, {0x08})));
    EXPECT_TRUE(Parse(Unit(500, {0x01}, slice)));  // a plain slice may be no reference
}

TEST_F(CNALU264, WantsAReferenceCountOfZeroForSeiAndDelimiters) {
    EXPECT_TRUE(Parse(Unit(30, {0x06})));
    EXPECT_FALSE(Parse(Unit(30, {0x26})));
    EXPECT_TRUE(Parse(Unit(30, {0x09})));
    EXPECT_FALSE(Parse(Unit(30, {0x29})));
}

TEST_F(CNALU264, LimitsUnitsWithoutAPictureToEightHundredBytes) {
    for (const std::uint8_t head : ByteVector{0x06, 0x09, 0x28}) {
        EXPECT_TRUE(Parse(Unit(800, {head}))) << int{head};
        EXPECT_FALSE(Parse(Unit(801, {head}))) << int{head};
    }
    EXPECT_TRUE(Parse(Unit(800, {0x27, 66, 0, 30, 0, 0x80})));
    EXPECT_FALSE(Parse(Unit(801, {0x27, 66, 0, 30, 0, 0x80})));
    EXPECT_TRUE(Parse(Unit(801, {0x41}, SliceBody264())));
    EXPECT_TRUE(Parse(Unit(0x7FFFFFFF, {0x41}, SliceBody264())));
}

TEST_F(CNALU264, RefusesASizeOfZero) {
    // The length word wraps: 0xFFFFFFFC and 4 are 0.
    EXPECT_FALSE(Parse(Unit(0, {0x41}, SliceBody264())));
    EXPECT_FALSE(Parse(Unit(0, {0x06})));
    EXPECT_TRUE(Parse(Unit(1, {0x41}, SliceBody264())));
    EXPECT_TRUE(Parse(Unit(4, {0x06})));  // a length of 0, and the head of what follows
}

TEST_F(CNALU264, WrapsTheLargestLengthToThree) {
    const auto unit = Parse(Unit(3, {0x41}, SliceBody264()));
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->size, 3U);
}

TEST_F(CNALU264, ReadsFourLengthBytesWhateverTheLengthSize) {
    // Two bytes of length as a stream has them, and the head at offset 2.
    const ByteVector body = SliceBody264();
    const ByteVector bytes = ByteBuilder().Big16(300).U8(0x41).Bytes(body).Zeros(40).Take();
    const auto unit = Parse(bytes, 2);
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->nal_unit_type, 1);
    const std::uint32_t word = (300U << 16U) | (0x41U << 8U) | body[0];
    EXPECT_EQ(unit->size, word + 2);
    EXPECT_EQ(unit->first_mb_in_slice, 17);
}

TEST_F(CNALU264, TakesTheHeadFromTheLengthWordWhereTheLengthSizeIsZero) {
    const ByteVector bytes = ByteBuilder().U8(0x41).Bytes(SliceBody264()).Zeros(40).Take();
    const auto unit = Parse(bytes, 0);
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->size, ReadBig32(bytes, 0));
}

TEST_F(CNALU264, RefusesASliceThatItsHeaderRefuses) {
    EXPECT_TRUE(Parse(Unit(500, {0x41}, SliceBody264(9))));
    EXPECT_FALSE(Parse(Unit(500, {0x41}, SliceBody264(10))));
    EXPECT_TRUE(Parse(Unit(500, {0x45}, SliceBody264(7))));
    EXPECT_FALSE(Parse(Unit(500, {0x45}, SliceBody264(5))));
}

TEST_F(CNALU264, GivesASliceTheBytesThatArrived) {
    // Seven bytes: the length, the head, and two that end behind the frame number.
    sets_.sps.log2_max_frame_num_minus4 = 5;
    ByteVector bytes = Unit(500, {0x41}, BitWriter().Ue(0).Ue(5).Ue(0).Bits(0x155, 9).View());
    bytes.resize(7);
    const auto cut = Parse(bytes);
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->frame_num, 0x155);
    EXPECT_EQ(std::get<std::shared_ptr<const CSliceHeader>>(cut->payload)->field_pic_flag, -1);
    bytes.resize(8);
    const auto more = Parse(bytes);
    ASSERT_TRUE(more);
    EXPECT_EQ(std::get<std::shared_ptr<const CSliceHeader>>(more->payload)->field_pic_flag, 0);
}

TEST_F(CNALU264, ReadsASetFromTheStreamOneByteLaterThanOneFromARecord) {
    // 67 42 00 1E 8E: of a record the bits of the id are those of 8E, and the id is 0. From the
    // stream they are those of the byte behind it: 010 is 1.
    const std::initializer_list<std::uint8_t> head{0x67, 66, 0, 30, 0x8E, 0b01000000};
    sets_.sps.seq_parameter_set_id = 1;
    const auto unit = Parse(Unit(30, head));
    ASSERT_TRUE(unit);
    const auto& sps = *std::get<std::shared_ptr<const CSPS>>(unit->payload);
    EXPECT_EQ(sps.profile_idc, 0);
    EXPECT_EQ(sps.level_idc, 0x8E);
    EXPECT_EQ(sps.seq_parameter_set_id, 1);
    EXPECT_EQ(unit->slice_type, -1);
    EXPECT_EQ(unit->first_mb_in_slice, -1);
    EXPECT_EQ(unit->frame_num, -1);
    sets_.sps.seq_parameter_set_id = 0;
    EXPECT_FALSE(Parse(Unit(30, head)));
}

TEST_F(CNALU264, ReadsAPictureSetFromTheStreamOneByteLaterAndTestsNothingInIt) {
    // Of a record the id would be 0, from the byte C0.
    const auto unit = Parse(Unit(30, {0x68, 0xC0, 0b00100000}));
    ASSERT_TRUE(unit);
    EXPECT_EQ(std::get<std::shared_ptr<const CPPS>>(unit->payload)->pic_parameter_set_id, 3);
    EXPECT_TRUE(Parse(Unit(30, {0x68, 0xFF, 0xFF})));
}

TEST_F(CNALU264, KeepsNoPayloadOfSeiAndDelimiters) {
    for (const std::uint8_t head : ByteVector{0x06, 0x09}) {
        const auto unit = Parse(Unit(30, {head}));
        ASSERT_TRUE(unit);
        EXPECT_TRUE(std::holds_alternative<std::monostate>(unit->payload));
        EXPECT_EQ(unit->first_mb_in_slice, -1);
        EXPECT_EQ(unit->nuh_layer_id, -1);
    }
}

TEST_F(CNALU264, RefusesWhatNeedsAMissingSet) {
    const ByteVector slice = Unit(500, {0x41}, SliceBody264());
    const ByteVector sps = Unit(30, {0x67, 66, 0, 30, 0, 0x80});
    ReferenceParameterSets reference = sets_.H264();
    reference.pps = nullptr;
    EXPECT_FALSE(CNALU::Parse(slice, 4, reference));
    EXPECT_TRUE(CNALU::Parse(sps, 4, reference));
    reference = sets_.H264();
    reference.sps = nullptr;
    EXPECT_FALSE(CNALU::Parse(slice, 4, reference));
    EXPECT_FALSE(CNALU::Parse(sps, 4, reference));
    EXPECT_TRUE(CNALU::Parse(Unit(30, {0x68}), 4, reference));
    EXPECT_TRUE(CNALU::Parse(Unit(30, {0x06}), 4, {}));
}

// ---- H.265

ByteVector SliceBody265(std::uint32_t ppsId = 0) {
    return BitWriter().Bit(1).Ue(ppsId).View();
}

class CNALU265 : public testing::Test {
  protected:
    [[nodiscard]] std::optional<CNALU> Parse(ByteView bytes, std::uint32_t lengthSize = 4) const {
        return CNALU::Parse(bytes, lengthSize, sets_.H265());
    }

    ReferenceSets sets_;
};

std::uint8_t HeadOf(int type) {
    return static_cast<std::uint8_t>(type << 1);
}

TEST_F(CNALU265, ParsesASlice) {
    const auto unit = Parse(Unit(5000, {0x02, 0x03}, SliceBody265()));
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->forbidden_zero_bit, 0);
    EXPECT_EQ(unit->nal_unit_type, 1);
    EXPECT_EQ(unit->nuh_layer_id, 0);
    EXPECT_EQ(unit->nuh_temporal_id_plus1, 3);
    EXPECT_EQ(unit->nal_ref_idc, -1);
    EXPECT_EQ(unit->size, 5000U);
    EXPECT_EQ(unit->name, "Slice");
    EXPECT_EQ(unit->first_mb_in_slice, 1);  // first_slice_segment_in_pic_flag
    EXPECT_EQ(unit->slice_type, -1);
    EXPECT_EQ(unit->frame_num, -1);
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<const SliceHeader_265>>(unit->payload));

    const auto later = Parse(Unit(5000, {0x02, 0x01}, BitWriter().Bit(0).Ue(0).View()));
    ASSERT_TRUE(later);
    EXPECT_EQ(later->first_mb_in_slice, 0);
}

TEST_F(CNALU265, RefusesZeroBytesAtTheEndOfAFile) {
    EXPECT_FALSE(Parse(ByteVector(50)));
    EXPECT_FALSE(Parse({}));
    EXPECT_FALSE(Parse(ByteVector{0, 0, 0, 9, 0x02}));
}

TEST_F(CNALU265, TakesTheTypesOfItsTableAndNamesThem) {
    for (int type = 0; type < 64; ++type) {
        std::optional<std::string_view> name;
        if (type <= 9 || (type >= 16 && type <= 21)) {
            name = "Slice";
        } else if (type == 32) {
            name = "VPS";
        } else if (type == 33) {
            continue;  // below: needs a body
        } else if (type == 34) {
            name = "PPS";
        } else if (type == 35) {
            name = "AUD";
        } else if (type == 39 || type == 40) {
            name = "SEI";
        } else if (type >= 48 && type <= 62) {
            name = "Unspecified";
        } else if (type == 36 || type == 63) {
            name = "";
        }
        const auto unit =
            Parse(Unit(100, {HeadOf(type), 0x01}, BitWriter().Bits(3, 2).Ue(0).View()));
        EXPECT_EQ(unit.has_value(), name.has_value()) << type;
        EXPECT_EQ(CNALU::NameOfType265(type), name) << type;
        if (unit && name) {
            EXPECT_EQ(unit->name, *name) << type;
        }
    }
}

TEST_F(CNALU265, RefusesTheForbiddenBitATemporalIdOfZeroAndAnotherLayer) {
    const ByteVector slice = SliceBody265();
    EXPECT_TRUE(Parse(Unit(100, {0x02, 0x01}, slice)));
    EXPECT_FALSE(Parse(Unit(100, {0x82, 0x01}, slice)));
    EXPECT_FALSE(Parse(Unit(100, {0x02, 0x00}, slice)));
    EXPECT_FALSE(Parse(Unit(100, {0x02, 0x09}, slice)));
    EXPECT_FALSE(Parse(Unit(100, {0x03, 0x01}, slice)));
    sets_.sps265.nuh_layer_id = 33;
    const auto unit = Parse(Unit(100, {0x03, 0x09}, slice));
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->nuh_layer_id, 33);
    EXPECT_FALSE(Parse(Unit(100, {0x02, 0x01}, slice)));
}

TEST_F(CNALU265, LimitsSetsAndSeiToEightHundredBytes) {
    for (const int type : {32, 34, 35, 36, 39, 40}) {
        EXPECT_TRUE(Parse(Unit(800, {HeadOf(type), 0x01}))) << type;
        EXPECT_FALSE(Parse(Unit(801, {HeadOf(type), 0x01}))) << type;
    }
}

TEST_F(CNALU265, LimitsUnspecifiedUnitsToAThousandBytes) {
    for (int type = 48; type < 64; ++type) {
        EXPECT_TRUE(Parse(Unit(1000, {HeadOf(type), 0x01}))) << type;
        EXPECT_FALSE(Parse(Unit(1001, {HeadOf(type), 0x01}))) << type;
    }
    EXPECT_TRUE(Parse(Unit(1001, {0x02, 0x01}, SliceBody265())));
}

TEST_F(CNALU265, WantsSevenBytes) {
    EXPECT_TRUE(Parse(Unit(7, {0x02, 0x01}, SliceBody265())));
    EXPECT_FALSE(Parse(Unit(6, {0x02, 0x01}, SliceBody265())));
    EXPECT_FALSE(Parse(Unit(3, {0x02, 0x01}, SliceBody265())));
    EXPECT_TRUE(Parse(Unit(7, {HeadOf(35), 0x01})));
    EXPECT_FALSE(Parse(Unit(6, {HeadOf(35), 0x01})));
}

TEST_F(CNALU265, RefusesASliceThatItsHeaderRefuses) {
    EXPECT_TRUE(Parse(Unit(100, {0x02, 0x01}, SliceBody265(63))));
    EXPECT_FALSE(Parse(Unit(100, {0x02, 0x01}, SliceBody265(64))));
}

// A sequence parameter set whose picture size stands in the first byte behind the fixed ones.
ByteVector SpsBody265(std::uint32_t id, std::uint32_t width = 1920, std::uint32_t height = 1080) {
    return BitWriter().Bits(0x01, 8).Ue(id).Ue(1).Ue(width).Ue(height).Bit(0).View();
}

TEST_F(CNALU265, ParsesASetThatFitsTheReferenceInSizeAndId) {
    const auto unit = Parse(Unit(60, {HeadOf(33), 0x01}, SpsBody265(0)));
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->name, "SPS");
    const auto& sps = *std::get<std::shared_ptr<const SPS_265>>(unit->payload);
    EXPECT_EQ(sps.nal_unit_type, 33);
    EXPECT_EQ(sps.pic_width_in_luma_samples, 1920);
    EXPECT_FALSE(Parse(Unit(60, {HeadOf(33), 0x01}, SpsBody265(1))));
    EXPECT_FALSE(Parse(Unit(60, {HeadOf(33), 0x01}, SpsBody265(0, 640, 480))));
    EXPECT_FALSE(Parse(Unit(801, {HeadOf(33), 0x01}, SpsBody265(0))));
    sets_.sps265.sps_seq_parameter_set_id = 1;
    EXPECT_TRUE(Parse(Unit(60, {HeadOf(33), 0x01}, SpsBody265(1))));
}

TEST_F(CNALU265, DoesNotHeedWhatTheOtherSetsSayOfThemselves) {
    // A video set without the pattern reads on from its head: 0x40 0x01, and the number of layer
    // sets that follows is too large.
    ByteVector vps = Unit(60, {HeadOf(32), 0x01});
    const auto unit = Parse(vps);
    ASSERT_TRUE(unit);
    EXPECT_EQ(std::get<std::shared_ptr<const CVPS>>(unit->payload)->nal_unit_type, 32);

    // Uneven tiles, more columns than the reference's picture has blocks.
    const ByteVector body = BitWriter()
                                .Ue(0)
                                .Ue(0)
                                .Bits(0, 2)
                                .Bits(0, 3)
                                .Bits(0, 2)
                                .Ue(0)
                                .Ue(0)
                                .Se(0)
                                .Bits(0, 3)
                                .Se(0)
                                .Se(0)
                                .Bits(0, 4)
                                .Bit(1)
                                .Bit(0)
                                .Ue(240)
                                .Ue(0)
                                .Bit(0)
                                .View();
    PPS_265 alone;
    const ByteVector whole = ByteBuilder().Bytes({HeadOf(34), 0x01}).Bytes(body).Take();
    ASSERT_FALSE(alone.Parse(whole, &sets_.sps265));
    const auto pps = Parse(Unit(60, {HeadOf(34), 0x01}, body));
    ASSERT_TRUE(pps);
    EXPECT_EQ(std::get<std::shared_ptr<const PPS_265>>(pps->payload)->num_tile_columns_minus1, 240);
}

TEST_F(CNALU265, RefusesEveryUnitWithoutTheReferenceSets) {
    const ByteVector sei = Unit(30, {HeadOf(39), 0x01});
    EXPECT_TRUE(CNALU::Parse(sei, 4, sets_.H265()));
    ReferenceParameterSets reference = sets_.H265();
    reference.sps265 = nullptr;
    EXPECT_FALSE(CNALU::Parse(sei, 4, reference));
    reference = sets_.H265();
    reference.pps265 = nullptr;
    EXPECT_FALSE(CNALU::Parse(sei, 4, reference));
}

TEST(CNALU, IsReadByTheRulesOfTheCodecThatTheVideoSetSelects) {
    const ReferenceSets sets;
    ReferenceParameterSets both = sets.H265();
    both.sps = &sets.sps;
    both.pps = &sets.pps;
    // 0x06 is an H.264 SEI, and type 3 of H.265.
    const ByteVector bytes = Unit(30, {0x06, 0x01}, SliceBody265());
    EXPECT_EQ(CNALU::Parse(bytes, 4, both)->name, "Slice");
    both.vps = nullptr;
    EXPECT_EQ(CNALU::Parse(bytes, 4, both)->name, "");
}

TEST(CNALU, IsAValueThatSharesItsPayload) {
    const ReferenceSets sets;
    std::optional<CNALU> copy;
    {
        auto unit = CNALU::Parse(Unit(500, {0x41}, SliceBody264()), 4, sets.H264());
        ASSERT_TRUE(unit);
        copy = *unit;
    }
    EXPECT_EQ(std::get<std::shared_ptr<const CSliceHeader>>(copy->payload)->frame_num, 9);
}

TEST(CNALU, TakesAnyBytesUnderAnyLengthSize) {
    const ReferenceSets sets;
    test::Random random(3);
    for (int i = 0; i < 30000; ++i) {
        ByteVector bytes = random.Bytes(random.Below(51));
        if (bytes.size() > 5 && random.OneIn(2)) {
            bytes[0] = 0;
            bytes[1] = 0;
            bytes[2] = static_cast<std::uint8_t>(random.Below(3));
        }
        const std::uint32_t lengthSize = random.Below(5);
        const auto a = CNALU::Parse(bytes, lengthSize, sets.H264());
        const auto b = CNALU::Parse(bytes, lengthSize, sets.H265());
        if (a) {
            EXPECT_EQ(a->size, ReadBig32(bytes, 0) + lengthSize);
        }
        if (b) {
            EXPECT_GE(b->size, 7U);
        }
    }
}

}  // namespace
}  // namespace clipfix
