/// @file
/// What follows from parameter sets and slice headers, each with its clause of H.264.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/pic_parameter_set.h>
#include <orv-utils-v4/h264_syntax/picture_size.h>
#include <orv-utils-v4/h264_syntax/seq_parameter_set.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// A size in luma samples.
struct picture_size {
    std::uint64_t width = 0;
    std::uint64_t height = 0;
};

/// The size of a frame as it is decoded, (7-14) and (7-19).
ORV_UTILS_V4_EXPORT picture_size coded_size(const seq_parameter_set_data& sps) noexcept;

/// The size of a frame as it is output, (7-20) to (7-24); 0 by 0 where the cropping leaves nothing.
ORV_UTILS_V4_EXPORT picture_size cropped_size(const seq_parameter_set_data& sps) noexcept;

/// A ratio as it was sent, not reduced; 0 : 0 stands for unspecified.
struct ratio {
    std::uint64_t numerator = 0;
    std::uint64_t denominator = 0;
};

/// Width to height of a sample, Table E-1; 0 : 0 where it is unspecified, reserved, or one of both is 0.
ORV_UTILS_V4_EXPORT ratio sample_aspect_ratio(const vui_parameters& vui) noexcept;

/// Fields in a second, time_scale / num_units_in_tick (E.2.1); 0 : 0 where it is not sent or one of both is 0.
ORV_UTILS_V4_EXPORT ratio field_rate(const vui_parameters& vui) noexcept;

/// Frames in a second: half the field rate (E.2.1).
ORV_UTILS_V4_EXPORT ratio frame_rate(const vui_parameters& vui) noexcept;

/// SubWidthC and SubHeightC, Table 6-1; both 1 where there is no chroma to a picture.
ORV_UTILS_V4_EXPORT picture_size chroma_subsampling(const seq_parameter_set_data& sps) noexcept;

/// BitDepthY, (7-3).
inline std::uint64_t BitDepthY(const seq_parameter_set_data& sps) noexcept
{
    return std::uint64_t{sps.bit_depth_luma_minus8} + 8;
}

/// BitDepthC, (7-5).
inline std::uint64_t BitDepthC(const seq_parameter_set_data& sps) noexcept
{
    return std::uint64_t{sps.bit_depth_chroma_minus8} + 8;
}

/// A row of Table A-1.
struct level_limits {
    const char* name;           ///< "1b", "4.1"
    std::uint32_t MaxMBPS;      ///< macroblocks in a second
    std::uint32_t MaxFS;        ///< macroblocks of a frame
    std::uint32_t MaxDpbMbs;    ///< macroblocks in the decoded picture buffer
    std::uint32_t MaxBR;        ///< 1000 or 1200 bit/s, by profile and kind (A.3.1, A.3.3)
    std::uint32_t MaxCPB;       ///< likewise in bits
    std::uint32_t MaxVmvR;      ///< vertical motion vectors from -MaxVmvR to MaxVmvR - 0.25 luma frame samples
    std::uint32_t MinCR;        ///< least compression
    std::uint32_t MaxMvsPer2Mb; ///< motion vectors of two macroblocks in a row; 0 is no limit
};

/// The limits of the SPS's level, 1b included (A.3.1, A.3.2); null for a level_idc that Table A-1 does not have.
ORV_UTILS_V4_EXPORT const level_limits* limits_of_level(const seq_parameter_set_data& sps) noexcept;

/// MaxDpbFrames, A.3.1 h): 0 to 16; 16 for a level that Table A-1 does not have.
ORV_UTILS_V4_EXPORT std::uint32_t MaxDpbFrames(const seq_parameter_set_data& sps) noexcept;

/// What max_num_reorder_frames and max_dec_frame_buffering are inferred as, E.2.1: 0 in the intra profiles, else
/// MaxDpbFrames.
ORV_UTILS_V4_EXPORT std::uint32_t inferred_reorder_frames(const seq_parameter_set_data& sps) noexcept;

/// The name of the profile, its constraint flags considered (A.2, G.10.1, H.10.1, I.10.1, J.10.1): "Constrained
/// Baseline", "High 4:2:2 Intra"; "" for a profile_idc without a name.
ORV_UTILS_V4_EXPORT const char* profile_name(const seq_parameter_set_data& sps) noexcept;

/// The codec as RFC 6381 writes it, with a null byte: "avc1.64001F".
ORV_UTILS_V4_EXPORT std::array<char, 12> codec_string(const seq_parameter_set_data& sps) noexcept;

