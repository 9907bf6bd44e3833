// Where `report` puts its page, and what it ends with.
#include "report/page_parts.h"
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::read_file;
using support::run_tool;
using support::tool_result;

const std::string sound = ORV_TEST_STREAMS "/pulldown32.264";
const std::string broken = ORV_TEST_STREAMS "/broken_cut.264";

class Report : public testing::Test {
protected:
    void SetUp() override
    {
        if (orv_h264::page_parts().front().name == "page.html")
            GTEST_SKIP() << "built without uPlot";
    }

    support::temporary_folder folder;
    std::string out = folder.path("page.html");
};

bool is_page(const bytes& content)
{
    const std::string text(content.begin(), content.end());
    return text.starts_with("<!DOCTYPE html>") && text.ends_with("</html>\n");
}

} // namespace

TEST_F(Report, ThePageIsWholeAndNothingIsSaid)
{
    const tool_result result = run_tool({"report", sound, "-o", out});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.err + result.out);
    EXPECT_TRUE(is_page(read_file(out)));
}

TEST_F(Report, TheStandardInputAndOutputDoTheSame)
{
    run_tool({"report", sound, "-o", out});
    const tool_result result = run_tool({"report", "-", "--output", "-"}, {.piped = read_file(sound)});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(is_page(bytes(result.out.begin(), result.out.end())));
    EXPECT_NEAR(static_cast<double>(read_file(out).size()), static_cast<double>(result.out.size()), 200.0);
}

TEST_F(Report, OfABrokenStreamThereIsAPage)
{
    EXPECT_EQ(1, run_tool({"report", broken, "-o", out}).status);
    EXPECT_TRUE(is_page(read_file(out)));
    EXPECT_EQ(1, run_tool({"report", folder.write("empty", {}), "-o", out}).status);
    EXPECT_TRUE(is_page(read_file(out)));
}

TEST_F(Report, TheStreamIsNotReplaced)
{
    const std::string stream = folder.write("movie.264", read_file(sound));
    const tool_result result = run_tool({"report", stream, "-o", stream});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("orv-h264: " + stream + ": the report would replace the stream\n", result.err);
    EXPECT_EQ(read_file(sound), read_file(stream));
}

TEST_F(Report, WhatCannotBeReadOrWrittenLeavesNothing)
{
    EXPECT_EQ(2, run_tool({"report", folder.path("none.264"), "-o", out}).status);
    EXPECT_EQ(2, run_tool({"report", sound, "-o", folder.path("none/page.html")}).status);
    EXPECT_EQ(2, run_tool({"report", sound, "-o", out}, {.max_file = 4096}).status);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path("")));
}
