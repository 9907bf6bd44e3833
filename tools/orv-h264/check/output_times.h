// When pictures are output, and the decoded picture buffer at those times (H.264 C.2, C.3).
#pragma once

#include "check/hrd_facts.h"
#include "check/hrd_model.h"
#include "check/violation_log.h"

#include <cstdint>
#include <deque>
#include <optional>

namespace orv_h264 {

class output_times {
public:
    explicit output_times(violation_log& to) : log(to) {}

    /// The next access unit, of this picture; `timing` stands in the unit of that number, or is null.
    void access_unit(const h264::access_unit& unit, const h264::picture& of, const h264::pic_timing* timing,
                     std::uint64_t timing_unit, const hrd_model& model);
    void decoded(const h264::picture& picture, const h264::reference_marking& marking);
    void output(const h264::picture& picture);

private:
    /// A frame or a complementary field pair.
    struct timed_frame {
        std::uint64_t number = 0;
        std::uint64_t unit = 0;   ///< the timing message's
        std::uint64_t run = 0;    ///< of the model
        std::int64_t removal = 0; ///< ticks; of two fields the later one
        std::int64_t first = 0;   ///< output of the first field, or of the frame
        std::optional<std::int64_t> second = {};
        std::uint32_t delay = 0; ///< dpb_output_delay
        std::uint32_t room = 0;  ///< max_dec_frame_buffering
        std::uint8_t fields = 0; ///< DeltaTfiDivisor
        bool fixed_rate = false;
        bool low_delay = false;
        bool empties = false; ///< no_output_of_prior_pics_flag
    };
    struct shown_frame {
        timed_frame what;
        std::uint64_t sequence = 0;
        bool discarded = false;
    };

    static constexpr std::size_t most_waiting = 256;

    timed_frame* find(std::uint64_t number);
    void empty_buffer(const timed_frame& by, const h264::reference_marking& marking);

    violation_log& log;
    std::deque<timed_frame> waiting;  // to be output
    std::deque<timed_frame> buffered; // in the decoded picture buffer
    std::optional<shown_frame> shown; // the latest one
};

} // namespace orv_h264
