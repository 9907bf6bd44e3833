// What a program that aborts must have written to its standard error, and nothing else.
#pragma once

#include <string>

namespace support {

/// A regular expression for all of the output: `pattern`, and the line that an emulator adds where there is one.
inline std::string whole_message(const std::string& pattern)
{
    return "^" + pattern + "(qemu: uncaught target signal 6 .*\n)?$";
}

} // namespace support
