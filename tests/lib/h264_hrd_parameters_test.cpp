#include <orv-utils-v4/h264/hrd_parameters.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/vui_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using brenik::h264_hrd_parameters;
using support::hrd_description;
using support::hrd_of;
using support::with_valid;
using parsed_hrd = support::parsed<h264_hrd_parameters>;

h264_hrd_parameters earlier(std::uint32_t count, bool valid)
{
    return with_valid(valid, parsed_hrd(support::written(hrd_of(count))).object);
}

} // namespace

TEST(Hrd, NewParametersAreZeroEmptyAndInvalid)
{
    for (const support::value& field : support::fields_of(h264_hrd_parameters{}).values)
        EXPECT_EQ(support::value{}, field);
}

TEST(Hrd, EveryElementIsReadIntoItsField)
{
    hrd_description hrd;
    hrd.bit_rate_scale = 3;
    hrd.cpb_size_scale = 12;
    hrd.cpbs = {{100, 200, true}, {4294967294, 0, false}, {7, 2147483648, true}};
    hrd.initial_cpb_removal_delay_length_minus1 = 1;
    hrd.cpb_removal_delay_length_minus1 = 2;
    hrd.dpb_output_delay_length_minus1 = 4;
    hrd.time_offset_length = 8;
    const auto writer = support::written(hrd);
    const parsed_hrd p(writer);
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_EQ(2U, p->cpb_cnt_minus1);
    EXPECT_EQ(3, p->bit_rate_scale);
    EXPECT_EQ(12, p->cpb_size_scale);
    EXPECT_EQ((std::vector<std::uint32_t>{100, 4294967294, 7}), p->bit_rate_value_minus1);
    EXPECT_EQ((std::vector<std::uint32_t>{200, 0, 2147483648}), p->cpb_size_value_minus1);
    EXPECT_EQ((std::vector<bool>{true, false, true}), p->cbr_flag);
    EXPECT_EQ(1, p->initial_cpb_removal_delay_length_minus1);
    EXPECT_EQ(2, p->cpb_removal_delay_length_minus1);
    EXPECT_EQ(4, p->dpb_output_delay_length_minus1);
    EXPECT_EQ(8, p->time_offset_length);
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
}

TEST(Hrd, OneCpbTakesTwoCodesAndABit)
{
    const parsed_hrd p(support::bit_writer().ue(0).u(8, 0).ue(0).ue(0).flag(true).u(20, 0));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(1U, p->bit_rate_value_minus1.size());
    EXPECT_EQ(1U, p->cpb_size_value_minus1.size());
    EXPECT_EQ(std::vector<bool>{true}, p->cbr_flag);
    EXPECT_EQ(1U + 8 + 3 + 20, p.consumed());
}

