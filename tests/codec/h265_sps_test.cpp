#include "codec/h265_sps.h"

#include <chrono>
#include <functional>
#include <gtest/gtest.h>

#include "base/bit_reader.h"
#include "support/bit_writer.h"
#include "support/byte_builder.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::BitWriter;
using test::ByteBuilder;

// A set field by field. The general profile takes the place of `profile_tier_level`.
struct SpsFields {
    unsigned maxSubLayersMinus1 = 0;
    // Bytes with no place that fits the picture: each pair of codes from there has an id above 15.
    ByteVector profile = ByteVector(12, 0x04);
    std::uint32_t id = 0;
    std::uint32_t chroma = 1;
    unsigned separate = 0;
    std::uint32_t width = 1920;
    std::uint32_t height = 1088;
    std::uint32_t log2Poc = 4;
    unsigned orderingInfo = 1;
    int roundsWritten = 0;
    std::uint32_t minCb = 0;    // log2 of the block size, less 3
    std::uint32_t ctbDiff = 3;  // 64 x 64
    std::function<void(BitWriter&)> tools = [](BitWriter& bits) { bits.Bits(0, 4); };
    std::function<void(BitWriter&)> pictures = [](BitWriter& bits) { bits.Ue(0).Bit(0); };
    std::function<void(BitWriter&)> tail = [](BitWriter& bits) { bits.Bits(0b0000, 4); };
};

ByteVector Build(const SpsFields& fields) {
    BitWriter bits;
    bits.Bits(0x4201, 16).Bits(3, 4).Bits(fields.maxSubLayersMinus1, 3).Bit(1);
    for (const std::uint8_t byte : fields.profile) {
        bits.Bits(byte, 8);
    }
    bits.Ue(fields.id).Ue(fields.chroma);
    if (fields.chroma == 3) {
        bits.Bit(fields.separate);
    }
    bits.Ue(fields.width).Ue(fields.height);
    bits.Bit(1).Ue(1).Ue(2).Ue(3).Ue(4);
    bits.Ue(2).Ue(1).Ue(fields.log2Poc).Bit(fields.orderingInfo);
    for (int i = 0; i < 3 * fields.roundsWritten; ++i) {
        bits.Ue(9);
    }
    bits.Ue(fields.minCb).Ue(fields.ctbDiff).Ue(0).Ue(3).Ue(1).Ue(2);
    fields.tools(bits);
    fields.pictures(bits);
    fields.tail(bits);
    return bits.Bits(0, 32).View();
}

SPS_265 Parsed(const SpsFields& fields) {
    SPS_265 sps;
    EXPECT_TRUE(sps.Parse(Build(fields), 1920, 1080));
    return sps;
}

