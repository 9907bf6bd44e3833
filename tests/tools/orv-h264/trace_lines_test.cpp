#include "trace_lines.h"

#include "standard_output.h"

#include "support/told_elements.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using orv_h264::hex_start;
using orv_h264::shown_element;
using orv_h264::trace_lines;

shown_element shown(const told::traced_element& e, std::string_view words = "")
{
    return {e, 100 + e.bit / 8, words, false};
}

void open(trace_lines& lines, const char* name)
{
    lines.open(name, name);
}

/// The value as the line of an element has it.
std::string line_of(const told::traced_element& e)
{
    trace_lines lines(false);
    lines.element(shown(e));
    return lines.text;
}

std::string line_of_bytes(const std::vector<unsigned char>& all)
{
    trace_lines lines(false);
    lines.bytes(shown(told::b({"x", 1}, all[0])), {all.data(), all.size()});
    return lines.text;
}

TEST(TraceLines, TheOutermostStructureHasNoLine)
{
    trace_lines lines(false);
    open(lines, "seq_parameter_set_rbsp");
    lines.element(shown(told::u(8, "profile_idc", 77), "Main"));
    lines.element(shown(told::se({"offset", 1, 2}, -3)));
    EXPECT_EQ(lines.text, "    profile_idc 77 (Main)\n    offset[1][2] -3\n");
}

TEST(TraceLines, AStructureHasAHeadingOnceSomethingInItIsTold)
{
    trace_lines lines(false);
    open(lines, "rbsp");
    open(lines, "empty");
    lines.close();
    open(lines, "outer");
    open(lines, "inner");
    EXPECT_EQ(lines.text, "");
    lines.element(shown(told::u(1, "x", 1)));
    lines.element(shown(told::u(1, "y", 0)));
    lines.close();
    lines.element(shown(told::u(1, "z", 1)));
    EXPECT_EQ(lines.text, "    outer\n"
                          "        inner\n"
                          "            x 1\n"
                          "            y 0\n"
                          "        z 1\n");
}

TEST(TraceLines, AStructureThatComesAgainHasItsHeadingAgain)
{
    trace_lines lines(false);
    open(lines, "rbsp");
    for (int i = 0; i < 2; ++i) {
        open(lines, "inner");
        lines.element(shown(told::u(1, "x", i)));
        lines.close();
    }
    EXPECT_EQ(lines.text, "    inner\n        x 0\n    inner\n        x 1\n");
}

/// A message up to its payload's structure.
void open_message(trace_lines& lines, const char* heading, const char* payload)
{
    open(lines, "sei_message");
    lines.open("sei_payload", heading);
    open(lines, payload);
}

TEST(TraceLines, AMessageHasOneHeadingForItselfItsPayloadAndThePayloadsStructure)
{
    trace_lines lines(false);
    open(lines, "sei_rbsp");
    open_message(lines, "message 30", "scalable_nesting");
    lines.element(shown(told::u(1, "x", 1)));
    open_message(lines, "message 13", "full_frame_freeze");
    lines.element(shown(told::u(1, "y", 1)));
    EXPECT_EQ(lines.text, "    message 30\n"
                          "        x 1\n"
                          "        message 13\n"
                          "            y 1\n");
}

TEST(TraceLines, AMessageWithoutElementsHasItsHeading)
{
    trace_lines lines(false);
    open(lines, "sei_rbsp");
    open_message(lines, "message 14", "full_frame_freeze_release");
    EXPECT_EQ(lines.text, "    message 14\n");
}

TEST(TraceLines, WhatFollowsStandsWhereElementsWould)
{
    trace_lines lines(false);
    lines.follows({"x", "1", "outside"});
    open(lines, "rbsp");
    open(lines, "inner");
    lines.follows({"x", "1", ""});
    EXPECT_EQ(lines.text, "    = outside\n") << "without a text nothing is said";
    lines.follows({"x", "1", "inside"});
    EXPECT_EQ(lines.text, "    = outside\n    inner\n        = inside\n");
}

TEST(TraceLines, PlacesStandInColumnsBeforeElementsAndHeadingsLeaveThemEmpty)
{
    trace_lines lines(true);
    open(lines, "rbsp");
    open(lines, "inner");
    lines.element(shown(told::u(3, "x", 1, 8007)));
    const std::vector<unsigned char> run = {1, 2};
    told::traced_element first = told::b({"y", 0}, 1, 8016);
    first.bits = 16;
    lines.bytes(shown(first), {run.data(), run.size()});
    lines.follows({"x", "1", "so"});
    EXPECT_EQ(lines.text, "                       inner\n"
                          "       1100.7     3        x 1\n"
                          "       1102.0    16        y[0] to [1] 01 02\n"
                          "                           = so\n");
}

