// What the frame scan does where the input or the scratch buffer ends.
#include "support/frame_notation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

namespace {

using namespace support::frame_notation;
using lines = std::vector<std::string>;
using support::bytes;
using support::guarded_buffer;

} // namespace

TEST(FrameScanInput, AnInputThatEndsInAFrameNeedsMore)
{
    EXPECT_EQ("0 on: slice, 2 fields", first_frame({slice(1)}));
    EXPECT_EQ("0 on: slice, 2 fields", first_frame({slice(1), slice(1), filler}));
    EXPECT_EQ("0 on: aud sps pps sei, 4 fields", first_frame({aud, sps(), pps, sei(7)})) << "leading units alone";
    EXPECT_EQ("1 on: aud, 2 fields", first_frame({filler, aud}));
    EXPECT_EQ("0 on: sei slice, 1 fields", first_frame({sei(1), slice(3, top), sei(2)})) << "no adjustment";
    EXPECT_EQ("0 on: slice, 2 fields", first_frame({slice(3, top)}, {split_fields}));
}

TEST(FrameScanInput, WithoutAUnitTheResultIsTheScanners)
{
    EXPECT_EQ((lines{"none, next end: 2 fields"}), frames({}));
    EXPECT_EQ((lines{"none, next end: 2 fields"}), frames({end_of_stream, filler, partition_a}));
    EXPECT_EQ((lines{"none, next byte 7: 2 fields"}), lines_of({0, bytes(9, 0xEE), {}}))
        << "two bytes may begin a start code";
    EXPECT_EQ((lines{"none, next end: 2 fields"}), lines_of({0, {0xEE, 0, 0, 1}, {}}));
    EXPECT_EQ((lines{"none, next byte 0: 2 fields"}), lines_of({4, {0, 0, 0}, {}})) << "no whole prefix";
    EXPECT_EQ((lines{"none, next end: 2 fields"}), lines_of({2, {0, 9, 0x29, 0xF0}, {}})) << "no whole unit";
    EXPECT_EQ((lines{"none, next byte 4: 2 fields"}), lines_of({2, {0, 2, 0xA9, 0xF0, 0, 1, 0x29}, {}}))
        << "a forbidden header ends the search of a call";
}

TEST(FrameScanInput, AForbiddenHeaderBehindAPrefixEndsTheSearchInsideAFrame)
{
    EXPECT_EQ((lines{"0 on: aud, 2 fields"}), lines_of({1, {1, 0x29, 1, 0xA9, 1, 0x29}, {0, 2, 4}}));
}

TEST(FrameScanInput, AnyPrefixSizeThatDoesNotFitFindsNothing)
{
    const bytes stream = framed({aud, slice(1)}, annexb).data;
    for (const int size : {-1, 5, 100, 0x7FFFFFFF})
        EXPECT_EQ(true, lines_of({size, stream, {}}).front().starts_with("none")) << size;
}

TEST(FrameScanInput, ACallBeginsWithACleanResult)
{
    // frame_scanner hands in a result in which nothing has its first value.
    EXPECT_EQ((lines{"none, next end: 2 fields"}), lines_of({0, {}, {}}));
    const stream s = framed({aud, sei(7), slice(0), slice(1)}, annexb);
    support::frame_scanner<guarded_buffer> scanner(s.data, 0, 100, 0, known_sps());
    EXPECT_EQ("0 to 3: aud sei slice, 4 fields", describe(scanner.scan(0), s));
    EXPECT_EQ("3 on: slice, 2 fields", describe(scanner.scan(s.starts[3]), s));
    EXPECT_EQ("0 to 3: aud sei slice, 4 fields", describe(scanner.scan(0), s));
}

TEST(FrameScanInput, SpsUpdatedIsNeverCleared)
{
    const stream s = framed({aud, slice(0), aud}, annexb);
    guarded_buffer scratch(20);
    h264_common_frame_scan_info info;
    h264_sps seq = known_sps();
    for (const bool before : {false, true}) {
        bool sps_updated = before;
        h264_common_frame_scan(info, sps_updated, seq, s.data.data(), s.data.data() + s.data.size(), 0, scratch.begin(),
                               scratch.size(), 0);
        EXPECT_EQ(before, sps_updated);
    }
}

TEST(FrameScanInput, AFirstUnitThatIsTooLargeIsPassedOver)
{
    const unit large = of_type(1, bytes(10, 0x88));
    for (std::size_t room = 0; room < 10; ++room)
        EXPECT_EQ((lines{"none, next 1: 2 fields"}), frames({large, aud, large}, {0, known_sps(), room})) << room;
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({large, aud, large}, {0, known_sps(), 10}));
    for (std::size_t room = 0; room < 10; ++room)
        EXPECT_EQ("none, next 2: 2 fields",
                  first_frame({end_of_stream, of_type(12, bytes(10, 0x88)), aud}, {0, known_sps(), room}))
            << "one that would be skipped too";
}

TEST(FrameScanInput, AUnitOfTheFrameThatIsTooLargeEndsTheCall)
{
    const unit large = of_type(1, bytes(10, 0x88));
    const unit large_sei = sei_of({{5, bytes(7, 1)}});
    for (std::size_t room = 3; room < 10; ++room) {
        const options with = {0, known_sps(), room};
        EXPECT_EQ((lines{"0, no room: aud, 2 fields"}), frames({aud, large, aud}, with)) << room;
        EXPECT_EQ((lines{"0, no room: pps, 2 fields"}), frames({pps, large_sei, large}, with)) << room;
        EXPECT_EQ((lines{"0, no room: slice, 2 fields"}), frames({slice(1, frame, 5), large}, with)) << room;
        EXPECT_EQ((lines{"0 to 1: slice, 2 fields", "1 on: aud, 2 fields"}), frames({slice(1), aud}, with)) << room;
    }
    EXPECT_EQ("0 to 2: aud slice, 2 fields", first_frame({aud, large, aud}, {0, known_sps(), 10}));
    EXPECT_EQ("0, no room: slice, 2 fields", first_frame({slice(1), large_sei, slice(2)}, {0, known_sps(), 9}))
        << "the unit that would end it too";
}

TEST(FrameScanInput, NothingIsWrittenOutsideOfTheRoom)
{
    const stream s = framed({aud, sps(support::full_sps()), slice(1)}, annexb);
    for (const auto side : {guarded_buffer::touching::start, guarded_buffer::touching::end}) {
        const guarded_buffer input(s.data, side);
        for (std::size_t room = 0; room < 20; ++room) {
            const guarded_buffer scratch(room, side);
            h264_common_frame_scan_info info;
            bool sps_updated = false;
            h264_sps seq;
            h264_common_frame_scan(info, sps_updated, seq, input.begin(), input.end(), 0, scratch.begin(), room, 0);
            EXPECT_TRUE(scratch.surroundings_untouched()) << room;
            EXPECT_EQ(room != 0, info.has_aud == 1);
        }
    }
}
