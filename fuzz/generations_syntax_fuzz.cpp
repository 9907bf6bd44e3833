// The syntax of both interfaces over the same bits: an SPS, then a slice header and a picture timing that are read with
// it. Where the two part on purpose, nothing is compared (support/both_generations.h says where). Input: a byte of
// which bit 0 makes the slice that of an IDR picture and bit 1 sets a flag of the PPS; and the SPS, the slice header
// and an RBSP of SEI messages, each behind a byte of length.
#include "input.h"

#include "support/both_generations.h"

#include <orv-utils-v4/h264.h>

namespace {

/// What both made of an SPS.
struct read_sps {
    brenik::h264_nal_sps newer;
    h264_sps legacy;
    bool same = false; ///< nothing parts them
};

/// Whether there are 24 zero bits in a row: a code of so many that no field tells, as the deltas of scaling lists are.
bool has_long_code(const fuzz::exact_block& rbsp)
{
    unsigned int zeros = 0;
    for (const unsigned char byte : rbsp)
        for (unsigned int mask = 0x80; mask != 0; mask >>= 1) {
            zeros = (byte & mask) == 0 ? zeros + 1 : 0;
            if (zeros == 24)
                return true;
        }
    return false;
}

read_sps read_with_both(const fuzz::exact_block& rbsp)
{
    read_sps read;
    support::parse_fenced(read.legacy, rbsp.begin(), rbsp.end());
    try {
        brenik::h2645_common_bitreader br(rbsp.begin(), rbsp.end());
        read.same = read.newer.parse(br) && support::parting(read.newer) == nullptr;
    } catch (const brenik::h2645_common_malformed_code&) {
        // The legacy interface has no malformed codes.
    }
    if (read.newer.seq_scaling_matrix_present_flag && has_long_code(rbsp))
        read.same = false;
    if (read.same)
        fuzz::expect_none(
            support::difference(support::fields_of(support::legacy_of(read.newer)), support::fields_of(read.legacy)));
    return read;
}

constexpr std::uint32_t first_long_code = 16777215;

void read_slices(const read_sps& read, unsigned int flags, const fuzz::exact_block& rbsp)
{
    brenik::h264_nal_pps pps;
    pps.valid = true;
    pps.seq_parameter_set_id = read.newer.seq_parameter_set_id;
    pps.bottom_field_pic_order_in_frame_present_flag = (flags & 2) != 0;
    brenik::h2645_common_base_store<brenik::h264_nal_sps> sps_store;
    sps_store.insert_or_assign(pps.seq_parameter_set_id, read.newer);
    brenik::h2645_common_base_store<brenik::h264_nal_pps> pps_store;
    pps_store.insert_or_assign(0, pps);
    brenik::h264_nal nal;
    nal.decode_header((flags & 1) != 0 ? 0x65 : 0x41);

    brenik::h264_nal_slice_header slice;
    try {
        brenik::h2645_common_bitreader br(rbsp.begin(), rbsp.end());
        if (!slice.parse(br, sps_store, pps_store, nal))
            return;
    } catch (const brenik::h2645_common_malformed_code&) {
        return;
    }
    if (slice.first_mb_in_slice >= first_long_code || slice.slice_type >= first_long_code ||
        read.legacy.log2_max_frame_num > 24)
        return;
    h264_nal_slice_info info;
    h264_sps seq = read.legacy;
    fuzz::expect(support::parse_slice(info, {rbsp.begin(), rbsp.end()}, seq) == 1, "the legacy slice is read, too");
    fuzz::expect_none(support::difference(slice, info));
}

void read_messages(const read_sps& read, const fuzz::exact_block& rbsp)
{
    fuzz::expect_none(support::messages_difference(rbsp.begin(), rbsp.end(), [&](const h264_sei_pair& pair) {
        const bool same =
            pair.payload_type == 1 && pair.payload_size != 0 && support::same_widths(read.newer, read.legacy);
        return same ? support::timing_difference(read.newer, read.legacy, pair) : std::string();
    }));
}

fuzz::exact_block take_block(fuzz::input& from)
{
    const std::size_t size = from.byte();
    return from.block(size);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int flags = input.byte();
    const read_sps read = read_with_both(take_block(input));
    if (!read.same)
        return 0;
    read_slices(read, flags, take_block(input));
    read_messages(read, take_block(input));
    return 0;
}
