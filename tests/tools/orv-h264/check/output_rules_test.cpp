// The rules over output where pictures may be missing.
#include "support/checked.h"
#include "support/planted_slices.h"

#include <gtest/gtest.h>

namespace {

using namespace support;

/// What the rules over output tell.
std::string of_output(const bytes& stream)
{
    std::string text;
    for (const orv_h264::violation& what : violations_of(stream))
        if (what.broken->id.starts_with("output-"))
            text += std::string(what.broken->id) + " ";
    return text;
}

/// A buffer of one frame, and one that may be reordered.
seq_parameter_set_data sps_of_one_frame()
{
    seq_parameter_set_data made = sps_data();
    made.pic_order_cnt_type = 0;
    made.vui_parameters_present_flag = true;
    made.vui_parameters.bitstream_restriction_flag = true;
    made.vui_parameters.max_num_reorder_frames = 1;
    made.vui_parameters.max_dec_frame_buffering = 1;
    return made;
}

TEST(OutputRules, TheBufferIsNotJudgedUntilAnIdrPicture)
{
    const seq_parameter_set_data sps_of_one = sps_of_one_frame();
    EXPECT_EQ(of_output(slices_of(sps_of_one, {reference(1, 8), reference(2, 4)})), "");
    EXPECT_EQ(of_output(slices_of(sps_of_one, {idr(), reference(2, 8), reference(3, 4)})), "");
    EXPECT_EQ(of_output(slices_of(sps_of_one, {reference(5), idr(), reference(1, 8), reference(2, 4)})),
              "output-buffer-suffices ");
}

TEST(OutputRules, TheBufferIsJudgedBehindOperation5)
{
    EXPECT_EQ(of_output(slices_of(sps_of_one_frame(), {reference(5), with(reference(6), {forget_all()}),
                                                       reference(1, 8), reference(2, 4)})),
              "output-buffer-suffices ");
}

TEST(OutputRules, MoreFramesThanMayWaitAreToldEachTimeThatTheyAreMore)
{
    seq_parameter_set_data made = sps_of_one_frame();
    made.max_num_ref_frames = 4;
    made.vui_parameters.max_dec_frame_buffering = 4;
    const std::string once = "output-reordering-in-limit ";
    EXPECT_EQ(of_output(slices_of(made, {idr(), reference(1, 7), reference(2, 6), reference(3, 5)})), once);
    EXPECT_EQ(of_output(slices_of(made, {idr(), reference(1, 7), reference(2, 6), reference(3, 5), idr(1),
                                         reference(1, 7), reference(2, 6), reference(3, 5), reference(4, 4)})),
              once + once);
}

} // namespace
