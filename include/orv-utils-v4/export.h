/// @file
/// The one export macro of the three libraries. They are built with hidden visibility and a linker version
/// script each; what carries this macro is what a shared object offers.
#pragma once

#if defined(__GNUC__)
#define ORV_UTILS_V4_EXPORT __attribute__((visibility("default")))
#else
#define ORV_UTILS_V4_EXPORT
#endif
