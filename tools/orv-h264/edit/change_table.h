// What an edit changed, element by element, those that changed alike together.
#pragma once

#include "edit/unit_comparison.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv_h264::editing {

/// Elements that changed alike.
struct changed_elements {
    difference what;         ///< the first of them
    std::uint64_t units = 0; ///< so many have it
    std::uint64_t first_unit = 0;
    bool values_differ = false; ///< the values of `what` are not those of all
};

class change_table {
public:
    /// Values are told apart up to so many rows; behind them a row stands for all values of an element.
    static constexpr std::size_t most_rows = 200;

    void add(const difference& what, std::uint64_t unit);
    const std::vector<changed_elements>& rows() const { return all; }

private:
    std::vector<changed_elements> all;
};

} // namespace orv_h264::editing
