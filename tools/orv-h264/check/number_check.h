// The part of a check that looks at frame_num and picture order counts.
#pragma once

#include "check/check_part.h"
#include "check/count_list.h"
#include "check/number_facts.h"

#include <cstdint>
#include <map>
#include <optional>

namespace orv_h264 {

class number_check final : public check_part {
public:
    explicit number_check(violation_log& to) : log(to) {}

    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;
    void decoded(const h264::picture& picture, const h264::reference_marking& marking) override;
    void output(const h264::picture& picture) override;

private:
    static constexpr std::size_t most_units = 1024;

    void look_at_number(const h264::access_unit& unit, const numbered_picture& picture, std::uint64_t slice);
    void go_on(const h264::access_unit& unit, const numbered_picture& picture);
    std::uint64_t missing_before(const h264::picture& picture);

    violation_log& log;
    numbered_picture last;
    numbered_picture last_but_one;
    std::optional<std::uint32_t> PrevRefFrameNum;
    bool sure = false;    // counts of this sequence are those that were meant
    bool repeats = false; // the open picture is the one before once more
    std::uint64_t sequence = 0;
    count_list counts;
    std::map<std::uint64_t, std::uint64_t> first_slices; // units, by the number of their picture; of the latest ones

    // of output
    static constexpr std::uint64_t enough_steps = 4;
    std::uint64_t output_sequence = 0;
    std::optional<std::int64_t> output_count;
    std::int64_t output_step = 0;
    std::uint64_t equal_steps = 0;
};

} // namespace orv_h264
