// examples/walk_frames: the lines.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <orv-utils-v4/h264_legacy.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using support::bytes;
using support::stream_builder;
using support::tool_result;
using placed = std::vector<std::pair<std::ptrdiff_t, std::ptrdiff_t>>; // offset and size of each frame

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

/// Where each frame lies, from the lines of the example.
placed placed_by_example(const bytes& stream)
{
    std::istringstream lines(walk(stream).out);
    placed frames;
    for (std::string line; std::getline(lines, line);) {
        std::ptrdiff_t offset = 0;
        std::ptrdiff_t size = 0;
        if (std::istringstream(line) >> offset >> size) // not so in a line like "176 x 144"
            frames.emplace_back(offset, size);
    }
    return frames;
}

/// The same of one run of the scan over the stream in memory.
placed placed_in_memory(const bytes& stream)
{
    bytes scratch(stream.size());
    h264_common_frame_scan_info frame;
    h264_sps sps;
    bool sps_updated = false;
    placed frames;
    const unsigned char* const end = stream.data() + stream.size();
    const unsigned char* next = stream.data();
    do {
        next = h264_common_frame_scan(frame, sps_updated, sps, next, end, 0, scratch.data(), scratch.size(), 0);
        const unsigned char* const frame_end = frame.complete != 0 ? next : end;
        if (frame.complete != 0 || frame.need_more_data != 0)
            frames.emplace_back(frame.frame_start - stream.data(), frame_end - frame.frame_start);
    } while (frame.complete != 0);
    return frames;
}

TEST(WalkFrames, AStreamReadInPiecesHasTheFramesOfTheWhole)
{
    constexpr std::size_t first_piece = 65536;
    const bytes stream = support::read_file(ORV_TEST_STREAMS "/pulldown32.264");
    const bytes start_code = {0, 0, 1};
    auto at = stream.begin();
    for (int unit = 0; unit < 12; ++unit) {
        at = std::search(at + 1, stream.end(), start_code.begin(), start_code.end());
        for (std::size_t behind = 1; behind < 10; ++behind) { // where the first piece ends
            const std::size_t cut = static_cast<std::size_t>(at - stream.begin()) + behind;
            const bytes shifted = stream_builder().zeros(first_piece - cut).raw(stream);
            EXPECT_EQ(placed_in_memory(shifted), placed_by_example(shifted)) << "cut at " << cut;
        }
    }
}

TEST(WalkFrames, NothingHasNoFrames)
{
    for (const bytes& stream : {bytes(), bytes(100, 0), bytes(100, 0xEE)}) {
        EXPECT_EQ("", walk(stream).out);
        EXPECT_EQ(0, walk(stream).status);
    }
}

} // namespace
