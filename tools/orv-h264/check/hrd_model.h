// The hypothetical reference decoder over a stream: its removal times, and a coded picture buffer for each schedule of
// the NAL HRD and of the VCL HRD (H.264 Annex C).
#pragma once

#include "check/coded_picture_buffer.h"
#include "check/sei_list.h"
#include "check/unit_sizes.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace orv_h264 {

/// When an access unit is removed, in ticks of t_c behind access unit 0.
struct hrd_removal {
    std::int64_t ticks = 0;
    std::int64_t before = 0; ///< the access unit before it
};

class hrd_listener {
public:
    virtual ~hrd_listener() = default;
    /// The model begins with this access unit, the first one that has what it takes, or anew: schedules and times
    /// do not go on.
    virtual void began(const hrd_access_unit& unit, const std::vector<coded_picture_buffer>& buffers)
    {
        static_cast<void>(unit);
        static_cast<void>(buffers);
    }
    /// Every other one that has a time.
    virtual void timed(const hrd_access_unit& unit, const hrd_removal& removal)
    {
        static_cast<void>(unit);
        static_cast<void>(removal);
    }
    /// The access unit has arrived by this schedule, with these delays where a buffering period begins with it.
    virtual void arrived(const hrd_access_unit& unit, const hrd_schedule& schedule, const hrd_delays* period,
                         const cpb_arrival& how)
    {
        static_cast<void>(unit);
        static_cast<void>(schedule);
        static_cast<void>(period);
        static_cast<void>(how);
    }
    virtual void removed(const hrd_schedule& schedule, const cpb_step& step)
    {
        static_cast<void>(schedule);
        static_cast<void>(step);
    }

protected:
    hrd_listener() = default;
    hrd_listener(const hrd_listener&) = default;
    hrd_listener& operator=(const hrd_listener&) = default;
};

/// An access unit without the messages that the times take ends the model, which begins anew with the next buffering
/// period; likewise another SPS with other HRD parameters or another tick, and removal times that do not go on from
/// one buffering period to the next.
class hrd_model {
public:
    explicit hrd_model(hrd_listener& to) : listener(to) {}

    /// The next access unit that has a picture.
    void take(const h264::access_unit& unit, const sei_list& messages, const access_unit_bits& bits,
              std::uint64_t offset);
    /// What comes does not go on from what came; the stream has ended, for one.
    void end();

    bool running() const noexcept { return !buffers.empty(); }
    /// How often it has begun: times of different runs do not go together.
    std::uint64_t runs() const noexcept { return run_count; }
    /// The ticks of the latest access unit; only while it runs.
    std::int64_t latest_ticks() const noexcept { return period_ticks + since_period; }

private:
    /// What the times and buffers are made of.
    struct parameters {
        hrd_clock clock;
        std::optional<h264::hrd_parameters> nal;
        std::optional<h264::hrd_parameters> vcl;
        bool low_delay = false;

        friend bool operator==(const parameters&, const parameters&) = default;
    };

    static std::optional<parameters> parameters_of(const h264::seq_parameter_set_data* sps);
    hrd_removal next_removal(const h264::pic_timing& timing);
    void begin(const parameters& now, const h264::buffering_period& period, const hrd_access_unit& unit);
    void add_buffers(bool nal, const h264::hrd_parameters& hrd, const h264::buffering_period& period);
    void arrive(const hrd_access_unit& unit, const access_unit_bits& bits, const h264::buffering_period* period);

    hrd_listener& listener;
    std::optional<parameters> active;
    std::vector<coded_picture_buffer> buffers;
    std::int64_t period_ticks = 0; // of the access unit with the latest buffering period
    std::int64_t since_period = 0; // behind that, of the latest access unit
    std::uint64_t run_count = 0;
};

/// The delays of one schedule in the message; null where it has none.
std::optional<hrd_delays> delays_of(const h264::buffering_period& period, bool nal, std::uint32_t SchedSelIdx);

/// The HRD parameters that the delays are written by; null where the VUI has none.
const h264::hrd_parameters* any_hrd(const h264::seq_parameter_set_data& sps);

} // namespace orv_h264