/// Scaling lists in the order of the zig-zag scan, clause 7.4.2.1.1.1.
struct scaling_lists {
    std::uint8_t list_4x4[6][16]; ///< Intra Y, Cb, Cr, Inter Y, Cb, Cr
    std::uint8_t list_8x8[6][64]; ///< Intra Y, Inter Y, Intra Cb, Inter Cb, Intra Cr, Inter Cr
};

/// The lists that hold for the pictures of a PPS: its own, with fall-back rule A or B where one was not sent (Table
/// 7-2), else those of the SPS, else Flat_4x4_16 and Flat_8x8_16.
/// @param sps the SPS
/// @param pps null for the lists of the SPS
ORV_UTILS_V4_EXPORT scaling_lists scaling_lists_of(const seq_parameter_set_data& sps,
                                                   const pic_parameter_set_rbsp* pps) noexcept;

/// mapUnitToSliceGroupMap, clause 8.2.2.
/// @param sps the SPS
/// @param pps the PPS
/// @param slice_group_change_cycle of the slice header; types 3 to 5 use it
/// @param map room for PicSizeInMapUnits(sps) entries
/// @param room how many
/// @return false, with nothing written, when the room is smaller, or slice_group_id does not have as many entries
ORV_UTILS_V4_EXPORT bool slice_group_map(const seq_parameter_set_data& sps, const pic_parameter_set_rbsp& pps,
                                         std::uint32_t slice_group_change_cycle, std::uint8_t* map,
                                         std::size_t room) noexcept;

/// The length of frame_num in bits, clause 7.4.3.
inline std::uint64_t frame_num_bits(const seq_parameter_set_data& sps) noexcept
{
    return std::uint64_t{sps.log2_max_frame_num_minus4} + 4;
}

/// The length of pic_order_cnt_lsb in bits, clause 7.4.3.
inline std::uint64_t pic_order_cnt_lsb_bits(const seq_parameter_set_data& sps) noexcept
{
    return std::uint64_t{sps.log2_max_pic_order_cnt_lsb_minus4} + 4;
}

/// The length of slice_group_id in bits, clause 7.4.2.2.
ORV_UTILS_V4_EXPORT unsigned slice_group_id_bits(const pic_parameter_set_rbsp& pps) noexcept;

/// The highest slice_group_change_cycle, clause 7.4.3: Ceil( PicSizeInMapUnits / SliceGroupChangeRate ).
ORV_UTILS_V4_EXPORT std::uint64_t highest_slice_group_change_cycle(const seq_parameter_set_data& sps,
                                                                   const pic_parameter_set_rbsp& pps) noexcept;

/// The length of slice_group_change_cycle in bits, clause 7.4.3.
ORV_UTILS_V4_EXPORT unsigned slice_group_change_cycle_bits(const seq_parameter_set_data& sps,
                                                           const pic_parameter_set_rbsp& pps) noexcept;

/// How many schedules the HRD parameters have, 1 to 32.
inline std::uint32_t schedule_count(const hrd_parameters& hrd) noexcept
{
    constexpr std::uint32_t most = hrd_parameters::most_specifications;
    return hrd.cpb_cnt_minus1 < most ? hrd.cpb_cnt_minus1 + 1 : most;
}

/// BitRate[ SchedSelIdx ], bits in a second, clause E.2.2.
/// @param hrd where bit_rate_scale fits 4 bits, as it is read
/// @param SchedSelIdx below schedule_count()
inline std::uint64_t BitRate(const hrd_parameters& hrd, std::uint32_t SchedSelIdx) noexcept
{
    return (std::uint64_t{hrd.bit_rate_value_minus1[SchedSelIdx]} + 1) << (6 + (hrd.bit_rate_scale & 15U));
}

/// CpbSize[ SchedSelIdx ], bits, clause E.2.2.
/// @param hrd where cpb_size_scale fits 4 bits, as it is read
/// @param SchedSelIdx below schedule_count()
inline std::uint64_t CpbSize(const hrd_parameters& hrd, std::uint32_t SchedSelIdx) noexcept
{
    return (std::uint64_t{hrd.cpb_size_value_minus1[SchedSelIdx]} + 1) << (4 + (hrd.cpb_size_scale & 15U));
}

/// The HRD parameters that picture timing takes its lengths from, clause D.2.3: those for NAL, else those for VCL; null
/// where CpbDpbDelaysPresentFlag is 0.
ORV_UTILS_V4_EXPORT const hrd_parameters* timing_hrd(const vui_parameters& vui) noexcept;

} // namespace orv_utils_v4::h264
