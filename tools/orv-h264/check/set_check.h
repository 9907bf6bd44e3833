// The part of a check that looks at parameter sets: which are there, which are active, and when they change.
#pragma once

#include "check/check_part.h"
#include "check/set_facts.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace orv_h264 {

class set_check final : public check_part {
public:
    explicit set_check(violation_log& to) : log(to) {}

    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;

private:
    void look_at_sps(const h264::access_unit_part& part, bool may_change);
    void look_at_pps(const h264::access_unit& of, const h264::access_unit_part& part);
    void look_at_auxiliary(const h264::access_unit& unit, std::uint64_t first_slice) const;
    void keep_extension(const h264::access_unit_part& part);
    void activate(const h264::access_unit& unit, std::uint64_t first_slice);

    violation_log& log;
    std::optional<h264::seq_parameter_set_data> active;     // of the base
    std::optional<std::uint32_t> aux_format_idc;            // that goes with it, where that is known
    std::vector<std::optional<std::uint32_t>> aux_formats = // of the SPSs by id, 0 without an extension
        std::vector<std::optional<std::uint32_t>>(h264::parameter_sets::sps_ids, 0);
};

} // namespace orv_h264
