#include "repeated_names.h"

#include <algorithm>
#include <iterator>

namespace orv_h264 {

namespace {

/// Elements whose loop has no index in the standard, by structure.
constexpr std::string_view repeated_elements[] = {
    "annotated_regions.ar_bit_equal_to_zero",
    "annotated_regions.ar_bounding_box_cancel_flag",
    "annotated_regions.ar_bounding_box_height",
    "annotated_regions.ar_bounding_box_left",
    "annotated_regions.ar_bounding_box_top",
    "annotated_regions.ar_bounding_box_update_flag",
    "annotated_regions.ar_bounding_box_width",
    "annotated_regions.ar_label",
    "annotated_regions.ar_label_cancel_flag",
    "annotated_regions.ar_object_cancel_flag",
    "annotated_regions.ar_object_confidence",
    "annotated_regions.ar_object_label_idx",
    "annotated_regions.ar_object_label_update_flag",
    "annotated_regions.ar_partial_object_flag",
    "buffering_period.initial_cpb_removal_delay",
    "buffering_period.initial_cpb_removal_delay_offset",
    "dec_ref_base_pic_marking.difference_of_base_pic_nums_minus1",
    "dec_ref_base_pic_marking.long_term_base_pic_num",
    "dec_ref_base_pic_marking.memory_management_base_control_operation",
    "dec_ref_pic_marking.difference_of_pic_nums_minus1",
    "dec_ref_pic_marking.long_term_frame_idx",
    "dec_ref_pic_marking.long_term_pic_num",
    "dec_ref_pic_marking.max_long_term_frame_idx_plus1",
    "dec_ref_pic_marking.memory_management_control_operation",
    "depth_parameter_set_rbsp.depth_param_additional_extension_data_flag",
    "pic_timing.cnt_dropped_flag",
    "pic_timing.counting_type",
    "pic_timing.ct_type",
    "pic_timing.discontinuity_flag",
    "pic_timing.full_timestamp_flag",
    "pic_timing.hours_flag",
    "pic_timing.hours_value",
    "pic_timing.minutes_flag",
    "pic_timing.minutes_value",
    "pic_timing.n_frames",
    "pic_timing.nuit_field_based_flag",
    "pic_timing.seconds_flag",
    "pic_timing.seconds_value",
    "pic_timing.time_offset",
    "prefix_nal_unit_svc.additional_prefix_nal_unit_extension_data_flag",
    "ref_pic_list_modification.abs_diff_pic_num_minus1",
    "ref_pic_list_modification.long_term_pic_num",
    "ref_pic_list_modification.modification_of_pic_nums_idc",
    "ref_pic_list_mvc_modification.abs_diff_pic_num_minus1",
    "ref_pic_list_mvc_modification.abs_diff_view_idx_minus1",
    "ref_pic_list_mvc_modification.long_term_pic_num",
    "ref_pic_list_mvc_modification.modification_of_pic_nums_idc",
    "seq_parameter_set_3davc_extension.grid_pos_x",
    "seq_parameter_set_3davc_extension.grid_pos_y",
    "sub_seq_characteristics.ref_sub_seq_direction",
    "sub_seq_characteristics.ref_sub_seq_id",
    "sub_seq_characteristics.ref_sub_seq_layer_num",
    "sub_seq_layer_characteristics.accurate_statistics_flag",
    "sub_seq_layer_characteristics.average_bit_rate",
    "sub_seq_layer_characteristics.average_frame_rate",
    "subset_seq_parameter_set_rbsp.additional_extension2_data_flag",
    "vsp_param.disparity_diff_oji", // its indices do not rise
    "vsp_param.disparity_diff_wji",
};
static_assert(std::is_sorted(std::begin(repeated_elements), std::end(repeated_elements)));

/// Structures that one structure may have several of.
constexpr std::string_view repeated_structures[] = {
    "3dv_acquisition_element",
    "depth_grid_position",
    "depth_representation_sei_element",
    "depth_timing_offset",
    "hrd_parameters",
    "mvcd_op_view_info",
    "scaling_list",
    "sei_message",
};
static_assert(std::is_sorted(std::begin(repeated_structures), std::end(repeated_structures)));

} // namespace

// They stand behind the place where the structure's name alone would: nothing in a name is below the dot.
repeated_names::repeated_names(std::string_view structure) : skipped(structure.size() + 1)
{
    const auto is_of_it = [structure](std::string_view name) {
        return name.size() > structure.size() && name[structure.size()] == '.' && name.starts_with(structure);
    };
    const auto* const first = std::lower_bound(std::begin(repeated_elements), std::end(repeated_elements), structure);
    const auto* behind = first;
    while (behind != std::end(repeated_elements) && is_of_it(*behind))
        ++behind;
    names = {first, behind};
}

bool repeated_names::has(std::string_view element) const
{
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view name) { return name.substr(skipped) == element; });
}

bool is_repeated_element(std::string_view structure, std::string_view element)
{
    return repeated_names(structure).has(element);
}

bool is_repeated_structure(std::string_view structure)
{
    return std::binary_search(std::begin(repeated_structures), std::end(repeated_structures), structure);
}

} // namespace orv_h264
