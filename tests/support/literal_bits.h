// A bit reader that knows one thing, the bit at an index, and counts; and its reads by the rules of the legacy
// interface. The tests and the fuzz entry points hold the real bit readers against it; it shares no code with them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
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

    std::uint32_t peek(unsigned int n) const
    {
        std::uint32_t value = 0;
        for (std::size_t i = position; i < position + n; ++i)
            value = value * 2 + bit_at(i);
        return value;
    }

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

/// The reads of the legacy interface: over four bytes at hand, which are loaded one by one.
struct legacy_bit_reader : bit_reader {
    std::size_t loaded = 4; ///< bytes loaded, the latest four of which are at hand

    explicit legacy_bit_reader(std::vector<unsigned char> content = {}, std::size_t consumed = 0)
        : bit_reader{std::move(content), consumed}
    {
    }

    /// How many of the bits at hand are consumed; above 32 when bits that are not at hand are, too.
    std::size_t bits() const { return position - 8 * (loaded - 4); }

    std::uint32_t word() const
    {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 32; ++i)
            value = value * 2 + bit_at(8 * (loaded - 4) + i);
        return value;
    }

    /// Where the next byte comes from, when the bytes have an end that is known.
    std::size_t next_byte() const { return std::min(loaded, bytes.size()); }

    /// Nothing for a width of 0, all ones and nothing consumed for one above 24.
    std::uint32_t u(unsigned int n)
    {
        if (n > 24)
            return 0xFFFFFFFF;
        while (n > 0 && bits() >= 8)
            ++loaded;
        return get(n);
    }

    /// A prefix ends at its first one bit, or as its 24th zero is read.
    std::uint32_t ue()
    {
        std::uint32_t power = 1;
        unsigned int zeros = 0;
        for (; zeros < 24 && u(1) == 0; ++zeros)
            power *= 2;
        return power - 1 + u(zeros);
    }

    std::int32_t se()
    {
        const std::int64_t k = ue();
        return static_cast<std::int32_t>(k % 2 != 0 ? (k + 1) / 2 : -(k / 2));
    }

    /// Whether every byte is loaded and no one bit is left.
    bool at_end() const
    {
        std::size_t last_one = 8 * bytes.size();
        while (last_one > position && bit_at(last_one - 1) == 0)
            --last_one;
        return loaded >= bytes.size() && last_one <= position;
    }
};

} // namespace literal
