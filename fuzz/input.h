// What the fuzz entry points share: taking an input apart, and saying that a claim does not hold.
#pragma once

#include "exact_block.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

using bytes = std::vector<unsigned char>;

/// The input, taken from the front; numbers past its end are 0.
class input {
public:
    input(const std::uint8_t* data, std::size_t size) : at(data), fence(data + size) {}

    unsigned char byte() { return at == fence ? 0 : *at++; }

    /// Up to `most` further bytes.
    bytes take(std::size_t most)
    {
        const std::size_t count = std::min(most, left());
        bytes taken(at, at + count);
        at += count;
        return taken;
    }

    bytes rest() { return take(left()); }

    /// Up to `most` further bytes in memory of exactly their size.
    exact_block block(std::size_t most)
    {
        const std::size_t count = std::min(most, left());
        at += count;
        return {at - count, count};
    }

    exact_block rest_block() { return block(left()); }

private:
    std::size_t left() const { return static_cast<std::size_t>(fence - at); }

    const std::uint8_t* at;
    const std::uint8_t* fence;
};

/// Ends the process with `difference` unless it is empty.
inline void expect_none(const std::string& difference)
{
    expect(difference.empty(), difference.c_str());
}

} // namespace fuzz
