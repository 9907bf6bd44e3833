// The legacy bit reader once more, as a place in a string of bits and a count of the bytes loaded. The tests and the
// fuzz entry point hold the real reader against it; it shares no code with the libraries.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace literal {

/// Bits of `bytes`, first bit most significant, followed by zero bits without end.
struct legacy_bit_reader {
    std::vector<unsigned char> bytes;
    std::size_t position = 0; ///< bits consumed
    std::size_t loaded = 4;   ///< bytes loaded, the latest four of which are at hand

    /// How many of the bits at hand are consumed; above 32 when bits that are not at hand are, too.
    std::size_t bits() const { return position - 8 * (loaded - 4); }

    std::uint32_t word() const
    {
        std::uint32_t value = 0;
        for (std::size_t i = loaded - 4; i < loaded; ++i)
            value = value * 256 + byte_at(i);
        return value;
    }

    /// Where the next byte comes from, when the bytes have an end that is known.
    std::size_t next_byte() const { return std::min(loaded, bytes.size()); }

    std::uint32_t read(unsigned int n)
    {
        if (n == 0)
            return 0;
        if (n > 24)
            return 0xFFFFFFFF;
        refill();
        return take(n);
    }

    std::uint32_t ue()
    {
        unsigned int zeros = 0;
        while (zeros < 24) {
            refill();
            if (take(1) == 1)
                break;
            ++zeros;
        }
        if (zeros == 0)
            return 0;
        if (bits() == 8)
            ++loaded;
        std::uint32_t power = 1;
        for (unsigned int i = 0; i < zeros; ++i)
            power *= 2;
        return power - 1 + take(zeros);
    }

    std::int32_t se()
    {
        const std::int64_t k = ue();
        return static_cast<std::int32_t>(k % 2 != 0 ? (k + 1) / 2 : -(k / 2));
    }

    /// Whether every byte is loaded and no one bit is left.
    bool at_end() const
    {
        if (loaded < bytes.size())
            return false;
        for (std::size_t i = position; i < 8 * bytes.size(); ++i)
            if (bit_at(i) == 1)
                return false;
        return true;
    }

private:
    unsigned int byte_at(std::size_t index) const { return index < bytes.size() ? bytes[index] : 0; }
    unsigned int bit_at(std::size_t index) const { return byte_at(index / 8) >> (7 - index % 8) & 1U; }

    void refill()
    {
        while (bits() >= 8)
            ++loaded;
    }

    std::uint32_t take(unsigned int n)
    {
        std::uint32_t value = 0;
        for (; n > 0; --n)
            value = value * 2 + bit_at(position++);
        return value;
    }
};

} // namespace literal