TEST(SPS_265, ReadsItsFields) {
    const SPS_265 sps = Parsed({});
    EXPECT_EQ(sps.nal_unit_type, 33);
    EXPECT_EQ(sps.nuh_layer_id, 0);
    EXPECT_EQ(sps.nuh_temporal_id_plus1, 1);
    EXPECT_EQ(sps.sps_video_parameter_set_id, 3);
    EXPECT_EQ(sps.sps_max_sub_layers_minus1, 0);
    EXPECT_EQ(sps.sps_seq_parameter_set_id, 0);
    EXPECT_EQ(sps.chroma_format_idc, 1);
    EXPECT_EQ(sps.separate_colour_plane_flag, 0);
    EXPECT_EQ(sps.pic_width_in_luma_samples, 1920);
    EXPECT_EQ(sps.pic_height_in_luma_samples, 1088);
    EXPECT_EQ(sps.conformance_window_flag, 1);
    EXPECT_EQ(sps.conf_win_left_offset, 1);
    EXPECT_EQ(sps.conf_win_right_offset, 2);
    EXPECT_EQ(sps.conf_win_top_offset, 3);
    EXPECT_EQ(sps.conf_win_bottom_offset, 4);
    EXPECT_EQ(sps.bit_depth_luma_minus8, 2);
    EXPECT_EQ(sps.bit_depth_chroma_minus8, 1);
    EXPECT_EQ(sps.log2_max_pic_order_cnt_lsb_minus4, 4);
    EXPECT_EQ(sps.sps_sub_layer_ordering_info_present_flag, 1);
    EXPECT_EQ(sps.log2_min_luma_coding_block_size_minus3, 0);
    EXPECT_EQ(sps.log2_diff_max_min_luma_coding_block_size, 3);
    EXPECT_EQ(sps.log2_min_luma_transform_block_size_minus2, 0);
    EXPECT_EQ(sps.log2_diff_max_min_luma_transform_block_size, 3);
    EXPECT_EQ(sps.max_transform_hierarchy_depth_inter, 1);
    EXPECT_EQ(sps.max_transform_hierarchy_depth_intra, 2);
    EXPECT_EQ(sps.scaling_list_enabled_flag, 0);
    EXPECT_EQ(sps.sps_scaling_list_data_present_flag, -1);
    EXPECT_EQ(sps.pcm_enabled_flag, 0);
    EXPECT_EQ(sps.pcm_sample_bit_depth_luma_minus1, -1);
    EXPECT_EQ(sps.num_short_term_ref_pic_sets, 0);
    EXPECT_EQ(sps.long_term_ref_pics_present_flag, 0);
    EXPECT_EQ(sps.num_long_term_ref_pics_sps, -1);
    EXPECT_EQ(sps.strong_intra_smoothing_enabled_flag, 0);
    EXPECT_EQ(sps.vui_parameters_present_flag, 0);
    EXPECT_EQ(sps.sps_extension_present_flag, 0);
    EXPECT_EQ(sps.sps_range_extension_flag, -1);
    EXPECT_EQ(sps.motion_vector_resolution_control_idc, -1);
}

TEST(SPS_265, DerivesItsFourValues) {
    const SPS_265 sps = Parsed({});
    EXPECT_EQ(sps.chromaArrayType, 1);
    EXPECT_EQ(sps.picWidthInMinCbs, 240);
    EXPECT_EQ(sps.picSizeInMinCbs, 240 * 136);
    EXPECT_EQ(sps.picHeightRemainder, 1088 % 64);
    SpsFields larger;
    larger.minCb = 1;
    larger.ctbDiff = 1;
    larger.height = 1090;
    const SPS_265 other = Parsed(larger);
    EXPECT_EQ(other.picWidthInMinCbs, 120);
    EXPECT_EQ(other.picSizeInMinCbs, 120 * 68);
    EXPECT_EQ(other.picHeightRemainder, 1090 % 32);
}

TEST(SPS_265, DerivesNoChromaFromSeparatePlanes) {
    SpsFields fields;
    fields.chroma = 3;
    EXPECT_EQ(Parsed(fields).chromaArrayType, 3);
    fields.separate = 1;
    const SPS_265 sps = Parsed(fields);
    EXPECT_EQ(sps.separate_colour_plane_flag, 1);
    EXPECT_EQ(sps.chromaArrayType, 0);
    EXPECT_EQ(sps.pic_width_in_luma_samples, 1920);
}

TEST(SPS_265, FindsACodedHeightThatIsALittleLargerThanThePictures) {
    SPS_265 sps;
    EXPECT_TRUE(sps.Parse(Build({}), 1920, 1080));  // 1088 / 1080 is 1
    EXPECT_EQ(sps.pic_height_in_luma_samples, 1088);
}

