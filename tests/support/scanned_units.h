// The units of an input as the legacy scanner finds them, and the fields of an SPS, for the literal frame scan.
#pragma once

#include "support/literal_frame_scan.h"

#include <orv-utils-v4/h264_legacy/nal_parser.h>
#include <orv-utils-v4/h264_legacy/sps.h>

#include <cstddef>

namespace support {

/// The units of `input` for a scratch buffer of `scratch_size` bytes.
template <typename Memory>
literal::placed_units scanned_units(const Memory& input, int nal_length_size, std::size_t scratch_size)
{
    const Memory scratch(scratch_size);
    h264_nal_parser_state st;
    literal::placed_units all;
    const unsigned char* position = input.begin();
    for (;;) {
        position = h264_nal_parser_scan(&st, scratch.begin(), scratch_size, position, input.end(),
                                        static_cast<unsigned int>(nal_length_size));
        const auto next = static_cast<std::size_t>(position - input.begin());
        if (st.found == 0) {
            all.end = next;
            return all;
        }
        all.units.push_back({static_cast<std::size_t>(st.raw_nal - input.begin()), next, st.nal_unit_type,
                             literal::bytes(st.nal, st.nal_fence), st.overflow != 0});
    }
}

/// What the literal frame scan keeps of `seq`.
inline literal::frame_sps frame_sps_of(const h264_sps& seq)
{
    return {seq.separate_colour_plane_flag,
            seq.log2_max_frame_num,
            seq.frame_mbs_only_flag,
            seq.nal_hrd_parameters_present_flag,
            seq.vcl_hrd_parameters_present_flag,
            seq.cpb_removal_delay_length,
            seq.dpb_output_delay_length,
            seq.pic_struct_present_flag};
}

} // namespace support
