// A place in the bits of a unit: what the coder that reads takes them from. It knows its place as a number and keeps
// nothing else, so that an end may be put anywhere and a place gone back to. Bits past the end read as zero.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

class bit_cursor {
public:
    /// At the first bit of [data, data + size).
    bit_cursor(const unsigned char* data, std::size_t size) noexcept
        : start(size < sizeof short_unit ? short_unit : data),
          last_at(size < sizeof short_unit ? 0 : size - sizeof short_unit),
          end(8 * std::uint64_t{size})
    {
        if (size < sizeof short_unit)
            std::copy(data, data + size, short_unit);
    }
    bit_cursor(const bit_cursor&) = delete;
    bit_cursor& operator=(const bit_cursor&) = delete;

    std::uint64_t position() const noexcept { return place; }
    void seek(std::uint64_t bit) noexcept { place = bit; }

    /// The next 57 bits, the first one highest, and seven or fewer more. Consumes nothing.
    [[gnu::always_inline]] std::uint64_t peek() const noexcept { return place < end ? peek_inside() : 0; }
    /// The same where there is a bit left; else anything. Near the end the last eight bytes are loaded. It takes a
    /// branch: the lower one of two addresses is known two cycles later, in each of the elements.
    [[gnu::always_inline]] std::uint64_t peek_inside() const noexcept
    {
        const std::uint64_t at = place / 8;
        if (at > last_at)
            return load(start + last_at) << (place - 8 * last_at) % 64;
        return load(start + at) << place % 8;
    }

    /// u(n).
    /// @param n 1 to 57
    [[gnu::always_inline]] std::uint64_t take(unsigned n) noexcept
    {
        const std::uint64_t value = peek() >> (64 - n);
        place += n;
        return value;
    }

    /// A code of ue(v), clause 9.1, and its bits: none where it is longer than the 57 that are at hand.
    struct code {
        std::uint32_t number;
        unsigned bits;
    };
    /// The code in these bits, the first one highest.
    [[gnu::always_inline]] static code code_in(std::uint64_t next) noexcept
    {
        constexpr std::uint64_t one_of_25 = std::uint64_t{1} << 39; // a one among the first 25: 49 bits at most
        if (next >> 63 != 0) // the code of 0, which is by far the most frequent: its length need not be waited for
            return {0, 1};
        if (next < one_of_25)
            return {0, 0};
        const auto zeros = static_cast<unsigned>(__builtin_clzll(next));
        return {static_cast<std::uint32_t>((next >> (63 - 2 * zeros)) - 1), 2 * zeros + 1};
    }
    /// The code number of ue(v).
    /// @return false, behind 32 zero bits, for a code that stands for no 32-bit number
    [[gnu::always_inline]] bool take_code(std::uint32_t& number) noexcept
    {
        const code next = code_in(peek());
        if (next.bits == 0)
            return take_long_code(number);
        number = next.number;
        place += next.bits;
        return true;
    }

private:
    static std::uint64_t load(const unsigned char* p) noexcept
    {
        std::uint64_t value = 0;
        __builtin_memcpy(&value, p, sizeof value);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
        value = __builtin_bswap64(value);
#endif
        return value;
    }
    [[gnu::noinline]] bool take_long_code(std::uint32_t& number) noexcept
    {
        constexpr unsigned malformed = 32;
        unsigned zeros = 0;
        while (zeros < malformed && take(1) == 0)
            ++zeros;
        if (zeros == malformed)
            return false;
        number = static_cast<std::uint32_t>((std::uint64_t{1} << zeros) - 1 + (zeros == 0 ? 0 : take(zeros)));
        return true;
    }

    const unsigned char* start;                           // of the bytes, or of
    unsigned char short_unit[sizeof(std::uint64_t)] = {}; // a copy of less than eight, zeros behind
    std::uint64_t last_at;                                // where the last eight begin
    std::uint64_t end;                                    // in bits
    std::uint64_t place = 0;
};

} // namespace orv_utils_v4::h264