TEST(SPS_265, GoesOnSearchingWhereTheQuotientIsNotOne) {
    SPS_265 sps;
    for (const std::uint32_t width : {960U, 1919U, 3840U}) {
        SpsFields fields;
        fields.width = width;
        EXPECT_FALSE(sps.Parse(Build(fields), 1920, 1080)) << width;
    }
    for (const std::uint32_t width : {1920U, 3839U}) {
        SpsFields fields;
        fields.width = width;
        EXPECT_TRUE(sps.Parse(Build(fields), 1920, 1080)) << width;
    }
    for (const std::uint32_t height : {1079U, 2160U}) {
        SpsFields fields;
        fields.height = height;
        EXPECT_FALSE(sps.Parse(Build(fields), 1920, 1080)) << height;
    }
    // A first candidate of half the width, and the picture's own behind it.
    SpsFields second;
    second.profile = BitWriter().Ue(0).Ue(1).Ue(960).Ue(1088).Bits(0, 8).View();
    EXPECT_TRUE(sps.Parse(Build(second), 1920, 1080));
    EXPECT_EQ(sps.pic_width_in_luma_samples, 1920);
}

TEST(SPS_265, RefusesAnExpectedSizeOfZero) {
    SPS_265 sps;
    EXPECT_TRUE(sps.Parse(Build({}), 1920, 1080));
    EXPECT_FALSE(sps.Parse(Build({}), 0, 1080));
    EXPECT_FALSE(sps.Parse(Build({}), 1920, 0));
}

TEST(SPS_265, RefusesAPlaceAtTheVeryEndOfTheBytes) {
    // One byte for the first fields, then id, format, width and height end with a byte.
    const ByteVector unit = BitWriter().Bits(0x420101, 24).Ue(0).Ue(1).Ue(31).Ue(15).View();
    // 1 010 00000100000 000010000: 24 bits.
    ASSERT_EQ(unit.size(), 6U);
    SPS_265 sps;
    EXPECT_FALSE(sps.Parse(unit, 31, 15));
    ByteVector longer = unit;
    longer.push_back(0);
    EXPECT_TRUE(sps.Parse(longer, 31, 15));
}

TEST(SPS_265, RefusesUnitsThatAreTooShort) {
    SPS_265 sps;
    for (std::size_t length = 0; length < 6; ++length) {
        EXPECT_FALSE(sps.Parse(SubView(Build({}), 0, length), 1920, 1080)) << length;
    }
}

TEST(SPS_265, GoesOnBehindTheTwoCodesThatDoNotFitAndOneByteFurther) {
    // From the first place: id 16 takes nine bits and the format none of the rest of its byte, so
    // the next pair is tried from the byte behind the one in which the reader stands.
    const ByteVector codes = BitWriter().Ue(16).Ue(0).View();
    ASSERT_EQ(codes.size(), 2U);
    SpsFields fields;
    fields.profile = ByteBuilder().Bytes(codes).Take();
    fields.profile.push_back(0x00);
    SPS_265 sps;
    EXPECT_TRUE(sps.Parse(Build(fields), 1920, 1080));
}

// The search told as it goes, without the memory of places that have been tried.
bool PlainSearch(ByteView unit, std::int32_t expectedWidth, std::int32_t expectedHeight,
                 std::size_t& place) {
    std::size_t byte = 3;
    unsigned bit = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    BitReader in(unit, 3);
    const auto ue = [&in] { return static_cast<std::int32_t>(in.ReadUe()); };
    while (height == 0 && byte < unit.size()) {
        const std::size_t start = byte;
        std::int32_t format = 0;
        in.MoveTo(byte, bit);
        while (in.BytePosition() < unit.size()) {
            const std::int32_t id = ue();
            format = ue();
            if (id < 16 && format < 4) {
                break;
            }
            in.MoveTo(in.BytePosition() + 1);
        }
        if (format == 3) {
            static_cast<void>(in.ReadBit());
        }
        width = ue();
        height = ue();
        if (width / expectedWidth == 1 && height / expectedHeight == 1) {
            byte = in.BytePosition();
            bit = in.BitPosition();
        } else {
            width = 0;
            height = 0;
            byte = start + 1;
            bit = 0;
        }
    }
    place = byte * 8 + bit;
    return byte != unit.size() && width != 0 && height != 0;
}

