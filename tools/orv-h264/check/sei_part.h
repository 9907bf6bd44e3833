// The part of a check that looks at SEI messages where they stand (H.264 7.4.1.2.3, D.2).
#pragma once

#include "check/check_part.h"
#include "check/sei_facts.h"

#include <map>

namespace orv_h264 {

class sei_part final : public check_part {
public:
    explicit sei_part(violation_log& to) : log(to) {}

    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;

private:
    void look_at(const message_facts& facts);
    void keep(const placed_message& one);

    violation_log& log;
    std::map<std::uint32_t, h264::sei_message> of_sequence; // by payload type, the first of each that is kept
};

} // namespace orv_h264
