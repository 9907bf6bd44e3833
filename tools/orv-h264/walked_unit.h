// What a unit of a stream holds, as far as its parse came, and what is wrong with it.
#pragma once

#include "rbsp_decoder.h"

#include <orv-utils-v4/h264.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orv_h264 {

/// How a parse went.
struct parse_outcome {
    bool parsed = false;                       ///< its result
    std::size_t bits = 0;                      ///< how many there were to read, that are known
    std::size_t bits_consumed = 0;             ///< where it ended; past `bits` when it read more than there is
    std::optional<std::size_t> malformed_code; ///< the bit where a malformed Exp-Golomb code begins

    bool truncated() const noexcept { return bits_consumed > bits; }
};

/// The picture timing as the library reads it, and as the standard does where that is something else: the library has
/// one length for both delays.
struct walked_pic_timing {
    brenik::h264_nal_sei_pic_timing read;
    struct standard_reading {
        brenik::h264_nal_sei_pic_timing read;
        parse_outcome outcome;
    };
    std::optional<standard_reading> standard;
};

/// A message of an SEI unit.
struct walked_message {
    brenik::h264_nal_sei_payload_type type = brenik::h264_nal_sei_payload_type_none;
    std::uint32_t stated_size = 0;
    bool truncated = false; ///< the unit ends before the payload does
    rbsp_bytes payload;
    /// Nothing for a payload whose syntax is not read.
    std::variant<std::monostate, brenik::h264_nal_sei_buffering_period, walked_pic_timing,
                 brenik::h264_nal_sei_pan_scan_rect, brenik::h264_nal_sei_user_data_unreg,
                 brenik::h264_nal_sei_recovery_point>
        syntax;
    parse_outcome outcome;
    const brenik::h264_nal_sps* sps = nullptr; ///< the SPS that the payload is read with
};

/// The messages of an SEI unit.
struct walked_sei {
    std::vector<walked_message> messages;
    rbsp_bytes rest;            ///< what follows the last message; one byte, 0x80, in a sound unit
    bool more_messages = false; ///< there are more than the walker takes
};

/// A unit. What it points to is valid until the walker takes another one.
struct walked_unit {
    /// Nothing for a unit whose syntax is not read.
    std::variant<std::monostate, brenik::h264_nal_aud, brenik::h264_nal_sps, brenik::h264_nal_pps,
                 brenik::h264_nal_slice_header, walked_sei>
        syntax;
    parse_outcome outcome;                     ///< of every syntax but SEI, whose messages have their own
    bool header_goes_on = false;               ///< slice: its header was not found to end where it was looked for
    const brenik::h264_nal_pps* pps = nullptr; ///< slice: the PPS that it names, if it is stored
    const brenik::h264_nal_sps* sps = nullptr; ///< slice and PPS: the SPS, likewise
};

/// What is wrong with an SEI message, for a person; "" when nothing is.
std::string problem_of(const walked_message& message);

/// What is wrong with a unit, for a person, a line each.
std::vector<std::string> problems_of(const walked_unit& unit);

} // namespace orv_h264
