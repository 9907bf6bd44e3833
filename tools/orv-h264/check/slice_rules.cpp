// Rules over single slice headers with their parameter sets (H.264 7.4.3, A.2).
#include "check/facts.h"
#include "check/profile_numbers.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using h264::slice_kind;

bool is_intra(slice_kind kind)
{
    return kind == slice_kind::I || kind == slice_kind::SI;
}

verdict begins_inside_picture(const slice_facts& f)
{
    const bool pairs = f.sps.mb_adaptive_frame_field_flag && !f.slice.field_pic_flag;
    const std::uint64_t size = h264::PicSizeInMbs(f.sps, f.slice.field_pic_flag) / (pairs ? 2 : 1);
    if (f.slice.first_mb_in_slice < size)
        return {};
    return breach_of("first_mb_in_slice", f.slice.first_mb_in_slice,
                     fmt::format("below {}, the macroblock{}s of the picture", size, pairs ? " pair" : ""));
}

verdict idr_is_intra(const slice_facts& f)
{
    if (!f.idr() || is_intra(f.slice.kind()))
        return {};
    return breach_of("slice_type", f.slice.slice_type, "2, 4, 7 or 9 in an IDR picture");
}

verdict idr_begins_numbers(const slice_facts& f)
{
    if (!f.idr() || f.slice.frame_num == 0)
        return {};
    return breach_of("frame_num", f.slice.frame_num, "0 in an IDR picture");
}

verdict idr_is_reference(const slice_facts& f)
{
    if (!f.idr() || f.header.nal_ref_idc != 0)
        return {};
    return breach_of("nal_ref_idc", 0, "above 0 in an IDR picture");
}

verdict intra_alone_without_references(const slice_facts& f)
{
    if (f.sps.max_num_ref_frames != 0 || is_intra(f.slice.kind()))
        return {};
    return breach_of("slice_type", f.slice.slice_type, "2, 4, 7 or 9 where max_num_ref_frames is 0");
}

verdict kind_in_profile(const slice_facts& f)
{
    const slice_kind kind = f.slice.kind();
    const bool switching = kind == slice_kind::SP || kind == slice_kind::SI;
    if ((!switching || f.sps.profile_idc == extended) && (kind != slice_kind::B || f.sps.profile_idc != baseline))
        return {};
    return breach_of(
        "slice_type", f.slice.slice_type,
        fmt::format("no {} slices in the {} profile", switching ? "SP and SI" : "B", h264::profile_name(f.sps)));
}

std::size_t times(const slice_facts& f, std::uint32_t operation)
{
    const auto& list = f.marking().operations;
    return static_cast<std::size_t>(std::count_if(list.begin(), list.end(), [&](const h264::marking_operation& o) {
        return o.memory_management_control_operation == operation;
    }));
}

verdict operations_come_once(const slice_facts& f)
{
    for (const std::uint32_t operation : {4U, 5U, 6U})
        if (times(f, operation) > 1)
            return breach_of("memory_management_control_operation", operation, "once in a header");
    return {};
}

verdict reset_stands_without_others(const slice_facts& f)
{
    constexpr std::uint32_t reset = 5;
    if (times(f, reset) == 0 || times(f, 1) + times(f, 2) + times(f, 3) == 0)
        return {};
    return breach_of("memory_management_control_operation", reset, "not together with 1 to 3");
}

verdict long_term_idr_has_room(const slice_facts& f)
{
    if (!f.idr() || !f.marking().long_term_reference_flag || f.sps.max_num_ref_frames != 0)
        return {};
    return breach_of("long_term_reference_flag", 1, "0 where max_num_ref_frames is 0");
}

using enum severity;

constexpr rule_over<slice_facts> of_slices[] = {
    {{"slice-idr-is-reference", error, "7.4.1", "an IDR picture is a reference picture",
      "nal_ref_idc 0 says that the picture may be dropped, and all that follows is predicted from it.",
      "nal_unit_type 5 with nal_ref_idc 0"},
     idr_is_reference},
    {{"slice-idr-is-intra", error, "7.4.1.2.4", "an IDR picture has I and SI slices only",
      "There is nothing before it to predict from.", "slice_type 5 (P) with nal_unit_type 5"},
     idr_is_intra},
    {{"slice-begins-inside-picture", error, "7.4.3", "first_mb_in_slice is a macroblock of the picture",
      "A decoder that does not look writes outside of the picture.", "first_mb_in_slice 99 in a picture of 99"},
     begins_inside_picture},
    {{"slice-intra-without-references", error, "7.4.3", "a stream without reference frames has I and SI slices only",
      "max_num_ref_frames 0 says that nothing is predicted.", "slice_type 0 with max_num_ref_frames 0"},
     intra_alone_without_references},
    {{"slice-idr-begins-numbers", error, "7.4.3", "frame_num of an IDR picture is 0",
      "The numbers begin again there; all gaps are counted from it.", "frame_num 3 with nal_unit_type 5"},
     idr_begins_numbers},
    {{"slice-long-term-idr-has-room", error, "7.4.3.3", "a long-term IDR picture has a frame to lie in",
      "max_num_ref_frames 0 keeps none.", "long_term_reference_flag 1 with max_num_ref_frames 0"},
     long_term_idr_has_room},
    {{"slice-operations-once", error, "7.4.3.3", "operations 4, 5 and 6 come once in a header",
      "Each of them says something of the picture as a whole.", "memory_management_control_operation 5 twice"},
     operations_come_once},
    {{"slice-reset-without-others", error, "7.4.3.3", "operation 5 stands without operations 1 to 3",
      "It marks all pictures as unused; there is none left for the others.",
      "memory_management_control_operation 1 and 5 in a header"},
     reset_stands_without_others},
    {{"slice-kind-in-profile", error, "A.2", "the slice type is one that the profile has",
      "Baseline has no B slices, and only Extended has SP and SI.", "slice_type 6 (B) with profile_idc 66"},
     kind_in_profile},
};

} // namespace

std::span<const rule_over<slice_facts>> slice_rules()
{
    return of_slices;
}

} // namespace orv_h264
