// The legacy NAL writer against the literal one, and scanned again. Input: a byte for the prefix size, the header byte,
// a byte for the room missing from what is enough for certain, and the payload.
#include "input.h"

#include "support/literal_legacy_nal.h"

#include <orv-utils-v4/h264_legacy/nal_parser.h>
#include <orv-utils-v4/h264_legacy/nal_writer.h>

namespace {

constexpr unsigned char unwritten = 0xA5;

/// What the scanner makes of the unit written.
void scan_again(const fuzz::bytes& written, unsigned int nal_length_size, unsigned char header,
                const fuzz::bytes& payload)
{
    const fuzz::exact_block stream(written);
    const fuzz::exact_block out(payload.size());
    h264_nal_parser_state s;
    const unsigned char* const next =
        h264_nal_parser_scan(&s, out.begin(), out.size(), stream.begin(), stream.end(), nal_length_size);
    fuzz::expect(next == stream.end() && s.found == 1 && s.overflow == 0, "a unit written is found");
    fuzz::expect(s.nal_ref_idc * 32 + s.nal_unit_type == header, "its header is what was written");
    fuzz::expect(fuzz::bytes(s.nal, s.nal_fence) == payload, "its payload is what was written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int nal_length_size = input.byte() % 5;
    const unsigned char header = input.byte();
    const std::size_t missing = input.byte();
    const fuzz::bytes payload = input.rest();
    const std::size_t enough = payload.size() * 3 / 2 + 16;
    const std::size_t out_size = enough > missing ? enough - missing : 0;

    const literal::legacy_written expected = literal::legacy_write(out_size, payload, nal_length_size, header);
    const fuzz::exact_block source(payload);
    const fuzz::exact_block out(fuzz::bytes(out_size, unwritten));
    fuzz::expect(h264_nal_write(out.begin(), out_size, source.begin(), source.size(), nal_length_size, header) ==
                     expected.result,
                 "the result is the literal writer's");
    fuzz::bytes whole = expected.output;
    whole.resize(out_size, unwritten);
    fuzz::expect(std::equal(whole.begin(), whole.end(), out.begin()), "the bytes written are the literal writer's");
    const bool prefix_holds_length = nal_length_size == 0 || nal_length_size > 2 ||
                                     expected.output.size() < nal_length_size + (std::size_t{1} << 8 * nal_length_size);
    if (missing == 0 && header < 128 && prefix_holds_length)
        scan_again(expected.output, nal_length_size, header, payload);
    return 0;
}
