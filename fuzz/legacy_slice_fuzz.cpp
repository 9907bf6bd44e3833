// The legacy interface's slice against the literal one. Input: a byte of flags of the SPS (bit 0
// separate_colour_plane_flag, bit 1 frame_mbs_only_flag), log2_max_frame_num, and then slices that are read into one
// record one after another, each as a length byte and the data.
#include "input.h"

#include "support/legacy_parse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    support::legacy_slice_parses parses;
    const unsigned char flags = input.byte();
    parses.sps.separate_colour_plane_flag = flags & 1;
    parses.sps.frame_mbs_only_flag = flags >> 1 & 1;
    parses.sps.log2_max_frame_num = input.byte();
    h264_nal_slice_info info;
    for (bool more = true; more;) {
        const std::size_t length = input.byte();
        const fuzz::exact_block block = input.block(length);
        more = block.size() != 0;
        fuzz::expect_none(parses(info, {block.begin(), block.end()}).difference);
    }
    return 0;
}
