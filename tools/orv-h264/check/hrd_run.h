// A run of the hypothetical reference decoder over the units of a stream, without the rest of a check.
#pragma once

#include "access_unit_taker.h"
#include "check/hrd_model.h"
#include "check/unit_sizes.h"
#include "unit_run.h"

namespace orv_h264 {

class hrd_run : public unit_run {
public:
    /// What is wrong with the stream on the way.
    enum complaints : std::uint8_t { told, told_in_json, quiet };

    /// The listener is told.
    hrd_run(const stream_input& input, hrd_listener& to, complaints how)
        : unit_run(input.name(), how == told_in_json), tells(how != quiet), model(to)
    {
        sizes.begin(input);
    }

    /// All units have come.
    void finish();

    /// For one that is not run, but given the units that are read for something else.
    void begin(const stream_input& input) { begin_units(input); }
    h264::split_sink& sink() { return units_in(); }
    void end()
    {
        end_units();
        finish();
    }

    /// Those with a picture, and those of them that the model had no times for.
    std::uint64_t access_units() const noexcept { return pictures; }
    std::uint64_t untimed() const noexcept { return without_times; }

private:
    bool enough() const override { return false; }
    h264::visitor* before(const listed_unit&) override { return nullptr; }
    void take(const listed_unit& unit, const h264::unit_reading* reading) override;
    void add(const h264::access_unit& unit);
    /// Values outside of their ranges are no matter of buffers.
    void complain(const listed_unit* unit, std::uint64_t offset, const std::string& what, bool is_problem) override;

    bool tells;
    hrd_model model;
    unit_sizes sizes;
    h264::access_units units;
    access_unit_taker to_model{[this](const h264::access_unit& unit) { add(unit); }};
    std::uint64_t pictures = 0;
    std::uint64_t without_times = 0;
};

} // namespace orv_h264
