// The texts of the SEI payloads on pictures and runs of them, H.264 clauses D.1.8 to D.1.11 and D.1.15 to D.1.20.
#pragma once

#include "texts/sei/from_sets.h"
#include "texts/slice_header.h"

#include <orv-utils-v4/h264_syntax/sei/pictures.h>

namespace orv_utils_v4::h264 {

// H.264 D.1.8
template <class Coder>
void code(Coder& c, in<Coder, recovery_point>& x, const sei_context& context)
{
    const auto here = c.structure("recovery_point");
    c.ue("recovery_frame_cnt", x.recovery_frame_cnt, 0, highest_frame_num(context.sps));
    c.flag("exact_match_flag", x.exact_match_flag);
    c.flag("broken_link_flag", x.broken_link_flag);
    c.u(2, "changing_slice_group_idc", x.changing_slice_group_idc, 0, 2);
}

// H.264 D.1.9
template <class Coder>
void code(Coder& c, in<Coder, dec_ref_pic_marking_repetition>& x, const sei_context& context)
{
    const auto here = c.structure("dec_ref_pic_marking_repetition");
    if (context.sps == nullptr)
        return c.fail(reason::no_sps, "original_idr_flag");
    c.flag("original_idr_flag", x.original_idr_flag);
    c.ue("original_frame_num", x.original_frame_num, 0, highest_frame_num(context.sps));
    if (!context.sps->frame_mbs_only_flag) {
        c.flag("original_field_pic_flag", x.original_field_pic_flag);
        if (x.original_field_pic_flag)
            c.flag("original_bottom_field_flag", x.original_bottom_field_flag);
    }
    slice_header original; // as much of it as the marking asks for
    original.field_pic_flag = x.original_field_pic_flag;
    code(c, x.dec_ref_pic_marking, original, *context.sps, x.original_idr_flag);
}

// H.264 D.1.10, the map units of spare picture i
template <class Coder>
void code_spare_area(Coder& c, in<Coder, spare_picture>& x, std::uint32_t i, const seq_parameter_set_data* sps)
{
    if (x.spare_area_idc != 1 && x.spare_area_idc != 2)
        return;
    if (sps == nullptr)
        return c.fail(reason::no_sps, {"spare_area_idc", i});
    const std::uint64_t size = PicSizeInMapUnits(*sps);
    if (x.spare_area_idc == 1) {
        c.count({"spare_unit_flag", i}, x.spare_unit_flag, size);
        for (std::uint32_t j = 0; j < x.spare_unit_flag.size() && c.going(); ++j)
            c.u(1, {"spare_unit_flag", i, j}, x.spare_unit_flag[j]);
    } else {
        std::uint32_t j = 0;
        for (std::uint64_t mapUnitCnt = 0; mapUnitCnt < size && c.going(); ++j) {
            auto* const zero_run_length = c.append({"zero_run_length", i}, x.zero_run_length, j);
            if (zero_run_length == nullptr)
                return;
            c.ue({"zero_run_length", i, j}, *zero_run_length);
            mapUnitCnt += std::uint64_t{*zero_run_length} + 1;
        }
        c.entries_end({"zero_run_length", i}, x.zero_run_length, j);
    }
}

// H.264 D.1.10
template <class Coder>
void code(Coder& c, in<Coder, spare_pic>& x, const sei_context& context)
{
    const auto here = c.structure("spare_pic");
    const std::int64_t highest = highest_frame_num(context.sps);
    c.ue("target_frame_num", x.target_frame_num, 0, highest);
    c.flag("spare_field_flag", x.spare_field_flag);
    if (x.spare_field_flag)
        c.flag("target_bottom_field_flag", x.target_bottom_field_flag);
    c.ue_bound("num_spare_pics_minus1", x.num_spare_pics_minus1, 0, spare_pic::most_pictures - 1);
    c.count("delta_spare_frame_num", x.pictures, std::uint64_t{x.num_spare_pics_minus1} + 1);
    for (std::uint32_t i = 0; i < x.pictures.size() && c.going(); ++i) {
        auto& picture = x.pictures[i];
        c.ue({"delta_spare_frame_num", i}, picture.delta_spare_frame_num, 0, highest - (x.spare_field_flag ? 0 : 1));
        if (x.spare_field_flag)
            c.flag({"spare_bottom_field_flag", i}, picture.spare_bottom_field_flag);
        c.ue({"spare_area_idc", i}, picture.spare_area_idc, 0, 2);
        code_spare_area(c, picture, i, context.sps);
    }
}

// H.264 D.1.11
template <class Coder>
void code(Coder& c, in<Coder, scene_info>& x)
{
    const auto here = c.structure("scene_info");
    c.flag("scene_info_present_flag", x.scene_info_present_flag);
    if (x.scene_info_present_flag) {
        c.ue("scene_id", x.scene_id);
        c.ue("scene_transition_type", x.scene_transition_type, 0, 6);
        if (x.scene_transition_type > 3)
            c.ue("second_scene_id", x.second_scene_id);
    }
}

// H.264 D.1.15
template <class Coder>
void code(Coder& c, in<Coder, full_frame_freeze>& x)
{
    const auto here = c.structure("full_frame_freeze");
    c.ue("full_frame_freeze_repetition_period", x.full_frame_freeze_repetition_period, 0, 16384);
}

// H.264 D.1.16
template <class Coder>
void code(Coder& c, in<Coder, full_frame_freeze_release>&)
{
    const auto here = c.structure("full_frame_freeze_release");
}

// H.264 D.1.17
template <class Coder>
void code(Coder& c, in<Coder, full_frame_snapshot>& x)
{
    const auto here = c.structure("full_frame_snapshot");
    c.ue("snapshot_id", x.snapshot_id);
}

// H.264 D.1.18
template <class Coder>
void code(Coder& c, in<Coder, progressive_refinement_segment_start>& x)
{
    const auto here = c.structure("progressive_refinement_segment_start");
    c.ue("progressive_refinement_id", x.progressive_refinement_id);
    c.ue("num_refinement_steps_minus1", x.num_refinement_steps_minus1);
}

// H.264 D.1.19
template <class Coder>
void code(Coder& c, in<Coder, progressive_refinement_segment_end>& x)
{
    const auto here = c.structure("progressive_refinement_segment_end");
    c.ue("progressive_refinement_id", x.progressive_refinement_id);
}

// H.264 D.1.20
template <class Coder>
void code(Coder& c, in<Coder, motion_constrained_slice_group_set>& x, const sei_context& context)
{
    const auto here = c.structure("motion_constrained_slice_group_set");
    if (context.pps == nullptr)
        return c.fail(reason::no_pps, "num_slice_groups_in_set_minus1");
    const std::uint32_t num_slice_groups_minus1 = context.pps->num_slice_groups_minus1;
    c.ue("num_slice_groups_in_set_minus1", x.num_slice_groups_in_set_minus1, 0, num_slice_groups_minus1);
    std::uint32_t sent = 0;
    if (num_slice_groups_minus1 > 0) {
        const unsigned length = Ceil_Log2(std::uint64_t{num_slice_groups_minus1} + 1);
        for (; sent <= x.num_slice_groups_in_set_minus1 && c.going(); ++sent) {
            auto& slice_group_id = c.entry("slice_group_id", x.slice_group_id, sent);
            c.u_v(length, {"slice_group_id", sent}, slice_group_id, 0, num_slice_groups_minus1);
        }
    }
    c.entries_end("slice_group_id", x.slice_group_id, sent);
    c.flag("exact_sample_value_match_flag", x.exact_sample_value_match_flag);
    c.flag("pan_scan_rect_flag", x.pan_scan_rect_flag);
    if (x.pan_scan_rect_flag)
        c.ue("pan_scan_rect_id", x.pan_scan_rect_id);
}

} // namespace orv_utils_v4::h264
