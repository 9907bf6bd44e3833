// orv-h264 inspect --tsv as a user runs it: a line for each syntax element, and where it lies in the file.
#include "support/run_tool.h"
#include "support/stream_builder.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace {

using support::aud;
using support::bytes;
using support::run_tool;
using support::stream_builder;
using support::temporary_file;
using support::tool_result;

const std::string head =
    "unit\tnal_unit_type\tbyte\tbit_in_byte\tbit\tbits\tdescriptor\tstructure\tname\tvalue\tinside\n";
constexpr unsigned char filler = support::header_byte(0, 12);
constexpr unsigned char end_of_sequence = support::header_byte(0, 10);

struct row {
    std::vector<std::string> columns;

    std::uint64_t number(std::size_t column) const { return std::stoull(columns[column]); }
    const std::string& name() const { return columns[8]; }
};

/// The lines behind the first.
std::vector<row> rows_of(const std::string& text)
{
    std::vector<row> rows;
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line + "\n", head);
    while (std::getline(lines, line)) {
        row r;
        std::istringstream columns(line);
        for (std::string column; std::getline(columns, column, '\t');)
            r.columns.push_back(column);
        EXPECT_EQ(r.columns.size(), 11U) << line;
        rows.push_back(r);
    }
    return rows;
}

std::vector<std::string> units_of(const std::vector<row>& rows)
{
    std::vector<std::string> units;
    for (const row& r : rows) {
        const std::string unit = r.columns[0] + ":" + r.columns[1];
        if (units.empty() || units.back() != unit)
            units.push_back(unit);
    }
    return units;
}

