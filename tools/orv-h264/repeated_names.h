// Which names the standard repeats in a structure without an index that tells them apart.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace orv_h264 {

/// Those of the elements of one structure: most have none.
class repeated_names {
public:
    explicit repeated_names(std::string_view structure);

    bool has(std::string_view element) const;

private:
    std::span<const std::string_view> names; // with the structure's in front
    std::size_t skipped;                     // of each, that and the dot
};

/// The structure may have several elements of the name, and no index in the standard tells them apart.
bool is_repeated_element(std::string_view structure, std::string_view element);

/// A structure may have several of this name in it.
bool is_repeated_structure(std::string_view structure);

} // namespace orv_h264
