// orv-h264 check as a user runs it: statuses, options, and what is refused.
#include "support/made_stream.h"
#include "support/run_tool.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using namespace orv_utils_v4::h264;
using support::run_tool;
using support::temporary_file;
using support::tool_result;

/// A P slice in an IDR picture, SliceQPY 52 in two pictures, and an MVs' length that older editions allow.
support::bytes broken_stream()
{
    seq_parameter_set_data sps = sps_data();
    sps.vui_parameters_present_flag = true;
    sps.vui_parameters.bitstream_restriction_flag = true;
    sps.vui_parameters.log2_max_mv_length_horizontal = 16;
    sps.vui_parameters.log2_max_mv_length_vertical = 8;
    sps.vui_parameters.max_num_reorder_frames = 0;
    sps.vui_parameters.max_dec_frame_buffering = 1;
    made_stream stream(sps);
    made_slice slice = idr();
    slice.header.slice_type = 5;
    slice.header.slice_qp_delta = 26;
    stream.add_sets().add(slice);
    slice = reference(1);
    slice.header.slice_qp_delta = 26;
    return stream.add(slice).bytes;
}

std::size_t lines_of(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(Check, EndsWithOneWhereAnErrorWasFound)
{
    const temporary_file file(broken_stream());
    const tool_result all = run_tool({"check", file.path()});
    EXPECT_EQ(all.status, 1);
    EXPECT_EQ(all.err, "");
    EXPECT_NE(all.out.find(": 3 errors, 1 warning, 0 notes\n"), std::string::npos) << all.out;
    const tool_result warning = run_tool({"check", "--only", "vui-*", file.path()});
    EXPECT_EQ(warning.status, 0);
    EXPECT_NE(warning.out.find(": 0 errors, 1 warning, 0 notes\n"), std::string::npos) << warning.out;
}

TEST(Check, LooksWithTheChosenRules)
{
    const temporary_file file(broken_stream());
    const tool_result only = run_tool({"check", "--only", "value-in-range,slice-idr-is-intra", file.path()});
    EXPECT_EQ(lines_of(only.out), 4U) << only.out;
    const tool_result ignored =
        run_tool({"check", "--ignore", "value-*", "--ignore", "slice-idr-is-intra", "--ignore", "vui-*", file.path()});
    EXPECT_EQ(ignored.status, 0);
    EXPECT_EQ(lines_of(ignored.out), 1U) << ignored.out;
}

TEST(Check, CountsWhatItDoesNotShow)
{
    const temporary_file file(broken_stream());
    const tool_result result = run_tool({"check", "--limit", "1", file.path()});
    EXPECT_EQ(lines_of(result.out), 4U) << result.out;
    EXPECT_NE(result.out.find(": 3 errors, 1 warning, 0 notes; 1 of them not shown\n"), std::string::npos)
        << result.out;
}

TEST(Check, RefusesRulesAndProfilesThatThereAreNot)
{
    const temporary_file file(broken_stream());
    const auto refusal = [&](const std::string& option, const std::string& value) {
        const tool_result result = run_tool({"check", option, value, file.path()});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        return result.err;
    };
    EXPECT_EQ(refusal("--only", "sps-nothing"), "orv-h264: there is no rule 'sps-nothing'; --rules lists them\n");
    EXPECT_EQ(refusal("--ignore", "nothing-*"), "orv-h264: there is no rule 'nothing-*'; --rules lists them\n");
    EXPECT_EQ(refusal("--explain", "x"), "orv-h264: there is no rule 'x'; --rules lists them\n");
    EXPECT_EQ(refusal("--profile", "nowhere"),
              "orv-h264: there is no file 'nowhere', and the profiles that come with the "
              "tool are disc, low-latency, streaming\n");
    EXPECT_NE(run_tool({"check", "--json", "--sarif", file.path()}).err.find("one of --json, --sarif and --junit"),
              std::string::npos);
    EXPECT_EQ(run_tool({"check"}).status, 2);
}

TEST(Check, TakesAProfileOfTheUsersOwn)
{
    const support::temporary_folder folder;
    const std::string text = "slices at least 2\nlevel_idc at most 10 note\n";
    const std::string profile = folder.write("mine.profile", {text.begin(), text.end()});
    const std::string stream = folder.write("stream.264", broken_stream());
    const tool_result result = run_tool({"check", "--only", "mine-*", "--profile", profile, stream});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("note: level_idc 30; allowed: at most 10 [mine-level_idc, profile mine]\n"),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("error: slices 1; allowed: at least 2 [mine-slices, profile mine]\n"), std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find(": 2 errors, 0 warnings, 1 note\n"), std::string::npos) << result.out;
}

TEST(Check, ReadsAPipe)
{
    support::tool_input input;
    input.piped = broken_stream();
    const tool_result result = run_tool({"check", "--format", "annexb", "-"}, input);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("standard input: 3 errors"), std::string::npos) << result.out;
}

TEST(Check, TellsOfAnInputWithoutUnits)
{
    const temporary_file file({});
    const tool_result result = run_tool({"check", "--format", "annexb", file.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("[stream-holds-units, "), std::string::npos) << result.out;
}

} // namespace
