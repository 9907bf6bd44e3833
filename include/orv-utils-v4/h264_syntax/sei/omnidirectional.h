/// @file
/// SEI payloads of H.264 Annex D on omnidirectional video: projections, rotation, regions, viewports (150, 151, 154 to
/// 156). Angles are in units of 2^-16 degrees.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// equirectangular_projection(): payload 150.
struct equirectangular_projection {
    bool erp_cancel_flag = false;
    bool erp_persistence_flag = false;
    bool erp_guard_band_flag = false;
    std::uint8_t erp_reserved_zero_2bits = 0;
    std::uint8_t erp_guard_band_type = 0;
    std::uint8_t erp_left_guard_band_width = 0;  ///< luma samples
    std::uint8_t erp_right_guard_band_width = 0; ///< luma samples

    friend ORV_UTILS_V4_EXPORT bool operator==(const equirectangular_projection&, const equirectangular_projection&);
};

/// cubemap_projection(): payload 151.
struct cubemap_projection {
    bool cmp_cancel_flag = false;
    bool cmp_persistence_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const cubemap_projection&, const cubemap_projection&);
};

/// sphere_rotation(): payload 154.
struct sphere_rotation {
    bool sphere_rotation_cancel_flag = false;
    bool sphere_rotation_persistence_flag = false;
    std::uint8_t sphere_rotation_reserved_zero_6bits = 0;
    std::int32_t yaw_rotation = 0;   ///< -180 * 2^16 to 180 * 2^16 - 1
    std::int32_t pitch_rotation = 0; ///< -90 * 2^16 to 90 * 2^16
    std::int32_t roll_rotation = 0;  ///< -180 * 2^16 to 180 * 2^16 - 1

    friend ORV_UTILS_V4_EXPORT bool operator==(const sphere_rotation&, const sphere_rotation&);
};

/// A region of regionwise_packing(): where it lies in the projected and in the packed picture.
struct packed_region {
    std::uint8_t rwp_reserved_zero_4bits = 0;
    std::uint8_t rwp_transform_type = 0; ///< 0 to 7: rotation and mirroring
    bool rwp_guard_band_flag = false;
    std::uint32_t proj_region_width = 0;
    std::uint32_t proj_region_height = 0;
    std::uint32_t proj_region_top = 0;
    std::uint32_t proj_region_left = 0;
    std::uint16_t packed_region_width = 0;
    std::uint16_t packed_region_height = 0;
    std::uint16_t packed_region_top = 0;
    std::uint16_t packed_region_left = 0;
    std::uint8_t rwp_left_guard_band_width = 0;
    std::uint8_t rwp_right_guard_band_width = 0;
    std::uint8_t rwp_top_guard_band_height = 0;
    std::uint8_t rwp_bottom_guard_band_height = 0;
    bool rwp_guard_band_not_used_for_pred_flag = false;
    std::uint8_t rwp_guard_band_type[4] = {};
    std::uint8_t rwp_guard_band_reserved_zero_3bits = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const packed_region&, const packed_region&);
};

/// regionwise_packing(): payload 155.
struct regionwise_packing {
    bool rwp_cancel_flag = false;
    bool rwp_persistence_flag = false;
    bool constituent_picture_matching_flag = false;
    std::uint8_t rwp_reserved_zero_5bits = 0;
    std::uint8_t num_packed_regions = 0; ///< above 0
    std::uint32_t proj_picture_width = 0;
    std::uint32_t proj_picture_height = 0;
    std::uint16_t packed_picture_width = 0;
    std::uint16_t packed_picture_height = 0;
    std::vector<packed_region> regions; ///< num_packed_regions

    friend ORV_UTILS_V4_EXPORT bool operator==(const regionwise_packing&, const regionwise_packing&);
};

/// A viewport of omni_viewport().
struct viewport {
    std::int32_t omni_viewport_azimuth_centre = 0;   ///< -180 * 2^16 to 180 * 2^16 - 1
    std::int32_t omni_viewport_elevation_centre = 0; ///< -90 * 2^16 to 90 * 2^16
    std::int32_t omni_viewport_tilt_centre = 0;      ///< -180 * 2^16 to 180 * 2^16 - 1
    std::uint32_t omni_viewport_hor_range = 0;       ///< 1 to 360 * 2^16
    std::uint32_t omni_viewport_ver_range = 0;       ///< 1 to 180 * 2^16

    friend ORV_UTILS_V4_EXPORT bool operator==(const viewport&, const viewport&);
};

/// omni_viewport(): payload 156.
struct omni_viewport {
    std::uint16_t omni_viewport_id = 0; ///< 0 to 1023
    bool omni_viewport_cancel_flag = false;
    bool omni_viewport_persistence_flag = false;
    std::uint8_t omni_viewport_cnt_minus1 = 0; ///< 0 to 15
    std::vector<viewport> viewports;           ///< omni_viewport_cnt_minus1 + 1

    friend ORV_UTILS_V4_EXPORT bool operator==(const omni_viewport&, const omni_viewport&);
};

} // namespace orv_utils_v4::h264
