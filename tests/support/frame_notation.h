// A notation for the frame scan: units in a row, framed in every way, and what a call says of them in a line of text,
// by the indices of the units:
//
//   "0 to 5: aud sps pps sei slice, 2 fields"   a whole frame; the next call begins at unit 5
//   "0 on: slice, 2 fields"                     the input ends inside of the frame that begins with unit 0
//   "0 on, 3 so far: slice, 2 fields"           likewise, with a frame_end before unit 3
//   "0, no room: 2 fields"                      the scratch buffer is too small for a unit of the frame
//   "none, next end: 2 fields"                  no frame begins; the next call begins at the end of the input
#pragma once

#include "support/bit_writer.h"
#include "support/guarded_buffer.h"
#include "support/scanned_frame.h"
#include "support/sps_builder.h"
#include "support/stream_builder.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace support::frame_notation {

/// A unit, not yet framed.
struct unit {
    unsigned char header;
    bytes rbsp;
};

using units = std::vector<unit>;

inline unit of_type(unsigned int nal_unit_type, const bytes& rbsp = {})
{
    return {header_byte(1, nal_unit_type), rbsp};
}

const unit aud = of_type(9, {0xF0});
const unit pps = of_type(8, {0xCE, 0x38, 0x80});
const unit end_of_sequence = of_type(10);
const unit end_of_stream = of_type(11);
const unit filler = of_type(12, {0xFF, 0xFF, 0x80});
const unit partition_a = of_type(2, {0x88, 0x84});
const unit empty_slice = of_type(1);

enum picture { frame, top, bottom };

/// A slice of a stream that may have fields and whose frame_num has `bits` bits.
inline unit slice(std::uint32_t frame_num, picture kind = frame, unsigned int nal_unit_type = 1, unsigned int bits = 4)
{
    bit_writer rbsp;
    rbsp.ue(0).ue(5).ue(0).u(bits, frame_num).flag(kind != frame);
    if (kind != frame)
        rbsp.flag(kind == bottom);
    return of_type(nal_unit_type, rbsp.u(9, 0x155).trailing_bits().bytes());
}

inline unit idr(std::uint32_t frame_num, picture kind = frame)
{
    return slice(frame_num, kind, 5);
}

/// An SEI unit of these messages, sizes below 255.
inline unit sei_of(std::initializer_list<std::pair<unsigned char, bytes>> messages, const bytes& end = {0x80})
{
    return of_type(6, sei_rbsp(messages, end));
}

/// Picture timing without delays.
inline unit sei(unsigned int pic_struct)
{
    return sei_of({{1, {static_cast<unsigned char>(pic_struct << 4 | 8)}}});
}

/// An SEI unit without picture timing.
inline unit other_sei()
{
    return sei_of({{4, {0xB5, 0x01}}});
}

/// The SPS of a stream that may have fields and tells pic_struct.
inline sps_description field_stream()
{
    sps_description seq;
    seq.frame_mbs_only_flag = false;
    seq.vui.emplace().pic_struct_present_flag = true;
    return seq;
}

inline unit sps(const sps_description& seq = field_stream())
{
    return of_type(7, written_rbsp(seq).made());
}

/// What is read of sps(), for a stream without one.
inline h264_sps known_sps()
{
    h264_sps seq;
    seq.log2_max_frame_num = 4;
    seq.pic_struct_present_flag = 1;
    return seq;
}

/// Annex B with start codes of 3 or 4 bytes, or length prefixes.
struct framing {
    int nal_length_size;
    std::size_t start_code_size = 0;
};

constexpr framing annexb = {0, 3};
constexpr framing every_framing[] = {annexb, {0, 4}, {1}, {2}, {3}, {4}};

/// Units in their framing.
struct stream {
    int nal_length_size = 0;
    bytes data = {};
    std::vector<std::size_t> starts = {}; ///< what the scanner takes for the start of each unit
    std::size_t zero_bytes = 0;           ///< before each start code, part of no unit
};

