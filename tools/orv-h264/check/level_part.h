// The load of a stream over time, against the limits of its level.
#pragma once

#include "check/check_part.h"
#include "check/known_sps.h"
#include "check/level_facts.h"

#include <deque>
#include <optional>

namespace orv_h264 {

class level_part final : public check_part {
public:
    explicit level_part(violation_log& to) : log(to) {}

    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;
    void output(const h264::picture& picture) override;

private:
    struct nothing {};
    using sps_entry = known_sps_list<nothing>::entry;
    /// A picture that is not output yet, or was a short time ago.
    struct open_picture {
        std::uint64_t number;
        std::uint64_t unit; ///< its first slice
        sps_entry sps;
        bool lone_field; ///< as far as its access units have come
        bool is_frame;   ///< of one access unit
        double removal;  ///< seconds, where `timed`
        bool timed;      ///< by timing messages
    };

    void judge_load(const h264::access_unit& unit, std::uint64_t slice, std::optional<double> seconds, bool first);
    std::optional<double> begin_picture(const h264::access_unit& unit, const h264::picture& of, std::uint64_t slice);
    open_picture* find(std::uint64_t picture);

    violation_log& log;
    known_sps_list<nothing> sets;
    std::deque<h264::seq_parameter_set_data> judged; // SPSs
    std::deque<open_picture> open;
    bool any_picture = false;
    std::optional<open_picture> shown; // latest
    double shown_time = 0;
};

} // namespace orv_h264
