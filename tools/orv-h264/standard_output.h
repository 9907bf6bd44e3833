// The standard output, whose writing is checked. Lines are gathered and written many together, a terminal's one by one;
// they are all out before the tool waits for more input. What is printed otherwise (stdio, iostream) would come out of
// turn.
#pragma once

#include <string_view>

namespace orv_h264 {

/// Finds out whether somebody reads along. To be called before anything is written.
void gather_output();

/// Throws std::system_error when writing fails, or has failed before, and std::bad_alloc when an allocation has.
void write_output(std::string_view text);

/// Likewise, but that it fails is told by what is called next.
void put_output(std::string_view text) noexcept;

/// Writes what was gathered. Throws std::system_error when writing fails, or has failed before.
void flush_output();

/// Likewise, and closes it: some file systems tell only then that there was no room. Nothing is written behind it.
/// Throws std::bad_alloc when an allocation has failed.
void close_output();

} // namespace orv_h264
