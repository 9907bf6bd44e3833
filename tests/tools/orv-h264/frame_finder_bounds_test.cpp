// The frame finder on frames and units larger than usual, and how often it scans: its calls of the frame scan are
// counted on the way (the linker's --wrap).
#include "frame_finder.h"

#include "support/coded_stream.h"
#include "support/found_frames.h"

#include <gtest/gtest.h>

namespace {

struct scan_work {
    std::size_t calls = 0;
    std::size_t bytes = 0; // read by all of them
    std::size_t scratch = 0;
};

scan_work work;

} // namespace

const unsigned char* real_frame_scan(h264_common_frame_scan_info& info, bool& sps_updated, h264_sps& sps,
                                     const unsigned char* s, const unsigned char* sf, int nal_length_size,
                                     unsigned char* out, std::size_t out_size,
                                     unsigned int flags) __asm__("__real_" ORV_TEST_FRAME_SCAN);

const unsigned char* counted_frame_scan(h264_common_frame_scan_info& info, bool& sps_updated, h264_sps& sps,
                                        const unsigned char* s, const unsigned char* sf, int nal_length_size,
                                        unsigned char* out, std::size_t out_size,
                                        unsigned int flags) __asm__("__wrap_" ORV_TEST_FRAME_SCAN);

const unsigned char* counted_frame_scan(h264_common_frame_scan_info& info, bool& sps_updated, h264_sps& sps,
                                        const unsigned char* s, const unsigned char* sf, int nal_length_size,
                                        unsigned char* out, std::size_t out_size, unsigned int flags)
{
    const unsigned char* const behind =
        real_frame_scan(info, sps_updated, sps, s, sf, nal_length_size, out, out_size, flags);
    const bool stopped_early = info.complete != 0;
    ++work.calls;
    work.bytes += static_cast<std::size_t>((stopped_early ? behind : sf) - s);
    work.scratch = std::max(work.scratch, out_size);
    return behind;
}

namespace {

using orv_h264::frame;
using orv_h264::frame_finder;
using support::bytes;

/// Gives slices to a finder, without a walker.
class slice_feed {
public:
    /// A slice of `length` bytes.
    void add(unsigned char header, std::size_t length)
    {
        bytes content(length, 0xEF); // field_pic_flag reads as 0
        content[0] = header;
        orv_h264::frame_unit u;
        u.where = {offset, 3, length, 0, false};
        u.nal.decode_header(header);
        finder.add(u, content);
        offset += 3 + length;
        take();
    }

    void finish()
    {
        finder.finish();
        take();
    }

    void take()
    {
        for (frame f; finder.next(f);)
            frames.push_back(f);
    }

    frame_finder finder{false};
    std::vector<frame> frames;
    std::uint64_t offset = 0;
};

constexpr unsigned char slice = 0x41;
constexpr unsigned char delimiter = support::aud;

} // namespace

TEST(FrameFinderBounds, AUnitLargerThanTheScratchBufferIsReadAllTheSame)
{
    for (const std::size_t length : {65535U, 65536U, 65537U, 65538U, 200000U, 3000000U}) {
        slice_feed feed;
        feed.add(delimiter, 2);
        feed.add(support::sei, length);
        feed.add(slice, 100);
        feed.add(delimiter, 2);
        feed.add(support::sei, length / 2);
        feed.add(slice, length);
        feed.finish();
        ASSERT_EQ(2U, feed.frames.size()) << length;
        EXPECT_EQ(3U, feed.frames[0].units.size());
        EXPECT_EQ(length + 100 + 2 + 9, feed.frames[0].size);
        EXPECT_EQ(3U, feed.frames[1].units.size());
        EXPECT_TRUE(feed.frames[1].last);
        EXPECT_FALSE(feed.frames[0].cut || feed.frames[1].cut);
    }
}

TEST(FrameFinderBounds, TheScratchBufferIsNoLargerThanTheLargestUnitThatIsReadWhole)
{
    work = {};
    slice_feed feed;
    feed.add(support::sei, 300000);
    feed.add(support::sei, 100000);
    feed.add(slice, 500000);
    feed.finish();
    EXPECT_EQ(300000U, work.scratch);
    ASSERT_EQ(1U, feed.frames.size());
    EXPECT_EQ(3U, feed.frames[0].units.size());
    EXPECT_EQ(900009U, feed.frames[0].size);
}

TEST(FrameFinderBounds, OfASliceTheScanIsGivenNoMoreThanItReads)
{
    work = {};
    slice_feed feed;
    feed.add(slice, 300000);
    feed.add(slice, 3000000);
    feed.finish();
    EXPECT_LE(work.bytes, 1000U);
    ASSERT_EQ(1U, feed.frames.size());
    EXPECT_EQ(3300006U, feed.frames[0].size);
}

TEST(FrameFinderBounds, ALargeUnitInFrontOfTheFirstFrameIsPassed)
{
    slice_feed feed;
    feed.add(12, 500000);
    feed.add(slice, 10);
    feed.add(delimiter, 2);
    feed.finish();
    ASSERT_EQ(2U, feed.frames.size());
    EXPECT_EQ(500003U, feed.frames[0].offset);
    EXPECT_EQ(1U, feed.frames[0].units.size());
}

