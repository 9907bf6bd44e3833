#include "edit/decoding_facts.h"

#include "edit/picture_numbers.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

namespace orv_h264 {

namespace {

using setting = slice_setting;

bool same_scaling_lists(const setting& a, const setting& b)
{
    const h264::scaling_lists before = h264::scaling_lists_of(a.sps, &a.pps);
    const h264::scaling_lists after = h264::scaling_lists_of(b.sps, &b.pps);
    return std::memcmp(&before, &after, sizeof before) == 0;
}

// H.264 8.2.2
bool same_slice_groups(const setting& a, const setting& b)
{
    const h264::pic_parameter_set_rbsp& x = a.pps;
    const h264::pic_parameter_set_rbsp& y = b.pps;
    return x.num_slice_groups_minus1 == y.num_slice_groups_minus1 && x.slice_group_map_type == y.slice_group_map_type &&
           std::equal(std::begin(x.run_length_minus1), std::end(x.run_length_minus1), y.run_length_minus1) &&
           std::equal(std::begin(x.top_left), std::end(x.top_left), y.top_left) &&
           std::equal(std::begin(x.bottom_right), std::end(x.bottom_right), y.bottom_right) &&
           x.slice_group_change_direction_flag == y.slice_group_change_direction_flag &&
           x.slice_group_change_rate_minus1 == y.slice_group_change_rate_minus1 && x.slice_group_id == y.slice_group_id;
}

std::int64_t qp_of(const setting& s)
{
    return std::int64_t{s.pps.pic_init_qp_minus26} + s.slice.slice_qp_delta;
}

std::int64_t qs_of(const setting& s)
{
    return std::int64_t{s.pps.pic_init_qs_minus26} + s.slice.slice_qs_delta;
}

bool is_inter(const setting& s)
{
    return s.slice.kind() != h264::slice_kind::I && s.slice.kind() != h264::slice_kind::SI;
}

bool same_references(const setting& a, const setting& b)
{
    return !is_inter(a) || (a.slice.num_ref_idx_l0_active_minus1 == b.slice.num_ref_idx_l0_active_minus1 &&
                            (a.slice.kind() != h264::slice_kind::B ||
                             a.slice.num_ref_idx_l1_active_minus1 == b.slice.num_ref_idx_l1_active_minus1));
}

bool same_modifications(const setting& a, const setting& b)
{
    const h264::ref_pic_list_modification& before = a.slice.ref_pic_list_modification;
    const h264::ref_pic_list_modification& after = b.slice.ref_pic_list_modification;
    const bool field = a.slice.field_pic_flag;
    return name_the_same(before.l0, a.sps, after.l0, b.sps, field) &&
           name_the_same(before.l1, a.sps, after.l1, b.sps, field);
}

/// A fact of one member.
#define SAME(expression) [](const setting& a, const setting& b) { return a.expression == b.expression; }

// Clauses: 7.3.4 and 7.3.5 for what slice data are read with, 8 for what they are decoded with.
constexpr decoding_fact facts_of_sets[] = {
    {"entropy_coding_mode_flag", "7.3.4, 9.3", true, SAME(pps.entropy_coding_mode_flag)},
    {"chroma_format_idc", "7.3.5", true, SAME(sps.chroma_format_idc)},
    {"separate_colour_plane_flag", "7.4.2.1.1", true, SAME(sps.separate_colour_plane_flag)},
    {"bit_depth_luma_minus8", "7.3.5, 8.5", true, SAME(sps.bit_depth_luma_minus8)},
    {"bit_depth_chroma_minus8", "7.3.5, 8.5", true, SAME(sps.bit_depth_chroma_minus8)},
    {"pic_width_in_mbs_minus1", "6.4, 7.3.4", true, SAME(sps.pic_width_in_mbs_minus1)},
    {"pic_height_in_map_units_minus1", "6.4, 7.3.4", true, SAME(sps.pic_height_in_map_units_minus1)},
    {"frame_mbs_only_flag", "6.4, 7.3.4", true, SAME(sps.frame_mbs_only_flag)},
    {"mb_adaptive_frame_field_flag", "7.3.4", true, SAME(sps.mb_adaptive_frame_field_flag)},
    {"direct_8x8_inference_flag", "7.3.5, 8.4.1.2", true, SAME(sps.direct_8x8_inference_flag)},
    {"transform_8x8_mode_flag", "7.3.5", true, SAME(pps.transform_8x8_mode_flag)},
    {"slice groups", "7.3.4, 8.2.2", true, same_slice_groups},
    {"qpprime_y_zero_transform_bypass_flag", "8.5.15", false, SAME(sps.qpprime_y_zero_transform_bypass_flag)},
    {"scaling lists", "8.5.9", false, same_scaling_lists},
    {"max_num_ref_frames", "8.2.5.3", false, SAME(sps.max_num_ref_frames)},
    {"weighted_pred_flag", "8.4.2.3", false, SAME(pps.weighted_pred_flag)},
    {"weighted_bipred_idc", "8.4.2.3", false, SAME(pps.weighted_bipred_idc)},
    {"chroma_qp_index_offset", "8.5.8", false, SAME(pps.chroma_qp_index_offset)},
    {"second_chroma_qp_index_offset", "8.5.8", false, SAME(pps.second_chroma_qp_index_offset)},
    {"constrained_intra_pred_flag", "7.3.5, 8.3.1", true, SAME(pps.constrained_intra_pred_flag)},
};

constexpr decoding_fact facts_of_slices[] = {
    {"first_mb_in_slice", "7.3.4", true, SAME(slice.first_mb_in_slice)},
    {"slice_type", "7.3.5", true, SAME(slice.kind())},
    {"field_pic_flag", "7.3.4", true, SAME(slice.field_pic_flag)},
    {"bottom_field_flag", "8.2.1", false, SAME(slice.bottom_field_flag)},
    {"colour_plane_id", "7.4.3", false, SAME(slice.colour_plane_id)},
    {"number of active references", "7.3.5.1", true, same_references},
    {"cabac_init_idc", "9.3.1.1", true, SAME(slice.cabac_init_idc)},
    {"SliceQPY", "7.4.3, 9.3.1.1", false, [](const setting& a, const setting& b) { return qp_of(a) == qp_of(b); }},
    {"QSY", "7.4.3", false,
     [](const setting& a, const setting& b) {
         const bool used = a.slice.kind() == h264::slice_kind::SP || a.slice.kind() == h264::slice_kind::SI;
         return !used || qs_of(a) == qs_of(b);
     }},
    {"direct_spatial_mv_pred_flag", "8.4.1.2", false, SAME(slice.direct_spatial_mv_pred_flag)},
    {"reference list modification", "8.2.4.3", false, same_modifications},
    {"prediction weights", "8.4.2.3", false, SAME(slice.pred_weight_table)},
    {"nal_ref_idc", "7.4.1, 8.2.5", false,
     [](const setting& a, const setting& b) { return (a.header.nal_ref_idc == 0) == (b.header.nal_ref_idc == 0); }},
    {"decoded reference picture marking", "8.2.5", false, SAME(slice.dec_ref_pic_marking)},
    {"redundant_pic_cnt", "7.4.3", false, SAME(slice.redundant_pic_cnt)},
    {"sp_for_switch_flag", "8.6", false, SAME(slice.sp_for_switch_flag)},
    {"disable_deblocking_filter_idc", "8.7", false, SAME(slice.disable_deblocking_filter_idc)},
    {"slice_alpha_c0_offset_div2", "8.7.2.2", false, SAME(slice.slice_alpha_c0_offset_div2)},
    {"slice_beta_offset_div2", "8.7.2.2", false, SAME(slice.slice_beta_offset_div2)},
    {"slice_group_change_cycle", "8.2.2", true, SAME(slice.slice_group_change_cycle)},
};

#undef SAME

template <std::size_t N>
const decoding_fact* first_of(const decoding_fact (&facts)[N], const setting& before, const setting& after)
{
    const auto* const found = std::find_if(std::begin(facts), std::end(facts),
                                           [&](const decoding_fact& fact) { return !fact.same(before, after); });
    return found == std::end(facts) ? nullptr : found;
}

constexpr inferred_value inferred_values[] = {
    {"redundant_pic_cnt", 0},
    {"delta_pic_order_cnt_bottom", 0},
    {"delta_pic_order_cnt", 0},
    {"field_pic_flag", 0},
    {"bottom_field_flag", 0},
    {"disable_deblocking_filter_idc", 0},
    {"slice_alpha_c0_offset_div2", 0},
    {"slice_beta_offset_div2", 0},
    {"time_offset", 0},
};

} // namespace

const decoding_fact* first_difference(const slice_setting& before, const slice_setting& after)
{
    const decoding_fact* const of_sets = first_of(facts_of_sets, before, after);
    return of_sets != nullptr ? of_sets : first_of(facts_of_slices, before, after);
}

const decoding_fact* first_difference(const h264::pic_parameter_set_rbsp& pps, const h264::seq_parameter_set_data& sps,
                                      const h264::pic_parameter_set_rbsp& new_pps,
                                      const h264::seq_parameter_set_data& new_sps)
{
    static const h264::nal_unit_header no_header;
    static const h264::slice_header no_slice;
    return first_of(facts_of_sets, {no_header, no_slice, pps, sps}, {no_header, no_slice, new_pps, new_sps});
}

const inferred_value* inferred_value_of(const char* element_name)
{
    const auto* const found =
        std::find_if(std::begin(inferred_values), std::end(inferred_values),
                     [&](const inferred_value& row) { return std::string_view(row.name) == element_name; });
    return found == std::end(inferred_values) ? nullptr : found;
}

} // namespace orv_h264
