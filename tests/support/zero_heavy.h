// Random bytes with many zeros, ones, twos and threes: start codes, escapes and what almost is one come up often.
#pragma once

#include "support/stream_builder.h"

#include <cstddef>
#include <iterator>
#include <random>

namespace support {

/// The same sequence in every run.
using random_source = std::mt19937;

/// 0 to `count` - 1.
inline std::size_t pick(random_source& random, std::size_t count)
{
    return random() % count;
}

/// `size` zero-heavy bytes.
inline bytes zero_heavy(random_source& random, std::size_t size)
{
    static constexpr unsigned char choices[] = {0, 0, 0, 0, 0, 0, 1, 1, 2, 3, 3, 4, sps, forbidden, 0xFF};
    bytes made(size);
    for (unsigned char& byte : made)
        byte = choices[pick(random, std::size(choices))];
    return made;
}

/// 0 to `largest` zero-heavy bytes.
inline bytes zero_heavy_up_to(random_source& random, std::size_t largest)
{
    return zero_heavy(random, pick(random, largest + 1));
}

} // namespace support
