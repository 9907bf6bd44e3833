// orv-h264 avcc as a user runs it.
#include "support/run_tool.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using support::bytes;
using support::run_tool;
using support::stream_builder;
using support::temporary_file;
using support::tool_result;

// The parameter sets of tests/streams/main_bpyramid_weighted.264.
const bytes real_sps = {0x67, 0x4D, 0x40, 0x0B, 0xEC, 0xA1, 0x82, 0xB6, 0x02, 0x20, 0x00, 0x00,
                        0x03, 0x00, 0x20, 0x00, 0x00, 0x06, 0x51, 0xE2, 0x85, 0x32, 0xC0};
const bytes real_pps = {0x68, 0xE9, 0x38, 0x64, 0xB2};

/// The entry of a list.
bytes entry(const bytes& unit)
{
    return stream_builder().prefix(2, static_cast<std::uint32_t>(unit.size())).raw(unit);
}

bytes record(const bytes& extension = {})
{
    return stream_builder()
        .raw({1, 0x4D, 0x40, 0x0B, 0xFF, 0xE1})
        .raw(entry(real_sps))
        .raw({1})
        .raw(entry(real_pps))
        .raw(extension);
}

class Avcc : public testing::Test {
protected:
    tool_result avcc(const bytes& content, const std::vector<std::string>& more = {})
    {
        const temporary_file file(content);
        name = file.path();
        std::vector<std::string> arguments = {"avcc", name};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run_tool(arguments);
    }

    std::string message(const std::string& text) { return "orv-h264: " + name + ": offset " + text + "\n"; }

    std::string name; // of the last file
};

const std::string head = "configurationVersion 1\n"
                         "AVCProfileIndication 77\n"
                         "profile_compatibility 64\n"
                         "AVCLevelIndication 11\n"
                         "lengthSizeMinusOne 3\n"
                         "numOfSequenceParameterSets 1\n";

const std::string sps_line = "offset          6  framing 2  length       23  rbsp       21  nal_ref_idc 3  type  7  "
                             "SPS\n"
                             "    seq_parameter_set_data\n"
                             "        profile_idc 77 (Main)\n";

