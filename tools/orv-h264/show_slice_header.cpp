#include "show_structures.h"

namespace orv_h264 {

namespace {

using list_modification = brenik::h264_nal_slice_header::ref_pic_list_modification_entry_t;

/// The bits of u(v) whose length is told less four, as the library counts them: modulo 256.
unsigned int length_of(std::uint32_t log2_minus4)
{
    return static_cast<std::uint8_t>(std::uint64_t{log2_minus4} + 4);
}

// H.264 7.3.3.1, ref_pic_list_modification() of list `number`
void show_list_modification(field_printer& p, int number, const list_modification& list)
{
    constexpr std::uint32_t end_of_list = 3;
    p.flag(number == 0 ? "ref_pic_list_modification_flag_l0" : "ref_pic_list_modification_flag_l1",
           list.ref_pic_list_modification_flag);
    if (!list.ref_pic_list_modification_flag)
        return;
    const char* const name = number == 0 ? "ref_pic_list_modification_l0" : "ref_pic_list_modification_l1";
    const field_printer::deeper indented(p, name);
    for (std::size_t i = 0; i < list.entries.size(); ++i) {
        const list_modification::entry& entry = list.entries[i];
        const field_printer::entry grouped(p, "entries", i);
        const bool inter_view = entry.modification_of_pic_nums_idc == 4 || entry.modification_of_pic_nums_idc == 5;
        p.ue("modification_of_pic_nums_idc", entry.modification_of_pic_nums_idc,
             inter_view ? "no value read, in multiview coding there is one" : "");
        if (entry.modification_of_pic_nums_idc < 2)
            p.ue("abs_diff_pic_num_minus1", entry.pic_num_value);
        else if (entry.modification_of_pic_nums_idc == 2)
            p.ue("long_term_pic_num", entry.pic_num_value);
    }
    const field_printer::entry grouped(p, "entries", list.entries.size());
    p.ue("modification_of_pic_nums_idc", end_of_list);
}

void show_pic_order_cnt(field_printer& p, const brenik::h264_nal_slice_header& slice, const brenik::h264_nal_sps& sps,
                        const brenik::h264_nal_pps& pps)
{
    const bool bottom_order_sent = pps.bottom_field_pic_order_in_frame_present_flag && !slice.field_pic_flag;
    if (sps.pic_order_cnt_type == 0) {
        p.u(length_of(sps.log2_max_pic_order_cnt_lsb_minus4), "pic_order_cnt_lsb", slice.pic_order_cnt_lsb);
        if (bottom_order_sent)
            p.se("delta_pic_order_cnt_bottom", slice.delta_pic_order_cnt_bottom);
    } else if (sps.pic_order_cnt_type == 1 && !sps.delta_pic_order_always_zero_flag) {
        p.se({"delta_pic_order_cnt", 0}, slice.delta_pic_order_cnt[0]);
        if (bottom_order_sent)
            p.se({"delta_pic_order_cnt", 1}, slice.delta_pic_order_cnt[1]);
    }
}

void show_references(field_printer& p, const brenik::h264_nal_slice_header& slice)
{
    const bool is_b = slice.getSliceType() == brenik::h264_slice_type_B;
    if (is_b)
        p.flag("direct_spatial_mv_pred_flag", slice.direct_spatial_mv_pred_flag);
    p.flag("num_ref_idx_active_override_flag", slice.num_ref_idx_active_override_flag);
    if (slice.num_ref_idx_active_override_flag) {
        p.ue("num_ref_idx_l0_active_minus1", slice.num_ref_idx_l0_active_minus1);
        if (is_b)
            p.ue("num_ref_idx_l1_active_minus1", slice.num_ref_idx_l1_active_minus1);
    }
    show_list_modification(p, 0, slice.ref_pic_list_modification_l0);
    if (is_b)
        show_list_modification(p, 1, slice.ref_pic_list_modification_l1);
}

} // namespace

// H.264 7.3.3, slice_header() up to the list modifications
void show(field_printer& p, const brenik::h264_nal_slice_header& slice, const walked_unit& unit)
{
    const brenik::h264_slice_type_t type = slice.getSliceType();
    p.ue("first_mb_in_slice", slice.first_mb_in_slice);
    p.ue("slice_type", slice.slice_type, brenik::h264_slice_type_t_to_string(type));
    p.ue("pic_parameter_set_id", slice.pic_parameter_set_id);
    if (unit.sps == nullptr)
        return;
    const brenik::h264_nal_sps& sps = *unit.sps;
    if (sps.separate_colour_plane_flag)
        p.u(2, "colour_plane_id", slice.colour_plane_id);
    p.u(length_of(sps.log2_max_frame_num_minus4), "frame_num", slice.frame_num);
    if (!sps.frame_mbs_only_flag) {
        p.flag("field_pic_flag", slice.field_pic_flag);
        if (slice.field_pic_flag)
            p.flag("bottom_field_flag", slice.bottom_field_flag);
    }
    if (slice.IdrPicFlag)
        p.ue("idr_pic_id", slice.idr_pic_id);
    show_pic_order_cnt(p, slice, sps, *unit.pps);
    if (unit.pps->redundant_pic_cnt_present_flag)
        p.ue("redundant_pic_cnt", slice.redundant_pic_cnt);
    if (type != brenik::h264_slice_type_I && type != brenik::h264_slice_type_SI)
        show_references(p, slice);
    if (slice.IdrPicFlag)
        p.derived("IDR picture", {{"IdrPicFlag", std::uint64_t{1}}});
}

} // namespace orv_h264
