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
    case 0: return code(c, c.template as<buffering_period>(x), context);
    case 1: return code(c, c.template as<pic_timing>(x), context);
    case 2: return code(c, c.template as<pan_scan_rect>(x));
    case 3: return code(c, c.template as<filler_payload>(x));
    case 4: return code(c, c.template as<user_data_registered_itu_t_t35>(x));
    case 5: return code(c, c.template as<user_data_unregistered>(x));
    case 6: return code(c, c.template as<recovery_point>(x), context);
    case 7: return code(c, c.template as<dec_ref_pic_marking_repetition>(x), context);
    case 8: return code(c, c.template as<spare_pic>(x), context);
    case 9: return code(c, c.template as<scene_info>(x));
    case 10: return code(c, c.template as<sub_seq_info>(x), context);
    case 11: return code(c, c.template as<sub_seq_layer_characteristics>(x));
    case 12: return code(c, c.template as<sub_seq_characteristics>(x));
    case 13: return code(c, c.template as<full_frame_freeze>(x));
    case 14: return code(c, c.template as<full_frame_freeze_release>(x));
    case 15: return code(c, c.template as<full_frame_snapshot>(x));
    case 16: return code(c, c.template as<progressive_refinement_segment_start>(x));
    case 17: return code(c, c.template as<progressive_refinement_segment_end>(x));
    case 18: return code(c, c.template as<motion_constrained_slice_group_set>(x), context);
    case 19: return code(c, c.template as<film_grain_characteristics>(x), context);
    case 20: return code(c, c.template as<deblocking_filter_display_preference>(x));
    case 21: return code(c, c.template as<stereo_video_info>(x));
    case 22: return code(c, c.template as<post_filter_hint>(x));
    case 23: return code(c, c.template as<tone_mapping_info>(x));
    case 45: return code(c, c.template as<frame_packing_arrangement>(x));
    case 47: return code(c, c.template as<display_orientation>(x));
    case 137: return code(c, c.template as<mastering_display_colour_volume>(x));
    case 142: return code(c, c.template as<colour_remapping_info>(x), context);
    case 144: return code(c, c.template as<content_light_level_info>(x));
    case 147: return code(c, c.template as<alternative_transfer_characteristics>(x));
    case 148: return code(c, c.template as<ambient_viewing_environment>(x));
    case 150: return code(c, c.template as<equirectangular_projection>(x));
    case 151: return code(c, c.template as<cubemap_projection>(x));
    case 154: return code(c, c.template as<sphere_rotation>(x));
    case 155: return code(c, c.template as<regionwise_packing>(x));
    case 156: return code(c, c.template as<omni_viewport>(x));
    case 200: return code(c, c.template as<sei_manifest>(x));
    case 201: return code(c, c.template as<sei_prefix_indication>(x));
    case 202: return code(c, c.template as<annotated_regions>(x));

    // Annexes G to J
    case 24: return code(c, c.template as<scalability_info>(x), context);
    case 25: return code(c, c.template as<sub_pic_scalable_layer>(x), context);
    case 26: return code(c, c.template as<non_required_layer_rep>(x), context);
    case 27: return code(c, c.template as<priority_layer_info>(x), context);
    case 28: return code(c, c.template as<layers_not_present>(x), context);
    case 29: return code(c, c.template as<layer_dependency_change>(x), context);
    case 30: return code(c, c.template as<scalable_nesting>(x), context);
    case 31: return code(c, c.template as<base_layer_temporal_hrd>(x), context);
    case 32: return code(c, c.template as<quality_layer_integrity_check>(x), context);
    case 33: return code(c, c.template as<redundant_pic_property>(x), context);
    case 34: return code(c, c.template as<tl0_dep_rep_index>(x), context);
    case 35: return code(c, c.template as<tl_switching_point>(x), context);
    case 37: return code(c, c.template as<mvc_scalable_nesting>(x), context);
    case 38: return code(c, c.template as<view_scalability_info>(x), context);
    case 39: return code(c, c.template as<multiview_scene_info>(x), context);
    case 40: return code(c, c.template as<multiview_acquisition_info>(x), context);
    case 41: return code(c, c.template as<non_required_view_component>(x), context);
    case 42: return code(c, c.template as<view_dependency_change>(x), context);
    case 43: return code(c, c.template as<operation_points_not_present>(x), context);
    case 44: return code(c, c.template as<base_view_temporal_hrd>(x), context);
    case 46: return code(c, c.template as<multiview_view_position>(x), context);
    case 48: return code(c, c.template as<mvcd_scalable_nesting>(x), context);
    case 49: return code(c, c.template as<mvcd_view_scalability_info>(x), context);
    case 50: return code(c, c.template as<depth_representation_info>(x), context);
    case 51: return code(c, c.template as<three_dimensional_reference_displays_info>(x), context);
    case 52: return code(c, c.template as<depth_timing>(x), context);
    case 53: return code(c, c.template as<depth_sampling_info>(x), context);
    case 54: return code(c, c.template as<constrained_depth_parameter_set_identifier>(x), context);

    // not read: sei.h says why
    case 36: case 56: case 149: case 205: return code(c, c.template as<payload_bytes>(x));

    default: return code(c, c.template as<reserved_sei_message>(x));
    }
    // clang-format on
}

// H.264 D.1.1
template <class Coder>
void code_sei_payload(Coder& c, in<Coder, sei_message>& x, const sei_context& context)
{
    const auto here = c.structure("sei_payload");
    if (context.nesting > 0 && open_inside_nesting(x.payload_type))
        code(c, c.template as<payload_bytes>(x.payload));
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
