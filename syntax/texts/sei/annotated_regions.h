// The text of the SEI payload annotated_regions(), H.264 clause D.1, payload 202.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/sei/annotated_regions.h>

namespace orv_utils_v4::h264 {

// H.264 D.1, payload 202: st(v) begins at a byte
template <class Coder, class String>
void code_aligned_string(Coder& c, label name, String& x)
{
    while (!c.byte_aligned())
        c.f(1, "ar_bit_equal_to_zero", 0);
    c.st(name, x);
}

// H.264 D.1, payload 202, label update i
template <class Coder>
void code(Coder& c, in<Coder, ar_label_update>& x, std::uint32_t i)
{
    c.ue({"ar_label_idx", i}, x.ar_label_idx, 0, 255);
    c.flag("ar_label_cancel_flag", x.ar_label_cancel_flag);
    if (!x.ar_label_cancel_flag)
        code_aligned_string(c, {"ar_label", x.ar_label_idx}, x.ar_label);
}

// H.264 D.1, payload 202, object update i
template <class Coder>
void code(Coder& c, in<Coder, ar_object_update>& x, std::uint32_t i, const annotated_regions& regions)
{
    c.ue({"ar_object_idx", i}, x.ar_object_idx, 0, 255);
    c.flag("ar_object_cancel_flag", x.ar_object_cancel_flag);
    if (x.ar_object_cancel_flag)
        return;
    const std::uint32_t object = x.ar_object_idx;
    if (regions.ar_object_label_present_flag) {
        c.flag("ar_object_label_update_flag", x.ar_object_label_update_flag);
        if (x.ar_object_label_update_flag)
            c.ue({"ar_object_label_idx", object}, x.ar_object_label_idx, 0, 255);
    }
    c.flag("ar_bounding_box_update_flag", x.ar_bounding_box_update_flag);
    if (!x.ar_bounding_box_update_flag)
        return;
    c.flag("ar_bounding_box_cancel_flag", x.ar_bounding_box_cancel_flag);
    if (x.ar_bounding_box_cancel_flag)
        return;
    c.u(16, {"ar_bounding_box_top", object}, x.ar_bounding_box_top);
    c.u(16, {"ar_bounding_box_left", object}, x.ar_bounding_box_left);
    c.u(16, {"ar_bounding_box_width", object}, x.ar_bounding_box_width);
    c.u(16, {"ar_bounding_box_height", object}, x.ar_bounding_box_height);
    if (regions.ar_partial_object_flag_present_flag)
        c.flag({"ar_partial_object_flag", object}, x.ar_partial_object_flag);
    if (regions.ar_object_confidence_info_present_flag)
        c.u_v(regions.ar_object_confidence_length_minus1 + 1U, {"ar_object_confidence", object},
              x.ar_object_confidence);
}

// H.264 D.1, payload 202, the labels
template <class Coder>
void code_labels(Coder& c, in<Coder, annotated_regions>& x)
{
    c.flag("ar_object_label_language_present_flag", x.ar_object_label_language_present_flag);
    if (x.ar_object_label_language_present_flag)
        code_aligned_string(c, "ar_object_label_language", x.ar_object_label_language);
    c.ue_bound("ar_num_label_updates", x.ar_num_label_updates, 0, 255);
    c.count("ar_label_idx", x.label_updates, x.ar_num_label_updates);
    for (std::uint32_t i = 0; i < x.label_updates.size() && c.going(); ++i)
        code(c, x.label_updates[i], i);
}

// H.264 D.1, payload 202
template <class Coder>
void code(Coder& c, in<Coder, annotated_regions>& x)
{
    const auto here = c.structure("annotated_regions");
    c.flag("ar_cancel_flag", x.ar_cancel_flag);
    if (!x.ar_cancel_flag) {
        c.flag("ar_not_optimized_for_viewing_flag", x.ar_not_optimized_for_viewing_flag);
        c.flag("ar_true_motion_flag", x.ar_true_motion_flag);
        c.flag("ar_occluded_object_flag", x.ar_occluded_object_flag);
        c.flag("ar_partial_object_flag_present_flag", x.ar_partial_object_flag_present_flag);
        c.flag("ar_object_label_present_flag", x.ar_object_label_present_flag);
        c.flag("ar_object_confidence_info_present_flag", x.ar_object_confidence_info_present_flag);
        if (x.ar_object_confidence_info_present_flag)
            c.u(4, "ar_object_confidence_length_minus1", x.ar_object_confidence_length_minus1);
        if (x.ar_object_label_present_flag)
            code_labels(c, x);
        c.ue_bound("ar_num_object_updates", x.ar_num_object_updates, 0, 255);
        c.count("ar_object_idx", x.object_updates, x.ar_num_object_updates);
        for (std::uint32_t i = 0; i < x.object_updates.size() && c.going(); ++i)
            code(c, x.object_updates[i], i, x);
    }
}

} // namespace orv_utils_v4::h264
