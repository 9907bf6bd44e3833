#include "kept_units.h"

namespace orv_utils_v4::h264 {

bool kept_units::push_with_room(const unit_place& place, bool bytes_stay) noexcept
{
    try {
        units.push_back({bytes_stay ? place.bytes : nullptr, copies.size()});
    } catch (...) {
        return false;
    }
    if (bytes_stay)
        return true;
    try {
        copies.insert(copies.end(), place.bytes, place.bytes + place.size);
    } catch (...) {
        units.pop_back();
        return false;
    }
    return true;
}

/// Those of the first `n` units.
void kept_units::drop_copies(std::size_t n) noexcept
{
    const std::size_t bytes = n < units.size() ? units[n].begin : copies.size();
    copies.erase(copies.begin(), copies.begin() + static_cast<std::ptrdiff_t>(bytes));
    for (std::size_t i = n; i < units.size(); ++i)
        units[i].begin -= bytes;
}

} // namespace orv_utils_v4::h264
