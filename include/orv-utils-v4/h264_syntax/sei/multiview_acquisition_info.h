/// @file
/// The SEI payload multiview_acquisition_info(), H.264 clauses H.13.1.5 and H.13.2.5 (G.13 in editions that letter the
/// annex G): the parameters of the cameras.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// A parameter of a camera: the elements sign_…, exponent_… and mantissa_… of its name. Its value is
/// (-1)^sign * 2^(exponent - 31) * (1 + mantissa / 2^v), with exponent 0 (-1)^sign * 2^-(30 + v) * mantissa, where v is
/// the number of bits of the mantissa.
struct acquisition_parameter {
    bool sign = false;
    std::uint8_t exponent = 0;  ///< 0 to 62; 63 stands for an unspecified value
    std::uint64_t mantissa = 0; ///< of mantissa_bits() bits

    friend ORV_UTILS_V4_EXPORT bool operator==(const acquisition_parameter&, const acquisition_parameter&);
};

/// The number of bits of a mantissa, clauses H.13.2.5 and I.13.2. 63 is taken as the exponents below it.
/// @param exponent 0 to 63
/// @param prec prec_focal_length and its like, 0 to 31
constexpr std::uint64_t mantissa_bits(std::uint8_t exponent, std::uint32_t prec) noexcept
{
    const std::uint64_t sum = std::uint64_t{prec} + (exponent == 0 ? 1U : exponent);
    return sum > 31 ? sum - 31 : 0;
}

/// The intrinsic parameters of a camera.
struct intrinsic_camera_parameters {
    acquisition_parameter focal_length_x;
    acquisition_parameter focal_length_y;
    acquisition_parameter principal_point_x;
    acquisition_parameter principal_point_y;
    acquisition_parameter skew_factor;

    friend ORV_UTILS_V4_EXPORT bool operator==(const intrinsic_camera_parameters&, const intrinsic_camera_parameters&);
};

/// The extrinsic parameters of a camera.
struct extrinsic_camera_parameters {
    acquisition_parameter r[3][3]; ///< r[ i ][ j ][ k ] of the standard is r[j - 1][k - 1]
    acquisition_parameter t[3];    ///< likewise

    friend ORV_UTILS_V4_EXPORT bool operator==(const extrinsic_camera_parameters&, const extrinsic_camera_parameters&);
};

/// multiview_acquisition_info(), payload type 40.
struct multiview_acquisition_info {
    static constexpr std::uint32_t most_views = 1024;

    std::uint32_t num_views_minus1 = 0; ///< 0 to 1023
    bool intrinsic_param_flag = false;
    bool extrinsic_param_flag = false;
    bool intrinsic_params_equal_flag = false;
    std::uint32_t prec_focal_length = 0;                ///< 0 to 31
    std::uint32_t prec_principal_point = 0;             ///< 0 to 31
    std::uint32_t prec_skew_factor = 0;                 ///< 0 to 31
    std::vector<intrinsic_camera_parameters> intrinsic; ///< one with intrinsic_params_equal_flag
    std::uint32_t prec_rotation_param = 0;              ///< 0 to 31
    std::uint32_t prec_translation_param = 0;           ///< 0 to 31
    std::vector<extrinsic_camera_parameters> extrinsic;

    friend ORV_UTILS_V4_EXPORT bool operator==(const multiview_acquisition_info&, const multiview_acquisition_info&);
};

} // namespace orv_utils_v4::h264
