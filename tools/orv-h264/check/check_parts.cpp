// The parts of a check, and the list of all rules.
#include "check/access_unit_check.h"
#include "check/access_unit_facts.h"
#include "check/byte_check.h"
#include "check/check_part.h"
#include "check/facts.h"
#include "check/general_rules.h"
#include "check/habit_check.h"
#include "check/hrd_facts.h"
#include "check/hrd_part.h"
#include "check/level_part.h"
#include "check/marking_part.h"
#include "check/number_check.h"
#include "check/number_facts.h"
#include "check/output_part.h"
#include "check/sei_facts.h"
#include "check/sei_part.h"
#include "check/set_check.h"
#include "check/set_facts.h"

#include <algorithm>

namespace orv_h264 {

namespace {

using rule_list = std::vector<const rule*>;

template <class Facts>
void append(rule_list& list, std::span<const rule_over<Facts>> rules)
{
    for (const rule_over<Facts>& one : rules)
        list.push_back(&one.what);
}

rule_list every_rule()
{
    rule_list list;
    for (const rule* one : general_rules::all)
        list.push_back(one);
    append(list, unit_rules());
    append(list, sps_rules());
    append(list, pps_rules());
    append(list, slice_rules());
    append(list, byte_rules());
    append(list, operation_rules());
    append(list, marking_rules());
    append(list, list_rules());
    append(list, decoded_order_rules());
    append(list, output_rules());
    append(list, new_sequence_rules());
    append(list, sps_order_rules());
    append(list, unit_order_rules());
    append(list, slice_order_rules());
    append(list, access_unit_rules());
    append(list, picture_slice_rules());
    append(list, numbering_rules());
    append(list, count_rules());
    append(list, output_step_rules());
    append(list, habit_rules());
    append(list, naming_rules());
    append(list, set_content_rules());
    append(list, activation_rules());
    append(list, auxiliary_rules());
    append(list, hrd_start_rules());
    append(list, hrd_removal_rules());
    append(list, hrd_arrival_rules());
    append(list, hrd_delay_rules());
    append(list, hrd_period_rules());
    append(list, output_time_rules());
    append(list, field_time_rules());
    append(list, picture_buffer_rules());
    append(list, unit_message_rules());
    append(list, message_rules());
    append(list, picture_timing_rules());
    append(list, vui_time_rules());
    append(list, picture_load_rules());
    append(list, decoding_interval_rules());
    append(list, output_interval_rules());
    append(list, level_sps_rules());
    std::stable_sort(list.begin(), list.end(), stands_before);
    return list;
}

} // namespace

std::vector<std::unique_ptr<check_part>> make_check_parts(violation_log& log)
{
    std::vector<std::unique_ptr<check_part>> parts;
    parts.push_back(std::make_unique<byte_check>(log));
    parts.push_back(std::make_unique<marking_part>(log));
    parts.push_back(std::make_unique<output_part>(log));
    parts.push_back(std::make_unique<set_check>(log));
    parts.push_back(std::make_unique<access_unit_check>(log));
    parts.push_back(std::make_unique<number_check>(log));
    parts.push_back(std::make_unique<habit_check>(log));
    parts.push_back(std::make_unique<hrd_part>(log));
    parts.push_back(std::make_unique<sei_part>(log));
    parts.push_back(std::make_unique<level_part>(log));
    return parts;
}

std::span<const rule* const> all_rules()
{
    static const rule_list list = every_rule();
    return list;
}

const rule* find_rule(std::string_view id)
{
    const std::span<const rule* const> rules = all_rules();
    const auto found = std::find_if(rules.begin(), rules.end(), [id](const rule* one) { return one->id == id; });
    return found == rules.end() ? nullptr : *found;
}

} // namespace orv_h264
