// How full the coded picture buffer of a stream with HRD parameters is over time, by its first schedule, in bounded
// memory.
#pragma once

#include "check/hrd_run.h"
#include "json_output.h"
#include "report/report_aggregates.h"

#include <cstdint>
#include <optional>

namespace orv_h264 {

/// From one removal to the next, or of several.
struct buffer_stretch {
    std::uint64_t count = 0;
    double begin = 0; ///< seconds
    double end = 0;
    std::int64_t least = 0; ///< bits in the buffer
    std::int64_t most = 0;

    void add(const buffer_stretch& other);
};

class report_buffer final : hrd_listener {
public:
    explicit report_buffer(const stream_input& input) : decoder(input, *this, hrd_run::quiet) { decoder.begin(input); }

    h264::split_sink& sink() { return decoder.sink(); }
    void finish() { decoder.end(); }

    /// null where no schedule fills a buffer.
    json page_data() const;

private:
    void began(const hrd_access_unit& unit, const std::vector<coded_picture_buffer>& buffers) override;
    void removed(const hrd_schedule& schedule, const cpb_step& step) override;

    hrd_run decoder;
    stretch_list<buffer_stretch> stretches;
    std::optional<hrd_schedule> shown;
    std::size_t schedules = 0;
    std::uint64_t runs = 0;
    std::int64_t latest = 0; // bits behind the removal before
    double time = 0;         // of that removal
    double run_begin = 0;
};

} // namespace orv_h264
