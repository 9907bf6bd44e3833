// The frame finder of the tool, fed unit by unit, against one run of the frame scan over the whole in memory. Input: a
// byte for the framing (modulo 5, 0 for Annex B), one for the flags (bit 0 splits fields, bit 1 writes a zero_byte),
// one for the size of a read, and units, each a header byte, a byte of padding in steps of 512 bytes, one of length,
// and the payload as it stands.
#include "input.h"

#include "support/found_frames.h"

namespace {

constexpr std::size_t padding_step = 512;
constexpr std::size_t most_bytes = std::size_t{1} << 20; // what a stream may grow to by padding

fuzz::bytes stream_of(fuzz::input& from, unsigned int framing, bool zero_byte)
{
    support::stream_builder stream;
    for (bool more = true; more && stream.here() < most_bytes;) {
        const unsigned char header = from.byte();
        const std::size_t padding = padding_step * from.byte();
        fuzz::bytes payload = from.take(from.byte());
        more = !payload.empty() || padding > 0 || header != 0;
        payload.insert(payload.end(), padding, 0x55);
        if (!more)
            break;
        if (framing == 0)
            stream.zeros(zero_byte ? 1 : 0).annexb_unit(header, payload);
        else
            stream.prefixed_unit(framing, header, payload);
    }
    return stream;
}

/// No unit in two frames, none out of order, and nothing outside of the input.
void expect_sound(const std::vector<orv_h264::frame>& frames, std::size_t size)
{
    std::uint64_t end = 0;
    for (const orv_h264::frame& f : frames) {
        fuzz::expect(!f.units.empty(), "a frame has units");
        fuzz::expect(!f.cut, "a small frame is not cut");
        fuzz::expect(f.offset == f.units.front().where.offset, "a frame begins with its first unit");
        for (const orv_h264::frame_unit& u : f.units) {
            fuzz::expect(u.where.offset >= end, "the units follow on each other");
            end = u.where.offset + u.where.framing_size + u.where.length;
        }
        fuzz::expect(end == f.offset + f.size && end <= size, "a frame ends with its last unit, in the input");
        fuzz::expect(!f.last || &f == &frames.back(), "only the last frame is marked so");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int framing = input.byte() % 5;
    const unsigned int flags = input.byte();
    const std::size_t piece = std::size_t{16} * input.byte() + 1;
    const bool split_fields = (flags & 1) != 0;
    const fuzz::bytes stream = stream_of(input, framing, (flags & 2) != 0);

    const auto nalfmt = framing == 0 ? brenik::nalfmt_annexb : static_cast<brenik::h2645_common_nalfmt>(framing);
    const support::found_frames found(stream, nalfmt, split_fields, piece);
    expect_sound(found.frames, stream.size());
    fuzz::expect(found.placed() == support::scan_whole(found.joined, split_fields),
                 "the frames are those of the whole of the units");
    if (framing != 0)
        return 0;
    const auto whole = support::scan_whole(stream, split_fields);
    fuzz::expect(found.frames.size() == whole.size(), "as many frames as in the whole of the input");
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const orv_h264::frame& f = found.frames[i];
        fuzz::expect(f.offset + f.units.front().where.framing_size - 3 == whole[i].start,
                     "the frame begins where it does in the whole of the input");
        fuzz::expect(f.field_duration == whole[i].field_duration, "and is shown as long");
    }
    return 0;
}
