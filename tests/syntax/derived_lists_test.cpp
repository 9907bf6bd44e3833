// Scaling lists: what was sent, what they fall back on (Table 7-2), and the defaults (Tables 7-3 and 7-4).
#include "support/small_units.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;

using values = std::vector<int>;

/// The entries of a square matrix in the order of the zig-zag scan, clause 8.5.6.
values zig_zag(const values& raster, std::size_t side)
{
    values scanned;
    for (std::size_t diagonal = 0; diagonal <= 2 * (side - 1); ++diagonal) {
        for (std::size_t step = 0; step <= diagonal; ++step) {
            const std::size_t row = diagonal % 2 == 0 ? diagonal - step : step;
            const std::size_t column = diagonal - row;
            if (row < side && column < side)
                scanned.push_back(raster[row * side + column]);
        }
    }
    return scanned;
}

/// All default matrices have equal entries along their diagonals, but for the second one of 8x8.
values of_diagonals(const values& diagonals, std::size_t side, int middle_of_third)
{
    values raster;
    for (std::size_t i = 0; i < side * side; ++i)
        raster.push_back(diagonals[i / side + i % side]);
    raster[side + 1] = middle_of_third;
    return zig_zag(raster, side);
}

const values default_4x4_intra = of_diagonals({6, 13, 20, 28, 32, 37, 42}, 4, 20);
const values default_4x4_inter = of_diagonals({10, 14, 20, 24, 27, 30, 34}, 4, 20);
const values default_8x8_intra = of_diagonals({6, 10, 13, 16, 18, 23, 25, 27, 29, 31, 33, 36, 38, 40, 42}, 8, 11);
const values default_8x8_inter = of_diagonals({9, 13, 15, 17, 19, 21, 22, 24, 25, 27, 28, 30, 32, 33, 35}, 8, 13);

/// List i of the syntax, 0 to 11.
values list(const scaling_lists& lists, unsigned i)
{
    return i < 6 ? values(lists.list_4x4[i], lists.list_4x4[i] + 16)
                 : values(lists.list_8x8[i - 6], lists.list_8x8[i - 6] + 64);
}
values flat(int value, unsigned i)
{
    return values(i < 6 ? 16 : 64, value);
}
const values& default_of(unsigned i)
{
    if (i < 6)
        return i < 3 ? default_4x4_intra : default_4x4_inter;
    return i % 2 == 0 ? default_8x8_intra : default_8x8_inter;
}

scaling_list deltas(std::initializer_list<int> sent)
{
    scaling_list list;
    for (const int delta : sent) {
        list.delta_scale.grow();
        list.delta_scale.back() = static_cast<std::int16_t>(delta);
    }
    return list;
}
/// All entries have the value: the second delta ends the list.
scaling_list sent_flat(int value)
{
    return deltas({value - 8, -value});
}

seq_parameter_set_data sps_with(std::initializer_list<std::pair<unsigned, scaling_list>> sent)
{
    seq_parameter_set_data sps = sps_data();
    sps.profile_idc = 100;
    sps.seq_scaling_matrix_present_flag = true;
    for (const auto& [i, scaling] : sent) {
        sps.seq_scaling_list_present_flag[i] = true;
        sps.lists[i] = scaling;
    }
    return sps;
}
pic_parameter_set_rbsp pps_with(std::initializer_list<std::pair<unsigned, scaling_list>> sent)
{
    pic_parameter_set_rbsp pps = pps_rbsp();
    pps.pic_scaling_matrix_present_flag = true;
    for (const auto& [i, scaling] : sent) {
        pps.pic_scaling_list_present_flag[i] = true;
        pps.lists[i] = scaling;
    }
    return pps;
}
/// List i is flat, of 20 + i.
seq_parameter_set_data sps_with_all()
{
    seq_parameter_set_data sps = sps_with({});
    for (unsigned i = 0; i < 12; ++i) {
        sps.seq_scaling_list_present_flag[i] = true;
        sps.lists[i] = sent_flat(20 + static_cast<int>(i));
    }
    return sps;
}

TEST(DerivedLists, WithoutAMatrixTheyAreFlat)
{
    const scaling_lists lists = scaling_lists_of(sps_data(), nullptr);
    for (unsigned i = 0; i < 12; ++i)
        EXPECT_EQ(list(lists, i), flat(16, i)) << i;
}