TEST(TraceLines, ARunHasItsFirstAndLastIndexAndOneByteIsANumber)
{
    EXPECT_EQ(line_of_bytes({200}), "    x[1] 200\n");
    EXPECT_EQ(line_of_bytes({200, 1}), "    x[1] to [2] c8 01\n");
}

TEST(TraceLines, BytesThatAreTextAreShownAsText)
{
    EXPECT_EQ(line_of_bytes({'a', ' ', '~'}), "    x[1] to [3] \"a ~\"\n");
    EXPECT_EQ(line_of_bytes({'a', 'b', 0}), "    x[1] to [3] \"ab\"\n") << "the zero that ends a string";
    EXPECT_EQ(line_of_bytes({'a', 0, 0}), "    x[1] to [3] 61 00 00\n");
    EXPECT_EQ(line_of_bytes({'a', '\n'}), "    x[1] to [2] 61 0a\n");
    EXPECT_EQ(line_of_bytes({'a', 0x7F}), "    x[1] to [2] 61 7f\n");
    EXPECT_EQ(line_of_bytes({0, 0}), "    x[1] to [2] 00 00\n");
}

TEST(TraceLines, OfLongRunsTheBeginIsShown)
{
    const std::string hex = "80 80 80 80 80 80 80 80 80 80 80 80 80 80 80 80";
    EXPECT_EQ(line_of_bytes(std::vector<unsigned char>(16, 0x80)), "    x[1] to [16] " + hex + "\n");
    EXPECT_EQ(line_of_bytes(std::vector<unsigned char>(17, 0x80)), "    x[1] to [17] " + hex + " ...\n");
    const std::string letters(1024, 'a');
    EXPECT_EQ(line_of_bytes(std::vector<unsigned char>(1024, 'a')), "    x[1] to [1024] \"" + letters + "\"\n");
    EXPECT_EQ(line_of_bytes(std::vector<unsigned char>(1025, 'a')), "    x[1] to [1025] \"" + letters + "\" ...\n");
}

TEST(TraceLines, HexStartIsAllOrTheFirst16)
{
    const std::vector<unsigned char> bytes(17, 1);
    EXPECT_EQ(hex_start({bytes.data(), 0}), "");
    EXPECT_EQ(hex_start({bytes.data(), 1}), "01");
    EXPECT_EQ(hex_start({bytes.data(), 17}), "01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 ...");
}

TEST(TraceLines, StringsAreTextOrElseHexDigits)
{
    EXPECT_EQ(line_of(told::st("x", "urn:x")), "    x \"urn:x\"\n");
    EXPECT_EQ(line_of(told::st("x", "")), "    x \"\"\n");
    EXPECT_EQ(line_of(told::st("x", "\xC3\xBC")), "    x c3 bc\n");
    EXPECT_EQ(line_of(told::st("x", "1")), "    x \"1\"\n");
}

TEST(TraceLines, AUuidIsWrittenAsUuidsAreAndOtherLargeNumbersInDecimal)
{
    const std::string_view bytes("\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\xFF", 16);
    EXPECT_EQ(line_of(told::of_bytes(told::coding::u, "uuid_iso_iec_11578", bytes)),
              "    uuid_iso_iec_11578 00010203-0405-0607-0809-0a0b0c0d0eff\n");
    EXPECT_EQ(line_of(told::of_bytes(told::coding::u, "x", {"\x01\x00\x00\x00\x00\x00\x00\x00\x00", 9})),
              "    x 18446744073709551616\n");
}

TEST(TraceLines, LongTextGoesOutOnTheWay)
{
    constexpr std::size_t enough = std::size_t{256} * 1024;
    trace_lines lines(false);
    lines.text.assign(enough - 1, ' ');
    testing::internal::CaptureStdout();
    lines.element(shown(told::u(1, "x", 1)));
    EXPECT_EQ(lines.text.size(), enough - 1 + std::string("    x 1\n").size());
    lines.element(shown(told::u(1, "y", 1)));
    EXPECT_EQ(lines.text, "    y 1\n");
    orv_h264::flush_output();
    EXPECT_EQ(testing::internal::GetCapturedStdout().size(), enough - 1 + std::string("    x 1\n").size());
}

} // namespace
