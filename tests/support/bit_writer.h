// Writes RBSPs bit by bit, so that a test names syntax elements and not bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace support {

/// Appends bits, most significant first.
class bit_writer {
public:
    /// `value` in `n` bits, any number of them: u(n).
    bit_writer& u(unsigned int n, std::uint64_t value)
    {
        while (n-- > 0)
            flag(n < 64 && (value >> n & 1) != 0);
        return *this;
    }

    /// One bit.
    bit_writer& flag(bool bit)
    {
        if (used % 8 == 0)
            written.push_back(0);
        if (bit)
            written.back() = static_cast<unsigned char>(written.back() | 0x80U >> used % 8);
        ++used;
        return *this;
    }

    /// ue(v) of H.264 clause 9.1, 0 to 2^32 - 2.
    bit_writer& ue(std::uint32_t value)
    {
        const std::uint64_t code = std::uint64_t{value} + 1;
        unsigned int suffix = 0;
        while (code >> (suffix + 1) != 0)
            ++suffix;
        return u(suffix, 0).u(suffix + 1, code);
    }

    /// se(v) of H.264 clause 9.1.1.
    bit_writer& se(std::int32_t value)
    {
        const std::int64_t wide = value;
        return ue(static_cast<std::uint32_t>(wide > 0 ? 2 * wide - 1 : -2 * wide));
    }

    /// rbsp_trailing_bits() of H.264 clause 7.3.2.11.
    bit_writer& trailing_bits()
    {
        flag(true);
        while (used % 8 != 0)
            flag(false);
        return *this;
    }

    std::size_t bits() const { return used; }

    /// What was written; the last byte is filled up with zero bits.
    const std::vector<unsigned char>& bytes() const { return written; }

private:
    std::vector<unsigned char> written;
    std::size_t used = 0;
};

} // namespace support
