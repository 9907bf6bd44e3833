#include "sequence_summary.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

// H.264 Tables D-1 and D-2
bool says_progressive(const h264::pic_timing& timing)
{
    constexpr std::uint8_t progressive = 0;
    constexpr std::uint8_t interlaced = 1;
    bool any = false;
    for (unsigned i = 0; i < timing.NumClockTS(); ++i) {
        const h264::clock_timestamp& stamp = timing.timestamps[i];
        if (stamp.clock_timestamp_flag && stamp.ct_type == interlaced)
            return false;
        any = any || (stamp.clock_timestamp_flag && stamp.ct_type == progressive);
    }
    return any || timing.pic_struct == 0;
}

/// Whether the top field comes first, where pic_struct tells it, Table D-1.
std::optional<bool> order_of(const h264::pic_timing& timing)
{
    switch (timing.pic_struct) {
    case 3:
    case 5:
        return true;
    case 4:
    case 6:
        return false;
    default:
        return {};
    }
}

void add_timing(sequence_summary& sequence, const h264::access_unit& unit)
{
    const auto* const timing = unit.message<h264::pic_timing>();
    if (timing == nullptr || !sequence.sps.vui_parameters.pic_struct_present_flag)
        return;
    if (!unit.field() && says_progressive(*timing))
        ++sequence.told_progressive;
    if (!sequence.top_field_first)
        sequence.top_field_first = order_of(*timing);
}

void add_entropy_coding(sequence_summary& sequence, const h264::access_unit& unit, const h264::parameter_sets& sets)
{
    for (const h264::access_unit_part& part : unit.parts) {
        if (part.role != h264::unit_role::primary || part.failure)
            continue;
        const bool of_first = part.pic_parameter_set_id == unit.header->pic_parameter_set_id;
        const h264::pic_parameter_set_rbsp* const pps = of_first ? unit.pps : sets.find_pps(part.pic_parameter_set_id);
        if (pps != nullptr)
            (pps->entropy_coding_mode_flag ? sequence.cabac : sequence.cavlc) = true;
    }
}

} // namespace

void sequence_summary::add(const h264::access_unit& unit, const h264::parameter_sets& sets)
{
    add_entropy_coding(*this, unit, sets);
    add_timing(*this, unit);
    if (unit.field()) {
        ++field_pictures;
        if (!top_field_first)
            top_field_first = unit.structure == h264::picture_structure::top_field;
    } else {
        ++(unit.structure == h264::picture_structure::mbaff_frame ? mbaff_pictures : frame_pictures);
    }
}

bool same_sequence(const h264::seq_parameter_set_data& a, const h264::seq_parameter_set_data& b)
{
    if (a.seq_parameter_set_id == b.seq_parameter_set_id)
        return a == b;
    h264::seq_parameter_set_data renamed = b;
    renamed.seq_parameter_set_id = a.seq_parameter_set_id;
    return a == renamed;
}

namespace {

template <class Value>
bool same_ratio(const std::optional<Value>& a, const std::optional<Value>& b)
{
    return a.has_value() == b.has_value() && (!a || (a->numerator == b->numerator && a->denominator == b->denominator));
}

bool same_profile(const h264::seq_parameter_set_data& a, const h264::seq_parameter_set_data& b)
{
    return a.profile_idc == b.profile_idc && std::strcmp(h264::profile_name(a), h264::profile_name(b)) == 0;
}

bool same_size(const h264::seq_parameter_set_data& a, const h264::seq_parameter_set_data& b)
{
    const auto same = [](h264::picture_size one, h264::picture_size other) {
        return one.width == other.width && one.height == other.height;
    };
    return same(h264::cropped_size(a), h264::cropped_size(b)) && same(h264::coded_size(a), h264::coded_size(b));
}

bool same_format(const h264::seq_parameter_set_data& a, const h264::seq_parameter_set_data& b)
{
    return a.chroma_format_idc == b.chroma_format_idc && a.bit_depth_luma_minus8 == b.bit_depth_luma_minus8 &&
           a.bit_depth_chroma_minus8 == b.bit_depth_chroma_minus8;
}

bool same_rate(const h264::vui_parameters& a, const h264::vui_parameters& b)
{
    return same_ratio(known(h264::field_rate(a)), known(h264::field_rate(b))) &&
           a.fixed_frame_rate_flag == b.fixed_frame_rate_flag;
}

bool same_colour(const h264::vui_parameters& a, const h264::vui_parameters& b)
{
    return a.video_format == b.video_format && a.video_full_range_flag == b.video_full_range_flag &&
           a.colour_primaries == b.colour_primaries && a.transfer_characteristics == b.transfer_characteristics &&
           a.matrix_coefficients == b.matrix_coefficients;
}

bool same_hrd(const h264::vui_parameters& a, const h264::vui_parameters& b)
{
    return a.nal_hrd_parameters_present_flag == b.nal_hrd_parameters_present_flag &&
           a.vcl_hrd_parameters_present_flag == b.vcl_hrd_parameters_present_flag &&
           a.nal_hrd_parameters == b.nal_hrd_parameters && a.vcl_hrd_parameters == b.vcl_hrd_parameters;
}

bool same_depth(const h264::seq_parameter_set_data& a, const h264::seq_parameter_set_data& b)
{
    return promised_reorder_depth(a).frames == promised_reorder_depth(b).frames;
}

} // namespace

