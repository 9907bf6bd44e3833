#include "walked_unit.h"

#include "names.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::uint32_t most_entries = 128; // in every array whose size a unit tells

/// Why the array that `name` counts the entries of was not read; "" when it has them all.
std::string count_failure(std::string_view name, std::uint64_t count, std::size_t entries)
{
    if (count > most_entries)
        return fmt::format("{} asks for {} entries, more than {}", name, count, most_entries);
    return entries == count ? "" : fmt::format("memory ran out for the {} entries that {} asks for", count, name);
}

/// Likewise of lists, each of which has entries once it is read.
template <typename Lists>
std::string list_failure(const Lists& lists)
{
    const bool any_empty = std::any_of(lists.begin(), lists.end(), [](const brenik::h264_scaling_list& list) {
        return list.present && list.values.empty();
    });
    return any_empty ? "memory ran out for a scaling list" : "";
}

/// The first that is not "".
std::string first_of(std::initializer_list<std::string> problems)
{
    const auto* const first =
        std::find_if(problems.begin(), problems.end(), [](const std::string& problem) { return !problem.empty(); });
    return first == problems.end() ? "" : *first;
}

std::string missing_sps(std::string_view who, std::uint32_t sps_id)
{
    return fmt::format("{} names sequence parameter set {}, which is missing", who, sps_id);
}

std::string hrd_problem(const char* name, bool present, const brenik::h264_hrd_parameters& hrd)
{
    if (!present || hrd.valid)
        return "";
    // The flags are the last of its arrays to get their room.
    return count_failure(fmt::format("cpb_cnt_minus1 of the {}", name), std::uint64_t{hrd.cpb_cnt_minus1} + 1,
                         hrd.cbr_flag.size());
}

// Why a parse failed whose bits were well-formed codes and enough of them; "" when the trailing bits are to blame.

template <typename Syntax>
std::string failure_of(const Syntax&, const walked_unit&)
{
    return "";
}

std::string failure_of(const brenik::h264_nal_sps& sps, const walked_unit&)
{
    const brenik::h264_vui_parameters& vui = sps.vui;
    return first_of({list_failure(sps.scaling_list_4x4), list_failure(sps.scaling_list_8x8),
                     count_failure("num_ref_frames_in_pic_order_cnt_cycle", sps.num_ref_frames_in_pic_order_cnt_cycle,
                                   sps.offset_for_ref_frame.size()),
                     hrd_problem("NAL HRD", vui.nal_hrd_parameters_present_flag, vui.nal_hrd),
                     hrd_problem("VCL HRD", vui.vcl_hrd_parameters_present_flag, vui.vcl_hrd)});
}

std::string slice_group_problem(const brenik::h264_nal_pps& pps)
{
    const std::uint64_t slice_groups = std::uint64_t{pps.num_slice_groups_minus1} + 1;
    const std::uint64_t map_units = std::uint64_t{pps.pic_size_in_map_units_minus1} + 1;
    if (pps.num_slice_groups_minus1 == 0)
        return "";
    if (pps.slice_group_map_type == 0)
        return count_failure("num_slice_groups_minus1", slice_groups, pps.run_length_minus1.size());
    if (pps.slice_group_map_type == 2)
        return count_failure("num_slice_groups_minus1", slice_groups - 1, pps.bottom_right.size());
    if (pps.slice_group_map_type == 6)
        return count_failure("pic_size_in_map_units_minus1", map_units, pps.slice_group_id.size());
    return "";
}

std::string failure_of(const brenik::h264_nal_pps& pps, const walked_unit& unit)
{
    if (unit.sps == nullptr)
        return missing_sps(fmt::format("picture parameter set {}", pps.pic_parameter_set_id), pps.seq_parameter_set_id);
    return first_of(
        {slice_group_problem(pps), list_failure(pps.pic_scaling_list_4x4), list_failure(pps.pic_scaling_list_8x8)});
}

std::string failure_of(const brenik::h264_nal_slice_header& slice, const walked_unit& unit)
{
    if (unit.pps == nullptr)
        return fmt::format("slice names picture parameter set {}, which is missing", slice.pic_parameter_set_id);
    if (unit.sps == nullptr)
        return missing_sps(fmt::format("picture parameter set {}", slice.pic_parameter_set_id),
                           unit.pps->seq_parameter_set_id);
    return "reference picture list modification does not end";
}

