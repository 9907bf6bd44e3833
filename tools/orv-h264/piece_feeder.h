// Reads a stream of any size in pieces and hands on whole NAL units, in order. What belongs to no unit is handed on
// too: every byte of the input lies in a unit, in its framing, in a gap, or is zero padding. Every path of the tool
// that reads a stream goes through here; the finding and decoding of units is the library's.
#pragma once

#include "input_window.h"

#include <orv-utils-v4/h264.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace orv_h264 {

/// Why bytes belong to no unit.
enum class gap_reason {
    before_first_unit, ///< Annex B: bytes in front of the first start code
    forbidden_bit,     ///< a unit whose header has the forbidden bit set
    no_header,         ///< Annex B: a start code at the very end
    early_stop,        ///< bytes of a unit behind 00 00 00 or 00 00 02 (or 00 00 01 in a length-prefixed unit)
    too_large,         ///< a unit larger than the feeder may keep
    zero_length,       ///< length prefixes of 0
    cut_prefix,        ///< too few bytes for a length prefix and a header at the end of the input
    no_unit,           ///< the input has ended without a unit: no bytes, at its end
};

/// Bytes that belong to no unit.
struct gap {
    gap_reason reason = gap_reason::before_first_unit;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    brenik::h264_nal nal = {};       ///< too_large: the header of the unit
    std::uint64_t stated_length = 0; ///< too_large: the length prefix; 0 in Annex B
    std::uint64_t limit = 0;         ///< too_large: what the feeder keeps, bytes
};

/// A gap that is a unit in truth, which the feeder does not hand on.
bool holds_a_unit(const gap& g);

/// The reason as text for a person.
std::string describe(const gap& g);

/// Likewise, with the size where there are bytes.
std::string describe_with_size(const gap& g);

/// A whole NAL unit, or the rest of the last one.
struct unit {
    std::uint64_t offset = 0;        ///< of the first byte of its framing
    unsigned int framing_size = 0;   ///< start code with its zero_byte, or length prefix
    std::uint64_t length = 0;        ///< from the header byte to where decoding stops
    std::uint64_t stated_length = 0; ///< the length prefix; 0 in Annex B
    bool cut = false;                ///< the unit runs past the end of the input
};

/// What is wrong with a unit that is cut, as text for a person.
std::string describe_cut(const unit& u);

struct end_of_input {};

/// What next() hands on.
using fed_item = std::variant<unit, gap, end_of_input>;

class piece_feeder {
public:
    static constexpr std::size_t usual_max_unit = std::size_t{64} * 1024 * 1024;

    /// Feeds what `input` holds and reads on. A unit whose length is above `largest_unit` becomes a gap.
    piece_feeder(input_window input, brenik::h2645_common_nalfmt nalfmt, std::size_t largest_unit = usual_max_unit);

    /// The next unit or gap. An input without any unit ends with the gap no_unit.
    fed_item next();

    /// The reader on the unit that next() has just handed on, ready to decode: a block of `length` bytes is enough.
    /// Valid until the following next().
    brenik::h264_nal_reader& reader() noexcept { return nal_reader; }

private:
    fed_item next_found();
    fed_item next_annexb();
    fed_item next_length_prefixed();
    fed_item hand_on(unsigned int framing_size, const unsigned char* unit_end);
    fed_item skip(gap_reason reason, std::uint64_t size);
    fed_item close_gap(std::uint64_t end_offset);
    fed_item end_annexb();
    unsigned char* find_annexb_unit_end();
    void take_between(unsigned char* fence);
    void open_gap(gap_reason reason, std::uint64_t offset);

    input_window window;
    brenik::h264_nal_reader nal_reader;
    std::size_t max_unit;
    std::size_t handed_on = 0;   // bytes at the window's start that belong to the unit handed on
    std::size_t behind_unit = 0; // and bytes of that unit behind where decoding stops, in length-prefixed framing
    std::uint64_t zero_run = 0;  // zero bytes directly before the window's start, since the last unit
    bool any_unit = false;       // handed on
    bool unit_seen = false;      // handed on, or in a gap; or told that there is none
    std::optional<gap> open;     // the gap that is growing
};

} // namespace orv_h264
