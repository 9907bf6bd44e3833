// Rules over picture parameter sets: what the profile of their SPS allows (H.264 7.4.2.2, A.2).
#include "check/facts.h"
#include "check/profile_numbers.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// Baseline, Main or Extended, and the streams that say that decoders of these read them.
bool without_high_tools(const h264::seq_parameter_set_data& sps)
{
    return sps.profile_idc == baseline || sps.profile_idc == main_profile || sps.profile_idc == extended;
}

verdict cabac_in_profile(const pps_facts& f)
{
    const unsigned profile = f.sps.profile_idc;
    if (!f.pps.entropy_coding_mode_flag || (profile != baseline && profile != extended && profile != cavlc_444))
        return {};
    return breach_of("entropy_coding_mode_flag", 1, fmt::format("0 in the {} profile", h264::profile_name(f.sps)));
}

verdict weights_in_baseline(const pps_facts& f)
{
    if (f.sps.profile_idc != baseline || (!f.pps.weighted_pred_flag && f.pps.weighted_bipred_idc == 0))
        return {};
    return f.pps.weighted_pred_flag
               ? breach_of("weighted_pred_flag", 1, "0 in the Baseline profile")
               : breach_of("weighted_bipred_idc", f.pps.weighted_bipred_idc, "0 in the Baseline profile");
}

verdict slice_groups_in_profile(const pps_facts& f)
{
    const bool constrained = f.sps.profile_idc == baseline && f.sps.constraint_set1_flag;
    const bool allowed = (f.sps.profile_idc == baseline && !constrained) || f.sps.profile_idc == extended;
    if (allowed || f.pps.num_slice_groups_minus1 == 0)
        return {};
    return breach_of("num_slice_groups_minus1", f.pps.num_slice_groups_minus1,
                     fmt::format("0 in the {} profile", h264::profile_name(f.sps)));
}

verdict redundant_pictures_in_profile(const pps_facts& f)
{
    const bool constrained = f.sps.profile_idc == baseline && f.sps.constraint_set1_flag;
    const bool allowed = (f.sps.profile_idc == baseline && !constrained) || f.sps.profile_idc == extended;
    if (allowed || !f.pps.redundant_pic_cnt_present_flag)
        return {};
    return breach_of("redundant_pic_cnt_present_flag", 1,
                     fmt::format("0 in the {} profile", h264::profile_name(f.sps)));
}

verdict large_transform_in_profile(const pps_facts& f)
{
    if (!without_high_tools(f.sps) || !f.pps.transform_8x8_mode_flag)
        return {};
    return breach_of("transform_8x8_mode_flag", 1, fmt::format("0 in the {} profile", h264::profile_name(f.sps)));
}

verdict scaling_in_profile(const pps_facts& f)
{
    if (!without_high_tools(f.sps) || !f.pps.pic_scaling_matrix_present_flag)
        return {};
    return breach_of("pic_scaling_matrix_present_flag", 1,
                     fmt::format("0 in the {} profile", h264::profile_name(f.sps)));
}

verdict second_offset_in_profile(const pps_facts& f)
{
    if (!without_high_tools(f.sps) || f.pps.second_chroma_qp_index_offset == f.pps.chroma_qp_index_offset)
        return {};
    return breach{"second_chroma_qp_index_offset", fmt::format("{}", f.pps.second_chroma_qp_index_offset),
                  fmt::format("chroma_qp_index_offset {} in the {} profile", f.pps.chroma_qp_index_offset,
                              h264::profile_name(f.sps))};
}

