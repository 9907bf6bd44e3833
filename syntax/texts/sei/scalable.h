// The texts of the SEI payloads of scalable video coding, but for scalability_info(): H.264 clauses G.13.1.2 to
// G.13.1.12.
#pragma once

#include "coders/coder.h"
#include "texts/parameter_sets.h"
#include "texts/sei/stream_info.h"
#include "texts/sei_context.h"

#include <orv-utils-v4/h264_syntax/sei/scalable.h>

namespace orv_utils_v4::h264 {

// H.264 G.13.1.2
template <class Coder>
void code(Coder& c, in<Coder, sub_pic_scalable_layer>& x, const sei_context&)
{
    const auto here = c.structure("sub_pic_scalable_layer");
    c.ue("layer_id", x.layer_id, 0, 2047);
}

// H.264 G.13.1.3
template <class Coder>
void code(Coder& c, in<Coder, non_required_layer_rep>& x, const sei_context&)
{
    const auto here = c.structure("non_required_layer_rep");
    c.ue_bound("num_info_entries_minus1", x.num_info_entries_minus1, 0, non_required_layer_rep::most_entries - 1);
    c.count("entry_dependency_id", x.entries, std::uint64_t{x.num_info_entries_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_info_entries_minus1 && c.going(); ++i) {
        auto& entry = x.entries[i];
        c.u(3, {"entry_dependency_id", i}, entry.entry_dependency_id);
        c.ue({"num_non_required_layer_reps_minus1", i}, entry.num_non_required_layer_reps_minus1);
        c.count({"non_required_layer_rep_dependency_id", i}, entry.non_required_layer_reps,
                std::uint64_t{entry.num_non_required_layer_reps_minus1} + 1);
        for (std::uint32_t j = 0; j <= entry.num_non_required_layer_reps_minus1 && c.going(); ++j) {
            auto& id = entry.non_required_layer_reps[j];
            c.u(3, {"non_required_layer_rep_dependency_id", i, j}, id.non_required_layer_rep_dependency_id);
            c.u(4, {"non_required_layer_rep_quality_id", i, j}, id.non_required_layer_rep_quality_id);
        }
    }
}

// H.264 G.13.1.4
template <class Coder>
void code(Coder& c, in<Coder, priority_layer_info>& x, const sei_context&)
{
    const auto here = c.structure("priority_layer_info");
    c.u(3, "pr_dependency_id", x.pr_dependency_id);
    c.u_bound(4, "num_priority_ids", x.num_priority_ids, 0, priority_layer_info::most_ids);
    for (std::uint32_t i = 0; i < x.num_priority_ids && c.going(); ++i)
        c.u(6, {"alt_priority_id", i}, x.alt_priority_id[i]);
}

// H.264 G.13.1.5
template <class Coder>
void code(Coder& c, in<Coder, layers_not_present>& x, const sei_context&)
{
    const auto here = c.structure("layers_not_present");
    c.ue("num_layers", x.num_layers, 0, 2047);
    c.count("layer_id", x.layer_id, x.num_layers);
    for (std::uint32_t i = 0; i < x.num_layers && c.going(); ++i)
        c.ue({"layer_id", i}, x.layer_id[i], 0, 2047);
}

// H.264 G.13.1.6
template <class Coder>
void code(Coder& c, in<Coder, layer_dependency_change>& x, const sei_context&)
{
    const auto here = c.structure("layer_dependency_change");
    c.ue_bound("num_layers_minus1", x.num_layers_minus1, 0, layer_dependency_change::most_layers - 1);
    c.count("layer_id", x.layers, std::uint64_t{x.num_layers_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_layers_minus1 && c.going(); ++i) {
        auto& layer = x.layers[i];
        c.ue({"layer_id", i}, layer.layer_id, 0, 2047);
        c.flag({"layer_dependency_info_present_flag", i}, layer.layer_dependency_info_present_flag);
        if (layer.layer_dependency_info_present_flag) {
            c.ue({"num_directly_dependent_layers", i}, layer.num_directly_dependent_layers);
            code_ue_list(c, "directly_dependent_layer_id_delta_minus1", i,
                         layer.directly_dependent_layer_id_delta_minus1, layer.num_directly_dependent_layers,
                         highest_ue);
        } else
            c.ue({"layer_dependency_info_src_layer_id_delta_minus1", i},
                 layer.layer_dependency_info_src_layer_id_delta_minus1);
    }
}

// H.264 G.13.1.7; the text of sei_message() is found where this one is compiled for a coder
template <class Coder>
void code(Coder& c, in<Coder, scalable_nesting>& x, const sei_context& context)
{
    const auto here = c.structure("scalable_nesting");
    c.flag("all_layer_representations_in_au_flag", x.all_layer_representations_in_au_flag);
    if (!x.all_layer_representations_in_au_flag) {
        c.ue("num_layer_representations_minus1", x.num_layer_representations_minus1, 0, 127);
        c.count("sei_dependency_id", x.layers, std::uint64_t{x.num_layer_representations_minus1} + 1);
        for (std::uint32_t i = 0; i <= x.num_layer_representations_minus1 && c.going(); ++i) {
            c.u(3, {"sei_dependency_id", i}, x.layers[i].sei_dependency_id);
            c.u(4, {"sei_quality_id", i}, x.layers[i].sei_quality_id);
        }
        c.u(3, "sei_temporal_id", x.sei_temporal_id);
    }
    while (!c.byte_aligned())
        c.f(1, "sei_nesting_zero_bit", 0);
    sei_context inner = context;
    ++inner.nesting;
    for (std::size_t i = 0; i == 0 ? c.going() : c.more_payload(i, x.messages.size()); ++i) {
        if (i == scalable_nesting::most_messages)
            return c.fail(reason::too_large, "sei_message", static_cast<std::int64_t>(i) + 1,
                          scalable_nesting::most_messages);
        auto* const message = c.append("sei_message", x.messages, i);
        if (message == nullptr)
            return;
        code(c, *message, inner);
    }
}

// H.264 G.13.1.8
template <class Coder>
void code(Coder& c, in<Coder, base_layer_temporal_hrd>& x, const sei_context&)
{
    const auto here = c.structure("base_layer_temporal_hrd");
    c.ue_bound("num_of_temporal_layers_in_base_layer_minus1", x.num_of_temporal_layers_in_base_layer_minus1, 0,
               base_layer_temporal_hrd::most_layers - 1);
    c.count("sei_temporal_id", x.layers, std::uint64_t{x.num_of_temporal_layers_in_base_layer_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_of_temporal_layers_in_base_layer_minus1 && c.going(); ++i) {
        auto& layer = x.layers[i];
        c.u(3, {"sei_temporal_id", i}, layer.sei_temporal_id);
        c.flag({"sei_timing_info_present_flag", i}, layer.sei_timing_info_present_flag);
        if (layer.sei_timing_info_present_flag) {
            c.u(32, {"sei_num_units_in_tick", i}, layer.sei_num_units_in_tick, 1, 0xFFFFFFFF);
            c.u(32, {"sei_time_scale", i}, layer.sei_time_scale, 1, 0xFFFFFFFF);
            c.flag({"sei_fixed_frame_rate_flag", i}, layer.sei_fixed_frame_rate_flag);
        }
        c.flag({"sei_nal_hrd_parameters_present_flag", i}, layer.sei_nal_hrd_parameters_present_flag);
        if (layer.sei_nal_hrd_parameters_present_flag)
            code(c, layer.sei_nal_hrd_parameters);
        c.flag({"sei_vcl_hrd_parameters_present_flag", i}, layer.sei_vcl_hrd_parameters_present_flag);
        if (layer.sei_vcl_hrd_parameters_present_flag)
            code(c, layer.sei_vcl_hrd_parameters);
        if (layer.sei_nal_hrd_parameters_present_flag || layer.sei_vcl_hrd_parameters_present_flag)
            c.flag({"sei_low_delay_hrd_flag", i}, layer.sei_low_delay_hrd_flag);
        c.flag({"sei_pic_struct_present_flag", i}, layer.sei_pic_struct_present_flag);
    }
}

// H.264 G.13.1.9
template <class Coder>
void code(Coder& c, in<Coder, quality_layer_integrity_check>& x, const sei_context&)
{
    const auto here = c.structure("quality_layer_integrity_check");
    c.ue("num_info_entries_minus1", x.num_info_entries_minus1, 0, 7);
    c.count("entry_dependency_id", x.entries, std::uint64_t{x.num_info_entries_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_info_entries_minus1 && c.going(); ++i) {
        c.u(3, {"entry_dependency_id", i}, x.entries[i].entry_dependency_id);
        c.u(16, {"quality_layer_crc", i}, x.entries[i].quality_layer_crc);
    }
}

// H.264 G.13.1.10, the loop over k
template <class Coder>
void code(Coder& c, in<Coder, redundant_pic_match>& x, std::uint32_t i, std::uint32_t j, std::uint32_t k)
{
    c.ue({"redundant_pic_cnt_minus1", i, j, k}, x.redundant_pic_cnt_minus1, 0, 126);
    c.flag({"pic_match_flag", i, j, k}, x.pic_match_flag);
    if (!x.pic_match_flag) {
        c.flag({"mb_type_match_flag", i, j, k}, x.mb_type_match_flag);
        c.flag({"motion_match_flag", i, j, k}, x.motion_match_flag);
        c.flag({"residual_match_flag", i, j, k}, x.residual_match_flag);
        c.flag({"intra_samples_match_flag", i, j, k}, x.intra_samples_match_flag);
    }
}

// H.264 G.13.1.10, the loop over i
template <class Coder>
void code(Coder& c, in<Coder, redundant_pic_dependency>& x, std::uint32_t i)
{
    c.u(3, {"dependency_id", i}, x.dependency_id);
    c.ue_bound({"num_qIds_minus1", i}, x.num_qIds_minus1, 0, redundant_pic_property::most_quality_ids - 1);
    c.count({"quality_id", i}, x.qIds, std::uint64_t{x.num_qIds_minus1} + 1);
    for (std::uint32_t j = 0; j <= x.num_qIds_minus1 && c.going(); ++j) {
        auto& quality = x.qIds[j];
        c.u(4, {"quality_id", i, j}, quality.quality_id);
        c.ue({"num_redundant_pics_minus1", i, j}, quality.num_redundant_pics_minus1);
        c.count({"redundant_pic_cnt_minus1", i, j}, quality.redundant_pics,
                std::uint64_t{quality.num_redundant_pics_minus1} + 1);
        for (std::uint32_t k = 0; k <= quality.num_redundant_pics_minus1 && c.going(); ++k)
            code(c, quality.redundant_pics[k], i, j, k);
    }
}

// H.264 G.13.1.10
template <class Coder>
void code(Coder& c, in<Coder, redundant_pic_property>& x, const sei_context&)
{
    const auto here = c.structure("redundant_pic_property");
    c.ue_bound("num_dIds_minus1", x.num_dIds_minus1, 0, redundant_pic_property::most_dependency_ids - 1);
    c.count("dependency_id", x.dIds, std::uint64_t{x.num_dIds_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_dIds_minus1 && c.going(); ++i)
        code(c, x.dIds[i], i);
}

// H.264 G.13.1.11
template <class Coder>
void code(Coder& c, in<Coder, tl0_dep_rep_index>& x, const sei_context&)
{
    const auto here = c.structure("tl0_dep_rep_index");
    c.u(8, "tl0_dep_rep_idx", x.tl0_dep_rep_idx);
    c.u(16, "effective_idr_pic_id", x.effective_idr_pic_id);
}

// H.264 G.13.1.12
template <class Coder>
void code(Coder& c, in<Coder, tl_switching_point>& x, const sei_context&)
{
    const auto here = c.structure("tl_switching_point");
    c.se("delta_frame_num", x.delta_frame_num);
}

} // namespace orv_utils_v4::h264
