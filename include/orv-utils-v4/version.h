/// @file
/// The version of these headers. It stands nowhere else: the build reads it here.
#pragma once

#define ORV_UTILS_V4_VERSION_MAJOR 1 ///< the first number
#define ORV_UTILS_V4_VERSION_MINOR 0 ///< the second number
#define ORV_UTILS_V4_VERSION_PATCH 0 ///< the third number

/// "MAJOR.MINOR.PATCH", as `orv-h264 --version`, the CMake package and the pkg-config modules tell it.
#define ORV_UTILS_V4_VERSION "1.0.0"
