#include "edit/picture_numbers.h"

#include <algorithm>

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

std::uint64_t MaxPicNum(const h264::seq_parameter_set_data& sps, const h264::slice_header& slice)
{
    return h264::MaxFrameNum(sps) * (slice.field_pic_flag ? 2 : 1);
}

bool is_short_term(const h264::pic_num_modification& m)
{
    return m.modification_of_pic_nums_idc <= 1;
}

/// Writes the modifications anew, for pictures so far before the current one.
template <class List>
void rewrite_modifications(List& list, const std::vector<std::uint64_t>& distances, std::uint64_t new_MaxPicNum)
{
    std::uint64_t predicted = 0;
    std::size_t next = 0;
    for (h264::pic_num_modification& m : list) {
        if (!is_short_term(m))
            continue;
        const std::uint64_t distance = distances[next++];
        const bool farther = distance >= predicted; // once more around for the same picture
        const std::uint64_t apart = farther ? distance - predicted : predicted - distance;
        m.modification_of_pic_nums_idc = farther ? 0 : 1;
        m.abs_diff_pic_num_minus1 = static_cast<std::uint32_t>((apart == 0 ? new_MaxPicNum : apart) - 1);
        predicted = distance;
    }
}

} // namespace

// H.264 8.2.4.3.1
std::vector<std::uint64_t> distances_of(const modification_list& list, std::uint64_t max_pic_num)
{
    std::vector<std::uint64_t> distances;
    std::uint64_t distance = 0;
    for (const h264::pic_num_modification& m : list) {
        if (!is_short_term(m))
            continue;
        const std::uint64_t apart = (std::uint64_t{m.abs_diff_pic_num_minus1} + 1) % max_pic_num;
        distance = (distance + (m.modification_of_pic_nums_idc == 0 ? apart : max_pic_num - apart)) % max_pic_num;
        distances.push_back(distance);
    }
    return distances;
}

bool name_the_same(const modification_list& before, const h264::seq_parameter_set_data& sps_before,
                   const modification_list& after, const h264::seq_parameter_set_data& sps_after, bool field)
{
    const std::uint64_t fields = field ? 2 : 1;
    const auto same_entry = [](const h264::pic_num_modification& a, const h264::pic_num_modification& b) {
        if (is_short_term(a) || is_short_term(b))
            return is_short_term(a) == is_short_term(b); // their distances are compared
        return a == b;
    };
    return std::equal(before.begin(), before.end(), after.begin(), after.end(), same_entry) &&
           distances_of(before, h264::MaxFrameNum(sps_before) * fields) ==
               distances_of(after, h264::MaxFrameNum(sps_after) * fields);
}

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
    frame = old_frames.next(old);
    order = old_orders.next(old.sps, old.slice, old.nal_ref_idc, old.idr);
}

void picture_numbers::renumber(h264::slice_header& header, const numbered_slice& old,
                               const h264::pic_parameter_set_rbsp& new_pps,
                               const h264::seq_parameter_set_data& new_sps) const
{
    if (h264::MaxFrameNum(old.sps) != h264::MaxFrameNum(new_sps)) {
        header.frame_num = static_cast<std::uint32_t>(frame % h264::MaxFrameNum(new_sps));
        h264::ref_pic_list_modification& lists = header.ref_pic_list_modification;
        const std::uint64_t before = MaxPicNum(old.sps, header);
        rewrite_modifications(lists.l0, distances_of(lists.l0, before), MaxPicNum(new_sps, header));
        rewrite_modifications(lists.l1, distances_of(lists.l1, before), MaxPicNum(new_sps, header));
    }
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
    return std::nullopt;
}

} // namespace orv_h264
