// A tool that was built without uPlot: page_parts() here takes the place of the one that is built in.
#include "report.h"
#include "report/page_parts.h"
#include "stream_input.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace orv_h264 {

std::span<const page_part> page_parts()
{
    static constexpr page_part parts[] = {{"page.html", "", ""}, {"page.css", "", ""}};
    return parts;
}

} // namespace orv_h264

TEST(ReportWithoutUplot, IsRefusedBeforeAnythingIsReadOrWritten)
{
    const std::string out = testing::TempDir() + "/orv-no-report.html";
    orv_h264::report_options options;
    options.stream.path = "not there";
    options.out = out;
    try {
        report(options);
        FAIL() << "there is a report";
    } catch (const orv_h264::refusal& refused) {
        EXPECT_EQ(orv_h264::exit_not_supported, refused.status);
        EXPECT_NE(std::string::npos, std::string(refused.what()).find("built without uPlot"));
        EXPECT_NE(std::string::npos, std::string(refused.what()).find("script/bootstrap"));
    }
    EXPECT_FALSE(std::filesystem::exists(out));
}
