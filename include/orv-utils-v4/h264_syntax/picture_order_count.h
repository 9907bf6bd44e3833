/// @file
/// Picture order counts, H.264 clause 8.2.1.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/seq_parameter_set.h>
#include <orv-utils-v4/h264_syntax/slice_header.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// The slice ends with operation 5: all pictures before it are forgotten as before an IDR picture (clause 7.4.3.3).
ORV_UTILS_V4_EXPORT bool has_operation_5(const slice_header& header) noexcept;

/// TopFieldOrderCnt and BottomFieldOrderCnt of a frame; of a field both are its own.
struct picture_order_count {
    std::int64_t top = 0;
    std::int64_t bottom = 0;

    /// PicOrderCnt, (8-1).
    std::int64_t lower() const noexcept { return top < bottom ? top : bottom; }
    /// Both fit 32 bits, as the standard demands.
    ORV_UTILS_V4_EXPORT bool in_range() const noexcept;
};

/// Counts the pictures of a stream, given in decoding order. Values that only a damaged stream can have stop at the
/// ends of 64 bits.
class ORV_UTILS_V4_EXPORT picture_order_counter {
public:
    /// The counts of the next primary coded picture, before operation 5 takes effect.
    /// @param sps active for it
    /// @param header its first slice
    /// @param nal_ref_idc of it
    /// @param idr IdrPicFlag
    picture_order_count next(const seq_parameter_set_data& sps, const slice_header& header, unsigned nal_ref_idc,
                             bool idr) noexcept;

    /// The counts as later pictures see them: with operation 5 relative to the lower one of the picture.
    static picture_order_count after_marking(picture_order_count count, const slice_header& header) noexcept;

private:
    picture_order_count type_0(const seq_parameter_set_data& sps, const slice_header& header) noexcept;
    picture_order_count type_1(const seq_parameter_set_data& sps, const slice_header& header,
                               unsigned nal_ref_idc) const noexcept;
    picture_order_count type_2(const slice_header& header, unsigned nal_ref_idc) const noexcept;

    std::int64_t PicOrderCntMsb = 0;
    std::int64_t previous_msb = 0; // of the latest reference picture
    std::int64_t previous_lsb = 0; // likewise
    std::int64_t FrameNumOffset = 0;
    std::uint32_t previous_frame_num = 0;
};

} // namespace orv_utils_v4::h264
