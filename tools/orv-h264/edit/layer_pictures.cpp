#include "edit/layer_pictures.h"

namespace orv_h264::editing {

namespace {

// H.264 7.4.1.2.4
bool is_of_another_picture(const numbered_slice& a, const numbered_slice& b)
{
    const h264::slice_header& x = a.slice;
    const h264::slice_header& y = b.slice;
    return x.frame_num != y.frame_num || x.pic_parameter_set_id != y.pic_parameter_set_id ||
           x.field_pic_flag != y.field_pic_flag || x.bottom_field_flag != y.bottom_field_flag ||
           (a.nal_ref_idc == 0) != (b.nal_ref_idc == 0) || x.pic_order_cnt_lsb != y.pic_order_cnt_lsb ||
           x.delta_pic_order_cnt_bottom != y.delta_pic_order_cnt_bottom ||
           x.delta_pic_order_cnt[0] != y.delta_pic_order_cnt[0] ||
           x.delta_pic_order_cnt[1] != y.delta_pic_order_cnt[1] || a.idr != b.idr || x.idr_pic_id != y.idr_pic_id;
}

} // namespace

void layer_pictures::see(const numbered_slice& slice)
{
    if (last && is_of_another_picture({last->sps, last->pps, last->header, last->nal_ref_idc, last->idr}, slice))
        ++picture;
    last = std::make_unique<last_slice>(last_slice{slice.pps, slice.sps, slice.slice, slice.nal_ref_idc, slice.idr});
    numbers.see(slice, picture);
}

} // namespace orv_h264::editing
