#include "report/report_page.h"

#include "report/page_parts.h"
#include "stream_input.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orv_h264::json;

/// The page, or "" where the tool was built without uPlot.
std::string page_of(const json& data)
{
    std::string page;
    try {
        orv_h264::require_page_parts();
    } catch (const orv_h264::refusal& refused) {
        EXPECT_EQ(orv_h264::exit_not_supported, refused.status);
        return page;
    }
    orv_h264::write_page(data, [&page](std::string_view text) { page += text; });
    return page;
}

std::size_t count_of(const std::string& what, const std::string& text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++count;
    return count;
}

} // namespace

TEST(ReportPage, DataCannotEndTheirElement)
{
    const std::string hostile = "</script><!--<script>&\xE2\x80\xA8\xE2\x80\xA9\xFF{{data}}";
    const std::string plain = page_of({{"a", "b"}});
    const std::string page = page_of({{"a", hostile}, {hostile, 1}});
    if (page.empty())
        GTEST_SKIP() << "built without uPlot";
    for (const char* mark : {"</script", "<script", "<!--", "\xE2\x80\xA8", "\xE2\x80\xA9"})
        EXPECT_EQ(count_of(mark, plain), count_of(mark, page)) << mark;
    const std::size_t start = page.find("id=\"data\">") + 10;
    const json read = json::parse(page.substr(start, page.find("</script>", start) - start));
    const std::string shown = "</script><!--<script>&\xE2\x80\xA8\xE2\x80\xA9\xEF\xBF\xBD{{data}}";
    EXPECT_EQ(shown, read["a"]);
    EXPECT_EQ(1, read[shown]);
}

TEST(ReportPage, ThePolicyNamesEveryScriptAndStyleAndNothingElse)
{
    const std::string page = page_of({});
    if (page.empty())
        GTEST_SKIP() << "built without uPlot";
    std::size_t scripts = 0;
    std::size_t styles = 0;
    for (const orv_h264::page_part& part : orv_h264::page_parts()) {
        scripts += part.name.ends_with(".js") ? 1 : 0;
        styles += part.name.ends_with(".css") ? 1 : 0;
    }
    EXPECT_EQ(scripts, count_of("<script>", page));
    EXPECT_EQ(styles, count_of("<style>", page));
    const std::size_t start = page.find("content=\"default-src 'none'; script-src ");
    ASSERT_NE(std::string::npos, start);
    const std::string policy = page.substr(start, page.find('"', start + 9) - start);
    EXPECT_EQ(scripts + styles, count_of(" 'sha256-", policy));
    EXPECT_EQ(std::string::npos, policy.find("unsafe"));
    EXPECT_EQ(0U, count_of("{{", page.substr(0, start)));
}

TEST(ReportPage, ScriptsMakeNoMarkupOfTexts)
{
    for (const orv_h264::page_part& part : orv_h264::page_parts())
        for (const char* way :
             {"innerHTML", "outerHTML", "insertAdjacentHTML", "document.write", "eval(", "new Function"})
            EXPECT_EQ(std::string_view::npos, part.text.find(way)) << part.name << " has " << way;
}
