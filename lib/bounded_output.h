// Output into a caller's range: every write says whether it fits, and one that does not writes nothing.
#pragma once

#include "bytescan/copy_bytes.h"

#include <orv-utils-v4/h2645_common/advance_past.h>

#include <cstddef>

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
        bytescan::copy_bytes(at, from, count);
        at += count;
        return true;
    }

    /// Appends `count` zero bytes, a few; false, and nothing written, when they do not fit.
    bool zeros(std::size_t count) noexcept
    {
        if (count > range_size(at, fence))
            return false;
        for (; count > 0; --count)
            *at++ = 0;
        return true;
    }

    /// Appends one byte; false when there is no room.
    bool byte(unsigned char value) noexcept { return copy(&value, 1); }

    /// Where the next byte goes.
    unsigned char* position() const noexcept { return at; }

    /// How far it goes.
    unsigned char* end() const noexcept { return fence; }

    /// Goes on at `p`, up to which others have written.
    void move_to(unsigned char* p) noexcept { at = p; }

private:
    unsigned char* at;
    unsigned char* fence;
};

} // namespace brenik
