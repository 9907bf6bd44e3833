// Two readings of a unit, before and after an edit, element by element: what differs, and why it may.
#pragma once

#include "edit/element_list.h"
#include "edit/sps_wishes.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orv_h264 {

enum class difference_kind { changed, added, removed };

/// Why an element may differ.
enum class difference_cause {
    named,      ///< the user named it, and it has the value that he wants
    implied,    ///< an element before it brings it into the unit, or takes it out
    renumbered, ///< it says the same in other parameter sets
    forced,     ///< the user wants it whatever it does
    none,       ///< it must not
};

struct difference {
    difference_kind kind = difference_kind::changed;
    difference_cause cause = difference_cause::none;
    std::string path;
    std::int64_t before = 0; ///< of `changed` and `removed`
    std::int64_t after = 0;  ///< of `changed` and `added`
    bool bytes = false;      ///< the values stand for bytes that differ
};

/// What may differ.
struct comparison_terms {
    std::vector<element_value> wanted; ///< for this unit
    bool other_sets = false;           ///< it is written with other parameter sets than it was
    bool slice = false;
    bool force = false;
};

struct comparison {
    std::vector<difference> differences; ///< in the order of the unit
    std::uint64_t compared = 0;          ///< elements of the new unit, those that only fill up left out

    /// The first one that must not be, or null.
    const difference* forbidden() const;
};

/// `removed_messages` tells by number, from 1, which messages of an SEI unit are not looked for in the new one; what is
/// behind its end stays.
comparison compare_units(const element_list& before, const element_list& after,
                         const std::vector<bool>& removed_messages, const comparison_terms& terms);

/// "frame_num 3 would be 4".
std::string text_of(const difference& what);

} // namespace orv_h264
