/// @file
/// Supplemental enhancement information: walking the messages of a unit, H.264 clause 7.3.2.3, and the names of payload
/// types, Annex D.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace brenik {

/// payloadType, H.264 clause D.1.1.
enum ORV_UTILS_V4_EXPORT h264_nal_sei_payload_type : std::uint32_t {
    h264_nal_sei_payload_type_buffering_period = 0,
    h264_nal_sei_payload_type_pic_timing = 1,
    h264_nal_sei_payload_type_pan_scan_rect = 2,
    h264_nal_sei_payload_type_filler_payload = 3,
    h264_nal_sei_payload_type_user_data_registered_itu_t_t35 = 4,
    h264_nal_sei_payload_type_user_data_unregistered = 5,
    h264_nal_sei_payload_type_recovery_point = 6,
    h264_nal_sei_payload_type_dec_ref_pic_marking_repetition = 7,
    h264_nal_sei_payload_type_spare_pic = 8,
    h264_nal_sei_payload_type_scene_info = 9,
    h264_nal_sei_payload_type_sub_seq_info = 10,
    h264_nal_sei_payload_type_sub_seq_layer_characteristics = 11,
    h264_nal_sei_payload_type_sub_seq_characteristics = 12,
    h264_nal_sei_payload_type_full_frame_freeze = 13,
    h264_nal_sei_payload_type_full_frame_freeze_release = 14,
    h264_nal_sei_payload_type_full_frame_snapshot = 15,
    h264_nal_sei_payload_type_progressive_refinement_segment_start = 16,
    h264_nal_sei_payload_type_progressive_refinement_segment_end = 17,
    h264_nal_sei_payload_type_motion_constrained_slice_group_set = 18,
    h264_nal_sei_payload_type_film_grain_characteristics = 19,
    h264_nal_sei_payload_type_deblocking_filter_display_preference = 20,
    h264_nal_sei_payload_type_stereo_video_info = 21,
    h264_nal_sei_payload_type_post_filter_hint = 22,
    h264_nal_sei_payload_type_tone_mapping_info = 23,
    h264_nal_sei_payload_type_scalability_info = 24,
    h264_nal_sei_payload_type_sub_pic_scalable_layer = 25,
    h264_nal_sei_payload_type_non_required_layer_rep = 26,
    h264_nal_sei_payload_type_priority_layer_info = 27,
    h264_nal_sei_payload_type_layers_not_present = 28,
    h264_nal_sei_payload_type_layer_dependency_change = 29,
    h264_nal_sei_payload_type_scalable_nesting = 30,
    h264_nal_sei_payload_type_base_layer_temporal_hrd = 31,
    h264_nal_sei_payload_type_quality_layer_integrity_check = 32,
    h264_nal_sei_payload_type_redundant_pic_property = 33,
    h264_nal_sei_payload_type_tl0_dep_rep_index = 34,
    h264_nal_sei_payload_type_tl_switching_point = 35,
    h264_nal_sei_payload_type_parallel_decoding_info = 36,
    h264_nal_sei_payload_type_mvc_scalable_nesting = 37,
    h264_nal_sei_payload_type_view_scalability_info = 38,
    h264_nal_sei_payload_type_multiview_scene_info = 39,
    h264_nal_sei_payload_type_multiview_acquisition_info = 40,
    h264_nal_sei_payload_type_non_required_view_component = 41,
    h264_nal_sei_payload_type_view_dependency_change = 42,
    h264_nal_sei_payload_type_operation_points_not_present = 43,
    h264_nal_sei_payload_type_base_view_temporal_hrd = 44,
    h264_nal_sei_payload_type_frame_packing_arrangement = 45,
    h264_nal_sei_payload_type_multiview_view_position = 46,
    h264_nal_sei_payload_type_display_orientation = 47,
    h264_nal_sei_payload_type_mvcd_scalable_nesting = 48,
    h264_nal_sei_payload_type_mvcd_view_scalability_info = 49,
    h264_nal_sei_payload_type_depth_representation_info = 50,
    h264_nal_sei_payload_type_three_dimensional_reference_displays_info = 51,
    h264_nal_sei_payload_type_depth_timing = 52,
    h264_nal_sei_payload_type_depth_sampling_info = 53,
    h264_nal_sei_payload_type_constrained_depth_parameter_set_identifier = 54,
    h264_nal_sei_payload_type_green_metadata = 56,
    h264_nal_sei_payload_type_mastering_display_colour_volume = 137,
    h264_nal_sei_payload_type_colour_remapping_info = 142,
    h264_nal_sei_payload_type_content_light_level_info = 144,
    h264_nal_sei_payload_type_alternative_transfer_characteristics = 147,
    h264_nal_sei_payload_type_ambient_viewing_environment = 148,
    h264_nal_sei_payload_type_content_colour_volume = 149,
    h264_nal_sei_payload_type_equirectangular_projection = 150,
    h264_nal_sei_payload_type_cubemap_projection = 151,
    h264_nal_sei_payload_type_sphere_rotation = 154,
    h264_nal_sei_payload_type_regionwise_packing = 155,
    h264_nal_sei_payload_type_omni_viewport = 156,
    h264_nal_sei_payload_type_alternative_depth_info = 181,
    h264_nal_sei_payload_type_sei_manifest = 200,
    h264_nal_sei_payload_type_sei_prefix_indication = 201,
    h264_nal_sei_payload_type_none = 202, ///< no message
};

/// The name of a payload type as the standard spells it; "" for a number without one. Never null, never to be freed.
ORV_UTILS_V4_EXPORT const char* h264_nal_sei_payload_type_to_str(h264_nal_sei_payload_type t);

/// Walks the sei_message() structures of one SEI RBSP (H.264 clause 7.3.2.3.1). All pointers point into the caller's
/// buffer, mostly a block of block_decode(), and hold as long as its bytes stay; what follows the payload of a message
/// in it is the next message. After a false next_message() the fields of the message must not be used.
class ORV_UTILS_V4_EXPORT h264_nal_sei_reader {
public:
    unsigned char* ptr = nullptr;           ///< where the next message begins
    unsigned char* fence = nullptr;         ///< one past the last byte of the RBSP
    unsigned char* message = nullptr;       ///< the first byte of the message
    unsigned char* payload = nullptr;       ///< the first byte of its payload
    unsigned char* payload_fence = nullptr; ///< one past the payload's last byte, at most `fence`
    h264_nal_sei_payload_type payloadType = h264_nal_sei_payload_type_none; ///< the message's type, any number
    std::uint32_t payloadSize = 0; ///< the payload's size in bytes as coded, also where less is there
    bool has_message = false;      ///< the latest next_message() found a message
    bool truncated = false;        ///< the coded size reaches beyond `fence`; the payload ends there

    /// A reader without data.
    h264_nal_sei_reader();

    /// A reader at the first message of [`start`, `end`).
    h264_nal_sei_reader(unsigned char* start, unsigned char* end);

    /// Starts over on [`start`, `end`): an SEI RBSP behind the NAL unit header. `truncated` stays as it was.
    void set_ptr(unsigned char* start, unsigned char* end);

    /// Goes to the next message.
    /// @return true when there is one, also a truncated one; false when fewer than two bytes remain, or the type or
    ///     size does not end before `fence`
    bool next_message();
};

} // namespace brenik
