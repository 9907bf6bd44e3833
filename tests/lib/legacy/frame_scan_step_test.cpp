// The step that the frame scan does for each unit, by itself.
#include "support/frame_notation.h"
#include "support/legacy_fields.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace support::frame_notation;
using support::bytes;
using support::guarded_buffer;

/// The step for one unit, from a result and an SPS in which nothing has its first value.
struct one_step {
    h264_common_frame_scan_info info = support::dirty_info();
    bool sps_updated = false;
    h264_sps sps = known_sps();

    one_step& take(unsigned int nal_unit_type, unsigned char* nal, unsigned char* nal_fence)
    {
        h264_nal_parser_state st;
        st.nal_unit_type = static_cast<std::uint8_t>(nal_unit_type);
        st.nal = nal;
        st.nal_fence = nal_fence;
        h264_common_frame_scan_on_NAL(info, sps_updated, sps, st);
        return *this;
    }

    one_step& take(const unit& u)
    {
        const guarded_buffer payload(u.rbsp);
        return take(u.header % 32U, payload.begin(), payload.end());
    }
};

/// All that the step may change, as text; a flag of 9 is untouched.
std::string text_of(const one_step& step)
{
    const h264_common_frame_scan_info before = support::dirty_info();
    const h264_common_frame_scan_info& i = step.info;
    std::string text;
    for (const unsigned int flag :
         {i.complete, i.need_more_data, i.has_aud, i.has_sps, i.has_pps, i.has_sei, i.has_slice})
        text += std::to_string(flag);
    text += " " + std::to_string(i.field_duration) + (step.sps_updated ? " updated" : "");
    return i.frame_start == before.frame_start && i.frame_end == before.frame_end ? text : text + " moved";
}

} // namespace

TEST(FrameScanStep, EachTypeSetsItsFlagAndNoOther)
{
    const std::string untouched = "9999999 99";
    for (unsigned int type = 0; type < 32; ++type) {
        std::string expected = untouched;
        constexpr std::size_t has_aud = 2;
        constexpr std::size_t has_sps = 3;
        constexpr std::size_t has_pps = 4;
        constexpr std::size_t has_sei = 5;
        constexpr std::size_t has_slice = 6;
        const std::size_t flags[] = {0, has_slice, 0, 0, 0, has_slice, has_sei, has_sps, has_pps, has_aud};
        if (type < std::size(flags) && flags[type] != 0)
            expected[flags[type]] = '1';
        if (type == 7)
            expected += " updated";
        one_step step;
        EXPECT_EQ(expected, text_of(step.take(of_type(type, {0x80})))) << type;
        EXPECT_EQ(type != 7, support::difference_of(known_sps(), step.sps).empty()) << type;
        EXPECT_EQ(expected, text_of(one_step().take(of_type(type)))) << type << " without payload";
        EXPECT_EQ(expected, text_of(one_step().take(type, nullptr, nullptr))) << type << " absent";
    }
}

TEST(FrameScanStep, AnSpsIsReadWithoutAReset)
{
    one_step step;
    step.sps.time_scale = 123;
    step.sps.chroma_format_idc = 7;
    support::sps_description seq = field_stream();
    seq.log2_max_frame_num_minus4 = 5;
    step.take(sps(seq));
    EXPECT_EQ(9U, step.sps.log2_max_frame_num);
    EXPECT_EQ(66U, step.sps.profile_idc);
    EXPECT_EQ(123U, step.sps.time_scale) << "not sent";
    EXPECT_EQ(7U, step.sps.chroma_format_idc) << "not sent";
    EXPECT_TRUE(step.sps_updated);
    EXPECT_TRUE(step.take(pps).sps_updated) << "nothing clears it";
}

