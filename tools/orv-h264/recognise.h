// What kind of bytes an input begins with, for when the user does not say.
#pragma once

#include "input_window.h"

namespace orv_h264 {

/// How many bytes at the start of an input are looked at.
constexpr std::size_t recognise_size = std::size_t{64} * 1024;

/// True when the window begins an Annex B stream: it holds a start code before a NAL unit header, and no length prefix
/// of 1 to 4 bytes leads from unit to unit through it.
bool is_annexb(input_window& window);

/// True when the window holds no unit whatever the framing: fewer bytes than a start code and a header, or zeros alone.
bool holds_nothing(input_window& window);

/// The name of the container format that the window begins, or a null pointer when it is none of the well-known ones.
const char* container_name(input_window& window);

} // namespace orv_h264
