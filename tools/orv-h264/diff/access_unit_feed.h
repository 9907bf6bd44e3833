// The access units of a stream one by one, each unit with fingerprints of what it holds, and with its elements where
// these are asked for. Start codes, lengths, emulation-prevention bytes and zero bytes at the end of units are not part
// of that.
#pragma once

#include "access_unit_taker.h"
#include "diff/compared_elements.h"
#include "diff/fingerprint.h"
#include "diff/sequence_alignment.h"
#include "unit_run.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace orv_h264 {

/// A unit as it is compared.
struct compared_unit {
    unsigned nal_unit_type = 0;
    std::uint32_t sei_type = 0; ///< of its first message
    bool slice = false;
    std::uint64_t offset = 0; ///< of its framing, for a person
    fingerprint whole;
    fingerprint rest;            ///< what stands behind the elements: slice data, or what could not be read
    std::uint64_t rest_bits = 0; ///< of that
    std::vector<compared_element> elements;
};

struct compared_access_unit {
    std::vector<compared_unit> units;
    bool picture = false; ///< it has slices of a primary coded picture

    /// So many bits of slice data tell a picture from others; those of skipped ones are the same again and again.
    static constexpr std::uint64_t telling_bits = 128;

    /// What it is aligned by.
    aligned_entry print() const;
};

/// What an input is besides its elements.
struct feed_totals {
    std::uint64_t units = 0;
    std::uint64_t access_units = 0;
    std::uint64_t pictures = 0;   ///< access units that are one; a field is one of its own
    std::uint64_t problems = 0;   ///< what is wrong with it
    std::uint64_t lost_bytes = 0; ///< that belong to no unit
    std::uint64_t short_start_codes = 0;
    std::uint64_t long_start_codes = 0;
    std::uint64_t length_prefixes = 0;
    unsigned prefix_size = 0;
    std::uint64_t escapes = 0; ///< emulation-prevention bytes
    std::uint64_t zeros = 0;   ///< bytes at the end of units, cabac_zero_words among them, and between units
};

class access_unit_feed final : unit_run {
public:
    /// Throws as stream_input does.
    access_unit_feed(const stream_options& options, bool with_elements);

    /// The next one; nothing behind the last. Throws refusal for a unit that is too large to be read.
    std::optional<compared_access_unit> next();

    const std::string& name() const { return input.name(); }
    h264::framing framing() const { return input.framing(); }
    std::uint64_t bytes() const { return input.bytes_read(); }
    const feed_totals& totals() const { return sums; }

private:
    bool enough() const override { return false; }
    h264::visitor* before(const listed_unit& unit) override;
    void take(const listed_unit& unit, const h264::unit_reading* reading) override;
    void add(const h264::access_unit& unit);
    void take_gap(const h264::split_gap& gap) override;
    void complain(const listed_unit* unit, std::uint64_t offset, const std::string& what, bool is_problem) override;

    void add_framing(const listed_unit& unit, std::size_t unescaped);
    void add_record_sets(compared_access_unit& first);

    stream_input input;
    bool traced;
    compared_elements elements;
    std::vector<unsigned char> plain; // the latest unit without escapes
    h264::access_units units;
    access_unit_taker to_ready{[this](const h264::access_unit& unit) { add(unit); }};
    std::vector<compared_unit> record_sets; // of a container
    std::deque<compared_unit> read;         // that no access unit has taken
    std::deque<compared_access_unit> ready;
    feed_totals sums;
    std::uint64_t end_of_last = 0;
    bool ended = false;
};

} // namespace orv_h264
