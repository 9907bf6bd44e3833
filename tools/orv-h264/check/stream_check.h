// A run over a stream that looks with all the rules at its units, access units and pictures.
#pragma once

#include "access_unit_taker.h"
#include "check/check_part.h"
#include "check/delivery_profile.h"
#include "check/unit_elements.h"

namespace orv_h264 {

class stream_check final : public unit_run, h264::picture_sink {
public:
    /// The profiles outlive it.
    stream_check(const std::string& name, std::uint64_t most_unit_bytes, violation_sink& sink,
                 std::span<const delivery_profile> profiles = {});

    /// Reads the stream to its end.
    void look_at(stream_input& input);

private:
    bool enough() const override { return false; }
    h264::visitor* before(const listed_unit& unit) override;
    void take(const listed_unit& unit, const h264::unit_reading* reading) override;
    void take_cut(const listed_unit& unit, const h264::split_unit& as_split) override;
    void take_gap(const h264::split_gap& gap) override;
    void complain(const listed_unit* unit, std::uint64_t offset, const std::string& what, bool is_problem) override;

    void access_unit_came(const h264::access_unit& unit, const h264::picture* of) override;
    void decoded(const h264::picture& picture) override;
    void output(const h264::picture& picture) override;

    void look_at_elements(std::uint64_t unit);
    void look_at_sets(const listed_unit& unit, const h264::unit_reading& reading);
    void look_at_slice(const listed_unit& unit, const h264::unit_reading& reading);

    std::uint64_t most_bytes; // of a unit
    violation_log log;
    unit_elements elements; // of the unit at hand
    std::vector<std::unique_ptr<check_part>> parts;
    h264::access_units access_units;
    access_unit_taker to_pictures{[this](const h264::access_unit& unit) { pictures.take(unit, *this); }};
    h264::pictures pictures;
};

} // namespace orv_h264