TEST(DerivedLists, EachListHoldsWhatItsDeltasAddUpTo)
{
    const scaling_lists all = scaling_lists_of(sps_with_all(), nullptr);
    for (unsigned i = 0; i < 12; ++i)
        EXPECT_EQ(list(all, i), flat(20 + static_cast<int>(i), i)) << i;

    // 8 + 2, 10 + 127 = 137, 137 - 128 = 9, 9 - 10 = 255 modulo 256, and 1 more is 0: the last goes on
    const scaling_lists one = scaling_lists_of(sps_with({{0, deltas({2, 127, -128, -10, 1})}}), nullptr);
    values expected = {10, 137, 9};
    expected.resize(16, 255);
    EXPECT_EQ(list(one, 0), expected);
}

TEST(DerivedLists, AFirstDeltaToZeroMeansTheDefault)
{
    seq_parameter_set_data sps = sps_with_all();
    for (scaling_list& sent : sps.lists)
        sent = deltas({-8});
    const scaling_lists lists = scaling_lists_of(sps, nullptr);
    for (unsigned i = 0; i < 12; ++i)
        EXPECT_EQ(list(lists, i), default_of(i)) << i;
}

TEST(DerivedLists, RuleAFallsBackOnTheDefaults)
{
    const scaling_lists of_sps = scaling_lists_of(sps_with({}), nullptr);
    const pic_parameter_set_rbsp pps = pps_with({});
    const scaling_lists of_pps = scaling_lists_of(sps_data(), &pps);
    for (unsigned i = 0; i < 12; ++i) {
        EXPECT_EQ(list(of_sps, i), default_of(i)) << i;
        EXPECT_EQ(list(of_pps, i), default_of(i)) << i;
    }
}

TEST(DerivedLists, OtherListsFallBackOnTheOneBefore)
{
    const auto sent = {std::pair(0U, sent_flat(40)), std::pair(3U, sent_flat(41)), std::pair(6U, sent_flat(42)),
                       std::pair(7U, sent_flat(43))};
    const pic_parameter_set_rbsp pps = pps_with(sent);
    constexpr int expected[] = {40, 40, 40, 41, 41, 41, 42, 43, 42, 43, 42, 43};
    const scaling_lists of_sps = scaling_lists_of(sps_with(sent), nullptr);
    const scaling_lists of_pps = scaling_lists_of(sps_with_all(), &pps);
    for (unsigned i = 0; i < 12; ++i) {
        EXPECT_EQ(list(of_sps, i), flat(expected[i], i)) << i;
        EXPECT_EQ(list(of_pps, i), flat(expected[i], i)) << i;
    }
}

TEST(DerivedLists, AListInTheMiddleIsFallenBackOnToo)
{
    const scaling_lists lists = scaling_lists_of(sps_with({{1, sent_flat(50)}, {9, sent_flat(51)}}), nullptr);
    EXPECT_EQ(list(lists, 0), default_4x4_intra);
    EXPECT_EQ(list(lists, 2), flat(50, 2));
    EXPECT_EQ(list(lists, 7), default_8x8_inter);
    EXPECT_EQ(list(lists, 11), flat(51, 11));
    EXPECT_EQ(list(lists, 10), default_8x8_intra);
}

TEST(DerivedLists, RuleBFallsBackOnTheListsOfTheSps)
{
    const pic_parameter_set_rbsp pps = pps_with({});
    const scaling_lists lists = scaling_lists_of(sps_with_all(), &pps);
    constexpr int expected[] = {20, 20, 20, 23, 23, 23, 26, 27, 26, 27, 26, 27};
    for (unsigned i = 0; i < 12; ++i)
        EXPECT_EQ(list(lists, i), flat(expected[i], i)) << i;
}

TEST(DerivedLists, APpsWithoutAMatrixTakesThoseOfTheSps)
{
    const pic_parameter_set_rbsp pps = pps_rbsp();
    const scaling_lists lists = scaling_lists_of(sps_with_all(), &pps);
    EXPECT_EQ(list(lists, 1), flat(21, 1));
    EXPECT_EQ(list(lists, 11), flat(31, 11));
}

} // namespace
