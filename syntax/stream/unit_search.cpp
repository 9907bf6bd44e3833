// Many units in one call, H.264 B.1: their ends are listed some blocks at a time.
#include <orv-utils-v4/h264_syntax/unit_search.h>

#include "stream/start_codes.h"

namespace orv_utils_v4::h264 {

std::size_t unit_search::next(unit_range* units, std::size_t most) noexcept
{
    unit_ends ends(at, fence);
    const unsigned char* unit = fence; // that has begun; else the end
    unsigned framing_size = 0;
    std::size_t count = 0;
    const auto take_up_to = [&](const unsigned char* end) {
        if (unit < end)
            units[count++] = {static_cast<std::size_t>(unit - start), static_cast<std::size_t>(end - unit),
                              framing_size};
    };
    for (auto few = ends.next_few(); !few.empty(); few = ends.next_few())
        for (const unsigned char* const end : few) {
            take_up_to(end);
            if (count == most) {
                at = end;
                return count;
            }
            const unsigned char* const code = start_code::behind(end, fence);
            framing_size = code == end ? 3 : 4;
            unit = code == fence ? fence : code + start_code::size;
        }
    take_up_to(start_code::without_zeros(unit, fence));
    at = fence;
    return count;
}

} // namespace orv_utils_v4::h264
