// How the parse of a sequence parameter set fails, and what it leaves behind.
#include <orv-utils-v4/h264/nal_sps.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/sps_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using brenik::h264_nal_sps;
using support::fields_of;
using support::full_sps;
using support::sps_description;
using support::with_valid;
using support::written_rbsp;
using parsed_sps = support::parsed<h264_nal_sps>;

h264_nal_sps full(bool valid = true)
{
    return with_valid(valid, parsed_sps(written_rbsp(full_sps())).object);
}

std::size_t position_of(const support::element_writer& writer, const std::string& name, std::size_t entry = 0)
{
    for (const support::element& e : writer.elements())
        if (e.name == name && e.entry == entry)
            return e.position;
    ADD_FAILURE() << "no element " << name;
    return 0;
}

} // namespace

TEST(Sps, APictureOrderCountCycleAbove128IsRefusedAndValidKeepsItsValue)
{
    for (const std::uint32_t count : {129U, 255U, 256U, 0x80000000U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            sps_description sps;
            sps.pic_order_cnt_type = 1;
            sps.offset_for_non_ref_pic = 70;
            sps.num_ref_frames_in_pic_order_cnt_cycle = count;
            sps.offset_for_ref_frame = std::vector<std::int32_t>(129, 1);
            sps.max_num_ref_frames = 3;
            const auto writer = written_rbsp(sps);
            const parsed_sps p(writer, full(valid));
            EXPECT_FALSE(p.result) << count;
            EXPECT_EQ(valid, p->valid) << count;
            EXPECT_EQ(count, p->num_ref_frames_in_pic_order_cnt_cycle);
            EXPECT_EQ(full().offset_for_ref_frame, p->offset_for_ref_frame);
            EXPECT_EQ(70, p->offset_for_non_ref_pic);
            EXPECT_EQ(2U, p->SubWidthC);
            EXPECT_EQ(full().max_num_ref_frames, p->max_num_ref_frames);
            EXPECT_EQ(position_of(writer, "offset_for_ref_frame"), p.consumed()) << count;
        }
}

TEST(Sps, AFailedVuiMakesItInvalid)
{
    for (const bool valid : {false, true}) {
        sps_description sps = full_sps();
        sps.vui->vcl_hrd->cpb_cnt_minus1 = 128;
        const auto writer = written_rbsp(sps);
        const parsed_sps p(writer, with_valid<h264_nal_sps>(valid));
        EXPECT_FALSE(p.result);
        EXPECT_FALSE(p->valid);
        EXPECT_FALSE(p->vui.valid);
        EXPECT_EQ(14U, p->frame_crop_bottom_offset);
        EXPECT_EQ(0xFFFFFFFFU, p->vui.time_scale);
        EXPECT_EQ(3U, p->vui.nal_hrd.cbr_flag.size());
        EXPECT_EQ(128U, p->vui.vcl_hrd.cpb_cnt_minus1);
        EXPECT_EQ(position_of(writer, "vui.vcl_hrd.bit_rate_value_minus1"), p.consumed());
    }
}

TEST(Sps, MissingTrailingBitsMakeItInvalidWithEveryFieldRead)
{
    for (const bool valid : {false, true}) {
        const auto data = support::written(full_sps());
        const parsed_sps p(data.made(), with_valid<h264_nal_sps>(valid));
        EXPECT_FALSE(p.result);
        EXPECT_FALSE(p->valid);
        EXPECT_EQ("", difference(fields_of(full(false)), fields_of(p.object)));
        EXPECT_EQ((data.size_in_bits() + 1 + 7) / 8 * 8, p.consumed());
    }
}

TEST(Sps, AStrayBitInTheTrailingBitsMakesItInvalid)
{
    support::bytes data = written_rbsp(sps_description()).made();
    ASSERT_EQ(0, data.back() & 1);
    data.back() |= 1;
    const parsed_sps p(data, with_valid<h264_nal_sps>(true));
    EXPECT_FALSE(p.result);
    EXPECT_FALSE(p->valid);
}

TEST(Sps, BytesBehindTheTrailingBitsStayUnread)
{
    support::bytes data = written_rbsp(sps_description()).made();
    data.push_back(0xFF);
    const parsed_sps p(data);
    EXPECT_TRUE(p.result);
    EXPECT_EQ(8 * (data.size() - 1), p.consumed());
}

TEST(Sps, AnSpsCutWithinItsFlagsReadsZerosAndFailsAtTheTrailingBits)
{
    sps_description sps;
    sps.direct_8x8_inference_flag = true;
    const auto writer = written_rbsp(sps);
    const std::size_t cut = position_of(writer, "direct_8x8_inference_flag");
    const parsed_sps p(support::first_bits(writer.made(), cut), with_valid<h264_nal_sps>(true));
    EXPECT_FALSE(p.result);
    EXPECT_FALSE(p->valid);
    EXPECT_FALSE(p->direct_8x8_inference_flag);
    EXPECT_EQ(8U, p->pic_height_in_map_units_minus1);
}

TEST(Sps, AnEmptyRangeThrowsAtTheId)
{
    for (const bool valid : {false, true}) {
        h264_nal_sps sps = full(valid);
        brenik::h2645_common_bitreader br(nullptr, nullptr);
        EXPECT_THROW(sps.parse(br), brenik::h2645_common_malformed_code);
        EXPECT_EQ(0, sps.profile_idc);
        EXPECT_EQ(0, sps.level_idc);
        EXPECT_EQ(7U, sps.seq_parameter_set_id);
        EXPECT_EQ(3U, sps.chroma_format_idc);
        EXPECT_EQ(valid, sps.valid);
    }
}

TEST(Sps, AMalformedCodeThrowsAndValidKeepsItsValue)
{
    const auto writer = written_rbsp(full_sps());
    std::size_t codes = 0;
    for (const support::element& e : writer.elements()) {
        if (e.how == support::descriptor::u)
            continue;
        ++codes;
        const bool valid = codes % 2 == 0;
        const support::guarded_buffer buffer(support::with_malformed_code(writer, e));
        brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
        h264_nal_sps sps = with_valid<h264_nal_sps>(valid);
        EXPECT_THROW(sps.parse(br), brenik::h2645_common_malformed_code) << e.name;
        EXPECT_EQ(valid, sps.valid) << e.name;
        EXPECT_EQ(244, sps.profile_idc) << e.name;
        EXPECT_EQ(e.position + 32, br.bits_consumed()) << e.name;
    }
    EXPECT_GT(codes, 480U);
}
