// H.264 clause 7.3.3 for the legacy interface: the first fields of a slice header.
#include <orv-utils-v4/h264_legacy/slice.h>

#include "legacy_bits.h"

int h264_slice_parse(h264_nal_slice_info& info, h264_nal_parser_state& st, h264_sps& sps)
{
    if (st.nal == nullptr || st.nal_fence == nullptr || st.nal >= st.nal_fence)
        return 0;
    be_bitfield bf;
    be_bitfield_open_until(&bf, st.nal, st.nal_fence);
    const orv_utils_v4::legacy::legacy_bits bits{bf, st.nal_fence};
    info.first_mb_in_slice = bits.ue_unseen();
    info.slice_type = bits.ue_unseen();
    info.pic_parameter_set_id = bits.ue_unseen();
    if (sps.separate_colour_plane_flag != 0)
        info.colour_plane_id = bits.u8(2);
    info.frame_num = bits.u(sps.log2_max_frame_num);
    info.field_pic_flag = sps.frame_mbs_only_flag == 1 ? std::uint8_t{0} : bits.u8(1);
    info.bottom_field_flag = info.field_pic_flag == 1 ? bits.u8(1) : std::uint8_t{0};
    return 1;
}
