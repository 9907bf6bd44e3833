// Keeps the members of a nested class out of what the shared object offers, though the class around it is exported.
#pragma once

#if defined(__GNUC__)
#define ORV_UTILS_V4_HIDDEN __attribute__((visibility("hidden")))
#else
#define ORV_UTILS_V4_HIDDEN
#endif
