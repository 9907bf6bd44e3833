// Emulation-prevention bytes dropped and inserted a byte at a time, as H.264 7.3.1 and 7.4.1 word it.
#pragma once

#include <cstddef>
#include <vector>

namespace support {

using bytes = std::vector<unsigned char>;

/// What is left, and written, when `read` bytes have been looked at.
struct passed {
    std::size_t read = 0;
    bytes written = {};
    std::size_t behind_escape_read = 0;
    std::size_t behind_escape_written = 0;
};

/// Two zeros and a byte of at most 3.
inline bool is_place(const bytes& data, std::size_t p)
{
    return p + 3 <= data.size() && data[p] == 0 && data[p + 1] == 0 && data[p + 2] <= 3;
}

/// Whether what lies at `p` ends a unit.
inline bool ends_unit(const bytes& data, std::size_t p)
{
    return is_place(data, p) && data[p + 2] != 3;
}

/// Without escapes, up to the unit's end, or to `stop` where that comes first.
inline passed escapes_dropped(const bytes& data, std::size_t stop)
{
    passed result;
    while (result.read < stop && !ends_unit(data, result.read)) {
        if (is_place(data, result.read)) {
            result.written.insert(result.written.end(), 2, 0);
            result.read += 3;
            result.behind_escape_read = result.read;
            result.behind_escape_written = result.written.size();
        } else {
            result.written.push_back(data[result.read++]);
        }
    }
    return result;
}

/// With escapes, up to `stop`.
inline passed escapes_inserted(const bytes& data, std::size_t stop)
{
    passed result;
    while (result.read < stop) {
        if (is_place(data, result.read)) {
            result.written.insert(result.written.end(), {0, 0, 3});
            result.read += 2;
        } else {
            result.written.push_back(data[result.read++]);
        }
    }
    return result;
}

} // namespace support
