// Rules over the slices of a picture, one beside the others (H.264 7.4.3, 7.4.3.3).
#include "check/access_unit_facts.h"
#include "check/profile_numbers.h"

#include <fmt/format.h>

namespace orv_h264 {

bool picture_slice_facts::in_order() const
{
    if (of.sps == nullptr || of.sps->constraint_set1_flag)
        return of.sps != nullptr;
    return of.sps->profile_idc != baseline && of.sps->profile_idc != extended;
}

namespace {

using enum severity;

verdict begins_once(const picture_slice_facts& f)
{
    if (!f.begun_before)
        return {};
    return breach_of("first_mb_in_slice", f.slice.first_mb_in_slice, "one that no other slice of the picture has");
}

verdict rises(const picture_slice_facts& f)
{
    const bool other_plane = f.slice.colour_plane_id != f.before.colour_plane_id;
    if (!f.in_order() || f.begun_before || other_plane || f.slice.first_mb_in_slice >= f.before.first_mb_in_slice)
        return {};
    return breach_of(
        "first_mb_in_slice", f.slice.first_mb_in_slice,
        fmt::format("above {} in the {} profile", f.before.first_mb_in_slice, h264::profile_name(*f.of.sps)));
}

/// Types 5 to 9 speak for all slices.
verdict is_of_announced_type(const picture_slice_facts& f)
{
    const std::uint32_t all = f.first.slice_type >= 5 ? f.first.slice_type : f.slice.slice_type;
    if (all < 5 || f.slice.slice_type % 5 == f.first.slice_type % 5)
        return {};
    return breach_of("slice_type", f.slice.slice_type,
                     fmt::format("{} or {}, for the first slice has {}", f.first.slice_type % 5,
                                 f.first.slice_type % 5 + 5, f.first.slice_type));
}

verdict switches_alike(const picture_slice_facts& f)
{
    const bool both = f.slice.slice_type % 5 == 3 && f.before.slice_type % 5 == 3; // SP
    if (!both || f.slice.sp_for_switch_flag == f.before.sp_for_switch_flag)
        return {};
    return breach_of("sp_for_switch_flag", f.slice.sp_for_switch_flag,
                     fmt::format("{:d}, as in the slice before", f.before.sp_for_switch_flag));
}

verdict groups_alike(const picture_slice_facts& f)
{
    if (f.slice.slice_group_change_cycle == f.before.slice_group_change_cycle)
        return {};
    return breach_of("slice_group_change_cycle", f.slice.slice_group_change_cycle,
                     fmt::format("{}, as in the slice before", f.before.slice_group_change_cycle));
}

verdict marks_alike(const picture_slice_facts& f)
{
    if (f.slice.marking_as_before)
        return {};
    return breach{f.slice.idr() ? "no_output_of_prior_pics_flag" : "adaptive_ref_pic_marking_mode_flag",
                  "dec_ref_pic_marking() of its own", "that of the slice before"};
}

constexpr rule_over<picture_slice_facts> of_picture_slices[] = {
    {{"slice-begins-once", error, "7.4.3", "no two slices of a picture begin with the same macroblock",
      "A macroblock is in one slice alone. A slice was sent twice, or is of another picture.",
      "three slices with first_mb_in_slice 0, 6 and 6"},
     begins_once},
    {{"slice-order-rising", error, "7.4.3", "slices stand in the order of their macroblocks",
      "Only the Baseline and the Extended profile allow any other; many decoders take none.",
      "first_mb_in_slice 8 before 4 in the Main profile"},
     rises},
    {{"slice-type-of-all", error, "7.4.3", "the types 5 to 9 are those of all slices of a picture",
      "Readers look at the first slice alone and take the picture for one of that type.",
      "slice_type 7 (I) in one slice and 0 (P) in another"},
     is_of_announced_type},
    {{"slice-switches-alike", error, "7.4.3", "sp_for_switch_flag is the same in all SP slices of a picture",
      "Each way of decoding is one for whole pictures.", "sp_for_switch_flag 0 and 1 in a picture"},
     switches_alike},
    {{"slice-groups-alike", error, "7.4.3", "slice_group_change_cycle is the same in all slices of a picture",
      "A picture has one map of slice groups.", "slice_group_change_cycle 1 and 2 in a picture"},
     groups_alike},
    {{"slice-marks-alike", error, "7.4.3.3", "dec_ref_pic_marking() is the same in all slices of a picture",
      "Marking is done once for a picture: decoders take it from whichever slice comes first, or last.",
      "memory_management_control_operation 1 in the second slice alone"},
     marks_alike},
};

} // namespace

std::span<const rule_over<picture_slice_facts>> picture_slice_rules()
{
    return of_picture_slices;
}

} // namespace orv_h264