verdict rectangles_inside_picture(const pps_facts& f)
{
    constexpr std::uint32_t foreground = 2;
    if (f.pps.num_slice_groups_minus1 == 0 || f.pps.slice_group_map_type != foreground)
        return {};
    const std::uint64_t width = h264::PicWidthInMbs(f.sps);
    const std::uint32_t groups =
        std::min(f.pps.num_slice_groups_minus1, h264::pic_parameter_set_rbsp::most_slice_groups);
    for (std::uint32_t i = 0; i < groups; ++i) {
        const std::uint64_t from = f.pps.top_left[i];
        const std::uint64_t to = f.pps.bottom_right[i];
        if (to >= h264::PicSizeInMapUnits(f.sps))
            return breach_of(fmt::format("bottom_right[{}]", i), static_cast<std::int64_t>(to),
                             fmt::format("below PicSizeInMapUnits {}", h264::PicSizeInMapUnits(f.sps)));
        if (from > to || from % width > to % width)
            return breach{fmt::format("top_left[{}]", i), fmt::format("{}", from),
                          fmt::format("above and left of bottom_right {}", to)};
    }
    return {};
}

verdict map_has_the_picture(const pps_facts& f)
{
    constexpr std::uint32_t explicit_map = 6;
    const bool sent = f.pps.num_slice_groups_minus1 != 0 && f.pps.slice_group_map_type == explicit_map;
    if (!sent || f.pps.pic_size_in_map_units_minus1 + std::uint64_t{1} == h264::PicSizeInMapUnits(f.sps))
        return {};
    return breach_of("pic_size_in_map_units_minus1", f.pps.pic_size_in_map_units_minus1,
                     fmt::format("PicSizeInMapUnits - 1, {}", h264::PicSizeInMapUnits(f.sps) - 1));
}

using enum severity;

constexpr rule_over<pps_facts> of_pps[] = {
    {{"pps-rectangles-inside-picture", error, "7.4.2.2", "slice groups of type 2 are rectangles of the picture",
      "A corner outside leaves macroblocks in no group.", "bottom_right 400 in a picture of 99 map units"},
     rectangles_inside_picture},
    {{"pps-map-has-the-picture", error, "7.4.2.2", "a slice group map of type 6 has an entry for each map unit",
      "pic_size_in_map_units_minus1 has to be what the SPS says.", "pic_size_in_map_units_minus1 9 for 99 map units"},
     map_has_the_picture},
    {{"pps-cabac-in-profile", error, "A.2", "entropy_coding_mode_flag is 0 where the profile knows CAVLC alone",
      "Decoders of Baseline, Extended and CAVLC 4:4:4 Intra cannot read the slices.",
      "profile_idc 66, entropy_coding_mode_flag 1"},
     cabac_in_profile},
    {{"pps-weights-in-baseline", error, "A.2.1", "Baseline streams predict without weights",
      "Weighted prediction begins with Main and Extended.", "profile_idc 66, weighted_pred_flag 1"},
     weights_in_baseline},
    {{"pps-slice-groups-in-profile", error, "A.2", "only Baseline and Extended have slice groups",
      "Constrained Baseline, which most decoders stop at, has none either.",
      "profile_idc 77, num_slice_groups_minus1 1"},
     slice_groups_in_profile},
    {{"pps-redundant-pictures-in-profile", error, "A.2", "only Baseline and Extended have redundant pictures",
      "Constrained Baseline has none either.", "profile_idc 77, redundant_pic_cnt_present_flag 1"},
     redundant_pictures_in_profile},
    {{"pps-large-transform-in-profile", error, "A.2", "the 8x8 transform begins with the High profile",
      "Decoders of Baseline, Main and Extended cannot read the slices.", "profile_idc 77, transform_8x8_mode_flag 1"},
     large_transform_in_profile},
    {{"pps-scaling-in-profile", error, "A.2", "scaling lists begin with the High profile",
      "Decoders of Baseline, Main and Extended know the flat ones alone.",
      "profile_idc 77, pic_scaling_matrix_present_flag 1"},
     scaling_in_profile},
    {{"pps-second-offset-in-profile", error, "A.2", "a quantiser of Cr that differs from that of Cb begins with High",
      "Decoders of Baseline, Main and Extended have one offset for both.",
      "profile_idc 77, second_chroma_qp_index_offset 2, chroma_qp_index_offset 0"},
     second_offset_in_profile},
};

} // namespace

std::span<const rule_over<pps_facts>> pps_rules()
{
    return of_pps;
}

} // namespace orv_h264
