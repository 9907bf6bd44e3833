// A run over a stream that looks at every unit with the rules, and tells what breaks them.
#pragma once

#include "check/element_index.h"
#include "check/facts.h"
#include "check/violation.h"
#include "unit_run.h"

#include <cstdint>
#include <string>

namespace orv_h264 {

class check_run final : public unit_run {
public:
    check_run(const stream_input& input, violation_sink& sink)
        : unit_run(input.name(), false), to(sink), most_unit_bytes(input.max_unit())
    {
    }

private:
    bool enough() const override { return false; }
    h264::visitor* before(const listed_unit& unit) override;
    void take(const listed_unit& unit, const h264::unit_reading* reading) override;
    void take_gap(const h264::split_gap& gap) override;
    void complain(const listed_unit* unit, std::uint64_t offset, const std::string& what, bool is_problem) override;

    void look_at_elements(const listed_unit& unit);
    void look_at_sets(const listed_unit& unit, const h264::unit_reading& reading);
    void look_at_slice(const listed_unit& unit, const h264::unit_reading& reading);
    template <class Facts>
    void judge(std::span<const rule_over<Facts>> rules, const Facts& facts, const listed_unit& unit);
    void tell(const rule& broken, const breach& how, const listed_unit& unit);
    void locate(violation& what, const listed_unit& unit, std::optional<std::uint64_t> bit) const;

    violation_sink& to;
    std::uint64_t most_unit_bytes;
    element_index elements; // of the unit at hand
};

} // namespace orv_h264