TEST(SPS_265, FindsThePlaceThatAPlainSearchFinds) {
    test::Random random(6);
    int found = 0;
    for (int round = 0; round < 20000; ++round) {
        ByteVector unit = random.Bytes(3 + random.Below(60));
        const bool hasZeros = random.OneIn(2);
        for (auto& byte : unit) {
            if (hasZeros && !random.OneIn(3)) {
                byte = random.OneIn(3) ? 1 : 0;
            }
        }
        const auto width = static_cast<std::int32_t>(1 + random.Below(6));
        const auto height = static_cast<std::int32_t>(1 + random.Below(6));
        std::size_t place = 0;
        const bool expected = PlainSearch(unit, width, height, place);
        SPS_265 sps;
        static_cast<void>(sps.Parse(unit, width, height));
        ASSERT_EQ(sps.conformance_window_flag != -1, expected) << round;
        if (expected) {
            ++found;
            BitReader behind(unit, place / 8);
            behind.MoveTo(place / 8, place % 8);
            ASSERT_EQ(sps.conformance_window_flag, static_cast<std::int32_t>(behind.ReadBit()));
        }
    }
    EXPECT_GT(found, 1000);
}

TEST(SPS_265, SearchesALargeUnitQuickly) {
    const auto start = std::chrono::steady_clock::now();
    SPS_265 sps;
    // Pairs that never fit; zeros; and codes of the longest kind.
    EXPECT_FALSE(sps.Parse(ByteVector(65535, 0x04), 1920, 1080));
    EXPECT_FALSE(sps.Parse(ByteVector(65535, 0x00), 1920, 1080));
    ByteVector half(65535, 0x00);
    std::fill(half.begin() + 32767, half.end(), std::uint8_t{0xFF});
    static_cast<void>(sps.Parse(half, 1920, 1080));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(SPS_265, ReadsNoSubLayerRoundForASingleLayer) {
    SpsFields fields;
    fields.orderingInfo = 1;
    fields.roundsWritten = 0;
    EXPECT_EQ(Parsed(fields).max_transform_hierarchy_depth_intra, 2);
    // The three values of a usual stream are taken for the next fields.
    fields.roundsWritten = 1;
    const SPS_265 sps = Parsed(fields);
    EXPECT_EQ(sps.log2_min_luma_coding_block_size_minus3, 9);
    EXPECT_EQ(sps.log2_diff_max_min_luma_coding_block_size, 9);
    EXPECT_EQ(sps.log2_min_luma_transform_block_size_minus2, 9);
    EXPECT_EQ(sps.log2_diff_max_min_luma_transform_block_size, 0);
}

TEST(SPS_265, ReadsOneRoundWithTheFlagAndAllWithout) {
    SpsFields fields;
    fields.maxSubLayersMinus1 = 2;
    fields.orderingInfo = 1;
    fields.roundsWritten = 1;
    EXPECT_EQ(Parsed(fields).max_transform_hierarchy_depth_intra, 2);
    fields.orderingInfo = 0;
    fields.roundsWritten = 3;
    EXPECT_EQ(Parsed(fields).max_transform_hierarchy_depth_intra, 2);
    // One round written where all are read: the values behind it go with it.
    fields.roundsWritten = 1;
    SPS_265 sps;
    static_cast<void>(sps.Parse(Build(fields), 1920, 1080));
    EXPECT_NE(sps.max_transform_hierarchy_depth_intra, 2);
}

TEST(SPS_265, ReadsScalingAndPcmFlags) {
    SpsFields fields;
    fields.tools = [](BitWriter& bits) {
        bits.Bit(1).Bit(0).Bit(1).Bit(1).Bit(1).Bits(7, 4).Bits(9, 4).Ue(1).Ue(2).Bit(1);
    };
    fields.pictures = [](BitWriter& bits) { bits.Ue(5).Bit(0); };
    const SPS_265 sps = Parsed(fields);
    EXPECT_EQ(sps.scaling_list_enabled_flag, 1);
    EXPECT_EQ(sps.sps_scaling_list_data_present_flag, 0);
    EXPECT_EQ(sps.amp_enabled_flag, 1);
    EXPECT_EQ(sps.sample_adaptive_offset_enabled_flag, 1);
    EXPECT_EQ(sps.pcm_enabled_flag, 1);
    EXPECT_EQ(sps.pcm_sample_bit_depth_luma_minus1, 7);
    EXPECT_EQ(sps.pcm_sample_bit_depth_chroma_minus1, 9);
    EXPECT_EQ(sps.log2_min_pcm_luma_coding_block_size_minus3, 1);
    EXPECT_EQ(sps.log2_diff_max_min_pcm_luma_coding_block_size, 2);
    EXPECT_EQ(sps.pcm_loop_filter_disabled_flag, 1);
    EXPECT_EQ(sps.num_short_term_ref_pic_sets, 5);
}

TEST(SPS_265, DoesNotReadScalingLists) {
    SpsFields fields;
    fields.tools = [](BitWriter& bits) { bits.Bit(1).Bit(1).Bits(0b110, 3); };
    const SPS_265 sps = Parsed(fields);
    EXPECT_EQ(sps.sps_scaling_list_data_present_flag, 1);
    EXPECT_EQ(sps.amp_enabled_flag, 1);
    EXPECT_EQ(sps.sample_adaptive_offset_enabled_flag, 1);
    EXPECT_EQ(sps.pcm_enabled_flag, 0);
}

TEST(SPS_265, PassesOverLongTermPicturesUpToThirtyOne) {
    for (const std::uint32_t count : {0U, 31U, 32U}) {
        SpsFields fields;
        fields.pictures = [count](BitWriter& bits) {
            bits.Ue(1).Bit(1).Ue(count);
            for (std::uint32_t i = 0; i < count; ++i) {
                bits.Bits(0xAB, 8).Bit(1);  // log2_max_pic_order_cnt_lsb_minus4 is 4
            }
        };
        fields.tail = [](BitWriter& bits) { bits.Bits(0b1010, 4); };
        SPS_265 sps;
        EXPECT_EQ(sps.Parse(Build(fields), 1920, 1080), count != 32) << count;
        EXPECT_EQ(sps.num_long_term_ref_pics_sps, static_cast<std::int32_t>(count));
        if (count != 32) {
            EXPECT_EQ(sps.sps_temporal_id_nesting_flag, 1);
            EXPECT_EQ(sps.strong_intra_smoothing_enabled_flag, 0);
            EXPECT_EQ(sps.vui_parameters_present_flag, 1);
            EXPECT_EQ(sps.sps_extension_present_flag, 0);
        }
    }
    SpsFields negative;
    negative.pictures = [](BitWriter& bits) { bits.Ue(1).Bit(1).Ue(0x80000000); };
    SPS_265 sps;
    EXPECT_FALSE(sps.Parse(Build(negative), 1920, 1080));
}

TEST(SPS_265, PutsTheTemporalPredictionFlagIntoTheNestingField) {
    SpsFields fields;
    fields.tail = [](BitWriter& bits) { bits.Bits(0b0000, 4); };
    const SPS_265 off = Parsed(fields);
    EXPECT_EQ(off.sps_temporal_id_nesting_flag, 0);  // the set's own flag is 1
    EXPECT_EQ(off.sps_temporal_mvp_enabled_flag, -1);
    fields.tail = [](BitWriter& bits) { bits.Bits(0b1000, 4); };
    const SPS_265 on = Parsed(fields);
    EXPECT_EQ(on.sps_temporal_id_nesting_flag, 1);
    EXPECT_EQ(on.sps_temporal_mvp_enabled_flag, -1);
}

TEST(SPS_265, TakesTheBitBehindTheVuiFlagWhetherThereIsVuiOrNot) {
    SpsFields fields;
    fields.tail = [](BitWriter& bits) { bits.Bits(0b0011, 4).Bits(0b1000, 4).Bits(6, 4); };
    const SPS_265 sps = Parsed(fields);
    EXPECT_EQ(sps.vui_parameters_present_flag, 1);
    EXPECT_EQ(sps.sps_extension_present_flag, 1);
    EXPECT_EQ(sps.sps_range_extension_flag, 1);
    EXPECT_EQ(sps.sps_extension_4bits, 6);
}

// The extensions of a set: their flags, and what they hold.
SPS_265 WithExtensions(unsigned flags, const std::function<void(BitWriter&)>& body) {
    SpsFields fields;
    fields.tail = [&](BitWriter& bits) {
        bits.Bits(0b0001, 4).Bits(flags, 4).Bits(0, 4);
        body(bits);
    };
    return Parsed(fields);
}

TEST(SPS_265, PassesOverTheOtherExtensionsToTheScreenContentOne) {
    const SPS_265 sps = WithExtensions(0b1111, [](BitWriter& bits) {
        bits.Bits(0x1FF, 9).Bit(1);
        bits.Bits(3, 2).Ue(5).Bits(0xF, 4).Bits(7, 3).Ue(6).Bits(0x1F, 5);
        bits.Bit(1).Bit(0).Bits(2, 2).Bit(1);
    });
    EXPECT_EQ(sps.sps_multilayer_extension_flag, 1);
    EXPECT_EQ(sps.sps_3d_extension_flag, 1);
    EXPECT_EQ(sps.sps_scc_extension_flag, 1);
    EXPECT_EQ(sps.motion_vector_resolution_control_idc, 2);
}

TEST(SPS_265, ReadsAPaletteWithoutInitialisers) {
    const SPS_265 sps = WithExtensions(
        0b0001, [](BitWriter& bits) { bits.Bit(0).Bit(1).Ue(31).Ue(32).Bit(0).Bits(1, 2).Bit(0); });
    EXPECT_EQ(sps.motion_vector_resolution_control_idc, 1);
    const SPS_265 none = WithExtensions(0b0001, [](BitWriter& bits) {
        bits.Bit(0).Bit(1).Ue(31).Ue(32).Bit(1).Ue(0).Bits(1, 2).Bit(0);
    });
    EXPECT_EQ(none.motion_vector_resolution_control_idc, 1);
}

TEST(SPS_265, EndsTheInitialisersOfAPaletteWithTheBytes) {
    const SPS_265 sps = WithExtensions(0b0001, [](BitWriter& bits) {
        bits.Bit(0).Bit(1).Ue(31).Ue(32).Bit(1).Ue(1).Bits(0xFFFFFFFF, 32);
    });
    EXPECT_EQ(sps.motion_vector_resolution_control_idc, 0);
}

TEST(SPS_265, RefusesBlocksOfNoSize) {
    SpsFields fields;
    fields.minCb = 16;
    fields.ctbDiff = 13;  // 2 to the power of 19, shifted by 13 more
    SPS_265 sps;
    EXPECT_FALSE(sps.Parse(Build(fields), 1920, 1080));
    fields.ctbDiff = 12;
    EXPECT_TRUE(sps.Parse(Build(fields), 1920, 1080));
    EXPECT_EQ(sps.picHeightRemainder, 1088);
    // Shift counts wrap at 32: a block of 2 to the power of 35 is one of 8.
    fields.minCb = 32;
    fields.ctbDiff = 35;
    EXPECT_TRUE(sps.Parse(Build(fields), 1920, 1080));
    EXPECT_EQ(sps.picWidthInMinCbs, 240);
    EXPECT_EQ(sps.picHeightRemainder, 0);
}

TEST(SPS_265, ReadsAnyBytesUnderAnyExpectation) {
    test::Random random(8);
    for (int i = 0; i < 5000; ++i) {
        SPS_265 sps;
        const auto width = static_cast<std::int32_t>(random.Below(4)) - 1;
        const auto height = static_cast<std::int32_t>(random.Below(4)) - 1;
        const bool stands = sps.Parse(random.Bytes(random.Below(60)), width, height);
        EXPECT_TRUE(!stands || sps.picHeightRemainder != -1 || sps.pic_height_in_luma_samples < 0);
    }
}

}  // namespace
}  // namespace clipfix
