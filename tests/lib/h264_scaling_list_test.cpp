#include <orv-utils-v4/h264/scaling_list.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/sps_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using brenik::h264_scaling_list;
using support::scaling_list_description;
using values = std::vector<std::uint8_t>;

struct parsed_list : support::parsed<h264_scaling_list> {
    parsed_list(unsigned int size, const scaling_list_description& list, const h264_scaling_list& before = {})
        : parsed(support::written(list), before, size)
    {
    }
};

h264_scaling_list list_before(bool flag)
{
    h264_scaling_list list;
    list.values = {7, 8, 9};
    list.useDefaultScalingMatrixFlag = list.present = list.valid = flag;
    return list;
}

struct example {
    unsigned int size;
    scaling_list_description sent;
    values entries;
    bool is_default;
};

const values any_16 = {6, 13, 13, 20, 20, 20, 28, 28, 255, 1, 32, 32, 37, 37, 42, 128};

const example examples[] = {
    {16, {std::vector<std::int32_t>(16, 0)}, values(16, 8), false},
    {16, support::list_of(any_16), any_16, false},
    {64, {std::vector<std::int32_t>(64, 0)}, values(64, 8), false},
    {64, {{-8}}, values(64, 8), true},
    {16, {{248}}, values(16, 8), true}, // every first delta that wraps to 0
    {16, {{-264}}, values(16, 8), true},
    {16, {{2147483640}}, values(16, 8), true},
    {16, {{1, 1, 1, 1, 1, -13}}, {9, 10, 11, 12, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13}, false},
    {2, {{2, -10}}, {10, 10}, false}, // a zero at the last entry
    {3, {{242, 10, -5}}, {250, 4, 255}, false},
};

} // namespace

TEST(ScalingList, AnEntryIsTheOneBeforePlusItsDeltaAndAZeroRepeatsTheLast)
{
    for (const example& e : examples)
        for (const bool flag : {false, true}) {
            const parsed_list p(e.size, e.sent, list_before(flag));
            EXPECT_TRUE(p.result && p->valid);
            EXPECT_EQ(e.entries, p->values);
            EXPECT_EQ(e.is_default, p->useDefaultScalingMatrixFlag);
            EXPECT_EQ(flag, p->present) << "the owner writes it";
            EXPECT_EQ(support::written(e.sent).size_in_bits(), p.consumed());
        }
}

TEST(ScalingList, DeltasOfAnySizeWrap)
{
    const std::int32_t largest = 2147483647;
    struct {
        std::int32_t delta;
        std::uint8_t entry;
    } const cases[] = {{largest, 7}, {-largest, 9}, {256, 8},  {-256, 8},
                       {127, 135},   {-128, 136},   {-255, 9}, {1000, 240}};
    for (const auto& c : cases) {
        const parsed_list p(2, {{c.delta, 0}});
        EXPECT_TRUE(p.result) << c.delta;
        EXPECT_EQ((values{c.entry, c.entry}), p->values) << c.delta;
        EXPECT_FALSE(p->useDefaultScalingMatrixFlag) << c.delta;
    }
}

TEST(ScalingList, Size128IsAcceptedAnd129ChangesNothing)
{
    for (const bool flag : {false, true}) {
        const parsed_list accepted(128, {std::vector<std::int32_t>(128, 1)}, list_before(flag));
        EXPECT_TRUE(accepted.result);
        EXPECT_TRUE(accepted->valid);
        EXPECT_EQ(128U, accepted->values.size());
        EXPECT_EQ(136, accepted->values.back());
        for (const unsigned int size : {129U, 256U, 0x80000000U, 0xFFFFFFFFU}) {
            const parsed_list refused(size, {{1, 1, 1}}, list_before(flag));
            EXPECT_FALSE(refused.result) << size;
            EXPECT_EQ(support::fields_of(list_before(flag)), support::fields_of(refused.object)) << size;
            EXPECT_EQ(0U, refused.consumed()) << size;
        }
    }
}

TEST(ScalingList, Size0EmptiesTheListAndReadsNothing)
{
    for (const bool flag : {false, true}) {
        const parsed_list p(0, {{-8}}, list_before(flag));
        EXPECT_TRUE(p.result);
        EXPECT_TRUE(p->valid);
        EXPECT_TRUE(p->values.empty());
        EXPECT_EQ(flag, p->useDefaultScalingMatrixFlag);
        EXPECT_EQ(flag, p->present);
        EXPECT_EQ(0U, p.consumed());
    }
}
