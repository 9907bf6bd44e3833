// The part of a check that looks at parameter sets: which are there, which are active, and when they change.
#pragma once

#include "check/check_part.h"
#include "check/set_facts.h"

#include <cstdint>
#include <optional>

namespace orv_h264 {

class set_check final : public check_part {
public:
    explicit set_check(violation_log& to) : log(to) {}

    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;

private:
    void look_at_sps(const h264::access_unit_part& part, bool may_change);
    void look_at_pps(const h264::access_unit& of, const h264::access_unit_part& part);
    void activate(const h264::access_unit& unit, std::uint64_t first_slice);

    violation_log& log;
    std::optional<h264::seq_parameter_set_data> active; // of the base
};

} // namespace orv_h264
