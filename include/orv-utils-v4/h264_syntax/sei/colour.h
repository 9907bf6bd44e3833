/// @file
/// SEI payloads of H.264 Annex D on the colours of the content and of the room it was made for (137, 144, 147, 148).
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// mastering_display_colour_volume(): payload 137. Primaries in units of 0.00002 of CIE 1931 x and y, luminances in
/// units of 0.0001 candela a square metre.
struct mastering_display_colour_volume {
    std::uint16_t display_primaries_x[3] = {};
    std::uint16_t display_primaries_y[3] = {};
    std::uint16_t white_point_x = 0;
    std::uint16_t white_point_y = 0;
    std::uint32_t max_display_mastering_luminance = 0;
    std::uint32_t min_display_mastering_luminance = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mastering_display_colour_volume&,
                                               const mastering_display_colour_volume&);
};

/// content_light_level_info(): payload 144, in candelas a square metre.
struct content_light_level_info {
    std::uint16_t max_content_light_level = 0;     ///< 0: none stated
    std::uint16_t max_pic_average_light_level = 0; ///< 0: none stated

    friend ORV_UTILS_V4_EXPORT bool operator==(const content_light_level_info&, const content_light_level_info&);
};

/// alternative_transfer_characteristics(): payload 147.
struct alternative_transfer_characteristics {
    std::uint8_t preferred_transfer_characteristics = 2; ///< Table E-4

    friend ORV_UTILS_V4_EXPORT bool operator==(const alternative_transfer_characteristics&,
                                               const alternative_transfer_characteristics&);
};

/// ambient_viewing_environment(): payload 148.
struct ambient_viewing_environment {
    std::uint32_t ambient_illuminance = 0; ///< units of 0.0001 lux, above 0
    std::uint16_t ambient_light_x = 0;     ///< units of 0.00002 of CIE 1931 x, 0 to 50000
    std::uint16_t ambient_light_y = 0;     ///< likewise of y

    friend ORV_UTILS_V4_EXPORT bool operator==(const ambient_viewing_environment&, const ambient_viewing_environment&);
};

} // namespace orv_utils_v4::h264
