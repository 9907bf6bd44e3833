// Output into a caller's range: every write says whether it fits, and one that does not writes nothing.
#pragma once

#include <orv-utils-v4/h2645_common/advance_past.h>

#include <cstddef>
#include <cstring>

namespace brenik {

/// Bytes appended at `at`, never at or past `fence`.
class bounded_output {
public:
    bounded_output(unsigned char* start, unsigned char* end) noexcept : at(start), fence(end) {}

    /// Appends `count` bytes from `from`; false, and nothing written, when they do not fit.
    bool copy(const unsigned char* from, std::size_t count) noexcept
    {
        if (count > range_size(at, fence))
            return false;
        if (count != 0)
            std::memcpy(at, from, count);
        at += count;
        return true;
    }

    /// Appends `count` zero bytes; false, and nothing written, when they do not fit.
    bool zeros(std::size_t count) noexcept
    {
        if (count > range_size(at, fence))
            return false;
        std::memset(at, 0, count);
        at += count;
        return true;
    }

    /// Appends one byte; false when there is no room.
    bool byte(unsigned char value) noexcept { return copy(&value, 1); }

    /// Where the next byte goes.
    unsigned char* position() const noexcept { return at; }

private:
    unsigned char* at;
    unsigned char* fence;
};

} // namespace brenik
