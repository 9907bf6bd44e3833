// The first fields of a slice header for the legacy interface.
#include "support/legacy_parse.h"
#include "support/slice_header_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using support::bit_writer;
using support::bytes;
using support::difference_of;
using support::guarded_buffer;
using support::slice_header_description;
using support::written;

/// What tells how a slice begins: frame_num of 4 bits, frames alone, until a test says more.
h264_sps slice_sps(std::uint8_t frame_mbs_only_flag = 1, std::uint8_t log2_max_frame_num = 4)
{
    h264_sps sps;
    sps.frame_mbs_only_flag = frame_mbs_only_flag;
    sps.log2_max_frame_num = log2_max_frame_num;
    return sps;
}

h264_nal_slice_info earlier()
{
    return {1, 2, 3, 4, 5, 6, 7};
}

struct parsed_slice_info {
    guarded_buffer buffer;
    h264_nal_slice_info info;
    int result;

    parsed_slice_info(const bytes& data, h264_sps sps, const h264_nal_slice_info& before = earlier())
        : buffer(data), info(before), result(support::parse_slice(info, {buffer.begin(), buffer.end()}, sps))
    {
    }

    const h264_nal_slice_info* operator->() const { return &info; }
};

} // namespace

TEST(LegacySlice, EveryElementIsReadIntoItsField)
{
    const slice_header_description slice = support::full_field_slice(0);
    h264_sps sps = slice_sps(0, 9);
    sps.separate_colour_plane_flag = 1;
    const parsed_slice_info p(written(slice).made(), sps);
    EXPECT_EQ(1, p.result);
    EXPECT_EQ(300U, p->first_mb_in_slice);
    EXPECT_EQ(6U, p->slice_type);
    EXPECT_EQ(7U, p->pic_parameter_set_id);
    EXPECT_EQ(2, p->colour_plane_id);
    EXPECT_EQ(0x1A5U, p->frame_num);
    EXPECT_EQ(1, p->field_pic_flag);
    EXPECT_EQ(1, p->bottom_field_flag);
}

TEST(LegacySlice, AnAbsentPayloadLeavesTheInfo)
{
    unsigned char byte = 0xFF;
    h264_sps sps = slice_sps();
    unsigned char* const ranges[][2] = {
        {nullptr, nullptr}, {nullptr, &byte + 1}, {&byte, nullptr}, {&byte, &byte}, {&byte + 1, &byte}};
    for (const auto& range : ranges) {
        h264_nal_parser_state st;
        st.nal = range[0];
        st.nal_fence = range[1];
        h264_nal_slice_info info = earlier();
        EXPECT_EQ(0, h264_slice_parse(info, st, sps));
        EXPECT_EQ("", difference_of(earlier(), info));
    }
}

TEST(LegacySlice, TypesAreNotReduced)
{
    for (const std::uint32_t type : {0U, 4U, 5U, 9U, 10U, 255U, 256U, 16777214U})
        EXPECT_EQ(type, parsed_slice_info(bit_writer().ue(0).ue(type).ue(0).u(4, 0).bytes(), slice_sps())->slice_type);
}

TEST(LegacySlice, AWidthOfZeroIsZeroAndAbove24AllOnesAndNeitherConsumes)
{
    for (unsigned int width = 0; width < 256; width = width == 0 ? 25 : width + 1) {
        const bytes data = bit_writer().ue(0).ue(0).ue(0).u(2, 0b10).u(30, 0x3FFFFFFF).bytes();
        const parsed_slice_info p(data, slice_sps(0, static_cast<std::uint8_t>(width)));
        EXPECT_EQ(1, p.result);
        EXPECT_EQ(width == 0 ? 0U : 0xFFFFFFFFU, p->frame_num) << width;
        EXPECT_EQ(1, p->field_pic_flag) << width;
        EXPECT_EQ(0, p->bottom_field_flag) << width;
    }
}

TEST(LegacySlice, OnlyAFlagOfOneMeansFramesAlone)
{
    const bytes data = bit_writer().ue(0).ue(0).ue(0).u(4, 9).u(2, 0b11).bytes();
    EXPECT_EQ(1, parsed_slice_info(data, slice_sps(2))->field_pic_flag);
}

TEST(LegacySlice, CutAnywhereReadsZerosBehindTheEnd)
{
    h264_sps sps = slice_sps(0, 9);
    sps.separate_colour_plane_flag = 1;
    slice_header_description slice = support::full_field_slice(0);
    slice.first_mb_in_slice = 8000000;
    slice.pic_parameter_set_id = 70000;
    const bytes whole = written(slice).made();
    for (std::size_t size = 1; size <= whole.size(); ++size) {
        const bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const parsed_slice_info alone(cut, sps);
        const parsed_slice_info padded(support::followed_by_zeros(cut, 32), sps);
        EXPECT_EQ(1, alone.result);
        EXPECT_EQ("", difference_of(padded.info, alone.info)) << size;
    }
}
