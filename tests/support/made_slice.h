// Slices in a few words: idr(), reference(3, 6), bottom(other(4, 9)), with(reference(1), {forget_all()}). A slice is of
// a frame, intra, and begins with macroblock 0.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <initializer_list>

namespace orv_utils_v4::h264 {

struct made_slice {
    unsigned nal_unit_type = 1;
    unsigned nal_ref_idc = 1;
    slice_header header;

    bool idr() const { return nal_unit_type == 5; }
};

inline made_slice idr(std::uint32_t idr_pic_id = 0)
{
    made_slice slice;
    slice.nal_unit_type = 5;
    slice.header.slice_type = 7;
    slice.header.idr_pic_id = idr_pic_id;
    return slice;
}

/// Of a reference picture.
inline made_slice reference(std::uint32_t frame_num, std::uint32_t pic_order_cnt_lsb = 0)
{
    made_slice slice;
    slice.header.slice_type = 7;
    slice.header.frame_num = frame_num;
    slice.header.pic_order_cnt_lsb = pic_order_cnt_lsb;
    return slice;
}

/// Of a non-reference picture.
inline made_slice other(std::uint32_t frame_num, std::uint32_t pic_order_cnt_lsb = 0)
{
    made_slice slice = reference(frame_num, pic_order_cnt_lsb);
    slice.nal_ref_idc = 0;
    return slice;
}

inline made_slice from_macroblock(made_slice slice, std::uint32_t first_mb_in_slice)
{
    slice.header.first_mb_in_slice = first_mb_in_slice;
    return slice;
}

inline made_slice top(made_slice slice)
{
    slice.header.field_pic_flag = true;
    return slice;
}

inline made_slice bottom(made_slice slice)
{
    slice.header.field_pic_flag = true;
    slice.header.bottom_field_flag = true;
    return slice;
}

inline made_slice long_term(made_slice slice)
{
    slice.header.dec_ref_pic_marking.long_term_reference_flag = true;
    return slice;
}

inline made_slice predicted(made_slice slice, std::uint32_t entries = 1)
{
    slice.header.slice_type = 5;
    slice.header.num_ref_idx_active_override_flag = entries != 1;
    slice.header.num_ref_idx_l0_active_minus1 = entries - 1;
    return slice;
}

// Changes of a list, clause 7.4.3.1.
inline pic_num_modification pic_num_down(std::uint32_t abs_diff_pic_num_minus1)
{
    return {0, abs_diff_pic_num_minus1, 0, 0};
}
inline pic_num_modification pic_num_up(std::uint32_t abs_diff_pic_num_minus1)
{
    return {1, abs_diff_pic_num_minus1, 0, 0};
}
inline pic_num_modification long_pic_num(std::uint32_t long_term_pic_num)
{
    return {2, 0, long_term_pic_num, 0};
}

/// The first list with these changes, and the one that ends them.
inline made_slice changed(made_slice slice, std::initializer_list<pic_num_modification> changes)
{
    ref_pic_list_modification& lists = slice.header.ref_pic_list_modification;
    lists.ref_pic_list_modification_flag_l0 = true;
    for (const pic_num_modification& change : changes) {
        lists.l0.grow();
        lists.l0.back() = change;
    }
    lists.l0.grow();
    lists.l0.back() = {3, 0, 0, 0};
    return slice;
}

// Operations of clause 8.2.5.4.
inline marking_operation unmark_short(std::uint32_t difference_of_pic_nums_minus1)
{
    return {1, difference_of_pic_nums_minus1, 0, 0, 0};
}
inline marking_operation unmark_long(std::uint32_t long_term_pic_num)
{
    return {2, 0, long_term_pic_num, 0, 0};
}
inline marking_operation short_to_long(std::uint32_t difference_of_pic_nums_minus1, std::uint32_t long_term_frame_idx)
{
    return {3, difference_of_pic_nums_minus1, 0, long_term_frame_idx, 0};
}
inline marking_operation keep_long_below(std::uint32_t max_long_term_frame_idx_plus1)
{
    return {4, 0, 0, 0, max_long_term_frame_idx_plus1};
}
inline marking_operation forget_all()
{
    return {5, 0, 0, 0, 0};
}
inline marking_operation current_to_long(std::uint32_t long_term_frame_idx)
{
    return {6, 0, 0, long_term_frame_idx, 0};
}

/// With these operations, and the one that ends them.
template <class Operations>
made_slice with_operations(made_slice slice, const Operations& operations)
{
    dec_ref_pic_marking& marking = slice.header.dec_ref_pic_marking;
    marking.adaptive_ref_pic_marking_mode_flag = true;
    marking.operations.clear();
    for (const marking_operation& operation : operations) {
        marking.operations.grow();
        marking.operations.back() = operation;
    }
    marking.operations.grow();
    return slice;
}
inline made_slice with(const made_slice& slice, std::initializer_list<marking_operation> operations)
{
    return with_operations(slice, operations);
}

} // namespace orv_utils_v4::h264
