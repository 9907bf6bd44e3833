/// @file
/// Supplemental enhancement information: the messages of an SEI NAL unit (type 6) and what a payload can be, H.264
/// clauses 7.3.2.3, D.1 and D.2.
#pragma once

#include <orv-utils-v4/h264_syntax/sei/annotated_regions.h>
#include <orv-utils-v4/h264_syntax/sei/colour.h>
#include <orv-utils-v4/h264_syntax/sei/depth.h>
#include <orv-utils-v4/h264_syntax/sei/display.h>
#include <orv-utils-v4/h264_syntax/sei/manifest.h>
#include <orv-utils-v4/h264_syntax/sei/multiview.h>
#include <orv-utils-v4/h264_syntax/sei/multiview_acquisition_info.h>
#include <orv-utils-v4/h264_syntax/sei/omnidirectional.h>
#include <orv-utils-v4/h264_syntax/sei/pictures.h>
#include <orv-utils-v4/h264_syntax/sei/post_processing.h>
#include <orv-utils-v4/h264_syntax/sei/scalability_info.h>
#include <orv-utils-v4/h264_syntax/sei/scalable.h>
#include <orv-utils-v4/h264_syntax/sei/sei_fwd.h>
#include <orv-utils-v4/h264_syntax/sei/sub_sequences.h>
#include <orv-utils-v4/h264_syntax/sei/timing.h>
#include <orv-utils-v4/h264_syntax/sei/user_data.h>
#include <orv-utils-v4/h264_syntax/sei/view_scalability_info.h>

#include <cstddef>
#include <cstdint>
#include <variant>
#include <vector>

namespace orv_utils_v4::h264 {

/// sei_payload(), clause D.1.1, in the order of payload types. A payload type always goes with the same alternative,
/// but for types 0, 1, 7, 8 and 18, which are payload_bytes inside a nesting message.
using sei_payload = std::variant<
    // not read: parallel decoding (36), whose table takes from later slices; green metadata (56), which the standard
    // leaves to ISO/IEC 23001-11; content colour volume (149), alternative depth (181) and shutter intervals (205), of
    // whose tables this library is not sure
    payload_bytes,
    // Annex D, types 0 to 23
    buffering_period, pic_timing, pan_scan_rect, filler_payload, user_data_registered_itu_t_t35, user_data_unregistered,
    recovery_point, dec_ref_pic_marking_repetition, spare_pic, scene_info, sub_seq_info, sub_seq_layer_characteristics,
    sub_seq_characteristics, full_frame_freeze, full_frame_freeze_release, full_frame_snapshot,
    progressive_refinement_segment_start, progressive_refinement_segment_end, motion_constrained_slice_group_set,
    film_grain_characteristics, deblocking_filter_display_preference, stereo_video_info, post_filter_hint,
    tone_mapping_info,
    // Annex D, types 45, 47 and from 137 on
    frame_packing_arrangement, display_orientation, mastering_display_colour_volume, colour_remapping_info,
    content_light_level_info, alternative_transfer_characteristics, ambient_viewing_environment,
    equirectangular_projection, cubemap_projection, sphere_rotation, regionwise_packing, omni_viewport, sei_manifest,
    sei_prefix_indication, annotated_regions,
    // Annexes G to J
    scalability_info, sub_pic_scalable_layer, non_required_layer_rep, priority_layer_info, layers_not_present,
    layer_dependency_change, scalable_nesting, base_layer_temporal_hrd, quality_layer_integrity_check,
    redundant_pic_property, tl0_dep_rep_index, tl_switching_point, mvc_scalable_nesting, view_scalability_info,
    multiview_scene_info, multiview_acquisition_info, non_required_view_component, view_dependency_change,
    operation_points_not_present, base_view_temporal_hrd, multiview_view_position, mvcd_scalable_nesting,
    mvcd_view_scalability_info, depth_representation_info, three_dimensional_reference_displays_info, depth_timing,
    depth_sampling_info, constrained_depth_parameter_set_identifier,
    // every other type
    reserved_sei_message>;

/// sei_message(), clause 7.3.2.3.1.
struct sei_message {
    std::uint32_t payload_type = 0;
    std::uint32_t payload_size = 0; ///< bytes, as it was read; a writer counts them itself
    sei_payload payload;            ///< the alternative that payload_type names
    std::vector<std::uint8_t> rest; ///< the bytes of the payload behind its own syntax and its alignment bits

    /// @cond
    // What a compiler makes of them, made once in the library: all alternatives take it long.
    ORV_UTILS_V4_EXPORT sei_message() noexcept;
    ORV_UTILS_V4_EXPORT sei_message(const sei_message&);
    ORV_UTILS_V4_EXPORT sei_message(sei_message&&) noexcept;
    ORV_UTILS_V4_EXPORT sei_message& operator=(const sei_message&);
    ORV_UTILS_V4_EXPORT sei_message& operator=(sei_message&&) noexcept;
    ORV_UTILS_V4_EXPORT ~sei_message();
    /// @endcond

    friend ORV_UTILS_V4_EXPORT bool operator==(const sei_message&, const sei_message&);
};

/// sei_rbsp(), clause 7.3.2.3: NAL unit type 6.
struct sei_rbsp {
    static constexpr std::size_t most_messages = 1024; ///< with more, nested ones among them, it is read no further

    std::vector<sei_message> sei_messages; ///< one at least

    friend ORV_UTILS_V4_EXPORT bool operator==(const sei_rbsp&, const sei_rbsp&);
};

} // namespace orv_utils_v4::h264
