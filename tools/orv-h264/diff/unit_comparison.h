// Two access units unit by unit, and two units element by element.
#pragma once

#include "diff/access_unit_feed.h"
#include "diff/difference_log.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orv_h264 {

/// What a unit is called: its structure, of SEI with its first message.
std::string path_of(const compared_unit& unit);

class unit_comparison {
public:
    /// So many units without a partner wait for one in another access unit.
    static constexpr std::size_t most_waiting = 65536;

    explicit unit_comparison(difference_log& into) : log(into) {}

    /// @return whether something differs that is not ignored
    bool compare(const compared_access_unit& a, const compared_access_unit& b);
    /// Units that only one access unit has, and another one of the other stream too, have moved; the others are told.
    void finish();

private:
    struct lone_unit {
        fingerprint whole;
        std::string path;
        place_pair at;
    };

    void compare_units(const compared_unit& a, const compared_unit& b);
    void compare_rest(const compared_unit& a, const compared_unit& b, const place_pair& at);
    bool keep_alone(std::vector<lone_unit>& of, const compared_unit& unit, const place_pair& at,
                    stream_difference what);

    difference_log& log;
    std::vector<lone_unit> only_a;
    std::vector<lone_unit> only_b;
};

} // namespace orv_h264
