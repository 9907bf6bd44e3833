// The clauses of H.264 that the structures of the texts come from. Each is the one above its text, which
// tests/docs/check-clauses holds it against.
#include <orv-utils-v4/h264_syntax/clauses.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace orv_utils_v4::h264 {

namespace {

struct clause_row {
    std::string_view structure;
    const char* clause;
};

constexpr clause_row clauses[] = {
    {"3dv_acquisition_element", "J.7.3.2.13.2"},
    {"access_unit_delimiter_rbsp", "7.3.2.4"},
    {"alternative_transfer_characteristics", "D.1"},
    {"ambient_viewing_environment", "D.1"},
    {"annotated_regions", "D.1"},
    {"base_layer_temporal_hrd", "G.13.1.8"},
    {"base_view_temporal_hrd", "H.13.1.9"},
    {"buffering_period", "D.1.2"},
    {"colour_remapping_info", "D.1"},
    {"constrained_depth_parameter_set_identifier", "J.13.1"},
    {"content_light_level_info", "D.1"},
    {"cubemap_projection", "D.1"},
    {"deblocking_filter_display_preference", "D.1.22"},
    {"dec_ref_base_pic_marking", "G.7.3.3.5"},
    {"dec_ref_pic_marking", "7.3.3.3"},
    {"dec_ref_pic_marking_repetition", "D.1.9"},
    {"depth_grid_position", "I.13.1"},
    {"depth_parameter_set_rbsp", "J.7.3.2.13"},
    {"depth_ranges", "J.7.3.2.13.1"},
    {"depth_representation_info", "I.13.1"},
    {"depth_representation_sei_element", "I.13.1"},
    {"depth_sampling_info", "I.13.1"},
    {"depth_timing", "I.13.1"},
    {"depth_timing_offset", "I.13.1"},
    {"display_orientation", "D.1.27"},
    {"end_of_seq_rbsp", "7.3.2.5"},
    {"end_of_stream_rbsp", "7.3.2.6"},
    {"equirectangular_projection", "D.1"},
    {"filler_data_rbsp", "7.3.2.7"},
    {"filler_payload", "D.1.5"},
    {"film_grain_characteristics", "D.1.21"},
    {"frame_packing_arrangement", "D.1.26"},
    {"full_frame_freeze", "D.1.15"},
    {"full_frame_freeze_release", "D.1.16"},
    {"full_frame_snapshot", "D.1.17"},
    {"hrd_parameters", "E.1.2"},
    {"layer_dependency_change", "G.13.1.6"},
    {"layers_not_present", "G.13.1.5"},
    {"mastering_display_colour_volume", "D.1"},
    {"motion_constrained_slice_group_set", "D.1.20"},
    {"multiview_acquisition_info", "H.13.1.5"},
    {"multiview_scene_info", "H.13.1.4"},
    {"multiview_view_position", "H.13.1.10"},
    {"mvc_scalable_nesting", "H.13.1.2"},
    {"mvc_vui_parameters_extension", "H.14.1"},
    {"mvcd_op_view_info", "I.13.1"},
    {"mvcd_scalable_nesting", "I.13.1"},
    {"mvcd_view_scalability_info", "I.13.1"},
    {"mvcd_vui_parameters_extension", "I.14.1"},
    {"nal_unit", "7.3.1"},
    {"nal_unit_header_3davc_extension", "J.7.3.1.1"},
    {"nal_unit_header_mvc_extension", "H.7.3.1.1"},
    {"nal_unit_header_svc_extension", "G.7.3.1.1"},
    {"non_required_layer_rep", "G.13.1.3"},
    {"non_required_view_component", "H.13.1.6"},
    {"omni_viewport", "D.1"},
    {"operation_points_not_present", "H.13.1.8"},
    {"pan_scan_rect", "D.1.4"},
    {"pic_parameter_set_rbsp", "7.3.2.2"},
    {"pic_timing", "D.1.3"},
    {"post_filter_hint", "D.1.24"},
    {"pred_weight_table", "7.3.3.2"},
    {"prefix_nal_unit_rbsp", "7.3.2.12"},
    {"prefix_nal_unit_svc", "G.7.3.2.12.1"},
    {"priority_layer_info", "G.13.1.4"},
    {"progressive_refinement_segment_end", "D.1.19"},
    {"progressive_refinement_segment_start", "D.1.18"},
    {"quality_layer_integrity_check", "G.13.1.9"},
    {"rbsp_trailing_bits", "7.3.2.11"},
    {"recovery_point", "D.1.8"},
    {"redundant_pic_property", "G.13.1.10"},
    {"ref_pic_list_modification", "7.3.3.1"},
    {"ref_pic_list_mvc_modification", "H.7.3.3.1.1"},
    {"regionwise_packing", "D.1"},
    {"reserved_sei_message", "D.1"},
    {"scalability_info", "G.13.1.1"},
    {"scalable_nesting", "G.13.1.7"},
    {"scaling_list", "7.3.2.1.1.1"},
    {"scene_info", "D.1.11"},
    {"sei_manifest", "D.1"},
    {"sei_message", "7.3.2.3.1"},
    {"sei_payload", "D.1.1"},
    {"sei_prefix_indication", "D.1"},
    {"sei_rbsp", "7.3.2.3"},
    {"seq_parameter_set_3davc_extension", "J.7.3.2.1.6"},
    {"seq_parameter_set_data", "7.3.2.1.1"},
    {"seq_parameter_set_extension_rbsp", "7.3.2.1.2"},
    {"seq_parameter_set_mvc_extension", "H.7.3.2.1.4"},
    {"seq_parameter_set_mvcd_extension", "I.7.3.2.1.5"},
    {"seq_parameter_set_rbsp", "7.3.2.1"},
    {"seq_parameter_set_svc_extension", "G.7.3.2.1.4"},
    {"slice_data", "7.3.4"},
    {"slice_data_in_3davc_extension", "J.7.3.4"},
    {"slice_data_in_scalable_extension", "G.7.3.4"},
    {"slice_data_partition_a_layer_rbsp", "7.3.2.9.1"},
    {"slice_data_partition_b_layer_rbsp", "7.3.2.9.2"},
    {"slice_data_partition_c_layer_rbsp", "7.3.2.9.3"},
    {"slice_header", "7.3.3"},
    {"slice_header_in_3davc_extension", "J.7.3.3.4"},
    {"slice_header_in_scalable_extension", "G.7.3.3.4"},
    {"slice_layer_extension_rbsp", "7.3.2.13"},
    {"slice_layer_without_partitioning_rbsp", "7.3.2.8"},
    {"spare_pic", "D.1.10"},
    {"sphere_rotation", "D.1"},
    {"stereo_video_info", "D.1.23"},
    {"sub_pic_scalable_layer", "G.13.1.2"},
    {"sub_seq_characteristics", "D.1.14"},
    {"sub_seq_info", "D.1.12"},
    {"sub_seq_layer_characteristics", "D.1.13"},
    {"subset_seq_parameter_set_rbsp", "7.3.2.1.3"},
    {"svc_vui_parameters_extension", "G.14.1"},
    {"three_dimensional_reference_displays_info", "I.13.1"},
    {"tl0_dep_rep_index", "G.13.1.11"},
    {"tl_switching_point", "G.13.1.12"},
    {"tone_mapping_info", "D.1.25"},
    {"user_data_registered_itu_t_t35", "D.1.6"},
    {"user_data_unregistered", "D.1.7"},
    {"view_dependency_change", "H.13.1.7"},
    {"view_scalability_info", "H.13.1.3"},
    {"vsp_param", "J.7.3.2.13.3"},
    {"vui_parameters", "E.1.1"},
};

constexpr bool before(const clause_row& a, const clause_row& b)
{
    return a.structure < b.structure;
}
static_assert(std::is_sorted(std::begin(clauses), std::end(clauses), before));

using clause_text = std::array<char, 16>;

/// Syntax and semantics are numbered alike: 7.3 and 7.4, n.13.1 and n.13.2, D.1 and D.2. Behind the letter of the annex
/// it is the second number that tells them apart, but where the first is 1 (D, E) that one.
constexpr clause_text semantics_beside(std::string_view clause)
{
    const std::size_t first = clause.find('.') == 1 && clause[0] > '9' ? 2 : 0;
    const bool single = clause.substr(first, 2) == "1" || clause.substr(first, 2) == "1.";
    const std::size_t counted = single ? first : clause.find('.', first) + 1;
    clause_text text = {};
    std::copy(clause.begin(), clause.end(), text.begin());
    ++text[counted];
    return text;
}

constexpr auto semantics = [] {
    std::array<clause_text, std::size(clauses)> all = {};
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = semantics_beside(clauses[i].clause);
    return all;
}();

/// Its row, or the number of rows.
std::size_t row_of(std::string_view structure) noexcept
{
    const clause_row* const row =
        std::lower_bound(std::begin(clauses), std::end(clauses), clause_row{structure, ""}, before);
    const bool found = row != std::end(clauses) && row->structure == structure;
    return found ? static_cast<std::size_t>(row - clauses) : std::size(clauses);
}

} // namespace

const char* clause_of(const char* structure) noexcept
{
    const std::size_t row = row_of(structure);
    return row == std::size(clauses) ? "" : clauses[row].clause;
}

const char* semantics_of(const char* structure) noexcept
{
    const std::size_t row = row_of(structure);
    return row == std::size(clauses) ? "" : semantics[row].data();
}

} // namespace orv_utils_v4::h264
