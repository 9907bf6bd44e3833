// What waits to be printed: in memory, in a file, and where neither takes it.
#include "jobs/kept_output.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

using orv_h264::kept_output;

std::string all_of(kept_output& kept)
{
    std::string all;
    kept.take([&](std::string_view piece) { all += piece; });
    return all;
}

/// A piece that shows where it stood.
std::string piece(int number)
{
    return std::string(10'000, static_cast<char>('a' + number % 26)) + std::to_string(number) + '\n';
}

TEST(KeptOutput, ComesBackInOrderHoweverMuchItIs)
{
    kept_output kept;
    for (const int count : {1, 3, 100, 7, 0, 2}) {
        std::string added;
        for (int i = 0; i < count; ++i) {
            kept.add(piece(i));
            added += piece(i);
            EXPECT_FALSE(kept.full());
        }
        EXPECT_EQ(added, all_of(kept)) << count;
        EXPECT_EQ("", all_of(kept));
    }
}

TEST(KeptOutput, IsFullWhereNoFileTakesItAndLosesNothing)
{
    const char* const before = std::getenv("TMPDIR");
    const std::string kept_before = before == nullptr ? "" : before;
    setenv("TMPDIR", "/nowhere", 1);
    kept_output kept;
    const std::string much(kept_output::most_in_memory, 'x');
    kept.add(much);
    EXPECT_FALSE(kept.full());
    kept.add("y");
    EXPECT_TRUE(kept.full());
    EXPECT_EQ(much + "y", all_of(kept));
    EXPECT_FALSE(kept.full());
    if (before == nullptr)
        unsetenv("TMPDIR");
    else
        setenv("TMPDIR", kept_before.c_str(), 1);
}

} // namespace
