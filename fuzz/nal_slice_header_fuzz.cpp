// The parse of slice headers against the literal parse. Input: nal_unit_type; how many pairs of parameter sets are
// stored; for each pair the SPS in four bytes (its id; its flags with pic_order_cnt_type above them; the two
// log2_max_..._minus4, from 128 on less 2^32) and the PPS in three (its id, that of its SPS, its flags); and then see
// expect_same_in_a_row().
#include "structure.h"

#include "support/literal_slice_parse.h"

namespace {

/// 0 to 127, or 2^32 - 128 to 2^32 - 1: every width of 0 to 255 bits, and the wrap.
std::uint32_t signed_byte(fuzz::input& input)
{
    return static_cast<std::uint32_t>(static_cast<std::int8_t>(input.byte()));
}

brenik::h264_nal_sps sps_from(fuzz::input& input)
{
    brenik::h264_nal_sps sps;
    const unsigned char options = input.byte();
    sps.valid = (options & 1) != 0;
    sps.separate_colour_plane_flag = (options & 2) != 0;
    sps.frame_mbs_only_flag = (options & 4) != 0;
    sps.delta_pic_order_always_zero_flag = (options & 8) != 0;
    sps.pic_order_cnt_type = options / 16U;
    sps.log2_max_frame_num_minus4 = signed_byte(input);
    sps.log2_max_pic_order_cnt_lsb_minus4 = signed_byte(input);
    return sps;
}

brenik::h264_nal_pps pps_from(fuzz::input& input)
{
    brenik::h264_nal_pps pps;
    pps.seq_parameter_set_id = input.byte();
    const unsigned char options = input.byte();
    pps.valid = (options & 1) != 0;
    pps.bottom_field_pic_order_in_frame_present_flag = (options & 2) != 0;
    pps.redundant_pic_cnt_present_flag = (options & 4) != 0;
    return pps;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    support::slice_header_parses parses;
    parses.nal.nal_unit_type = static_cast<brenik::h264_nal_unit_type>(input.byte());
    for (unsigned int count = input.byte() % 4; count > 0; --count) {
        const unsigned char sps_id = input.byte();
        parses.sps_store.insert_or_assign(sps_id, sps_from(input));
        const unsigned char pps_id = input.byte();
        parses.pps_store.insert_or_assign(pps_id, pps_from(input));
    }
    fuzz::expect_same_in_a_row(input, parses);
    return 0;
}
