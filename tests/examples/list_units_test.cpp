// examples/list_units: the lines and the exit status.
#include "support/pps_builder.h"
#include "support/run_tool.h"
#include "support/sps_builder.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using support::bit_writer;
using support::bytes;
using support::stream_builder;
using support::tool_result;
using support::written_rbsp;

const std::string sps_name = "  Sequence parameter set, seq_parameter_set_rbsp()";
const std::string pps_name = "  Picture parameter set, pic_parameter_set_rbsp()";
const std::string idr_name = "  Coded slice of an IDR picture, slice_layer_without_partitioning_rbsp()";
const std::string slice_name = "  Coded slice of a non-IDR picture, slice_layer_without_partitioning_rbsp()";

tool_result list(const bytes& stream)
{
    return support::run_tool({}, {.piped = stream});
}

bytes bundled(const std::string& name)
{
    return support::read_file(std::string(ORV_TEST_STREAMS "/") + name);
}

TEST(ListUnits, AStreamShowsSizeAndSlicesBehindTheTypes)
{
    const tool_result result = list(bundled("main_bpyramid_weighted.264"));
    EXPECT_EQ("       1" + sps_name + "  192x160\n      28" + pps_name +
                  "\n      36  Supplemental enhancement information (SEI), sei_rbsp()\n     724" + idr_name +
                  "  I  frame_num 0\n     778" + slice_name + "  P  frame_num 1\n    1745" + slice_name +
                  "  B  frame_num 2\n    1896" + slice_name + "  B  frame_num 3\n",
              result.out.substr(0, result.out.find("    1936")));
    EXPECT_EQ(63, std::count(result.out.begin(), result.out.end(), '\n'));
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST(ListUnits, AParameterSetSentAgainHoldsForWhatFollows)
{
    const std::string lines = list(bundled("two_sizes.264")).out;
    EXPECT_NE(std::string::npos, lines.find(sps_name + "  176x144\n"));
    EXPECT_NE(std::string::npos, lines.find(sps_name + "  128x96\n"));
}

TEST(ListUnits, EveryWholeStreamOfTheRepositoryParses)
{
    for (const auto& path : support::annexb_files(ORV_TEST_STREAMS)) {
        const tool_result result = list(support::read_file(path));
        EXPECT_EQ("", result.err) << path;
        if (!support::is_broken(path)) {
            EXPECT_EQ(0, result.status) << path;
        }
    }
}

TEST(ListUnits, SlicesBeforeTheirParameterSetsDoNotParse)
{
    const tool_result result = list(bundled("broken_cut.264"));
    EXPECT_EQ(0U, result.out.find("     216" + slice_name)) << result.out;
    EXPECT_LT(result.out.find("  does not parse\n"), result.out.find('\n')) << result.out;
    EXPECT_EQ(1, result.status);
}

TEST(ListUnits, AMalformedCodeIsToldAndTheListGoesOn)
{
    const bytes malformed = {0x80, 0, 0, 3, 0, 0, 3, 0, 1};
    bit_writer slice;
    slice.ue(0).ue(7).ue(0).u(4, 6).ue(0).u(4, 0).trailing_bits();
    const tool_result result = list(stream_builder()
                                        .annexb_unit(support::sps, written_rbsp(support::sps_description()).made())
                                        .annexb_unit(support::pps, written_rbsp(support::pps_description()).made())
                                        .annexb_unit(support::idr_slice, malformed)
                                        .annexb_unit(support::idr_slice, slice.bytes()));
    EXPECT_NE(std::string::npos, result.out.find(idr_name + "  does not parse\n")) << result.out;
    EXPECT_NE(std::string::npos, result.out.find(idr_name + "  I  frame_num 6\n")) << result.out;
    EXPECT_EQ(1, result.status);
}

TEST(ListUnits, NothingHasNoUnits)
{
    for (const bytes& stream : {bytes(), bytes(100, 0), bytes(100, 0xEE)}) {
        EXPECT_EQ("", list(stream).out);
        EXPECT_EQ(0, list(stream).status);
    }
}

} // namespace