const std::string pps_line = "numOfPictureParameterSets 1\n"
                             "offset         32  framing 2  length        5  rbsp        4  nal_ref_idc 3  type  8  "
                             "PPS\n"
                             "    pic_parameter_set_id 0\n";

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_F(Avcc, ShowsTheMembersAndTheFieldsOfTheParameterSets)
{
    const tool_result result = avcc(record());
    EXPECT_EQ(0U, result.out.find(head + sps_line)) << result.out;
    EXPECT_TRUE(holds(result.out, "    = cropped size 192x160\n")) << result.out;
    EXPECT_TRUE(holds(result.out, pps_line)) << result.out;
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST_F(Avcc, AnExtensionIsShownMemberByMember)
{
    bytes high = record({0xFD, 0xF9, 0xFA, 0});
    high[1] = 100;
    const tool_result result = avcc(high);
    EXPECT_TRUE(holds(result.out, "\nchroma_format 1\nbit_depth_luma_minus8 1\nbit_depth_chroma_minus8 2\n"
                                  "numOfSequenceParameterSetExt 0\n"))
        << result.out;
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST_F(Avcc, BytesBehindTheRecordAreShown)
{
    EXPECT_TRUE(holds(avcc(record({0xFD, 0xF8, 0xF8, 0})).out, "\nbehind the record: fd f8 f8 00\n"));
    EXPECT_TRUE(holds(avcc(record(bytes(17, 0xAB))).out, " ab ab ...\n"));
}

TEST_F(Avcc, TablesHaveALineForEachFact)
{
    const tool_result result = avcc(record(), {"--csv"});
    EXPECT_EQ(0U, result.out.find("path,value\nschema,orv-h264/avcc\n")) << result.out;
    EXPECT_TRUE(holds(result.out, "\nsps[0].fields.seq_parameter_set_data.profile_idc,77\n")) << result.out;
}

TEST_F(Avcc, AWholeBoxDoesAsWell)
{
    const bytes box = stream_builder().prefix(4, 8 + 39).raw({'a', 'v', 'c', 'C'}).raw(record());
    const tool_result result = avcc(box);
    EXPECT_EQ(0U, result.out.find(head)) << result.out;
    EXPECT_TRUE(holds(result.out, "offset         14  framing 2  length       23")) << "offsets are those of the file";
    EXPECT_EQ(0, result.status);
}

TEST_F(Avcc, ThroughAPipe)
{
    const tool_result result = run_tool({"avcc", "-"}, {.piped = record()});
    EXPECT_EQ(0U, result.out.find(head + sps_line)) << result.out;
    EXPECT_EQ(0, result.status);
}

TEST_F(Avcc, JsonHoldsTheSameAsAnObject)
{
    const tool_result result = avcc(record({0xFD}), {"--json"});
    const auto json = nlohmann::json::parse(result.out);
    EXPECT_EQ("orv-h264/avcc", json["schema"]);
    EXPECT_EQ(name, json["file"]);
    EXPECT_EQ(1, json["configurationVersion"]);
    EXPECT_EQ(77, json["AVCProfileIndication"]);
    EXPECT_EQ(64, json["profile_compatibility"]);
    EXPECT_EQ(11, json["AVCLevelIndication"]);
    EXPECT_EQ(3, json["lengthSizeMinusOne"]);
    EXPECT_EQ(1, json["numOfSequenceParameterSets"]);
    EXPECT_EQ(1, json["numOfPictureParameterSets"]);
    EXPECT_EQ(1U, json["sps"].size());
    EXPECT_EQ(6, json["sps"][0]["offset"]);
    EXPECT_EQ(77, json["sps"][0]["fields"]["seq_parameter_set_data"]["profile_idc"]);
    EXPECT_EQ(32, json["pps"][0]["offset"]);
    EXPECT_EQ(0, json["pps"][0]["fields"]["pic_parameter_set_id"]);
    EXPECT_EQ("fd", json["behind"]);
    EXPECT_TRUE(json["problems"].empty());
}

TEST_F(Avcc, ARecordCutAnywhereTellsWhereAndShowsWhatItHolds)
{
    const bytes whole = record();
    const std::vector<std::pair<std::size_t, std::string>> cuts = {
        {0, "0: configurationVersion: the record ends"},
        {5, "5: numOfSequenceParameterSets: the record ends"},
        {6, "6: sequenceParameterSetLength[0]: the record ends"},
        {7, "6: sequenceParameterSetLength[0]: the record ends"},
        {8, "8: sequenceParameterSetNALUnit[0]: the record ends"},
        {30, "8: sequenceParameterSetNALUnit[0]: the record ends"},
        {31, "31: numOfPictureParameterSets: the record ends"},
        {32, "32: pictureParameterSetLength[0]: the record ends"},
        {33, "32: pictureParameterSetLength[0]: the record ends"},
        {38, "34: pictureParameterSetNALUnit[0]: the record ends"},
    };
    for (const auto& [size, problem] : cuts) {
        const tool_result result = avcc(bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_TRUE(holds(result.err, message(problem))) << size << ": " << result.err;
        EXPECT_EQ(1, result.status) << size;
        EXPECT_EQ(size >= 6, holds(result.out, head)) << size;
        EXPECT_EQ(size >= 12, holds(result.out, "        profile_idc 77 (Main)\n")) << size;
        EXPECT_EQ(size >= 32, holds(result.out, "numOfPictureParameterSets 1\n")) << size;
    }
}

TEST_F(Avcc, WhatIsWrongInsideIsToldWithItsOffset)
{
    bytes other_version = record();
    other_version[0] = 2;
    const tool_result result = avcc(other_version);
    EXPECT_EQ(message("0: configurationVersion is 2, not 1"), result.err);
    EXPECT_EQ(1, result.status);

    const bytes empty = stream_builder().raw({1, 0x4D, 0x40, 0x0B, 0xFF, 0xE1, 0, 0, 0, 0xFD});
    EXPECT_EQ(1, avcc(empty).status);
    EXPECT_TRUE(holds(avcc(empty).err, "offset 8: sequenceParameterSetNALUnit[0] is no NAL unit\n"));

    const bytes swapped =
        stream_builder().raw({1, 0x4D, 0x40, 0x0B, 0xFF, 0xE1}).raw(entry(real_pps)).raw({1}).raw(entry(real_sps));
    EXPECT_TRUE(holds(avcc(swapped).err, "offset 8: sequenceParameterSetNALUnit[0] is a unit of type 8\n"));
    EXPECT_TRUE(holds(avcc(swapped).err, "offset 16: pictureParameterSetNALUnit[0] is a unit of type 7\n"));

    bytes damaged = record();
    damaged[6 + 2 + 22] = 0; // the last byte of the SPS
    EXPECT_EQ(1, avcc(damaged).status);
    EXPECT_TRUE(holds(avcc(damaged).err, "offset 8: ")) << avcc(damaged).err;
}

TEST_F(Avcc, ManyParameterSetsAreAllShown)
{
    stream_builder many;
    many.raw({1, 0x4D, 0x40, 0x0B, 0xFF, 0xFF});
    for (int i = 0; i < 31; ++i)
        many.raw(entry(real_sps));
    many.raw({255});
    for (int i = 0; i < 255; ++i)
        many.raw(entry(real_pps));
    const auto json = nlohmann::json::parse(avcc(many, {"--json"}).out);
    EXPECT_EQ(31U, json["sps"].size());
    EXPECT_EQ(255U, json["pps"].size());
}

TEST_F(Avcc, AnInputLargerThanAnyRecordIsRefused)
{
    const tool_result result = run_tool({"avcc", "-"}, {.piped = bytes(std::size_t{1} << 20, 1), .repeat = 41});
    EXPECT_EQ("", result.out);
    EXPECT_EQ("orv-h264: standard input: too large for a decoder configuration record\n", result.err);
    EXPECT_EQ(2, result.status);
}
