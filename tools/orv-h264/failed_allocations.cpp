#include "failed_allocations.h"

#include <new>
#include <utility>

namespace orv_h264 {

namespace {

bool has_failed = false;

void note_failure()
{
    has_failed = true;
    throw std::bad_alloc();
}

} // namespace

void watch_allocations() noexcept
{
    std::set_new_handler(note_failure);
}

bool take_failed_allocation() noexcept
{
    return std::exchange(has_failed, false);
}

void check_allocations()
{
    if (take_failed_allocation())
        throw std::bad_alloc();
}

} // namespace orv_h264
