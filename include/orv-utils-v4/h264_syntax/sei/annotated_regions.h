/// @file
/// The SEI payload annotated_regions() of H.264 Annex D (202): boxes around objects, with labels.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace orv_utils_v4::h264 {

/// A label that comes, changes or goes.
struct ar_label_update {
    std::uint32_t ar_label_idx = 0; ///< 0 to 255
    bool ar_label_cancel_flag = false;
    std::string ar_label;

    friend ORV_UTILS_V4_EXPORT bool operator==(const ar_label_update&, const ar_label_update&);
};

/// An object that comes, changes or goes.
struct ar_object_update {
    std::uint32_t ar_object_idx = 0; ///< 0 to 255
    bool ar_object_cancel_flag = false;
    bool ar_object_label_update_flag = false;
    std::uint32_t ar_object_label_idx = 0; ///< 0 to 255
    bool ar_bounding_box_update_flag = false;
    bool ar_bounding_box_cancel_flag = false;
    std::uint16_t ar_bounding_box_top = 0; ///< samples of the cropped picture, as those below
    std::uint16_t ar_bounding_box_left = 0;
    std::uint16_t ar_bounding_box_width = 0;
    std::uint16_t ar_bounding_box_height = 0;
    bool ar_partial_object_flag = false;
    std::uint16_t ar_object_confidence = 0; ///< of ar_object_confidence_length_minus1 + 1 bits

    friend ORV_UTILS_V4_EXPORT bool operator==(const ar_object_update&, const ar_object_update&);
};

/// annotated_regions(): payload 202.
struct annotated_regions {
    bool ar_cancel_flag = false;
    bool ar_not_optimized_for_viewing_flag = false;
    bool ar_true_motion_flag = false;
    bool ar_occluded_object_flag = false;
    bool ar_partial_object_flag_present_flag = false;
    bool ar_object_label_present_flag = false;
    bool ar_object_confidence_info_present_flag = false;
    std::uint8_t ar_object_confidence_length_minus1 = 0; ///< 0 to 15
    bool ar_object_label_language_present_flag = false;
    std::string ar_object_label_language;   ///< of IETF RFC 5646
    std::uint32_t ar_num_label_updates = 0; ///< 0 to 255
    std::vector<ar_label_update> label_updates;
    std::uint32_t ar_num_object_updates = 0; ///< 0 to 255
    std::vector<ar_object_update> object_updates;

    friend ORV_UTILS_V4_EXPORT bool operator==(const annotated_regions&, const annotated_regions&);
};

} // namespace orv_utils_v4::h264
