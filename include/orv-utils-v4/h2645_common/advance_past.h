/// @file
/// Stepping a pointer to where no object is: the one place where a cursor or a fence may leave its range.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brenik {

/// `pointer` moved by `count` elements without the rule that the result lies in the same array: the sum is formed on
/// the address. The result may be compared and subtracted, never read through.
template <typename T>
T* advance_past(T* pointer, std::size_t count) noexcept
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the result may lie outside every object
    return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(pointer) + count * sizeof(T));
}

/// How many bytes [`start`, `fence`) holds: 0 when `fence` lies before `start` and for two null pointers.
inline std::size_t range_size(const unsigned char* start, const unsigned char* fence) noexcept
{
    const auto first = reinterpret_cast<std::uintptr_t>(start);
    const auto last = reinterpret_cast<std::uintptr_t>(fence);
    return first < last ? last - first : 0;
}

} // namespace brenik
