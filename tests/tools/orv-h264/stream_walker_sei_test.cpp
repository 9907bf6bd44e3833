// SEI units: their messages, what is wrong with them, and which SPS a payload is read with.
#include "stream_walker.h"

#include "support/walked_stream.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_h264::walked_message;
using orv_h264::walked_pic_timing;
using orv_h264::walked_sei;
using orv_h264::walked_unit;
using support::bit_writer;
using support::bytes;
using support::problem_of;
using support::sei_rbsp;

/// An SPS whose HRD parameters have these lengths in bits, and pic_struct.
support::sps_description timed_sps(std::uint32_t id, unsigned int initial, unsigned int cpb, unsigned int dpb)
{
    support::hrd_description hrd;
    hrd.initial_cpb_removal_delay_length_minus1 = initial - 1;
    hrd.cpb_removal_delay_length_minus1 = cpb - 1;
    hrd.dpb_output_delay_length_minus1 = dpb - 1;
    hrd.time_offset_length = 0;
    support::sps_description seq;
    seq.seq_parameter_set_id = id;
    seq.vui.emplace().nal_hrd = hrd;
    seq.vui->pic_struct_present_flag = true;
    return seq;
}

class WalkedSei : public testing::Test {
protected:
    walked_unit walk(const bytes& rbsp) { return stream.walk(support::sei, rbsp); }

    support::walked_stream stream;
};

const walked_message& message_of(const walked_unit& unit, std::size_t i = 0)
{
    return std::get<walked_sei>(unit.syntax).messages.at(i);
}

const walked_pic_timing& timing_of(const walked_unit& unit, std::size_t i = 0)
{
    return std::get<walked_pic_timing>(message_of(unit, i).syntax);
}

} // namespace

TEST_F(WalkedSei, MessagesOfEveryTypeAreThereWithTheirPayloads)
{
    const walked_unit unit = walk(sei_rbsp({{4, {0xB5}}, {6, {0xC4}}, {100, {}}, {5, bytes(20, 7)}}));
    EXPECT_EQ("", problem_of(unit));
    ASSERT_EQ(4U, std::get<walked_sei>(unit.syntax).messages.size());
    EXPECT_EQ(brenik::h264_nal_sei_payload_type_user_data_registered_itu_t_t35, message_of(unit, 0).type);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(message_of(unit, 0).syntax));
    EXPECT_EQ((bytes{0xB5}), bytes(message_of(unit, 0).payload.begin(), message_of(unit, 0).payload.end()));
    EXPECT_TRUE(std::get<brenik::h264_nal_sei_recovery_point>(message_of(unit, 1).syntax).exact_match_flag);
    EXPECT_EQ(0U, message_of(unit, 2).stated_size);
    const auto& user_data = std::get<brenik::h264_nal_sei_user_data_unreg>(message_of(unit, 3).syntax);
    EXPECT_EQ(4, user_data.payload_fence - user_data.payload);
}

TEST_F(WalkedSei, ABufferingPeriodIsReadWithTheSpsItNamesAndActivatesItForTheMessagesBehindIt)
{
    stream.walk(timed_sps(3, 20, 20, 20));
    stream.walk(timed_sps(2, 8, 8, 8));
    bit_writer period;
    period.ue(3).u(20, 90000).u(20, 45000);
    bit_writer timing;
    timing.u(20, 70000).u(20, 5).u(4, 1).flag(false);
    const walked_unit unit = walk(sei_rbsp({{0, period.bytes()}, {1, timing.bytes()}}));
    EXPECT_EQ("", problem_of(unit));
    EXPECT_EQ(
        90000U,
        std::get<brenik::h264_nal_sei_buffering_period>(message_of(unit).syntax).nal_initial_cpb_removal_delay.at(0));
    EXPECT_EQ(70000U, timing_of(unit, 1).read.cpb_removal_delay);
    EXPECT_FALSE(timing_of(unit, 1).standard) << "the lengths are the same";
    EXPECT_EQ(3U, stream.walker.sps_store().current_id());
}

TEST_F(WalkedSei, TheStandardsReadingIsThereWhereTheLibraryDeparts)
{
    stream.walk(timed_sps(0, 19, 10, 7));
    bit_writer timing;
    timing.u(10, 1000).u(7, 100).u(4, 3).flag(false).flag(false);
    const walked_unit unit = walk(sei_rbsp({{1, timing.bytes()}}));
    EXPECT_EQ("", problem_of(unit)) << "that the library reads past the end is not the stream's fault";
    EXPECT_NE(1000U, timing_of(unit).read.cpb_removal_delay);
    ASSERT_TRUE(timing_of(unit).standard);
    EXPECT_EQ(1000U, timing_of(unit).standard->read.cpb_removal_delay);
    EXPECT_EQ(100U, timing_of(unit).standard->read.dpb_output_delay);
    EXPECT_EQ(3, timing_of(unit).standard->read.pic_struct);
    EXPECT_EQ(23U, timing_of(unit).standard->outcome.bits_consumed);
}

