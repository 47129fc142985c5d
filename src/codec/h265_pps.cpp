#include "codec/h265_pps.h"

#include "codec/h265_sps.h"
#include "codec/syntax_reader.h"

namespace clipfix {

namespace {

// Passes over `count` values that nothing keeps. At the end of the bytes the rest are all 0.
void SkipCodes(SyntaxReader& in, std::int32_t count) {
    for (std::int32_t i = 0; i < count && !in.AtLimit(); ++i) {
        in.SkipUe();
    }
}

}  // namespace

// H.265, 7.3.2.3.
bool PPS_265::Parse(ByteView unit, const SPS_265* sps) {
    *this = PPS_265{};
    static_cast<NalHead265&>(*this) = NalHead265::From(unit);
    SyntaxReader in(unit, 2);
    ReadCodingTools(in);
    if (tiles_enabled_flag == 1 && !ReadTiles(in, sps)) {
        return false;
    }
    ReadFilters(in);
    pps_extension_present_flag = in.Flag();
    if (pps_extension_present_flag == 1) {
        pps_range_extension_flag = in.Flag();
        pps_multilayer_extension_flag = in.Flag();
        pps_3d_extension_flag = in.Flag();
        pps_scc_extension_flag = in.Flag();
        pps_extension_4bits = in.U(4);
    }
    if (pps_range_extension_flag == 1) {
        ReadRangeExtension(in);
    }
    return true;
}

void PPS_265::ReadCodingTools(SyntaxReader& in) {
    pps_pic_parameter_set_id = in.Ue();
    pps_seq_parameter_set_id = in.Ue();
    dependent_slice_segments_enabled_flag = in.Flag();
    output_flag_present_flag = in.Flag();
    num_extra_slice_header_bits = in.U(3);
    sign_data_hiding_enabled_flag = in.Flag();
    cabac_init_present_flag = in.Flag();
    num_ref_idx_l0_default_active_minus1 = in.Ue();
    num_ref_idx_l1_default_active_minus1 = in.Ue();
    init_qp_minus26 = in.Se();
    constrained_intra_pred_flag = in.Flag();
    transform_skip_enabled_flag = in.Flag();
    cu_qp_delta_enabled_flag = in.Flag();
    if (cu_qp_delta_enabled_flag == 1) {
        diff_cu_qp_delta_depth = in.Ue();
    }
    pps_cb_qp_offset = in.Se();
    pps_cr_qp_offset = in.Se();
    pps_slice_chroma_qp_offsets_present_flag = in.Flag();
    weighted_pred_flag = in.Flag();
    weighted_bipred_flag = in.Flag();
    transquant_bypass_enabled_flag = in.Flag();
    tiles_enabled_flag = in.Flag();
    entropy_coding_sync_enabled_flag = in.Flag();
}

bool PPS_265::ReadTiles(SyntaxReader& in, const SPS_265* sps) {
    num_tile_columns_minus1 = in.Ue();
    num_tile_rows_minus1 = in.Ue();
    uniform_spacing_flag = in.Flag();
    if (uniform_spacing_flag == 0) {
        if (sps == nullptr || num_tile_columns_minus1 < 0) {
            return false;
        }
        if (num_tile_columns_minus1 > 0) {
            if (num_tile_columns_minus1 >= sps->picWidthInMinCbs) {
                return false;
            }
            SkipCodes(in, num_tile_columns_minus1);
        }
        SkipCodes(in, num_tile_rows_minus1);
    }
    // The standard has this flag only with more than one tile, which tiles_enabled_flag promises.
    loop_filter_across_tiles_enabled_flag = in.Flag();
    return true;
}

void PPS_265::ReadFilters(SyntaxReader& in) {
    pps_loop_filter_across_slices_enabled_flag = in.Flag();
    deblocking_filter_control_present_flag = in.Flag();
    if (deblocking_filter_control_present_flag == 1) {
        deblocking_filter_override_enabled_flag = in.Flag();
        pps_deblocking_filter_disabled_flag = in.Flag();
        if (pps_deblocking_filter_disabled_flag == 0) {
            pps_beta_offset_div2 = in.Se();
            pps_tc_offset_div2 = in.Se();
        }
    }
    // The scaling list data are not read, whatever the flag says.
    pps_scaling_list_data_present_flag = in.Flag();
    lists_modification_present_flag = in.Flag();
    log2_parallel_merge_level_minus2 = in.Ue();
    slice_segment_header_extension_present_flag = in.Flag();
}

// H.265, 7.3.2.3.2. Only one of its flags is kept, and nothing behind the block is read: the rest
// of it cannot be told apart from not having been read.
void PPS_265::ReadRangeExtension(SyntaxReader& in) {
    if (transform_skip_enabled_flag == 1) {
        in.SkipUe();
    }
    in.SkipBits(1);
    chroma_qp_offset_list_enabled_flag = in.Flag();
}

}  // namespace clipfix
