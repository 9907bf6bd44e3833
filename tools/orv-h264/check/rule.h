// A rule that a stream has to keep to: its name, clause and words, and the function that judges. A file of rules for
// each kind of thing that they look at has a table of them.
#pragma once

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
    std::string_view element; ///< the syntax element to blame, as a trace names it; "" where it is no single one
    std::string found;
    std::string allowed;
};

/// Nothing where the rule is kept, or has nothing to say.
using verdict = std::optional<breach>;

template <class Facts>
struct rule_over {
    rule what;
    verdict (*judge)(const Facts& of);
};

/// All rules, in the order of their clauses.
std::span<const rule* const> all_rules();

/// The rule of that name; null where there is none.
const rule* find_rule(std::string_view id);

} // namespace orv_h264
