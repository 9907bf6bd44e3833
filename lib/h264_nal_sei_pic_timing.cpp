// H.264 clause D.1.3: the picture timing SEI message.
#include <orv-utils-v4/h264/nal_sei_pic_timing.h>

#include "resize_counted.h"
#include "syntax_reads.h"

#include <algorithm>

namespace brenik {

namespace {

using timestamp_t = h264_nal_sei_pic_timing::timestamp_t;

constexpr std::uint8_t first_of_many_clock_ts = 3; // the pic_struct values below have one clock timestamp

/// The two's complement number of `width` bits.
std::int32_t sign_extended(std::uint32_t raw, unsigned int width)
{
    const bool negative = width >= 1 && width < 32 && (raw >> (width - 1)) % 2 == 1;
    return static_cast<std::int32_t>(negative ? raw | (~std::uint32_t{0} << width) : raw);
}

void parse_time_of_day(timestamp_t& t, h2645_common_bitreader& br)
{
    if (t.full_timestamp_flag) {
        t.seconds_flag = true;
        t.seconds_value = u<6>(br);
        t.minutes_flag = true;
        t.minutes_value = u<6>(br);
        t.hours_flag = true;
        t.hours_value = u<5>(br);
        return;
    }
    t.seconds_flag = u<1>(br);
    if (!t.seconds_flag)
        return;
    t.seconds_value = u<6>(br);
    t.minutes_flag = u<1>(br);
    if (!t.minutes_flag)
        return;
    t.minutes_value = u<6>(br);
    t.hours_flag = u<1>(br);
    if (t.hours_flag)
        t.hours_value = u<5>(br);
}

void parse_timestamp(timestamp_t& t, h2645_common_bitreader& br, std::uint8_t time_offset_length)
{
    t.clock_timestamp_flag = u<1>(br);
    if (!t.clock_timestamp_flag)
        return;
    t.ct_type = u<2>(br);
    t.nuit_field_based_flag = u<1>(br);
    t.counting_type = u<5>(br);
    t.full_timestamp_flag = u<1>(br);
    t.discontinuity_flag = u<1>(br);
    t.cnt_dropped_flag = u<1>(br);
    t.n_frames = u<8>(br);
    parse_time_of_day(t, br);
    if (time_offset_length > 0)
        t.time_offset = sign_extended(br.get_wide(time_offset_length), time_offset_length);
}

} // namespace

// H.264 D.1.3, pic_timing()
bool h264_nal_sei_pic_timing::parse(h2645_common_bitreader& br, const h264_nal_sps& sps)
{
    const h264_vui_parameters& vui = sps.vui;
    // The standard has cpb_removal_delay_length_minus1 and dpb_output_delay_length_minus1 here.
    const auto delay_length = static_cast<std::uint8_t>(std::max(vui.nal_hrd.initial_cpb_removal_delay_length_minus1,
                                                                 vui.vcl_hrd.initial_cpb_removal_delay_length_minus1) +
                                                        1);
    const std::uint8_t time_offset_length = std::max(vui.nal_hrd.time_offset_length, vui.vcl_hrd.time_offset_length);
    const bool CpbDpbDelaysPresentFlag = vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag;

    if (CpbDpbDelaysPresentFlag) {
        cpb_removal_delay = br.get_wide(delay_length);
        dpb_output_delay = br.get_wide(delay_length);
    }
    if (vui.pic_struct_present_flag) {
        pic_struct = u<4>(br);
        if (!resize_counted(NumClockTS(), timestamps))
            return false;
        for (timestamp_t& timestamp : timestamps)
            parse_timestamp(timestamp, br, time_offset_length);
    }
    return valid = true;
}

bool h264_nal_sei_pic_timing::parse(h2645_common_bitreader& br, const h2645_common_base_store<h264_nal_sps>& sps_store)
{
    const bool none_is_current = sps_store.current_id() == h2645_common_base_store<h264_nal_sps>::no_current_id;
    const h264_nal_sps* const sps = none_is_current ? nullptr : sps_store.find(sps_store.current_id());
    if (sps == nullptr)
        return valid = false;
    return parse(br, *sps);
}

std::uint32_t h264_nal_sei_pic_timing::NumClockTS() const
{
    constexpr std::uint8_t clock_ts[] = {2, 2, 3, 3, 2, 3};
    const auto index = static_cast<std::uint8_t>(pic_struct - first_of_many_clock_ts);
    return index < std::size(clock_ts) ? clock_ts[index] : 1;
}

const char* h264_nal_sei_pic_timing::pic_struct_to_str() const
{
    constexpr const char* table_d_1[] = {
        "Progressive frame",
        "Top field",
        "Bottom field",
        "Top field, bottom field, in that order",
        "Bottom field, top field, in that order",
        "Top field, bottom field, top field repeated, in that order",
        "Bottom field, top field, bottom field repeated, in that order",
        "Frame doubling",
        "Frame tripling",
    };
    return pic_struct < std::size(table_d_1) ? table_d_1[pic_struct] : "?";
}

const char* h264_nal_sei_pic_timing::timestamp_t::ct_type_to_str() const
{
    switch (ct_type) {
    case 0:
        return "progressive";
    case 1:
        return "interlaced";
    default:
        return "?";
    }
}

} // namespace brenik
