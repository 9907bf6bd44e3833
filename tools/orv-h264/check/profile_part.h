// Looks at a stream with the requirements of a delivery profile.
#pragma once

#include "check/check_part.h"
#include "check/delivery_profile.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <utility>

namespace orv_h264 {

class profile_part final : public check_part {
public:
    profile_part(violation_log& to, const delivery_profile& of) : log(to), profile(of) {}

private:
    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;
    void output(const h264::picture& picture) override;
    void end() override;

    void look_at(const requirement& asked, const placed_element& element, std::uint64_t unit);
    void measure(quantity what, fraction value, std::uint64_t unit);
    void measure_sps(const h264::seq_parameter_set_data& sps, std::uint64_t unit);

    static constexpr std::size_t most_waiting = 1024; // pictures that are not output yet

    violation_log& log;
    const delivery_profile& profile;
    std::set<const requirement*> seen; // whose elements were there
    std::uint64_t pictures = 0;        // so far
    std::uint64_t latest_picture = 0;
    std::optional<std::uint64_t> last_key; // its number
    h264::exact_time last_key_shown;
    std::uint64_t b_in_a_row = 0;
    std::deque<std::pair<std::uint64_t, std::uint64_t>> waiting; // numbers of pictures, and of their first units
};

} // namespace orv_h264
