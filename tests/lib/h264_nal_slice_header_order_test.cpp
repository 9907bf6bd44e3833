// The numbers of frames and the order of pictures: widths that the SPS says, fields, and what an object keeps.
#include <orv-utils-v4/h264/nal_slice_header.h>

#include "support/parsed_slice.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_slice_header;
using support::full_field_slice;
using support::parsed_slice;
using support::slice_context;
using support::slice_header_description;
using support::written;

h264_nal_slice_header with_field_pic_flag()
{
    h264_nal_slice_header object;
    object.field_pic_flag = object.bottom_field_flag = true;
    return object;
}

/// A value of which every 32 bits differ from their neighbours.
constexpr std::uint64_t pattern = 0x9E3779B97F4A7C15;

std::uint64_t low_bits(unsigned int width)
{
    return width < 64 ? pattern & ((std::uint64_t{1} << width) - 1) : pattern;
}

struct odd_width {
    std::uint32_t log2_minus4;
    unsigned int width;
};

/// The width is kept in 8 bits.
constexpr odd_width odd_widths[] = {{13, 17}, {20, 24},        {21, 25},        {22, 26},       {27, 31},
                                    {28, 32}, {29, 33},        {46, 50},        {47, 51},       {60, 64},
                                    {61, 65}, {250, 254},      {251, 255},      {252, 0},       {253, 1},
                                    {256, 4}, {0xFFFFFFFC, 0}, {0xFFFFFFFD, 1}, {0xFFFFFFFE, 2}};

/// Reads frame_num, or else pic_order_cnt_lsb, of `width` bits where the SPS says `log2_minus4`.
void expect_number(bool is_frame_num, std::uint32_t log2_minus4, unsigned int width, std::uint64_t value)
{
    slice_header_description slice;
    slice.redundant_pic_cnt = 2;
    slice_context context;
    if (is_frame_num) {
        slice.frame_num = value;
        slice.frame_num_width = width;
        context = context_of(slice);
        context.sps.log2_max_frame_num_minus4 = log2_minus4;
    } else {
        slice.pic_order_cnt_lsb = value;
        slice.pic_order_cnt_lsb_width = width;
        context = context_of(slice);
        context.sps.log2_max_pic_order_cnt_lsb_minus4 = log2_minus4;
    }
    h264_nal_slice_header before;
    before.frame_num = before.pic_order_cnt_lsb = 5;
    const parsed_slice p(written(slice), context, before);
    EXPECT_TRUE(p.result);
    EXPECT_EQ(static_cast<std::uint32_t>(value), is_frame_num ? p->frame_num : p->pic_order_cnt_lsb) << log2_minus4;
    EXPECT_EQ(is_frame_num ? 5U : 0U, is_frame_num ? p->pic_order_cnt_lsb : p->frame_num);
    EXPECT_EQ(2U, p->redundant_pic_cnt) << log2_minus4;
    EXPECT_EQ(written(slice).size_in_bits(), p.consumed()) << log2_minus4;
}

} // namespace

TEST(SliceHeaderOrder, FrameNumAndLsbHaveTheWidthThatTheSpsSays)
{
    for (unsigned int width = 4; width <= 16; ++width)
        for (const std::uint32_t value : {0U, 1U, (1U << width) / 2, (1U << width) - 1}) {
            expect_number(true, width - 4, width, value);
            expect_number(false, width - 4, width, value);
        }
}

TEST(SliceHeaderOrder, WidthsOutsideTheStandardAreReadModulo256)
{
    for (const odd_width& w : odd_widths)
        expect_number(true, w.log2_minus4, w.width, low_bits(w.width));
}

TEST(SliceHeaderOrder, LsbsOfWidthsOutsideTheStandardAreReadModulo256)
{
    for (const odd_width& w : odd_widths)
        expect_number(false, w.log2_minus4, w.width, low_bits(w.width));
}

TEST(SliceHeaderOrder, AFieldHasItsParityAndNoDeltaForTheOther)
{
    for (const bool bottom : {false, true})
        for (const unsigned int type : {0U, 1U}) {
            slice_header_description slice = full_field_slice(type);
            slice.bottom_field_flag = bottom;
            slice_context context = context_of(slice);
            context.pps.bottom_field_pic_order_in_frame_present_flag = true;
            h264_nal_slice_header before;
            before.bottom_field_flag = !bottom;
            const parsed_slice p(written(slice), context, before);
            EXPECT_TRUE(p.result);
            EXPECT_EQ(written(slice).size_in_bits(), p.consumed());
            EXPECT_TRUE(p->field_pic_flag);
            EXPECT_EQ(bottom, p->bottom_field_flag);
            EXPECT_EQ(0, p->delta_pic_order_cnt_bottom);
            EXPECT_EQ(type == 1 ? -8 : 0, p->delta_pic_order_cnt[0]);
            EXPECT_EQ(0, p->delta_pic_order_cnt[1]);
        }
}

