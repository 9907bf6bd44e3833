#include "stream_walker.h"

#include "support/bit_writer.h"
#include "support/stream_builder.h"
#include "support/walked.h"

#include <gtest/gtest.h>

namespace {

using orv_h264::stream_walker;
using orv_h264::walked_unit;
using support::bit_writer;
using support::bytes;
using support::problem_of;

/// An SPS of the Baseline profile up to and without its trailing bits. `vui` writes what follows the present flag.
bit_writer baseline_sps(std::uint32_t id, bool vui_present = false)
{
    bit_writer w;
    w.u(8, 66).u(8, 0).u(8, 30).ue(id);
    w.ue(0).ue(2).ue(1).flag(false).ue(10).ue(8).flag(true).flag(true).flag(false).flag(vui_present);
    return w;
}

/// A PPS without its trailing bits.
bit_writer plain_pps(std::uint32_t id, std::uint32_t sps_id)
{
    bit_writer w;
    w.ue(id).ue(sps_id).flag(false).flag(false).ue(0).ue(0).ue(0).flag(false).u(2, 0).se(0).se(0).se(0);
    return w.flag(false).flag(false).flag(false);
}

/// The unit with its trailing bits, but for their one bit.
bytes without_stop_bit(bit_writer rbsp)
{
    bytes made = rbsp.trailing_bits().bytes();
    made.back() = static_cast<unsigned char>(made.back() & (made.back() - 1));
    return made;
}

/// An I slice, IDR or not.
bit_writer slice(std::uint32_t pps_id)
{
    bit_writer w;
    return w.ue(0).ue(7).ue(pps_id).u(32, 0xFFFFFFFF);
}

class StreamWalker : public testing::Test {
protected:
    walked_unit walk(unsigned char header, const bytes& rbsp) { return support::walk(walker, header, rbsp); }

    walked_unit walk(unsigned char header, bit_writer rbsp) { return walk(header, rbsp.trailing_bits().bytes()); }

