#include "check/level_part.h"

#include "check/unit_of_picture.h"

#include <algorithm>

namespace orv_h264 {

namespace {

constexpr std::size_t most_judged = 64;

double seconds_of(const h264::exact_time& time)
{
    return static_cast<double>(time.numerator) / static_cast<double>(time.denominator);
}

bool is_of_primary(const h264::access_unit_part& part)
{
    return part.role == h264::unit_role::primary;
}

/// A slice, or the partition that stands for it.
bool begins_slice(const h264::access_unit_part& part)
{
    const unsigned type = part.header.nal_unit_type;
    return is_of_primary(part) && (type == 1 || type == 2 || type == 5);
}

} // namespace

void level_part::unit(const listed_unit& unit, const h264::unit_reading& reading)
{
    sets.take(unit, reading);
    const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&reading.unit.rbsp);
    if (unit.type() != 7 || sps == nullptr || reading.result.failure)
        return;
    const h264::seq_parameter_set_data& data = sps->seq_parameter_set_data;
    if (std::find(judged.begin(), judged.end(), data) != judged.end())
        return;
    log.judge(level_sps_rules(), sps_facts{data}, unit.place.number);
    judged.push_back(data);
    if (judged.size() > most_judged)
        judged.pop_front();
}

void level_part::access_unit(const h264::access_unit& unit, const h264::picture* of)
{
    if (of == nullptr || unit.sps == nullptr || !unit.whole)
        return;
    const std::uint64_t slice = first_slice_of(unit);
    const bool first = !any_picture && unit.idr;
    any_picture = true;
    std::optional<double> seconds;
    if (of->access_unit == unit.number)
        seconds = begin_picture(unit, *of, slice);
    else if (open_picture* const entry = find(of->number))
        entry->lone_field = false;
    judge_load(unit, slice, seconds, first);
}

/// A new picture; the seconds since the removal of the access unit before it, where both are frames with a time.
std::optional<double> level_part::begin_picture(const h264::access_unit& unit, const h264::picture& of,
                                                std::uint64_t slice)
{
    const h264::level_limits* const level = h264::limits_of_level(*unit.sps);
    const bool timed = of.times.source == h264::time_source::hrd && of.times.decoding;
    const double removal = timed ? seconds_of(of.times.decoding) : 0;
    std::optional<double> seconds;
    if (timed && level != nullptr && !open.empty() && open.back().timed && removal > open.back().removal) {
        const open_picture& before = open.back();
        seconds = removal - before.removal;
        log.judge(decoding_interval_rules(),
                  picture_interval_facts{*level, h264::PicSizeInMbs(before.sps->sps, before.lone_field),
                                         shortest_interval(*unit.sps, before.lone_field), *seconds},
                  slice);
    }
    const bool of_frames = !unit.field() && !open.empty() && open.back().is_frame;
    const sps_entry sps = sets.find(*unit.sps, slice, [](const auto&) {});
    open.push_back({of.number, slice, sps, unit.field(), !unit.field(), removal, timed});
    if (open.size() > most_open)
        open.pop_front();
    return of_frames && !unit.sps->vui_parameters.low_delay_hrd_flag ? seconds : std::nullopt;
}

void level_part::judge_load(const h264::access_unit& unit, std::uint64_t slice, std::optional<double> seconds,
                            bool first)
{
    const h264::level_limits* const level = h264::limits_of_level(*unit.sps);
    if (level == nullptr || (!first && !seconds))
        return;
    picture_load_facts facts{unit, *level, 0, 0, seconds};
    for (const h264::access_unit_part& part : unit.parts) {
        facts.slices += begins_slice(part) ? 1 : 0;
        facts.bytes += is_of_primary(part) ? part.place.size : 0;
    }
    log.judge(picture_load_rules(), facts, slice);
}

void level_part::output(const h264::picture& picture)
{
    const open_picture* const entry = find(picture.number);
    const bool timed = picture.times.source == h264::time_source::hrd && picture.times.presentation;
    if (entry == nullptr || !timed || picture.discarded) {
        shown = {};
        return;
    }
    const double time = seconds_of(picture.times.presentation);
    const h264::level_limits* const level = h264::limits_of_level(entry->sps->sps);
    if (shown && level != nullptr && time > shown_time)
        log.judge(output_interval_rules(),
                  picture_interval_facts{*level, h264::PicSizeInMbs(shown->sps->sps, shown->lone_field),
                                         shortest_interval(entry->sps->sps, shown->lone_field), time - shown_time},
                  entry->unit);
    shown = *entry;
    shown_time = time;
}

level_part::open_picture* level_part::find(std::uint64_t picture)
{
    const auto found = std::find_if(open.begin(), open.end(), [picture](const auto& o) { return o.number == picture; });
    return found == open.end() ? nullptr : &*found;
}

} // namespace orv_h264
