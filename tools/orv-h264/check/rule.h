// A rule that a stream has to keep to: its name, clause and words, and the function that judges. A file of rules for
// each kind of thing that they look at has a table of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orv_h264 {

enum class severity : std::uint8_t {
    error,   ///< the standard does not allow it
    warning, ///< allowed, or in one edition, but it goes wrong in practice
    note,    ///< worth knowing
};

std::string_view name_of(severity level);

struct rule {
    std::string_view id;      ///< words joined by hyphens, unique
    severity level;           ///< of a breach
    std::string_view clause;  ///< of H.264, or "ISO/IEC 14496-15 5.2.4"
    std::string_view title;   ///< what holds, as a clause of its own
    std::string_view about;   ///< why, and what becomes of a stream that breaks it
    std::string_view example; ///< what breaks it
};

/// What breaks a rule.
struct breach {
    std::string element; ///< the syntax element to blame, with its indices; "" where it is no single one
    std::string found;
    std::string allowed;
    std::optional<severity> level = {}; ///< where it weighs less than the rule says
    std::size_t nth = 0;                ///< of the elements with that name in the unit, from 0
};

/// What breaks a rule by the value of an element.
breach breach_of(std::string_view element, std::int64_t found, std::string allowed);
/// Likewise, of one that is not shown as a number.
breach breach_of(std::string_view element, std::string found, std::string allowed);

/// Nothing where the rule is kept, or has nothing to say.
using verdict = std::optional<breach>;

/// A rule with the function that judges.
template <class Facts>
struct rule_over {
    rule what;
    verdict (*judge)(const Facts& of);
};

/// Its clause stands before the other's: by numbers, H.264 before other standards, annexes behind clauses.
bool stands_before(const rule* one, const rule* other);

/// All rules, in the order of their clauses.
std::span<const rule* const> all_rules();

/// The rule of that name; null where there is none.
const rule* find_rule(std::string_view id);

} // namespace orv_h264
