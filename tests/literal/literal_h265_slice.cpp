#include <cmath>

#include "literal/literal_bits.h"
#include "literal/literal_codec.h"

namespace clipfix::test {

namespace {

// The length of a variable field of which there are `count` values.
std::int32_t FieldLength265(float count) {
    return count <= 1.0F ? 0 : static_cast<std::int32_t>(std::ceil(std::log(count)));
}

class LiteralSegment265 {
  public:
    LiteralSegment265(ByteView bytes, std::int32_t type, const SPS_265& sps, const PPS_265& pps,
                      SliceHeader_265& header)
        : bits_(bytes, 0), type_(type), sps_(sps), pps_(pps), h(header) {}

    bool Read() {
        h.first_slice_segment_in_pic_flag = bits_.U(1);
        if (type_ >= 16 && type_ <= 23) {
            h.no_output_of_prior_pics_flag = bits_.U(1);
        }
        h.slice_pic_parameter_set_id = bits_.Ue();
        if (h.slice_pic_parameter_set_id < 0 || h.slice_pic_parameter_set_id > 63) {
            return false;
        }
        if (h.first_slice_segment_in_pic_flag != 1) {
            if (pps_.dependent_slice_segments_enabled_flag != 0) {
                h.dependent_slice_segment_flag = bits_.U(1);
            }
            h.slice_segment_address =
                bits_.U(FieldLength265(static_cast<float>(sps_.picSizeInMinCbs)));
        }
        if (h.dependent_slice_segment_flag == 0 && !ReadBlock()) {
            return false;
        }
        return ReadTail();
    }

  private:
    bool ReadBlock() {
        for (std::int32_t i = 0; i < pps_.num_extra_slice_header_bits; ++i) {
            bits_.U(1);
        }
        h.slice_type = bits_.Ue();
        if (pps_.output_flag_present_flag != 0) {
            h.pic_output_flag = bits_.U(1);
        }
        if (sps_.separate_colour_plane_flag == 1) {
            h.colour_plane_id = bits_.U(2);
        }
        if (type_ != 19 && type_ != 20 && !ReadOrder()) {
            return false;
        }
        if (sps_.sample_adaptive_offset_enabled_flag == 1) {
            h.slice_sao_luma_flag = bits_.U(1);
            if (sps_.chromaArrayType != 0) {
                h.slice_sao_chroma_flag = bits_.U(1);
            }
        }
        if (h.slice_type == 1 || h.slice_type == 0) {
            ReadInter();
        }
        h.slice_qp_delta = bits_.Se();
        if (pps_.pps_slice_chroma_qp_offsets_present_flag == 1) {
            h.slice_cb_qp_offset = bits_.Se();
            h.slice_cr_qp_offset = bits_.Se();
        }
        if (pps_.pps_slice_act_qp_offsets_present_flag > 0) {
            h.slice_act_y_qp_offset = bits_.Se();
            h.slice_act_cb_qp_offset = bits_.Se();
            h.slice_act_cr_qp_offset = bits_.Se();
        }
        if (pps_.chroma_qp_offset_list_enabled_flag == 1) {
            h.cu_chroma_qp_offset_enabled_flag = bits_.U(1);
        }
        if (pps_.deblocking_filter_override_enabled_flag == 1) {
            h.deblocking_filter_override_flag = bits_.U(1);
        }
        if (h.deblocking_filter_override_flag == 1) {
            h.slice_deblocking_filter_disabled_flag = bits_.U(1);
            if (h.slice_deblocking_filter_disabled_flag == 0) {
                h.slice_beta_offset_div2 = bits_.Se();
                h.slice_tc_offset_div2 = bits_.Se();
            }
        }
        if (pps_.pps_loop_filter_across_slices_enabled_flag == 1 &&
            (h.slice_sao_luma_flag == 1 || h.slice_sao_chroma_flag == 1 ||
             h.slice_deblocking_filter_disabled_flag == 0)) {
            h.slice_loop_filter_across_slices_enabled_flag = bits_.U(1);
        }
        return true;
    }

    bool ReadOrder() {
        h.slice_pic_order_cnt_lsb =
            bits_.U(Wrapped(std::int64_t{sps_.log2_max_pic_order_cnt_lsb_minus4} + 4));
        h.short_term_ref_pic_set_sps_flag = bits_.U(1);
        if (sps_.num_short_term_ref_pic_sets > 1) {
            h.short_term_ref_pic_set_idx =
                bits_.U(FieldLength265(static_cast<float>(sps_.num_short_term_ref_pic_sets)));
        }
        if (sps_.long_term_ref_pics_present_flag == 1 && !ReadLongTerm()) {
            return false;
        }
        if (sps_.sps_temporal_mvp_enabled_flag == 1) {
            h.slice_temporal_mvp_enabled_flag = bits_.U(1);
        }
        return true;
    }

