// Reading: the first failure with its element, bit and reason; findings; what a unit ends with; SEI payloads.
#include "support/small_units.h"
#include "support/told_reading.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

/// Bits as text, blanks left out, and zeros to the end of the byte.
bytes from_bits(std::string text)
{
    std::erase(text, ' ');
    bytes unit((text.size() + 7) / 8);
    for (std::size_t i = 0; i < text.size(); ++i)
        unit[i / 8] = static_cast<unsigned char>(unit[i / 8] | (text[i] - '0') << (7 - i % 8));
    return unit;
}

/// "ELEMENT[i]: REASON of VALUE, BOUND at BIT"
std::string failure_of(const outcome& result)
{
    const failure& f = result.failure;
    if (!f)
        return "";
    std::string name = f.element.name();
    for (unsigned i = 0; i < f.element.depth(); ++i)
        name += "[" + std::to_string(f.element.index(i)) + "]";
    return name + " " + std::to_string(f.value) + " at bit " + std::to_string(f.bit) + ": " + text_of(f.why) + " " +
           std::to_string(f.bound);
}

// header, profile_idc 77, flags, level_idc 30, id 0, log2_max_frame_num_minus4 0, pic_order_cnt_type 1, the flag and
// two offsets: the count is at bit 40
const std::string sps_before_cycle = "01100111 01001101 00000000 00011110 1 1 010 1 1 1";

TEST(Reader, ACountBeyondItsArrayFailsWithElementValueBitAndBound)
{
    const told_reading r = read_of(from_bits(sps_before_cycle + "00000000100101101" + std::string(100, '1')));
    EXPECT_EQ(failure_of(r.result), "num_ref_frames_in_pic_order_cnt_cycle 300 at bit 40: more than 255");
    EXPECT_EQ(r.result.finding_count, 0U);
    EXPECT_EQ(r.elements.back().path,
              "seq_parameter_set_rbsp.seq_parameter_set_data.num_ref_frames_in_pic_order_cnt_cycle");
    EXPECT_EQ(r.elements.back().value, 300);
    EXPECT_FALSE(r.elements.back().inside);
    const auto& sps = std::get<seq_parameter_set_rbsp>(r.unit.rbsp).seq_parameter_set_data;
    EXPECT_EQ(sps.num_ref_frames_in_pic_order_cnt_cycle, 0U);
    EXPECT_EQ(sps.profile_idc, 77);
    EXPECT_EQ(sps.pic_order_cnt_type, 1U);
}

TEST(Reader, ThirtyTwoZeroBitsAreNoCode)
{
    const told_reading r = read_of(from_bits(sps_before_cycle + std::string(32, '0') + std::string(40, '1')));
    EXPECT_EQ(failure_of(r.result), "num_ref_frames_in_pic_order_cnt_cycle 0 at bit 40: malformed Exp-Golomb code 0");
    const told_reading cut = read_of(from_bits(sps_before_cycle + std::string(24, '0')));
    EXPECT_EQ(failure_of(cut.result), "num_ref_frames_in_pic_order_cnt_cycle 0 at bit 40: the unit ends 0");
}

TEST(Reader, TheLongestCodesAreRead)
{
    nal_unit unit = sps_unit(sps_data());
    auto& sps = std::get<seq_parameter_set_rbsp>(unit.rbsp).seq_parameter_set_data;
    sps.pic_order_cnt_type = 1;
    sps.offset_for_non_ref_pic = -0x7FFFFFFF;
    sps.offset_for_top_to_bottom_field = 0x7FFFFFFF;
    sps.pic_width_in_mbs_minus1 = 0xFFFFFFFE;
    const told_reading r = read_of(written(unit, {}));
    EXPECT_EQ(failure_of(r.result), "");
    EXPECT_EQ(std::get<seq_parameter_set_rbsp>(r.unit.rbsp).seq_parameter_set_data.pic_width_in_mbs_minus1, 0xFFFFFFFE);
    EXPECT_EQ(std::get<seq_parameter_set_rbsp>(r.unit.rbsp).seq_parameter_set_data.offset_for_non_ref_pic, -0x7FFFFFFF);
}

TEST(Reader, AnEmptyUnitAndAHeaderAloneEndInTheirElements)
{
    EXPECT_EQ(failure_of(read_of({}).result), "forbidden_zero_bit 0 at bit 0: the unit ends 0");
    EXPECT_EQ(failure_of(read_of({0x67}).result), "profile_idc 0 at bit 8: the unit ends 0");
    EXPECT_EQ(failure_of(read_of({0x74, 0x80}).result), "no_inter_layer_pred_flag 0 at bit 16: the unit ends 0");
}

TEST(Reader, AValueOutsideItsRangeIsStoredAndFoundAndReadingGoesOn)
{
    nal_unit unit = sps_unit(sps_data());
    auto& sps = std::get<seq_parameter_set_rbsp>(unit.rbsp).seq_parameter_set_data;
    sps.max_num_ref_frames = 17;
    sps.reserved_zero_2bits = 2;
    const told_reading r = read_of(written(unit, {}));
    EXPECT_EQ(failure_of(r.result), "");
    EXPECT_FALSE(r.result.sound());
    EXPECT_EQ(r.result.ending, ending::sound);
    ASSERT_EQ(r.result.finding_count, 2U);
    const finding& f = r.result.findings[0];
    EXPECT_STREQ(f.element.name(), "reserved_zero_2bits");
    EXPECT_EQ(f.bit, 22U);
    EXPECT_EQ(f.value, 2);
    EXPECT_EQ(f.lowest, 0);
    EXPECT_EQ(f.highest, 0);
    EXPECT_STREQ(r.result.findings[1].element.name(), "max_num_ref_frames");
    EXPECT_TRUE(r.unit == unit);
}

