/// @file
/// The bit reader of the legacy interface: big-endian, four bytes loaded ahead, all inline. It knows no end of its own;
/// where the caller knows one, the functions with `_until` take it and read zero bits from there on.
#pragma once

#include <orv-utils-v4/misc/assertion.h>

#include <cstdint>

/// Bits of a byte range, read forward. A plain value; it does not own the bytes.
struct be_bitfield {
    const unsigned char* ptr = nullptr; ///< the next byte to load
    std::uint32_t word = 0;             ///< the last four bytes loaded, the most recent in the low 8 bits
    std::uint8_t bits = 0;              ///< how many bits at the top of `word` are consumed, 32 when all are
    std::uint8_t open = 0;              ///< 1 once opened; no function here looks at it
};

/// Loads one byte into an empty low end of `word`. At and past `fence` the byte is 0 and `ptr` stays; a null fence
/// means that there is none.
inline void be_bitfield_load_byte(be_bitfield* b, const unsigned char* fence)
{
    const bool there = fence == nullptr || b->ptr < fence;
    b->word = b->word << 8 | (there ? *b->ptr : 0U);
    if (there)
        ++b->ptr;
}

/// Loads bytes until at least 25 bits are not consumed. Consumes nothing.
inline void be_bitfield_refill(be_bitfield* b, const unsigned char* fence)
{
    if (b->bits < 8)
        return;
    if (fence != nullptr && b->ptr < fence && fence - b->ptr >= 4) {
        const unsigned int loaded_bits = b->bits & ~7U; // 8 to 32
        const std::uint64_t next_four =
            std::uint64_t{b->ptr[0]} << 24 | std::uint64_t{b->ptr[1]} << 16 | std::uint64_t{b->ptr[2]} << 8 | b->ptr[3];
        b->word = static_cast<std::uint32_t>((std::uint64_t{b->word} << 32 | next_four) >> (32 - loaded_bits));
        b->ptr += loaded_bits / 8;
        b->bits = static_cast<std::uint8_t>(b->bits & 7U);
        return;
    }
    for (; b->bits >= 8; b->bits = static_cast<std::uint8_t>(b->bits - 8))
        be_bitfield_load_byte(b, fence);
}

/// Opens the reader at the first bit of [`data`, `fence`), which may be shorter than the four bytes loaded at once; a
/// null fence means that there is none.
inline void be_bitfield_open_until(be_bitfield* b, const unsigned char* data, const unsigned char* fence)
{
    b->ptr = data;
    b->word = 0;
    b->bits = 32;
    b->open = 1;
    be_bitfield_refill(b, fence);
}

/// Opens the reader at the first bit of `data` and loads four bytes, which must be readable.
inline void be_bitfield_open(be_bitfield* b, const unsigned char* data)
{
    be_bitfield_open_until(b, data, nullptr);
}

/// The next `n` bits, first bit most significant: u(n) of H.264 clause 7.2. Bits at and past `fence` read as zero; a
/// null fence means that there is none.
/// @param b the reader
/// @param n 1 to 24; 0 gives 0 and above 24 gives 0xFFFFFFFF, and neither loads or consumes anything
/// @param fence the end of the data, or null
inline std::uint32_t be_bitfield_read_until(be_bitfield* b, unsigned char n, const unsigned char* fence)
{
    constexpr unsigned char widest_read = 24;
    if (n == 0)
        return 0;
    if (n > widest_read)
        return 0xFFFFFFFF;
    be_bitfield_refill(b, fence);
    b->bits = static_cast<std::uint8_t>(b->bits + n);
    orv_utils_v4::check(b->bits <= 32, "misc/be_bitfields", 168, "b->bits <= 32");
    return b->word >> (32 - b->bits) & ((std::uint32_t{1} << n) - 1);
}

/// The next `n` bits of an open-ended reader, see be_bitfield_read_until(). Up to four bytes behind the last bit read
/// must be readable.
inline std::uint32_t be_bitfield_read(be_bitfield* b, unsigned char n)
{
    return be_bitfield_read_until(b, n, nullptr);
}
