#include "walked_unit.h"

#include "names.h"

#include <string_view>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::uint32_t most_entries = 128; // in every array whose size a unit tells

std::string count_above_cap(std::string_view name, std::uint64_t count)
{
    return fmt::format("{} asks for {} entries, more than {}", name, count, most_entries);
}

std::string missing_sps(std::string_view who, std::uint32_t sps_id)
{
    return fmt::format("{} names sequence parameter set {}, which is missing", who, sps_id);
}

std::string hrd_problem(const char* name, bool present, const brenik::h264_hrd_parameters& hrd)
{
    if (!present || hrd.valid)
        return "";
    return count_above_cap(fmt::format("cpb_cnt_minus1 of the {}", name), std::uint64_t{hrd.cpb_cnt_minus1} + 1);
}

// Why a parse failed whose bits were well-formed codes and enough of them; "" when the trailing bits are to blame.

template <typename Syntax>
std::string failure_of(const Syntax&, const walked_unit&)
{
    return "";
}

std::string failure_of(const brenik::h264_nal_sps& sps, const walked_unit&)
{
    if (sps.pic_order_cnt_type == 1 && sps.num_ref_frames_in_pic_order_cnt_cycle > most_entries)
        return count_above_cap("num_ref_frames_in_pic_order_cnt_cycle", sps.num_ref_frames_in_pic_order_cnt_cycle);
    const brenik::h264_vui_parameters& vui = sps.vui;
    const std::string nal_hrd = hrd_problem("NAL HRD", vui.nal_hrd_parameters_present_flag, vui.nal_hrd);
    return nal_hrd.empty() ? hrd_problem("VCL HRD", vui.vcl_hrd_parameters_present_flag, vui.vcl_hrd) : nal_hrd;
}

std::string failure_of(const brenik::h264_nal_pps& pps, const walked_unit& unit)
{
    const std::uint64_t slice_groups = std::uint64_t{pps.num_slice_groups_minus1} + 1;
    const std::uint64_t map_units = std::uint64_t{pps.pic_size_in_map_units_minus1} + 1;
    if (unit.sps == nullptr)
        return missing_sps(fmt::format("picture parameter set {}", pps.pic_parameter_set_id), pps.seq_parameter_set_id);
    if (pps.num_slice_groups_minus1 == 0)
        return "";
    if (pps.slice_group_map_type == 0 && slice_groups > most_entries)
        return count_above_cap("num_slice_groups_minus1", slice_groups);
    if (pps.slice_group_map_type == 2 && slice_groups - 1 > most_entries)
        return count_above_cap("num_slice_groups_minus1", slice_groups - 1);
    if (pps.slice_group_map_type == 6 && map_units > most_entries)
        return count_above_cap("pic_size_in_map_units_minus1", map_units);
    return "";
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

std::string failure_of(const brenik::h264_nal_sei_buffering_period& period, const walked_message&)
{
    return missing_sps("it", period.seq_parameter_set_id);
}

std::string failure_of(const walked_pic_timing&, const walked_message&)
{
    return "no sequence parameter set is active";
}

std::string failure_of(const brenik::h264_nal_sei_pan_scan_rect& pan_scan, const walked_message&)
{
    return count_above_cap("pan_scan_cnt_minus1", std::uint64_t{pan_scan.pan_scan_cnt_minus1} + 1);
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
