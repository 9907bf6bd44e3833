#include "frame_finder.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

std::string describe_cut(const frame& f)
{
    return fmt::format("frame without an end in {} bytes and {} units, cut there", f.size, f.units.size());
}

void frame_finder::add(const unit& where, std::span<const unsigned char> bytes)
{
    fed.push_back(where);
    const std::uint64_t number = first_fed + fed.size() - 1;
    constexpr bool not_copied = true; // nobody looks at the bytes of an access unit
    units.push({bytes.data(), bytes.size(), where.offset + where.framing_size, number}, *this, not_copied);
}

void frame_finder::finish()
{
    units.flush(*this);
    pictures.flush(*this);
    finished = true;
}

bool frame_finder::next(frame& found)
{
    if (waiting.empty())
        return false;
    waiting_frame& first = waiting.front();
    const bool told = first.what.output_number.has_value() || finished || waiting_units > most_waiting_units;
    if (!first.complete || !told)
        return false;
    found = std::move(first.what);
    waiting_units -= found.units.size();
    waiting.pop_front();
    found.last = finished && waiting.empty();
    return true;
}

void frame_finder::take(const h264::access_unit& unit)
{
    pictures.take(unit, *this);
    const std::uint64_t behind = unit.parts.back().place.number + 1;
    fed.erase(fed.begin(), fed.begin() + static_cast<std::ptrdiff_t>(behind - first_fed));
    first_fed = behind;
}

void frame_finder::access_unit_came(const h264::access_unit& unit, const h264::picture* of)
{
    if (of == nullptr)
        return;
    const bool second_field = !split && !waiting.empty() && waiting.back().picture == of->number;
    if (!second_field)
        waiting.push_back({of->number, split, {}});
    frame& to = waiting.back().what;
    add_units(to, unit);
    ++to.coded_pictures;
    to.field_duration += h264::fields_shown(unit);
    to.idr = to.idr || unit.idr;
    to.cut = to.cut || unit.findings.has(h264::picture_finding::limit_reached);
    const auto* const point = unit.message<h264::recovery_point>();
    if (point != nullptr && !to.recovery_frame_cnt)
        to.recovery_frame_cnt = point->recovery_frame_cnt;
    if (const auto rate = unit.sps == nullptr ? h264::ratio() : h264::field_rate(unit.sps->vui_parameters);
        rate.denominator != 0) {
        to.seconds = static_cast<double>(to.field_duration * rate.denominator) / static_cast<double>(rate.numerator);
        to.duration = h264::time_after({0, 1}, to.field_duration, {rate.denominator, rate.numerator});
    }
    if (of->has_count && of->count.in_range())
        to.poc =
            split && unit.structure == h264::picture_structure::bottom_field ? of->count.bottom : of->count.lower();
}

void frame_finder::add_units(frame& to, const h264::access_unit& unit)
{
    const orv_h264::unit& last = fed[unit.parts.back().place.number - first_fed];
    if (to.units.empty())
        to.offset = fed[unit.parts.front().place.number - first_fed].offset;
    to.size = last.offset + last.framing_size + last.length - to.offset;
    for (const h264::access_unit_part& part : unit.parts) {
        frame_unit& added = to.units.emplace_back();
        added.type = static_cast<brenik::h264_nal_unit_type>(part.header.nal_unit_type);
        if (part.role == h264::unit_role::primary && !part.failure && part.header.nal_unit_type != 3 &&
            part.header.nal_unit_type != 4)
            added.slice = static_cast<h264::slice_kind>(part.slice_type % 5);
    }
    waiting_units += unit.parts.size();
}

void frame_finder::decoded(const h264::picture& picture)
{
    for (auto w = waiting.rbegin(); w != waiting.rend() && w->picture == picture.number; ++w)
        w->complete = true;
}

// The frames wait in the order of their pictures' numbers; two fields that are split have the same.
void frame_finder::output(const h264::picture& picture)
{
    const auto before = [](const waiting_frame& w, std::uint64_t number) { return w.picture < number; };
    auto w = std::lower_bound(waiting.begin(), waiting.end(), picture.number, before);
    for (; w != waiting.end() && w->picture == picture.number; ++w)
        w->what.output_number = picture.output_number;
}

} // namespace orv_h264
