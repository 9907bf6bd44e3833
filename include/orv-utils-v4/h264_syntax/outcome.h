/// @file
/// How the reading or writing of a unit went: the first failure, with its element, bit and reason; the values outside
/// their ranges; and what stands behind the last element.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/element.h>

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// Why a structure is read or written no further.
enum class reason : std::uint8_t {
    none,
    unit_ends,       ///< the element reaches past the end of the unit
    payload_ends,    ///< the element reaches past the end of its SEI payload
    malformed_code,  ///< 32 or more leading zero bits of an Exp-Golomb code (clause 9.1)
    too_large,       ///< more than `bound`
    too_small,       ///< less than `bound`
    no_sps,          ///< names an SPS (or subset SPS) that is not there
    no_pps,          ///< names a PPS that is not there
    no_partition_a,  ///< a partition without its partition A
    no_source_slice, ///< takes what its table needs from another slice (3D-AVC), which is not looked up
    wrong_kind,      ///< the structure is not the one that the header or the payload type names
    wrong_count,     ///< the container does not hold `bound` entries
    no_memory,       ///< an allocation failed
    no_room,         ///< the output ends; `bound` is the number of bytes that are needed
    no_such_element, ///< nothing in the structure has the path
    ambiguous,       ///< several elements have the path
    unit_too_long,   ///< longer than `bound` bytes, a limit of the reader
};

/// The reason in English, as it follows the element's name.
ORV_UTILS_V4_EXPORT const char* text_of(reason why) noexcept;

/// The first failure.
struct failure {
    reason why = reason::none;
    label element = "";
    std::uint64_t bit = 0;  ///< where the element begins, as in traced_element
    std::int64_t value = 0; ///< too_large, too_small: the value; no_sps, no_pps: the id
    std::int64_t bound = 0; ///< the limit that it breaks

    /// There is one.
    explicit operator bool() const noexcept { return why != reason::none; }
};

/// A value outside of the range that the standard states. It was stored, and reading went on.
struct finding {
    label element = "";
    std::uint64_t bit = 0;
    std::int64_t value = 0;
    std::int64_t lowest = 0;
    std::int64_t highest = 0;
};

/// What a unit ends with.
enum class ending : std::uint8_t {
    unknown,          ///< not reached, or not looked for
    sound,            ///< rbsp_trailing_bits() and nothing behind them; or nothing, where nothing belongs
    no_stop_bit,      ///< the bit where the stop bit belongs is 0, or is not there
    cabac_zero_words, ///< 0x0000 words behind the trailing bits (clause 7.3.2.10)
    bytes_behind,     ///< other bytes behind the trailing bits
};

/// How it went.
struct outcome {
    /// The most findings that are kept; `finding_count` goes on.
    static constexpr std::size_t most_findings = 16;

    h264::failure failure;
    bounded_list<finding, most_findings> findings;
    std::size_t finding_count = 0;
    h264::ending ending = ending::unknown;
    /// Behind the last element that was read: of a slice, the first bit of its data (cabac_alignment_one_bits read).
    std::uint64_t bits = 0;

    outcome() noexcept {}
    /// Nothing failed, and no value lies outside of its range.
    bool sound() const noexcept { return !failure && finding_count == 0; }
};

} // namespace orv_utils_v4::h264
