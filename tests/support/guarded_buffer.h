// Bytes between two unmapped pages: a read or write outside of them ends the test program, in every build type.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

namespace support {

/// A buffer whose end, or whose start, touches a page that may not be accessed. What is left of its pages on the other
/// side is filled with a pattern, so that stray writes there can be told.
class guarded_buffer {
public:
    enum class touching { end, start };

    explicit guarded_buffer(std::size_t size, touching side = touching::end)
    {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t inner = std::max<std::size_t>((size + page - 1) / page, 1) * page;
        mapped = inner + 2 * page;
        void* const pages = mmap(nullptr, mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pages == MAP_FAILED)
            throw std::bad_alloc();
        mapping = static_cast<unsigned char*>(pages);
        usable = mapping + page;
        usable_fence = usable + inner;
        if (mprotect(usable, inner, PROT_READ | PROT_WRITE) != 0) {
            munmap(mapping, mapped);
            throw std::bad_alloc();
        }
        first = side == touching::end ? usable_fence - size : usable;
        fence = first + size;
        std::fill(usable, usable_fence, pattern);
    }

    explicit guarded_buffer(const std::vector<unsigned char>& content, touching side = touching::end)
        : guarded_buffer(content.size(), side)
    {
        std::copy(content.begin(), content.end(), first);
    }

    guarded_buffer(const guarded_buffer&) = delete;
    guarded_buffer& operator=(const guarded_buffer&) = delete;
    ~guarded_buffer() { munmap(mapping, mapped); }

    unsigned char* begin() const { return first; }
    unsigned char* end() const { return fence; }
    std::size_t size() const { return static_cast<std::size_t>(fence - first); }

    /// The last `count` bytes of a buffer whose end touches the page behind.
    unsigned char* last(std::size_t count) const { return fence - count; }

    /// Whether every byte of [`start`, `end`) still holds the pattern.
    static bool untouched(const unsigned char* start, const unsigned char* end)
    {
        return std::all_of(start, end, [](unsigned char byte) { return byte == pattern; });
    }

    /// Whether nothing was written to the accessible bytes beside the buffer.
    bool surroundings_untouched() const { return untouched(usable, first) && untouched(fence, usable_fence); }

    static constexpr unsigned char pattern = 0xA5;

private:
    std::size_t mapped;
    unsigned char* mapping;
    unsigned char* usable;
    unsigned char* usable_fence;
    unsigned char* first;
    unsigned char* fence;
};

} // namespace support
