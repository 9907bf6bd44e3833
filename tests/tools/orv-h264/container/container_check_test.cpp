// What a container says of key frames and times, held against the stream.
#include "container/container_check.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using orv_h264::container_check;
using orv_h264::container_ratio;
using orv_h264::picture_row;

constexpr container_ratio milliseconds = {1, 1000};

/// A picture that the stream shows at `shown` fortieths of a second, in a packet with these milliseconds.
picture_row row_at(std::int64_t shown, std::int64_t pts, std::int64_t dts)
{
    picture_row row;
    row.offset = 100 + static_cast<std::uint64_t>(dts);
    row.pts = {shown, 40};
    row.time_source = orv_h264::h264::time_source::constant_rate;
    row.packet.emplace();
    row.packet->pts = pts;
    row.packet->dts = dts;
    row.packet->key = false;
    return row;
}

std::vector<std::string> found_in(container_check& check)
{
    check.finish();
    std::vector<std::string> lines;
    for (const orv_h264::problem_kind& kind : check.findings().kinds())
        lines.push_back(describe(kind));
    return lines;
}

using lines = std::vector<std::string>;

TEST(ContainerCheck, TimesThatAgreeButForAShiftAreFine)
{
    container_check check(milliseconds);
    for (const std::int64_t shown : {0, 3, 1, 2, 6, 4, 5})
        check.add(row_at(shown, 1000 + 25 * shown, 25 * static_cast<std::int64_t>(check.packets())));
    EXPECT_EQ(lines(), found_in(check));
    EXPECT_EQ(7U, check.packets());
    EXPECT_EQ(1000, check.first_pts());
    EXPECT_EQ(1150, check.last_pts());
    EXPECT_EQ(0U, check.keys());
}

TEST(ContainerCheck, TicksThatAreTooCoarseAreNoDifference)
{
    container_check check({1, 100});
    for (std::int64_t i = 0; i < 20; ++i)
        check.add(row_at(i, (25 * i + 9) / 10, i)); // rounded up, or to the tick before
    EXPECT_EQ(lines(), found_in(check));
}

TEST(ContainerCheck, AnotherRateIsTold)
{
    container_check check(milliseconds);
    for (std::int64_t i = 0; i < 9; ++i)
        check.add(row_at(i, 20 * i, 20 * i));
    EXPECT_EQ(lines{"offset 100: the container shows 50.000 pictures a second, the stream says 40.000"},
              found_in(check));
}

TEST(ContainerCheck, PicturesAtOtherTimesAreCounted)
{
    container_check check(milliseconds);
    for (std::int64_t i = 0; i < 9; ++i)
        check.add(row_at(i, 25 * i + (i == 3 || i == 5 ? 10 : 0), 25 * i));
    EXPECT_EQ(
        lines{"offset 175: 2 of 9 pictures are shown at other times by the container than the stream says, beside "
              "the first of all; this is the first of them"},
        found_in(check));
}

TEST(ContainerCheck, TimesThatTheStreamDoesNotTellAreNotCompared)
{
    container_check check(milliseconds);
    for (std::int64_t i = 0; i < 9; ++i) {
        picture_row row = row_at(i, 40 * i, 40 * i);
        row.time_source = orv_h264::h264::time_source::assumed_rate;
        check.add(row);
    }
    EXPECT_EQ(lines(), found_in(check));
}

TEST(ContainerCheck, KeyFlagsAreHeldAgainstThePictures)
{
    const auto with_key = [](std::int64_t i, bool key, bool idr, bool recovers) {
        picture_row row = row_at(i, 25 * i, 25 * i);
        row.packet->key = key;
        row.idr = idr;
        if (recovers)
            row.recovery_frame_cnt = 0;
        return row;
    };
    container_check check(milliseconds);
    check.add(with_key(0, true, true, false));
    check.add(with_key(1, false, false, false));
    check.add(with_key(2, true, false, true));
    check.add(with_key(3, false, false, true)); // a container need not mark it
    EXPECT_EQ(lines(), found_in(check));
    check.add(with_key(4, true, false, false));
    check.add(with_key(5, false, true, false));
    EXPECT_EQ(
        (lines{"offset 200: marked as a key frame by the container, and neither an IDR picture nor a recovery point",
               "offset 225: IDR picture that the container does not mark as a key frame"}),
        found_in(check));
    EXPECT_EQ(3U, check.keys());
}

TEST(ContainerCheck, WhereNoKeysAreToldNoneIsMissing)
{
    picture_row row = row_at(0, 0, 0);
    row.idr = true;
    row.packet->key.reset();
    container_check check(milliseconds);
    check.add(row);
    EXPECT_EQ(lines(), found_in(check));
    EXPECT_EQ(std::nullopt, check.keys());
}

TEST(ContainerCheck, DecodingTimesGoUpAndComeFirst)
{
    container_check check(milliseconds);
    check.add(row_at(0, 50, 0));
    check.add(row_at(1, 75, 25));
    check.add(row_at(2, 100, 25));
    check.add(row_at(3, 125, 126));
    EXPECT_EQ((lines{"offset 125: the container decodes it no later than the picture before",
                     "offset 226: the container shows it before it is decoded"}),
              found_in(check));
}

TEST(ContainerCheck, RowsWithoutAPacketOfTheirOwnDoNotCount)
{
    picture_row row = row_at(0, 0, 0);
    row.packet.reset();
    container_check check(milliseconds);
    check.add(row);
    EXPECT_EQ(0U, check.packets());
    EXPECT_EQ(std::nullopt, check.first_pts());
}

TEST(ContainerTime, IsAnExactFraction)
{
    const auto expect = [](std::int64_t numerator, std::int64_t denominator, orv_h264::h264::exact_time time) {
        EXPECT_EQ(numerator, time.numerator);
        EXPECT_EQ(denominator, time.denominator);
    };
    expect(1001, 30000, orv_h264::time_of(3003, {1, 90000}));
    expect(-1, 2, orv_h264::time_of(-45000, {1, 90000}));
    expect(0, 1, orv_h264::time_of(0, {1, 90000}));
    expect(1001, 1200, orv_h264::time_of(5, {6006, 36000}));
    EXPECT_FALSE(orv_h264::time_of(std::nullopt, {1, 90000}));
    EXPECT_FALSE(orv_h264::time_of(1, {}));
    EXPECT_FALSE(orv_h264::time_of(INT64_MAX, {7, 2})) << "more than 63 bits";
}

} // namespace
