// The NAL writer against the literal one, and read back. Input: a byte for the framing, a byte for the room missing,
// then up to four units: a byte each of nal_ref_idc and `valid`, nal_unit_type, zero bytes and payload size, and the
// payload.
#include "input.h"

#include "support/literal_nal.h"

#include <orv-utils-v4/h264/nal_reader.h>
#include <orv-utils-v4/h264/nal_writer.h>

namespace {

struct unit {
    literal::header nal;
    unsigned int zero_bytes;
    fuzz::bytes payload;
};

std::vector<unit> take_units(fuzz::input& input)
{
    std::vector<unit> units(4);
    for (unit& u : units) {
        const unsigned char flags = input.byte();
        u.nal.nal_ref_idc = flags % 8;
        u.nal.valid = flags < 240;
        u.nal.nal_unit_type = input.byte();
        const unsigned char zero_bytes = input.byte();
        u.zero_bytes = zero_bytes == 255 ? 0xFFFFFFFF : zero_bytes;
        u.payload = input.take(input.byte());
    }
    return units;
}

/// The room that all units take that can be written; some when that is none.
std::size_t room_for(unsigned int nalfmt, const std::vector<unit>& units)
{
    literal::nal_writer model{nalfmt, fuzz::bytes(4096), 0};
    for (const unit& u : units)
        model.block_encode(u.payload, u.nal, u.zero_bytes);
    return model.write == 0 ? 64 : model.write;
}

/// What comes back of `payload` when a start code follows: a single zero byte at its end belongs to that.
fuzz::bytes before_start_code(const fuzz::bytes& payload)
{
    std::size_t zeros = 0;
    while (zeros < payload.size() && payload[payload.size() - 1 - zeros] == 0)
        ++zeros;
    return fuzz::bytes(payload.begin(), payload.end() - (zeros % 2));
}

/// Reads the units written, one after another.
void read_back(brenik::h2645_common_nalfmt nalfmt, unsigned char* start, unsigned char* end,
               const std::vector<unit>& written)
{
    brenik::h264_nal_reader reader(nalfmt);
    for (const unit& u : written) {
        if (!u.nal.valid)
            return;
        reader.scan(start, end);
        fuzz::expect(reader.found && !reader.incomplete, "a unit written is found");
        fuzz::expect(reader.nal.encode_header() == u.nal.encode(), "its header is what was written");
        const bool start_code_follows = nalfmt == brenik::nalfmt_annexb && &u != &written.back();
        const fuzz::bytes expected = start_code_follows ? before_start_code(u.payload) : u.payload;
        const fuzz::exact_block out(u.payload.size() + 3);
        const std::size_t count = reader.block_decode(out.begin(), out.size());
        fuzz::expect(fuzz::bytes(out.begin(), out.begin() + count) == expected, "its payload is what was written");
        start = reader.next;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int nalfmt = input.byte() % 7;
    const std::size_t missing = input.byte();
    const std::vector<unit> units = take_units(input);
    const std::size_t need = room_for(nalfmt, units);

    literal::nal_writer model{nalfmt, fuzz::bytes(need > missing ? need - missing : 0), 0};
    const fuzz::exact_block buffer(model.buffer.size());
    const auto framing = static_cast<brenik::h2645_common_nalfmt>(nalfmt);
    brenik::h264_nal_writer writer;
    writer.nalfmt = framing;
    fuzz::expect(writer.block_encode(nullptr, 0, {}, 0) == 0, "without a buffer nothing is written");
    writer.setbuf(buffer.begin(), buffer.begin(), buffer.end());
    std::vector<unit> written;
    for (const unit& u : units) {
        const brenik::h264_nal nal{static_cast<unsigned char>(u.nal.nal_ref_idc),
                                   static_cast<brenik::h264_nal_unit_type>(u.nal.nal_unit_type), u.nal.valid};
        const fuzz::exact_block payload(u.payload);
        const std::size_t expected = model.block_encode(u.payload, u.nal, u.zero_bytes);
        fuzz::expect(writer.block_encode(payload.begin(), payload.size(), nal, u.zero_bytes) == expected,
                     "block_encode returns what the literal writer returns");
        fuzz::expect(writer.data_length() == model.write, "`write` moves as the literal writer's does");
        fuzz::expect(std::equal(buffer.begin(), writer.write, model.buffer.begin()), "the bytes written are the same");
        fuzz::expect(writer.full() == (model.write == model.buffer.size()), "full() when no room is left");
        fuzz::expect(expected <= brenik::h264_nal_writer::recommended_output_size(u.payload.size()) + u.zero_bytes,
                     "recommended_output_size() holds a unit");
        if (expected != 0)
            written.push_back(u);
    }
    if (nalfmt >= 1 && nalfmt <= 5)
        read_back(framing, writer.buffer, writer.write, written);
    return 0;
}
