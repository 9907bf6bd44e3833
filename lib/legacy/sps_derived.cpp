// What follows from the fields of a legacy SPS: the cropped size (H.264 clause 7.4.2.1.1) and the field rate (E.2.1).
#include <orv-utils-v4/h264_legacy/sps.h>

#include <algorithm>

namespace {

/// `size` without what is cropped, never negative; of a number above 32 bits the low 32.
int cropped(std::int64_t size, std::int64_t crop_unit, std::int64_t offsets)
{
    const std::int64_t left = std::max<std::int64_t>(size - crop_unit * offsets, 0);
    return std::max(static_cast<std::int32_t>(left), 0);
}

} // namespace

// The getters are not const: their signatures are the interface.
// NOLINTBEGIN(readability-make-member-function-const)

int h264_sps::get_final_frame_width()
{
    const bool chroma_is_halved = chroma_format_idc == 1 || chroma_format_idc == 2;
    const std::int64_t offsets = std::int64_t{frame_crop_left_offset} + frame_crop_right_offset;
    return cropped(std::int64_t{pic_width_in_mbps} * 16, chroma_is_halved ? 2 : 1,
                   frame_cropping_flag != 0 ? offsets : 0);
}

int h264_sps::get_final_frame_height()
{
    const std::int64_t fields = 2 - frame_mbs_only_flag;
    const std::int64_t offsets = std::int64_t{frame_crop_top_offset} + frame_crop_bottom_offset;
    return cropped(std::int64_t{pic_height_in_map_units} * 16 * fields, chroma_format_idc == 1 ? 2 * fields : fields,
                   frame_cropping_flag != 0 ? offsets : 0);
}

int h264_sps::get_final_field_rate(unsigned& num, unsigned& den)
{
    if (timing_info_present_flag == 0 || time_scale == 0 || num_units_in_ticks == 0)
        return 0;
    den = num_units_in_ticks;
    num = time_scale;
    return 1;
}

// NOLINTEND(readability-make-member-function-const)
