#include "bounded_output.h"

#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using brenik::bounded_output;
using support::guarded_buffer;

const unsigned char source[] = {1, 2, 3, 4, 5, 6};

} // namespace

TEST(BoundedOutput, AppendsUpToTheFence)
{
    const guarded_buffer buffer(6);
    bounded_output out(buffer.begin(), buffer.end());
    EXPECT_TRUE(out.copy(source, 2));
    EXPECT_TRUE(out.zeros(3));
    EXPECT_TRUE(out.byte(9));
    EXPECT_EQ(buffer.end(), out.position());
    EXPECT_EQ((std::vector<unsigned char>{1, 2, 0, 0, 0, 9}), std::vector<unsigned char>(buffer.begin(), buffer.end()));
    EXPECT_TRUE(buffer.surroundings_untouched());
}

TEST(BoundedOutput, CopyOfOneByteTooManyWritesNothing)
{
    const guarded_buffer buffer(5);
    bounded_output out(buffer.begin(), buffer.end());
    EXPECT_FALSE(out.copy(source, 6));
    EXPECT_EQ(buffer.begin(), out.position());
    EXPECT_TRUE(guarded_buffer::untouched(buffer.begin(), buffer.end()));
    EXPECT_TRUE(out.copy(source, 5));
    EXPECT_EQ(buffer.end(), out.position());
}

TEST(BoundedOutput, OneZeroTooManyWritesNothing)
{
    const guarded_buffer buffer(5);
    bounded_output out(buffer.begin(), buffer.end());
    EXPECT_FALSE(out.zeros(6));
    EXPECT_FALSE(out.zeros(SIZE_MAX));
    EXPECT_EQ(buffer.begin(), out.position());
    EXPECT_TRUE(guarded_buffer::untouched(buffer.begin(), buffer.end()));
    EXPECT_TRUE(out.zeros(5));
}

TEST(BoundedOutput, AFullRangeTakesNoByteAndStillTakesNothing)
{
    const guarded_buffer buffer(0);
    bounded_output out(buffer.begin(), buffer.end());
    EXPECT_FALSE(out.byte(1));
    EXPECT_FALSE(out.copy(source, 1));
    EXPECT_FALSE(out.zeros(1));
    EXPECT_TRUE(out.zeros(0));
    EXPECT_TRUE(out.copy(source, 0));
    EXPECT_TRUE(out.copy(nullptr, 0));
    EXPECT_EQ(buffer.begin(), out.position());
}
