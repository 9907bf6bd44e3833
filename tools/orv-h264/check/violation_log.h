// Brings what breaks the rules to its place in the stream, and into the order of the units.
#pragma once

#include "check/violation.h"
#include "unit_run.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace orv_h264 {

/// An element of a unit, and where it lies.
struct placed_element {
    h264::label name;
    element_place place;
    std::int64_t value = 0;
    const char* structure = ""; ///< around it
};

/// A unit that rules may be broken in.
struct known_unit {
    unit_of_violation unit;
    std::uint64_t offset = 0; ///< of its framing, for a person
    std::vector<placed_element> elements;

    /// Of the nth of that name, from 0.
    std::optional<element_place> place_of(std::string_view element, std::size_t nth) const;
};

/// What rules say of a unit is told when its access unit has been judged, too: a rule that looks at whole pictures
/// comes in between.
class violation_log {
public:
    explicit violation_log(violation_sink& sink) : to(sink) {}

    /// The unit that is judged from now on. Of units long gone the elements are known no more, and last the units.
    void begin(known_unit&& unit);

    /// It.
    const known_unit& unit_at_hand() const { return known.back(); }

    /// The unit of this number breaks the rule.
    void tell(const rule& broken, std::uint64_t unit, breach&& how);
    /// Bytes that belong to no unit do.
    void tell_at(const rule& broken, std::uint64_t offset, breach&& how);
    /// Looks with all the rules.
    template <class Facts>
    void judge(std::span<const rule_over<Facts>> rules, const Facts& facts, std::uint64_t unit)
    {
        for (const rule_over<Facts>& one : rules)
            if (verdict wrong = one.judge(facts))
                tell(one.what, unit, std::move(*wrong));
    }
    /// With the clause that the rule leaves to the element.
    void tell_of_element(const rule& broken, std::uint64_t unit, breach&& how, std::string_view clause);

    /// All units before this one have been judged.
    void release(std::uint64_t unit);
    /// All have.
    void release_all();

private:
    static constexpr std::size_t most_elements = std::size_t{1} << 18;
    static constexpr std::size_t most_units = std::size_t{1} << 17;
    static constexpr std::size_t most_waiting = 4096;

    struct waiting_violation {
        std::uint64_t order; // that of its unit
        violation what;
    };

    const known_unit* find(std::uint64_t unit) const;
    void keep(std::uint64_t order, violation&& what);

    violation_sink& to;
    std::deque<known_unit> known;
    std::size_t elements = 0; // of all known units
    std::uint64_t latest = 0; // unit
    std::vector<waiting_violation> waiting;
};

} // namespace orv_h264
