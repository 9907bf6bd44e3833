// H.264 clause D.1.8: the recovery point SEI message.
#include <orv-utils-v4/h264/nal_sei_recovery_point.h>

#include "syntax_reads.h"

namespace brenik {

// H.264 D.1.8, recovery_point()
bool h264_nal_sei_recovery_point::parse(h2645_common_bitreader& br)
{
    recovery_frame_cnt = br.ue();
    exact_match_flag = u<1>(br);
    broken_link_flag = u<1>(br);
    changing_slice_group_idc = u<2>(br);
    return valid = true;
}

} // namespace brenik
