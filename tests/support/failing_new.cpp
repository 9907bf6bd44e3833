// The global operator new of this program.
#include "support/failing_new.h"

#include <cstdlib>
#include <new>

namespace {

bool armed = false;
std::size_t failing = support::armed_new::never;
std::size_t allocations = 0;

void* allocate(std::size_t size)
{
    if (armed && allocations++ == failing)
        throw std::bad_alloc();
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

} // namespace

namespace support {

armed_new::armed_new(std::size_t k)
{
    failing = k;
    allocations = 0;
    armed = true;
}

armed_new::~armed_new()
{
    armed = false;
}

std::size_t armed_new::made()
{
    return allocations;
}

} // namespace support

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
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}
