// The texts of the SEI payloads on omnidirectional video, H.264 clause D.1, payloads 150, 151 and 154 to 156.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/sei/omnidirectional.h>

namespace orv_utils_v4::h264 {

/// 180 degrees in units of 2^-16.
constexpr std::int64_t half_turn = std::int64_t{180} * 65536;

// H.264 D.1, payload 150
template <class Coder>
void code(Coder& c, in<Coder, equirectangular_projection>& x)
{
    const auto here = c.structure("equirectangular_projection");
    c.flag("erp_cancel_flag", x.erp_cancel_flag);
    if (!x.erp_cancel_flag) {
        c.flag("erp_persistence_flag", x.erp_persistence_flag);
        c.flag("erp_guard_band_flag", x.erp_guard_band_flag);
        c.u(2, "erp_reserved_zero_2bits", x.erp_reserved_zero_2bits, 0, 0);
        if (x.erp_guard_band_flag) {
            c.u(3, "erp_guard_band_type", x.erp_guard_band_type);
            c.u(8, "erp_left_guard_band_width", x.erp_left_guard_band_width);
            c.u(8, "erp_right_guard_band_width", x.erp_right_guard_band_width);
        }
    }
}

// H.264 D.1, payload 151
template <class Coder>
void code(Coder& c, in<Coder, cubemap_projection>& x)
{
    const auto here = c.structure("cubemap_projection");
    c.flag("cmp_cancel_flag", x.cmp_cancel_flag);
    if (!x.cmp_cancel_flag)
        c.flag("cmp_persistence_flag", x.cmp_persistence_flag);
}

// H.264 D.1, payload 154
template <class Coder>
void code(Coder& c, in<Coder, sphere_rotation>& x)
{
    const auto here = c.structure("sphere_rotation");
    c.flag("sphere_rotation_cancel_flag", x.sphere_rotation_cancel_flag);
    if (!x.sphere_rotation_cancel_flag) {
        c.flag("sphere_rotation_persistence_flag", x.sphere_rotation_persistence_flag);
        c.u(6, "sphere_rotation_reserved_zero_6bits", x.sphere_rotation_reserved_zero_6bits, 0, 0);
        c.i(32, "yaw_rotation", x.yaw_rotation, -half_turn, half_turn - 1);
        c.i(32, "pitch_rotation", x.pitch_rotation, -half_turn / 2, half_turn / 2);
        c.i(32, "roll_rotation", x.roll_rotation, -half_turn, half_turn - 1);
    }
}

// H.264 D.1, payload 155, region i
template <class Coder>
void code(Coder& c, in<Coder, packed_region>& x, std::uint32_t i)
{
    c.u(4, {"rwp_reserved_zero_4bits", i}, x.rwp_reserved_zero_4bits, 0, 0);
    c.u(3, {"rwp_transform_type", i}, x.rwp_transform_type);
    c.flag({"rwp_guard_band_flag", i}, x.rwp_guard_band_flag);
    c.u(32, {"proj_region_width", i}, x.proj_region_width);
    c.u(32, {"proj_region_height", i}, x.proj_region_height);
    c.u(32, {"proj_region_top", i}, x.proj_region_top);
    c.u(32, {"proj_region_left", i}, x.proj_region_left);
    c.u(16, {"packed_region_width", i}, x.packed_region_width);
    c.u(16, {"packed_region_height", i}, x.packed_region_height);
    c.u(16, {"packed_region_top", i}, x.packed_region_top);
    c.u(16, {"packed_region_left", i}, x.packed_region_left);
    if (x.rwp_guard_band_flag) {
        c.u(8, {"rwp_left_guard_band_width", i}, x.rwp_left_guard_band_width);
        c.u(8, {"rwp_right_guard_band_width", i}, x.rwp_right_guard_band_width);
        c.u(8, {"rwp_top_guard_band_height", i}, x.rwp_top_guard_band_height);
        c.u(8, {"rwp_bottom_guard_band_height", i}, x.rwp_bottom_guard_band_height);
        c.flag({"rwp_guard_band_not_used_for_pred_flag", i}, x.rwp_guard_band_not_used_for_pred_flag);
        for (std::uint32_t j = 0; j < 4; ++j)
            c.u(3, {"rwp_guard_band_type", i, j}, x.rwp_guard_band_type[j]);
        c.u(3, {"rwp_guard_band_reserved_zero_3bits", i}, x.rwp_guard_band_reserved_zero_3bits, 0, 0);
    }
}

// H.264 D.1, payload 155
template <class Coder>
void code(Coder& c, in<Coder, regionwise_packing>& x)
{
    const auto here = c.structure("regionwise_packing");
    c.flag("rwp_cancel_flag", x.rwp_cancel_flag);
    if (!x.rwp_cancel_flag) {
        c.flag("rwp_persistence_flag", x.rwp_persistence_flag);
        c.flag("constituent_picture_matching_flag", x.constituent_picture_matching_flag);
        c.u(5, "rwp_reserved_zero_5bits", x.rwp_reserved_zero_5bits, 0, 0);
        c.u(8, "num_packed_regions", x.num_packed_regions, 1, 255);
        c.u(32, "proj_picture_width", x.proj_picture_width, 1, 0xFFFFFFFF);
        c.u(32, "proj_picture_height", x.proj_picture_height, 1, 0xFFFFFFFF);
        c.u(16, "packed_picture_width", x.packed_picture_width, 1, 65535);
        c.u(16, "packed_picture_height", x.packed_picture_height, 1, 65535);
        c.count("rwp_reserved_zero_4bits", x.regions, x.num_packed_regions);
        for (std::uint32_t i = 0; i < x.regions.size() && c.going(); ++i)
            code(c, x.regions[i], i);
    }
}

// H.264 D.1, payload 156
template <class Coder>
void code(Coder& c, in<Coder, omni_viewport>& x)
{
    const auto here = c.structure("omni_viewport");
    c.u(10, "omni_viewport_id", x.omni_viewport_id);
    c.flag("omni_viewport_cancel_flag", x.omni_viewport_cancel_flag);
    if (!x.omni_viewport_cancel_flag) {
        c.flag("omni_viewport_persistence_flag", x.omni_viewport_persistence_flag);
        c.u(4, "omni_viewport_cnt_minus1", x.omni_viewport_cnt_minus1);
        c.count("omni_viewport_azimuth_centre", x.viewports, x.omni_viewport_cnt_minus1 + std::uint64_t{1});
        for (std::uint32_t i = 0; i < x.viewports.size() && c.going(); ++i) {
            auto& view = x.viewports[i];
            c.i(32, {"omni_viewport_azimuth_centre", i}, view.omni_viewport_azimuth_centre, -half_turn, half_turn - 1);
            c.i(32, {"omni_viewport_elevation_centre", i}, view.omni_viewport_elevation_centre, -half_turn / 2,
                half_turn / 2);
            c.i(32, {"omni_viewport_tilt_centre", i}, view.omni_viewport_tilt_centre, -half_turn, half_turn - 1);
            c.u(32, {"omni_viewport_hor_range", i}, view.omni_viewport_hor_range, 1, 2 * half_turn);
            c.u(32, {"omni_viewport_ver_range", i}, view.omni_viewport_ver_range, 1, half_turn);
        }
    }
}

} // namespace orv_utils_v4::h264
