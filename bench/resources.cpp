// The counting of allocations and exceptions.
#include "resources.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <typeinfo>
#include <utility>

namespace {

bounded::resources taken;
std::size_t bytes_now = 0;

/// Before each block stands its size.
constexpr std::size_t size_room = alignof(std::max_align_t);

void* allocate(std::size_t size)
{
    auto* const memory = static_cast<unsigned char*>(std::malloc(size + size_room));
    if (memory == nullptr)
        throw std::bad_alloc();
    *reinterpret_cast<std::size_t*>(memory) = size;
    bytes_now += size;
    ++taken.allocations;
    taken.most_bytes = std::max(taken.most_bytes, bytes_now);
    return memory + size_room;
}

void release(void* memory)
{
    if (memory == nullptr)
        return;
    unsigned char* const start = static_cast<unsigned char*>(memory) - size_room;
    bytes_now -= *reinterpret_cast<std::size_t*>(start);
    std::free(start);
}

} // namespace

namespace bounded {

resources resources_taken()
{
    const resources result = std::exchange(taken, {});
    bytes_now = 0; // what lives on does not count
    return result;
}

} // namespace bounded

using destructor = void (*)(void*);

[[noreturn]] void counted_throw(void* thrown, std::type_info* type, destructor destroy) __asm__("__cxa_throw");

void counted_throw(void* thrown, std::type_info* type, destructor destroy)
{
    using throw_function = void (*)(void*, std::type_info*, destructor);
    static const auto real = reinterpret_cast<throw_function>(dlsym(RTLD_NEXT, "__cxa_throw"));
    ++taken.exceptions;
    real(thrown, type, destroy);
    std::abort();
}

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete[](void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}