std::vector<std::string> changes_between(const h264::seq_parameter_set_data& before,
                                         const h264::seq_parameter_set_data& after)
{
    const h264::vui_parameters& old_vui = before.vui_parameters;
    const h264::vui_parameters& vui = after.vui_parameters;
    const std::pair<bool, const char*> kept[] = {
        {same_profile(before, after), "profile"},
        {level_name(before) == level_name(after), "level"},
        {same_size(before, after), "picture size"},
        {same_ratio(known(h264::sample_aspect_ratio(old_vui)), known(h264::sample_aspect_ratio(vui))),
         "sample aspect ratio"},
        {same_format(before, after), "sample format"},
        {before.frame_mbs_only_flag == after.frame_mbs_only_flag, "scan type"},
        {same_rate(old_vui, vui), "frame rate"},
        {same_colour(old_vui, vui), "colour"},
        {same_hrd(old_vui, vui), "HRD"},
        {before.max_num_ref_frames == after.max_num_ref_frames, "reference frames"},
        {same_depth(before, after), "reorder depth"},
    };
    std::vector<std::string> changes;
    for (const auto& [same, name] : kept)
        if (!same)
            changes.emplace_back(name);
    if (changes.empty() && !same_sequence(before, after))
        changes.emplace_back("other elements");
    return changes;
}

std::string scan_type(const sequence_summary& sequence)
{
    if (sequence.sps.frame_mbs_only_flag)
        return "progressive";
    const bool mbaff = sequence.mbaff_pictures > 0;
    const bool frames = mbaff || sequence.frame_pictures > 0;
    if (sequence.field_pictures > 0)
        return !frames ? "interlaced" : mbaff ? "PAFF with MBAFF" : "PAFF";
    if (mbaff)
        return "MBAFF";
    if (!frames)
        return "fields allowed";
    return sequence.told_progressive == sequence.frame_pictures ? "progressive" : "frames, fields allowed";
}

std::string level_name(const h264::seq_parameter_set_data& sps)
{
    if (const h264::level_limits* const limits = h264::limits_of_level(sps))
        return limits->name;
    const unsigned part = sps.level_idc % 10U;
    return part == 0 ? fmt::format("{}", sps.level_idc / 10U) : fmt::format("{}.{}", sps.level_idc / 10U, part);
}

std::optional<h264::ratio> known(h264::ratio ratio)
{
    if (ratio.numerator == 0 || ratio.denominator == 0)
        return {};
    const std::uint64_t divisor = std::gcd(ratio.numerator, ratio.denominator);
    return h264::ratio{ratio.numerator / divisor, ratio.denominator / divisor};
}

h264::picture_size display_size(const h264::seq_parameter_set_data& sps)
{
    h264::picture_size size = h264::cropped_size(sps);
    if (const auto shape = known(h264::sample_aspect_ratio(sps.vui_parameters)))
        size.width = (size.width * shape->numerator + shape->denominator / 2) / shape->denominator;
    return size;
}

promised_depth promised_reorder_depth(const h264::seq_parameter_set_data& sps)
{
    if (sps.vui_parameters_present_flag && sps.vui_parameters.bitstream_restriction_flag)
        return {sps.vui_parameters.max_num_reorder_frames, true};
    return {h264::most_reordered_frames(sps), false};
}

} // namespace orv_h264
