#include "group_counter.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using orv_h264::group_counter;
using orv_h264::group_totals;
using orv_h264::picture_row;
using orv_h264::reorder_meter;

picture_row other(std::optional<std::uint64_t> output_number)
{
    picture_row row;
    row.output_number = output_number;
    return row;
}

picture_row idr(std::uint64_t output_number)
{
    picture_row row = other(output_number);
    row.idr = true;
    return row;
}

picture_row recovery(std::uint64_t output_number, std::uint32_t recovery_frame_cnt = 0)
{
    picture_row row = other(output_number);
    row.recovery_frame_cnt = recovery_frame_cnt;
    return row;
}

group_totals totals_of(const std::vector<picture_row>& rows)
{
    group_counter counter;
    for (const picture_row& row : rows)
        counter.add(row);
    return counter.totals();
}

std::vector<std::uint32_t> depths_of(const std::vector<std::optional<std::uint64_t>>& output_numbers)
{
    reorder_meter meter;
    std::vector<std::uint32_t> depths;
    depths.reserve(output_numbers.size());
    for (const auto& number : output_numbers)
        depths.push_back(meter.add(other(number)));
    return depths;
}

} // namespace

TEST(GroupCounter, BeforeAKeyPictureThereIsNoGroup)
{
    const group_totals totals = totals_of({other(0), other(1)});
    EXPECT_EQ(0U, totals.closed + totals.open + totals.gradual + totals.recovery_points);
}

TEST(GroupCounter, AGroupIsOpenWhenAPictureLeadsItsKeyPicture)
{
    const group_totals closed = totals_of({idr(0), other(2), other(1), recovery(3), other(5), other(4)});
    EXPECT_EQ(2U, closed.closed);
    EXPECT_EQ(0U, closed.open);
    const group_totals open = totals_of({idr(0), other(1), recovery(4), other(2), other(3), recovery(5), other(6)});
    EXPECT_EQ(2U, open.closed);
    EXPECT_EQ(1U, open.open) << "however many lead";
    EXPECT_EQ(2U, open.recovery_points);
}

TEST(GroupCounter, AnIdrPictureClosesWhateverComes)
{
    EXPECT_EQ(1U, totals_of({idr(5), other(3)}).closed) << "only a damaged stream has that";
}

TEST(GroupCounter, APictureThatIsNotOutputLeadsNothing)
{
    EXPECT_EQ(1U, totals_of({recovery(5), other(std::nullopt)}).closed);
    picture_row key = recovery(0);
    key.output_number.reset();
    EXPECT_EQ(1U, totals_of({key, other(0)}).closed);
}

TEST(GroupCounter, AGradualRefreshIsAKindOfItsOwn)
{
    const group_totals totals = totals_of({idr(0), recovery(5, 12), other(4), recovery(7, 3), recovery(8, 0)});
    EXPECT_EQ(2U, totals.gradual);
    EXPECT_EQ(2U, totals.closed);
    EXPECT_EQ(0U, totals.open);
    EXPECT_EQ(3U, totals.recovery_points);
    EXPECT_EQ(0U, totals.least_recovery_frame_cnt);
    EXPECT_EQ(12U, totals.most_recovery_frame_cnt);
    picture_row both = idr(0);
    both.recovery_frame_cnt = 7;
    EXPECT_EQ(1U, totals_of({both}).closed) << "an IDR picture is right at once";
    EXPECT_EQ(1U, totals_of({both}).recovery_points);
}

TEST(ReorderMeter, CountsThePicturesThatComeBeforeAndFollow)
{
    using depths = std::vector<std::uint32_t>;
    EXPECT_EQ((depths{0, 0, 0}), depths_of({0, 1, 2}));
    EXPECT_EQ((depths{0, 0, 1, 0, 1}), depths_of({0, 2, 1, 4, 3}));
    EXPECT_EQ((depths{0, 0, 1, 2, 1}), depths_of({0, 4, 2, 1, 3}));
    EXPECT_EQ((depths{0, 1, 2, 3}), depths_of({3, 2, 1, 0}));
    EXPECT_EQ((depths{0, 0, 1}), depths_of({5, std::nullopt, 3})) << "one without a place is left out";
}

TEST(ReorderMeter, TellsDepthsUpToItsBound)
{
    reorder_meter meter;
    constexpr std::uint64_t most = reorder_meter::most_depth;
    for (std::uint64_t i = 0; i < 3 * most; ++i)
        EXPECT_EQ(std::min(i, most), meter.add(other(1000 - i)));
    EXPECT_EQ(0U, meter.add(other(2000)));
    EXPECT_EQ(1U, meter.add(other(1500)));
    EXPECT_EQ(most, meter.add(other(1)));
}
