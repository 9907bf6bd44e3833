// Calls that a signal may break off, and writing that goes on until all is written.
#pragma once

#include <cerrno>
#include <cstddef>

#include <unistd.h>

namespace orv_h264 {

/// What the call returns when no signal has broken it off. Not for close(), which lets go of the file in any case.
template <class Call>
auto again(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/// @return false, with errno, where writing fails
inline bool write_all(int descriptor, const void* from, std::size_t size) noexcept
{
    const char* next = static_cast<const char*>(from);
    while (size != 0) {
        const ssize_t count = again([&] { return ::write(descriptor, next, size); });
        if (count < 0)
            return false;
        next += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace orv_h264
