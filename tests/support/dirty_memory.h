// Objects made where every bit was set before: a member left out of the making shows.
#pragma once

#include <cstddef>
#include <new>

namespace support {

/// `T object{}` or `T object`. The first zeroes what has no initialiser, in a class without a constructor of its own.
enum class made_with { braces, no_braces };

/// A T made on dirty memory.
template <typename T, made_with How = made_with::braces>
class made_on_dirty_memory {
public:
    made_on_dirty_memory()
    {
        // volatile: these are dead stores to an optimiser
        for (volatile unsigned char& byte : memory)
            byte = 0xFF;
        if constexpr (How == made_with::braces)
            object = ::new (memory) T{};
        else
            object = ::new (memory) T;
    }
    made_on_dirty_memory(const made_on_dirty_memory&) = delete;
    made_on_dirty_memory& operator=(const made_on_dirty_memory&) = delete;
    ~made_on_dirty_memory() { object->~T(); }

    const T& operator*() const { return *object; }
    const T* operator->() const { return object; }

private:
    alignas(T) unsigned char memory[sizeof(T)];
    T* object;
};

} // namespace support
