// Arrays whose number of entries the stream tells: one cap for all of them, and no failed allocation gets out.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brenik {

/// The most entries that an array of a parsed structure may have.
constexpr std::uint64_t max_counted_entries = 128;

/// Resizes every array to `count` entries, in order; false when `count` is above the cap or an allocation fails, which
/// leaves the arrays behind it as they were. The count is 64 bits wide so that "minus1" values cannot wrap.
template <typename... Vectors>
bool resize_counted(std::uint64_t count, Vectors&... arrays) noexcept
{
    if (count > max_counted_entries)
        return false;
    try {
        (arrays.resize(static_cast<std::size_t>(count)), ...);
    } catch (...) {
        return false;
    }
    return true;
}

} // namespace brenik
