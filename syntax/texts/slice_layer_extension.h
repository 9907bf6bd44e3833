// The texts of the slices and prefix units of layers and views, H.264 clauses 7.3.2.12, 7.3.2.13, G.7.3.3.4, G.7.3.3.5
// and J.7.3.3.4. What their tables share with slice_header() is in texts/slice_header.h.
#pragma once

#include "coders/coder.h"
#include "texts/parameter_sets.h"
#include "texts/slice_header.h"

#include <orv-utils-v4/h264_syntax/slice_layer_extension.h>
#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

#include <algorithm>

namespace orv_utils_v4::h264 {

/// Elements that come from another slice may say that this one is of a field.
inline bool may_be_field(const slice_header_in_3davc_extension& x) noexcept
{
    return x.field_pic_flag || x.pre_slice_header_src != 0;
}

// H.264 G.7.3.3.5; a prefix unit knows no SPS and has the full ranges
template <class Coder>
void code(Coder& c, in<Coder, dec_ref_base_pic_marking>& x, std::int64_t highest_difference = highest_ue,
          std::int64_t highest_long_term = highest_ue)
{
    const auto here = c.structure("dec_ref_base_pic_marking");
    std::size_t sent = 0;
    c.flag("adaptive_ref_base_pic_marking_mode_flag", x.adaptive_ref_base_pic_marking_mode_flag);
    if (x.adaptive_ref_base_pic_marking_mode_flag) {
        for (std::uint32_t operation = 1; operation != 0 && c.going();) {
            auto& entry = c.entry("memory_management_base_control_operation", x.operations, sent++);
            c.ue("memory_management_base_control_operation", entry.memory_management_base_control_operation, 0, 2);
            operation = entry.memory_management_base_control_operation;
            if (operation == 1)
                c.ue("difference_of_base_pic_nums_minus1", entry.difference_of_base_pic_nums_minus1, 0,
                     highest_difference);
            if (operation == 2)
                c.ue("long_term_base_pic_num", entry.long_term_base_pic_num, 0, highest_long_term);
        }
    }
    c.entries_end("memory_management_base_control_operation", x.operations, sent);
}

// H.264 G.7.3.3.4, what is sent with quality_id 0 alone
template <class Coder>
void code_references_of_layer(Coder& c, in<Coder, slice_header_in_scalable_extension>& x, const slice_context& context,
                              const slice_sets& sets, bool slice_header_restriction_flag)
{
    const nal_unit_header_svc_extension& svc = context.header.nal_unit_header_svc_extension;
    if (x.kind() == slice_kind::B)
        c.flag("direct_spatial_mv_pred_flag", x.direct_spatial_mv_pred_flag);
    if (x.kind() == slice_kind::P || x.kind() == slice_kind::B)
        code_active_references(c, x, *sets.pps);
    code(c, x.ref_pic_list_modification, x, *sets.sps, false);
    if ((sets.pps->weighted_pred_flag && x.kind() == slice_kind::P) ||
        (sets.pps->weighted_bipred_idc == 1 && x.kind() == slice_kind::B)) {
        if (!svc.no_inter_layer_pred_flag)
            c.flag("base_pred_weight_table_flag", x.base_pred_weight_table_flag);
        if (svc.no_inter_layer_pred_flag || !x.base_pred_weight_table_flag)
            code(c, x.pred_weight_table, x, *sets.sps);
    }
    if (context.header.nal_ref_idc != 0) {
        code(c, x.dec_ref_pic_marking, x, *sets.sps, svc.idr_flag);
        if (!slice_header_restriction_flag) {
            c.flag("store_ref_base_pic_flag", x.store_ref_base_pic_flag);
            if ((svc.use_ref_base_pic_flag || x.store_ref_base_pic_flag) && !svc.idr_flag)
                code(c, x.dec_ref_base_pic_marking, MaxPicNum(x, *sets.sps) - 1,
                     highest_long_term_pic_num(x, *sets.sps));
        }
    }
}

// H.264 G.7.3.3.4, from ref_layer_dq_id to scaled_ref_layer_bottom_offset; `sent` as the conditions of the table say
template <class Coder>
void code_inter_layer_prediction(Coder& c, in<Coder, slice_header_in_scalable_extension>& x, bool sent,
                                 const nal_unit_header_svc_extension& svc, const subset_seq_parameter_set_rbsp& subset)
{
    constexpr std::int64_t lowest_offset = -32768;
    constexpr std::int64_t highest_offset = 32767;
    const seq_parameter_set_svc_extension& sps = subset.seq_parameter_set_svc_extension;
    const std::int64_t DQId = (svc.dependency_id << 4) + svc.quality_id;
    const bool chroma = ChromaArrayType(subset.seq_parameter_set_data) > 0;
    if (sent) {
        c.ue("ref_layer_dq_id", x.ref_layer_dq_id, 0, std::max<std::int64_t>(DQId - 1, 0));
        if (sps.inter_layer_deblocking_filter_control_present_flag) {
            c.ue("disable_inter_layer_deblocking_filter_idc", x.disable_inter_layer_deblocking_filter_idc, 0, 6);
            if (x.disable_inter_layer_deblocking_filter_idc != 1) {
                c.se("inter_layer_slice_alpha_c0_offset_div2", x.inter_layer_slice_alpha_c0_offset_div2, -6, 6);
                c.se("inter_layer_slice_beta_offset_div2", x.inter_layer_slice_beta_offset_div2, -6, 6);
            }
        }
        c.flag("constrained_intra_resampling_flag", x.constrained_intra_resampling_flag);
    } else if (svc.quality_id > 0)
        c.infer(x.ref_layer_dq_id, DQId - 1);
    if (sent && sps.extended_spatial_scalability_idc == 2 && chroma) {
        c.flag("ref_layer_chroma_phase_x_plus1_flag", x.ref_layer_chroma_phase_x_plus1_flag);
        c.u(2, "ref_layer_chroma_phase_y_plus1", x.ref_layer_chroma_phase_y_plus1, 0, 2);
    } else {
        c.infer(x.ref_layer_chroma_phase_x_plus1_flag, sps.seq_ref_layer_chroma_phase_x_plus1_flag);
        c.infer(x.ref_layer_chroma_phase_y_plus1, sps.seq_ref_layer_chroma_phase_y_plus1);
    }
    if (sent && sps.extended_spatial_scalability_idc == 2) {
        c.se("scaled_ref_layer_left_offset", x.scaled_ref_layer_left_offset, lowest_offset, highest_offset);
        c.se("scaled_ref_layer_top_offset", x.scaled_ref_layer_top_offset, lowest_offset, highest_offset);
        c.se("scaled_ref_layer_right_offset", x.scaled_ref_layer_right_offset, lowest_offset, highest_offset);
        c.se("scaled_ref_layer_bottom_offset", x.scaled_ref_layer_bottom_offset, lowest_offset, highest_offset);
    } else {
        c.infer(x.scaled_ref_layer_left_offset, sps.seq_scaled_ref_layer_left_offset);
        c.infer(x.scaled_ref_layer_top_offset, sps.seq_scaled_ref_layer_top_offset);
        c.infer(x.scaled_ref_layer_right_offset, sps.seq_scaled_ref_layer_right_offset);
        c.infer(x.scaled_ref_layer_bottom_offset, sps.seq_scaled_ref_layer_bottom_offset);
    }
}

// H.264 G.7.3.3.4, from slice_skip_flag to tcoeff_level_prediction_flag
template <class Coder>
void code_layer_modes(Coder& c, in<Coder, slice_header_in_scalable_extension>& x,
                      const seq_parameter_set_svc_extension& sps)
{
    c.flag("slice_skip_flag", x.slice_skip_flag);
    if (x.slice_skip_flag)
        c.ue("num_mbs_in_slice_minus1", x.num_mbs_in_slice_minus1);
    else {
        c.flag("adaptive_base_mode_flag", x.adaptive_base_mode_flag);
        if (!x.adaptive_base_mode_flag)
            c.flag("default_base_mode_flag", x.default_base_mode_flag);
        else
            c.infer(x.default_base_mode_flag, false);
        if (!x.default_base_mode_flag) {
            c.flag("adaptive_motion_prediction_flag", x.adaptive_motion_prediction_flag);
            if (!x.adaptive_motion_prediction_flag)
                c.flag("default_motion_prediction_flag", x.default_motion_prediction_flag);
        }
        c.flag("adaptive_residual_prediction_flag", x.adaptive_residual_prediction_flag);
        if (!x.adaptive_residual_prediction_flag)
            c.flag("default_residual_prediction_flag", x.default_residual_prediction_flag);
    }
    if (sps.adaptive_tcoeff_level_prediction_flag)
        c.flag("tcoeff_level_prediction_flag", x.tcoeff_level_prediction_flag);
    else
        c.infer(x.tcoeff_level_prediction_flag, sps.seq_tcoeff_level_prediction_flag);
}

// H.264 G.7.3.3.4
template <class Coder>
void code(Coder& c, in<Coder, slice_header_in_scalable_extension>& x, const slice_context& context)
{
    const auto here = c.structure("slice_header_in_scalable_extension");
    c.ue("first_mb_in_slice", x.first_mb_in_slice);
    c.ue("slice_type", x.slice_type, 0, 7);
    c.ue("pic_parameter_set_id", x.pic_parameter_set_id, 0, 255);
    const slice_sets sets = sets_of_slice(c, x.pic_parameter_set_id, context);
    if (sets.sps == nullptr)
        return;
    const subset_seq_parameter_set_rbsp* const subset = context.sets.find_subset_sps(sets.pps->seq_parameter_set_id);
    if (subset == nullptr)
        return c.fail(reason::no_sps, "pic_parameter_set_id", sets.pps->seq_parameter_set_id);
    const seq_parameter_set_svc_extension& sps = subset->seq_parameter_set_svc_extension;
    const nal_unit_header_svc_extension& svc = context.header.nal_unit_header_svc_extension;

    code_picture_of_slice(c, x, *sets.pps, *sets.sps, svc.idr_flag);
    if (svc.quality_id == 0)
        code_references_of_layer(c, x, context, sets, sps.slice_header_restriction_flag);
    if (sets.pps->entropy_coding_mode_flag && x.kind() != slice_kind::I)
        c.ue("cabac_init_idc", x.cabac_init_idc, 0, 2);
    code_slice_qp_delta(c, x, *sets.pps, *sets.sps);
    code_filter_and_groups(c, x, *sets.pps, *sets.sps, 6);
    code_inter_layer_prediction(c, x, !svc.no_inter_layer_pred_flag && svc.quality_id == 0, svc, *subset);
    if (!svc.no_inter_layer_pred_flag)
        code_layer_modes(c, x, sps);
    if (!sps.slice_header_restriction_flag && !x.slice_skip_flag) {
        c.u(4, "scan_idx_start", x.scan_idx_start);
        c.u(4, "scan_idx_end", x.scan_idx_end);
    }
}

// H.264 J.7.3.3.4, with pre_slice_header_src above 0
template <class Coder>
void code_predicted_header(Coder& c, in<Coder, slice_header_in_3davc_extension>& x, const slice_context& context,
                           const slice_sets& sets)
{
    if (x.kind() == slice_kind::P || x.kind() == slice_kind::SP || x.kind() == slice_kind::B) {
        c.u(2, "pre_ref_lists_src", x.pre_ref_lists_src);
        if (x.pre_ref_lists_src == 0) {
            code_active_references(c, x, *sets.pps);
            code(c, x.ref_pic_list_modification, x, *sets.sps, true);
        }
        if (has_weights(x, *sets.pps)) {
            c.u(2, "pre_pred_weight_table_src", x.pre_pred_weight_table_src);
            if (x.pre_pred_weight_table_src == 0 && x.pre_ref_lists_src != 0)
                return c.fail(reason::no_source_slice, "pred_weight_table"); // one weight for each reference of it
            if (x.pre_pred_weight_table_src == 0)
                code(c, x.pred_weight_table, x, *sets.sps);
        }
    }
    if (context.header.nal_ref_idc != 0) {
        c.u(2, "pre_dec_ref_pic_marking_src", x.pre_dec_ref_pic_marking_src);
        if (x.pre_dec_ref_pic_marking_src == 0)
            code(c, x.dec_ref_pic_marking, x, *sets.sps, context.IdrPicFlag);
    }
    code_slice_qp_delta(c, x, *sets.pps, *sets.sps);
}

// H.264 J.7.3.3.4, with pre_slice_header_src 0
template <class Coder>
void code_unpredicted_header(Coder& c, in<Coder, slice_header_in_3davc_extension>& x, const slice_context& context,
                             const slice_sets& sets, const seq_parameter_set_3davc_extension& sps)
{
    code_picture_of_slice(c, x, *sets.pps, *sets.sps, context.IdrPicFlag);
    if (x.kind() == slice_kind::B)
        c.flag("direct_spatial_mv_pred_flag", x.direct_spatial_mv_pred_flag);
    if (x.kind() != slice_kind::I && x.kind() != slice_kind::SI)
        code_active_references(c, x, *sets.pps);
    code(c, x.ref_pic_list_modification, x, *sets.sps, true);
    if (has_weights(x, *sets.pps))
        code(c, x.pred_weight_table, x, *sets.sps);
    if (context.header.nal_ref_idc != 0)
        code(c, x.dec_ref_pic_marking, x, *sets.sps, context.IdrPicFlag);
    code_end_of_slice_header(c, x, *sets.pps, *sets.sps);
    if (x.kind() != slice_kind::I && x.kind() != slice_kind::SI) {
        if (context.header.nal_unit_header_3davc_extension.depth_flag)
            c.flag("depth_weighted_pred_flag", x.depth_weighted_pred_flag);
        else {
            c.flag("dmvp_flag", x.dmvp_flag);
            if (sps.seq_view_synthesis_flag)
                c.flag("slice_vsp_flag", x.slice_vsp_flag);
        }
        if (sps.three_dv_acquisition_idc != 1 && (x.depth_weighted_pred_flag || x.dmvp_flag))
            c.ue("dps_id", x.dps_id, 0, 63);
    }
}

// H.264 J.7.3.3.4; its nal_unit_type is 21 and its avc_3d_extension_flag 1
template <class Coder>
void code(Coder& c, in<Coder, slice_header_in_3davc_extension>& x, const slice_context& context)
{
    const auto here = c.structure("slice_header_in_3davc_extension");
    c.ue("first_mb_in_slice", x.first_mb_in_slice);
    c.ue("slice_type", x.slice_type, 0, 9);
    c.ue("pic_parameter_set_id", x.pic_parameter_set_id, 0, 255);
    const slice_sets sets = sets_of_slice(c, x.pic_parameter_set_id, context);
    if (sets.sps == nullptr)
        return;
    const subset_seq_parameter_set_rbsp* const subset = context.sets.find_subset_sps(sets.pps->seq_parameter_set_id);
    if (subset == nullptr)
        return c.fail(reason::no_sps, "pic_parameter_set_id", sets.pps->seq_parameter_set_id);
    const seq_parameter_set_3davc_extension& sps = subset->seq_parameter_set_3davc_extension;

    if (sps.slice_header_prediction_flag)
        c.u(2, "pre_slice_header_src", x.pre_slice_header_src);
    else
        c.infer(x.pre_slice_header_src, 0);
    if (sps.slice_header_prediction_flag && x.pre_slice_header_src > 0)
        code_predicted_header(c, x, context, sets);
    else
        code_unpredicted_header(c, x, context, sets, sps);
}

/// Whether data follow the header: not with slice_skip_flag.
template <class Header>
bool has_data(const Header&)
{
    return true;
}
inline bool has_data(const slice_header_in_scalable_extension& header)
{
    return !header.slice_skip_flag;
}

// H.264 7.3.2.13, one kind of header
template <class Header, class Coder, class Layer>
void code_layer_of_kind(Coder& c, Layer& x, const slice_context& context, const char* data_name)
{
    auto* const header = c.template as<Header>(x.header);
    if (header == nullptr)
        return;
    code(c, *header, context);
    if (has_data(*header))
        code_slice_data(c, context.sets.find_pps(header->pic_parameter_set_id), data_name);
}

// H.264 7.3.2.13, before the data
template <class Coder>
void code(Coder& c, in<Coder, slice_layer_extension_rbsp>& x, const slice_context& context)
{
    const auto here = c.structure("slice_layer_extension_rbsp");
    if (context.header.scalable())
        code_layer_of_kind<slice_header_in_scalable_extension>(c, x, context, "slice_data_in_scalable_extension");
    else if (context.header.avc_3d())
        code_layer_of_kind<slice_header_in_3davc_extension>(c, x, context, "slice_data_in_3davc_extension");
    else
        code_layer_of_kind<slice_header>(c, x, context, "slice_data");
}

// H.264 G.7.3.2.12.1
template <class Coder>
void code(Coder& c, in<Coder, prefix_nal_unit_svc>& x, const nal_unit_header& header)
{
    const nal_unit_header_svc_extension& svc = header.nal_unit_header_svc_extension;
    const auto here = c.structure("prefix_nal_unit_svc");
    if (header.nal_ref_idc != 0) {
        c.flag("store_ref_base_pic_flag", x.store_ref_base_pic_flag);
        if ((svc.use_ref_base_pic_flag || x.store_ref_base_pic_flag) && !svc.idr_flag)
            code(c, x.dec_ref_base_pic_marking);
        c.flag("additional_prefix_nal_unit_extension_flag", x.additional_prefix_nal_unit_extension_flag);
        if (x.additional_prefix_nal_unit_extension_flag)
            c.flags_left("additional_prefix_nal_unit_extension_data_flag",
                         x.additional_prefix_nal_unit_extension_data_flag);
        rbsp_trailing_bits(c);
        return;
    }
    c.more_bits(x.trailing_bits_sent);
    if (x.trailing_bits_sent) {
        c.flags_left("additional_prefix_nal_unit_extension_data_flag",
                     x.additional_prefix_nal_unit_extension_data_flag);
        rbsp_trailing_bits(c);
    } else
        c.end_of_unit();
}

// H.264 7.3.2.12
template <class Coder>
void code(Coder& c, in<Coder, prefix_nal_unit_rbsp>& x, const nal_unit_header& header)
{
    const auto here = c.structure("prefix_nal_unit_rbsp");
    if (header.scalable())
        code(c, x.prefix_nal_unit_svc, header);
    else
        c.end_of_unit();
}

} // namespace orv_utils_v4::h264