TEST(FrameFinderBounds, AFrameOfTooManyUnitsIsCutThereAndItsRestIsAnotherFrame)
{
    slice_feed feed;
    for (std::size_t i = 0; i < frame_finder::most_units; ++i) {
        ASSERT_TRUE(feed.frames.empty()) << i;
        feed.add(slice, 2);
    }
    ASSERT_EQ(1U, feed.frames.size());
    EXPECT_TRUE(feed.frames[0].cut);
    EXPECT_FALSE(feed.frames[0].last);
    EXPECT_EQ(0U, feed.frames[0].offset);
    EXPECT_EQ(frame_finder::most_units, feed.frames[0].units.size());
    EXPECT_EQ(5 * frame_finder::most_units, feed.frames[0].size);
    EXPECT_EQ("frame without an end in 1310720 bytes and 262144 units, cut there",
              orv_h264::describe_cut(feed.frames[0]));
    feed.add(slice, 7);
    feed.finish();
    ASSERT_EQ(2U, feed.frames.size());
    EXPECT_EQ(feed.frames[0].size, feed.frames[1].offset);
    EXPECT_EQ(10U, feed.frames[1].size);
    EXPECT_FALSE(feed.frames[1].cut);
    EXPECT_TRUE(feed.frames[1].last);
}

TEST(FrameFinderBounds, AFrameThatEndsInTimeIsNotCut)
{
    slice_feed feed;
    for (std::size_t i = 1; i < frame_finder::most_units; ++i)
        feed.add(slice, 2);
    feed.add(delimiter, 2);
    feed.finish();
    ASSERT_EQ(2U, feed.frames.size());
    EXPECT_FALSE(feed.frames[0].cut);
    EXPECT_EQ(frame_finder::most_units - 1, feed.frames[0].units.size());
}

TEST(FrameFinderBounds, AFrameOfTooManyBytesIsCutThere)
{
    constexpr std::size_t length = (std::size_t{8} << 20) - 3;
    slice_feed feed;
    for (int i = 0; i < 8; ++i) {
        ASSERT_TRUE(feed.frames.empty()) << i;
        feed.add(slice, length);
    }
    ASSERT_EQ(1U, feed.frames.size());
    EXPECT_TRUE(feed.frames[0].cut);
    EXPECT_EQ(8U, feed.frames[0].units.size());
    EXPECT_EQ(frame_finder::most_bytes, feed.frames[0].size);
    feed.finish();
    EXPECT_EQ(1U, feed.frames.size()) << "nothing is left of it";
}

TEST(FrameFinderBounds, UnitsThatBeginNoFrameAreNotKept)
{
    slice_feed feed;
    for (std::size_t i = 0; i < frame_finder::most_units + 10; ++i)
        feed.add(12, 2);
    feed.add(slice, 2);
    feed.finish();
    ASSERT_EQ(1U, feed.frames.size());
    EXPECT_FALSE(feed.frames[0].cut);
    EXPECT_EQ(1U, feed.frames[0].units.size());
}

TEST(FrameFinderBounds, AFrameOfCountlessUnitsIsScannedAFewTimes)
{
    for (const std::size_t units : {1000U, 10000U, 200000U}) {
        work = {};
        slice_feed feed;
        for (std::size_t i = 0; i < units; ++i)
            feed.add(slice, 2);
        feed.finish();
        ASSERT_EQ(1U, feed.frames.size());
        std::size_t doublings = 0;
        for (std::size_t bytes = std::size_t{32} * 1024; bytes < 5 * units; bytes *= 2)
            ++doublings;
        ASSERT_LE(work.calls, doublings + 4) << units;
        EXPECT_LE(work.bytes, std::size_t{4} * 5 * units + 100) << "each byte is read a few times";
    }
}

TEST(FrameFinderBounds, BehindALargeFrameSmallOnesComeOutSoonAgain)
{
    slice_feed feed;
    for (int i = 0; i < 64; ++i)
        feed.add(slice, 65536);
    const auto add_frames = [&](int count) {
        for (int i = 0; i < count; ++i) {
            feed.add(delimiter, 2);
            feed.add(slice, 2000);
        }
    };
    add_frames(2200); // as much again as the large one: its end is found
    const std::size_t found = feed.frames.size();
    ASSERT_GE(found, 1U);
    add_frames(100);
    EXPECT_GE(feed.frames.size(), found + 50) << "of 200000 bytes";
}

TEST(FrameFinderBounds, ManyFramesAreScannedAboutOnceEach)
{
    work = {};
    slice_feed feed;
    constexpr std::size_t frames = 20000;
    for (std::size_t i = 0; i < frames; ++i) {
        feed.add(delimiter, 2);
        feed.add(slice, 20);
    }
    feed.finish();
    EXPECT_EQ(frames, feed.frames.size());
    EXPECT_LE(work.calls, frames + frames / 100);
    EXPECT_LE(work.bytes, 2 * feed.offset);
}