    stream_walker walker;
};

TEST_F(StreamWalker, ParameterSetsAreParsedAndStored)
{
    EXPECT_EQ(problem_of(walk(support::sps, baseline_sps(3))), "");
    EXPECT_EQ(problem_of(walk(support::pps, plain_pps(5, 3))), "");
    ASSERT_NE(walker.sps_store().find(3), nullptr);
    ASSERT_NE(walker.pps_store().find(5), nullptr);
    EXPECT_EQ(walker.sps_store().at(3).pic_width_in_mbs_minus1, 10U);
    EXPECT_EQ(walker.pps_store().at(5).seq_parameter_set_id, 3U);
}

TEST_F(StreamWalker, AParameterSetThatFailsIsNotStored)
{
    walk(support::sps, baseline_sps(3).bytes());
    EXPECT_EQ(walker.sps_store().size(), 0U);
    walk(support::sps, baseline_sps(3));
    walk(support::pps, without_stop_bit(plain_pps(5, 3)));
    walk(support::pps, plain_pps(6, 4));
    EXPECT_EQ(walker.pps_store().size(), 0U);
}

TEST_F(StreamWalker, UnitsOfOtherTypesHaveNoFieldsAndNoProblem)
{
    for (const unsigned int type :
         {0U, 3U, 4U, 10U, 11U, 12U, 13U, 14U, 15U, 16U, 17U, 18U, 20U, 21U, 22U, 23U, 24U, 30U, 31U}) {
        const walked_unit unit = walk(support::header_byte(0, type), bytes(40, 0));
        EXPECT_TRUE(std::holds_alternative<std::monostate>(unit.syntax)) << type;
        EXPECT_EQ(problem_of(unit), "") << type;
    }
}

// What is wrong with a unit, a row each.

TEST_F(StreamWalker, ProblemMissingSps)
{
    const walked_unit unit = walk(support::pps, plain_pps(5, 9));
    EXPECT_EQ(problem_of(unit), "picture parameter set 5 names sequence parameter set 9, which is missing");
}

TEST_F(StreamWalker, ProblemCountAbove128InThePictureOrderCountCycle)
{
    bit_writer w;
    w.u(8, 66).u(8, 0).u(8, 30).ue(0).ue(0).ue(1).flag(false).se(0).se(0).ue(129).u(64, 0xFFFFFFFFFFFFFFFF);
    EXPECT_EQ(problem_of(walk(support::sps, w)),
              "num_ref_frames_in_pic_order_cnt_cycle asks for 129 entries, more than 128");
}

TEST_F(StreamWalker, ProblemCountAbove128InSliceGroups)
{
    walk(support::sps, baseline_sps(0));
    const auto pps = [](std::uint32_t slice_groups_minus1, std::uint32_t map_type) {
        bit_writer w;
        return w.ue(0).ue(0).flag(false).flag(false).ue(slice_groups_minus1).ue(map_type);
    };
    EXPECT_EQ(problem_of(walk(support::pps, pps(128, 0).u(64, 0xFFFFFFFFFFFFFFFF))),
              "num_slice_groups_minus1 asks for 129 entries, more than 128");
    EXPECT_EQ(problem_of(walk(support::pps, pps(129, 2).u(64, 0xFFFFFFFFFFFFFFFF))),
              "num_slice_groups_minus1 asks for 129 entries, more than 128");
    EXPECT_EQ(problem_of(walk(support::pps, pps(2, 6).ue(128).u(64, 0xFFFFFFFFFFFFFFFF))),
              "pic_size_in_map_units_minus1 asks for 129 entries, more than 128");
    EXPECT_EQ(problem_of(walk(support::pps, pps(2, 6).ue(4294967294).u(64, 0xFFFFFFFFFFFFFFFF))),
              "pic_size_in_map_units_minus1 asks for 4294967295 entries, more than 128");
}

TEST_F(StreamWalker, ProblemInANestedHrd)
{
    const auto vui_without_groups = [](bit_writer w) { return w.u(5, 0); };
    bit_writer nal_hrd = vui_without_groups(baseline_sps(0, true));
    nal_hrd.flag(true).ue(128).u(64, 0xFFFFFFFFFFFFFFFF);
    EXPECT_EQ(problem_of(walk(support::sps, nal_hrd)),
              "cpb_cnt_minus1 of the NAL HRD asks for 129 entries, more than 128");
    bit_writer vcl_hrd = vui_without_groups(baseline_sps(0, true));
    vcl_hrd.flag(false).flag(true).ue(200).u(64, 0xFFFFFFFFFFFFFFFF);
    EXPECT_EQ(problem_of(walk(support::sps, vcl_hrd)),
              "cpb_cnt_minus1 of the VCL HRD asks for 201 entries, more than 128");
}

TEST_F(StreamWalker, ProblemTrailingBits)
{
    EXPECT_EQ(problem_of(walk(support::sps, baseline_sps(0).u(16, 0x00FF))), "malformed trailing bits");
    walk(support::sps, baseline_sps(0));
    EXPECT_EQ(problem_of(walk(support::aud, bytes{0x40})), "malformed trailing bits");
    EXPECT_EQ(problem_of(walk(support::pps, without_stop_bit(plain_pps(0, 0)))), "malformed trailing bits");
}

TEST_F(StreamWalker, ProblemMalformedCode)
{
    bit_writer w;
    w.u(8, 66).u(8, 0).u(8, 30).u(40, 1).u(32, 0xFFFFFFFF);
    EXPECT_EQ(problem_of(walk(support::sps, w)), "malformed Exp-Golomb code at bit 24");
}

TEST_F(StreamWalker, ProblemFieldsPastTheEnd)
{
    EXPECT_EQ(problem_of(walk(support::aud, bytes())), "truncated: fields read past the end, 8 bits of 0");
    EXPECT_EQ(problem_of(walk(support::sps, bytes{66, 0, 30})),
              "malformed Exp-Golomb code at bit 24, truncated: it reads past the end");
    // Cut inside the constraint flags' neighbours, the fixed-width fields read as zeros.
    EXPECT_EQ(problem_of(walk(support::sps, bytes{66})),
              "malformed Exp-Golomb code at bit 24, truncated: it reads past the end");
}

TEST_F(StreamWalker, ReadingPastTheEndIsAProblemEvenWhereTheParseSucceeded)
{
    walked_unit unit;
    unit.syntax = brenik::h264_nal_aud();
    unit.outcome = {.parsed = true, .bits = 16, .bits_consumed = 17, .malformed_code = {}};
    EXPECT_EQ(problem_of(unit), "truncated: fields read past the end, 17 bits of 16");
    unit.outcome.bits_consumed = 16;
    EXPECT_EQ(problem_of(unit), "");
}

// Which SPS is current.

TEST_F(StreamWalker, NoSpsIsCurrentBeforeTheFirst)
{
    EXPECT_EQ(walker.sps_store().current_id(), 0xFFFFFFFFU);
    walk(support::idr_slice, slice(0));
    EXPECT_EQ(walker.sps_store().current_id(), 0xFFFFFFFFU);
}

TEST_F(StreamWalker, BeforeAnySliceTheSpsStoredLastIsCurrent)
{
    walk(support::sps, baseline_sps(3));
    EXPECT_EQ(walker.sps_store().current_id(), 3U);
    walk(support::sps, baseline_sps(1));
    EXPECT_EQ(walker.sps_store().current_id(), 1U);
}

TEST_F(StreamWalker, ASliceActivatesTheSpsOfItsPps)
{
    walk(support::sps, baseline_sps(3));
    walk(support::pps, plain_pps(7, 3));
    walk(support::sps, baseline_sps(1));
    walk(support::idr_slice, slice(7));
    EXPECT_EQ(walker.sps_store().current_id(), 3U);
    walk(support::sps, baseline_sps(2));
    EXPECT_EQ(walker.sps_store().current_id(), 3U) << "a stored SPS is not current while another is active";
    walk(support::header_byte(2, 1), slice(9));
    EXPECT_EQ(walker.sps_store().current_id(), 3U) << "an unknown PPS names no SPS";
    walk(support::header_byte(2, 1), bytes(20, 0));
    EXPECT_EQ(walker.sps_store().current_id(), 3U) << "nor does a malformed slice";
}

TEST_F(StreamWalker, ABufferingPeriodActivatesTheSpsItNames)
{
    walk(support::sps, baseline_sps(0));
    walk(support::sps, baseline_sps(4));
    const unsigned char sei = support::header_byte(0, 6);
    walk(sei, bytes{6, 1, 0xFF, 0, 1, 0x80, 0x80}); // recovery_point, then a buffering period of SPS 0
    EXPECT_EQ(walker.sps_store().current_id(), 0U);
    walk(sei, bytes{0, 1, 0x30, 0x80}); // a buffering period of SPS 5, which is not there
    EXPECT_EQ(walker.sps_store().current_id(), 0U);
    walk(sei, bytes{0, 1, 0x28, 0x80}); // of SPS 4
    EXPECT_EQ(walker.sps_store().current_id(), 4U);
    walk(sei, bytes{0, 0, 0x80}); // of none
    EXPECT_EQ(walker.sps_store().current_id(), 4U);
}

TEST_F(StreamWalker, AMillionIdsDoNotFillTheStores)
{
    constexpr std::uint32_t ids = 3000;
    for (std::uint32_t id = 0; id < ids; ++id)
        walk(support::sps, baseline_sps(ids - id));
    EXPECT_EQ(walker.sps_store().size(), stream_walker::most_sps);
    EXPECT_NE(walker.sps_store().find(1), nullptr) << "the lowest ids stay";
    for (std::uint32_t id = 0; id < ids; ++id)
        walk(support::pps, plain_pps(id, 1));
    EXPECT_EQ(walker.pps_store().size(), stream_walker::most_pps);
    EXPECT_NE(walker.pps_store().find(255), nullptr);
}

} // namespace
