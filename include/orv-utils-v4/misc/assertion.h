/// @file
/// Assertions on the caller's own mistakes. They are checked in every build, with NDEBUG too, and no byte of a
/// stream can reach one.
#pragma once

#include <orv-utils-v4/export.h>

namespace orv_utils_v4 {

/// Prints "source:line: assertion failed: text" and a newline to the standard error stream, then aborts the process.
/// @param source the name of the source the assertion belongs to
/// @param line its line there
/// @param text the condition that does not hold
[[noreturn]] ORV_UTILS_V4_EXPORT void assertion_failed(const char* source, int line, const char* text) noexcept;

/// Aborts by assertion_failed() when `holds` is false.
inline void check(bool holds, const char* source, int line, const char* text) noexcept
{
    if (!holds)
        assertion_failed(source, line, text);
}

} // namespace orv_utils_v4
