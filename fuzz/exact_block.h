// Memory of exactly so many bytes. Under AddressSanitizer it is the heap's, which shows every access outside of it;
// else it ends at an unmapped page, and what lies before it must not be written to. What is given back is overwritten
// and used again: mapping pages takes longer than most inputs do.
#pragma once

#include "support/guarded_buffer.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace fuzz {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool heap_is_watched = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool heap_is_watched = true;
#else
constexpr bool heap_is_watched = false;
#endif
#else
constexpr bool heap_is_watched = false;
#endif

/// Ends the process with `claim` unless it holds.
inline void expect(bool holds, const char* claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", claim);
    std::abort();
}

class heap_memory {
public:
    explicit heap_memory(std::size_t size) : memory(new unsigned char[size]) {}

    unsigned char* begin() const { return memory.get(); }

private:
    std::unique_ptr<unsigned char[]> memory;
};

class guarded_memory {
public:
    explicit guarded_memory(std::size_t bytes) : size(bytes), buffer(taken(bytes + watched)) {}
    guarded_memory(const guarded_memory&) = delete;
    guarded_memory& operator=(const guarded_memory&) = delete;
    ~guarded_memory()
    {
        unsigned char* const start = begin();
        expect(support::guarded_buffer::untouched(start - watched, start), "nothing is written before a block");
        std::fill(start, start + size, support::guarded_buffer::pattern);
        if (buffer->size() == usual_size)
            idle().push_back(std::move(buffer));
    }

    unsigned char* begin() const { return buffer->end() - size; }

private:
    using owned = std::unique_ptr<support::guarded_buffer>;

    static constexpr std::size_t usual_size = 16384;
    static constexpr std::size_t watched = 16; ///< bytes before a block

    /// All of them hold the pattern.
    static std::vector<owned>& idle()
    {
        static std::vector<owned> buffers;
        return buffers;
    }

    static owned taken(std::size_t least)
    {
        if (least > usual_size)
            return std::make_unique<support::guarded_buffer>(least);
        if (idle().empty())
            return std::make_unique<support::guarded_buffer>(usual_size);
        owned buffer = std::move(idle().back());
        idle().pop_back();
        return buffer;
    }

    std::size_t size;
    owned buffer;
};

/// Memory of exactly `size` bytes: one byte further is another's.
class exact_block {
public:
    explicit exact_block(std::size_t size) : memory(size), count(size) {}
    exact_block(const unsigned char* content, std::size_t size) : exact_block(size)
    {
        std::copy_n(content, size, begin());
    }
    explicit exact_block(const std::vector<unsigned char>& content) : exact_block(content.data(), content.size()) {}

    unsigned char* begin() const { return memory.begin(); }
    unsigned char* end() const { return memory.begin() + count; }
    std::size_t size() const { return count; }

private:
    std::conditional_t<heap_is_watched, heap_memory, guarded_memory> memory;
    std::size_t count;
};

} // namespace fuzz
