// Which names the standard repeats in a structure without an index that tells them apart.
#pragma once

#include <string_view>

namespace orv_h264 {

/// The structure may have several elements of the name, and no index in the standard tells them apart.
bool is_repeated_element(std::string_view structure, std::string_view element);

/// A structure may have several of this name in it.
bool is_repeated_structure(std::string_view structure);

} // namespace orv_h264
