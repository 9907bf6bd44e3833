/// @file
/// SEI payloads of H.264 Annex D on single pictures and on runs of them: recovery, spare pictures, scenes, freezes,
/// refinement, slice groups (6 to 9, 13 to 18).
#pragma once

#include <orv-utils-v4/h264_syntax/pic_parameter_set.h>
#include <orv-utils-v4/h264_syntax/slice_header.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// recovery_point(), clauses D.1.8 and D.2.8: payload 6.
struct recovery_point {
    std::uint32_t recovery_frame_cnt = 0; ///< 0 to MaxFrameNum - 1
    bool exact_match_flag = false;
    bool broken_link_flag = false;
    std::uint8_t changing_slice_group_idc = 0; ///< 0 to 2

    friend ORV_UTILS_V4_EXPORT bool operator==(const recovery_point&, const recovery_point&);
};

/// dec_ref_pic_marking_repetition(), clauses D.1.9 and D.2.9: payload 7.
struct dec_ref_pic_marking_repetition {
    bool original_idr_flag = false;
    std::uint32_t original_frame_num = 0; ///< 0 to MaxFrameNum - 1
    bool original_field_pic_flag = false;
    bool original_bottom_field_flag = false;
    h264::dec_ref_pic_marking dec_ref_pic_marking;

    friend ORV_UTILS_V4_EXPORT bool operator==(const dec_ref_pic_marking_repetition&,
                                               const dec_ref_pic_marking_repetition&);
};

/// A picture that spare_pic() names, and where it stands in for the target picture.
struct spare_picture {
    std::uint32_t delta_spare_frame_num = 0; ///< 0 to MaxFrameNum - 1, in frames to one less
    bool spare_bottom_field_flag = false;
    std::uint32_t spare_area_idc = 0;           ///< 0 to 2
    std::vector<std::uint8_t> spare_unit_flag;  ///< with spare_area_idc 1: one a slice group map unit
    std::vector<std::uint32_t> zero_run_length; ///< with spare_area_idc 2: runs along a box-out scan

    friend ORV_UTILS_V4_EXPORT bool operator==(const spare_picture&, const spare_picture&);
};

/// spare_pic(), clauses D.1.10 and D.2.10: payload 8.
struct spare_pic {
    static constexpr std::uint32_t most_pictures = 16;

    std::uint32_t target_frame_num = 0; ///< 0 to MaxFrameNum - 1
    bool spare_field_flag = false;
    bool target_bottom_field_flag = false;
    std::uint32_t num_spare_pics_minus1 = 0; ///< 0 to 15
    std::vector<spare_picture> pictures;     ///< num_spare_pics_minus1 + 1

    friend ORV_UTILS_V4_EXPORT bool operator==(const spare_pic&, const spare_pic&);
};

/// scene_info(), clauses D.1.11 and D.2.11: payload 9.
struct scene_info {
    bool scene_info_present_flag = false;
    std::uint32_t scene_id = 0;
    std::uint32_t scene_transition_type = 0; ///< 0 to 6, Table D-4
    std::uint32_t second_scene_id = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const scene_info&, const scene_info&);
};

/// full_frame_freeze(), clauses D.1.15 and D.2.15: payload 13.
struct full_frame_freeze {
    std::uint32_t full_frame_freeze_repetition_period = 0; ///< 0 to 16384

    friend ORV_UTILS_V4_EXPORT bool operator==(const full_frame_freeze&, const full_frame_freeze&);
};

/// full_frame_freeze_release(), clause D.1.16: payload 14, which has no element.
struct full_frame_freeze_release {
    friend ORV_UTILS_V4_EXPORT bool operator==(const full_frame_freeze_release&, const full_frame_freeze_release&);
};

/// full_frame_snapshot(), clause D.1.17: payload 15.
struct full_frame_snapshot {
    std::uint32_t snapshot_id = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const full_frame_snapshot&, const full_frame_snapshot&);
};

/// progressive_refinement_segment_start(), clauses D.1.18 and D.2.18: payload 16.
struct progressive_refinement_segment_start {
    std::uint32_t progressive_refinement_id = 0;
    std::uint32_t num_refinement_steps_minus1 = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const progressive_refinement_segment_start&,
                                               const progressive_refinement_segment_start&);
};

/// progressive_refinement_segment_end(), clause D.1.19: payload 17.
struct progressive_refinement_segment_end {
    std::uint32_t progressive_refinement_id = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const progressive_refinement_segment_end&,
                                               const progressive_refinement_segment_end&);
};

/// motion_constrained_slice_group_set(), clauses D.1.20 and D.2.20: payload 18.
struct motion_constrained_slice_group_set {
    std::uint32_t num_slice_groups_in_set_minus1 = 0; ///< 0 to num_slice_groups_minus1
    /// num_slice_groups_in_set_minus1 + 1 of them; none when the PPS has one slice group alone.
    bounded_list<std::uint8_t, pic_parameter_set_rbsp::most_slice_groups> slice_group_id;
    bool exact_sample_value_match_flag = false;
    bool pan_scan_rect_flag = false;
    std::uint32_t pan_scan_rect_id = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const motion_constrained_slice_group_set&,
                                               const motion_constrained_slice_group_set&);
};

} // namespace orv_utils_v4::h264
