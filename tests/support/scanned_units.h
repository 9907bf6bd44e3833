// The units of an input as the legacy scanner finds them, for the literal frame scan.
#pragma once

#include "support/literal_frame_scan.h"

#include <orv-utils-v4/h264_legacy/nal_parser.h>

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

} // namespace support
