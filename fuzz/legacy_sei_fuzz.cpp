// The legacy interface's SEI messages, picture timings and field duration against the literal ones. Input: a byte of
// flags of the SPS (bit 0 the NAL HRD, bit 1 the VCL HRD, bit 2 pic_struct_present_flag), both delays' lengths, and the
// RBSP, which is also read as the payload of a picture timing message.
#include "input.h"

#include "support/legacy_parse.h"

namespace {

using support::legacy_timing_parses;

void expect_same_timing(const legacy_timing_parses& parses, const fuzz::bytes& payload)
{
    const fuzz::exact_block block(payload);
    h264_sei_picture_timing_info timing;
    fuzz::expect_none(parses(timing, {block.begin(), block.end()}).difference);
}

/// Of the first picture timing message that is whole, and that no message which is not comes before.
int literal_duration(const legacy_timing_parses& parses, const fuzz::bytes& rbsp)
{
    const literal::legacy::stored_sps seq(support::fields_of(parses.sps));
    for (std::size_t at = 0;;) {
        const literal::legacy::message m = literal::legacy::sei_message(rbsp, at);
        if (!m.valid)
            return 2;
        at = static_cast<std::size_t>(m.fence);
        if (m.type != 1)
            continue;
        const h264_sei_picture_timing_info zeros;
        support::named_values fields = support::fields_of(zeros);
        literal::legacy_bit_reader reader({rbsp.begin() + m.data, rbsp.begin() + m.fence});
        const bool read = literal::legacy::pic_timing({fields, reader}, seq);
        return read ? static_cast<int>(fields.at("field_duration").number) : 2;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    legacy_timing_parses parses;
    const unsigned char flags = input.byte();
    parses.sps.nal_hrd_parameters_present_flag = flags & 1;
    parses.sps.vcl_hrd_parameters_present_flag = flags >> 1 & 1;
    parses.sps.pic_struct_present_flag = flags >> 2 & 1;
    parses.sps.cpb_removal_delay_length = input.byte();
    parses.sps.dpb_output_delay_length = input.byte();
    const fuzz::bytes rbsp = input.rest();
    const fuzz::exact_block block(rbsp);
    fuzz::expect_none(support::compare_sei_messages(block.begin(), block.end()));
    expect_same_timing(parses, rbsp);
    fuzz::expect(literal_duration(parses, rbsp) == h264_sei_get_field_duration(parses.sps, block.begin(), block.end()),
                 "the duration is that of the first picture timing");
    return 0;
}