std::string header_problem(const walked_unit& unit)
{
    const bool malformed_for_sure = unit.outcome.malformed_code && !unit.outcome.truncated();
    if (!unit.header_goes_on || malformed_for_sure || unit.sps == nullptr)
        return "";
    return fmt::format("slice header does not end within {} bytes", unit.outcome.bits / 8);
}

// Why the parse of an SEI payload failed, likewise.

template <typename Syntax>
std::string failure_of(const Syntax&, const walked_message&)
{
    return "";
}

// The arrays of a buffering period and of picture timing have few entries: only memory can be what they lack.

std::string failure_of(const brenik::h264_nal_sei_buffering_period& period, const walked_message& message)
{
    return message.sps == nullptr ? missing_sps("it", period.seq_parameter_set_id) : "memory ran out for its delays";
}

std::string failure_of(const walked_pic_timing&, const walked_message& message)
{
    return message.sps == nullptr ? "no sequence parameter set is active" : "memory ran out for its timestamps";
}

std::string failure_of(const brenik::h264_nal_sei_pan_scan_rect& pan_scan, const walked_message&)
{
    return count_failure("pan_scan_cnt_minus1", std::uint64_t{pan_scan.pan_scan_cnt_minus1} + 1, pan_scan.rects.size());
}

std::string failure_of(const brenik::h264_nal_sei_user_data_unreg&, const walked_message& message)
{
    return fmt::format("no room for a UUID, {} bytes of {}", message.payload.size(), sizeof(iso_iec_11578_uuid));
}

/// What is wrong with the bits themselves; "" when nothing is.
std::string bit_problem(const parse_outcome& outcome)
{
    if (outcome.malformed_code)
        return fmt::format("malformed Exp-Golomb code at bit {}{}", *outcome.malformed_code,
                           outcome.truncated() ? ", truncated: it reads past the end" : "");
    if (outcome.truncated())
        return fmt::format("truncated: fields read past the end, {} bits of {}", outcome.bits_consumed, outcome.bits);
    return "";
}

/// How the payload's parse went, by the standard where the library departs from it.
const parse_outcome& outcome_of(const walked_message& message)
{
    const auto* const timing = std::get_if<walked_pic_timing>(&message.syntax);
    return timing != nullptr && timing->standard ? timing->standard->outcome : message.outcome;
}

} // namespace

std::string problem_of(const walked_message& message)
{
    if (message.truncated)
        return fmt::format("truncated, {} bytes of {}", message.payload.size(), message.stated_size);
    const parse_outcome& outcome = outcome_of(message);
    if (outcome.parsed || outcome.malformed_code)
        return bit_problem(outcome);
    return std::visit([&](const auto& syntax) { return failure_of(syntax, message); }, message.syntax);
}

namespace {

/// What is wrong behind the last message; "" when nothing is.
std::string end_problem(const walked_sei& sei)
{
    if (sei.more_messages)
        return fmt::format("more than {} SEI messages", sei.messages.size());
    if (!sei.messages.empty() && sei.messages.back().truncated)
        return "";
    if (sei.rest.size() > 1)
        return "malformed header of an SEI message";
    if (sei.rest.empty() || sei.rest.front() != 0x80)
        return "malformed trailing bits";
    return sei.messages.empty() ? "no SEI message" : "";
}

std::vector<std::string> problems_of(const walked_sei& sei)
{
    std::vector<std::string> problems;
    for (std::size_t i = 0; i < sei.messages.size(); ++i)
        if (const std::string problem = problem_of(sei.messages[i]); !problem.empty())
            problems.push_back(
                fmt::format("SEI message {} ({}): {}", i, payload_type_name(sei.messages[i].type), problem));
    if (const std::string problem = end_problem(sei); !problem.empty())
        problems.push_back(problem);
    return problems;
}

} // namespace

std::vector<std::string> problems_of(const walked_unit& unit)
{
    if (const auto* const sei = std::get_if<walked_sei>(&unit.syntax))
        return problems_of(*sei);
    if (std::holds_alternative<std::monostate>(unit.syntax))
        return {};
    if (const std::string problem = header_problem(unit); !problem.empty())
        return {problem};
    if (const std::string problem = bit_problem(unit.outcome); !problem.empty())
        return {problem};
    if (unit.outcome.parsed)
        return {};
    const std::string failure = std::visit([&](const auto& syntax) { return failure_of(syntax, unit); }, unit.syntax);
    return {failure.empty() ? "malformed trailing bits" : failure};
}

} // namespace orv_h264
