/// @file
/// The parameter sets in force at a place of a stream, as bytes: for a muxer, who puts them into an AVC decoder
/// configuration record and leaves them out of samples, and for a demuxer, who puts them before each IDR picture (H.264
/// clauses 7.4.1.2.1 and B.1, ISO/IEC 14496-15 clause 5).
#pragma once

#include <orv-utils-v4/h264_syntax/decoder_configuration.h>
#include <orv-utils-v4/h264_syntax/outcome.h>
#include <orv-utils-v4/h264_syntax/parameter_sets.h>
#include <orv-utils-v4/h264_syntax/stream.h>
#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

struct access_unit;
struct unit_row;

/// Parameter sets in the order in which they are written: the SPSs by id, each with its extension behind it, the subset
/// SPSs by id, the PPSs by id.
using parameter_set_list = bounded_list<unit_view, 3 * parameter_sets::sps_ids + parameter_sets::pps_ids>;

/// What a store made of a unit.
enum class set_arrival : std::uint8_t {
    no_set,   ///< a unit of another kind
    added,    ///< the first of its id
    changed,  ///< other bytes than those of its id before
    same,     ///< the bytes that were there
    damaged,  ///< not kept: it cannot be read, or its id is above the standard's; or its end is none, where one is kept
              ///< whose end is
    too_long, ///< not kept: more than stream::most_parameter_set_bytes
    no_memory, ///< not kept
};

/// What becomes of the parameter sets that stand in pictures when these are written.
enum class in_band_sets : std::uint8_t {
    as_found,   ///< they stay, and none comes in
    before_idr, ///< those in force stand before each IDR picture, once
    left_out,   ///< those that make_configuration() takes go: for samples whose file has a record
};

/// Units that were written in a framing.
struct framed_size {
    /// none; no_room; too_large: a unit is longer than its length prefix tells.
    reason why = reason::none;
    /// What they take, those beyond the room included.
    std::size_t bytes = 0;
};

/// Keeps the latest SPS, SPS extension, subset SPS and PPS of each id, and hands them out. It is some 14 KiB large, and
/// holds stream::most_parameter_set_bytes of each of 352 ids at the most.
class ORV_UTILS_V4_EXPORT parameter_set_store {
public:
    parameter_set_store() noexcept = default;
    parameter_set_store(const parameter_set_store&) = delete;
    parameter_set_store& operator=(const parameter_set_store&) = delete;
    ~parameter_set_store() = default;

    /// The next unit of the stream, of any type. Zero bytes at its end are not kept. An SPS that changes takes the SPS
    /// extension of its id away, which belongs directly behind it.
    set_arrival push(const unit_view& unit) noexcept;
    /// The same of a unit of a stream.
    set_arrival push(const unit_place& unit) noexcept { return push(unit_view{unit.bytes, unit.size}); }
    /// All parameter sets of a record.
    /// @return how many of them were not kept
    std::size_t push(const AVCDecoderConfigurationRecord& record) noexcept;

    /// How many times a set was added or changed: while it stays, a record made of them stays right.
    std::uint64_t changes() const noexcept { return change_count; }

    /// All that are in force. The views are good until the next push.
    parameter_set_list all() const noexcept;
    /// The SPS and the subset SPS of an id, with the extension and the PPSs that name it.
    parameter_set_list of_sps(std::uint32_t seq_parameter_set_id) const noexcept;

    /// Writes a picture, the next of the stream, and takes its parameter sets.
    ///
    /// With before_idr, an IDR picture which does not carry all the sets that it needs (carries_its_sets()) gets those
    /// in force instead of its own: behind its access unit delimiter, before everything else.
    /// @param units of the picture, in their order; empty ones are passed over
    /// @param count how many
    /// @param how the framing that it shall have: start codes have four bytes
    /// @param sets what becomes of parameter sets in it
    /// @param out where it goes, outside of the units; may be null where `room` is 0
    /// @param room its bytes; 4 for each unit besides its own, and 4 for each set, are enough
    /// @return with no_room the size that it takes; the same call with more room goes on as if this one had not been
    framed_size write_picture(const unit_view* units, std::size_t count, framing how, in_band_sets sets,
                              unsigned char* out, std::size_t room) noexcept;
    /// The same of an access unit.
    framed_size write_picture(const access_unit& unit, framing how, in_band_sets sets, unsigned char* out,
                              std::size_t room) noexcept;

private:
    struct kept_set {
        std::vector<unsigned char> bytes; // none: there is no such set
        std::uint32_t sps_id = 0;         // that it has or names
        std::uint8_t chroma_format_idc = 1;
        bool ends = false; // as a unit should
    };

    kept_set* slot_of(unsigned type, std::uint32_t id) noexcept;
    set_arrival keep(const unit_view& unit);
    set_arrival read_set(const unit_view& unit, std::uint32_t& id, kept_set& as) const;
    bool stood_for(const unit_view& unit, in_band_sets sets) noexcept;
    framed_size write_row(const unit_row& units, framing how, in_band_sets sets, unsigned char* out,
                          std::size_t room) noexcept;
    parameter_set_list listed(std::uint32_t lowest_sps, std::uint32_t highest_sps) const noexcept;

    kept_set spss[parameter_sets::sps_ids];
    kept_set sps_extensions[parameter_sets::sps_ids];
    kept_set subset_spss[parameter_sets::sps_ids];
    kept_set ppss[parameter_sets::pps_ids];
    std::uint64_t change_count = 0;
};

/// Whether the PPSs that the slices of a picture name, and the SPSs or subset SPSs that these name, stand in the
/// picture, each before the slice that needs it.
/// @param units of the picture, in their order
/// @param count how many
/// @return true where nothing is needed, too
ORV_UTILS_V4_EXPORT bool carries_its_sets(const unit_view* units, std::size_t count) noexcept;
/// The same of an access unit.
ORV_UTILS_V4_EXPORT bool carries_its_sets(const access_unit& unit) noexcept;

/// Makes the record that goes with these parameter sets, by ISO/IEC 14496-15 clause 5.3.3.1.1: the profile, chroma
/// format, bit depths and colour description are those of all SPSs, else there is no one record for them; a
/// compatibility flag is set where all SPSs set it; the level is the highest of theirs. An extension is there where the
/// profile has one. Subset SPSs, and PPSs that name no SPS of the list, have records of their own (mvcC, svcC), and are
/// left out.
/// @param to the record, with views of the same bytes; after a failure nothing
/// @param sets in the order of a store
/// @param length_size of the length prefixes in samples: 1, 2 or 4
/// @return how it went; write() tells a set that is too long
ORV_UTILS_V4_EXPORT configuration_outcome make_configuration(AVCDecoderConfigurationRecord& to,
                                                             const parameter_set_list& sets,
                                                             unsigned length_size) noexcept;

/// Writes parameter sets in a framing, start codes of four bytes (clause B.1.2 has zero_byte before an SPS and a PPS).
/// @param sets in the order in which they are to stand
/// @param how Annex B, or length prefixes of 1 to 4 bytes
/// @param out where they go, outside of the sets; may be null where `room` is 0
/// @param room its bytes
/// @return with no_room the size that they take; the room holds the first bytes then
ORV_UTILS_V4_EXPORT framed_size write(const parameter_set_list& sets, framing how, unsigned char* out,
                                      std::size_t room) noexcept;

} // namespace orv_utils_v4::h264
