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
using support::with_valid;
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

} // namespace

TEST(ScalingList, ANewListIsEmptyAndFalse)
{
    const h264_scaling_list list{};
    EXPECT_TRUE(list.values.empty());
    EXPECT_FALSE(list.useDefaultScalingMatrixFlag);
    EXPECT_FALSE(list.present);
    EXPECT_FALSE(list.valid);
}

TEST(ScalingList, SixteenDeltasOfZeroMakeSixteenEights)
{
    const parsed_list p(16, {std::vector<std::int32_t>(16, 0)}, list_before(true));
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_EQ(values(16, 8), p->values);
    EXPECT_FALSE(p->useDefaultScalingMatrixFlag);
    EXPECT_EQ(16U, p.consumed());
}

TEST(ScalingList, AFirstDeltaOfMinusEightMeansTheDefaultList)
{
    const parsed_list p(64, {{-8}});
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_EQ(values(64, 8), p->values);
    EXPECT_TRUE(p->useDefaultScalingMatrixFlag);
    EXPECT_EQ(9U, p.consumed());
}

TEST(ScalingList, EveryEntryIsTheLastOnePlusItsDelta)
{
    const values expected = {6, 13, 13, 20, 20, 20, 28, 28, 255, 1, 32, 32, 37, 37, 42, 128};
    const parsed_list p(16, support::list_of(expected));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(expected, p->values);
}

TEST(ScalingList, AFullListOfSixtyFourEntriesParses)
{
    values expected;
    for (unsigned int i = 1; i <= 64; ++i)
        expected.push_back(static_cast<std::uint8_t>(3 * i));
    const parsed_list p(64, support::list_of(expected));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(expected, p->values);
}

TEST(ScalingList, SumsAboveEightBitsWrap)
{
    const parsed_list p(3, {{242, 10, -5}});
    EXPECT_EQ((values{250, 4, 255}), p->values);
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

TEST(ScalingList, EveryFirstDeltaThatWrapsToZeroMeansTheDefaultList)
{
    for (const std::int32_t delta : {-8, 248, -264, 504, 2147483640, -2147483400}) {
        const parsed_list p(16, {{delta}});
        EXPECT_TRUE(p->useDefaultScalingMatrixFlag) << delta;
        EXPECT_EQ(values(16, 8), p->values) << delta;
        EXPECT_EQ(support::written(scaling_list_description{{delta}}).size_in_bits(), p.consumed()) << delta;
    }
}

TEST(ScalingList, ALaterZeroRepeatsTheLastEntryAndReadsNothingMore)
{
    const parsed_list p(16, {{1, 1, 1, 1, 1, -13}}, list_before(true));
    EXPECT_TRUE(p.result);
    EXPECT_EQ((values{9, 10, 11, 12, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13}), p->values);
    EXPECT_FALSE(p->useDefaultScalingMatrixFlag);
    EXPECT_EQ(5 * 3U + 9, p.consumed());
}

TEST(ScalingList, AZeroAtTheLastEntryRepeatsToo)
{
    const parsed_list p(2, {{2, -10}});
    EXPECT_EQ((values{10, 10}), p->values);
    EXPECT_FALSE(p->useDefaultScalingMatrixFlag);
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

TEST(ScalingList, PresentIsTheOwnersToWrite)
{
    for (const bool flag : {false, true})
        EXPECT_EQ(flag, parsed_list(4, {{1, 1, 1, 1}}, list_before(flag))->present);
}

TEST(ScalingList, ASecondParseShortensTheListAndClearsTheDefault)
{
    const parsed_list first(64, {{-8}});
    const parsed_list second(16, {std::vector<std::int32_t>(16, 2)}, first.object);
    EXPECT_EQ(16U, second->values.size());
    EXPECT_EQ(40, second->values.back());
    EXPECT_FALSE(second->useDefaultScalingMatrixFlag);
}

TEST(ScalingList, AMalformedDeltaThrowsAndKeepsWhatWasStored)
{
    const auto list = support::written(support::list_of({20, 30, 40, 50}));
    for (const support::element& delta : list.elements())
        for (const bool valid : {false, true}) {
            const support::guarded_buffer buffer(support::with_malformed_code(list, delta));
            brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
            h264_scaling_list object = with_valid<h264_scaling_list>(valid);
            EXPECT_THROW(object.parse(br, 4), brenik::h2645_common_malformed_code);
            EXPECT_EQ(valid, object.valid);
            values expected = {20, 30, 40, 50};
            std::fill(expected.begin() + static_cast<std::ptrdiff_t>(delta.entry), expected.end(), std::uint8_t{0});
            EXPECT_EQ(expected, object.values);
        }
}

TEST(ScalingList, AnEmptyRangeThrows)
{
    brenik::h2645_common_bitreader br(nullptr, nullptr);
    h264_scaling_list list;
    EXPECT_THROW(list.parse(br, 16), brenik::h2645_common_malformed_code);
    EXPECT_FALSE(list.valid);
}
