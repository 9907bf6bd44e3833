// H.264 clause 7.3.2.3 and Annex D: the messages of an SEI unit, and the names of payload types.
#include <orv-utils-v4/h264/nal_sei.h>

#include <orv-utils-v4/h2645_common/advance_past.h>
#include <orv-utils-v4/h2645_common/sei_vlu32.h>

#include <algorithm>
#include <iterator>

namespace brenik {

namespace {

constexpr std::uint32_t vlu32_failed = 0xFFFFFFFF;

struct payload_name {
    h264_nal_sei_payload_type type;
    const char* name;
};

// H.264 D.1.1
constexpr payload_name payload_names[] = {
    {h264_nal_sei_payload_type_buffering_period, "buffering_period"},
    {h264_nal_sei_payload_type_pic_timing, "pic_timing"},
    {h264_nal_sei_payload_type_pan_scan_rect, "pan_scan_rect"},
    {h264_nal_sei_payload_type_filler_payload, "filler_payload"},
    {h264_nal_sei_payload_type_user_data_registered_itu_t_t35, "user_data_registered_itu_t_t35"},
    {h264_nal_sei_payload_type_user_data_unregistered, "user_data_unregistered"},
    {h264_nal_sei_payload_type_recovery_point, "recovery_point"},
    {h264_nal_sei_payload_type_dec_ref_pic_marking_repetition, "dec_ref_pic_marking_repetition"},
    {h264_nal_sei_payload_type_spare_pic, "spare_pic"},
    {h264_nal_sei_payload_type_scene_info, "scene_info"},
    {h264_nal_sei_payload_type_sub_seq_info, "sub_seq_info"},
    {h264_nal_sei_payload_type_sub_seq_layer_characteristics, "sub_seq_layer_characteristics"},
    {h264_nal_sei_payload_type_sub_seq_characteristics, "sub_seq_characteristics"},
    {h264_nal_sei_payload_type_full_frame_freeze, "full_frame_freeze"},
    {h264_nal_sei_payload_type_full_frame_freeze_release, "full_frame_freeze_release"},
    {h264_nal_sei_payload_type_full_frame_snapshot, "full_frame_snapshot"},
    {h264_nal_sei_payload_type_progressive_refinement_segment_start, "progressive_refinement_segment_start"},
    {h264_nal_sei_payload_type_progressive_refinement_segment_end, "progressive_refinement_segment_end"},
    {h264_nal_sei_payload_type_motion_constrained_slice_group_set, "motion_constrained_slice_group_set"},
    {h264_nal_sei_payload_type_film_grain_characteristics, "film_grain_characteristics"},
    {h264_nal_sei_payload_type_deblocking_filter_display_preference, "deblocking_filter_display_preference"},
    {h264_nal_sei_payload_type_stereo_video_info, "stereo_video_info"},
    {h264_nal_sei_payload_type_post_filter_hint, "post_filter_hint"},
    {h264_nal_sei_payload_type_tone_mapping_info, "tone_mapping_info"},
    {h264_nal_sei_payload_type_scalability_info, "scalability_info"},
    {h264_nal_sei_payload_type_sub_pic_scalable_layer, "sub_pic_scalable_layer"},
    {h264_nal_sei_payload_type_non_required_layer_rep, "non_required_layer_rep"},
    {h264_nal_sei_payload_type_priority_layer_info, "priority_layer_info"},
    {h264_nal_sei_payload_type_layers_not_present, "layers_not_present"},
    {h264_nal_sei_payload_type_layer_dependency_change, "layer_dependency_change"},
    {h264_nal_sei_payload_type_scalable_nesting, "scalable_nesting"},
    {h264_nal_sei_payload_type_base_layer_temporal_hrd, "base_layer_temporal_hrd"},
    {h264_nal_sei_payload_type_quality_layer_integrity_check, "quality_layer_integrity_check"},
    {h264_nal_sei_payload_type_redundant_pic_property, "redundant_pic_property"},
    {h264_nal_sei_payload_type_tl0_dep_rep_index, "tl0_dep_rep_index"},
    {h264_nal_sei_payload_type_tl_switching_point, "tl_switching_point"},
    {h264_nal_sei_payload_type_parallel_decoding_info, "parallel_decoding_info"},
    {h264_nal_sei_payload_type_mvc_scalable_nesting, "mvc_scalable_nesting"},
    {h264_nal_sei_payload_type_view_scalability_info, "view_scalability_info"},
    {h264_nal_sei_payload_type_multiview_scene_info, "multiview_scene_info"},
    {h264_nal_sei_payload_type_multiview_acquisition_info, "multiview_acquisition_info"},
    {h264_nal_sei_payload_type_non_required_view_component, "non_required_view_component"},
    {h264_nal_sei_payload_type_view_dependency_change, "view_dependency_change"},
    {h264_nal_sei_payload_type_operation_points_not_present, "operation_points_not_present"},
    {h264_nal_sei_payload_type_base_view_temporal_hrd, "base_view_temporal_hrd"},
    {h264_nal_sei_payload_type_frame_packing_arrangement, "frame_packing_arrangement"},
    {h264_nal_sei_payload_type_multiview_view_position, "multiview_view_position"},
    {h264_nal_sei_payload_type_display_orientation, "display_orientation"},
    {h264_nal_sei_payload_type_mvcd_scalable_nesting, "mvcd_scalable_nesting"},
    {h264_nal_sei_payload_type_mvcd_view_scalability_info, "mvcd_view_scalability_info"},
    {h264_nal_sei_payload_type_depth_representation_info, "depth_representation_info"},
    {h264_nal_sei_payload_type_three_dimensional_reference_displays_info, "three_dimensional_reference_displays_info"},
    {h264_nal_sei_payload_type_depth_timing, "depth_timing"},
    {h264_nal_sei_payload_type_depth_sampling_info, "depth_sampling_info"},
    {h264_nal_sei_payload_type_constrained_depth_parameter_set_identifier,
     "constrained_depth_parameter_set_identifier"},
    {h264_nal_sei_payload_type_green_metadata, "green_metadata"},
    {h264_nal_sei_payload_type_mastering_display_colour_volume, "mastering_display_colour_volume"},
    {h264_nal_sei_payload_type_colour_remapping_info, "colour_remapping_info"},
    {h264_nal_sei_payload_type_content_light_level_info, "content_light_level_info"},
    {h264_nal_sei_payload_type_alternative_transfer_characteristics, "alternative_transfer_characteristics"},
    {h264_nal_sei_payload_type_ambient_viewing_environment, "ambient_viewing_environment"},
    {h264_nal_sei_payload_type_content_colour_volume, "content_colour_volume"},
    {h264_nal_sei_payload_type_equirectangular_projection, "equirectangular_projection"},
    {h264_nal_sei_payload_type_cubemap_projection, "cubemap_projection"},
    {h264_nal_sei_payload_type_sphere_rotation, "sphere_rotation"},
    {h264_nal_sei_payload_type_regionwise_packing, "regionwise_packing"},
    {h264_nal_sei_payload_type_omni_viewport, "omni_viewport"},
    {h264_nal_sei_payload_type_alternative_depth_info, "alternative_depth_info"},
    {h264_nal_sei_payload_type_sei_manifest, "sei_manifest"},
    {h264_nal_sei_payload_type_sei_prefix_indication, "sei_prefix_indication"},
};

} // namespace

h264_nal_sei_reader::h264_nal_sei_reader() = default;

h264_nal_sei_reader::h264_nal_sei_reader(unsigned char* start, unsigned char* end)
{
    set_ptr(start, end);
}

void h264_nal_sei_reader::set_ptr(unsigned char* start, unsigned char* end)
{
    ptr = start;
    fence = end;
    message = payload = payload_fence = nullptr;
    payloadType = h264_nal_sei_payload_type_none;
    payloadSize = 0;
    has_message = false;
}

// H.264 7.3.2.3.1, sei_message()
bool h264_nal_sei_reader::next_message()
{
    constexpr std::size_t smallest_message = 2;
    truncated = false;
    has_message = false;
    if (ptr == nullptr || range_size(ptr, fence) < smallest_message)
        return false;
    message = ptr;
    const std::uint32_t type = h2645_common_read_xostylesei_vlu32(ptr, fence);
    if (type == vlu32_failed)
        return false;
    payloadType = static_cast<h264_nal_sei_payload_type>(type);
    const std::uint32_t size = h2645_common_read_xostylesei_vlu32(ptr, fence);
    if (size == vlu32_failed)
        return false;
    payloadSize = size;
    has_message = true;
    payload = ptr;
    truncated = size > range_size(payload, fence);
    payload_fence = truncated ? fence : payload + size;
    const bool only_trailing_bits = range_size(payload_fence, fence) == 1 && *payload_fence == 0x80;
    ptr = only_trailing_bits ? fence : payload_fence;
    return true;
}

const char* h264_nal_sei_payload_type_to_str(h264_nal_sei_payload_type t)
{
    const auto* const row = std::find_if(std::begin(payload_names), std::end(payload_names),
                                         [t](const payload_name& candidate) { return candidate.type == t; });
    return row == std::end(payload_names) ? "" : row->name;
}

} // namespace brenik