TEST(SliceHeaderOrder, AFrameClearsTheFieldFlagAndKeepsTheParity)
{
    slice_header_description slice;
    slice.field_pic_flag = false;
    slice.pic_order_cnt_lsb = 3;
    slice.delta_pic_order_cnt_bottom = 4;
    const parsed_slice p(slice, with_field_pic_flag());
    EXPECT_TRUE(p.result);
    EXPECT_FALSE(p->field_pic_flag);
    EXPECT_TRUE(p->bottom_field_flag);
    EXPECT_EQ(4, p->delta_pic_order_cnt_bottom);
}

TEST(SliceHeaderOrder, AKeptFieldFlagSuppressesTheDeltaOfTheBottomField)
{
    slice_header_description lsb;
    lsb.pic_order_cnt_lsb = 3;
    slice_header_description delta;
    delta.delta_pic_order_cnt = {-5};
    for (const slice_header_description& slice : {lsb, delta}) {
        slice_context context = context_of(slice);
        context.pps.bottom_field_pic_order_in_frame_present_flag = true;
        h264_nal_slice_header before = with_field_pic_flag();
        before.delta_pic_order_cnt_bottom = before.delta_pic_order_cnt[1] = 6;
        const parsed_slice p(written(slice), context, before);
        EXPECT_TRUE(p.result);
        EXPECT_EQ(written(slice).size_in_bits(), p.consumed());
        EXPECT_TRUE(p->field_pic_flag && p->bottom_field_flag);
        EXPECT_EQ(slice.delta_pic_order_cnt.empty() ? 0 : -5, p->delta_pic_order_cnt[0]);
        EXPECT_EQ(6, p->delta_pic_order_cnt_bottom);
        EXPECT_EQ(6, p->delta_pic_order_cnt[1]);
    }
}

TEST(SliceHeaderOrder, DeltasThatAreAlwaysZeroAreNotSent)
{
    slice_header_description slice;
    slice.redundant_pic_cnt = 8;
    slice_context context = context_of(slice);
    context.sps.pic_order_cnt_type = 1;
    context.sps.delta_pic_order_always_zero_flag = true;
    context.pps.bottom_field_pic_order_in_frame_present_flag = true;
    h264_nal_slice_header before;
    before.delta_pic_order_cnt[0] = 1;
    before.delta_pic_order_cnt[1] = 2;
    const parsed_slice p(written(slice), context, before);
    EXPECT_TRUE(p.result);
    EXPECT_EQ(8U, p->redundant_pic_cnt);
    EXPECT_EQ(1, p->delta_pic_order_cnt[0]);
    EXPECT_EQ(2, p->delta_pic_order_cnt[1]);
}

TEST(SliceHeaderOrder, ATypeZeroSliceDoesNotMindTheAlwaysZeroFlag)
{
    slice_header_description slice;
    slice.pic_order_cnt_lsb = 3;
    slice.delta_pic_order_cnt_bottom = -4;
    slice_context context = context_of(slice);
    context.sps.delta_pic_order_always_zero_flag = true;
    const parsed_slice p(written(slice), context);
    EXPECT_TRUE(p.result);
    EXPECT_EQ(3U, p->pic_order_cnt_lsb);
    EXPECT_EQ(-4, p->delta_pic_order_cnt_bottom);
}

TEST(SliceHeaderOrder, OtherTypesReadNothing)
{
    for (const std::uint32_t type : {2U, 3U, 5U, 256U, 257U, 4294967294U}) {
        slice_header_description slice;
        slice.redundant_pic_cnt = 8;
        slice_context context = context_of(slice);
        context.sps.pic_order_cnt_type = type;
        context.pps.bottom_field_pic_order_in_frame_present_flag = true;
        const parsed_slice p(written(slice), context);
        EXPECT_TRUE(p.result);
        EXPECT_EQ(8U, p->redundant_pic_cnt) << type;
        EXPECT_EQ(written(slice).size_in_bits(), p.consumed()) << type;
    }
}
