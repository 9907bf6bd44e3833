// The bytes of units in their order, from when they come until their access unit is handed on: a copy, or where they
// stay with the caller.
#pragma once

#include <orv-utils-v4/h264_syntax/stream.h>

#include <cstddef>
#include <vector>

namespace orv_utils_v4::h264 {

class kept_units {
public:
    /// How many units, and bytes of theirs that are copies.
    std::size_t size() const noexcept { return units.size(); }
    std::size_t copied() const noexcept { return copies.size(); }
    /// One more; false, with nothing changed, when there is no memory for it.
    bool push(const unit_place& place, bool bytes_stay) noexcept;
    /// The bytes of unit `i`; valid until the next push or drop.
    const unsigned char* at(std::size_t i) const noexcept
    {
        return units[i].bytes != nullptr ? units[i].bytes : copies.data() + units[i].begin;
    }
    /// The first `n` go.
    void drop(std::size_t n) noexcept;

private:
    struct unit {
        const unsigned char* bytes; // that stay, or null
        std::size_t begin;
    };

    std::vector<unsigned char> copies;
    std::vector<unit> units;
};

} // namespace orv_utils_v4::h264
