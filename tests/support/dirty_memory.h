// Objects made where every bit was set before: a member left out of the making shows.
#pragma once

#include <cstddef>
#include <new>

namespace support {

/// A T made by `T{}` on dirty memory.
template <typename T>
class made_on_dirty_memory {
public:
    made_on_dirty_memory()
    {
        // volatile: these are dead stores to an optimiser
        for (volatile unsigned char& byte : memory)
            byte = 0xFF;
        object = ::new (memory) T{};
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
