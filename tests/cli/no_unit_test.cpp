// Inputs that hold no NAL unit: every subcommand that reads a stream says so, from a file and from a pipe, in every
// framing, and ends with the status of a broken stream.
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using support::bytes;
using support::read_file;
using support::run_tool;
using support::stream_builder;
using support::tool_result;

struct no_unit_case {
    bytes content;
    std::string message;
};

const no_unit_case no_unit_cases[] = {
    {{}, "no NAL unit found: the input is empty"},
    {stream_builder().zeros(1), "no NAL unit found"},
    {stream_builder().zeros(3), "no NAL unit found"},
    {stream_builder().zeros(300), "no NAL unit found"},
    {stream_builder().zeros(100000), "no NAL unit found"},
    {{'a', 'b', 'c'}, "no NAL unit found"},
    {{0, 0, 1}, "no NAL unit found"},
};

class NoUnit : public testing::TestWithParam<std::string> {
protected:
    /// The subcommand over `path`; what convert writes goes to `out`.
    std::vector<std::string> arguments(const std::string& path, const std::string& framing) const
    {
        std::vector<std::string> words = {GetParam(), path};
        if (GetParam() == "inspect_tsv")
            words = {"inspect", "--tsv", path};
        if (GetParam() == "convert")
            words.insert(words.end(), {out, "--to", "length4"});
        if (!framing.empty())
            words.insert(words.end(), {"--format", framing});
        return words;
    }

    void expect_told(const tool_result& result, const std::string& message, const std::string& how)
    {
        const std::string& told = GetParam() == "info" ? result.out : result.err;
        EXPECT_EQ(1, result.status) << how << told;
        EXPECT_NE(std::string::npos, told.find(message)) << how << told;
        const bool also_empty = told.find("empty") != std::string::npos;
        EXPECT_EQ(message.find("empty") != std::string::npos, also_empty) << how << told;
        EXPECT_EQ(std::string::npos, told.find("--format")) << how << told;
    }

    support::temporary_folder folder;
    std::string out = folder.path("out");
};

INSTANTIATE_TEST_SUITE_P(Subcommands, NoUnit, testing::Values("inspect", "inspect_tsv", "frames", "info", "convert"),
                         [](const auto& subcommand) { return subcommand.param; });

} // namespace

TEST_P(NoUnit, IsToldInEveryFramingOfAFileAndOfAPipe)
{
    for (const no_unit_case& c : no_unit_cases)
        for (const char* const framing : {"", "annexb", "length4"}) {
            const std::string how = std::to_string(c.content.size()) + " bytes, framing '" + framing + "'\n";
            expect_told(run_tool(arguments(folder.write("in", c.content), framing)), c.message, how + "file: ");
            expect_told(run_tool(arguments("-", framing), {.piped = c.content}), c.message, how + "pipe: ");
        }
}

TEST_P(NoUnit, LeavesTheOutputOfConvertAsItWas)
{
    for (const no_unit_case& c : no_unit_cases) {
        folder.write("out", {1, 2, 3});
        run_tool(arguments(folder.write("in", c.content), "annexb"));
        EXPECT_EQ(bytes({1, 2, 3}), read_file(out)) << c.content.size();
        EXPECT_EQ(2, folder.files()) << c.content.size();
    }
}

TEST(NoUnitJson, IsAProblemOfTheStream)
{
    using nlohmann::json;
    const std::string lines = run_tool({"inspect", "--json", "/dev/null"}).out;
    const json problem = json::parse(lines.substr(lines.find('\n') + 1));
    EXPECT_EQ((json{{"record", "problem"}, {"offset", 0}, {"message", "no NAL unit found: the input is empty"}}),
              problem);
    const json info = json::parse(run_tool({"info", "--json", "--format", "length2", "/dev/null"}).out);
    EXPECT_EQ("no NAL unit found: the input is empty", info["problems"].at(0)["message"]);
    EXPECT_EQ(0, info["frames"]["count"]);
    EXPECT_EQ(json::array(), info["sequences"]);
}

TEST(NoUnitMessages, AreWholeLinesOfTheirOwn)
{
    EXPECT_EQ("orv-h264: standard input: offset 0: no NAL unit found: the input is empty\n",
              run_tool({"inspect", "-"}, {.piped = bytes()}).err);
    EXPECT_EQ("orv-h264: standard input: offset 0: bytes before the first start code (3 bytes)\n"
              "orv-h264: standard input: offset 3: no NAL unit found\n",
              run_tool({"frames", "-"}, {.piped = bytes{'a', 'b', 'c'}}).err);
    EXPECT_EQ("orv-h264: standard input: offset 0: bytes before the first start code (3 bytes)\n"
              "orv-h264: standard input: offset 3: no NAL unit found\n",
              run_tool({"inspect", "--tsv", "-"}, {.piped = bytes{'a', 'b', 'c'}}).err);
    EXPECT_EQ("orv-h264: standard input: offset 0: start code or length prefix without a unit (4 bytes)\n"
              "orv-h264: standard input: offset 4: start code or length prefix without a unit (4 bytes)\n"
              "orv-h264: standard input: offset 8: no NAL unit found\n",
              run_tool({"inspect", "--format", "length4", "-"}, {.piped = bytes(8)}).err);
    EXPECT_EQ("orv-h264: standard input: offset 0: no NAL unit found: the input is empty; conversion stopped\n",
              run_tool({"convert", "-", "-", "--to", "annexb"}, {.piped = bytes()}).err);
}
