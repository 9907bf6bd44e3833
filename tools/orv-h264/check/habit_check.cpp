#include "check/habit_check.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using h264::unit_role;

verdict delimiter_as_before(const habit_facts& f)
{
    if (!f.lacks_delimiter)
        return {};
    return breach{"", "no access unit delimiter", "one, as in all access units before"};
}

verdict slices_as_before(const habit_facts& f)
{
    if (!f.lacks_slice)
        return {};
    return breach{"", fmt::format("no slice that begins with macroblock {}", *f.lacks_slice),
                  "one, as in the pictures before, which begin their slices alike"};
}

using enum severity;

constexpr rule_over<habit_facts> of_habits[] = {
    {{"order-delimiters-as-before", note, "7.4.1.2.3",
      "access unit delimiters go on where all access units have had them",
      "None is needed, but Annex B streams of broadcasts and discs have one in each: it may have been lost.",
      "an access unit without a delimiter behind eight with one"},
     delimiter_as_before},
    {{"picture-slices-as-before", note, "7.4.3", "pictures have the slices that those before have had",
      "They may be any. Where all have begun with the same macroblocks, one may be missing.",
      "slices from macroblocks 0 and 44 on behind many pictures with 0, 22 and 44"},
     slices_as_before},
};

std::set<std::uint32_t> begins_of(const h264::access_unit& unit, std::size_t most)
{
    std::set<std::uint32_t> begins;
    for (const h264::access_unit_part& part : unit.parts) {
        const unsigned type = part.header.nal_unit_type;
        if (part.role == unit_role::primary && type != 3 && type != 4 && begins.size() < most)
            begins.insert(part.first_mb_in_slice);
    }
    return begins;
}

} // namespace

std::span<const rule_over<habit_facts>> habit_rules()
{
    return of_habits;
}

void habit_check::access_unit(const h264::access_unit& unit, const h264::picture*)
{
    if (unit.header == nullptr)
        return;
    habit_facts facts;
    facts.lacks_delimiter = lacks_delimiter(unit);
    facts.lacks_slice = lacks_slice(unit);
    log.judge(habit_rules(), facts, unit.parts.front().place.number);
}

/// A sequence may begin another stream, which has none.
bool habit_check::lacks_delimiter(const h264::access_unit& unit)
{
    const bool has = std::any_of(unit.parts.begin(), unit.parts.end(),
                                 [](const h264::access_unit_part& p) { return p.role == unit_role::delimiter; });
    const bool lacks = !has && !unit.idr && with_delimiter >= enough;
    with_delimiter = has ? with_delimiter + 1 : 0;
    return lacks;
}

/// A picture that lacks one does not end the row; one with other slices does. What lacks more than half is coded that
/// way. A picture without its first slice breaks a rule of its own.
std::optional<std::uint32_t> habit_check::lacks_slice(const h264::access_unit& unit)
{
    slice_row& row = rows[unit.field() ? 1 : 0];
    std::set<std::uint32_t> begins = begins_of(unit, most_slices);
    if (begins == row.begins) {
        ++row.pictures;
        return {};
    }
    const bool most_are_there = 2 * begins.size() >= row.begins.size() &&
                                std::includes(row.begins.begin(), row.begins.end(), begins.begin(), begins.end());
    if (!most_are_there || row.pictures < enough) {
        row = {std::move(begins), 1};
        return {};
    }
    const auto absent = [&](std::uint32_t first) { return !begins.contains(first); };
    const std::uint32_t missing = *std::find_if(row.begins.begin(), row.begins.end(), absent);
    row.pictures = enough / 2;
    return missing == 0 ? std::nullopt : std::optional(missing);
}

} // namespace orv_h264
