// The part of a check that looks at the bytes of a unit as they are sent, emulation prevention in.
#pragma once

#include "check/check_part.h"

#include <cstddef>
#include <optional>
#include <span>

namespace orv_h264 {

struct byte_facts {
    std::span<const unsigned char> bytes; ///< the unit, header byte first

    /// Where the first three bytes are that no unit may have, or 00 00 03 before a byte that needs no escape.
    std::optional<std::size_t> unsound_escape() const;
};

std::span<const rule_over<byte_facts>> byte_rules();

class byte_check final : public check_part {
public:
    explicit byte_check(violation_log& to) : log(to) {}

    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;

private:
    violation_log& log;
};

} // namespace orv_h264
