// H.264 clause 7.3.2.3 and Annex D: the messages of an SEI unit, and the names of payload types.
#include <orv-utils-v4/h264/nal_sei.h>

#include <orv-utils-v4/h2645_common/advance_past.h>
#include <orv-utils-v4/h2645_common/sei_vlu32.h>

namespace brenik {

namespace {

constexpr std::uint32_t vlu32_failed = 0xFFFFFFFF;

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
    switch (t) {
    case h264_nal_sei_payload_type_buffering_period:
        return "buffering_period";
    case h264_nal_sei_payload_type_pic_timing:
        return "pic_timing";
    case h264_nal_sei_payload_type_pan_scan_rect:
        return "pan_scan_rect";
    case h264_nal_sei_payload_type_filler_payload:
        return "filler_payload";
    case h264_nal_sei_payload_type_user_data_registered_itu_t_t35:
        return "user_data_registered_itu_t_t35";
    case h264_nal_sei_payload_type_user_data_unregistered:
        return "user_data_unregistered";
    case h264_nal_sei_payload_type_recovery_point:
        return "recovery_point";
    case h264_nal_sei_payload_type_dec_ref_pic_marking_repetition:
        return "dec_ref_pic_marking_repetition";
    case h264_nal_sei_payload_type_spare_pic:
        return "spare_pic";
    case h264_nal_sei_payload_type_scene_info:
        return "scene_info";
    case h264_nal_sei_payload_type_sub_seq_info:
        return "sub_seq_info";
    case h264_nal_sei_payload_type_sub_seq_layer_characteristics:
        return "sub_seq_layer_characteristics";
    case h264_nal_sei_payload_type_sub_seq_characteristics:
        return "sub_seq_characteristics";
    case h264_nal_sei_payload_type_full_frame_freeze:
        return "full_frame_freeze";
    case h264_nal_sei_payload_type_full_frame_freeze_release:
        return "full_frame_freeze_release";
    case h264_nal_sei_payload_type_full_frame_snapshot:
        return "full_frame_snapshot";
    case h264_nal_sei_payload_type_progressive_refinement_segment_start:
        return "progressive_refinement_segment_start";
    case h264_nal_sei_payload_type_progressive_refinement_segment_end:
        return "progressive_refinement_segment_end";
    case h264_nal_sei_payload_type_motion_constrained_slice_group_set:
        return "motion_constrained_slice_group_set";
    case h264_nal_sei_payload_type_film_grain_characteristics:
        return "film_grain_characteristics";
    case h264_nal_sei_payload_type_deblocking_filter_display_preference:
        return "deblocking_filter_display_preference";
    case h264_nal_sei_payload_type_stereo_video_info:
        return "stereo_video_info";
    case h264_nal_sei_payload_type_post_filter_hint:
        return "post_filter_hint";
    case h264_nal_sei_payload_type_tone_mapping_info:
        return "tone_mapping_info";
    case h264_nal_sei_payload_type_scalability_info:
        return "scalability_info";
    case h264_nal_sei_payload_type_sub_pic_scalable_layer:
        return "sub_pic_scalable_layer";
    case h264_nal_sei_payload_type_non_required_layer_rep:
        return "non_required_layer_rep";
    case h264_nal_sei_payload_type_priority_layer_info:
        return "priority_layer_info";
    case h264_nal_sei_payload_type_layers_not_present:
        return "layers_not_present";
    case h264_nal_sei_payload_type_layer_dependency_change:
        return "layer_dependency_change";
    case h264_nal_sei_payload_type_scalable_nesting:
        return "scalable_nesting";
    case h264_nal_sei_payload_type_base_layer_temporal_hrd:
        return "base_layer_temporal_hrd";
    case h264_nal_sei_payload_type_quality_layer_integrity_check:
        return "quality_layer_integrity_check";
    case h264_nal_sei_payload_type_redundant_pic_property:
        return "redundant_pic_property";
    case h264_nal_sei_payload_type_tl0_dep_rep_index:
        return "tl0_dep_rep_index";
    case h264_nal_sei_payload_type_tl_switching_point:
        return "tl_switching_point";
    case h264_nal_sei_payload_type_parallel_decoding_info:
        return "parallel_decoding_info";
    case h264_nal_sei_payload_type_mvc_scalable_nesting:
        return "mvc_scalable_nesting";
    case h264_nal_sei_payload_type_view_scalability_info:
        return "view_scalability_info";
    case h264_nal_sei_payload_type_multiview_scene_info:
        return "multiview_scene_info";
    case h264_nal_sei_payload_type_multiview_acquisition_info:
        return "multiview_acquisition_info";
    case h264_nal_sei_payload_type_non_required_view_component:
        return "non_required_view_component";
    case h264_nal_sei_payload_type_view_dependency_change:
        return "view_dependency_change";
    case h264_nal_sei_payload_type_operation_points_not_present:
        return "operation_points_not_present";
    case h264_nal_sei_payload_type_base_view_temporal_hrd:
        return "base_view_temporal_hrd";
    case h264_nal_sei_payload_type_frame_packing_arrangement:
        return "frame_packing_arrangement";
    case h264_nal_sei_payload_type_multiview_view_position:
        return "multiview_view_position";
    case h264_nal_sei_payload_type_display_orientation:
        return "display_orientation";
    case h264_nal_sei_payload_type_mvcd_scalable_nesting:
        return "mvcd_scalable_nesting";
    case h264_nal_sei_payload_type_mvcd_view_scalability_info:
        return "mvcd_view_scalability_info";
    case h264_nal_sei_payload_type_depth_representation_info:
        return "depth_representation_info";
    case h264_nal_sei_payload_type_three_dimensional_reference_displays_info:
        return "three_dimensional_reference_displays_info";
    case h264_nal_sei_payload_type_depth_timing:
        return "depth_timing";
    case h264_nal_sei_payload_type_depth_sampling_info:
        return "depth_sampling_info";
    case h264_nal_sei_payload_type_constrained_depth_parameter_set_identifier:
        return "constrained_depth_parameter_set_identifier";
    case h264_nal_sei_payload_type_green_metadata:
        return "green_metadata";
    case h264_nal_sei_payload_type_mastering_display_colour_volume:
        return "mastering_display_colour_volume";
    case h264_nal_sei_payload_type_colour_remapping_info:
        return "colour_remapping_info";
    case h264_nal_sei_payload_type_content_light_level_info:
        return "content_light_level_info";
    case h264_nal_sei_payload_type_alternative_transfer_characteristics:
        return "alternative_transfer_characteristics";
    case h264_nal_sei_payload_type_ambient_viewing_environment:
        return "ambient_viewing_environment";
    case h264_nal_sei_payload_type_content_colour_volume:
        return "content_colour_volume";
    case h264_nal_sei_payload_type_equirectangular_projection:
        return "equirectangular_projection";
    case h264_nal_sei_payload_type_cubemap_projection:
        return "cubemap_projection";
    case h264_nal_sei_payload_type_sphere_rotation:
        return "sphere_rotation";
    case h264_nal_sei_payload_type_regionwise_packing:
        return "regionwise_packing";
    case h264_nal_sei_payload_type_omni_viewport:
        return "omni_viewport";
    case h264_nal_sei_payload_type_alternative_depth_info:
        return "alternative_depth_info";
    case h264_nal_sei_payload_type_sei_manifest:
        return "sei_manifest";
    case h264_nal_sei_payload_type_sei_prefix_indication:
        return "sei_prefix_indication";
    case h264_nal_sei_payload_type_none:
        break;
    }
    return "";
}

} // namespace brenik
