// Slice headers from a plain description, as the tables of H.264 7.3.3 and 7.3.3.1 write them up to the modification of
// the lists. Whether an element that depends on a parameter set is there, and how wide it is, is the description's to
// say; context_of() in slice_context.h makes the parameter sets that agree.
#pragma once

#include "support/element_writer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace support {

/// One step of a list modification; `value` is written when the idc is 0, 1 or 2.
struct modification_step {
    std::uint32_t modification_of_pic_nums_idc;
    std::uint32_t value = 0;
};

/// ref_pic_list_modification() of one list, whose flag is whether there are steps.
struct list_modification_description {
    std::optional<std::vector<modification_step>> steps = {};
    bool ended = true; ///< by idc 3
};

inline void write(element_writer& out, const list_modification_description& list)
{
    out.flag("ref_pic_list_modification_flag", list.steps.has_value());
    if (!list.steps)
        return;
    for (std::size_t i = 0; i < list.steps->size(); ++i) {
        const modification_step& step = (*list.steps)[i];
        out.ue("modification_of_pic_nums_idc", step.modification_of_pic_nums_idc, i);
        if (step.modification_of_pic_nums_idc <= 2)
            out.ue("pic_num_value", step.value, i);
    }
    if (list.ended)
        out.ue("modification_of_pic_nums_idc", 3, list.steps->size());
}

/// slice_header()
struct slice_header_description {
    std::uint32_t first_mb_in_slice = 0;
    std::uint32_t slice_type = 7;
    std::uint32_t pic_parameter_set_id = 0;
    std::optional<unsigned int> colour_plane_id = {};
    std::uint64_t frame_num = 0;
    unsigned int frame_num_width = 4;
    std::optional<bool> field_pic_flag = {};
    bool bottom_field_flag = false;
    std::optional<std::uint32_t> idr_pic_id = {};
    std::optional<std::uint64_t> pic_order_cnt_lsb = {};
    unsigned int pic_order_cnt_lsb_width = 4;
    std::optional<std::int32_t> delta_pic_order_cnt_bottom = {};
    std::vector<std::int32_t> delta_pic_order_cnt = {}; ///< at most 2
    std::optional<std::uint32_t> redundant_pic_cnt = {};
    bool direct_spatial_mv_pred_flag = false;
    bool num_ref_idx_active_override_flag = false;
    std::uint32_t num_ref_idx_l0_active_minus1 = 0;
    std::uint32_t num_ref_idx_l1_active_minus1 = 0;
    list_modification_description ref_pic_list_modification_l0 = {};
    list_modification_description ref_pic_list_modification_l1 = {};
};

inline void write_pic_order_cnt(element_writer& out, const slice_header_description& slice)
{
    if (slice.pic_order_cnt_lsb)
        out.u("pic_order_cnt_lsb", slice.pic_order_cnt_lsb_width, *slice.pic_order_cnt_lsb);
    if (slice.delta_pic_order_cnt_bottom)
        out.se("delta_pic_order_cnt_bottom", *slice.delta_pic_order_cnt_bottom);
    for (std::size_t i = 0; i < slice.delta_pic_order_cnt.size(); ++i)
        out.se("delta_pic_order_cnt", slice.delta_pic_order_cnt[i], i);
}

inline void write_references(element_writer& out, const slice_header_description& slice, bool is_b)
{
    if (is_b)
        out.flag("direct_spatial_mv_pred_flag", slice.direct_spatial_mv_pred_flag);
    out.flag("num_ref_idx_active_override_flag", slice.num_ref_idx_active_override_flag);
    if (slice.num_ref_idx_active_override_flag) {
        out.ue("num_ref_idx_l0_active_minus1", slice.num_ref_idx_l0_active_minus1);
        if (is_b)
            out.ue("num_ref_idx_l1_active_minus1", slice.num_ref_idx_l1_active_minus1);
    }
    out.nested("ref_pic_list_modification_l0", slice.ref_pic_list_modification_l0);
    if (is_b)
        out.nested("ref_pic_list_modification_l1", slice.ref_pic_list_modification_l1);
}

inline void write(element_writer& out, const slice_header_description& slice)
{
    out.ue("first_mb_in_slice", slice.first_mb_in_slice);
    out.ue("slice_type", slice.slice_type);
    out.ue("pic_parameter_set_id", slice.pic_parameter_set_id);
    if (slice.colour_plane_id)
        out.u("colour_plane_id", 2, *slice.colour_plane_id);
    out.u("frame_num", slice.frame_num_width, slice.frame_num);
    if (slice.field_pic_flag) {
        out.flag("field_pic_flag", *slice.field_pic_flag);
        if (*slice.field_pic_flag)
            out.flag("bottom_field_flag", slice.bottom_field_flag);
    }
    if (slice.idr_pic_id)
        out.ue("idr_pic_id", *slice.idr_pic_id);
    write_pic_order_cnt(out, slice);
    if (slice.redundant_pic_cnt)
        out.ue("redundant_pic_cnt", *slice.redundant_pic_cnt);
    const std::uint32_t kind = slice.slice_type % 5;
    if (kind == 0 || kind == 1 || kind == 3)
        write_references(out, slice, kind == 1);
}

/// A slice of the type with the elements that the type alone brings, each with a value of its own.
inline slice_header_description slice_of_type(std::uint32_t slice_type)
{
    slice_header_description slice;
    slice.slice_type = slice_type;
    slice.frame_num = 9;
    slice.direct_spatial_mv_pred_flag = true;
    slice.num_ref_idx_active_override_flag = true;
    slice.num_ref_idx_l0_active_minus1 = 3;
    slice.num_ref_idx_l1_active_minus1 = 1;
    slice.ref_pic_list_modification_l0.steps = {{0, 3}, {2, 1}};
    slice.ref_pic_list_modification_l1.steps = {{1, 9}, {5}, {0, 0}, {2, 6}};
    return slice;
}

/// A B slice of a frame with every element that goes with pic_order_cnt_type 0, or 1.
inline slice_header_description full_slice(unsigned int pic_order_cnt_type)
{
    slice_header_description slice = slice_of_type(6);
    slice.first_mb_in_slice = 300;
    slice.pic_parameter_set_id = 7;
    slice.colour_plane_id = 2;
    slice.frame_num = 0x1A5;
    slice.frame_num_width = 9;
    slice.field_pic_flag = false;
    slice.idr_pic_id = 5;
    if (pic_order_cnt_type == 0) {
        slice.pic_order_cnt_lsb = 45;
        slice.pic_order_cnt_lsb_width = 6;
        slice.delta_pic_order_cnt_bottom = -3;
    } else {
        slice.delta_pic_order_cnt = {-8, 17};
    }
    slice.redundant_pic_cnt = 4;
    return slice;
}

/// The same of a bottom field, where no delta is sent for the other field.
inline slice_header_description full_field_slice(unsigned int pic_order_cnt_type)
{
    slice_header_description slice = full_slice(pic_order_cnt_type);
    slice.field_pic_flag = true;
    slice.bottom_field_flag = true;
    slice.delta_pic_order_cnt_bottom.reset();
    if (pic_order_cnt_type != 0)
        slice.delta_pic_order_cnt.pop_back();
    return slice;
}

} // namespace support
