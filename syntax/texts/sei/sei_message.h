// The texts of an SEI NAL unit, H.264 clauses 7.3.2.3, 7.3.2.3.1 and D.1.1: messages, and which payload goes with a
// type.
#pragma once

#include "texts/parameter_sets.h"
#include "texts/sei/annotated_regions.h"
#include "texts/sei/colour.h"
#include "texts/sei/depth.h"
#include "texts/sei/display.h"
#include "texts/sei/manifest.h"
#include "texts/sei/multiview.h"
#include "texts/sei/multiview_acquisition_info.h"
#include "texts/sei/omnidirectional.h"
#include "texts/sei/pictures.h"
#include "texts/sei/post_processing.h"
#include "texts/sei/scalability_info.h"
#include "texts/sei/scalable.h"
#include "texts/sei/sub_sequences.h"
#include "texts/sei/timing.h"
#include "texts/sei/user_data.h"
#include "texts/sei/view_scalability_info.h"
#include "texts/sei_context.h"

#include <orv-utils-v4/h264_syntax/sei/sei.h>

namespace orv_utils_v4::h264 {

/// The most nesting messages that a message may lie in.
constexpr unsigned deepest_nesting = 2;

/// Whether the lengths of its elements hang on parameter sets that a nesting message leaves open.
constexpr bool open_inside_nesting(std::uint32_t payload_type) noexcept
{
    return payload_type == 0 || payload_type == 1 || payload_type == 7 || payload_type == 8 || payload_type == 18;
}

// H.264 D.1.1, which payload it is
template <class Coder>
void code_payload_of_type(Coder& c, std::uint32_t payload_type, in<Coder, sei_payload>& x, const sei_context& context)
{
    // clang-format off
    switch (payload_type) {
    // Annex D
    case 0: return code_as<buffering_period>(c, x, context);
    case 1: return code_as<pic_timing>(c, x, context);
    case 2: return code_as<pan_scan_rect>(c, x);
    case 3: return code_as<filler_payload>(c, x);
    case 4: return code_as<user_data_registered_itu_t_t35>(c, x);
    case 5: return code_as<user_data_unregistered>(c, x);
    case 6: return code_as<recovery_point>(c, x, context);
    case 7: return code_as<dec_ref_pic_marking_repetition>(c, x, context);
    case 8: return code_as<spare_pic>(c, x, context);
    case 9: return code_as<scene_info>(c, x);
    case 10: return code_as<sub_seq_info>(c, x, context);
    case 11: return code_as<sub_seq_layer_characteristics>(c, x);
    case 12: return code_as<sub_seq_characteristics>(c, x);
    case 13: return code_as<full_frame_freeze>(c, x);
    case 14: return code_as<full_frame_freeze_release>(c, x);
    case 15: return code_as<full_frame_snapshot>(c, x);
    case 16: return code_as<progressive_refinement_segment_start>(c, x);
    case 17: return code_as<progressive_refinement_segment_end>(c, x);
    case 18: return code_as<motion_constrained_slice_group_set>(c, x, context);
    case 19: return code_as<film_grain_characteristics>(c, x, context);
    case 20: return code_as<deblocking_filter_display_preference>(c, x);
    case 21: return code_as<stereo_video_info>(c, x);
    case 22: return code_as<post_filter_hint>(c, x);
    case 23: return code_as<tone_mapping_info>(c, x);
    case 45: return code_as<frame_packing_arrangement>(c, x);
    case 47: return code_as<display_orientation>(c, x);
    case 137: return code_as<mastering_display_colour_volume>(c, x);
    case 142: return code_as<colour_remapping_info>(c, x, context);
    case 144: return code_as<content_light_level_info>(c, x);
    case 147: return code_as<alternative_transfer_characteristics>(c, x);
    case 148: return code_as<ambient_viewing_environment>(c, x);
    case 150: return code_as<equirectangular_projection>(c, x);
    case 151: return code_as<cubemap_projection>(c, x);
    case 154: return code_as<sphere_rotation>(c, x);
    case 155: return code_as<regionwise_packing>(c, x);
    case 156: return code_as<omni_viewport>(c, x);
    case 200: return code_as<sei_manifest>(c, x);
    case 201: return code_as<sei_prefix_indication>(c, x);
    case 202: return code_as<annotated_regions>(c, x);

    // Annexes G to J
    case 24: return code_as<scalability_info>(c, x, context);
    case 25: return code_as<sub_pic_scalable_layer>(c, x, context);
    case 26: return code_as<non_required_layer_rep>(c, x, context);
    case 27: return code_as<priority_layer_info>(c, x, context);
    case 28: return code_as<layers_not_present>(c, x, context);
    case 29: return code_as<layer_dependency_change>(c, x, context);
    case 30: return code_as<scalable_nesting>(c, x, context);
    case 31: return code_as<base_layer_temporal_hrd>(c, x, context);
    case 32: return code_as<quality_layer_integrity_check>(c, x, context);
    case 33: return code_as<redundant_pic_property>(c, x, context);
    case 34: return code_as<tl0_dep_rep_index>(c, x, context);
    case 35: return code_as<tl_switching_point>(c, x, context);
    case 37: return code_as<mvc_scalable_nesting>(c, x, context);
    case 38: return code_as<view_scalability_info>(c, x, context);
    case 39: return code_as<multiview_scene_info>(c, x, context);
    case 40: return code_as<multiview_acquisition_info>(c, x, context);
    case 41: return code_as<non_required_view_component>(c, x, context);
    case 42: return code_as<view_dependency_change>(c, x, context);
    case 43: return code_as<operation_points_not_present>(c, x, context);
    case 44: return code_as<base_view_temporal_hrd>(c, x, context);
    case 46: return code_as<multiview_view_position>(c, x, context);
    case 48: return code_as<mvcd_scalable_nesting>(c, x, context);
    case 49: return code_as<mvcd_view_scalability_info>(c, x, context);
    case 50: return code_as<depth_representation_info>(c, x, context);
    case 51: return code_as<three_dimensional_reference_displays_info>(c, x, context);
    case 52: return code_as<depth_timing>(c, x, context);
    case 53: return code_as<depth_sampling_info>(c, x, context);
    case 54: return code_as<constrained_depth_parameter_set_identifier>(c, x, context);

    // not read: sei.h says why
    case 36: case 56: case 149: case 181: case 205: return code_as<payload_bytes>(c, x);

    default: return code_as<reserved_sei_message>(c, x);
    }
    // clang-format on
}

// H.264 D.1.1
template <class Coder>
void code_sei_payload(Coder& c, in<Coder, sei_message>& x, const sei_context& context)
{
    const auto here = c.structure("sei_payload");
    if (context.nesting > 0 && open_inside_nesting(x.payload_type))
        code_as<payload_bytes>(c, x.payload);
    else
        code_payload_of_type(c, x.payload_type, x.payload, context);
    if (!c.byte_aligned()) {
        c.f(1, "bit_equal_to_one", 1);
        while (!c.byte_aligned())
            c.f(1, "bit_equal_to_zero", 0);
    }
    c.bytes_left("payload_byte", x.rest);
}

// H.264 7.3.2.3.1
template <class Coder>
void code(Coder& c, in<Coder, sei_message>& x, const sei_context& context)
{
    const auto here = c.structure("sei_message");
    if (context.nesting > deepest_nesting)
        return c.fail(reason::too_large, "sei_message", context.nesting, deepest_nesting);
    if constexpr (Coder::reads) { // a byte or two would make a nested message of a kilobyte
        if (++*context.messages > sei_rbsp::most_messages)
            return c.fail(reason::too_large, "sei_message", static_cast<std::int64_t>(*context.messages),
                          sei_rbsp::most_messages);
    }
    c.ff_coded("last_payload_type_byte", x.payload_type);
    c.payload(x.payload_size, [&](auto& coder) { code_sei_payload(coder, x, context); });
}

// H.264 7.3.2.3
template <class Coder>
void code(Coder& c, in<Coder, sei_rbsp>& x, const sei_context& context)
{
    const auto here = c.structure("sei_rbsp");
    std::size_t messages = 0;
    sei_context of_unit = context;
    of_unit.messages = &messages;
    if (!c.more_rbsp_data(0, x.sei_messages.size()))
        return c.fail(reason::too_small, "sei_message", 0, 1);
    for (std::size_t i = 0; c.more_rbsp_data(i, x.sei_messages.size()); ++i) {
        if (i == sei_rbsp::most_messages)
            return c.fail(reason::too_large, "sei_message", static_cast<std::int64_t>(i) + 1, sei_rbsp::most_messages);
        auto* const message = c.append("sei_message", x.sei_messages, i);
        if (message == nullptr)
            return;
        code(c, *message, of_unit);
    }
    rbsp_trailing_bits(c);
}

} // namespace orv_utils_v4::h264
