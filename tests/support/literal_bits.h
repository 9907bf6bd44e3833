// A bit reader that knows one thing, the bit at an index, and counts. The tests and the fuzz entry points hold the
// real bit reader against it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace literal {

/// Bits of `bytes`, first bit most significant, followed by zero bits without end.
struct bit_reader {
    std::vector<unsigned char> bytes;
    std::size_t position = 0;

    unsigned int bit_at(std::size_t index) const
    {
        return index / 8 < bytes.size() ? bytes[index / 8] >> (7 - index % 8) & 1U : 0;
    }

    /// The low 32 bits of the next `n`, any number of them.
    std::uint32_t get(unsigned int n)
    {
        std::uint32_t value = 0;
        for (; n > 0; --n)
            value = value * 2 + bit_at(position++);
        return value;
    }

    std::uint32_t peek(unsigned int n) const { return bit_reader(*this).get(n); }

    void byte_align()
    {
        while (position % 8 != 0)
            ++position;
    }

    /// Nothing after 32 zero bits.
    std::optional<std::uint32_t> ue()
    {
        unsigned int leading_zeros = 0;
        while (leading_zeros < 32 && get(1) == 0)
            ++leading_zeros;
        if (leading_zeros == 32)
            return {};
        std::uint32_t power = 1;
        for (unsigned int i = 0; i < leading_zeros; ++i)
            power *= 2;
        return power - 1 + get(leading_zeros);
    }

    std::optional<std::int32_t> se()
    {
        const std::optional<std::uint32_t> k = ue();
        if (!k)
            return {};
        const std::int64_t magnitude = (std::int64_t{*k} + 1) / 2;
        return static_cast<std::int32_t>(*k % 2 != 0 ? magnitude : -magnitude);
    }

    bool more_rbsp_data() const
    {
        std::size_t last_one = 8 * bytes.size();
        while (last_one > 0 && bit_at(last_one - 1) == 0)
            --last_one;
        return last_one != 0 && position < last_one - 1;
    }

    bool skip_rbsp_trailing_bits()
    {
        bool well_formed = get(1) == 1;
        while (position % 8 != 0)
            if (get(1) == 1)
                well_formed = false;
        return well_formed;
    }
};

} // namespace literal
