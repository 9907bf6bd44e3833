// Where units begin and end in bytes of Annex B, H.264 B.1: one search for both, which keeps what it has seen of a
// block.
#pragma once

#include "bytescan/bytescan.h"

namespace orv_utils_v4::h264 {

/// Start codes and the ends of units in a range, one after another.
class start_codes {
public:
    static constexpr std::size_t size = 3; // without the zero_byte

    start_codes(const unsigned char* start, const unsigned char* end) noexcept : fence(end), places(start, end, {0, 1})
    {
    }

    /// The first 00 00 01 at `p` or behind it; the end of the range when there is none.
    const unsigned char* next_code(const unsigned char* p) noexcept
    {
        for (p = next_end(p); p != fence && p[2] == 0; p = next_end(p + 1)) {
        }
        return p;
    }

    /// The first 00 00 00 or 00 00 01 at `p` or behind it, not before the place that was told last; the end of the
    /// range when there is none.
    const unsigned char* next_end(const unsigned char* p) noexcept
    {
        places.resume(p);
        return places.next();
    }

    /// The 00 00 01 where a unit ended, at `end` or behind one zero_byte; the end of the range when there is none.
    static const unsigned char* behind_zero_byte(const unsigned char* end, const unsigned char* fence) noexcept
    {
        if (end[2] == 1)
            return end;
        return fence - end > 3 && end[3] == 1 ? end + 1 : fence;
    }

    /// The end of the unit at `unit` when the stream ends at `end`: zero bytes there are none of its own.
    static const unsigned char* without_zeros(const unsigned char* unit, const unsigned char* end) noexcept
    {
        while (end != unit && end[-1] == 0)
            --end;
        return end;
    }

private:
    const unsigned char* fence;
    brenik::bytescan::zero_pairs places;
};

} // namespace orv_utils_v4::h264
