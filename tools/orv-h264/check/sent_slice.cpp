#include "check/sent_slice.h"

#include <algorithm>

namespace orv_h264 {

namespace {

std::optional<std::uint32_t> slice_id_of(const h264::nal_unit& unit)
{
    if (const auto* const a = std::get_if<h264::slice_data_partition_a_layer_rbsp>(&unit.rbsp))
        return a->slice_id;
    if (const auto* const b = std::get_if<h264::slice_data_partition_b_layer_rbsp>(&unit.rbsp))
        return b->slice_id;
    if (const auto* const c = std::get_if<h264::slice_data_partition_c_layer_rbsp>(&unit.rbsp))
        return c->slice_id;
    return {};
}

void take_header(sent_slice& slice, const h264::slice_header& header)
{
    slice.has_header = true;
    slice.first_mb_in_slice = header.first_mb_in_slice;
    slice.slice_type = header.slice_type;
    slice.pic_parameter_set_id = header.pic_parameter_set_id;
    slice.colour_plane_id = header.colour_plane_id;
    slice.frame_num = header.frame_num;
    slice.field_pic_flag = header.field_pic_flag;
    slice.bottom_field_flag = header.bottom_field_flag;
    slice.idr_pic_id = header.idr_pic_id;
    slice.pic_order_cnt_lsb = header.pic_order_cnt_lsb;
    slice.delta_pic_order_cnt_bottom = header.delta_pic_order_cnt_bottom;
    slice.delta_pic_order_cnt[0] = header.delta_pic_order_cnt[0];
    slice.delta_pic_order_cnt[1] = header.delta_pic_order_cnt[1];
    slice.redundant_pic_cnt = header.redundant_pic_cnt;
    slice.sp_for_switch_flag = header.sp_for_switch_flag;
    slice.slice_group_change_cycle = header.slice_group_change_cycle;
}

bool stands_before_number(const sent_slice& slice, std::uint64_t unit)
{
    return slice.unit < unit;
}

} // namespace

void sent_slices::add(const h264::unit_reading& reading)
{
    const unsigned type = reading.unit.header.nal_unit_type;
    if ((type < 1 || type > 5) && type != 19)
        return;
    sent_slice slice;
    slice.unit = reading.place.number;
    slice.nal_unit_type = reading.unit.header.nal_unit_type;
    slice.nal_ref_idc = reading.unit.header.nal_ref_idc;
    slice.slice_id = slice_id_of(reading.unit);
    const h264::slice_header* const header = h264::slice_header_of(reading.unit);
    if (header != nullptr && !reading.result.failure) {
        take_header(slice, *header);
        const bool same = header->redundant_pic_cnt == redundant_pic_cnt && header->dec_ref_pic_marking == marking;
        slice.marking_as_before = same;
        if (!same)
            marking = header->dec_ref_pic_marking;
        redundant_pic_cnt = header->redundant_pic_cnt;
    }
    slices.push_back(slice);
    if (slices.size() > most)
        slices.pop_front();
}

const sent_slice* sent_slices::find(std::uint64_t unit) const
{
    if (slices.empty() || unit < slices.front().unit)
        return nullptr;
    const std::uint64_t place = unit - slices.front().unit; // where nothing stands between the slices, as a rule
    if (place < slices.size() && slices[place].unit == unit)
        return &slices[place];
    const auto found = std::lower_bound(slices.begin(), slices.end(), unit, stands_before_number);
    return found == slices.end() || found->unit != unit ? nullptr : &*found;
}

void sent_slices::drop_before(std::uint64_t unit)
{
    slices.erase(slices.begin(), std::lower_bound(slices.begin(), slices.end(), unit, stands_before_number));
}

} // namespace orv_h264
