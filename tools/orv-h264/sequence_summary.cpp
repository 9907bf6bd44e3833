#include "sequence_summary.h"

#include <numeric>

namespace orv_h264 {

namespace {

fraction in_lowest_terms(std::uint64_t numerator, std::uint64_t denominator)
{
    const std::uint64_t divisor = std::gcd(numerator, denominator);
    return {numerator / divisor, denominator / divisor};
}

} // namespace

bool begins_picture(const brenik::h264_nal_slice_header& slice)
{
    return slice.first_mb_in_slice == 0 && slice.redundant_pic_cnt == 0 && slice.colour_plane_id == 0;
}

namespace {

void count_picture(sequence_summary& sequence, const brenik::h264_nal_slice_header& slice)
{
    const bool mbaff = sequence.sps.mb_adaptive_frame_field_flag && !sequence.sps.frame_mbs_only_flag;
    if (slice.field_pic_flag) {
        ++sequence.field_pictures;
        if (!sequence.top_field_first)
            sequence.top_field_first = !slice.bottom_field_flag;
    } else if (mbaff) {
        ++sequence.mbaff_pictures;
    } else {
        ++sequence.frame_pictures;
    }
}

} // namespace

void add_slice(sequence_summary& sequence, const brenik::h264_nal_slice_header& slice, const brenik::h264_nal_pps& pps)
{
    if (pps.entropy_coding_mode_flag)
        sequence.cabac = true;
    else
        sequence.cavlc = true;
    if (begins_picture(slice))
        count_picture(sequence, slice);
}

// H.264 Table D-1
void add_pic_timing(sequence_summary& sequence, const brenik::h264_nal_sei_pic_timing& timing)
{
    constexpr std::uint32_t top_bottom = 3;
    constexpr std::uint32_t bottom_top = 4;
    constexpr std::uint32_t top_bottom_top = 5;
    constexpr std::uint32_t bottom_top_bottom = 6;
    const auto pic_struct = static_cast<std::uint32_t>(timing.pic_struct);
    if (sequence.top_field_first)
        return;
    if (pic_struct == top_bottom || pic_struct == top_bottom_top)
        sequence.top_field_first = true;
    else if (pic_struct == bottom_top || pic_struct == bottom_top_bottom)
        sequence.top_field_first = false;
}

std::string scan_type(const sequence_summary& sequence)
{
    if (sequence.sps.frame_mbs_only_flag)
        return "progressive";
    const bool mbaff = sequence.mbaff_pictures > 0;
    const bool frames = mbaff || sequence.frame_pictures > 0;
    if (sequence.field_pictures > 0)
        return !frames ? "interlaced" : mbaff ? "PAFF with MBAFF" : "PAFF";
    return mbaff ? "MBAFF" : frames ? "progressive frames, fields allowed" : "fields allowed";
}

std::uint32_t chroma_format_of(const brenik::h264_nal_sps& sps)
{
    return sps.high_profile_syntax_present ? sps.chroma_format_idc : 1;
}

fraction half(fraction whole)
{
    return in_lowest_terms(whole.numerator, whole.denominator * 2);
}

std::optional<fraction> field_rate(const brenik::h264_nal_sps& sps)
{
    const brenik::h264_vui_parameters& vui = sps.vui;
    if (!sps.vui_parameters_present_flag || !vui.timing_info_present_flag || vui.num_units_in_tick == 0 ||
        vui.time_scale == 0)
        return {};
    return in_lowest_terms(vui.time_scale, vui.num_units_in_tick);
}

std::optional<fraction> sample_aspect_ratio(const brenik::h264_nal_sps& sps)
{
    const brenik::h264_vui_parameters& vui = sps.vui;
    if (!sps.vui_parameters_present_flag || !vui.aspect_ratio_info_present_flag || vui.sar_width == 0 ||
        vui.sar_height == 0)
        return {};
    return in_lowest_terms(vui.sar_width, vui.sar_height);
}

picture_size cropped_size(const brenik::h264_nal_sps& sps)
{
    const bool crops_more_than_there_is = std::uint64_t{sps.getCropLeft()} + sps.getCropRight() >= sps.getPicWidth() ||
                                          std::uint64_t{sps.getCropTop()} + sps.getCropBottom() >= sps.getPicHeight();
    if (crops_more_than_there_is)
        return {};
    return {sps.getCroppedPicWidth(), sps.getCroppedPicHeight()};
}

picture_size display_size(const brenik::h264_nal_sps& sps)
{
    picture_size size = cropped_size(sps);
    if (const auto shape = sample_aspect_ratio(sps))
        size.width = (size.width * shape->numerator + shape->denominator / 2) / shape->denominator;
    return size;
}

std::vector<cpb_schedule> schedules_of(const brenik::h264_hrd_parameters& hrd)
{
    std::vector<cpb_schedule> schedules;
    for (std::size_t i = 0; i < hrd.cbr_flag.size(); ++i)
        schedules.push_back({(std::uint64_t{hrd.bit_rate_value_minus1[i]} + 1) << (6 + hrd.bit_rate_scale),
                             (std::uint64_t{hrd.cpb_size_value_minus1[i]} + 1) << (4 + hrd.cpb_size_scale),
                             hrd.cbr_flag[i] != 0});
    return schedules;
}

} // namespace orv_h264