TEST(Hrd, EveryCountTo128IsAccepted)
{
    for (std::uint32_t count = 1; count <= 128; ++count) {
        const auto writer = support::written(hrd_of(count));
        const parsed_hrd p(writer);
        EXPECT_TRUE(p.result) << count;
        ASSERT_EQ(count, p->bit_rate_value_minus1.size());
        ASSERT_EQ(count, p->cpb_size_value_minus1.size());
        ASSERT_EQ(count, p->cbr_flag.size());
        EXPECT_EQ(1000 + count - 1, p->bit_rate_value_minus1.back());
        EXPECT_EQ(5 * (count - 1), p->cpb_size_value_minus1.back());
        EXPECT_EQ((count - 1) % 3 == 1, p->cbr_flag.back());
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(Hrd, Count129AndAboveIsRefusedAfterThreeFieldsAndValidKeepsItsValue)
{
    for (const std::uint32_t cpb_cnt_minus1 : {128U, 129U, 255U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            hrd_description hrd = hrd_of(2);
            hrd.cpb_cnt_minus1 = cpb_cnt_minus1;
            hrd.bit_rate_scale = 5;
            hrd.cpb_size_scale = 6;
            const auto writer = support::written(hrd);
            const h264_hrd_parameters before = earlier(3, valid);
            const parsed_hrd p(writer, before);
            EXPECT_FALSE(p.result) << cpb_cnt_minus1;
            EXPECT_EQ(valid, p->valid) << cpb_cnt_minus1;
            h264_hrd_parameters expected = before;
            expected.cpb_cnt_minus1 = cpb_cnt_minus1;
            expected.bit_rate_scale = 5;
            expected.cpb_size_scale = 6;
            EXPECT_EQ("", difference(support::fields_of(expected), support::fields_of(p.object)));
            EXPECT_EQ(writer.elements()[3].position, p.consumed());
        }
}

TEST(Hrd, ASmallerCountShrinksTheArrays)
{
    const parsed_hrd p(support::written(hrd_of(2)), earlier(9, true));
    EXPECT_EQ((std::vector<std::uint32_t>{1000, 1001}), p->bit_rate_value_minus1);
    EXPECT_EQ((std::vector<std::uint32_t>{0, 5}), p->cpb_size_value_minus1);
    EXPECT_EQ((std::vector<bool>{false, true}), p->cbr_flag);
}

TEST(Hrd, TheLengthFieldsAreStoredAsRead)
{
    for (unsigned int length = 0; length < 32; ++length) {
        hrd_description hrd;
        hrd.initial_cpb_removal_delay_length_minus1 = length;
        hrd.cpb_removal_delay_length_minus1 = 31 - length;
        hrd.dpb_output_delay_length_minus1 = length ^ 5;
        hrd.time_offset_length = length ^ 16;
        const parsed_hrd p(support::written(hrd));
        EXPECT_EQ(length, p->initial_cpb_removal_delay_length_minus1);
        EXPECT_EQ(31 - length, p->cpb_removal_delay_length_minus1);
        EXPECT_EQ(length ^ 5, p->dpb_output_delay_length_minus1);
        EXPECT_EQ(length ^ 16, p->time_offset_length);
    }
}

TEST(Hrd, FixedWidthFieldsBehindTheEndAreZero)
{
    const auto writer = support::written(hrd_of(1));
    const parsed_hrd p(support::first_bits(writer.made(), writer.size_in_bits() - 20));
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_EQ(0, p->initial_cpb_removal_delay_length_minus1);
    EXPECT_EQ(0, p->time_offset_length);
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
}

TEST(Hrd, AMalformedCodeThrowsWithTheFieldsBeforeItKept)
{
    const auto writer = support::written(hrd_of(2));
    for (const support::element& e : writer.elements()) {
        if (e.how == support::descriptor::u)
            continue;
        for (const bool valid : {false, true}) {
            const support::guarded_buffer buffer(support::with_malformed_code(writer, e));
            brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
            h264_hrd_parameters hrd = earlier(1, valid);
            EXPECT_THROW(hrd.parse(br), brenik::h2645_common_malformed_code) << e.name;
            EXPECT_EQ(valid, hrd.valid) << e.name;
            EXPECT_EQ(e.position + 32, br.bits_consumed()) << e.name;
            EXPECT_EQ(e.name == "cpb_cnt_minus1" ? 1U : 2U, hrd.cbr_flag.size()) << e.name;
            EXPECT_EQ(e.name == "cpb_cnt_minus1" ? 0U : 1U, hrd.cpb_cnt_minus1) << e.name;
            EXPECT_EQ(23, hrd.time_offset_length - 1) << e.name;
        }
    }
}

TEST(Hrd, ACopyIsDeep)
{
    const h264_hrd_parameters original = earlier(3, true);
    h264_hrd_parameters copy = original;
    copy.bit_rate_value_minus1[1] = 1;
    copy.cpb_size_value_minus1.clear();
    copy.cbr_flag[1] = false;
    EXPECT_EQ(1001U, original.bit_rate_value_minus1[1]);
    EXPECT_EQ(3U, original.cpb_size_value_minus1.size());
    EXPECT_TRUE(original.cbr_flag[1]);
}
