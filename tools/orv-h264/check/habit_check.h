// The part of a check that looks for what has been the same in all pictures so far and is missing in one. The standard
// does not ask for it; but where a unit was lost with its start code, often nothing else tells.
#pragma once

#include "check/check_part.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>

namespace orv_h264 {

/// What a picture lacks of what many before it had.
struct habit_facts {
    bool lacks_delimiter = false;
    std::optional<std::uint32_t> lacks_slice = {}; ///< first_mb_in_slice
};

std::span<const rule_over<habit_facts>> habit_rules();

class habit_check final : public check_part {
public:
    explicit habit_check(violation_log& to) : log(to) {}

    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;

private:
    static constexpr std::uint64_t enough = 8; ///< pictures in a row
    static constexpr std::size_t most_slices = 4096;

    /// Where the slices of pictures begin.
    struct slice_row {
        std::set<std::uint32_t> begins;
        std::uint64_t pictures = 0; // in a row that were the same
    };

    bool lacks_delimiter(const h264::access_unit& unit);
    std::optional<std::uint32_t> lacks_slice(const h264::access_unit& unit);

    violation_log& log;
    std::uint64_t with_delimiter = 0; // access units in a row
    slice_row rows[2];                // of frames and of fields
};

} // namespace orv_h264
