// Reads of syntax elements for the legacy interface, one token an element, open-ended or up to a fence: the syntax is
// written once over this.
#pragma once

#include <orv-utils-v4/misc/be_bitfields.h>

#include <bit>
#include <cstdint>

namespace orv_utils_v4::legacy {

struct legacy_bits {
    be_bitfield& bf;
    const unsigned char* fence; ///< bits from here on read as zero; null when there is no known end

    /// u(n), with the answers of be_bitfield_read() for widths of 0 and above 24.
    std::uint32_t u(unsigned char n) const { return be_bitfield_read_until(&bf, n, fence); }

    std::uint8_t u8(unsigned char n) const { return static_cast<std::uint8_t>(u(n)); }

    std::uint32_t u32() const
    {
        const std::uint32_t high = u(16);
        return high << 16 | u(16);
    }

    unsigned int ue() const;
    int se() const;

    /// ue() of a reader that nobody sees: it may stand at the same bit with fewer bytes loaded.
    unsigned int ue_unseen() const
    {
        constexpr int most_zeros_loaded = 12; // a code with these is 25 bits long, as many as are loaded for sure
        be_bitfield_refill(&bf, fence);
        const std::uint32_t ahead = bf.word << bf.bits;
        const int zeros = std::countl_zero(ahead);
        if (zeros > most_zeros_loaded)
            return ue();
        const auto length = static_cast<unsigned char>(2 * zeros + 1);
        bf.bits = static_cast<std::uint8_t>(bf.bits + length);
        return (ahead >> (32 - length)) - 1;
    }

    /// No one bit remains: nothing but zeros can be read.
    bool at_end() const { return fence != nullptr && bf.ptr >= fence && (bf.bits >= 32 || bf.word << bf.bits == 0); }
};

} // namespace orv_utils_v4::legacy
