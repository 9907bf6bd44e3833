/// @file
/// The bit reader of the newer interface, over the RBSP of one NAL unit (H.264 clauses 7.2 and 9.1): fixed-width
/// reads, Exp-Golomb codes and the RBSP trailer. Emulation-prevention bytes are expected to be gone already.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/advance_past.h>

#include <cstddef>
#include <stdexcept>

namespace brenik {

namespace bit_io {

/// Bits that are loaded and not yet consumed. `BitOrder` 0, the only one, means most significant bit first: the next
/// bit of the stream is the highest bit of `bits`, and every bit below the valid ones is zero.
template <typename Word, int BitOrder>
class reservoir {
    static_assert(BitOrder == 0, "only most significant bit first");

public:
    /// The bits, first bit highest.
    Word bits = 0;
    /// How many low-order positions of `bits` hold no stream bits; all of them in a new reservoir.
    unsigned char empty_count = 8 * sizeof(Word);
};

/// A range of bytes in memory, read forward. It never owns the bytes and never reads at or past `fence`.
template <typename Byte, typename Pointer>
class data_source_memory_alt1 {
public:
    /// The first byte of the range.
    Pointer start = {};
    /// The next byte to load. It goes on past `fence` when zeros are supplied there.
    Pointer cursor = {};
    /// One past the last byte that may be loaded.
    Pointer fence = {};

    /// The byte at `cursor`, or 0 at and past `fence`; moves `cursor` by one either way.
    Byte next_or_zero() noexcept
    {
        if (cursor < fence)
            return *cursor++;
        cursor = advance_past(cursor, 1);
        return 0;
    }

    /// Whether the four bytes at `cursor` are there.
    bool has_four() const noexcept { return range_size(cursor, fence) >= 4; }

    /// The four bytes at `cursor`, which are there, first byte highest; `cursor` stays.
    unsigned int peek_four() const noexcept
    {
        return static_cast<unsigned int>(cursor[0]) << 24 | static_cast<unsigned int>(cursor[1]) << 16 |
               static_cast<unsigned int>(cursor[2]) << 8 | static_cast<unsigned int>(cursor[3]);
    }
};

/// Reads bits out of a byte source through a reservoir. Past the end of the source the stream reads as an endless run
/// of zero bits; nothing but the cursor of the source tells.
template <typename Reservoir, typename Source>
class reader {
public:
    /// Bits loaded from `source` and not yet consumed.
    Reservoir reservoir;
    /// Where further bits come from.
    Source source;

    /// A reader at the first bit of `from`.
    explicit reader(const Source& from) noexcept : reservoir(), source(from) {}

    /// Loads whole bytes until at least 25 bits are valid. Consumes nothing.
    void refill() noexcept
    {
        if (reservoir.empty_count >= 8 && source.has_four()) {
            const unsigned int loaded_bits = reservoir.empty_count & ~7U; // 8 to 32
            reservoir.empty_count = static_cast<unsigned char>(reservoir.empty_count & 7U);
            reservoir.bits |= source.peek_four() >> (32 - loaded_bits) << reservoir.empty_count;
            source.cursor += loaded_bits / 8;
        }
        while (reservoir.empty_count >= 8) {
            const unsigned int byte = source.next_or_zero();
            reservoir.empty_count = static_cast<unsigned char>(reservoir.empty_count - 8);
            reservoir.bits |= byte << reservoir.empty_count;
        }
    }

    /// The next `n` bits as an unsigned number, first bit most significant: u(n) and f(n) of H.264 clause 7.2.
    /// @tparam T the type of the result, `unsigned int`
    /// @param n 1 to 25, not checked; get_wide() takes any width
    template <typename T>
    T get(unsigned char n) noexcept
    {
        refill();
        const T value = static_cast<T>(reservoir.bits >> (32 - n));
        skip_loaded(n);
        return value;
    }

    /// The next `n` bits for a width that comes out of a stream: 0 gives 0 and reads nothing; above 25 bits the field
    /// is read in pieces of 25, first piece most significant; above 32 every bit is consumed and the low 32 are kept.
    /// @param n 0 to 255
    unsigned int get_wide(unsigned char n) noexcept
    {
        constexpr unsigned char widest_get = 25;
        unsigned int value = 0;
        for (; n > widest_get; n = static_cast<unsigned char>(n - widest_get))
            value = (value << widest_get) | get<unsigned int>(widest_get);
        return n == 0 ? value : (value << n) | get<unsigned int>(n);
    }

