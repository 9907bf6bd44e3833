// The bytes of a unit with and without emulation prevention, and a unit that has been read traced.
#pragma once

#include "edit/element_list.h"

#include <cstddef>
#include <vector>

namespace orv_h264 {

/// The whole unit without emulation-prevention bytes.
std::vector<unsigned char> unescaped(const h264::unit_place& unit);

/// The unit as it stands behind its framing, emulation-prevention bytes in.
std::vector<unsigned char> escaped(const std::vector<unsigned char>& clean);

/// Tells the elements of a unit that has been read, with what it was read with.
void retrace(const h264::unit_reading& reading, element_list& to);

} // namespace orv_h264
