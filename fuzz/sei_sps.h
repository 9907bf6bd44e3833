// The SPSs of the SEI entry points, out of an input's first bytes.
#pragma once

#include "structure.h"

#include "support/literal_sei_parse.h"

namespace fuzz {

/// Three bytes: the number of CPBs less one, where 255 stands for the largest; the length of the initial delay less
/// one; the length of the time offset.
inline literal::stored_hrd take_hrd(input& from, bool present)
{
    const unsigned char count = from.byte();
    const unsigned char delay_length = from.byte();
    return {present, count == 255 ? 0xFFFFFFFF : std::int64_t{count}, delay_length, from.byte()};
}

/// Seven bytes: which of the NAL HRD (bit 0), the VCL HRD (bit 1) and pic_struct (bit 2) are present; both HRDs.
inline literal::stored_vui take_vui(input& from)
{
    const unsigned char present = from.byte();
    literal::stored_vui vui;
    vui.nal = take_hrd(from, (present & 1) != 0);
    vui.vcl = take_hrd(from, (present & 2) != 0);
    vui.pic_struct_present_flag = (present & 4) != 0;
    return vui;
}

} // namespace fuzz