    /// The next 24 bits, not consumed. Bits past the end read as zero.
    unsigned int peek24() noexcept
    {
        refill();
        return reservoir.bits >> 8;
    }

    /// How many bits the next byte boundary is away, 0 to 7.
    unsigned char bits_to_byte_boundary() const noexcept
    {
        return static_cast<unsigned char>((32U - reservoir.empty_count) % 8);
    }

    /// Discards the bits up to the next byte boundary; nothing when the reader already stands on one.
    void byte_align() noexcept
    {
        refill();
        skip_loaded(bits_to_byte_boundary());
    }

    /// How many bits have been consumed since the start, those past the end included.
    std::size_t bits_consumed() const noexcept
    {
        const std::size_t bytes_loaded = range_size(source.start, source.cursor);
        return 8 * bytes_loaded - (32U - reservoir.empty_count);
    }

private:
    void skip_loaded(unsigned char n) noexcept
    {
        reservoir.bits <<= n;
        reservoir.empty_count = static_cast<unsigned char>(reservoir.empty_count + n);
    }
};

extern template class ORV_UTILS_V4_EXPORT
    reader<reservoir<unsigned int, 0>, data_source_memory_alt1<unsigned char, const unsigned char*>>;
extern template ORV_UTILS_V4_EXPORT unsigned int
reader<reservoir<unsigned int, 0>, data_source_memory_alt1<unsigned char, const unsigned char*>>::get<unsigned int>(
    unsigned char) noexcept;

} // namespace bit_io

/// Thrown by h2645_common_bitreader::ue() and se() for a code of 32 or more leading zero bits, which stands for no
/// 32-bit number (H.264 clause 9.1). No parse catches it: the object keeps what was stored so far, and its `valid`.
class ORV_UTILS_V4_EXPORT h2645_common_malformed_code : public std::runtime_error {
public:
    /// @param bit_position where the code begins, in bits from the start of the reader's data
    explicit h2645_common_malformed_code(std::size_t bit_position);
    /// A copy, as exceptions are copied.
    h2645_common_malformed_code(const h2645_common_malformed_code&) noexcept = default;
    /// A copy, as exceptions are copied.
    h2645_common_malformed_code& operator=(const h2645_common_malformed_code&) noexcept = default;
    ~h2645_common_malformed_code() override;

    /// Where the code begins, in bits from the start of the reader's data.
    std::size_t bit_position() const noexcept;

private:
    std::size_t position;
};

/// The bit reader that every `parse` of the newer interface reads from. The bytes must outlive it. Copying it is
/// cheap and gives a second, independent reader at the same bit.
///
/// A parse leaves it behind the last element that it read, whether it succeeds or fails: that is behind the trailing
/// bits of a parameter set or delimiter, before the first element of a slice header that is not read, and within the
/// payload of an SEI message, whose end the SEI reader knows. After h2645_common_malformed_code it stands behind the 32
/// zero bits. Nothing holds it back at the end: bits_consumed() then tells more bits than there are.
class ORV_UTILS_V4_EXPORT h2645_common_bitreader
    : public bit_io::reader<bit_io::reservoir<unsigned int, 0>,
                            bit_io::data_source_memory_alt1<unsigned char, const unsigned char*>> {
public:
    /// A reader at the first bit of [`data`, `fence`). Two null pointers are an empty range.
    h2645_common_bitreader(const unsigned char* data, const unsigned char* fence) noexcept;

    /// One ue(v) element, H.264 clause 9.1: 0 to 2^32 - 2. A suffix that reaches past the end reads as zero bits.
    /// @throws h2645_common_malformed_code after 32 zero bits, past the end too; the reader then stands behind them
    unsigned int ue();

    /// One se(v) element, H.264 clause 9.1.1: code number k stands for (-1)^(k+1) * Ceil(k / 2).
    /// @throws h2645_common_malformed_code as ue() does
    int se();
};

/// more_rbsp_data() of H.264 clause 7.2: true when a one bit follows that is not the last one bit of the data, the
/// stop bit; false when no one bit remains. Consumes nothing.
ORV_UTILS_V4_EXPORT bool h2645_common_more_rbsp_data(h2645_common_bitreader& br);

/// Consumes rbsp_trailing_bits() of H.264 clause 7.3.2.11, the stop bit and the rest of its byte, and tells whether
/// the stop bit was 1 and the rest zero. What follows in further bytes is not looked at. False past the end.
ORV_UTILS_V4_EXPORT bool h2645_common_skip_rbsp_trailing_bits(h2645_common_bitreader& br);

} // namespace brenik
