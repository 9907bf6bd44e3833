// Rules over SEI messages: which ones an access unit has, and where they stand (H.264 7.4.1.2.3, D.2).
#include "check/hrd_model.h"
#include "check/sei_facts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using enum severity;

/// NalHrdBpPresentFlag or VclHrdBpPresentFlag, as far as the stream tells; so CpbDpbDelaysPresentFlag.
bool has_hrd(const unit_messages_facts& f)
{
    return any_hrd(f.sps()) != nullptr;
}

bool tells_pic_struct(const unit_messages_facts& f)
{
    return f.sps().vui_parameters_present_flag && f.sps().vui_parameters.pic_struct_present_flag;
}

verdict idr_begins_period(const unit_messages_facts& f)
{
    if (!has_hrd(f) || !f.unit.idr || !f.messages.whole() || f.messages.count<h264::buffering_period>() > 0)
        return {};
    return breach_of("", "an IDR picture alone", "one with a buffering period");
}

verdict timing_is_there(const unit_messages_facts& f)
{
    const bool due = has_hrd(f) || tells_pic_struct(f);
    if (!due || !f.messages.whole() || f.messages.count<h264::pic_timing>() > 0)
        return {};
    return breach_of("", "no picture timing", has_hrd(f) ? "one, for the HRD" : "one, for pic_struct");
}

verdict period_comes_first(const message_facts& f)
{
    if (f.as<h264::buffering_period>() == nullptr || f.message.first || !f.all.messages.whole())
        return {};
    return breach_of("", "a buffering period behind another message", "the first one");
}

verdict period_has_hrd(const message_facts& f)
{
    if (f.as<h264::buffering_period>() == nullptr || has_hrd(f.all))
        return {};
    return breach_of("", "a buffering period", "none without HRD parameters");
}

verdict period_names_active(const message_facts& f)
{
    const auto* const period = f.as<h264::buffering_period>();
    if (period == nullptr || period->seq_parameter_set_id == f.all.sps().seq_parameter_set_id)
        return {};
    return breach_of("seq_parameter_set_id", period->seq_parameter_set_id,
                     fmt::format("{}, of the SPS of the picture", f.all.sps().seq_parameter_set_id));
}

verdict timing_comes_once(const message_facts& f)
{
    if (!f.repeated)
        return {};
    return breach_of("", "a further picture timing", "one in an access unit");
}

verdict timing_has_use(const message_facts& f)
{
    const bool timing = std::holds_alternative<h264::pic_timing>(f.message.message->payload); // it may be empty
    if (!timing || has_hrd(f.all) || tells_pic_struct(f.all))
        return {};
    return breach_of("", "a picture timing", "none without HRD parameters and pic_struct_present_flag");
}

verdict recovery_begins_period(const message_facts& f)
{
    const bool due = f.as<h264::recovery_point>() != nullptr && has_hrd(f.all) && !f.all.unit.idr;
    if (!due || !f.all.messages.whole() || f.all.messages.count<h264::buffering_period>() > 0)
        return {};
    return breach_of("", "a recovery point alone", "one with a buffering period");
}

verdict recovery_has_slice_groups(const message_facts& f)
{
    const auto* const point = f.as<h264::recovery_point>();
    const h264::pic_parameter_set_rbsp* const pps = f.all.unit.pps;
    if (point == nullptr || pps == nullptr || point->changing_slice_group_idc == 0 ||
        point->changing_slice_group_idc > 2)
        return {};
    if (pps->num_slice_groups_minus1 == 1 && pps->slice_group_map_type >= 3 && pps->slice_group_map_type <= 5)
        return {};
    return breach_of("changing_slice_group_idc", point->changing_slice_group_idc,
                     "0 but with two slice groups of the types 3 to 5");
}

verdict luminances_are_ordered(const message_facts& f)
{
    const auto* const volume = f.as<h264::mastering_display_colour_volume>();
    if (volume == nullptr || volume->min_display_mastering_luminance < volume->max_display_mastering_luminance)
        return {};
    return breach_of("min_display_mastering_luminance", volume->min_display_mastering_luminance,
                     fmt::format("below max_display_mastering_luminance {}", volume->max_display_mastering_luminance));
}

verdict sequence_has_one_word(const message_facts& f)
{
    if (f.earlier == nullptr || f.earlier->payload == f.message.message->payload)
        return {};
    return breach_of("", fmt::format("payload type {} with other values", f.earlier->payload_type),
                     "those of the first one of the sequence");
}

constexpr rule_over<unit_messages_facts> unit_rules_here[] = {
    {{"sei-period-with-idr", error, "D.2.2", "with HRD parameters, a buffering period stands with each IDR picture",
      "A decoder that begins there does not know when to begin.", "an IDR picture without a message of payload type 0"},
     idr_begins_period},
    {{"sei-timing-with-each-picture", error, "D.2.3",
      "with HRD parameters or pic_struct_present_flag, each access unit has a picture timing",
      "When the picture is decoded and shown, or how its fields are, is not known.",
      "an access unit without a message of payload type 1"},
     timing_is_there},
};

constexpr rule_over<message_facts> of_messages[] = {
    {{"sei-period-first", error, "7.4.1.2.3", "a buffering period is the first SEI message of its access unit",
      "It tells by which SPS the messages behind it are read.", "a picture timing before the buffering period"},
     period_comes_first},
    {{"sei-period-has-hrd", warning, "D.2.2", "buffering periods come with HRD parameters",
      "Without them it holds nothing, unless an application has them from elsewhere.",
      "a buffering period in a stream without a VUI"},
     period_has_hrd},
    {{"sei-period-names-active-set", error, "D.2.2", "a buffering period names the SPS of its picture",
      "Its delays are read with the lengths of another SPS.", "seq_parameter_set_id 1 where the picture stands on 0"},
     period_names_active},
    {{"sei-period-with-recovery-point", error, "D.2.2",
      "with HRD parameters, a buffering period stands with each recovery point",
      "A decoder that begins there does not know when to begin.", "a recovery point alone"},
     recovery_begins_period},
    {{"sei-timing-once", error, "D.2.3", "an access unit has one picture timing", "Which one holds is not known.",
      "two messages of payload type 1"},
     timing_comes_once},
    {{"sei-timing-has-use", warning, "D.2.3", "picture timings come with HRD parameters or pic_struct_present_flag",
      "Without them it holds nothing, unless an application has them from elsewhere.",
      "a picture timing in a stream without a VUI"},
     timing_has_use},
    {{"sei-recovery-has-slice-groups", error, "D.2.8",
      "changing_slice_group_idc is 0 but for two slice groups that change",
      "It tells in which of the groups pictures recover.", "changing_slice_group_idc 1 with one slice group"},
     recovery_has_slice_groups},
    {{"sei-mastering-luminances", warning, "D.2", "a mastering display is brighter at its most than at its least",
      "Displays map the range between both.", "min_display_mastering_luminance above the highest"},
     luminances_are_ordered},
    {{"sei-same-in-sequence", warning, "D.2",
      "what is told of a whole coded video sequence is the same each time it is told",
      "Mastering display, light level and transfer hold from the first picture to the last: players take any of them.",
      "max_content_light_level that changes without an IDR picture"},
     sequence_has_one_word},
};

} // namespace

std::span<const rule_over<unit_messages_facts>> unit_message_rules()
{
    return unit_rules_here;
}

std::span<const rule_over<message_facts>> message_rules()
{
    return of_messages;
}

} // namespace orv_h264