TEST(Reader, FindingsBeyondSixteenAreCounted)
{
    nal_unit unit = sps_unit(sps_data());
    auto& sps = std::get<seq_parameter_set_rbsp>(unit.rbsp).seq_parameter_set_data;
    sps.profile_idc = 100;
    sps.seq_scaling_matrix_present_flag = sps.seq_scaling_list_present_flag[0] = true;
    sps.seq_scaling_list_present_flag[1] = true;
    for (int i = 0; i < 32; ++i) {
        sps.lists[i / 16].delta_scale.grow();
        sps.lists[i / 16].delta_scale.back() = 257;
    }
    const told_reading r = read_of(written(unit, {}));
    EXPECT_EQ(failure_of(r.result), "");
    EXPECT_EQ(r.result.finding_count, 32U);
    ASSERT_EQ(r.result.findings.size(), 16U);
    EXPECT_EQ(r.result.findings[15].element.index(0), 15U);
    EXPECT_TRUE(r.unit == unit);
}

TEST(Reader, AValueThatItsMemberCannotHoldFails)
{
    nal_unit unit = sps_unit(sps_data());
    auto& sps = std::get<seq_parameter_set_rbsp>(unit.rbsp).seq_parameter_set_data;
    sps.profile_idc = 100;
    sps.seq_scaling_matrix_present_flag = sps.seq_scaling_list_present_flag[0] = true;
    bytes head = written(unit, {}); // refused: the list is missing
    EXPECT_TRUE(head.empty());
    // id 0, chroma_format_idc 1, depths, flag, matrix, list 0: delta 40000
    const told_reading r = read_of(from_bits("01100111 01100100 00000000 00011110 1 010 1 1 0 1 1" +
                                             std::string(16, '0') + "10011100010000000" + std::string(80, '1')));
    EXPECT_EQ(failure_of(r.result), "delta_scale[0] 40000 at bit 41: more than 32767");
}

TEST(Reader, EndingsAreToldApart)
{
    const bytes sound = written(sps_unit(sps_data()), {});
    const auto with = [&](std::initializer_list<int> more) {
        bytes longer = sound;
        for (const int byte : more)
            longer.push_back(static_cast<unsigned char>(byte));
        return read_of(longer).result.ending;
    };
    EXPECT_EQ(with({}), ending::sound);
    EXPECT_EQ(with({0, 0}), ending::cabac_zero_words);
    EXPECT_EQ(with({0, 0, 0, 0}), ending::cabac_zero_words);
    EXPECT_EQ(with({0, 1}), ending::bytes_behind);
    EXPECT_EQ(with({0x80}), ending::bytes_behind);
}

TEST(Reader, AMissingStopBitIsTold)
{
    const told_reading zero = read_of({0x09, 0x40});
    EXPECT_EQ(failure_of(zero.result), "");
    EXPECT_EQ(zero.result.ending, ending::no_stop_bit);
    ASSERT_EQ(zero.result.finding_count, 1U);
    EXPECT_STREQ(zero.result.findings[0].element.name(), "rbsp_stop_one_bit");

    nal_unit filler = unit_of(12, filler_data_rbsp{2});
    bytes cut = written(filler, {});
    cut.pop_back();
    const told_reading none = read_of(cut);
    EXPECT_EQ(failure_of(none.result), "rbsp_stop_one_bit 0 at bit 24: the unit ends 0");
    EXPECT_EQ(none.result.ending, ending::no_stop_bit);
}

TEST(Reader, AnEndOfSequenceHasNothingBehindIt)
{
    EXPECT_EQ(read_of({0x0A}).result.ending, ending::sound);
    EXPECT_EQ(read_of({0x0A, 0x80}).result.ending, ending::bytes_behind);
}

TEST(Reader, AMissingParameterSetIsNamedWithItsId)
{
    small_sets s;
    const bytes slice = written(slice_unit(5), s.context);
    EXPECT_EQ(failure_of(read_of(slice).result),
              "pic_parameter_set_id 0 at bit 16: names a picture parameter set which is missing 0");
    s.sets.sps[0] = nullptr;
    s.pps.seq_parameter_set_id = 9;
    const told_reading r = read_of(slice, s.context);
    EXPECT_EQ(failure_of(r.result),
              "pic_parameter_set_id 9 at bit 16: names a sequence parameter set which is missing 0");
    EXPECT_EQ(slice_header_of(r.unit)->slice_type, 7U);
}

TEST(Reader, ForbiddenBitIsAFinding)
{
    bytes unit = written(unit_of(9, access_unit_delimiter_rbsp{3}), {});
    unit[0] |= 0x80;
    const told_reading r = read_of(unit);
    EXPECT_EQ(failure_of(r.result), "");
    ASSERT_EQ(r.result.finding_count, 1U);
    EXPECT_STREQ(r.result.findings[0].element.name(), "forbidden_zero_bit");
    EXPECT_EQ(std::get<access_unit_delimiter_rbsp>(r.unit.rbsp).primary_pic_type, 3);
}

} // namespace
