/// @file
/// The bit writer: u(n), ue(v), se(v) and the trailing bits (H.264 clauses 7.2, 9.1 and 7.3.2.11) into a caller's room.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// Writes bits, most significant first, into [`out`, `out` + `room`). It never writes past the room, but counts on, so
/// that one without any room tells how much is needed.
class bit_writer {
public:
    /// One without room.
    bit_writer() noexcept = default;
    /// One that writes to `out`.
    bit_writer(unsigned char* out, std::size_t room) noexcept : begin(out), size(room) {}

    /// u(n) or f(n).
    /// @param n 0 to 32
    /// @param value its low n bits are written
    void u(unsigned n, std::uint32_t value) noexcept
    {
        for (; n >= 8 && count % 8 == 0; n -= 8)
            put_byte(static_cast<unsigned char>(value >> (n - 8)));
        for (; n > 0; --n)
            put_bit(value >> (n - 1) & 1);
    }
    /// ue(v), clause 9.1.
    /// @param value 0 to 2^32 - 2; 2^32 - 1 has no code and is written as 0
    void ue(std::uint32_t value) noexcept
    {
        const std::uint32_t code = value == 0xFFFFFFFF ? 1 : value + 1;
        unsigned bits = 0;
        while (code >> bits > 1)
            ++bits;
        u(bits, 0);
        u(bits + 1, code);
    }
    /// se(v), clause 9.1.1.
    /// @param value -(2^31 - 1) to 2^31 - 1; -2^31 has no code and is written as 0
    void se(std::int32_t value) noexcept
    {
        const auto magnitude = static_cast<std::uint32_t>(value < 0 ? -std::int64_t{value} : std::int64_t{value});
        ue(value > 0 ? 2 * magnitude - 1 : 2 * magnitude);
    }
    /// rbsp_trailing_bits(): a one bit, and zero bits to the end of the byte.
    void trailing_bits() noexcept
    {
        put_bit(1);
        while (count % 8 != 0)
            put_bit(0);
    }

    /// How many bits were written, those beyond the room included.
    std::uint64_t bits() const noexcept { return count; }
    /// How many bytes they take; the last one may be begun, its other bits zero.
    std::uint64_t bytes() const noexcept { return (count + 7) / 8; }
    /// All of them are in the room.
    bool fits() const noexcept { return bytes() <= size; }

private:
    void put_byte(unsigned char byte) noexcept
    {
        if (count / 8 < size)
            begin[count / 8] = byte;
        count += 8;
    }
    void put_bit(unsigned bit) noexcept
    {
        if (count / 8 < size) {
            unsigned char& byte = begin[count / 8];
            const auto mask = static_cast<unsigned char>(0x80U >> count % 8);
            if (count % 8 == 0)
                byte = 0;
            if (bit != 0)
                byte = static_cast<unsigned char>(byte | mask);
        }
        ++count;
    }

    unsigned char* begin = nullptr;
    std::size_t size = 0;
    std::uint64_t count = 0;
};

} // namespace orv_utils_v4::h264
