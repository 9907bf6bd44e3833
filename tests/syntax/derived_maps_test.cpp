// Slice group maps against maps that were drawn by hand, 5 map units across and 4 down.
#include "support/small_units.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;

constexpr std::uint32_t across = 5;
constexpr std::uint32_t down = 4;

pic_parameter_set_rbsp groups(std::uint32_t number, std::uint32_t type)
{
    pic_parameter_set_rbsp pps = pps_rbsp();
    pps.num_slice_groups_minus1 = number - 1;
    pps.slice_group_map_type = type;
    return pps;
}

/// The groups of the map units, a row behind the other.
std::string map_of(const pic_parameter_set_rbsp& pps, std::uint32_t slice_group_change_cycle = 0)
{
    std::vector<std::uint8_t> map(std::size_t{across} * down, 9);
    EXPECT_TRUE(slice_group_map(sps_data(0, across, down), pps, slice_group_change_cycle, map.data(), map.size()));
    std::string rows;
    for (std::size_t i = 0; i < map.size(); ++i)
        rows += (i % across == 0 && i != 0 ? " " : "") + std::to_string(map[i]);
    return rows;
}

/// Of types 3 to 5, with 7 map units in slice group 0.
std::string map_of_seven(std::uint32_t type, bool slice_group_change_direction_flag)
{
    pic_parameter_set_rbsp pps = groups(2, type);
    pps.slice_group_change_direction_flag = slice_group_change_direction_flag;
    return map_of(pps, 7);
}

TEST(DerivedMaps, OneGroupIsEverywhere)
{
    EXPECT_EQ(map_of(groups(1, 3), 5), "00000 00000 00000 00000");
}

TEST(DerivedMaps, RunsOfTheGroupsFollowOneAnother)
{
    pic_parameter_set_rbsp pps = groups(3, 0);
    pps.run_length_minus1[0] = 1;
    pps.run_length_minus1[2] = 2;
    EXPECT_EQ(map_of(pps), "00122 20012 22001 22200");
    pps.run_length_minus1[1] = 0xFFFFFFFE;
    EXPECT_EQ(map_of(pps), "00111 11111 11111 11111");
}

TEST(DerivedMaps, DispersedGroupsAreShiftedFromRowToRow)
{
    EXPECT_EQ(map_of(groups(2, 1)), "01010 10101 01010 10101");
    EXPECT_EQ(map_of(groups(3, 1)), "01201 12012 01201 12012");
    EXPECT_EQ(map_of(groups(4, 1)), "01230 23012 01230 23012");
}

TEST(DerivedMaps, OfRectanglesThatOverlapTheLowerGroupCounts)
{
    pic_parameter_set_rbsp pps = groups(3, 2);
    pps.top_left[0] = 1;
    pps.bottom_right[0] = 7;
    pps.top_left[1] = 6;
    pps.bottom_right[1] = 18;
    EXPECT_EQ(map_of(pps), "20022 20012 21112 21112");
}

TEST(DerivedMaps, ARectangleBeyondThePictureIsCutOff)
{
    pic_parameter_set_rbsp pps = groups(2, 2);
    pps.top_left[0] = 13;
    pps.bottom_right[0] = 0xFFFFFFFE;
    EXPECT_EQ(map_of(pps), "11111 11111 11100 11100");
    pps.top_left[0] = 0xFFFFFFFE;
    EXPECT_EQ(map_of(pps), "11111 11111 11111 11111");
}

TEST(DerivedMaps, ABoxGrowsFromTheMiddleInBothDirections)
{
    EXPECT_EQ(map_of_seven(3, false), "11111 10001 10001 11101");
    EXPECT_EQ(map_of_seven(3, true), "10001 11001 11001 11111");
}

