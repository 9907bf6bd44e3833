// The texts of the SEI payloads on how pictures are laid out on a display, H.264 clauses D.1.4, D.1.22, D.1.23, D.1.26
// and D.1.27.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/sei/display.h>

namespace orv_utils_v4::h264 {

// H.264 D.1.4
template <class Coder>
void code(Coder& c, in<Coder, pan_scan_rect>& x)
{
    const auto here = c.structure("pan_scan_rect");
    c.ue("pan_scan_rect_id", x.pan_scan_rect_id);
    c.flag("pan_scan_rect_cancel_flag", x.pan_scan_rect_cancel_flag);
    if (!x.pan_scan_rect_cancel_flag) {
        c.ue_bound("pan_scan_cnt_minus1", x.pan_scan_cnt_minus1, 0, pan_scan_rect::most_rectangles - 1);
        for (std::uint32_t i = 0; i <= x.pan_scan_cnt_minus1 && c.going(); ++i) {
            c.se({"pan_scan_rect_left_offset", i}, x.pan_scan_rect_left_offset[i]);
            c.se({"pan_scan_rect_right_offset", i}, x.pan_scan_rect_right_offset[i]);
            c.se({"pan_scan_rect_top_offset", i}, x.pan_scan_rect_top_offset[i]);
            c.se({"pan_scan_rect_bottom_offset", i}, x.pan_scan_rect_bottom_offset[i]);
        }
        c.ue("pan_scan_rect_repetition_period", x.pan_scan_rect_repetition_period, 0, 16384);
    }
}

// H.264 D.1.22
template <class Coder>
void code(Coder& c, in<Coder, deblocking_filter_display_preference>& x)
{
    const auto here = c.structure("deblocking_filter_display_preference");
    c.flag("deblocking_display_preference_cancel_flag", x.deblocking_display_preference_cancel_flag);
    if (!x.deblocking_display_preference_cancel_flag) {
        c.flag("display_prior_to_deblocking_preferred_flag", x.display_prior_to_deblocking_preferred_flag);
        c.flag("dec_frame_buffering_constraint_flag", x.dec_frame_buffering_constraint_flag);
        c.ue("deblocking_display_preference_repetition_period", x.deblocking_display_preference_repetition_period, 0,
             16384);
    }
}

// H.264 D.1.23
template <class Coder>
void code(Coder& c, in<Coder, stereo_video_info>& x)
{
    const auto here = c.structure("stereo_video_info");
    c.flag("field_views_flag", x.field_views_flag);
    if (x.field_views_flag)
        c.flag("top_field_is_left_view_flag", x.top_field_is_left_view_flag);
    else {
        c.flag("current_frame_is_left_view_flag", x.current_frame_is_left_view_flag);
        c.flag("next_frame_is_second_view_flag", x.next_frame_is_second_view_flag);
    }
    c.flag("left_view_self_contained_flag", x.left_view_self_contained_flag);
    c.flag("right_view_self_contained_flag", x.right_view_self_contained_flag);
}

// H.264 D.1.26
template <class Coder>
void code(Coder& c, in<Coder, frame_packing_arrangement>& x)
{
    constexpr std::uint8_t temporal_interleaving = 5;
    const auto here = c.structure("frame_packing_arrangement");
    c.ue("frame_packing_arrangement_id", x.frame_packing_arrangement_id);
    c.flag("frame_packing_arrangement_cancel_flag", x.frame_packing_arrangement_cancel_flag);
    if (!x.frame_packing_arrangement_cancel_flag) {
        c.u(7, "frame_packing_arrangement_type", x.frame_packing_arrangement_type, 0, 7);
        c.flag("quincunx_sampling_flag", x.quincunx_sampling_flag);
        c.u(6, "content_interpretation_type", x.content_interpretation_type, 0, 2);
        c.flag("spatial_flipping_flag", x.spatial_flipping_flag);
        c.flag("frame0_flipped_flag", x.frame0_flipped_flag);
        c.flag("field_views_flag", x.field_views_flag);
        c.flag("current_frame_is_frame0_flag", x.current_frame_is_frame0_flag);
        c.flag("frame0_self_contained_flag", x.frame0_self_contained_flag);
        c.flag("frame1_self_contained_flag", x.frame1_self_contained_flag);
        if (!x.quincunx_sampling_flag && x.frame_packing_arrangement_type != temporal_interleaving) {
            c.u(4, "frame0_grid_position_x", x.frame0_grid_position_x);
            c.u(4, "frame0_grid_position_y", x.frame0_grid_position_y);
            c.u(4, "frame1_grid_position_x", x.frame1_grid_position_x);
            c.u(4, "frame1_grid_position_y", x.frame1_grid_position_y);
        }
        c.u(8, "frame_packing_arrangement_reserved_byte", x.frame_packing_arrangement_reserved_byte, 0, 0);
        c.ue("frame_packing_arrangement_repetition_period", x.frame_packing_arrangement_repetition_period, 0, 16384);
    }
    c.flag("frame_packing_arrangement_extension_flag", x.frame_packing_arrangement_extension_flag, 0, 0);
}

// H.264 D.1.27
template <class Coder>
void code(Coder& c, in<Coder, display_orientation>& x)
{
    const auto here = c.structure("display_orientation");
    c.flag("display_orientation_cancel_flag", x.display_orientation_cancel_flag);
    if (!x.display_orientation_cancel_flag) {
        c.flag("hor_flip", x.hor_flip);
        c.flag("ver_flip", x.ver_flip);
        c.u(16, "anticlockwise_rotation", x.anticlockwise_rotation);
        c.ue("display_orientation_repetition_period", x.display_orientation_repetition_period, 0, 16384);
        c.flag("display_orientation_extension_flag", x.display_orientation_extension_flag, 0, 0);
    }
}

} // namespace orv_utils_v4::h264
