// Units whose parse runs out of memory: what is said of them names memory, and nothing that is not wrong with them.
#include "support/failing_new.h"
#include "support/pps_builder.h"
#include "support/sei_builder.h"
#include "support/sps_builder.h"
#include "support/walked.h"

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <string>

namespace {

using orv_h264::stream_walker;
using support::armed_new;
using support::bytes;

/// An SPS with an HRD and clock timestamps, for the messages that need one.
support::sps_description timed_sps()
{
    support::sps_description seq;
    seq.vui.emplace();
    seq.vui->nal_hrd = support::hrd_of(2);
    seq.vui->vcl_hrd = support::hrd_of(2);
    seq.vui->pic_struct_present_flag = true;
    return seq;
}

/// What is said of the unit when allocation `k` of its walk fails; nothing when the failure gets out as an exception.
std::optional<std::string> told_without_memory(unsigned char header, const bytes& rbsp, std::size_t k)
{
    stream_walker walker;
    support::walk(walker, support::sps, support::written_rbsp(timed_sps()).made());
    support::unit_reader unit(header, rbsp);
    orv_h264::walked_unit walked;
    try {
        const armed_new memory(k);
        walked = walker.walk(*unit);
    } catch (const std::bad_alloc&) {
        return {};
    }
    return support::problem_of(walked);
}

/// Fails every allocation of the unit's walk in turn; how many of the failures were told as a problem.
int told_failures(unsigned char header, const bytes& rbsp)
{
    int told = 0;
    for (std::size_t k = 0;; ++k) {
        const auto problem = told_without_memory(header, rbsp, k);
        if (armed_new::made() <= k) {
            EXPECT_EQ("", problem) << "nothing is wrong with the unit";
            return told;
        }
        if (!problem || problem->empty())
            continue;
        EXPECT_NE(std::string::npos, problem->find("memory ran out for ")) << *problem;
        EXPECT_EQ(std::string::npos, problem->find('\n')) << *problem;
        ++told;
    }
}

} // namespace

TEST(WalkedUnitAllocation, OfAnSpsIsToldForEveryArray)
{
    EXPECT_EQ(12 + 1 + 3 + 3, told_failures(support::sps, support::written_rbsp(support::full_sps()).made()))
        << "scaling lists, the cycle, two HRDs";
}

TEST(WalkedUnitAllocation, OfAPpsIsToldForEveryArray)
{
    support::pps_description pic;
    pic.num_slice_groups_minus1 = 2;
    pic.run_length_minus1 = {1, 2, 3};
    EXPECT_EQ(1, told_failures(support::pps, support::written_rbsp(pic).made()));
    pic.slice_group_map_type = 2;
    pic.top_left = pic.bottom_right = {1, 2};
    EXPECT_EQ(2, told_failures(support::pps, support::written_rbsp(pic).made()));
    pic.slice_group_map_type = 6;
    pic.slice_group_id = {0, 1, 2};
    EXPECT_EQ(1, told_failures(support::pps, support::written_rbsp(pic).made()));
    pic = {};
    pic.tail = true;
    pic.scaling_lists = support::full_scaling_matrix();
    EXPECT_EQ(6, told_failures(support::pps, support::written_rbsp(pic).made()));
}

TEST(WalkedUnitAllocation, OfSeiMessagesIsTold)
{
    support::element_writer period;
    period.ue("seq_parameter_set_id", 0);
    for (int i = 0; i < 8; ++i)
        period.u("delay", 24, 1);
    bytes payload = period.made();
    payload.resize(payload.size() + 32);
    EXPECT_EQ(4, told_failures(support::sei, support::sei_rbsp({{0, payload}}))) << "two arrays for each HRD";
    EXPECT_EQ(1, told_failures(support::sei,
                               support::sei_rbsp({{2, support::written_rbsp(support::pan_scan_of(3)).made()}})));
}

TEST(WalkedUnitAllocation, OfPictureTimingIsToldWhenBothReadingsLackIt)
{
    brenik::h264_nal_sps sps;
    orv_h264::walked_message message;
    message.syntax.emplace<orv_h264::walked_pic_timing>();
    message.sps = &sps;
    EXPECT_EQ("memory ran out for its timestamps", orv_h264::problem_of(message));
}
