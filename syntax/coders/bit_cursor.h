// A place in the bits of a unit: what the coder that reads takes them from. It knows its place as a number and keeps
// nothing else, so that an end may be put anywhere and a place gone back to. Bits past the end read as zero.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

class bit_cursor {
public:
    /// At the first bit of [data, data + size).
    bit_cursor(const unsigned char* data, std::size_t size) noexcept
        : start(data),
          bytes(size),
          last_at(size < sizeof(std::uint64_t) ? 0 : size - sizeof(std::uint64_t)),
          last_bytes(load_last(data, size))
    {
    }

    std::uint64_t position() const noexcept { return place; }
    void seek(std::uint64_t bit) noexcept { place = bit; }

    /// The next 57 bits, the first one highest, and seven or fewer more. Consumes nothing.
    [[gnu::always_inline]] std::uint64_t peek() const noexcept
    {
        const std::uint64_t at = place / 8;
        return (at + sizeof(std::uint64_t) <= bytes ? load(start + at) : load_at_end(at)) << place % 8;
    }

    /// u(n).
    /// @param n 1 to 57
    [[gnu::always_inline]] std::uint64_t take(unsigned n) noexcept
    {
        const std::uint64_t value = peek() >> (64 - n);
        place += n;
        return value;
    }

    /// The code number of ue(v), clause 9.1.
    /// @return false, behind 32 zero bits, for a code that stands for no 32-bit number
    [[gnu::always_inline]] bool take_code(std::uint32_t& code) noexcept
    {
        constexpr std::uint64_t one_of_25 = std::uint64_t{1} << 39; // a one among the first 25: 49 bits at most
        const std::uint64_t next = peek();
        if (next >> 63 != 0) { // the code of 0, which is by far the most frequent: its length need not be waited for
            code = 0;
            place += 1;
            return true;
        }
        if (next < one_of_25)
            return take_long_code(code);
        const auto zeros = static_cast<unsigned>(__builtin_clzll(next));
        code = static_cast<std::uint32_t>((next >> (63 - 2 * zeros)) - 1);
        place += 2 * zeros + 1;
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
    std::uint64_t load_at_end(std::uint64_t at) const noexcept
    {
        return at < bytes ? last_bytes << 8 * (at - last_at) : 0;
    }
    /// The last eight bytes, or all of them with zeros behind.
    static std::uint64_t load_last(const unsigned char* data, std::uint64_t size) noexcept
    {
        if (size >= sizeof(std::uint64_t))
            return load(data + size - sizeof(std::uint64_t));
        std::uint64_t value = 0;
        for (std::uint64_t i = 0; i < sizeof value; ++i)
            value = value << 8 | (i < size ? data[i] : 0U);
        return value;
    }
    [[gnu::noinline]] bool take_long_code(std::uint32_t& code) noexcept
    {
        constexpr unsigned malformed = 32;
        unsigned zeros = 0;
        while (zeros < malformed && take(1) == 0)
            ++zeros;
        if (zeros == malformed)
            return false;
        code = static_cast<std::uint32_t>((std::uint64_t{1} << zeros) - 1 + (zeros == 0 ? 0 : take(zeros)));
        return true;
    }

    const unsigned char* start;
    std::uint64_t bytes;
    std::uint64_t last_at;    // where these begin:
    std::uint64_t last_bytes; // eight at most, first one highest
    std::uint64_t place = 0;
};

} // namespace orv_utils_v4::h264
