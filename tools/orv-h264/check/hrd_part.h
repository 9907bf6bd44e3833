// The part of a check that runs the hypothetical reference decoder: its coded picture buffers, and the times at which
// pictures are output (H.264 Annex C).
#pragma once

#include "check/check_part.h"
#include "check/hrd_facts.h"
#include "check/hrd_model.h"
#include "check/output_times.h"

#include <optional>

namespace orv_h264 {

class hrd_part final : public check_part, hrd_listener {
public:
    explicit hrd_part(violation_log& to) : log(to), times(to) {}

    void begin(const stream_input& input) override { sizes.begin(input); }
    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;
    void decoded(const h264::picture& picture, const h264::reference_marking& marking) override;
    void output(const h264::picture& picture) override { times.output(picture); }
    void end() override { model.end(); }

private:
    void began(const hrd_access_unit& unit, const std::vector<coded_picture_buffer>& buffers) override;
    void timed(const hrd_access_unit& unit, const hrd_removal& removal) override;
    void arrived(const hrd_access_unit& unit, const hrd_schedule& schedule, const hrd_delays* period,
                 const cpb_arrival& how) override;

    void look_at_sums(const h264::access_unit& unit, const h264::buffering_period* period);

    static constexpr unsigned end_of_stream = 11;

    violation_log& log;
    output_times times;
    hrd_model model{*this};
    unit_sizes sizes;
    std::uint64_t units_before = 0; // of the model
    std::uint64_t period_unit = 0;  // of the access unit at hand
    std::uint64_t timing_unit = 0;
    std::optional<h264::buffering_period> latest; // of the coded video sequence
};

} // namespace orv_h264
