// The texts of the SEI payloads on the colours of the content, H.264 clause D.1, payloads 137, 144, 147
// and 148.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/sei/colour.h>

namespace orv_utils_v4::h264 {

// H.264 D.1, payload 137
template <class Coder>
void code(Coder& c, in<Coder, mastering_display_colour_volume>& x)
{
    const auto here = c.structure("mastering_display_colour_volume");
    for (std::uint32_t comp = 0; comp < 3; ++comp) {
        c.u(16, {"display_primaries_x", comp}, x.display_primaries_x[comp]);
        c.u(16, {"display_primaries_y", comp}, x.display_primaries_y[comp]);
    }
    c.u(16, "white_point_x", x.white_point_x);
    c.u(16, "white_point_y", x.white_point_y);
    c.u(32, "max_display_mastering_luminance", x.max_display_mastering_luminance);
    c.u(32, "min_display_mastering_luminance", x.min_display_mastering_luminance);
}

// H.264 D.1, payload 144
template <class Coder>
void code(Coder& c, in<Coder, content_light_level_info>& x)
{
    const auto here = c.structure("content_light_level_info");
    c.u(16, "max_content_light_level", x.max_content_light_level);
    c.u(16, "max_pic_average_light_level", x.max_pic_average_light_level);
}

// H.264 D.1, payload 147
template <class Coder>
void code(Coder& c, in<Coder, alternative_transfer_characteristics>& x)
{
    const auto here = c.structure("alternative_transfer_characteristics");
    c.u(8, "preferred_transfer_characteristics", x.preferred_transfer_characteristics);
}

// H.264 D.1, payload 148
template <class Coder>
void code(Coder& c, in<Coder, ambient_viewing_environment>& x)
{
    const auto here = c.structure("ambient_viewing_environment");
    c.u(32, "ambient_illuminance", x.ambient_illuminance, 1, 0xFFFFFFFF);
    c.u(16, "ambient_light_x", x.ambient_light_x, 0, 50000);
    c.u(16, "ambient_light_y", x.ambient_light_y, 0, 50000);
}

} // namespace orv_utils_v4::h264
