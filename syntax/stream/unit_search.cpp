// Many units in one call, H.264 B.1: the search goes on with what it knows of the block from one unit to the next.
#include <orv-utils-v4/h264_syntax/unit_search.h>

#include "stream/start_codes.h"

namespace orv_utils_v4::h264 {

std::size_t unit_search::next(unit_range* units, std::size_t most) noexcept
{
    start_codes codes(at, fence);
    std::size_t count = 0;
    while (count != most) {
        const unsigned char* const code = codes.next_code(at);
        at = code;
        if (code == fence)
            break;
        const unsigned char* const unit = code + start_codes::size;
        at = codes.next_end(unit);
        const unsigned char* const end = at == fence ? start_codes::without_zeros(unit, fence) : at;
        if (end == unit)
            continue;
        const bool zero_byte = code != start && code[-1] == 0;
        units[count++] = {static_cast<std::size_t>(unit - start), static_cast<std::size_t>(end - unit),
                          zero_byte ? 4U : 3U};
    }
    return count;
}

} // namespace orv_utils_v4::h264