    bool ReadLongTerm() {
        if (sps_.num_long_term_ref_pics_sps > 0) {
            h.num_long_term_sps = bits_.Ue();
        }
        h.num_long_term_pics = bits_.Ue();
        const std::int32_t sum = Wrapped(std::int64_t{h.num_long_term_sps} + h.num_long_term_pics);
        if (sum > 0 &&
            (h.num_long_term_sps < 0 || h.num_long_term_sps >= sps_.num_long_term_ref_pics_sps)) {
            return false;
        }
        for (std::int32_t i = 0; i < sum; ++i) {
            const bool isAtEnd = bits_.AtEnd();  // the entries behind are all alike
            if (i < h.num_long_term_sps) {
                if (sps_.num_long_term_ref_pics_sps > 1) {
                    bits_.U(FieldLength265(static_cast<float>(sps_.num_long_term_ref_pics_sps)));
                }
            } else {
                bits_.U(FieldLength265(
                    static_cast<float>(sps_.log2_max_pic_order_cnt_lsb_minus4 + 4.0)));
                bits_.U(1);
            }
            h.delta_poc_msb_present_flag = bits_.U(1);
            if (isAtEnd) {
                break;
            }
        }
        return true;
    }

    void ReadInter() {
        h.num_ref_idx_active_override_flag = bits_.U(1);
        if (h.num_ref_idx_active_override_flag == 1) {
            h.num_ref_idx_l0_active_minus1 = bits_.Ue();
            if (h.slice_type == 1) {
                h.five_minus_max_num_merge_cand = bits_.U(1);
            }
        }
        if (h.slice_type == 0) {
            h.mvd_l1_zero_flag = bits_.U(1);
        }
        if (pps_.cabac_init_present_flag != 0) {
            h.cabac_init_flag = bits_.U(1);
        }
        if (h.slice_temporal_mvp_enabled_flag == 1) {
            if (h.slice_type == 1) {
                h.collocated_from_l0_flag = bits_.U(1);
            }
            if ((h.collocated_from_l0_flag == 1 && h.num_ref_idx_l0_active_minus1 > 0) ||
                (h.collocated_from_l0_flag == 0 && h.num_ref_idx_l1_active_minus1 > 0)) {
                h.collocated_ref_idx = bits_.Ue();
            }
        }
        h.five_minus_max_num_merge_cand = bits_.Ue();
        if (sps_.motion_vector_resolution_control_idc == 2) {
            h.use_integer_mv_flag = bits_.U(1);
        }
    }

    bool ReadTail() {
        const bool tiles = pps_.tiles_enabled_flag == 1;
        const bool wavefront = pps_.entropy_coding_sync_enabled_flag == 1;
        if (tiles || wavefront) {
            h.num_entry_point_offsets = bits_.Ue();
            const std::int32_t columns = Wrapped(std::int64_t{pps_.num_tile_columns_minus1} + 1);
            const std::int32_t rows = Wrapped(std::int64_t{pps_.num_tile_rows_minus1} + 1);
            std::int32_t limit = 0;
            if (!tiles) {
                limit = sps_.picHeightRemainder;
            } else if (!wavefront) {
                limit = Wrapped(std::int64_t{columns} * rows - 1);
            } else {
                limit = Wrapped(std::int64_t{columns} * sps_.picHeightRemainder - 1);
            }
            if (h.num_entry_point_offsets < 0 || h.num_entry_point_offsets >= limit) {
                return false;
            }
            if (h.num_entry_point_offsets > 0) {
                h.offset_len_minus1 = bits_.Ue();
            }
        }
        if (pps_.slice_segment_header_extension_present_flag == 1) {
            // The bytes that it counts stand behind everything that is kept.
            h.slice_segment_header_extension_length = bits_.Ue();
            return h.slice_segment_header_extension_length <= 256;
        }
        return true;
    }

    LiteralBits bits_;
    std::int32_t type_;
    const SPS_265& sps_;
    const PPS_265& pps_;
    SliceHeader_265& h;
};

}  // namespace

LiteralParse<SliceHeader_265> LiteralSlice265(ByteView bytes, const CNALU& nalu, const SPS_265& sps,
                                              const PPS_265& pps) {
    LiteralParse<SliceHeader_265> result;
    result.accepted = LiteralSegment265(bytes, nalu.nal_unit_type, sps, pps, result.object).Read();
    return result;
}

}  // namespace clipfix::test
