#include "codec/h265_vps.h"

#include "codec/syntax_reader.h"

namespace clipfix {

namespace {

// Where reading goes on behind `profile_tier_level`, in bytes: 3 places behind the last byte 3 that
// stands between two bytes 0, or at the head of the unit if there is none. The structure itself is
// never read. Both are meant.
std::size_t FindPlaceBehindProfile(ByteView unit, std::size_t from) {
    std::size_t place = 0;
    for (std::size_t i = from; i + 1 < unit.size(); ++i) {
        if (unit[i] == 3 && i > 0 && unit[i - 1] == 0 && unit[i + 1] == 0) {
            place = i + 3;
        }
    }
    return place;
}

}  // namespace

// H.265, 7.3.2.1.
bool CVPS::Parse(ByteView unit) {
    *this = CVPS{};
    static_cast<NalHead265&>(*this) = NalHead265::From(unit);
    SyntaxReader in(unit, 2);
    vps_video_parameter_set_id = in.U(4);
    vps_base_layer_internal_flag = in.Flag();
    vps_base_layer_available_flag = in.Flag();
    vps_max_layers_minus1 = in.U(6);
    vps_max_sub_layers_minus1 = in.U(3);
    vps_temporal_id_nesting_flag = in.Flag();
    vps_reserved_0xffff_16bits = in.U(16);
    in.MoveTo(FindPlaceBehindProfile(unit, in.BytePosition()), in.BitPosition());
    // The standard has no such condition; the flag is meant to steer the block.
    if (vps_base_layer_internal_flag == 1) {
        vps_sub_layer_ordering_info_present_flag = in.Flag();
        const auto subLayers = static_cast<std::size_t>(vps_max_sub_layers_minus1) + 1;
        vps_max_dec_pic_buffering_minus1.resize(subLayers);
        vps_max_num_reorder_pics.resize(subLayers);
        vps_max_latency_increase_plus1.resize(subLayers);
        const std::size_t first = vps_sub_layer_ordering_info_present_flag == 1 ? 0 : subLayers - 1;
        for (std::size_t i = first; i < subLayers; ++i) {
            vps_max_dec_pic_buffering_minus1[i] = static_cast<std::uint8_t>(in.ReadUe());
            vps_max_num_reorder_pics[i] = static_cast<std::uint8_t>(in.ReadUe());
            vps_max_latency_increase_plus1[i] = static_cast<std::uint8_t>(in.ReadUe());
        }
    }
    vps_max_layer_id = in.U(6);
    vps_num_layer_sets_minus1 = in.Ue();
    return vps_num_layer_sets_minus1 <= 1023;
}

}  // namespace clipfix
