#include "check/profile_part.h"

#include "element_text.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

std::string fraction_text(fraction value)
{
    return value.denominator == 1
               ? fmt::format("{}", value.numerator)
               : fmt::format("{:.3f}", static_cast<double>(value.numerator) / static_cast<double>(value.denominator));
}

bool is_in_reach(h264::ratio value)
{
    constexpr std::uint64_t most = std::uint64_t{1} << 62;
    return value.denominator != 0 && value.denominator < most && value.numerator < most;
}

/// Nothing where a time is unknown, or the numbers are too large.
std::optional<fraction> time_between(h264::exact_time later, h264::exact_time earlier)
{
    std::int64_t left = 0;
    std::int64_t right = 0;
    fraction made;
    if (!later || !earlier || __builtin_mul_overflow(later.numerator, earlier.denominator, &left) ||
        __builtin_mul_overflow(earlier.numerator, later.denominator, &right) ||
        __builtin_sub_overflow(left, right, &made.numerator) ||
        __builtin_mul_overflow(later.denominator, earlier.denominator, &made.denominator))
        return {};
    return made;
}

std::uint64_t bytes_of(const h264::access_unit& unit)
{
    std::uint64_t bytes = 0;
    for (const h264::access_unit_part& part : unit.parts)
        bytes += part.place.size;
    return bytes;
}

std::int64_t count_of(const h264::access_unit& unit, h264::unit_role role)
{
    return std::count_if(unit.parts.begin(), unit.parts.end(), [role](const h264::access_unit_part& part) {
        return part.role == role && part.header.nal_unit_type != 3 && part.header.nal_unit_type != 4;
    });
}

} // namespace

void profile_part::unit(const listed_unit& unit, const h264::unit_reading& reading)
{
    for (const placed_element& element : log.unit_at_hand().elements)
        for (const std::unique_ptr<requirement>& asked : profile.requirements)
            if (asked->element == element.name.name() &&
                (asked->structure.empty() || asked->structure == element.structure))
                look_at(*asked, element, unit.place.number);
    if (const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&reading.unit.rbsp))
        if (!reading.result.failure)
            measure_sps(sps->seq_parameter_set_data, unit.place.number);
}

void profile_part::look_at(const requirement& asked, const placed_element& element, std::uint64_t unit)
{
    seen.insert(&asked);
    if (!asked.is_met_by({element.value, 1}))
        log.tell(asked.what, unit, breach_of(text_of(element.name), element.value, asked.allowed));
}

void profile_part::measure(quantity what, fraction value, std::uint64_t unit)
{
    for (const std::unique_ptr<requirement>& asked : profile.requirements)
        if (asked->of == what && !asked->is_met_by(value))
            log.tell(asked->what, unit,
                     breach{"", fmt::format("{} {}", name_of(what), fraction_text(value)), asked->allowed});
}

void profile_part::measure_sps(const h264::seq_parameter_set_data& sps, std::uint64_t unit)
{
    const h264::picture_size size = h264::cropped_size(sps);
    measure(quantity::width, {static_cast<std::int64_t>(size.width)}, unit);
    measure(quantity::height, {static_cast<std::int64_t>(size.height)}, unit);
    const h264::vui_parameters& vui = sps.vui_parameters;
    if (const h264::ratio rate = h264::frame_rate(vui); is_in_reach(rate))
        measure(quantity::frame_rate,
                {static_cast<std::int64_t>(rate.numerator), static_cast<std::int64_t>(rate.denominator)}, unit);
    if (!vui.nal_hrd_parameters_present_flag)
        return;
    measure(quantity::hrd_bit_rate, {static_cast<std::int64_t>(h264::BitRate(vui.nal_hrd_parameters, 0))}, unit);
    measure(quantity::hrd_buffer, {static_cast<std::int64_t>(h264::CpbSize(vui.nal_hrd_parameters, 0))}, unit);
}

void profile_part::access_unit(const h264::access_unit& unit, const h264::picture* of)
{
    if (unit.parts.empty() || of == nullptr)
        return;
    const std::uint64_t first = unit.parts.front().place.number;
    measure(quantity::delimiters, {count_of(unit, h264::unit_role::delimiter)}, first);
    measure(quantity::slices, {count_of(unit, h264::unit_role::primary)}, first);
    measure(quantity::picture_bytes, {static_cast<std::int64_t>(bytes_of(unit))}, first);
    if (pictures > 0 && of->number == latest_picture)
        return; // its second field
    ++pictures;
    latest_picture = of->number;
    waiting.emplace_back(of->number, first);
    if (waiting.size() > most_waiting)
        waiting.pop_front();
    if (!of->idr && !of->recovery_point)
        return;
    if (last_key)
        measure(quantity::key_distance, {static_cast<std::int64_t>(of->number - *last_key)}, first);
    last_key = of->number;
}

void profile_part::output(const h264::picture& picture)
{
    const bool has_b = (picture.slice_kinds >> static_cast<unsigned>(h264::slice_kind::B) & 1) != 0;
    const auto place =
        std::find_if(waiting.begin(), waiting.end(), [&](const auto& each) { return each.first == picture.number; });
    b_in_a_row = has_b ? b_in_a_row + 1 : 0;
    if (place == waiting.end())
        return;
    measure(quantity::b_pictures, {static_cast<std::int64_t>(b_in_a_row)}, place->second);
    if (picture.idr || picture.recovery_point) {
        if (const auto seconds = time_between(picture.times.presentation, last_key_shown))
            measure(quantity::key_seconds, *seconds, place->second);
        last_key_shown = picture.times.presentation;
    }
    waiting.erase(place);
}

void profile_part::end()
{
    for (const std::unique_ptr<requirement>& asked : profile.requirements)
        if (asked->of == quantity::none && !seen.contains(asked.get()))
            log.tell_at(asked->what, 0,
                        breach{"", fmt::format("no {} in the stream", asked->element), asked->allowed,
                               asked->how == relation::present ? asked->what.level : severity::note});
}

} // namespace orv_h264