TEST(Elements, OfASmallStreamLineByLine)
{
    const temporary_file file(stream_builder()
                                  .zeros(1)
                                  .annexb_unit(aud, {0x50})
                                  .annexb_unit(filler, {0xFF, 0x80})
                                  .annexb_unit(end_of_sequence, {}));
    const tool_result result = run_tool({"inspect", "--tsv", file.path()});
    std::string expected = head + "0\t9\t4\t0\t0\t1\tf(1)\tnal_unit\tforbidden_zero_bit\t0\t1\n"
                                  "0\t9\t4\t1\t1\t2\tu(2)\tnal_unit\tnal_ref_idc\t0\t1\n"
                                  "0\t9\t4\t3\t3\t5\tu(5)\tnal_unit\tnal_unit_type\t9\t1\n"
                                  "0\t9\t5\t0\t8\t3\tu(3)\taccess_unit_delimiter_rbsp\tprimary_pic_type\t2\t1\n";
    const std::string trailing = "_rbsp.rbsp_trailing_bits\trbsp_";
    expected += "0\t9\t5\t3\t11\t1\tf(1)\taccess_unit_delimiter" + trailing + "stop_one_bit\t1\t1\n";
    for (int bit = 4; bit < 8; ++bit)
        expected += "0\t9\t5\t" + std::to_string(bit) + "\t" + std::to_string(8 + bit) +
                    "\t1\tf(1)\taccess_unit_delimiter" + trailing + "alignment_zero_bit\t0\t1\n";
    expected += "1\t12\t9\t0\t0\t1\tf(1)\tnal_unit\tforbidden_zero_bit\t0\t1\n"
                "1\t12\t9\t1\t1\t2\tu(2)\tnal_unit\tnal_ref_idc\t0\t1\n"
                "1\t12\t9\t3\t3\t5\tu(5)\tnal_unit\tnal_unit_type\t12\t1\n"
                "1\t12\t10\t0\t8\t8\tf(8)\tfiller_data_rbsp\tff_byte\t255\t1\n"
                "1\t12\t11\t0\t16\t1\tf(1)\tfiller_data" +
                trailing + "stop_one_bit\t1\t1\n";
    for (int bit = 1; bit < 8; ++bit)
        expected += "1\t12\t11\t" + std::to_string(bit) + "\t" + std::to_string(16 + bit) + "\t1\tf(1)\tfiller_data" +
                    trailing + "alignment_zero_bit\t0\t1\n";
    expected += "2\t10\t15\t0\t0\t1\tf(1)\tnal_unit\tforbidden_zero_bit\t0\t1\n"
                "2\t10\t15\t1\t1\t2\tu(2)\tnal_unit\tnal_ref_idc\t0\t1\n"
                "2\t10\t15\t3\t3\t5\tu(5)\tnal_unit\tnal_unit_type\t10\t1\n";
    EXPECT_EQ(result.out, expected);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Elements, UnitNumbersCountEveryUnit)
{
    const bytes stream = stream_builder()
                             .annexb_unit(0x00 | 24, {1})
                             .annexb_unit(0x20, {1}) // type 0
                             .annexb_unit(0x80 | aud, {0x30})
                             .annexb_unit(31, {1})
                             .annexb_unit(aud, {0x30});
    const tool_result result = run_tool({"inspect", "--tsv", "--format", "annexb", "-"}, {.piped = stream});
    EXPECT_EQ(units_of(rows_of(result.out)), (std::vector<std::string>{"0:24", "1:0", "2:9", "3:31", "4:9"}));
    EXPECT_EQ(result.err, "orv-h264: standard input: offset 10: unit whose header has the forbidden bit set\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Elements, OnlyAndLimitChooseUnitsAndTheNumbersStay)
{
    const std::string path = ORV_TEST_STREAMS "/hrd_vbr_aud.264";
    EXPECT_EQ(units_of(rows_of(run_tool({"inspect", "--tsv", "--only", "7-8", path}).out)).front(), "1:7");
    const auto two = units_of(rows_of(run_tool({"inspect", "--tsv", "--only", "9", "--limit", "2", path}).out));
    ASSERT_EQ(two.size(), 2U);
    EXPECT_EQ(two[0], "0:9");
    EXPECT_GT(std::stoi(two[1]), 1);
    const tool_result none = run_tool({"inspect", "--tsv", "--limit", "0", path});
    EXPECT_EQ(none.out, head);
    EXPECT_EQ(none.err, "");
    EXPECT_EQ(none.status, 0);
}

TEST(Elements, AnotherFormBesideItIsAUsageError)
{
    for (const char* other : {"--json", "--nals"}) {
        const tool_result result = run_tool({"inspect", "--tsv", other, ORV_TEST_STREAMS "/pulldown32.264"});
        EXPECT_EQ(result.status, 2) << other;
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(std::string(other)), std::string::npos) << result.err;
    }
}

TEST(Elements, AFailureIsToldWithElementBitAndReason)
{
    const temporary_file missing(stream_builder().annexb_unit(support::idr_slice, {0xB8, 0x80}));
    const tool_result slice = run_tool({"inspect", "--tsv", missing.path()});
    EXPECT_EQ(slice.err, "orv-h264: " + missing.path() +
                             ": offset 0: pic_parameter_set_id 0 at bit 12: names a picture parameter set which is "
                             "missing\n");
    EXPECT_EQ(slice.status, 1);
    EXPECT_EQ(rows_of(slice.out).back().name(), "pic_parameter_set_id");

    // profile_idc 77, level_idc 30, id 0, log2_max_frame_num_minus4 0, type 1, a flag, two offsets, 300
    const temporary_file cycle(stream_builder().annexb_unit(support::sps, {77, 0, 30, 0xD7, 0x00, 0x96, 0xFF}));
    const tool_result sps = run_tool({"inspect", "--tsv", cycle.path()});
    EXPECT_EQ(sps.err, "orv-h264: " + cycle.path() +
                           ": offset 0: num_ref_frames_in_pic_order_cnt_cycle 300 at bit 40: more than 255\n");
    EXPECT_EQ(sps.status, 1);
    EXPECT_EQ(rows_of(sps.out).back().columns[10], "0");
}

TEST(Elements, AFindingIsToldAndIsNoFailure)
{
    const bytes stream = stream_builder().annexb_unit(support::header_byte(0, 13), {0x9A, 0, 0, 0x10});
    const tool_result result = run_tool({"inspect", "--tsv", "--format", "annexb", "-"}, {.piped = stream});
    EXPECT_EQ(result.err, "orv-h264: standard input: offset 0: aux_format_idc 5 at bit 9: outside of 0 to 3\n");
    EXPECT_EQ(result.status, 0);
}

TEST(Elements, CsvHasCommasInstead)
{
    const std::string path = ORV_TEST_STREAMS "/high_cqmfile.264";
    std::string rows = run_tool({"inspect", "--tsv", path}).out;
    std::replace(rows.begin(), rows.end(), '\t', ',');
    EXPECT_EQ(run_tool({"inspect", "--csv", path}).out, rows);
}

TEST(Elements, WhatIsWrongBehindTheLastElementIsTold)
{
    const temporary_file file(stream_builder().annexb_unit(aud, {0x30, 0x55}));
    const tool_result result = run_tool({"inspect", "--tsv", file.path()});
    EXPECT_EQ(result.err, "orv-h264: " + file.path() + ": offset 0: bytes behind the trailing bits\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Elements, AnEmptyInputHasTheHeadLineAndNoUnit)
{
    const tool_result result = run_tool({"inspect", "--tsv", "-"}, {.piped = bytes()});
    EXPECT_EQ(result.out, head);
    EXPECT_EQ(result.err, "orv-h264: standard input: offset 0: no NAL unit found: the input is empty\n");
    EXPECT_EQ(result.status, 1);
}

/// Without the columns that the framing changes.
std::string without_places(const std::string& text)
{
    constexpr std::size_t kept[] = {0, 1, 4, 5, 6, 7, 8, 9, 10};
    std::string left;
    for (const row& r : rows_of(text)) {
        for (const std::size_t column : kept)
            left += r.columns[column] + ' ';
        left += '\n';
    }
    return left;
}

TEST(Elements, LengthPrefixesGiveTheSameElements)
{
    const std::string name = ORV_TEST_STREAMS "/main_bpyramid_weighted";
    const tool_result annexb = run_tool({"inspect", "--tsv", name + ".264"});
    const tool_result length4 = run_tool({"inspect", "--tsv", "--format", "length4", name + ".length4"});
    EXPECT_EQ(without_places(length4.out), without_places(annexb.out));
    EXPECT_EQ(length4.status, 0);
}

/// The bits of the file from a place on, emulation-prevention bytes passed over.
std::uint64_t bits_at(const bytes& file, std::uint64_t byte, unsigned bit, std::uint64_t count)
{
    std::uint64_t value = 0;
    for (; count > 0; --count) {
        value = value << 1 | (file.at(byte) >> (7 - bit) & 1U);
        if (++bit < 8)
            continue;
        bit = 0;
        ++byte;
        if (byte >= 2 && byte < file.size() && file[byte] == 3 && file[byte - 1] == 0 && file[byte - 2] == 0)
            ++byte;
    }
    return value;
}

class ElementsOf : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, ElementsOf, testing::ValuesIn(support::annexb_files(ORV_TEST_STREAMS)),
                         [](const auto& stream) { return support::test_name(stream.param); });

TEST_P(ElementsOf, TheBitsAtTheirPlacesInTheFileAreTheValues)
{
    const bytes file = support::read_file(GetParam());
    const tool_result result = run_tool({"inspect", "--tsv", GetParam().string()});
    std::size_t checked = 0;
    for (const row& r : rows_of(result.out)) {
        const std::string& how = r.columns[6];
        const std::uint64_t count = r.number(5);
        if ((how[0] != 'u' || how == "ue(v)") && how[0] != 'f' && how[0] != 'b')
            continue;
        if (count > 63)
            continue;
        ASSERT_EQ(bits_at(file, r.number(2), static_cast<unsigned>(r.number(3)), count), r.number(9)) << r.name();
        ++checked;
    }
    EXPECT_GT(checked, 50U);
}

} // namespace
