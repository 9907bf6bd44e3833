// The part of a check that looks at access units: the order of their units, and the slices of each picture.
#pragma once

#include "check/access_unit_facts.h"
#include "check/check_part.h"

namespace orv_h264 {

class access_unit_check final : public check_part {
public:
    explicit access_unit_check(violation_log& to) : log(to) {}

    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;

private:
    void look_at_slices(const h264::access_unit& unit);
    void go_on(const h264::access_unit& unit, const sent_slice* first);

    violation_log& log;
    sent_slices slices;
    stream_so_far before;
};

} // namespace orv_h264
