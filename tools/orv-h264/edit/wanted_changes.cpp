#include "edit/wanted_changes.h"

#include "stream_input.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr unsigned delimiter_type = 9;
constexpr unsigned filler_type = 12;

const h264::seq_parameter_set_data* sps_in(const h264::nal_unit& unit)
{
    if (const auto* const set = std::get_if<h264::seq_parameter_set_rbsp>(&unit.rbsp))
        return &set->seq_parameter_set_data;
    const auto* const subset = std::get_if<h264::subset_seq_parameter_set_rbsp>(&unit.rbsp);
    return subset == nullptr ? nullptr : &subset->seq_parameter_set_data;
}

} // namespace

bool wanted_changes::holds(const std::vector<edit_condition>& where, const planned_unit& unit) const
{
    return std::all_of(where.begin(), where.end(), [&](const edit_condition& condition) {
        if (condition.path == "unit")
            return condition.value >= 0 && static_cast<std::uint64_t>(condition.value) == unit.number;
        const std::vector<listed_element>& all = unit.elements.elements();
        return std::any_of(all.begin(), all.end(), [&](const listed_element& e) {
            return !e.is_bytes && e.value == condition.value && unit.elements.ends_with(e, condition.path);
        });
    });
}

bool wanted_changes::deletes(const planned_unit& unit)
{
    const unsigned type = unit.reading.place.size == 0 ? 0 : unit.reading.place.bytes[0] & 0x1FU;
    if ((plan.remove_aud && type == delimiter_type) || (plan.remove_filler && type == filler_type))
        return true;
    return std::any_of(plan.deletions.begin(), plan.deletions.end(), [&](const unit_deletion& deletion) {
        return deletion.types.test(type) && holds(deletion.where, unit);
    });
}

std::vector<element_value> wanted_changes::of(const planned_unit& unit, std::vector<int>* indices)
{
    std::vector<element_value> changes;
    const h264::seq_parameter_set_data* const sps = sps_in(unit.reading.unit);
    if (sps != nullptr && plan.sps.any()) {
        std::vector<std::string> remarks;
        changes = changes_of(*sps, plan.sps, remarks);
        for (const std::string& text : remarks)
            remark(text);
    }
    if (indices != nullptr)
        indices->assign(changes.size(), -1);
    for (std::size_t i = 0; i < plan.sets.size(); ++i) {
        const edit_assignment& set = plan.sets[i];
        if (!holds(set.where, unit))
            continue;
        seen[i] = true;
        changes.push_back({set.path, set.value});
        if (indices != nullptr)
            indices->push_back(static_cast<int>(i));
    }
    return changes;
}

std::vector<bool> wanted_changes::removed_messages(const h264::nal_unit& unit) const
{
    std::vector<bool> removed;
    const auto* const sei = std::get_if<h264::sei_rbsp>(&unit.rbsp);
    if (sei == nullptr || !plan.removes_messages())
        return removed;
    removed.push_back(false);
    for (const h264::sei_message& message : sei->sei_messages)
        removed.push_back(plan.removes_payload(message.payload_type));
    return removed;
}

void wanted_changes::check_all_applied() const
{
    for (std::size_t i = 0; i < plan.sets.size(); ++i) {
        const edit_assignment& set = plan.sets[i];
        if (!seen[i])
            throw refusal(exit_usage_or_io, fmt::format("--set '{}': no unit meets the condition", set.text));
        if (!applied[i])
            throw refusal(exit_usage_or_io,
                          fmt::format("--set '{}': no unit{} has an element {}", set.text,
                                      set.where.empty() ? "" : " that meets the condition", set.path));
    }
}

void wanted_changes::remark(const std::string& text)
{
    if (std::find(told.begin(), told.end(), text) == told.end())
        told.push_back(text);
}

} // namespace orv_h264
