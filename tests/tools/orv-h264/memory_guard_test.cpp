#include "memory_guard.h"

#include <gtest/gtest.h>

namespace {

TEST(MemoryGuard, AFailedAllocationIsKeptAndNothingIsDoneBehindIt)
{
    orv_h264::memory_guard guarded;
    int done = 0;
    guarded([&] { ++done; });
    EXPECT_NO_THROW(guarded.check());
    guarded([&] {
        ++done;
        throw std::bad_alloc();
    });
    guarded([&] { ++done; });
    EXPECT_EQ(done, 2);
    EXPECT_THROW(guarded.check(), std::bad_alloc);
    EXPECT_THROW(guarded.check(), std::bad_alloc) << "until a new one takes its place";
}

} // namespace
