/// @file
/// The unit splitter: NAL units out of a stream that comes in pieces of any size, in Annex B or length-prefixed framing
/// (H.264 clause B.1, ISO/IEC 14496-15 clause 5). Any cut of a stream gives the same units.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// How units follow one another. The number of a length-prefixed one is the size of the prefix.
enum class framing : std::uint8_t { annex_b = 0, length_1 = 1, length_2 = 2, length_3 = 3, length_4 = 4 };

/// A whole NAL unit; its bytes are valid during the call.
struct split_unit {
    const unsigned char* bytes = nullptr; ///< the header byte first, emulation-prevention bytes in
    std::size_t size = 0;                 ///< 1 at least
    std::uint64_t offset = 0;             ///< of the header byte in the stream
    unsigned framing_size = 0;            ///< of the start code, with its zero_byte, or of the length prefix
    std::uint64_t stated_length = 0;      ///< the length prefix; 0 in Annex B
    bool cut = false;                     ///< length-prefixed: the stream ends before the unit does
};

/// Why bytes belong to no unit.
enum class split_gap_reason : std::uint8_t {
    before_first_unit, ///< Annex B: bytes before the first start code
    between_units,     ///< Annex B: bytes behind 00 00 00 that are no start code
    no_header,         ///< a start code or a length prefix of 0 without a unit
    too_large,         ///< a unit above the limit; it counts as a unit all the same
    cut_prefix,        ///< the stream ends inside a length prefix
    no_memory,         ///< a unit that there is no memory to keep; it counts as a unit all the same
};

/// Bytes that belong to no unit. Zero bytes around start codes are not told.
struct split_gap {
    split_gap_reason reason = split_gap_reason::before_first_unit;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    std::uint64_t stated_length = 0; ///< too_large and no_memory: the length prefix; 0 in Annex B
    unsigned char header = 0;        ///< too_large and no_memory: the header byte of the unit

    /// The bytes are a unit, which was not handed on.
    bool is_unit() const noexcept
    {
        return reason == split_gap_reason::too_large || reason == split_gap_reason::no_memory;
    }
};

/// Who takes the units. What it throws goes through the splitter, which may be pushed no further then.
class split_sink {
public:
    virtual ~split_sink() = default;
    /// The next unit.
    virtual void unit(const split_unit& unit) = 0;
    /// Bytes between units.
    virtual void gap(const split_gap& gap) = 0;

protected:
    /// For derived classes.
    split_sink() = default;
    /// For derived classes.
    split_sink(const split_sink&) = default;
    /// For derived classes.
    split_sink& operator=(const split_sink&) = default;
};

/// Splits one stream. Units that lie whole in a piece are handed on where they are; the others are put together in a
/// buffer that grows to the largest of them.
class ORV_UTILS_V4_EXPORT unit_splitter {
public:
    /// The most bytes of a unit, unless the caller says otherwise.
    static constexpr std::size_t usual_most_bytes = std::size_t{64} << 20;

    /// For a stream of this framing; a unit of more than `most_bytes` becomes a gap.
    explicit unit_splitter(framing how, std::size_t most_bytes = usual_most_bytes) : frames(how), most(most_bytes) {}

    /// The next bytes of the stream; every unit that ends in them goes to `to`. They are not written to.
    void push(const unsigned char* piece, std::size_t size, split_sink& to);
    /// The stream has ended: the last unit goes to `to`, without the zero bytes behind it.
    void flush(split_sink& to);

private:
    const unsigned char* take_unit(const unsigned char* at, const unsigned char* fence, split_sink& to);
    const unsigned char* take_between(const unsigned char* at, const unsigned char* fence, split_sink& to);
    const unsigned char* take_prefix(const unsigned char* at, const unsigned char* fence, split_sink& to);
    const unsigned char* take_prefixed(const unsigned char* at, const unsigned char* fence, split_sink& to);
    void hold(const unsigned char* at, const unsigned char* fence);
    void end_unit(const unsigned char* at, const unsigned char* end, split_sink& to);
    void hand_on(const unsigned char* bytes, std::size_t size, bool cut, split_sink& to);
    void close_gap(std::uint64_t end, split_sink& to);
    std::uint64_t offset_of(const unsigned char* at) const
    {
        return pushed - static_cast<std::uint64_t>(piece_end - at);
    }

    framing frames;
    std::size_t most;
    const unsigned char* piece_end = nullptr; // of the latest piece
    std::uint64_t pushed = 0;                 // bytes, the latest piece included
    std::vector<unsigned char> held;          // of the unit that is not whole yet; its end when it is too large
    std::uint64_t held_size = 0;              // how large it is so far, what is not held included
    std::uint64_t unit_offset = 0;
    unsigned framing_size = 0;
    std::uint64_t length = 0;  // of a length-prefixed unit
    unsigned prefix_bytes = 0; // of its prefix, that were read
    std::uint64_t zeros = 0;   // directly before, between units
    unsigned char header = 0;  // the first byte of the unit that is not whole yet
    bool in_unit = false;
    bool dropped = false; // not all of the unit is held
    bool any_unit = false;
    bool gap_open = false;
    split_gap open_gap;
};

} // namespace orv_utils_v4::h264
