// H.264 clause D.1.4: the pan-scan rectangle SEI message.
#include <orv-utils-v4/h264/nal_sei_pan_scan_rect.h>

#include "resize_counted.h"
#include "syntax_reads.h"

namespace brenik {

// H.264 D.1.4, pan_scan_rect()
bool h264_nal_sei_pan_scan_rect::parse(h2645_common_bitreader& br)
{
    pan_scan_rect_id = br.ue();
    pan_scan_rect_cancel_flag = u<1>(br);
    if (!pan_scan_rect_cancel_flag) {
        pan_scan_cnt_minus1 = br.ue();
        if (!resize_counted(std::uint64_t{pan_scan_cnt_minus1} + 1, rects))
            return false;
        for (rect& r : rects) {
            r.pan_scan_rect_left_offset = br.se();
            r.pan_scan_rect_right_offset = br.se();
            r.pan_scan_rect_top_offset = br.se();
            r.pan_scan_rect_bottom_offset = br.se();
        }
        pan_scan_rect_repetition_period = br.ue();
    }
    return valid = true;
}

} // namespace brenik
