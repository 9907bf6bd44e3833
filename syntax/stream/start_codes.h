// Where units begin and end in bytes of Annex B, H.264 B.1.
#pragma once

#include "bytescan/bytescan.h"

#include <cstddef>
#include <span>

namespace orv_utils_v4::h264 {

/// The ends of units in a range: each 00 00 00 or 00 00 01 that no such place stands before.
class unit_ends {
public:
    unit_ends(const unsigned char* start, const unsigned char* end) noexcept : rows(start, end, {0, 1}) {}

    /// The next ones, some of them; none at the end of the range.
    std::span<const unsigned char* const> next_few() noexcept { return rows.next_few(); }

private:
    brenik::bytescan::place_rows rows;
};

/// Start codes, and the zeros before them.
struct start_code {
    static constexpr std::size_t size = 3; // without the zero_byte

    /// The 00 00 01 that follows `end`, where a unit ended, behind any number of zero bytes; the end of the range when
    /// another byte does.
    static const unsigned char* behind(const unsigned char* end, const unsigned char* fence) noexcept
    {
        while (end[2] == 0 && fence - end > static_cast<std::ptrdiff_t>(size))
            ++end;
        return end[2] == 1 ? end : fence;
    }

    /// The end of the unit at `unit` when the stream ends at `end`: zero bytes there are none of its own.
    static const unsigned char* without_zeros(const unsigned char* unit, const unsigned char* end) noexcept
    {
        while (end != unit && end[-1] == 0)
            --end;
        return end;
    }
};

} // namespace orv_utils_v4::h264
