#include "check/sei_part.h"

namespace orv_h264 {

namespace {

/// Those that say one thing of a whole coded video sequence.
bool is_of_sequence(const h264::sei_message& message)
{
    return std::holds_alternative<h264::mastering_display_colour_volume>(message.payload) ||
           std::holds_alternative<h264::content_light_level_info>(message.payload) ||
           std::holds_alternative<h264::alternative_transfer_characteristics>(message.payload);
}

} // namespace

void sei_part::unit(const listed_unit& unit, const h264::unit_reading& reading)
{
    const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&reading.unit.rbsp);
    if (sps != nullptr && !reading.result.failure)
        log.judge(vui_time_rules(), sps_facts{sps->seq_parameter_set_data}, unit.place.number);
}

void sei_part::access_unit(const h264::access_unit& unit, const h264::picture* of)
{
    if (unit.header == nullptr || unit.sps == nullptr)
        return;
    if (unit.idr)
        of_sequence.clear();
    const sei_list messages(unit);
    const unit_messages_facts facts{unit, messages};
    log.judge(unit_message_rules(), facts, unit.parts.front().place.number);
    bool any_timing = false;
    for (const placed_message& one : messages.all()) {
        const bool timing = sei_list::payload_of<h264::pic_timing>(one) != nullptr;
        const auto earlier = of_sequence.find(one.message->payload_type);
        look_at({facts, one, of, timing && any_timing, earlier == of_sequence.end() ? nullptr : &earlier->second});
        any_timing = any_timing || timing;
        keep(one);
    }
}

void sei_part::look_at(const message_facts& facts)
{
    log.judge(message_rules(), facts, facts.message.unit);
    if (facts.as<h264::pic_timing>() != nullptr)
        log.judge(picture_timing_rules(), facts, facts.message.unit);
}

void sei_part::keep(const placed_message& one)
{
    if (is_of_sequence(*one.message))
        of_sequence.emplace(one.message->payload_type, *one.message);
}

} // namespace orv_h264