/// The RBSP as it stands in a unit.
inline bytes escaped(const bytes& rbsp)
{
    bytes made;
    std::size_t zeros = 0;
    for (const unsigned char byte : rbsp) {
        if (zeros == 2 && byte <= 3) {
            made.push_back(3);
            zeros = 0;
        }
        made.push_back(byte);
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    return made;
}

inline stream framed(const units& row, const framing& how)
{
    stream made{how.nal_length_size};
    made.zero_bytes = how.nal_length_size == 0 ? how.start_code_size - 3 : 0;
    stream_builder data;
    for (const unit& u : row) {
        const bytes payload = escaped(u.rbsp);
        data.zeros(made.zero_bytes);
        made.starts.push_back(data.here());
        if (how.nal_length_size == 0)
            data.annexb_unit(u.header, payload);
        else
            data.prefixed_unit(static_cast<std::size_t>(how.nal_length_size), u.header, payload);
    }
    made.data = data;
    return made;
}

/// The index of the unit that begins at `offset`.
inline std::string name_of(const stream& s, std::size_t offset)
{
    const auto found = std::find(s.starts.begin(), s.starts.end(), offset);
    if (found != s.starts.end())
        return std::to_string(found - s.starts.begin());
    if (offset == s.data.size())
        return "end";
    return offset == nowhere ? "null" : "byte " + std::to_string(offset);
}

/// The unit that is next from `offset`, where the search for a frame ended behind one that is too large.
inline std::string next_of(const stream& s, std::size_t offset)
{
    const auto found = std::find(s.starts.begin(), s.starts.end(), offset + s.zero_bytes);
    return name_of(s, found != s.starts.end() ? *found : offset);
}

/// The line for a call.
inline std::string describe(const frame_outcome& f, const stream& s)
{
    const bool begun = f.start != nowhere;
    std::string line = begun ? name_of(s, f.start) : "none";
    std::size_t usual_result = f.start;
    if (f.complete) {
        line += " to " + name_of(s, f.end);
        usual_result = f.end;
    } else if (begun) {
        line += f.need_more_data ? " on" : ", no room";
    }
    if (!begun || f.result != usual_result)
        line += ", next " + (begun ? name_of(s, f.result) : next_of(s, f.result));
    if (!f.complete && f.end != nowhere)
        line += ", " + name_of(s, f.end) + " so far";
    if (f.need_more_data && (f.complete || !begun))
        line += ", but more";
    line += ":";
    line += f.has_aud ? " aud" : "";
    line += f.has_sps ? " sps" : "";
    line += f.sps_updated != f.has_sps ? (f.sps_updated ? " (updated)" : " (not updated)") : "";
    line += f.has_pps ? " pps" : "";
    line += f.has_sei ? " sei" : "";
    line += f.has_slice ? " slice" : "";
    line += line.back() == ':' ? " " : ", ";
    return line + std::to_string(f.field_duration) + " fields";
}

struct options {
    unsigned int flags = 0;
    h264_sps sps = known_sps();
    std::size_t scratch_size = 300;
};

/// The lines for a stream from its start, call after call, up to the first that finds no whole frame.
inline std::vector<std::string> lines_of(const stream& s, const options& with = {})
{
    frame_scanner<guarded_buffer> scanner(s.data, s.nal_length_size, with.scratch_size, with.flags, with.sps);
    std::vector<std::string> lines;
    std::size_t at = 0;
    for (bool complete = true; complete && lines.size() <= s.starts.size();) {
        const frame_outcome f = scanner.scan(at);
        lines.push_back(describe(f, s));
        complete = f.complete;
        at = f.result;
    }
    return lines;
}

/// The lines of the units in Annex B, provided that they are the same in every framing.
inline std::vector<std::string> frames(const units& row, const options& with = {})
{
    std::vector<std::string> lines = lines_of(framed(row, annexb), with);
    for (const framing& how : every_framing) {
        std::vector<std::string> others = lines_of(framed(row, how), with);
        if (lines != others) {
            others.push_back("with prefixes of " + std::to_string(how.nal_length_size) + " and start codes of " +
                             std::to_string(how.start_code_size));
            return others;
        }
    }
    return lines;
}

/// The line of the first call.
inline std::string first_frame(const units& row, const options& with = {})
{
    const std::vector<std::string> lines = frames(row, with);
    return lines.back().starts_with("with prefixes") ? lines.back() + ": " + lines.front() : lines.front();
}

constexpr unsigned int split_fields = h264_common_frame_scan_split_fields;

} // namespace support::frame_notation
