// H.264 clauses 7.3.2.1 and 7.4.2.1: the sequence parameter set, and the picture size that follows from it.
#include <orv-utils-v4/h264/nal_sps.h>

#include "resize_counted.h"
#include "scaling_lists.h"
#include "syntax_reads.h"
#include "wrapping.h"

#include <algorithm>

namespace brenik {

template class h2645_common_base_store<h264_nal_sps>;

namespace {

// The profiles whose SPS tells the chroma format, H.264 7.3.2.1.1
constexpr std::uint8_t high_profiles[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135};

bool is_high_profile(std::uint8_t profile_idc)
{
    return std::find(std::begin(high_profiles), std::end(high_profiles), profile_idc) != std::end(high_profiles);
}

bool parse_high_profile_syntax(h264_nal_sps& sps, h2645_common_bitreader& br)
{
    sps.high_profile_syntax_present = true;
    sps.chroma_format_idc = br.ue();
    if (sps.chroma_format_idc == 3)
        sps.separate_colour_plane_flag = u<1>(br);
    sps.bit_depth_luma_minus8 = br.ue();
    sps.bit_depth_chroma_minus8 = br.ue();
    sps.qpprime_y_zero_transform_bypass_flag = u<1>(br);
    sps.seq_scaling_matrix_present_flag = u<1>(br);
    return !sps.seq_scaling_matrix_present_flag ||
           (parse_scaling_lists(br, sps.scaling_list_4x4, sps.scaling_list_4x4.size(), entries_4x4) &&
            parse_scaling_lists(br, sps.scaling_list_8x8, scaling_list_8x8_count(sps.chroma_format_idc), entries_8x8));
}

bool parse_pic_order_cnt(h264_nal_sps& sps, h2645_common_bitreader& br)
{
    sps.pic_order_cnt_type = br.ue();
    if (sps.pic_order_cnt_type == 0) {
        sps.log2_max_pic_order_cnt_lsb_minus4 = br.ue();
    } else if (sps.pic_order_cnt_type == 1) {
        sps.delta_pic_order_always_zero_flag = u<1>(br);
        sps.offset_for_non_ref_pic = br.se();
        sps.offset_for_top_to_bottom_field = br.se();
        sps.num_ref_frames_in_pic_order_cnt_cycle = br.ue();
        if (!resize_counted(sps.num_ref_frames_in_pic_order_cnt_cycle, sps.offset_for_ref_frame))
            return false;
        for (std::int32_t& offset : sps.offset_for_ref_frame)
            offset = br.se();
    }
    return true;
}

/// Field rows, or frame rows where every picture is a frame, to frame rows.
std::uint32_t frame_rows(const h264_nal_sps& sps, std::uint32_t rows)
{
    return wrapping_mul(rows, sps.frame_mbs_only_flag ? 1 : 2);
}

} // namespace

// H.264 7.3.2.1, seq_parameter_set_rbsp()
bool h264_nal_sps::parse(h2645_common_bitreader& br)
{
    profile_idc = u<8>(br);
    constraint_set0_flag = u<1>(br);
    constraint_set1_flag = u<1>(br);
    constraint_set2_flag = u<1>(br);
    constraint_set3_flag = u<1>(br);
    constraint_set4_flag = u<1>(br);
    constraint_set5_flag = u<1>(br);
    reserved_zero_2bits = u<2>(br);
    level_idc = u<8>(br);
    seq_parameter_set_id = br.ue();
    if (!is_high_profile(profile_idc))
        chroma_format_idc = 1;
    else if (!parse_high_profile_syntax(*this, br))
        return valid = false;
    SubWidthC = chroma_format_idc == 1 || chroma_format_idc == 2 ? 2 : 1;
    SubHeightC = chroma_format_idc == 1 ? 2 : 1;
    log2_max_frame_num_minus4 = br.ue();
    if (!parse_pic_order_cnt(*this, br))
        return false;
    max_num_ref_frames = br.ue();
    gaps_in_frame_num_value_allowed_flag = u<1>(br);
    pic_width_in_mbs_minus1 = br.ue();
    pic_height_in_map_units_minus1 = br.ue();
    frame_mbs_only_flag = u<1>(br);
    if (!frame_mbs_only_flag)
        mb_adaptive_frame_field_flag = u<1>(br);
    direct_8x8_inference_flag = u<1>(br);
    frame_cropping_flag = u<1>(br);
    if (frame_cropping_flag) {
        frame_crop_left_offset = br.ue();
        frame_crop_right_offset = br.ue();
        frame_crop_top_offset = br.ue();
        frame_crop_bottom_offset = br.ue();
    }
    vui_parameters_present_flag = u<1>(br);
    if (vui_parameters_present_flag && !vui.parse(br))
        return valid = false;
    return valid = h2645_common_skip_rbsp_trailing_bits(br);
}

// H.264 7.4.2.1.1

std::uint32_t h264_nal_sps::getCropLeft() const
{
    return wrapping_mul(SubWidthC, frame_crop_left_offset);
}

std::uint32_t h264_nal_sps::getCropRight() const
{
    return wrapping_mul(SubWidthC, frame_crop_right_offset);
}

std::uint32_t h264_nal_sps::getCropTop() const
{
    return frame_rows(*this, wrapping_mul(SubHeightC, frame_crop_top_offset));
}

std::uint32_t h264_nal_sps::getCropBottom() const
{
    return frame_rows(*this, wrapping_mul(SubHeightC, frame_crop_bottom_offset));
}

std::uint32_t h264_nal_sps::getPicWidth() const
{
    return wrapping_mul(wrapping_add(pic_width_in_mbs_minus1, 1), 16);
}

std::uint32_t h264_nal_sps::getCroppedPicWidth() const
{
    return wrapping_sub(wrapping_sub(getPicWidth(), getCropLeft()), getCropRight());
}

std::uint32_t h264_nal_sps::getPicHeight() const
{
    return frame_rows(*this, wrapping_mul(wrapping_add(pic_height_in_map_units_minus1, 1), 16));
}

std::uint32_t h264_nal_sps::getCroppedPicHeight() const
{
    return wrapping_sub(wrapping_sub(getPicHeight(), getCropTop()), getCropBottom());
}

} // namespace brenik
