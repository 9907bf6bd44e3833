// What the pictures of one sequence parameter set are like.
#pragma once

#include "walked_unit.h"

#include <orv-utils-v4/h264.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orv_h264 {

struct sequence_summary {
    std::uint64_t offset = 0; ///< of its first slice, or of the SPS while there is no slice at all
    brenik::h264_nal_sps sps;
    std::uint64_t frame_pictures = 0; ///< coded frames without macroblock-adaptive frame/field decoding
    std::uint64_t mbaff_pictures = 0; ///< coded frames with it
    std::uint64_t field_pictures = 0; ///< coded fields
    bool cabac = false;               ///< some slice is CABAC coded
    bool cavlc = false;
    std::optional<bool> top_field_first; ///< as picture timing or the first field tell it

    std::uint64_t pictures() const noexcept { return frame_pictures + mbaff_pictures + field_pictures; }
};

/// The first slice of a primary coded picture, H.264 7.4.1.2.4.
bool begins_picture(const brenik::h264_nal_slice_header& slice);

/// Takes the slice into account; its header has been read to the end.
void add_slice(sequence_summary& sequence, const brenik::h264_nal_slice_header& slice, const brenik::h264_nal_pps& pps);

/// Takes the order of fields from picture timing, when nothing has told it before.
void add_pic_timing(sequence_summary& sequence, const brenik::h264_nal_sei_pic_timing& timing);

/// How the pictures are scanned, as their slices show it: "progressive", "interlaced", "PAFF", "MBAFF" or
/// "PAFF with MBAFF"; "progressive frames, fields allowed" when the parameter set allows fields and there are none.
std::string scan_type(const sequence_summary& sequence);

/// chroma_format_idc; 1 where the profile does not send it, H.264 7.4.2.1.1.
std::uint32_t chroma_format_of(const brenik::h264_nal_sps& sps);

struct fraction {
    std::uint64_t numerator = 0;
    std::uint64_t denominator = 1;

    double value() const noexcept { return static_cast<double>(numerator) / static_cast<double>(denominator); }
};

fraction half(fraction whole);

/// Fields a second, H.264 E.2.1, in lowest terms; frames come at half this rate. Nothing when it is not told, or told
/// as 0 of a second or of a field.
std::optional<fraction> field_rate(const brenik::h264_nal_sps& sps);

/// The shape of a sample, width to height, in lowest terms; nothing when it is not told.
std::optional<fraction> sample_aspect_ratio(const brenik::h264_nal_sps& sps);

/// Luma samples.
struct picture_size {
    std::uint64_t width = 0;
    std::uint64_t height = 0;
};

/// Without what is cropped; 0x0 when the cropping takes more than there is.
picture_size cropped_size(const brenik::h264_nal_sps& sps);

/// The cropped size with its width made that of square samples.
picture_size display_size(const brenik::h264_nal_sps& sps);

/// A way that a coded picture buffer is filled, H.264 E.2.2.
struct cpb_schedule {
    std::uint64_t bit_rate = 0; ///< bits a second
    std::uint64_t size = 0;     ///< bits
    bool constant = false;      ///< the rate is constant
};

std::vector<cpb_schedule> schedules_of(const brenik::h264_hrd_parameters& hrd);

} // namespace orv_h264
