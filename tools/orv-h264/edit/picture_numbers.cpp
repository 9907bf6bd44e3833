#include "edit/picture_numbers.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

bool count_alike(const numbered_slice& old, const h264::pic_parameter_set_rbsp& pps,
                 const h264::seq_parameter_set_data& sps)
{
    return old.sps.pic_order_cnt_type == sps.pic_order_cnt_type &&
           old.sps.log2_max_pic_order_cnt_lsb_minus4 == sps.log2_max_pic_order_cnt_lsb_minus4 &&
           old.pps.bottom_field_pic_order_in_frame_present_flag == pps.bottom_field_pic_order_in_frame_present_flag;
}

/// A reference is named by differences that go around MaxPicNum, and would be another one under another MaxPicNum
/// (8.2.4.3.1). Those that lead to a picture before the current one, and less than MaxPicNum before it, do not.
template <class List>
bool goes_around(const List& list, std::int64_t MaxPicNum)
{
    std::int64_t from_current = 0;
    for (const h264::pic_num_modification& m : list) {
        const std::int64_t difference = std::int64_t{m.abs_diff_pic_num_minus1} + 1;
        if (m.modification_of_pic_nums_idc == 0)
            from_current -= difference;
        else if (m.modification_of_pic_nums_idc == 1)
            from_current += difference;
        if (from_current > 0 || from_current <= -MaxPicNum)
            return true;
    }
    return false;
}

} // namespace

std::uint64_t picture_numbers::frame_counter::next(const numbered_slice& slice)
{
    const std::uint32_t frame_num = slice.slice.frame_num;
    if (slice.idr)
        offset = 0;
    else if (previous > frame_num)
        offset += h264::MaxFrameNum(slice.sps);
    const std::uint64_t result = offset + frame_num;
    previous = frame_num;
    if (h264::has_operation_5(slice.slice)) {
        previous = 0;
        offset = 0;
    }
    return result;
}

void picture_numbers::see(const numbered_slice& old, std::uint64_t picture)
{
    if (current == picture)
        return;
    current = picture;
    compared = false;
    max_frame_num = h264::MaxFrameNum(old.sps);
    frame = old_frames.next(old);
    order = old_orders.next(old.sps, old.slice, old.nal_ref_idc, old.idr);
}

void picture_numbers::renumber(h264::slice_header& header, const numbered_slice& old,
                               const h264::pic_parameter_set_rbsp& new_pps,
                               const h264::seq_parameter_set_data& new_sps) const
{
    if (h264::MaxFrameNum(old.sps) != h264::MaxFrameNum(new_sps))
        header.frame_num = static_cast<std::uint32_t>(frame % h264::MaxFrameNum(new_sps));
    if (new_sps.pic_order_cnt_type != 0 || count_alike(old, new_pps, new_sps) ||
        new_sps.log2_max_pic_order_cnt_lsb_minus4 > 12)
        return;
    const std::int64_t own = header.bottom_field_flag ? order.bottom : order.top;
    const std::int64_t mask = (std::int64_t{16} << new_sps.log2_max_pic_order_cnt_lsb_minus4) - 1;
    header.pic_order_cnt_lsb = static_cast<std::uint32_t>(own & mask);
    const std::int64_t apart = order.bottom - order.top;
    const bool bottom_sent = new_pps.bottom_field_pic_order_in_frame_present_flag && !header.field_pic_flag;
    header.delta_pic_order_cnt_bottom =
        bottom_sent && apart == static_cast<std::int32_t>(apart) ? static_cast<std::int32_t>(apart) : 0;
}

std::optional<std::string> picture_numbers::compare(const numbered_slice& now)
{
    if (!compared) {
        new_frame = new_frames.next(now);
        new_order = new_orders.next(now.sps, now.slice, now.nal_ref_idc, now.idr);
        compared = true;
    }
    if (new_frame != frame)
        return fmt::format("frame {} of its sequence by frame_num would be frame {} (H.264 7.4.3)", frame, new_frame);
    if (new_order.top != order.top || new_order.bottom != order.bottom)
        return fmt::format("picture order count {} would be {} (H.264 8.2.1)", order.lower(), new_order.lower());
    const h264::ref_pic_list_modification& lists = now.slice.ref_pic_list_modification;
    const std::uint64_t MaxFrameNum = h264::MaxFrameNum(now.sps);
    const auto MaxPicNum = static_cast<std::int64_t>(MaxFrameNum * (now.slice.field_pic_flag ? 2 : 1));
    if (MaxFrameNum != max_frame_num && (goes_around(lists.l0, MaxPicNum) || goes_around(lists.l1, MaxPicNum)))
        return std::string("a reference list names a picture around MaxPicNum (H.264 8.2.4.3.1)");
    return std::nullopt;
}

} // namespace orv_h264
