#include "check/violation_log.h"

#include "element_text.h"

#include <algorithm>

namespace orv_h264 {

std::optional<element_place> known_unit::place_of(std::string_view element, std::size_t nth) const
{
    const auto is_it = [element, &nth](const placed_element& e) {
        return element.starts_with(e.name.name()) && text_of(e.name) == element && nth-- == 0;
    };
    const auto found = std::find_if(elements.begin(), elements.end(), is_it);
    return found == elements.end() ? std::nullopt : std::optional(found->place);
}

void violation_log::begin(known_unit&& unit)
{
    latest = unit.unit.number;
    elements += unit.elements.size();
    known.push_back(std::move(unit));
    while (known.size() > 1 && (elements > most_elements || known.size() > most_units)) {
        elements -= known.front().elements.size();
        known.pop_front();
    }
}

const known_unit* violation_log::find(std::uint64_t unit) const
{
    const auto before = [](const known_unit& one, std::uint64_t number) { return one.unit.number < number; };
    const auto found = std::lower_bound(known.begin(), known.end(), unit, before);
    return found == known.end() || found->unit.number != unit ? nullptr : &*found;
}

void violation_log::tell(const rule& broken, std::uint64_t unit, breach&& how)
{
    tell_of_element(broken, unit, std::move(how), broken.clause);
}

void violation_log::tell_of_element(const rule& broken, std::uint64_t unit, breach&& how, std::string_view clause)
{
    violation what{&broken, how.level.value_or(broken.level)};
    if (const known_unit* const of = find(unit)) {
        what.offset = of->offset;
        what.unit = of->unit;
        what.place = of->place_of(how.element, how.nth);
    }
    what.element = std::move(how.element);
    what.found = std::move(how.found);
    what.allowed = std::move(how.allowed);
    what.clause = clause;
    keep(unit, std::move(what));
}

void violation_log::tell_at(const rule& broken, std::uint64_t offset, breach&& how)
{
    violation what{&broken, how.level.value_or(broken.level), offset};
    what.found = std::move(how.found);
    what.allowed = std::move(how.allowed);
    what.clause = broken.clause;
    keep(latest, std::move(what));
}

void violation_log::keep(std::uint64_t order, violation&& what)
{
    waiting.push_back({order, std::move(what)});
    if (waiting.size() > most_waiting)
        release_all();
}

void violation_log::release(std::uint64_t unit)
{
    const auto later = [unit](const waiting_violation& one) { return one.order >= unit; };
    std::stable_sort(waiting.begin(), waiting.end(),
                     [](const waiting_violation& a, const waiting_violation& b) { return a.order < b.order; });
    const auto end = std::find_if(waiting.begin(), waiting.end(), later);
    for (auto one = waiting.begin(); one != end; ++one)
        to.take(one->what);
    waiting.erase(waiting.begin(), end);
}

void violation_log::release_all()
{
    release(~std::uint64_t{0});
}

} // namespace orv_h264
