/// @file
/// SEI payloads of H.264 Annex D on how decoded pictures are laid out on a display: pan-scan, deblocking, stereo video
/// and frame packing, orientation (2, 20, 21, 45, 47).
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// pan_scan_rect(), clauses D.1.4 and D.2.4: payload 2.
struct pan_scan_rect {
    static constexpr std::uint32_t most_rectangles = 3;

    std::uint32_t pan_scan_rect_id = 0;
    bool pan_scan_rect_cancel_flag = false;
    std::uint32_t pan_scan_cnt_minus1 = 0;                        ///< 0 to 2
    std::int32_t pan_scan_rect_left_offset[most_rectangles] = {}; ///< sixteenths of a luma sample, as those below
    std::int32_t pan_scan_rect_right_offset[most_rectangles] = {};
    std::int32_t pan_scan_rect_top_offset[most_rectangles] = {};
    std::int32_t pan_scan_rect_bottom_offset[most_rectangles] = {};
    std::uint32_t pan_scan_rect_repetition_period = 0; ///< 0 to 16384

    friend ORV_UTILS_V4_EXPORT bool operator==(const pan_scan_rect&, const pan_scan_rect&);
};

/// deblocking_filter_display_preference(), clauses D.1.22 and D.2.22: payload 20.
struct deblocking_filter_display_preference {
    bool deblocking_display_preference_cancel_flag = false;
    bool display_prior_to_deblocking_preferred_flag = false;
    bool dec_frame_buffering_constraint_flag = false;
    std::uint32_t deblocking_display_preference_repetition_period = 0; ///< 0 to 16384

    friend ORV_UTILS_V4_EXPORT bool operator==(const deblocking_filter_display_preference&,
                                               const deblocking_filter_display_preference&);
};

/// stereo_video_info(), clauses D.1.23 and D.2.23: payload 21.
struct stereo_video_info {
    bool field_views_flag = false;
    bool top_field_is_left_view_flag = false;
    bool current_frame_is_left_view_flag = false;
    bool next_frame_is_second_view_flag = false;
    bool left_view_self_contained_flag = false;
    bool right_view_self_contained_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const stereo_video_info&, const stereo_video_info&);
};

/// frame_packing_arrangement(), clauses D.1.26 and D.2.26: payload 45.
struct frame_packing_arrangement {
    std::uint32_t frame_packing_arrangement_id = 0;
    bool frame_packing_arrangement_cancel_flag = false;
    std::uint8_t frame_packing_arrangement_type = 0; ///< 0 to 7
    bool quincunx_sampling_flag = false;
    std::uint8_t content_interpretation_type = 0; ///< 0 to 2
    bool spatial_flipping_flag = false;
    bool frame0_flipped_flag = false;
    bool field_views_flag = false;
    bool current_frame_is_frame0_flag = false;
    bool frame0_self_contained_flag = false;
    bool frame1_self_contained_flag = false;
    std::uint8_t frame0_grid_position_x = 0; ///< 0 to 15, as those below
    std::uint8_t frame0_grid_position_y = 0;
    std::uint8_t frame1_grid_position_x = 0;
    std::uint8_t frame1_grid_position_y = 0;
    std::uint8_t frame_packing_arrangement_reserved_byte = 0;
    std::uint32_t frame_packing_arrangement_repetition_period = 0; ///< 0 to 16384
    bool frame_packing_arrangement_extension_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const frame_packing_arrangement&, const frame_packing_arrangement&);
};

/// display_orientation(), clauses D.1.27 and D.2.27: payload 47.
struct display_orientation {
    bool display_orientation_cancel_flag = false;
    bool hor_flip = false;
    bool ver_flip = false;
    std::uint16_t anticlockwise_rotation = 0;                ///< units of 360 / 65536 degrees
    std::uint32_t display_orientation_repetition_period = 0; ///< 0 to 16384
    bool display_orientation_extension_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const display_orientation&, const display_orientation&);
};

} // namespace orv_utils_v4::h264