TEST(FrameScanStep, AnSpsWithoutBytesReadsAsZeroBits)
{
    bytes zeros(200);
    one_step expected;
    be_bitfield bits;
    be_bitfield_open(&bits, zeros.data());
    expected.sps.parse_sps(bits);
    EXPECT_EQ(3U, expected.sps.log2_max_frame_num) << "24 zeros and 24 more: 16777215, and 4, in 8 bits";
    one_step step;
    EXPECT_EQ("", support::difference_of(expected.sps, step.take(7, nullptr, nullptr).sps));
    EXPECT_EQ("", support::difference_of(expected.sps, one_step().take(7, zeros.data(), zeros.data()).sps))
        << "an empty payload";
    bytes ones(200, 0xFF);
    EXPECT_EQ("", support::difference_of(expected.sps, one_step().take(7, ones.data(), nullptr).sps))
        << "no end: an empty payload";
    EXPECT_EQ("", support::difference_of(expected.sps, one_step().take(7, nullptr, ones.data()).sps));
}

TEST(FrameScanStep, AnSpsEndsWithItsUnit)
{
    support::sps_description seq = support::full_sps();
    seq.pic_order_cnt_type = 0; // no counted entries, which the open-ended read would not end
    const bytes whole = sps(seq).rbsp;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        one_step step;
        step.take(of_type(7, cut));
        cut.insert(cut.end(), 3000, 0);
        one_step expected;
        be_bitfield bits;
        be_bitfield_open(&bits, cut.data());
        expected.sps.parse_sps(bits);
        EXPECT_EQ("", support::difference_of(expected.sps, step.sps)) << size << " bytes, and zeros behind them";
    }
}

TEST(FrameScanStep, AnAbsentOrEmptySeiSaysNothing)
{
    bytes timing = sei(7).rbsp;
    unsigned char* const fence = timing.data() + timing.size();
    EXPECT_EQ("9999919 4", text_of(one_step().take(6, timing.data(), fence)));
    EXPECT_EQ("9999919 99", text_of(one_step().take(6, nullptr, fence)));
    EXPECT_EQ("9999919 99", text_of(one_step().take(6, timing.data(), nullptr)));
    EXPECT_EQ("9999919 99", text_of(one_step().take(6, timing.data(), timing.data())));
    EXPECT_EQ("9999919 99", text_of(one_step().take(6, fence, timing.data()))) << "the wrong way round";
}

TEST(FrameScanStep, TheWalkOverAnSeiEndsAtABrokenMessage)
{
    const std::pair<unsigned char, bytes> three = {1, {0x50}};
    const std::pair<unsigned char, bytes> four = {1, {0x70}};
    EXPECT_EQ("9999919 3", text_of(one_step().take(sei_of({three}, {1, 2, 0x70}))));
    EXPECT_EQ("9999919 3", text_of(one_step().take(sei_of({three}, {1}))));
    EXPECT_EQ("9999919 3", text_of(one_step().take(sei_of({three}, {0xFF, 0xFF}))));
    EXPECT_EQ("9999919 99", text_of(one_step().take(sei_of({}, {200, 9, 1, 1, 0x70}))));
    EXPECT_EQ("9999919 4", text_of(one_step().take(sei_of({three, four}, {})))) << "no trailing bits";
    EXPECT_EQ("9999919 3", text_of(one_step().take(sei_of({three, {1, {}}}, {}))));
}

TEST(FrameScanStep, PictureTimingIsReadWithTheSps)
{
    one_step step;
    step.sps.nal_hrd_parameters_present_flag = 1;
    step.sps.cpb_removal_delay_length = 8;
    step.sps.dpb_output_delay_length = 4;
    EXPECT_EQ("9999919 6", text_of(step.take(sei_of({{1, {0xAA, 0xA8}}}))));
    step.sps.pic_struct_present_flag = 0;
    EXPECT_EQ("9999919 2", text_of(step.take(sei_of({{1, {0xAA, 0xA8}}}))));
    step.sps.pic_struct_present_flag = 1;
    EXPECT_EQ("9999919 2", text_of(step.take(sei_of({{1, {0xAA}}, {5, bytes(20, 0x88)}})))) << "zeros behind a payload";
}
