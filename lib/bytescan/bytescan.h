// The one search behind every byte loop: two zero bytes and a small third. Between two such places readers and
// writers only copy.
#pragma once

#include <orv-utils-v4/h2645_common/advance_past.h>

namespace brenik::bytescan {

/// The first place p in [`start`, `fence`) where p[0] = p[1] = 0 and p[2] <= `largest_third` (at most 3), all three
/// bytes before `fence`; `fence` when there is none.
template <typename Byte>
Byte* find_zero_pair(Byte* start, Byte* fence, unsigned char largest_third) noexcept
{
    Byte* p = start;
    while (range_size(p, fence) >= 3) {
        if (p[2] > largest_third)
            p += 3;
        else if (p[0] == 0 && p[1] == 0)
            return p;
        else
            ++p;
    }
    return fence;
}

} // namespace brenik::bytescan
