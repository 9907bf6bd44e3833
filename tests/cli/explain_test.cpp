// orv-h264 explain as a user runs it: what a byte or a bit belongs to.
#include "support/run_tool.h"
#include "support/stream_builder.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <sstream>

#include <nlohmann/json.hpp>

namespace {

using support::aud;
using support::bytes;
using support::run_tool;
using support::stream_builder;
using support::temporary_file;
using support::tool_result;

const std::string stream = ORV_TEST_STREAMS "/hrd_vbr_aud.264";

nlohmann::json explained(const std::string& path, const std::string& place)
{
    const tool_result result = run_tool({"explain", "--json", path, place});
    EXPECT_EQ(result.status, 0) << result.err;
    return nlohmann::json::parse(result.out);
}

std::vector<std::string> names_in(const nlohmann::json& elements)
{
    std::vector<std::string> names;
    for (const nlohmann::json& element : elements)
        names.push_back(element["name"]);
    return names;
}

TEST(Explain, ABitIsToldWithItsElementAndWhatStandsAroundIt)
{
    const tool_result result = run_tool({"explain", stream, "12:3"});
    EXPECT_EQ(result.out,
              "Place       byte 12, bit 3\n"
              "What        syntax element\n"
              "Unit        1, offset 6, 34 bytes, type 7, Sequence parameter set, seq_parameter_set_rbsp()\n"
              "Before      constraint_set0_flag 0\n"
              "Before      constraint_set1_flag 0\n"
              "Before      constraint_set2_flag 0\n"
              "Element     constraint_set3_flag 0\n"
              "  in        seq_parameter_set_rbsp.seq_parameter_set_data\n"
              "  coded     u(1), 1 bit from byte 12, bit 3 (bit 19 of the unit)\n"
              "  range     0 to 1\n"
              "  clause    H.264 7.3.2.1.1, semantics in 7.4.2.1.1\n"
              "After       constraint_set4_flag 0\n"
              "After       constraint_set5_flag 0\n"
              "After       reserved_zero_2bits 0\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Explain, AByteOfSeveralElementsTellsThemAll)
{
    const auto header = explained(stream, "10");
    EXPECT_EQ(names_in(header["elements"]),
              (std::vector<std::string>{"forbidden_zero_bit", "nal_ref_idc", "nal_unit_type"}));
    const auto level = explained(stream, "0xD");
    EXPECT_EQ(names_in(level["elements"]), std::vector<std::string>{"level_idc"});
    EXPECT_EQ(level["elements"][0]["meaning"], "1.1");
    EXPECT_EQ(explained(stream, "013"), explained(stream, "13")) << "numbers are decimal";
}

TEST(Explain, WhatIsOutsideOfHeadersIsNamed)
{
    const temporary_file file(stream_builder()
                                  .zeros(1)
                                  .annexb_unit(aud, {0x50})                      // 0 to 5
                                  .zeros(3)                                      // 6 to 8
                                  .annexb_unit(support::sps, {77, 0, 0, 3, 1})); // 9: start code, 12: header
    const auto what = [&](const std::string& place) { return run_tool({"explain", file.path(), place}).out; };
    EXPECT_NE(what("0").find("What        zero_byte before a start code (H.264 B.1)\n"), std::string::npos);
    EXPECT_NE(what("3").find("What        start code (H.264 B.1)\n"), std::string::npos);
    EXPECT_NE(what("6").find("What        zero padding\nZeros       6 to 8\n"), std::string::npos) << what("6");
    EXPECT_NE(what("16").find("What        emulation prevention byte"), std::string::npos) << what("16");
    EXPECT_NE(run_tool({"explain", stream, "900"}).out.find("What        slice data (H.264 7.3.4)\n"),
              std::string::npos);
}

TEST(Explain, UnitsOfTypesThatH264LeavesOpenHaveAPayload)
{
    for (const unsigned char type : bytes{0, 24, 31}) {
        const temporary_file file(stream_builder().annexb_unit(type, {0xAA, 0xBB}));
        const tool_result result = run_tool({"explain", "--format", "annexb", file.path(), "5"});
        EXPECT_NE(result.out.find("What        payload of a unit type without a syntax in H.264\n"), std::string::npos)
            << result.out;
        EXPECT_EQ(result.status, 0);
    }
}

TEST(Explain, LengthPrefixesAndGaps)
{
    const bytes prefixed = stream_builder().prefixed_unit(4, aud, {0x50}).prefixed_unit(4, aud, {0x50});
    const tool_result prefix = run_tool({"explain", "--format", "length4", "-", "7"}, {.piped = prefixed});
    EXPECT_NE(prefix.out.find("What        length prefix of 4 bytes\nUnit        1, "), std::string::npos)
        << prefix.out;

    const std::string recognised = ORV_TEST_STREAMS "/main_bpyramid_weighted.length4";
    const tool_result untold = run_tool({"explain", recognised, "0"});
    EXPECT_NE(untold.out.find("What        length prefix of 4 bytes\n"), std::string::npos) << untold.out;

    const bytes gap = stream_builder().junk(10).annexb_unit(aud, {0x50});
    const tool_result before = run_tool({"explain", "--format", "annexb", "-", "4"}, {.piped = gap});
    EXPECT_NE(before.out.find("What        gap: bytes before the first start code (10 bytes)\n"), std::string::npos);
    EXPECT_EQ(before.status, 1);
}

TEST(Explain, WhatIsWrongWithTheUnitIsTold)
{
    const temporary_file file(stream_builder().annexb_unit(support::idr_slice, {0xB8, 0x80, 0x55}));
    const tool_result result = run_tool({"explain", file.path(), "6"});
    EXPECT_NE(result.out.find("What        not read: pic_parameter_set_id 0 at bit 12: names a picture parameter set "
                              "which is missing\n"),
              std::string::npos)
        << result.out;
    EXPECT_EQ(result.status, 1);
}

TEST(Explain, APlaceBehindTheEndIsRefused)
{
    const tool_result result = run_tool({"explain", stream, "49009"});
    EXPECT_EQ(result.err, "orv-h264: " + stream + ": offset 49009 lies behind the end, at 49009\n");
    EXPECT_EQ(result.status, 2);
    for (const char* place : {"x", "-1", "1:8", "1:", ":1", "1:0:0", "0x", "99999999999999999999"})
        EXPECT_EQ(run_tool({"explain", stream, place}).status, 2) << place;
}

// Every bit that the table of elements has is explained as that element.
TEST(Explain, AgreesWithTheTableOfElements)
{
    std::istringstream rows(run_tool({"inspect", "--tsv", "--limit", "6", stream}).out);
    std::string row;
    std::getline(rows, row);
    int asked = 0;
    for (int i = 0; std::getline(rows, row); ++i) {
        std::istringstream columns(row);
        std::vector<std::string> cells;
        for (std::string cell; std::getline(columns, cell, '\t');)
            cells.push_back(cell);
        if (i % 7 != 0 || cells[6] == "b(8)")
            continue;
        const auto told = explained(stream, cells[2] + ":" + cells[3]);
        ASSERT_EQ(told["elements"].size(), 1U) << row;
        const auto& element = told["elements"][0];
        EXPECT_EQ(element["structure"], cells[7]);
        EXPECT_EQ(element["name"], cells[8]);
        EXPECT_EQ(element["value"], cells[9]);
        EXPECT_EQ(element["descriptor"], cells[6]);
        ++asked;
    }
    EXPECT_GT(asked, 15);
}

} // namespace
