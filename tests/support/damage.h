// What can be wrong with a structure: each length, each bit flipped, each element at a limit, each code malformed. The
// sweeps of the tests, the bad inputs and the fuzzers' mutator take it from here.
#pragma once

#include "support/element_writer.h"
#include "support/zero_heavy.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace support {

/// Numbers at which something begins or ends: the last of each range in the standard, the library's cap of 128 entries,
/// powers of two and the longest codes of both interfaces; each with its neighbours.
constexpr std::int64_t limits[] = {
    0,        1,        2,        3,          4,          5,          6,          7,         8,
    9,        10,       11,       12,         13,         15,         16,         17,        30,
    31,       32,       33,       63,         64,         65,         126,        127,       128,
    129,      247,      248,      254,        255,        256,        257,        1023,      16383,
    65534,    65535,    65536,    8388606,    8388607,    8388608,    16777214,   16777215,  16777216,
    33554430, 33554431, 33554432, 2147483646, 2147483647, 2147483648, 4294967293, 4294967294};

/// The values of the limits that the element can be set to, and for a field those that lie as far below its highest.
inline std::vector<std::int64_t> limits_of(const element& e)
{
    const std::int64_t fence = std::int64_t{1} << std::min<std::size_t>(e.width, 33);
    const std::int64_t last = e.how == descriptor::u ? fence - 1 : e.how == descriptor::ue ? 4294967294 : 2147483647;
    std::vector<std::int64_t> values;
    for (const std::int64_t limit : limits) {
        if (limit > last)
            break;
        values.push_back(limit);
        if (e.how != descriptor::ue)
            values.push_back(e.how == descriptor::u ? last - limit : -limit);
    }
    if (e.how == descriptor::u)
        values.insert(values.end(), {last / 2, fence / 2});
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

/// The data with one bit inverted.
inline bytes with_flipped_bit(bytes data, std::size_t bit)
{
    data[bit / 8] = static_cast<unsigned char>(data[bit / 8] ^ 0x80U >> bit % 8);
    return data;
}

/// One to three bytes of the data at random.
inline bytes with_random_bytes(bytes data, random_source& random)
{
    for (std::size_t n = 1 + pick(random, 3); n > 0 && !data.empty(); --n)
        data[pick(random, data.size())] = static_cast<unsigned char>(random());
    return data;
}

/// Calls `use(data, element, value)` for every element at every limit. Of a scaling list's deltas, the first, the
/// 16th and the 64th stand for the others.
template <typename Use>
void each_limit(const element_writer& valid, Use use)
{
    for (const element& e : valid.elements())
        if (!e.name.ends_with("delta_scale") || e.entry == 0 || e.entry == 15 || e.entry == 63)
            for (const std::int64_t value : limits_of(e))
                use(with_element(valid, e, value), e, value);
}

/// Calls `use(data, element)` for every code, malformed.
template <typename Use>
void each_malformed_code(const element_writer& valid, Use use)
{
    for (const element& e : valid.elements())
        if (e.how != descriptor::u)
            use(with_malformed_code(valid, e), e);
}

} // namespace support
