/// @file
/// The unit search: many NAL units of a buffer in one call (H.264 clause B.1), for streams of small units, where a call
/// a unit costs more than the search. For a stream that comes in pieces there is the unit splitter.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstddef>

namespace orv_utils_v4::h264 {

/// Where a NAL unit lies in an Annex B buffer.
struct unit_range {
    std::size_t offset = 0;    ///< of the header byte
    std::size_t size = 0;      ///< 1 at least; emulation-prevention bytes in, the zero bytes behind the unit not
    unsigned framing_size = 0; ///< of the start code before it: 3, or 4 with its zero_byte
};

/// Finds the units of a buffer that holds a whole Annex B stream: those that a unit_splitter hands on. It keeps no
/// bytes, and never writes to them; they must outlive it.
class ORV_UTILS_V4_EXPORT unit_search {
public:
    /// In `size` bytes from `bytes` on.
    unit_search(const unsigned char* bytes, std::size_t size) noexcept : start(bytes), at(bytes), fence(bytes + size) {}

    /// The next units, in their order.
    /// @param units where they go
    /// @param most how many there is room for
    /// @return how many there were: fewer than `most` at the end of the buffer alone, then 0. Bytes before the first
    ///     start code, start codes without a unit, and what is no start code behind 00 00 00 are passed over.
    std::size_t next(unit_range* units, std::size_t most) noexcept;

private:
    const unsigned char* start;
    const unsigned char* at; // not behind the next start code
    const unsigned char* fence;
};

} // namespace orv_utils_v4::h264
