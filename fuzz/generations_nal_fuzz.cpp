// The framing of both interfaces over the same bytes. The units that the newer reader and the legacy scanner find in a
// stream are the same, behind prefixes as long as no unit ends early; both writers write the same bytes, but for two
// zeros at the end in Annex B and a length that its prefix does not hold. Input: a byte for the prefix size, the header
// byte, and the bytes.
#include "input.h"

#include <orv-utils-v4/h264/nal_reader.h>
#include <orv-utils-v4/h264/nal_writer.h>
#include <orv-utils-v4/h264_legacy/nal_parser.h>
#include <orv-utils-v4/h264_legacy/nal_writer.h>

namespace {

struct found_unit {
    std::size_t start;
    std::size_t fence;
    int header;
    fuzz::bytes payload;

    bool operator==(const found_unit&) const = default;
};

brenik::h2645_common_nalfmt framing(unsigned int nal_length_size)
{
    return static_cast<brenik::h2645_common_nalfmt>(nal_length_size == 0 ? brenik::nalfmt_annexb : nal_length_size);
}

/// Three bytes that end a unit before its length does.
bool ends_early(const unsigned char* start, const unsigned char* fence)
{
    for (; fence - start >= 3; ++start)
        if (start[0] == 0 && start[1] == 0 && start[2] < 3)
            return true;
    return false;
}

/// What the newer reader finds, up to a prefixed unit that ends early; that is whether there was one.
struct newer_units {
    std::vector<found_unit> units;
    bool early = false;

    newer_units(const fuzz::exact_block& stream, unsigned int nal_length_size)
    {
        brenik::h264_nal_reader reader(framing(nal_length_size));
        const auto offset = [&](const unsigned char* p) { return static_cast<std::size_t>(p - stream.begin()); };
        for (unsigned char* next = stream.begin();; next = reader.next) {
            reader.scan(next, stream.end());
            if (!reader.found || reader.incomplete)
                return;
            early = nal_length_size != 0 && ends_early(reader.payload, reader.payload + reader.payload_length);
            if (early)
                return;
            const std::size_t fence = offset(reader.find_unit_end());
            const fuzz::exact_block out(stream.size() + 3);
            const std::size_t size = reader.block_decode(out.begin(), out.size());
            units.push_back({offset(reader.nal_start), fence, reader.nal.encode_header(),
                             fuzz::bytes(out.begin(), out.begin() + size)});
        }
    }
};

std::vector<found_unit> legacy_units(const fuzz::exact_block& stream, unsigned int nal_length_size)
{
    std::vector<found_unit> units;
    const fuzz::exact_block out(stream.size());
    h264_nal_parser_state s;
    const unsigned char* next = stream.begin();
    const auto offset = [&](const unsigned char* p) { return static_cast<std::size_t>(p - stream.begin()); };
    for (;;) {
        next = h264_nal_parser_scan(&s, out.begin(), out.size(), next, stream.end(), nal_length_size);
        if (s.found == 0)
            return units;
        units.push_back({offset(s.raw_nal), offset(s.raw_nal_fence), s.nal_ref_idc * 32 + s.nal_unit_type,
                         fuzz::bytes(s.nal, s.nal_fence)});
    }
}

void read_with_both(const fuzz::exact_block& stream, unsigned int nal_length_size)
{
    const newer_units newer(stream, nal_length_size);
    std::vector<found_unit> legacy = legacy_units(stream, nal_length_size);
    if (newer.early && legacy.size() > newer.units.size())
        legacy.resize(newer.units.size());
    fuzz::expect(newer.units == legacy, "both generations find the same units");
}

fuzz::bytes newer_written(unsigned int nal_length_size, unsigned char header, const fuzz::exact_block& payload)
{
    const fuzz::exact_block out(brenik::h264_nal_writer::recommended_output_size(payload.size()));
    brenik::h264_nal_writer writer;
    writer.nalfmt = framing(nal_length_size);
    writer.setbuf(out.begin(), out.begin(), out.end());
    brenik::h264_nal nal;
    nal.decode_header(header);
    writer.block_encode(payload.begin(), payload.size(), nal, 0);
    return fuzz::bytes(out.begin(), writer.write);
}

fuzz::bytes legacy_written(unsigned int nal_length_size, unsigned char header, const fuzz::exact_block& payload)
{
    const fuzz::exact_block out(payload.size() * 3 / 2 + 16);
    const int size = h264_nal_write(out.begin(), out.size(), payload.begin(), payload.size(), nal_length_size, header);
    fuzz::expect(size >= 0, "there is room for everything");
    return fuzz::bytes(out.begin(), out.begin() + size);
}

void write_with_both(const fuzz::exact_block& payload, unsigned int nal_length_size, unsigned char header)
{
    fuzz::bytes expected = legacy_written(nal_length_size, header, payload);
    const unsigned char* last = payload.end();
    while (last != payload.begin() && last[-1] == 0)
        --last;
    const bool pairs_at_the_end = payload.end() - last > 0 && (payload.end() - last) % 2 == 0;
    if (nal_length_size == 0 && pairs_at_the_end)
        expected.push_back(3);
    const std::size_t body = expected.size() - nal_length_size;
    if (nal_length_size != 0 && nal_length_size < 4 && body >> 8 * nal_length_size != 0)
        expected.clear();
    fuzz::expect(newer_written(nal_length_size, header, payload) == expected, "both generations write the same bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int nal_length_size = input.byte() % 5;
    const unsigned char header = input.byte() % 128;
    const fuzz::exact_block bytes(input.rest());
    read_with_both(bytes, nal_length_size);
    write_with_both(bytes, nal_length_size, header);
    return 0;
}
