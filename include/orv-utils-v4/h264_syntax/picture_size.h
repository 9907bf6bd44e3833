/// @file
/// The sizes of pictures that follow from an SPS, H.264 clauses 7.4.2.1.1 and 7.4.3.
#pragma once

#include <orv-utils-v4/h264_syntax/seq_parameter_set.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// PicWidthInMbs, (7-13).
inline std::uint64_t PicWidthInMbs(const seq_parameter_set_data& sps) noexcept
{
    return std::uint64_t{sps.pic_width_in_mbs_minus1} + 1;
}

/// PicHeightInMapUnits, (7-16).
inline std::uint64_t PicHeightInMapUnits(const seq_parameter_set_data& sps) noexcept
{
    return std::uint64_t{sps.pic_height_in_map_units_minus1} + 1;
}

/// The product of a width and a height; 2^63 - 1 when it is more, which no picture has.
inline std::uint64_t picture_area(std::uint64_t width, std::uint64_t height) noexcept
{
    constexpr std::uint64_t most = ~std::uint64_t{0} >> 1;
    if ((width | height) >> 31 == 0) // without a division
        return width * height;
    return height != 0 && width > most / height ? most : width * height;
}

/// PicSizeInMapUnits, (7-17).
inline std::uint64_t PicSizeInMapUnits(const seq_parameter_set_data& sps) noexcept
{
    return picture_area(PicWidthInMbs(sps), PicHeightInMapUnits(sps));
}

/// FrameHeightInMbs, (7-18).
inline std::uint64_t FrameHeightInMbs(const seq_parameter_set_data& sps) noexcept
{
    return (sps.frame_mbs_only_flag ? 1 : 2) * PicHeightInMapUnits(sps);
}

/// PicSizeInMbs of a frame or a field, (7-28).
inline std::uint64_t PicSizeInMbs(const seq_parameter_set_data& sps, bool field_pic_flag) noexcept
{
    return picture_area(PicWidthInMbs(sps), FrameHeightInMbs(sps) / (field_pic_flag ? 2 : 1));
}

/// MaxFrameNum, (7-10); of log2_max_frame_num_minus4 above 28, which no header can have, 2^32.
inline std::uint64_t MaxFrameNum(const seq_parameter_set_data& sps) noexcept
{
    return std::uint64_t{1} << (sps.log2_max_frame_num_minus4 > 28 ? 32 : sps.log2_max_frame_num_minus4 + 4);
}

} // namespace orv_utils_v4::h264
