// examples/sei_timing: the lines, the messages, the exit status.
#include "support/run_tool.h"
#include "support/sps_builder.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using support::bit_writer;
using support::bytes;
using support::sei;
using support::sei_rbsp;
using support::stream_builder;
using support::tool_result;
using support::written_rbsp;

/// A stream of an SPS with picture structures and, unless `vui` says otherwise, no delays.
stream_builder sps_unit(std::uint32_t id = 0, const support::vui_description& vui = {.pic_struct_present_flag = true})
{
    support::sps_description seq;
    seq.seq_parameter_set_id = id;
    seq.vui = vui;
    return stream_builder().annexb_unit(support::sps, written_rbsp(seq).made());
}

/// clock_timestamp_flag to n_frames of a timestamp.
bit_writer& begin_timestamp(bit_writer& out, bool full_timestamp_flag, unsigned int n_frames)
{
    return out.flag(true).u(2, 0).flag(false).u(5, 0).flag(full_timestamp_flag).u(2, 0).u(8, n_frames);
}

tool_result timing_of(const bytes& stream)
{
    return support::run_tool({}, {.piped = stream});
}

std::string first_lines(const std::string& text, std::size_t count)
{
    std::size_t end = 0;
    while (count-- > 0)
        end = text.find('\n', end) + 1;
    return text.substr(0, end);
}

tool_result timing_of_file(const std::string& name)
{
    return timing_of(support::read_file(std::string(ORV_TEST_STREAMS "/") + name));
}

TEST(SeiTiming, DelaysHaveTheLengthsOfTheStandard)
{
    // ffmpeg -i hrd_vbr_aud.264 -c copy -bsf:v trace_headers -f null - shows the same numbers.
    const tool_result result = timing_of_file("hrd_vbr_aud.264");
    EXPECT_EQ("cpb_removal_delay 0  dpb_output_delay 4  Progressive frame\n"
              "cpb_removal_delay 2  dpb_output_delay 10  Progressive frame\n"
              "cpb_removal_delay 4  dpb_output_delay 4  Progressive frame\n",
              first_lines(result.out, 3));
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST(SeiTiming, WithoutPictureStructuresTheDelaysStandAlone)
{
    EXPECT_EQ("cpb_removal_delay 0  dpb_output_delay 4  \n", first_lines(timing_of_file("hrd_cbr_filler.264").out, 1));
}

TEST(SeiTiming, PictureStructuresStandAloneWithoutAnHrd)
{
    EXPECT_EQ("Top field, bottom field, top field repeated, in that order\n"
              "Top field, bottom field, top field repeated, in that order\n"
              "Bottom field, top field, bottom field repeated, in that order\n"
              "Bottom field, top field, in that order\n",
              first_lines(timing_of_file("pulldown32.264").out, 4));
}

TEST(SeiTiming, DelaysOfAVclHrdAloneHaveItsLengthsAndTheTimestampsFollow)
{
    support::hrd_description hrd;
    hrd.initial_cpb_removal_delay_length_minus1 = 15;
    hrd.cpb_removal_delay_length_minus1 = 6;
    hrd.dpb_output_delay_length_minus1 = 4;
    hrd.time_offset_length = 7;
    support::vui_description vui;
    vui.vcl_hrd = hrd;
    vui.pic_struct_present_flag = true;
    bit_writer timing;
    timing.u(7, 101).u(5, 18).u(4, 3); // two timestamps
    begin_timestamp(timing, true, 4).u(6, 58).u(6, 59).u(5, 23).u(7, 0x7F);
    begin_timestamp(timing, true, 5).u(6, 9).u(6, 8).u(5, 7).u(7, 1);
    EXPECT_EQ("cpb_removal_delay 101  dpb_output_delay 18  Top field, bottom field, in that order  23:59:58:04  "
              "07:08:09:05\n",
              timing_of(sps_unit(0, vui).annexb_unit(sei, sei_rbsp({{1, timing.trailing_bits().bytes()}}))).out);
}

TEST(SeiTiming, WithoutAnHrdTheTimeOffsetsHave24Bits)
{
    bit_writer timing;
    timing.u(4, 3);
    begin_timestamp(timing, true, 4).u(6, 58).u(6, 59).u(5, 23).u(24, 0xFFFFFF);
    begin_timestamp(timing, true, 5).u(6, 9).u(6, 8).u(5, 7).u(24, 1);
    EXPECT_EQ("Top field, bottom field, in that order  23:59:58:04  07:08:09:05\n",
              timing_of(sps_unit().annexb_unit(sei, sei_rbsp({{1, timing.trailing_bits().bytes()}}))).out);
}

TEST(SeiTiming, WithoutAnSpsThatParsesThereIsNoTiming)
{
    const bytes malformed_sps = {66, 0, 30, 0, 0, 3, 0, 0, 3, 1};
    const bytes timing = sei_rbsp({{1, {0x04}}});
    EXPECT_EQ("", timing_of(stream_builder().annexb_unit(sei, timing)).out);
    const tool_result result = timing_of(sps_unit()
                                             .annexb_unit(support::sps, malformed_sps)
                                             .annexb_unit(sei, timing)
                                             .raw(sps_unit())
                                             .annexb_unit(sei, timing));
    EXPECT_EQ("Progressive frame\n", result.out);
    EXPECT_EQ(0, result.status);
}

} // namespace
