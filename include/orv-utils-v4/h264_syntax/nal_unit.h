/// @file
/// A NAL unit with what it holds, and the four things that are done with it: read, trace, write and edit (H.264 clauses
/// 7.3.1 and 7.3.2). The stream class does the first two for units in decoding order; these functions are for a caller
/// who keeps the parameter sets himself.
#pragma once

#include <orv-utils-v4/h264_syntax/bit_writer.h>
#include <orv-utils-v4/h264_syntax/depth_parameter_set.h>
#include <orv-utils-v4/h264_syntax/nal_unit_header.h>
#include <orv-utils-v4/h264_syntax/other_units.h>
#include <orv-utils-v4/h264_syntax/outcome.h>
#include <orv-utils-v4/h264_syntax/parameter_sets.h>
#include <orv-utils-v4/h264_syntax/pic_parameter_set.h>
#include <orv-utils-v4/h264_syntax/sei/sei.h>
#include <orv-utils-v4/h264_syntax/slice_header.h>
#include <orv-utils-v4/h264_syntax/slice_layer_extension.h>
#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

#include <cstddef>
#include <string_view>
#include <variant>

namespace orv_utils_v4::h264 {

/// A NAL unit: its header, and its RBSP where the type has one that is read (of slices what stands before their data).
/// It is some 12 KiB large: make it once and read into it again and again.
struct nal_unit {
    nal_unit_header header;
    /// Nothing for types 0, 17, 18 and 22 to 31.
    std::variant<std::monostate, access_unit_delimiter_rbsp, seq_parameter_set_rbsp, seq_parameter_set_extension_rbsp,
                 subset_seq_parameter_set_rbsp, pic_parameter_set_rbsp, depth_parameter_set_rbsp, sei_rbsp,
                 slice_layer_without_partitioning_rbsp, slice_data_partition_a_layer_rbsp,
                 slice_data_partition_b_layer_rbsp, slice_data_partition_c_layer_rbsp, prefix_nal_unit_rbsp,
                 slice_layer_extension_rbsp, end_of_seq_rbsp, end_of_stream_rbsp, filler_data_rbsp>
        rbsp;

    /// @cond
    // What a compiler makes of them, made once in the library: all alternatives take it long.
    ORV_UTILS_V4_EXPORT nal_unit() noexcept;
    ORV_UTILS_V4_EXPORT nal_unit(const nal_unit&);
    ORV_UTILS_V4_EXPORT nal_unit(nal_unit&&) noexcept;
    ORV_UTILS_V4_EXPORT nal_unit& operator=(const nal_unit&);
    ORV_UTILS_V4_EXPORT nal_unit& operator=(nal_unit&&) noexcept;
    ORV_UTILS_V4_EXPORT ~nal_unit();
    /// @endcond

    friend ORV_UTILS_V4_EXPORT bool operator==(const nal_unit&, const nal_unit&);
};

/// What the tables of a unit take from elsewhere. A default one does for every unit but slices, SEI and a PPS with 8x8
/// lists.
struct unit_context {
    const parameter_sets* sets = nullptr; ///< null stands for none
    /// The SPS and PPS that the primary slices of the access unit activate: for SEI.
    const seq_parameter_set_data* active_sps = nullptr;
    const pic_parameter_set_rbsp* active_pps = nullptr;
    /// The latest subset SPS with an extension for multiview with depth: for SEI.
    const subset_seq_parameter_set_rbsp* mvcd_sps = nullptr;
    bool primary_idr = false;          ///< IdrPicFlag of the primary coded picture: for type 19
    std::int32_t partition_a_pps = -1; ///< pic_parameter_set_id of partition A: for types 3 and 4; -1 is none
};

/// The header of the slice that the unit holds, of types 1, 2, 5, 19 and, other than scalable and 3D-AVC ones, 20 and
/// 21; null of others.
ORV_UTILS_V4_EXPORT const slice_header* slice_header_of(const nal_unit& unit) noexcept;

/// The PPS and SPS that a slice stands on; null where there is none, and of units that are no slices of one of these.
ORV_UTILS_V4_EXPORT const pic_parameter_set_rbsp* pps_of(const nal_unit& unit, const parameter_sets& sets) noexcept;
/// The SPS that a slice stands on, likewise.
ORV_UTILS_V4_EXPORT const seq_parameter_set_data* sps_of(const nal_unit& unit, const parameter_sets& sets) noexcept;

/// The bytes of a unit without its emulation-prevention bytes (clause 7.3.1): what the functions below read. They are
/// taken out from behind the header bytes, 1, 3 or 4, on.
/// @param unit the header byte first, `size` bytes
/// @param size how many
/// @param out as large as the unit is enough; less room gives the first bytes of it
/// @param room the bytes of `out`
/// @return how many bytes of `out` are the unit's
ORV_UTILS_V4_EXPORT std::size_t unescape(const unsigned char* unit, std::size_t size, unsigned char* out,
                                         std::size_t room) noexcept;

/// Where the bytes that unescape() leaves lie in the unit, asked for in rising order.
class ORV_UTILS_V4_EXPORT byte_map {
public:
    /// Of the unit [`unit`, `unit` + `size`), emulation-prevention bytes in.
    byte_map(const unsigned char* unit, std::size_t size) noexcept;
    /// The place in the unit of the byte that unescape() puts at `unescaped`; of one behind the end, behind the unit.
    std::size_t operator()(std::uint64_t unescaped) noexcept;

private:
    void find_next_escape() noexcept;

