// The framing of both interfaces over the same bytes: the units that they find and what they write, in memory that
// shows accesses outside of it (guarded_buffer, fuzz::exact_block).
#pragma once

#include <orv-utils-v4/h264/nal_reader.h>
#include <orv-utils-v4/h264/nal_writer.h>
#include <orv-utils-v4/h264_legacy/nal_parser.h>
#include <orv-utils-v4/h264_legacy/nal_writer.h>

#include <cstddef>
#include <vector>

namespace support {

/// A unit: where its framing begins and where it ends in the bytes, its header and its RBSP.
struct found_unit {
    std::size_t start;
    std::size_t fence;
    int header;
    std::vector<unsigned char> payload;

    bool operator==(const found_unit&) const = default;
};

inline brenik::h2645_common_nalfmt framing(unsigned int nal_length_size)
{
    return static_cast<brenik::h2645_common_nalfmt>(nal_length_size == 0 ? brenik::nalfmt_annexb : nal_length_size);
}

/// The units that the newer reader finds, up to a payload that `ends` says is the last to look at.
template <typename Memory, typename Ends>
std::vector<found_unit> newer_units(const Memory& stream, unsigned int nal_length_size, Ends ends)
{
    std::vector<found_unit> units;
    const Memory out(stream.size() + 3);
    brenik::h264_nal_reader reader(framing(nal_length_size));
    const auto offset = [&](const unsigned char* p) { return static_cast<std::size_t>(p - stream.begin()); };
    for (unsigned char* next = stream.begin();; next = reader.next) {
        reader.scan(next, stream.end());
        if (!reader.found || reader.incomplete || ends(reader))
            return units;
        const std::size_t fence = offset(reader.find_unit_end());
        const std::size_t size = reader.block_decode(out.begin(), out.size());
        units.push_back(
            {offset(reader.nal_start), fence, reader.nal.encode_header(), {out.begin(), out.begin() + size}});
    }
}

template <typename Memory>
std::vector<found_unit> newer_units(const Memory& stream, unsigned int nal_length_size)
{
    return newer_units(stream, nal_length_size, [](const auto&) { return false; });
}

template <typename Memory>
std::vector<found_unit> legacy_units(const Memory& stream, unsigned int nal_length_size)
{
    std::vector<found_unit> units;
    const Memory out(stream.size());
    h264_nal_parser_state s;
    const unsigned char* next = stream.begin();
    const auto offset = [&](const unsigned char* p) { return static_cast<std::size_t>(p - stream.begin()); };
    for (;;) {
        next = h264_nal_parser_scan(&s, out.begin(), out.size(), next, stream.end(), nal_length_size);
        if (s.found == 0)
            return units;
        units.push_back(
            {offset(s.raw_nal), offset(s.raw_nal_fence), s.nal_ref_idc * 32 + s.nal_unit_type, {s.nal, s.nal_fence}});
    }
}

/// A unit with a payload of its own memory; nothing when the writer fails.
template <typename Memory>
std::vector<unsigned char> newer_written(unsigned int nal_length_size, unsigned char header, const Memory& payload)
{
    const Memory out(brenik::h264_nal_writer::recommended_output_size(payload.size()));
    brenik::h264_nal_writer writer(out.begin(), out.begin(), out.end(), framing(nal_length_size));
    brenik::h264_nal nal;
    nal.decode_header(header);
    writer.block_encode(payload.begin(), payload.size(), nal, 0);
    return {out.begin(), writer.write};
}

template <typename Memory>
std::vector<unsigned char> legacy_written(unsigned int nal_length_size, unsigned char header, const Memory& payload)
{
    const Memory out(payload.size() * 3 / 2 + 16);
    const int size = h264_nal_write(out.begin(), out.size(), payload.begin(), payload.size(), nal_length_size, header);
    return {out.begin(), out.begin() + (size < 0 ? 0 : size)};
}

/// What the newer writer writes instead of what the legacy one did: two zeros at the end of an Annex B unit get their
/// byte, and a length that its prefix does not hold is refused.
template <typename Memory>
std::vector<unsigned char> newer_of(std::vector<unsigned char> written, unsigned int nal_length_size,
                                    const Memory& payload)
{
    std::size_t zeros = 0;
    while (zeros < payload.size() && payload.end()[-1 - static_cast<std::ptrdiff_t>(zeros)] == 0)
        ++zeros;
    if (nal_length_size == 0 && zeros != 0 && zeros % 2 == 0)
        written.push_back(3);
    const std::size_t body = written.size() - nal_length_size;
    if (nal_length_size != 0 && nal_length_size < 4 && body >> 8 * nal_length_size != 0)
        written.clear();
    return written;
}

} // namespace support
