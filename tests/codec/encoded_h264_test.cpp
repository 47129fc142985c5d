// Streams of libx264, held against what ffmpeg's own parser says of them. Where the sets are read
// otherwise than the standard asks, the values expected are worked out from the encoder's bits.

#include <algorithm>
#include <gtest/gtest.h>

#include "codec/avc_configuration_record.h"
#include "codec/bit_text.h"
#include "codec/encoded_stream.h"
#include "codec/h264_slice_header.h"

namespace clipfix {
namespace {

using test::BitText;
using test::Encode;
using test::EncodedStream;
using test::TracedUnit;

struct StreamCase {
    const char* name;
    std::vector<std::string> options;
};

std::string NameOf(const testing::TestParamInfo<StreamCase>& param) {
    return param.param.name;
}

std::vector<std::string> X264(std::vector<std::string> options) {
    options.insert(options.begin(), {"-c:v", "libx264", "-threads", "1"});
    return options;
}

const TracedUnit& UnitOfType(const std::vector<TracedUnit>& units, std::int64_t type) {
    for (const TracedUnit& unit : units) {
        if (unit.Value("nal_unit_type") == type) {
            return unit;
        }
    }
    ADD_FAILURE() << "no unit of type " << type;
    return units.front();
}

void ExpectSamePictureSet(const CPPS& pps, const TracedUnit& traced) {
    EXPECT_EQ(pps.pic_parameter_set_id, traced.Value("pic_parameter_set_id"));
    EXPECT_EQ(pps.seq_parameter_set_id, traced.Value("seq_parameter_set_id"));
    EXPECT_EQ(pps.entropy_coding_mode_flag, traced.Value("entropy_coding_mode_flag"));
    EXPECT_EQ(pps.bottom_field_pic_order_in_frame_present_flag,
              traced.Value("bottom_field_pic_order_in_frame_present_flag"));
    EXPECT_EQ(pps.num_slice_groups_minus1, traced.Value("num_slice_groups_minus1"));
    EXPECT_EQ(pps.num_ref_idx_l0_default_active_minus1,
              traced.Value("num_ref_idx_l0_default_active_minus1"));
    EXPECT_EQ(pps.num_ref_idx_l1_default_active_minus1,
              traced.Value("num_ref_idx_l1_default_active_minus1"));
    EXPECT_EQ(pps.weighted_pred_flag, traced.Value("weighted_pred_flag"));
    EXPECT_EQ(pps.weighted_bipred_idc, traced.Value("weighted_bipred_idc"));
    EXPECT_EQ(pps.pic_init_qp_minus26, traced.Value("pic_init_qp_minus26"));
    EXPECT_EQ(pps.pic_init_qs_minus26, traced.Value("pic_init_qs_minus26"));
    EXPECT_EQ(pps.chroma_qp_index_offset, traced.Value("chroma_qp_index_offset"));
    EXPECT_EQ(pps.deblocking_filter_control_present_flag,
              traced.Value("deblocking_filter_control_present_flag"));
    EXPECT_EQ(pps.constrained_intra_pred_flag, traced.Value("constrained_intra_pred_flag"));
    EXPECT_EQ(pps.redundant_pic_cnt_present_flag, traced.Value("redundant_pic_cnt_present_flag"));
}

std::int64_t ValueOr(const TracedUnit& traced, const std::string& name, std::int64_t other) {
    return traced.Has(name) ? traced.Value(name) : other;
}

// ---- Profiles whose sets are read as the standard has them

class PlainH264Stream : public testing::TestWithParam<StreamCase> {};

void ExpectSameSequenceSet(const CSPS& sps, const TracedUnit& traced) {
    EXPECT_EQ(sps.profile_idc, traced.Value("profile_idc"));
    EXPECT_EQ(sps.level_idc, traced.Value("level_idc"));
    EXPECT_EQ(sps.seq_parameter_set_id, traced.Value("seq_parameter_set_id"));
    EXPECT_EQ(sps.log2_max_frame_num_minus4, traced.Value("log2_max_frame_num_minus4"));
    EXPECT_EQ(sps.pic_order_cnt_type, traced.Value("pic_order_cnt_type"));
    EXPECT_EQ(sps.log2_max_pic_order_cnt_lsb_minus4,
              ValueOr(traced, "log2_max_pic_order_cnt_lsb_minus4", -1));
    EXPECT_EQ(sps.max_num_ref_frames, traced.Value("max_num_ref_frames"));
    EXPECT_EQ(sps.pic_width_in_mbs_minus1, traced.Value("pic_width_in_mbs_minus1"));
    EXPECT_EQ(sps.pic_height_in_map_units_minus1, traced.Value("pic_height_in_map_units_minus1"));
    EXPECT_EQ(sps.frame_mbs_only_flag, traced.Value("frame_mbs_only_flag"));
    EXPECT_EQ(sps.mb_adaptive_frame_field_flag, ValueOr(traced, "mb_adaptive_frame_field_flag", 0));
    EXPECT_EQ(sps.direct_8x8_inference_flag, traced.Value("direct_8x8_inference_flag"));
    EXPECT_EQ(sps.frame_cropping_flag, traced.Value("frame_cropping_flag"));
    EXPECT_EQ(sps.frame_crop_bottom_offset, ValueOr(traced, "frame_crop_bottom_offset", -1));
    EXPECT_EQ(sps.vui_parameters_present_flag, traced.Value("vui_parameters_present_flag"));
}

void ExpectSameSlice(const CSliceHeader& slice, const TracedUnit& traced) {
    EXPECT_EQ(slice.first_mb_in_slice, traced.Value("first_mb_in_slice"));
    EXPECT_EQ(slice.slice_type, traced.Value("slice_type"));
    EXPECT_EQ(slice.pic_parameter_set_id, traced.Value("pic_parameter_set_id"));
    EXPECT_EQ(slice.frame_num, traced.Value("frame_num"));
    EXPECT_EQ(slice.field_pic_flag, ValueOr(traced, "field_pic_flag", 0));
    EXPECT_EQ(slice.bottom_field_flag, ValueOr(traced, "bottom_field_flag", 0));
    EXPECT_EQ(slice.idr_pic_id, ValueOr(traced, "idr_pic_id", -1));
    EXPECT_EQ(slice.pic_order_cnt_lsb, ValueOr(traced, "pic_order_cnt_lsb", -1));
}

TEST_P(PlainH264Stream, ReadsWhatTheTracerReads) {
    const EncodedStream stream = Encode(X264(GetParam().options));
    const CAVCDecoderConfigurationRecord record(stream.Box("avcC"));
    ASSERT_TRUE(record.sps);
    ASSERT_TRUE(record.pps);
    EXPECT_EQ(record.lengthSizeMinusOne, 3);
    ExpectSameSequenceSet(*record.sps, UnitOfType(stream.recordUnits, 7));
    ExpectSamePictureSet(*record.pps, UnitOfType(stream.recordUnits, 8));

    const auto walked =
        stream.Walk({record.sps.get(), record.pps.get(), nullptr, nullptr, nullptr});
    ASSERT_EQ(walked.size(), stream.units.size());
    ASSERT_GT(walked.size(), 9U);
    for (std::size_t i = 0; i < walked.size(); ++i) {
        const CNALU& unit = walked[i];
        const TracedUnit& traced = stream.units[i];
        SCOPED_TRACE(i);
        EXPECT_EQ(unit.nal_ref_idc, traced.Value("nal_ref_idc"));
        ASSERT_EQ(unit.nal_unit_type, traced.Value("nal_unit_type"));
        if (const auto* slice = std::get_if<std::shared_ptr<const CSliceHeader>>(&unit.payload)) {
            ExpectSameSlice(**slice, traced);
            EXPECT_EQ(unit.first_mb_in_slice, traced.Value("first_mb_in_slice"));
            EXPECT_EQ(unit.slice_type, traced.Value("slice_type"));
            EXPECT_EQ(unit.frame_num, traced.Value("frame_num"));
        } else {
            EXPECT_EQ(unit.first_mb_in_slice, -1);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Encoder, PlainH264Stream,
    testing::Values(
        StreamCase{"Baseline", {"-profile:v", "baseline", "-t", "1"}},
        StreamCase{"BaselineManySlices", {"-profile:v", "baseline", "-slices", "5", "-t", "0.6"}},
        StreamCase{"MainCabac", {"-profile:v", "main", "-refs", "4", "-bf", "3", "-t", "1"}},
        StreamCase{"MainCavlc", {"-profile:v", "main", "-coder", "vlc", "-bf", "2", "-t", "1"}},
        StreamCase{"MainInterlaced", {"-profile:v", "main", "-flags", "+ilme+ildct", "-t", "1"}},
        StreamCase{"MainDelimitedShortPictures",
                   {"-profile:v", "main", "-x264-params", "aud=1:keyint=3:scenecut=0", "-t", "1"}},
        StreamCase{"MainCroppedManyReferences",
                   {"-profile:v", "main", "-vf", "scale=404:226", "-refs", "16", "-t", "1"}}),
    NameOf);

// ---- Profiles with the chroma format, of which two flags are read as codes

class HighH264Stream : public testing::TestWithParam<StreamCase> {};

TEST_P(HighH264Stream, ReadsTheTwoFlagsAsCodesAndTheFrameNumberByWhatFollows) {
    const EncodedStream stream = Encode(X264(GetParam().options));
    const CAVCDecoderConfigurationRecord record(stream.Box("avcC"));
    ASSERT_TRUE(record.sps);
    ASSERT_TRUE(record.pps);
    const TracedUnit& traced = UnitOfType(stream.recordUnits, 7);
    const CSPS& sps = *record.sps;
    EXPECT_EQ(sps.profile_idc, traced.Value("profile_idc"));
    EXPECT_EQ(sps.seq_parameter_set_id, traced.Value("seq_parameter_set_id"));
    BitText bits(traced.BitsFrom("chroma_format_idc"));
    EXPECT_EQ(sps.chroma_format_idc, bits.Ue());
    EXPECT_EQ(sps.chroma_format_idc, traced.Value("chroma_format_idc"));
    EXPECT_EQ(sps.separate_colour_plane_flag, sps.chroma_format_idc == 3 ? bits.Ue() : 0);
    EXPECT_EQ(sps.bit_depth_luma_minus8, bits.Ue());
    EXPECT_EQ(sps.bit_depth_chroma_minus8, bits.Ue());
    EXPECT_EQ(sps.qpprime_y_zero_transform_bypass_flag, bits.Ue());
    EXPECT_EQ(sps.seq_scaling_matrix_present_flag, bits.Ue());
    EXPECT_EQ(sps.log2_max_frame_num_minus4, bits.Ue());
    EXPECT_EQ(sps.pic_order_cnt_type, bits.Ue());
    if (sps.pic_order_cnt_type == 0) {
        EXPECT_EQ(sps.log2_max_pic_order_cnt_lsb_minus4, bits.Ue());
    }
    EXPECT_EQ(sps.max_num_ref_frames, bits.Ue());
    EXPECT_EQ(sps.gaps_in_frame_num_value_allowed_flag, bits.Flag());
    EXPECT_EQ(sps.pic_width_in_mbs_minus1, bits.Ue());
    EXPECT_EQ(sps.pic_height_in_map_units_minus1, bits.Ue());
    EXPECT_EQ(sps.frame_mbs_only_flag, bits.Flag());
    ExpectSamePictureSet(*record.pps, UnitOfType(stream.recordUnits, 8));

    const auto walked = stream.Walk({&sps, record.pps.get(), nullptr, nullptr, nullptr});
    ASSERT_EQ(walked.size(), stream.units.size());
    ASSERT_GT(walked.size(), 9U);
    for (std::size_t i = 0; i < walked.size(); ++i) {
        SCOPED_TRACE(i);
        ASSERT_EQ(walked[i].nal_unit_type, stream.units[i].Value("nal_unit_type"));
        if (walked[i].first_mb_in_slice == -1) {
            continue;
        }
        EXPECT_EQ(walked[i].first_mb_in_slice, stream.units[i].Value("first_mb_in_slice"));
        EXPECT_EQ(walked[i].slice_type, stream.units[i].Value("slice_type"));
        // As many bits as the set says by then, behind two of a colour plane where it has those.
        // The tracer shows the header only; a number that is longer than the rest is not compared.
        const std::string rest = stream.units[i].BitsFrom("frame_num");
        const std::int64_t plane = sps.separate_colour_plane_flag == 0 ? 0 : 2;
        const std::int64_t length = std::int64_t{sps.log2_max_frame_num_minus4} + 4;
        if (plane + length <= static_cast<std::int64_t>(rest.size())) {
            BitText text(rest);
            static_cast<void>(text.U(plane));
            // Of more than 32 bits the upper ones are added to the lower ones.
            const std::int64_t upper = text.U(std::max<std::int64_t>(length - 32, 0));
            const std::int64_t lower = text.U(std::min<std::int64_t>(length, 32));
            EXPECT_EQ(walked[i].frame_num, static_cast<std::int32_t>(upper + lower));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Encoder, HighH264Stream,
    testing::Values(StreamCase{"High", {"-profile:v", "high", "-t", "1"}},
                    StreamCase{"HighManySlices",
                               {"-profile:v", "high", "-slices", "4", "-refs", "5", "-t", "0.6"}},
                    StreamCase{"HighInterlaced",
                               {"-profile:v", "high", "-flags", "+ilme+ildct", "-t", "1"}},
                    StreamCase{"High10", {"-pix_fmt", "yuv420p10le", "-t", "0.6"}},
                    StreamCase{"High422", {"-pix_fmt", "yuv422p", "-t", "0.6"}},
                    StreamCase{"High422TenBits", {"-pix_fmt", "yuv422p10le", "-t", "0.6"}},
                    StreamCase{"High444", {"-pix_fmt", "yuv444p", "-t", "0.6"}},
                    StreamCase{"HighGray", {"-pix_fmt", "gray", "-t", "0.6"}}),
    NameOf);

}  // namespace
}  // namespace clipfix
