#include "table_output.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace {

using orv_h264::cell_of;
using orv_h264::json;
using orv_h264::output_format;

std::string row_of(output_format table, const std::vector<std::string>& cells)
{
    std::string out;
    orv_h264::append_row(out, table, cells);
    return out;
}

std::vector<std::pair<std::string, json>> facts_of(const json& object)
{
    std::vector<std::pair<std::string, json>> facts;
    orv_h264::tell_facts(object, [&](const std::string& path, const json& value) { facts.emplace_back(path, value); });
    return facts;
}

} // namespace

TEST(TableOutput, ACellIsTheValueWithoutTheMarksOfJson)
{
    const std::pair<json, const char*> cases[] = {
        {nullptr, ""},
        {true, "true"},
        {-5, "-5"},
        {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
        {0.05, "0.05"},
        {"a \"text\"", "a \"text\""},
        {"gr\u00fc\u00dfe", "gr\u00fc\u00dfe"},
        {"a\xFF", "a\uFFFD"},
        {json::array(), ""},
        {{7, 8, 5}, "7 8 5"},
        {{"I", nullptr, "P"}, "I  P"},
        {{{"numerator", 1}, {"denominator", 25}, {"value", 0.04}}, "0.04"},
        {{{"view_id", 1}}, "{\"view_id\":1}"},
    };
    for (const auto& [value, cell] : cases)
        EXPECT_EQ(cell, cell_of(value)) << value;
}

TEST(TableOutput, CsvQuotesWhatWouldEndACell)
{
    EXPECT_EQ("a,b c,,\"d,e\",\"f\"\"g\",\"h\ni\",\"j\rk\",\tl\n",
              row_of(output_format::csv, {"a", "b c", "", "d,e", "f\"g", "h\ni", "j\rk", "\tl"}));
}

TEST(TableOutput, TsvHasASpaceForWhatWouldEndACell)
{
    EXPECT_EQ("a,\"b\"\t\tc d e f\n", row_of(output_format::tsv, {"a,\"b\"", "", "c\td\ne\rf"}));
}

TEST(TableOutput, AFactIsAValueWithThePathToIt)
{
    const json object = {{"file", "x.264"},
                         {"sequences", {{{"size", {{"width", 176}, {"height", 144}}}}, {{"size", nullptr}}}},
                         {"types", {7, 8}},
                         {"problems", json::array()}};
    const std::vector<std::pair<std::string, json>> expected = {
        {"file", "x.264"},
        {"sequences[0].size.width", 176},
        {"sequences[0].size.height", 144},
        {"sequences[1].size", nullptr},
        {"types[0]", 7},
        {"types[1]", 8},
        {"problems", json::array()},
    };
    EXPECT_EQ(expected, facts_of(object));
    EXPECT_TRUE(facts_of(json::object()).empty());
}
