// The standard output, whose writing is checked. Lines are gathered and written many together, a terminal's one by one;
// they are all out before the tool waits for more input.
#pragma once

#include <string_view>

namespace orv_h264 {

/// Gathers more than usual where nobody reads along. To be called before anything is written.
void gather_output();

/// Throws std::system_error when writing fails.
void write_output(std::string_view text);

/// Likewise, but that it fails is told by what is called next.
void put_output(std::string_view text) noexcept;

/// Writes what was gathered. Throws std::system_error when writing fails.
void flush_output();

} // namespace orv_h264
