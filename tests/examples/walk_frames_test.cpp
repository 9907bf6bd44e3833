// examples/walk_frames: the lines.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using support::bytes;
using support::tool_result;

tool_result walk(const bytes& stream)
{
    return support::run_tool({}, {.piped = stream});
}

tool_result walk_file(const std::string& name)
{
    return walk(support::read_file(std::string(ORV_TEST_STREAMS "/") + name));
}

TEST(WalkFrames, FramesFollowEachOtherInBytesAndTime)
{
    const tool_result result = walk_file("pulldown32.264");
    const std::string start = "176 x 144\n"
                              "       1     2717 bytes     0.000 s  SPS PPS SEI slices\n"
                              "    2718      961 bytes     0.050 s  SEI slices\n"
                              "    3679      433 bytes     0.100 s  SEI slices\n"
                              "    4112      292 bytes     0.150 s  SEI slices\n";
    EXPECT_EQ(start, result.out.substr(0, start.size()));
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST(WalkFrames, DelimitersAreTold)
{
    const std::string start = "176 x 144\n"
                              "       1     2858 bytes     0.000 s  AUD SPS PPS SEI slices\n"
                              "    2859      483 bytes     0.040 s  AUD SEI slices\n";
    EXPECT_EQ(start, walk_file("hrd_vbr_aud.264").out.substr(0, start.size()));
}

TEST(WalkFrames, ANewSizeIsTold)
{
    const std::string lines = walk_file("two_sizes.264").out;
    EXPECT_NE(std::string::npos, lines.find("176 x 144\n"));
    EXPECT_NE(std::string::npos, lines.find("128 x 96\n"));
}

TEST(WalkFrames, NothingHasNoFrames)
{
    for (const bytes& stream : {bytes(), bytes(100, 0), bytes(100, 0xEE)}) {
        EXPECT_EQ("", walk(stream).out);
        EXPECT_EQ(0, walk(stream).status);
    }
}

} // namespace
