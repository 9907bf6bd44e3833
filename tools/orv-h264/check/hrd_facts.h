// What rules about the hypothetical reference decoder look at.
#pragma once

#include "check/hrd_model.h"
#include "check/rule.h"

#include <cstdint>
#include <optional>
#include <span>

namespace orv_h264 {

/// Where the model begins.
struct hrd_start_facts {
    std::uint64_t units_before = 0; ///< access units with HRD parameters that came before
};

/// The removal of an access unit.
struct hrd_removal_facts {
    const hrd_removal& removal;
};

/// An access unit that has arrived by a schedule.
struct hrd_arrival_facts {
    const hrd_schedule& schedule;
    const cpb_arrival& arrival;
    const hrd_delays* period = nullptr; ///< its delays, where a buffering period begins with it
    bool bits_known = true;             ///< all that the schedule counts are there to be counted; else there are more
};

/// The delays of a buffering period for a schedule, and of the one before in the same coded video sequence.
struct hrd_period_facts {
    std::uint32_t SchedSelIdx = 0;
    hrd_delays now;
    hrd_delays before;
};

/// Output times of a frame or a complementary field pair, and of the one before it in output order, in ticks.
struct output_time_facts {
    std::int64_t before = 0;
    std::int64_t now = 0;
    std::uint8_t fields_before = 2; ///< how long the one before is shown: DeltaTfiDivisor, Table E-6
    bool fixed_rate = false;        ///< fixed_frame_rate_flag holds from one to the other
    bool low_delay = false;         ///< low_delay_hrd_flag: removals, and so outputs, may come later than nominal
};

/// The fields of a complementary non-reference field pair.
struct field_time_facts {
    std::int64_t first = 0;
    std::int64_t second = 0;
};

/// The decoded picture buffer at the removal time of a picture.
struct picture_buffer_facts {
    std::uint32_t frames = 0; ///< that are in use, with the picture
    std::uint32_t room = 0;   ///< Max( 1, max_dec_frame_buffering )
    std::uint32_t dpb_output_delay = 0;
    bool buffers_none = false; ///< max_dec_frame_buffering is 0
    bool low_delay = false;
};

std::span<const rule_over<hrd_start_facts>> hrd_start_rules();
std::span<const rule_over<hrd_removal_facts>> hrd_removal_rules();
std::span<const rule_over<hrd_arrival_facts>> hrd_arrival_rules();
/// Of these the buffering period is to blame.
std::span<const rule_over<hrd_arrival_facts>> hrd_delay_rules();
std::span<const rule_over<hrd_period_facts>> hrd_period_rules();
std::span<const rule_over<output_time_facts>> output_time_rules();
std::span<const rule_over<field_time_facts>> field_time_rules();
std::span<const rule_over<picture_buffer_facts>> picture_buffer_rules();

} // namespace orv_h264
