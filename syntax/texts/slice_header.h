// The texts of the slice header and of the slice data partitions, H.264 clauses 7.3.3, 7.3.2.8 and 7.3.2.9.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/derived.h>
#include <orv-utils-v4/h264_syntax/nal_unit_header.h>
#include <orv-utils-v4/h264_syntax/parameter_sets.h>
#include <orv-utils-v4/h264_syntax/picture_size.h>
#include <orv-utils-v4/h264_syntax/slice_header.h>

namespace orv_utils_v4::h264 {

/// What the tables of a slice take from elsewhere.
struct slice_context {
    const nal_unit_header& header;
    const parameter_sets& sets;
    bool IdrPicFlag;                   ///< of an auxiliary slice, that of its primary coded picture
    std::int32_t partition_a_pps = -1; ///< of partitions B and C: the PPS that their partition A names; -1 is none
};

/// The slice is of a field, or may be.
template <class Header>
bool may_be_field(const Header& x) noexcept
{
    return x.field_pic_flag;
}

/// MaxPicNum, 7.4.3 and 8.2.4.1: twice MaxFrameNum in fields.
template <class Header>
std::int64_t MaxPicNum(const Header& x, const seq_parameter_set_data& sps) noexcept
{
    return static_cast<std::int64_t>(MaxFrameNum(sps)) * (may_be_field(x) ? 2 : 1);
}

/// The highest LongTermPicNum, 8.2.4.1.
template <class Header>
std::int64_t highest_long_term_pic_num(const Header& x, const seq_parameter_set_data& sps) noexcept
{
    const std::int64_t frames = sps.max_num_ref_frames;
    return (may_be_field(x) ? 2 * frames : frames) - 1;
}

/// Whether slice_group_change_cycle is there, 7.3.3.
inline bool has_slice_group_change_cycle(const pic_parameter_set_rbsp& pps) noexcept
{
    return pps.num_slice_groups_minus1 > 0 && pps.slice_group_map_type >= 3 && pps.slice_group_map_type <= 5;
}

// H.264 7.3.3.1 and H.7.3.3.1.1, one list; `mvc` in the views that are no base view
template <class Coder, class List, class Header>
void code_list_modification(Coder& c, const char* flag_name, in<Coder, bool>& flag, List& list, const Header& x,
                            const seq_parameter_set_data& sps, bool mvc)
{
    constexpr std::uint32_t end_of_list = 3;
    c.flag(flag_name, flag);
    std::size_t sent = 0;
    if (flag) {
        for (std::uint32_t idc = 0; idc != end_of_list && c.going();) {
            auto& entry = c.entry("modification_of_pic_nums_idc", list, sent++);
            c.ue("modification_of_pic_nums_idc", entry.modification_of_pic_nums_idc, 0, mvc ? 5 : 3);
            idc = entry.modification_of_pic_nums_idc;
            if (idc == 0 || idc == 1)
                c.ue("abs_diff_pic_num_minus1", entry.abs_diff_pic_num_minus1, 0, MaxPicNum(x, sps) - 1);
            else if (idc == 2)
                c.ue("long_term_pic_num", entry.long_term_pic_num, 0, highest_long_term_pic_num(x, sps));
            else if (mvc && (idc == 4 || idc == 5))
                c.ue("abs_diff_view_idx_minus1", entry.abs_diff_view_idx_minus1, 0, 1023);
        }
    }
    c.entries_end("modification_of_pic_nums_idc", list, sent);
}

// H.264 7.3.3.1, ref_pic_list_modification(); H.7.3.3.1.1, ref_pic_list_mvc_modification()
template <class Coder, class Header>
void code(Coder& c, in<Coder, ref_pic_list_modification>& x, const Header& header, const seq_parameter_set_data& sps,
          bool mvc)
{
    const auto here = c.structure(mvc ? "ref_pic_list_mvc_modification" : "ref_pic_list_modification");
    if (header.kind() != slice_kind::I && header.kind() != slice_kind::SI)
        code_list_modification(c, "ref_pic_list_modification_flag_l0", x.ref_pic_list_modification_flag_l0, x.l0,
                               header, sps, mvc);
    if (header.kind() == slice_kind::B)
        code_list_modification(c, "ref_pic_list_modification_flag_l1", x.ref_pic_list_modification_flag_l1, x.l1,
                               header, sps, mvc);
}

/// The names of the elements of one list of weights.
struct weight_names {
    const char* luma_weight_flag;
    const char* luma_weight;
    const char* luma_offset;
    const char* chroma_weight_flag;
    const char* chroma_weight;
    const char* chroma_offset;
};

// H.264 7.3.3.2, one list
template <class Coder, class List>
void code_weights(Coder& c, const weight_names& names, List& list, std::uint32_t num_ref_idx_active_minus1,
                  const pred_weight_table& x, bool with_chroma)
{
    const std::int32_t luma_default = 1 << (x.luma_log2_weight_denom & 7);
    const std::int32_t chroma_default = 1 << (x.chroma_log2_weight_denom & 7);
    for (std::uint32_t i = 0; i <= num_ref_idx_active_minus1 && c.going(); ++i) {
        auto& weight = c.entry(names.luma_weight_flag, list, i);
        c.flag({names.luma_weight_flag, i}, weight.luma_weight_flag);
        if (weight.luma_weight_flag) {
            c.se({names.luma_weight, i}, weight.luma_weight, -128, 127);
            c.se({names.luma_offset, i}, weight.luma_offset, -128, 127);
        } else
            c.infer(weight.luma_weight, luma_default);
        if (with_chroma)
            c.flag({names.chroma_weight_flag, i}, weight.chroma_weight_flag);
        for (std::uint32_t j = 0; j < 2; ++j) {
            if (with_chroma && weight.chroma_weight_flag) {
                c.se({names.chroma_weight, i, j}, weight.chroma_weight[j], -128, 127);
                c.se({names.chroma_offset, i, j}, weight.chroma_offset[j], -128, 127);
            } else
                c.infer(weight.chroma_weight[j], chroma_default);
        }
    }
    c.entries_end(names.luma_weight_flag, list, std::size_t{num_ref_idx_active_minus1} + 1);
}

// H.264 7.3.3.2
template <class Coder, class Header>
void code(Coder& c, in<Coder, pred_weight_table>& x, const Header& header, const seq_parameter_set_data& sps)
{
    constexpr weight_names l0 = {"luma_weight_l0_flag",   "luma_weight_l0",   "luma_offset_l0",
                                 "chroma_weight_l0_flag", "chroma_weight_l0", "chroma_offset_l0"};
    constexpr weight_names l1 = {"luma_weight_l1_flag",   "luma_weight_l1",   "luma_offset_l1",
                                 "chroma_weight_l1_flag", "chroma_weight_l1", "chroma_offset_l1"};
    const auto here = c.structure("pred_weight_table");
    const bool with_chroma = ChromaArrayType(sps) != 0;
    c.ue("luma_log2_weight_denom", x.luma_log2_weight_denom, 0, 7);
    if (with_chroma)
        c.ue("chroma_log2_weight_denom", x.chroma_log2_weight_denom, 0, 7);
    code_weights(c, l0, x.l0, header.num_ref_idx_l0_active_minus1, x, with_chroma);
    if (header.kind() == slice_kind::B)
        code_weights(c, l1, x.l1, header.num_ref_idx_l1_active_minus1, x, with_chroma);
}

// H.264 7.3.3.3, the operations
template <class Coder, class List, class Header>
void code_marking_operations(Coder& c, List& list, const Header& x, const seq_parameter_set_data& sps)
{
    std::size_t sent = 0;
    for (std::uint32_t operation = 1; operation != 0 && c.going();) {
        auto& entry = c.entry("memory_management_control_operation", list, sent++);
        c.ue("memory_management_control_operation", entry.memory_management_control_operation, 0, 6);
        operation = entry.memory_management_control_operation;
        if (operation == 1 || operation == 3)
            c.ue("difference_of_pic_nums_minus1", entry.difference_of_pic_nums_minus1, 0, MaxPicNum(x, sps) - 1);
        if (operation == 2)
            c.ue("long_term_pic_num", entry.long_term_pic_num, 0, highest_long_term_pic_num(x, sps));
        if (operation == 3 || operation == 6)
            c.ue("long_term_frame_idx", entry.long_term_frame_idx, 0, std::int64_t{sps.max_num_ref_frames} - 1);
        if (operation == 4)
            c.ue("max_long_term_frame_idx_plus1", entry.max_long_term_frame_idx_plus1, 0, sps.max_num_ref_frames);
    }
    c.entries_end("memory_management_control_operation", list, sent);
}

// H.264 7.3.3.3
template <class Coder, class Header>
void code(Coder& c, in<Coder, dec_ref_pic_marking>& x, const Header& header, const seq_parameter_set_data& sps,
          bool IdrPicFlag)
{
    const auto here = c.structure("dec_ref_pic_marking");
    if (IdrPicFlag) {
        c.flag("no_output_of_prior_pics_flag", x.no_output_of_prior_pics_flag);
        c.flag("long_term_reference_flag", x.long_term_reference_flag);
    } else {
        c.flag("adaptive_ref_pic_marking_mode_flag", x.adaptive_ref_pic_marking_mode_flag);
        if (x.adaptive_ref_pic_marking_mode_flag)
            code_marking_operations(c, x.operations, header, sps);
    }
}

/// Weights are sent: explicit prediction of this kind of slice, 7.3.3.
template <class Header>
bool has_weights(const Header& x, const pic_parameter_set_rbsp& pps) noexcept
{
    if (x.kind() == slice_kind::B)
        return pps.weighted_bipred_idc == 1;
    return pps.weighted_pred_flag && (x.kind() == slice_kind::P || x.kind() == slice_kind::SP);
}

// H.264 7.3.3, from frame_num to redundant_pic_cnt, which slice_header_in_scalable_extension() has too
template <class Coder, class Header>
void code_picture_of_slice(Coder& c, Header& x, const pic_parameter_set_rbsp& pps, const seq_parameter_set_data& sps,
                           bool IdrPicFlag)
{
    if (sps.separate_colour_plane_flag)
        c.u(2, "colour_plane_id", x.colour_plane_id, 0, 2);
    c.u_v(frame_num_bits(sps), "frame_num", x.frame_num);
    if (!sps.frame_mbs_only_flag) {
        c.flag("field_pic_flag", x.field_pic_flag);
        if (x.field_pic_flag)
            c.flag("bottom_field_flag", x.bottom_field_flag);
    }
    if (IdrPicFlag)
        c.ue("idr_pic_id", x.idr_pic_id, 0, 65535);
    const bool bottom_sent = pps.bottom_field_pic_order_in_frame_present_flag && !x.field_pic_flag;
    if (sps.pic_order_cnt_type == 0) {
        c.u_v(pic_order_cnt_lsb_bits(sps), "pic_order_cnt_lsb", x.pic_order_cnt_lsb);
        if (bottom_sent)
            c.se("delta_pic_order_cnt_bottom", x.delta_pic_order_cnt_bottom);
    }
    if (sps.pic_order_cnt_type == 1 && !sps.delta_pic_order_always_zero_flag) {
        c.se({"delta_pic_order_cnt", 0}, x.delta_pic_order_cnt[0]);
        if (bottom_sent)
            c.se({"delta_pic_order_cnt", 1}, x.delta_pic_order_cnt[1]);
    }
    if (pps.redundant_pic_cnt_present_flag)
        c.ue("redundant_pic_cnt", x.redundant_pic_cnt, 0, 127);
}

// H.264 7.3.3, how many references are active
template <class Coder, class Header>
void code_active_references(Coder& c, Header& x, const pic_parameter_set_rbsp& pps)
{
    const std::int64_t highest = x.field_pic_flag ? 31 : 15;
    const bool is_b = x.kind() == slice_kind::B;
    c.flag("num_ref_idx_active_override_flag", x.num_ref_idx_active_override_flag);
    if (x.num_ref_idx_active_override_flag)
        c.ue("num_ref_idx_l0_active_minus1", x.num_ref_idx_l0_active_minus1, 0, highest);
    else
        c.infer(x.num_ref_idx_l0_active_minus1, pps.num_ref_idx_l0_default_active_minus1);
    if (is_b && x.num_ref_idx_active_override_flag)
        c.ue("num_ref_idx_l1_active_minus1", x.num_ref_idx_l1_active_minus1, 0, highest);
    else if (is_b)
        c.infer(x.num_ref_idx_l1_active_minus1, pps.num_ref_idx_l1_default_active_minus1);
}

// H.264 7.3.3, slice_qp_delta
template <class Coder, class Header>
void code_slice_qp_delta(Coder& c, Header& x, const pic_parameter_set_rbsp& pps, const seq_parameter_set_data& sps)
{
    const std::int64_t qp = 26 + std::int64_t{pps.pic_init_qp_minus26};
    c.se("slice_qp_delta", x.slice_qp_delta, -6 * std::int64_t{sps.bit_depth_luma_minus8} - qp, 51 - qp);
}

// H.264 7.3.3, the deblocking filter and slice_group_change_cycle; scalable slices have filters up to `highest_idc` 6
template <class Coder, class Header>
void code_filter_and_groups(Coder& c, Header& x, const pic_parameter_set_rbsp& pps, const seq_parameter_set_data& sps,
                            std::int64_t highest_idc)
{
    if (pps.deblocking_filter_control_present_flag) {
        c.ue("disable_deblocking_filter_idc", x.disable_deblocking_filter_idc, 0, highest_idc);
        if (x.disable_deblocking_filter_idc != 1) {
            c.se("slice_alpha_c0_offset_div2", x.slice_alpha_c0_offset_div2, -6, 6);
            c.se("slice_beta_offset_div2", x.slice_beta_offset_div2, -6, 6);
        }
    }
    if (has_slice_group_change_cycle(pps)) {
        c.u_v(slice_group_change_cycle_bits(sps, pps), "slice_group_change_cycle", x.slice_group_change_cycle, 0,
              static_cast<std::int64_t>(highest_slice_group_change_cycle(sps, pps)));
    }
}

// H.264 7.3.3, from cabac_init_idc to slice_group_change_cycle
template <class Coder, class Header>
void code_end_of_slice_header(Coder& c, Header& x, const pic_parameter_set_rbsp& pps, const seq_parameter_set_data& sps)
{
    if (pps.entropy_coding_mode_flag && x.kind() != slice_kind::I && x.kind() != slice_kind::SI)
        c.ue("cabac_init_idc", x.cabac_init_idc, 0, 2);
    code_slice_qp_delta(c, x, pps, sps);
    if (x.kind() == slice_kind::SP || x.kind() == slice_kind::SI) {
        if (x.kind() == slice_kind::SP)
            c.flag("sp_for_switch_flag", x.sp_for_switch_flag);
        const std::int64_t qs = 26 + std::int64_t{pps.pic_init_qs_minus26};
        c.se("slice_qs_delta", x.slice_qs_delta, -qs, 51 - qs);
    }
    code_filter_and_groups(c, x, pps, sps, 2);
}

/// The parameter sets that a slice names.
struct slice_sets {
    const pic_parameter_set_rbsp* pps = nullptr;
    const seq_parameter_set_data* sps = nullptr; ///< null after a failure
};

/// Finds them, or fails.
template <class Coder>
slice_sets sets_of_slice(Coder& c, std::uint32_t pic_parameter_set_id, const slice_context& context)
{
    slice_sets found;
    if (!c.going())
        return found;
    found.pps = context.sets.find_pps(pic_parameter_set_id);
    if (found.pps == nullptr) {
        c.fail(reason::no_pps, "pic_parameter_set_id", pic_parameter_set_id);
        return found;
    }
    found.sps = sps_of(context.header, *found.pps, context.sets);
    if (found.sps == nullptr)
        c.fail(reason::no_sps, "pic_parameter_set_id", found.pps->seq_parameter_set_id);
    return found;
}

// H.264 7.3.3
template <class Coder>
void code(Coder& c, in<Coder, slice_header>& x, const slice_context& context)
{
    const auto here = c.structure("slice_header");
    c.ue("first_mb_in_slice", x.first_mb_in_slice);
    c.ue("slice_type", x.slice_type, 0, 9);
    c.ue("pic_parameter_set_id", x.pic_parameter_set_id, 0, 255);
    const auto [pps, sps] = sets_of_slice(c, x.pic_parameter_set_id, context);
    if (sps == nullptr)
        return;

    code_picture_of_slice(c, x, *pps, *sps, context.IdrPicFlag);
    if (x.kind() == slice_kind::B)
        c.flag("direct_spatial_mv_pred_flag", x.direct_spatial_mv_pred_flag);
    if (x.kind() != slice_kind::I && x.kind() != slice_kind::SI)
        code_active_references(c, x, *pps);
    const bool mvc = context.header.nal_unit_type == 20 || context.header.nal_unit_type == 21;
    code(c, x.ref_pic_list_modification, x, *sps, mvc);
    if (has_weights(x, *pps))
        code(c, x.pred_weight_table, x, *sps);
    if (context.header.nal_ref_idc != 0)
        code(c, x.dec_ref_pic_marking, x, *sps, context.IdrPicFlag);
    code_end_of_slice_header(c, x, *pps, *sps);
}

// What has its place before the macroblocks: H.264 7.3.4, slice_data(); G.7.3.4, slice_data_in_scalable_extension();
// J.7.3.4, slice_data_in_3davc_extension()
template <class Coder>
void code_slice_data(Coder& c, const pic_parameter_set_rbsp* pps, const char* name = "slice_data")
{
    if (pps == nullptr || !pps->entropy_coding_mode_flag || c.byte_aligned())
        return;
    const auto here = c.structure(name);
    while (!c.byte_aligned())
        c.f(1, "cabac_alignment_one_bit", 1);
}

// H.264 7.3.2.8
template <class Coder>
void code(Coder& c, in<Coder, slice_layer_without_partitioning_rbsp>& x, const slice_context& context)
{
    const auto here = c.structure("slice_layer_without_partitioning_rbsp");
    code(c, x.slice_header, context);
    code_slice_data(c, context.sets.find_pps(x.slice_header.pic_parameter_set_id));
}

// H.264 7.3.2.9.1
template <class Coder>
void code(Coder& c, in<Coder, slice_data_partition_a_layer_rbsp>& x, const slice_context& context)
{
    const auto here = c.structure("slice_data_partition_a_layer_rbsp");
    code(c, x.slice_header, context);
    c.ue("slice_id", x.slice_id);
    code_slice_data(c, context.sets.find_pps(x.slice_header.pic_parameter_set_id));
}

// H.264 7.3.2.9.2 and 7.3.2.9.3
template <class Coder, class Partition>
void code_partition(Coder& c, Partition& x, const slice_context& context)
{
    c.ue("slice_id", x.slice_id);
    if (!c.going())
        return;
    const pic_parameter_set_rbsp* const pps =
        context.sets.find_pps(static_cast<std::uint32_t>(context.partition_a_pps));
    if (pps == nullptr)
        return c.fail(reason::no_partition_a, "slice_id", x.slice_id);
    const seq_parameter_set_data* const sps = sps_of(context.header, *pps, context.sets);
    if (sps == nullptr)
        return c.fail(reason::no_sps, "slice_id", pps->seq_parameter_set_id);
    if (sps->separate_colour_plane_flag)
        c.u(2, "colour_plane_id", x.colour_plane_id, 0, 2);
    if (pps->redundant_pic_cnt_present_flag)
        c.ue("redundant_pic_cnt", x.redundant_pic_cnt, 0, 127);
    code_slice_data(c, pps);
}

// H.264 7.3.2.9.2
template <class Coder>
void code(Coder& c, in<Coder, slice_data_partition_b_layer_rbsp>& x, const slice_context& context)
{
    const auto here = c.structure("slice_data_partition_b_layer_rbsp");
    code_partition(c, x, context);
}

// H.264 7.3.2.9.3
template <class Coder>
void code(Coder& c, in<Coder, slice_data_partition_c_layer_rbsp>& x, const slice_context& context)
{
    const auto here = c.structure("slice_data_partition_c_layer_rbsp");
    code_partition(c, x, context);
}

} // namespace orv_utils_v4::h264
