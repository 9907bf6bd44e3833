// The bytes of units in their order, from when they come until their access unit is handed on: a copy, or where they
// stay with the caller.
#pragma once

#include "hidden.h"

#include <orv-utils-v4/h264_syntax/stream.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace orv_utils_v4::h264 {

class kept_units {
public:
    /// How many units, and bytes of theirs that are copies.
    std::size_t size() const noexcept { return units.size(); }
    std::size_t copied() const noexcept { return copies.size(); }
    /// One more; false, with nothing changed, when there is no memory for it.
    bool push(const unit_place& place, bool bytes_stay) noexcept
    {
        if (!bytes_stay || units.size() == units.capacity())
            return push_with_room(place, bytes_stay);
        units.push_back({place.bytes, copies.size()});
        return true;
    }
    /// The bytes of unit `i`; valid until the next push or drop.
    const unsigned char* at(std::size_t i) const noexcept
    {
        return units[i].bytes != nullptr ? units[i].bytes : copies.data() + units[i].begin;
    }
    /// The first `n` go.
    void drop(std::size_t n) noexcept
    {
        if (!copies.empty())
            drop_copies(n);
        units.resize(static_cast<std::size_t>(
            std::move(units.begin() + static_cast<std::ptrdiff_t>(n), units.end(), units.begin()) - units.begin()));
    }

private:
    struct unit {
        const unsigned char* bytes; // that stay, or null
        std::size_t begin;
    };

    ORV_UTILS_V4_HIDDEN bool push_with_room(const unit_place& place, bool bytes_stay) noexcept;
    ORV_UTILS_V4_HIDDEN void drop_copies(std::size_t n) noexcept;

    std::vector<unsigned char> copies;
    std::vector<unit> units;
};

} // namespace orv_utils_v4::h264
