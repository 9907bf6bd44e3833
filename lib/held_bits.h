// A parse's way to read short elements: straight out of memory, as long as eight bytes lie ahead.
#pragma once

#include <orv-utils-v4/h2645_common/bitreader.h>

#include <bit>
#include <cstdint>
#include <cstring>

namespace brenik {

/// Reads elements as its owner does, which learns of it by put_back() alone, and then is as if it had read them itself,
/// to the bytes that it has loaded. What is rare goes through the owner, and so does all that is left after that.
class held_bits {
public:
    explicit held_bits(h2645_common_bitreader& from) noexcept : owner(from), start(from.source.cursor)
    {
        const std::size_t there = range_size(start, from.source.fence);
        if (from.reservoir.empty_count == reservoir_bits && there >= bytes_ahead)
            quick_fence = 8 * (there - bytes_ahead) + 1;
    }

    /// Makes the owner go on where this stands. Nothing is read here afterwards without the owner.
    void put_back() noexcept
    {
        if (quick_fence != 0 && at != 0)
            put(owner, start, at, at_last);
        quick_fence = 0;
    }

    /// u(n), 1 to 25 bits.
    template <typename T>
    T get(unsigned char n) noexcept
    {
        if (at >= quick_fence) {
            put_back();
            return owner.get<T>(n);
        }
        return static_cast<T>(take(n));
    }

    /// h2645_common_bitreader::get_wide()
    unsigned int get_wide(unsigned char n) noexcept
    {
        if (n == 0)
            return 0;
        if (n <= least_loaded)
            return get<unsigned int>(n);
        put_back();
        return owner.get_wide(n);
    }

    /// The next bit, not consumed.
    bool peek_flag() noexcept
    {
        if (at < quick_fence)
            return ahead() >> 63 != 0;
        put_back();
        return owner.peek24() >> 23 != 0;
    }

    /// ue(v), H.264 9.1. What throws leaves the owner where it threw.
    unsigned int ue()
    {
        constexpr int most_zeros_loaded = 12; // a code with these is 25 bits long, as many as the owner has loaded
        const int zeros = at < quick_fence ? std::countl_zero(ahead()) : most_zeros_loaded + 1;
        if (zeros > most_zeros_loaded) {
            put_back();
            return owner.ue();
        }
        return static_cast<unsigned int>(take(2 * static_cast<unsigned int>(zeros) + 1)) - 1;
    }

    /// se(v), H.264 9.1.1.
    int se()
    {
        const unsigned int k = ue();
        const int magnitude = static_cast<int>(k / 2 + k % 2);
        return k % 2 == 1 ? magnitude : -magnitude;
    }

private:
    static constexpr unsigned char reservoir_bits = 32;
    static constexpr unsigned char least_loaded = 25; // before each read
    static constexpr std::size_t bytes_ahead = 8;

    /// The eight bytes there, first bit highest.
    static std::uint64_t eight_at(const unsigned char* p) noexcept
    {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, p, sizeof bytes);
        return std::endian::native == std::endian::little ? __builtin_bswap64(bytes) : bytes;
    }

    /// Leaves the reader at a bit, as a read of the element from `last` on does. By value: what is held stays in
    /// registers.
    [[gnu::noinline]] static void put(h2645_common_bitreader& to, const unsigned char* first, std::size_t bit,
                                      std::size_t last) noexcept
    {
        const std::size_t bytes_loaded = (last + least_loaded + 7) / 8;
        const auto left = static_cast<unsigned int>(8 * bytes_loaded - bit);
        const std::uint64_t behind_last = eight_at(first + last / 8) << (bit - last / 8 * 8);
        to.source.cursor = first + bytes_loaded;
        to.reservoir.empty_count = static_cast<unsigned char>(reservoir_bits - left);
        to.reservoir.bits = left == 0 ? 0 : static_cast<unsigned int>(behind_last >> (64 - left) << (32 - left));
    }

    /// The bits from here on, 57 at least.
    std::uint64_t ahead() const noexcept { return eight_at(start + at / 8) << at % 8; }

    std::uint64_t take(unsigned int n) noexcept
    {
        const std::uint64_t value = ahead() >> (64 - n);
        at_last = at;
        at += n;
        return value;
    }

    h2645_common_bitreader& owner;
    const unsigned char* start;
    std::size_t at = 0;          // bits behind `start`
    std::size_t at_last = 0;     // where the last element began
    std::size_t quick_fence = 0; // from here on the owner reads; 0 once it does
};

} // namespace brenik
