#include "failed_allocations.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <new>

namespace {

#if !defined(ORV_TEST_SANITIZED)
TEST(FailedAllocations, OneThatIsMadeDoWithoutIsToldOnce)
{
    const std::new_handler before = std::get_new_handler();
    orv_h264::watch_allocations();
    EXPECT_FALSE(orv_h264::take_failed_allocation());
    EXPECT_NO_THROW(orv_h264::check_allocations());
    volatile std::size_t too_much = std::numeric_limits<std::ptrdiff_t>::max();
    EXPECT_EQ(nullptr, ::operator new(too_much, std::nothrow));
    EXPECT_THROW(orv_h264::check_allocations(), std::bad_alloc);
    EXPECT_FALSE(orv_h264::take_failed_allocation());
    std::set_new_handler(before);
}
#endif

} // namespace