TEST(DerivedMaps, ABoxGrowsToTheWholePicture)
{
    for (const bool direction : {false, true}) {
        pic_parameter_set_rbsp pps = groups(2, 3);
        pps.slice_group_change_direction_flag = direction;
        std::size_t before = 20;
        for (std::uint32_t cycle = 0; cycle <= across * down; ++cycle) {
            const std::string map = map_of(pps, cycle);
            const auto in_group_1 = static_cast<std::size_t>(std::count(map.begin(), map.end(), '1'));
            EXPECT_EQ(in_group_1, before) << cycle;
            before -= before == 0 ? 0 : 1;
        }
    }
}

TEST(DerivedMaps, ARasterScanIsCutInTwo)
{
    EXPECT_EQ(map_of_seven(4, false), "00000 00111 11111 11111");
    EXPECT_EQ(map_of_seven(4, true), "11111 11111 11100 00000");
}

TEST(DerivedMaps, AWipeGoesColumnByColumn)
{
    EXPECT_EQ(map_of_seven(5, false), "00111 00111 00111 01111");
    EXPECT_EQ(map_of_seven(5, true), "11110 11100 11100 11100");
}

TEST(DerivedMaps, TheChangeCycleCountsInUnitsOfTheRateUpToThePicture)
{
    pic_parameter_set_rbsp pps = groups(2, 4);
    pps.slice_group_change_rate_minus1 = 3;
    EXPECT_EQ(map_of(pps, 2), "00000 00011 11111 11111");
    EXPECT_EQ(map_of(pps, 5), "00000 00000 00000 00000");
    EXPECT_EQ(map_of(pps, 6), "00000 00000 00000 00000");
    EXPECT_EQ(map_of(pps, 0xFFFFFFFF), "00000 00000 00000 00000");
}

TEST(DerivedMaps, AMapThatIsSentIsTaken)
{
    pic_parameter_set_rbsp pps = groups(3, 6);
    for (std::uint32_t i = 0; i < across * down; ++i)
        pps.slice_group_id.push_back(static_cast<std::uint8_t>(i % 3));
    EXPECT_EQ(map_of(pps), "01201 20120 12012 01201");
}

TEST(DerivedMaps, WithoutRoomOrEntriesNothingIsWritten)
{
    std::vector<std::uint8_t> map(std::size_t{across} * down, 9);
    const std::vector<std::uint8_t> untouched = map;
    const seq_parameter_set_data sps = sps_data(0, across, down);
    EXPECT_FALSE(slice_group_map(sps, groups(2, 1), 0, map.data(), map.size() - 1));
    pic_parameter_set_rbsp sent = groups(2, 6);
    sent.slice_group_id.resize(map.size() - 1);
    EXPECT_FALSE(slice_group_map(sps, sent, 0, map.data(), map.size()));
    EXPECT_FALSE(slice_group_map(sps, groups(9, 0), 0, map.data(), map.size()));
    EXPECT_EQ(map, untouched);
}

TEST(DerivedMaps, ASliceGroupIdHasTheBitsThatTellTheGroupsApart)
{
    constexpr unsigned bits[] = {0, 1, 2, 2, 3, 3, 3, 3};
    for (std::uint32_t number = 1; number <= 8; ++number)
        EXPECT_EQ(slice_group_id_bits(groups(number, 6)), bits[number - 1]) << number;
}

// Ceil( Log2( 20 / rate + 1 ) ): of 20 / 6 the quotient counts, not its whole part
TEST(DerivedMaps, TheChangeCycleHasTheBitsOfTheExactQuotient)
{
    struct row {
        std::uint32_t rate;
        std::uint64_t highest;
        unsigned bits;
    };
    constexpr row table[] = {{1, 20, 5}, {2, 10, 4}, {3, 7, 3},  {6, 4, 3},
                             {7, 3, 2},  {19, 2, 2}, {20, 1, 1}, {99, 1, 1}};
    for (const row& r : table) {
        pic_parameter_set_rbsp pps = groups(2, 3);
        pps.slice_group_change_rate_minus1 = r.rate - 1;
        EXPECT_EQ(highest_slice_group_change_cycle(sps_data(0, across, down), pps), r.highest) << r.rate;
        EXPECT_EQ(slice_group_change_cycle_bits(sps_data(0, across, down), pps), r.bits) << r.rate;
    }
}

} // namespace
