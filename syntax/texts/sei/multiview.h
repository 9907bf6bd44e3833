// The texts of SEI payloads of multiview video coding, H.264 clause H.13.1. Those with files of their own are not here.
#pragma once

#include "coders/coder.h"
#include "texts/parameter_sets.h"
#include "texts/sei_context.h"

#include <orv-utils-v4/h264_syntax/sei/multiview.h>
#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

#include <algorithm>

namespace orv_utils_v4::h264 {

/// The message of mvc_scalable_nesting() and mvcd_scalable_nesting(), aligned. The text of sei_message() is found where
/// this one is compiled for a coder.
template <class Coder, class Messages>
void code_nested_message(Coder& c, Messages& messages, const sei_context& context)
{
    while (!c.byte_aligned())
        c.f(1, "sei_nesting_zero_bit", 0);
    sei_context inner = context;
    ++inner.nesting;
    c.count("sei_message", messages, 1);
    if (c.going())
        code(c, messages[0], inner);
}

// H.264 H.13.1.2
template <class Coder>
void code(Coder& c, in<Coder, mvc_scalable_nesting>& x, const sei_context& context)
{
    const auto here = c.structure("mvc_scalable_nesting");
    c.flag("operation_point_flag", x.operation_point_flag);
    if (!x.operation_point_flag) {
        c.flag("all_view_components_in_au_flag", x.all_view_components_in_au_flag);
        if (!x.all_view_components_in_au_flag) {
            c.ue("num_view_components_minus1", x.num_view_components_minus1, 0, 1023);
            c.count("sei_view_id", x.sei_view_id, std::uint64_t{x.num_view_components_minus1} + 1);
            for (std::uint32_t i = 0; i <= x.num_view_components_minus1 && c.going(); ++i)
                c.u(10, {"sei_view_id", i}, x.sei_view_id[i]);
        }
    } else {
        c.ue("num_view_components_op_minus1", x.num_view_components_op_minus1, 0, 1023);
        c.count("sei_op_view_id", x.sei_op_view_id, std::uint64_t{x.num_view_components_op_minus1} + 1);
        for (std::uint32_t i = 0; i <= x.num_view_components_op_minus1 && c.going(); ++i)
            c.u(10, {"sei_op_view_id", i}, x.sei_op_view_id[i]);
        c.u(3, "sei_op_temporal_id", x.sei_op_temporal_id);
    }
    code_nested_message(c, x.messages, context);
}

// H.264 H.13.1.4
template <class Coder>
void code(Coder& c, in<Coder, multiview_scene_info>& x, const sei_context&)
{
    const auto here = c.structure("multiview_scene_info");
    c.ue("max_disparity", x.max_disparity, 0, 1023);
}

// H.264 H.13.1.6
template <class Coder>
void code(Coder& c, in<Coder, non_required_view_component>& x, const sei_context&)
{
    const auto here = c.structure("non_required_view_component");
    c.ue_bound("num_info_entries_minus1", x.num_info_entries_minus1, 0, non_required_view_component::most_entries - 1);
    c.count("view_order_index", x.entries, std::uint64_t{x.num_info_entries_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_info_entries_minus1 && c.going(); ++i) {
        auto& entry = x.entries[i];
        c.ue({"view_order_index", i}, entry.view_order_index, 0, 1023);
        c.ue({"num_non_required_view_components_minus1", i}, entry.num_non_required_view_components_minus1, 0, 1022);
        c.count({"index_delta_minus1", i}, entry.index_delta_minus1,
                std::uint64_t{entry.num_non_required_view_components_minus1} + 1);
        for (std::uint32_t j = 0; j <= entry.num_non_required_view_components_minus1 && c.going(); ++j)
            c.ue({"index_delta_minus1", i, j}, entry.index_delta_minus1[j], 0, 1022);
    }
}

/// The flags of one list of view i, `references` of which the subset SPS has.
template <class Coder, class Flags>
void code_reference_flags(Coder& c, const char* name, std::size_t i, Flags& flags, std::uint32_t references)
{
    const std::uint32_t sent = std::min(references, view_dependency_flags::most_references);
    for (std::uint32_t j = 0; j < sent && c.going(); ++j)
        c.flag({name, static_cast<std::uint32_t>(i), j}, flags[j]);
}

// H.264 H.13.1.7 from anchor_update_flag on; `views` are those of the subset SPS
template <class Coder, class Views>
void code_view_dependencies(Coder& c, in<Coder, view_dependency_change>& x, const Views& views)
{
    for (std::size_t i = 1; i < views.size() && c.going(); ++i)
        c.append("anchor_ref_l0_flag", x.views, i - 1);
    c.entries_end("anchor_ref_l0_flag", x.views, views.empty() ? 0 : views.size() - 1);
    c.flag("anchor_update_flag", x.anchor_update_flag);
    c.flag("non_anchor_update_flag", x.non_anchor_update_flag);
    if (x.anchor_update_flag) {
        for (std::size_t i = 1; i < views.size() && c.going(); ++i) {
            const inter_view_references& references = views[i].references;
            auto& flags = x.views[i - 1];
            code_reference_flags(c, "anchor_ref_l0_flag", i, flags.anchor_ref_l0_flag, references.num_anchor_refs_l0);
            code_reference_flags(c, "anchor_ref_l1_flag", i, flags.anchor_ref_l1_flag, references.num_anchor_refs_l1);
        }
    }
    if (x.non_anchor_update_flag) {
        for (std::size_t i = 1; i < views.size() && c.going(); ++i) {
            const inter_view_references& references = views[i].references;
            auto& flags = x.views[i - 1];
            code_reference_flags(c, "non_anchor_ref_l0_flag", i, flags.non_anchor_ref_l0_flag,
                                 references.num_non_anchor_refs_l0);
            code_reference_flags(c, "non_anchor_ref_l1_flag", i, flags.non_anchor_ref_l1_flag,
                                 references.num_non_anchor_refs_l1);
        }
    }
}

// H.264 H.13.1.7; one of a subset SPS without views is not read
template <class Coder>
void code(Coder& c, in<Coder, view_dependency_change>& x, const sei_context& context)
{
    const auto here = c.structure("view_dependency_change");
    c.ue("seq_parameter_set_id", x.seq_parameter_set_id, 0, 31);
    if (!c.going())
        return;
    const subset_seq_parameter_set_rbsp* const sps = context.sets.find_subset_sps(x.seq_parameter_set_id);
    const unsigned profile_idc = sps == nullptr ? 0 : sps->seq_parameter_set_data.profile_idc;
    if (profile_idc == 118 || profile_idc == 128 || profile_idc == 134)
        code_view_dependencies(c, x, sps->seq_parameter_set_mvc_extension.views);
    else if (profile_idc == 135 || profile_idc == 138 || profile_idc == 139)
        code_view_dependencies(c, x, sps->seq_parameter_set_mvcd_extension.views);
    else
        c.fail(reason::no_sps, "seq_parameter_set_id", x.seq_parameter_set_id);
}

// H.264 H.13.1.8
template <class Coder>
void code(Coder& c, in<Coder, operation_points_not_present>& x, const sei_context&)
{
    const auto here = c.structure("operation_points_not_present");
    c.ue("num_operation_points", x.num_operation_points);
    c.count("operation_point_not_present_id", x.operation_point_not_present_id, x.num_operation_points);
    for (std::uint32_t k = 0; k < x.num_operation_points && c.going(); ++k)
        c.ue({"operation_point_not_present_id", k}, x.operation_point_not_present_id[k], 0, 65535);
}

// H.264 H.13.1.9, the loop over i
template <class Coder>
void code(Coder& c, in<Coder, base_view_temporal_hrd_layer>& x, std::uint32_t i)
{
    c.u(3, {"sei_mvc_temporal_id", i}, x.sei_mvc_temporal_id);
    c.flag({"sei_mvc_timing_info_present_flag", i}, x.sei_mvc_timing_info_present_flag);
    if (x.sei_mvc_timing_info_present_flag) {
        c.u(32, {"sei_mvc_num_units_in_tick", i}, x.sei_mvc_num_units_in_tick, 1, 0xFFFFFFFF);
        c.u(32, {"sei_mvc_time_scale", i}, x.sei_mvc_time_scale, 1, 0xFFFFFFFF);
        c.flag({"sei_mvc_fixed_frame_rate_flag", i}, x.sei_mvc_fixed_frame_rate_flag);
    }
    c.flag({"sei_mvc_nal_hrd_parameters_present_flag", i}, x.sei_mvc_nal_hrd_parameters_present_flag);
    if (x.sei_mvc_nal_hrd_parameters_present_flag)
        code(c, x.sei_mvc_nal_hrd_parameters);
    c.flag({"sei_mvc_vcl_hrd_parameters_present_flag", i}, x.sei_mvc_vcl_hrd_parameters_present_flag);
    if (x.sei_mvc_vcl_hrd_parameters_present_flag)
        code(c, x.sei_mvc_vcl_hrd_parameters);
    if (x.sei_mvc_nal_hrd_parameters_present_flag || x.sei_mvc_vcl_hrd_parameters_present_flag)
        c.flag({"sei_mvc_low_delay_hrd_flag", i}, x.sei_mvc_low_delay_hrd_flag);
    c.flag({"sei_mvc_pic_struct_present_flag", i}, x.sei_mvc_pic_struct_present_flag);
}

// H.264 H.13.1.9
template <class Coder>
void code(Coder& c, in<Coder, base_view_temporal_hrd>& x, const sei_context&)
{
    const auto here = c.structure("base_view_temporal_hrd");
    c.ue_bound("num_of_temporal_layers_in_base_view_minus1", x.num_of_temporal_layers_in_base_view_minus1, 0,
               base_view_temporal_hrd::most_layers - 1);
    c.count("sei_mvc_temporal_id", x.layers, std::uint64_t{x.num_of_temporal_layers_in_base_view_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_of_temporal_layers_in_base_view_minus1 && c.going(); ++i)
        code(c, x.layers[i], i);
}

// H.264 H.13.1.10
template <class Coder>
void code(Coder& c, in<Coder, multiview_view_position>& x, const sei_context&)
{
    const auto here = c.structure("multiview_view_position");
    c.ue("num_views_minus1", x.num_views_minus1, 0, 1023);
    c.count("view_position", x.view_position, std::uint64_t{x.num_views_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_views_minus1 && c.going(); ++i)
        c.ue({"view_position", i}, x.view_position[i]);
    c.flag("multiview_view_position_extension_flag", x.multiview_view_position_extension_flag, 0, 0);
}

} // namespace orv_utils_v4::h264
