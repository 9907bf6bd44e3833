// How many bits each access unit has, as the coded picture buffer gets them (H.264 Annex C, Figure C-1).
#pragma once

#include "unit_run.h"

#include <cstdint>
#include <deque>

namespace orv_h264 {

/// Bits of an access unit.
struct access_unit_bits {
    std::int64_t byte_stream = 0; ///< Type II: all bytes, start codes and zero bytes included, for the NAL HRD
    std::int64_t vcl = 0;         ///< Type I: VCL units and filler data, for the VCL HRD
};

/// Gets the units, and is asked for each access unit in decoding order. Units of other layers and views do not count:
/// the parameters of the base are about the base.
class unit_sizes {
public:
    void begin(const stream_input& input);
    /// The bytes are those of a byte stream: with what stands between its units they are all that there is. Else they
    /// are the least that a byte stream of these units has.
    bool is_byte_stream() const noexcept { return byte_stream; }
    /// There are units of other layers or views.
    bool has_layers() const noexcept { return layers; }

    void add(const listed_unit& unit);
    /// The units of one that has no picture count with the next one.
    access_unit_bits take(const h264::access_unit& unit);

private:
    struct known_unit {
        std::uint64_t number = 0;
        std::uint64_t end = 0; ///< of its bytes in the stream
        std::int64_t bytes = 0;
        std::int64_t vcl_bytes = 0;
        bool counts = true;
    };

    std::size_t start_code_of(const listed_unit& unit) const;

    static constexpr std::size_t most_units = std::size_t{1} << 17;

    std::deque<known_unit> known;
    access_unit_bits carried;
    bool start_codes = false; // that came with the units
    bool byte_stream = false;
    bool layers = false;
};

} // namespace orv_h264
