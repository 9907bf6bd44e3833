// Which elements of a unit an edit gives which values, and whether the unit is deleted: what the plan says about one
// unit. The editor and the proof ask the same.
#pragma once

#include "edit/edit_plan.h"
#include "edit/element_list.h"

#include <set>
#include <string>
#include <vector>

namespace orv_h264 {

/// A unit as it was.
struct planned_unit {
    const h264::unit_reading& reading;
    const element_list& elements;
    std::uint64_t number = 0;
};

class wanted_changes {
public:
    explicit wanted_changes(const edit_plan& with) : plan(with), seen(with.sets.size()), applied(with.sets.size()) {}

    /// The unit goes, by --delete, --remove-aud or --remove-filler.
    bool deletes(const planned_unit& unit);

    /// In the order in which they are to be set. Throws refusal where they cannot be had.
    /// @param indices gets for each the number of its --set, or -1
    std::vector<element_value> of(const planned_unit& unit, std::vector<int>* indices = nullptr);

    /// Which messages of an SEI unit go, by number from 1.
    std::vector<bool> removed_messages(const h264::nal_unit& unit) const;

    /// The --set with this index has found its element.
    void note_applied(int index) { applied[static_cast<std::size_t>(index)] = true; }
    /// Throws refusal when some --set has changed nothing.
    void check_all_applied() const;

    /// What the user ought to know, each once.
    const std::vector<std::string>& remarks() const { return told; }

private:
    bool holds(const std::vector<edit_condition>& where, const planned_unit& unit) const;
    void remark(const std::string& text);

    const edit_plan& plan;
    std::vector<bool> seen; // some unit meets the conditions
    std::vector<bool> applied;
    std::vector<std::string> told;
};

} // namespace orv_h264
