// Text from outside, a file's name for one, as a terminal may show it.
#pragma once

#include <string>
#include <string_view>

namespace orv_h264 {

/// The text with its control characters escaped: \n, \t, \x1b. Those are C0, DEL, and C1 as UTF-8 has them; whatever
/// else is there, bytes that are not UTF-8 among it, stays as it is.
std::string printable(std::string_view text);

} // namespace orv_h264
