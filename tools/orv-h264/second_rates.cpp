#include "second_rates.h"

#include <algorithm>

namespace orv_h264 {

void second_rates::add(const h264::hrd_parameters& hrd, double bits, std::uint64_t count)
{
    constexpr double rounding = 0.5; // bits are whole, but for those of a picture that is in two seconds
    seconds += count;
    largest = std::max(largest, bits);
    for (std::uint32_t i = 0; i < h264::schedule_count(hrd); ++i)
        above[i] += bits > static_cast<double>(h264::BitRate(hrd, i)) + rounding ? count : 0;
}

} // namespace orv_h264