    const unsigned char* start;
    const unsigned char* fence;
    const unsigned char* from;  // the bytes from here on lie as they are,
    const unsigned char* to;    // up to here
    std::uint64_t at_from = 0;  // how many bytes lie before `from` without the escapes
    bool escape_behind = false; // `to` is an emulation-prevention byte
};

/// Reads a unit.
/// @param to what was read, up to a failure; the rest holds what is inferred
/// @param bytes the unit as unescape() gives it; of a slice as much as its header takes is enough
/// @param size how many
/// @param context what its table takes from elsewhere
/// @param result how it went
ORV_UTILS_V4_EXPORT void read(nal_unit& to, const unsigned char* bytes, std::size_t size, const unit_context& context,
                              outcome& result) noexcept;

/// Reads a unit, and tells each structure and element.
ORV_UTILS_V4_EXPORT void trace(nal_unit& to, const unsigned char* bytes, std::size_t size, const unit_context& context,
                               outcome& result, visitor& listener) noexcept;

/// Writes a unit, header and RBSP, without emulation prevention: of a slice what stands before its data.
/// @return true when all of it is in the room; else `result` tells the element that does not hold its value, or
///     no_room with the bytes that are needed
ORV_UTILS_V4_EXPORT bool write(const nal_unit& unit, const unit_context& context, bit_writer& to,
                               outcome& result) noexcept;

/// Writes a slice whose header was changed before the data of the slice as it was: moved by some bits, or with its
/// cabac_alignment_one_bits made anew.
/// @param unit the slice as it shall be
/// @param context what its table takes from elsewhere
/// @param old_bytes the slice as it was, as unescape() gives it, whole
/// @param old_size how many
/// @param old_data_bit where its data begin: outcome::bits of its reading
/// @param to where it is written
/// @param result how it went
ORV_UTILS_V4_EXPORT bool write_before_data(const nal_unit& unit, const unit_context& context,
                                           const unsigned char* old_bytes, std::size_t old_size,
                                           std::uint64_t old_data_bit, bit_writer& to, outcome& result) noexcept;

/// Puts a unit into its framing, with emulation prevention behind its header. The header goes out as it is, with a
/// forbidden bit too.
/// @param bytes the unit as write() gives it
/// @param size how many
/// @param prefix_size 1 to 4 for a length prefix, 0 for Annex B
/// @param zero_byte Annex B: a start code of four bytes
/// @param out where it goes
/// @param room its bytes: 3/2 of the unit and 40 are enough; a prefix of one or two bytes takes as much as a start code
/// @return the bytes written; 0 when they do not fit the room or the prefix
ORV_UTILS_V4_EXPORT std::size_t frame(const unsigned char* bytes, std::size_t size, unsigned prefix_size,
                                      bool zero_byte, unsigned char* out, std::size_t room) noexcept;

/// Puts a unit that has its emulation prevention into a framing as it stands. That it has is looked at while it is
/// copied: no 00 00 00, 00 00 01 or 00 00 02 in it, no 00 at its end (clause 7.4.1), so that it ends where it should in
/// either framing.
/// @param unit its header byte first, as a unit_splitter gives it
/// @param size how many bytes
/// @param prefix_size 1 to 4 for a length prefix, 0 for Annex B
/// @param zero_byte Annex B: a start code of four bytes
/// @param out where it goes
/// @param room its bytes: 4 more than the unit are enough
/// @return the bytes written; 0 when they do not fit the room or the prefix, or the unit is not escaped like that: then
///     frame() of what unescape() makes of it is one that is
ORV_UTILS_V4_EXPORT std::size_t frame_escaped(const unsigned char* unit, std::size_t size, unsigned prefix_size,
                                              bool zero_byte, unsigned char* out, std::size_t room) noexcept;

/// Gives the one element that a path names a new value. A path is the element's name, with its indices in brackets, and
/// as many of the structures around it, outermost first and joined by dots, as tell it apart: "time_scale",
/// "vui_parameters.time_scale", "offset_for_ref_frame[2]". What the new value brings into the syntax holds what is
/// inferred for it; what it takes out of the syntax stays in the structure, unwritten.
/// @return true when it is done; else `unit` is as it was, and `result` tells why: no such element, several of them, or
///     a value that it cannot hold
ORV_UTILS_V4_EXPORT bool edit(nal_unit& unit, const unit_context& context, std::string_view path, std::int64_t value,
                              outcome& result) noexcept;

} // namespace orv_utils_v4::h264