TEST_F(WalkedSei, LengthsOfTheSameSumStillDepart)
{
    stream.walk(timed_sps(0, 16, 20, 12));
    bit_writer timing;
    timing.u(20, 0x12345).u(12, 0x678).u(4, 0).flag(false);
    const walked_unit unit = walk(sei_rbsp({{1, timing.bytes()}}));
    ASSERT_TRUE(timing_of(unit).standard);
    EXPECT_EQ(0x12345U, timing_of(unit).standard->read.cpb_removal_delay);
    EXPECT_EQ(0x1234U, timing_of(unit).read.cpb_removal_delay);
}

TEST_F(WalkedSei, ATruncatedPictureTimingIsAProblemByTheStandardsLengths)
{
    stream.walk(timed_sps(0, 19, 10, 7));
    EXPECT_EQ("SEI message 0 (pic_timing): truncated: fields read past the end, 22 bits of 16",
              problem_of(walk(sei_rbsp({{1, {0x11, 0x22}}}))));
}

TEST_F(WalkedSei, Problems)
{
    EXPECT_EQ("SEI message 0 (pic_timing): no sequence parameter set is active",
              problem_of(walk(sei_rbsp({{1, {0x55}}}))));
    EXPECT_EQ("SEI message 0 (buffering_period): it names sequence parameter set 4, which is missing",
              problem_of(walk(sei_rbsp({{0, {0x28}}}))));
    EXPECT_EQ("SEI message 0 (buffering_period): malformed Exp-Golomb code at bit 0, truncated: it reads past the end",
              problem_of(walk(sei_rbsp({{0, {0}}}))));
    EXPECT_EQ("SEI message 0 (user_data_unregistered): no room for a UUID, 15 bytes of 16",
              problem_of(walk(sei_rbsp({{5, bytes(15, 1)}}))));
    EXPECT_EQ("SEI message 1 (recovery_point): truncated: fields read past the end, 19 bits of 8",
              problem_of(walk(sei_rbsp({{100, {1}}, {6, {0x01}}}))));
    bit_writer rectangles;
    rectangles.ue(0).flag(false).ue(128).u(32, 0xFFFFFFFF);
    EXPECT_EQ("SEI message 0 (pan_scan_rect): pan_scan_cnt_minus1 asks for 129 entries, more than 128",
              problem_of(walk(sei_rbsp({{2, rectangles.bytes()}}))));
}

TEST_F(WalkedSei, ProblemsOfSeveralMessagesAreALineEach)
{
    EXPECT_EQ("SEI message 0 (pic_timing): no sequence parameter set is active\n"
              "SEI message 2 (payloadType 130): truncated, 2 bytes of 9\n",
              problem_of(walk({1, 1, 0x55, 100, 0, 130, 9, 1, 2})) + "\n");
}

TEST_F(WalkedSei, TheUnitEndsInItsTrailingBits)
{
    EXPECT_EQ("", problem_of(walk({100, 1, 7, 0x80})));
    EXPECT_EQ("malformed trailing bits", problem_of(walk({100, 1, 7})));
    EXPECT_EQ("malformed trailing bits", problem_of(walk({100, 1, 7, 0x40})));
    EXPECT_EQ("malformed header of an SEI message", problem_of(walk({100, 1, 7, 0xFF, 0xFF})));
    EXPECT_EQ("no SEI message", problem_of(walk({0x80})));
    EXPECT_EQ("malformed trailing bits", problem_of(walk({})));
}

TEST_F(WalkedSei, OfMoreMessagesThanAUnitEverHasTheFirstAreTaken)
{
    constexpr std::size_t most = orv_h264::stream_walker::most_messages;
    const auto messages = [](std::size_t count) {
        support::stream_builder rbsp;
        for (std::size_t i = 0; i < count; ++i)
            rbsp.raw({100, 0});
        return rbsp.raw({0x80}).made();
    };
    EXPECT_EQ("", problem_of(walk(messages(most))));
    const walked_unit unit = walk(messages(most + 1));
    EXPECT_EQ("more than 1024 SEI messages", problem_of(unit));
    EXPECT_EQ(most, std::get<walked_sei>(unit.syntax).messages.size());
}

TEST_F(WalkedSei, ABufferingPeriodOfAnAbsentSpsOrWithoutAnIdActivatesNothing)
{
    stream.walk(timed_sps(0, 8, 8, 8));
    stream.walk(timed_sps(4, 8, 8, 8));
    walk(sei_rbsp({{0, {0x30}}})); // of SPS 5
    EXPECT_EQ(4U, stream.walker.sps_store().current_id());
    walk(sei_rbsp({{0, {}}}));
    EXPECT_EQ(4U, stream.walker.sps_store().current_id());
    walk(sei_rbsp({{0, {0x80, 0, 0}}}));
    EXPECT_EQ(0U, stream.walker.sps_store().current_id());
}
