// What a visitor does with a failed allocation, which it may not throw: it is kept until the unit has ended.
#pragma once

#include <new>

namespace orv_h264 {

class memory_guard {
public:
    /// Does it, unless an allocation has failed before.
    template <class Do>
    void operator()(Do what) noexcept
    {
        try {
            if (!failed)
                what();
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    }

    /// Throws std::bad_alloc when an allocation has failed.
    void check() const
    {
        if (failed)
            throw std::bad_alloc();
    }

private:
    bool failed = false;
};

} // namespace orv_h264
