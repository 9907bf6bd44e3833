// orv-h264 convert as a user runs it: the bytes, the messages, the exit status, and what lies in the folder afterwards.
#include "support/feed.h"
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using support::bytes;
using support::feed;
using support::idr_slice;
using support::pps;
using support::read_file;
using support::run_tool;
using support::sps;
using support::stream_builder;
using support::tool_result;

const bytes plain = {0x42, 0x80};
const bytes escaped = {0x42, 0, 0, 3, 1, 0x80}; // 42 00 00 01 80

class Convert : public testing::Test {
protected:
    tool_result convert(const std::string& in, const std::string& to, const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments = {"convert", in, out, "--to", to};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run_tool(arguments);
    }

    /// The stream in another framing; it has to be fine.
    bytes converted(const bytes& stream, const std::string& to, const std::vector<std::string>& more = {})
    {
        const tool_result result = convert(folder.write("in", stream), to, more);
        EXPECT_EQ("", result.err);
        EXPECT_EQ("", result.out);
        EXPECT_EQ(0, result.status);
        return read_file(out);
    }

    std::string message(const std::string& text) { return "orv-h264: " + folder.path("in") + ": " + text + "\n"; }

    /// Nothing was written, and nothing else is left behind.
    void expect_no_output()
    {
        EXPECT_FALSE(std::filesystem::exists(out));
        EXPECT_EQ(1, folder.files()) << "the input alone";
    }

    support::temporary_folder folder;
    std::string out = folder.path("out");
};

class ConvertStream : public Convert, public testing::WithParamInterface<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, ConvertStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

/// The units of a stream, framing aside: header bytes and RBSPs.
std::vector<bytes> payloads(const bytes& stream, brenik::h2645_common_nalfmt framing)
{
    std::vector<bytes> units;
    for (const support::fed& item : feed(stream, framing)) {
        if (!item.is_unit)
            continue;
        units.push_back({static_cast<unsigned char>(item.header)});
        units.back().insert(units.back().end(), item.rbsp.begin(), item.rbsp.end());
    }
    return units;
}

} // namespace

TEST_P(ConvertStream, KeepsUnitsAndPayloadsOnTheWayToLengthsAndBack)
{
    const std::vector<bytes> wanted = payloads(read_file(GetParam()), brenik::nalfmt_annexb);
    const bool has_forbidden_bit = GetParam().filename() == "broken_forbidden_bit.264";
    for (const unsigned int size : {2U, 3U, 4U}) {
        const std::string framing = "length" + std::to_string(size);
        const tool_result there = convert(GetParam().string(), framing);
        if (has_forbidden_bit) {
            EXPECT_EQ(1, there.status);
            continue;
        }
        if (there.status == 2) { // some stream has a unit that two bytes cannot tell the length of
            EXPECT_EQ(2U, size);
            EXPECT_NE(std::string::npos, there.err.find("does not fit behind a length of 2 bytes")) << there.err;
            continue;
        }
        const bytes prefixed = read_file(out);
        EXPECT_EQ(wanted, payloads(prefixed, static_cast<brenik::h2645_common_nalfmt>(size))) << framing;
        EXPECT_EQ(wanted, payloads(converted(prefixed, "annexb", {"--format", framing}), brenik::nalfmt_annexb));
    }
}

TEST_F(Convert, EveryFramingIsWrittenByteForByte)
{
    const bytes stream = stream_builder().zeros(1).annexb_unit(sps, escaped).annexb_unit(pps, plain);
    const bytes sps_unit = stream_builder().unit(sps, escaped);
    for (const unsigned int size : {1U, 2U, 3U, 4U})
        EXPECT_EQ(stream_builder().prefixed_unit(size, sps, escaped).prefixed_unit(size, pps, plain).made(),
                  converted(stream, "length" + std::to_string(size)));
    EXPECT_EQ(stream, converted(stream, "annexb")) << "start codes keep their sizes";
    const bytes prefixed = stream_builder().prefixed_unit(2, sps, escaped).prefixed_unit(2, pps, plain);
    EXPECT_EQ(stream_builder().zeros(1).annexb_unit(sps, escaped).zeros(1).annexb_unit(pps, plain).made(),
              converted(prefixed, "annexb", {"--format", "length2"}))
        << "new start codes are the long ones";
}

TEST_F(Convert, EmulationPreventionBytesAreWrittenAnew)
{
    const bytes needless = {0x42, 0, 0, 3, 5, 0x80}; // a byte 5 needs none
    EXPECT_EQ(stream_builder().prefixed_unit(4, sps, {0x42, 0, 0, 5, 0x80}).made(),
              converted(stream_builder().annexb_unit(sps, needless), "length4"));
}

// H.264 7.4.1: no NAL unit ends in 00, in whatever framing.
TEST_F(Convert, ZeroWordsAtTheEndAreFollowedBy03InEveryFraming)
{
    const bytes zero_words = {0x80, 0, 0, 3, 0, 0, 3};
    const bytes stream = stream_builder().annexb_unit(idr_slice, zero_words).annexb_unit(pps, plain);
    for (const unsigned int size : {1U, 4U}) {
        const bytes prefixed =
            stream_builder().prefixed_unit(size, idr_slice, zero_words).prefixed_unit(size, pps, plain);
        const std::string framing = "length" + std::to_string(size);
        EXPECT_EQ(prefixed, converted(stream, framing));
        EXPECT_EQ(prefixed, converted(prefixed, framing, {"--format", framing}));
    }
    EXPECT_EQ(stream, converted(stream, "annexb"));
}

TEST_F(Convert, The03BehindZeroWordsCountsInThePrefix)
{
    bytes slice(0x1FF - 1 - 3, 0x55);
    slice.insert(slice.end(), {0, 0, 3}); // header, payload and 03 are 511 bytes: the low byte of the length is FF
    const bytes stream = stream_builder().annexb_unit(idr_slice, slice);
    EXPECT_EQ(stream_builder().prefixed_unit(2, idr_slice, slice).made(), converted(stream, "length2"));
    bytes longer = slice;
    longer.insert(longer.begin(), 0x55); // 512: the byte before it changes with it
    EXPECT_EQ(stream_builder().prefixed_unit(2, idr_slice, longer).made(),
              converted(stream_builder().annexb_unit(idr_slice, longer), "length2"));
    bytes too_long(252, 0x55);
    too_long.insert(too_long.end(), {0, 0, 3}); // 255 without the 03
    EXPECT_EQ(2, convert(folder.write("in", stream_builder().annexb_unit(idr_slice, too_long)), "length1").status);
}

TEST_F(Convert, AZeroByteAtTheEndThatStartCodesCannotCarryIsTold)
{
    const std::string in = folder.write("in", stream_builder().prefixed_unit(4, sps, {0x80, 0}));
    const tool_result result = convert(in, "annexb", {"--format", "length4"});
    EXPECT_EQ(message("offset 0: unit ends in 00, which start codes cannot carry: left out"), result.err);
    EXPECT_EQ(1, result.status);
}

TEST_F(Convert, AUnitTooLongForItsPrefixStopsWithItsOffset)
{
    const bytes fits(254, 0x55);
    EXPECT_EQ(256U, converted(stream_builder().annexb_unit(sps, fits), "length1").size());
    std::filesystem::remove(out);
    const bytes too_long(255, 0x55);
    folder.write("in", stream_builder().annexb_unit(pps, plain).annexb_unit(sps, too_long).annexb_unit(pps, plain));
    const tool_result result = convert(folder.path("in"), "length1");
    EXPECT_EQ(message("offset 6: unit of 256 bytes does not fit behind a length of 1 byte; conversion stopped"),
              result.err);
    EXPECT_EQ(2, result.status);
    expect_no_output();
}

TEST_F(Convert, AForbiddenBitStopsWithItsOffset)
{
    folder.write(
        "in", stream_builder().annexb_unit(pps, plain).annexb_unit(support::forbidden, plain).annexb_unit(sps, plain));
    const tool_result result = convert(folder.path("in"), "length4");
    EXPECT_EQ(message("offset 6: unit whose header has the forbidden bit set (6 bytes); conversion stopped"),
              result.err);
    EXPECT_EQ(1, result.status);
    expect_no_output();
}

TEST_F(Convert, AUnitAboveTheLimitStopsWithItsOffset)
{
    folder.write("in", stream_builder().annexb_unit(pps, plain).annexb_unit(sps, bytes(1024, 0x55)));
    const tool_result result = convert(folder.path("in"), "length4", {"--max-unit", "1K"});
    EXPECT_EQ(message("offset 6: unit of type 7 longer than the limit of 1024 bytes (1028 bytes); conversion stopped"),
              result.err);
    EXPECT_EQ(1, result.status);
    expect_no_output();
}

TEST_F(Convert, WhatBelongsToNoUnitIsToldAndLeftOut)
{
    folder.write("in", stream_builder().junk(5).annexb_unit(sps, plain).raw({0, 0, 2}).junk(2).annexb_unit(pps, plain));
    const tool_result result = convert(folder.path("in"), "length4");
    EXPECT_EQ(message("offset 0: bytes before the first start code (5 bytes)") +
                  message("offset 11: bytes behind a place where the unit's decoding stops (5 bytes)"),
              result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(stream_builder().prefixed_unit(4, sps, plain).prefixed_unit(4, pps, plain).made(), read_file(out));
    EXPECT_EQ(2, folder.files());
}

TEST_F(Convert, TheRestOfACutUnitIsCarriedAndTold)
{
    folder.write("in", stream_builder().prefixed_unit(4, pps, plain).prefix(4, 100).unit(sps, plain));
    const tool_result result = convert(folder.path("in"), "annexb", {"--format", "length4"});
    EXPECT_EQ(message("offset 7: unit of 100 bytes runs past the end of the input"), result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(stream_builder().zeros(1).annexb_unit(pps, plain).zeros(1).annexb_unit(sps, plain).made(),
              read_file(out));
}

TEST_F(Convert, AnOutputThatWasThereIsReplacedWhenAllIsWellAndKeptOtherwise)
{
    folder.write("out", {1, 2, 3});
    chmod(out.c_str(), 0640);
    folder.write("in", stream_builder().annexb_unit(sps, bytes(255, 0x55)));
    EXPECT_EQ(2, convert(folder.path("in"), "length1").status);
    EXPECT_EQ(bytes({1, 2, 3}), read_file(out));
    EXPECT_EQ(2, folder.files());
    EXPECT_EQ(0, convert(folder.path("in"), "length2").status);
    EXPECT_EQ(258U, read_file(out).size());
    struct stat status = {};
    ASSERT_EQ(0, stat(out.c_str(), &status));
    EXPECT_EQ(0640U, status.st_mode & 07777U) << "the permissions stay";
    EXPECT_EQ(2, folder.files());
}

TEST_F(Convert, ANewOutputHasThePermissionsOfANewFile)
{
    const mode_t mask = umask(0027);
    converted(stream_builder().annexb_unit(sps, plain), "length4");
    umask(mask);
    struct stat status = {};
    ASSERT_EQ(0, stat(out.c_str(), &status));
    EXPECT_EQ(0640U, status.st_mode & 07777U);
}

TEST_F(Convert, TheInputMayBeTheOutput)
{
    const bytes stream = stream_builder().annexb_unit(sps, escaped).annexb_unit(pps, plain);
    folder.write("out", stream);
    EXPECT_EQ(0, convert(out, "length4").status);
    EXPECT_EQ(stream_builder().prefixed_unit(4, sps, escaped).prefixed_unit(4, pps, plain).made(), read_file(out));
}

TEST_F(Convert, ALinkStaysALink)
{
    folder.write("target", {1});
    std::filesystem::create_symlink(folder.path("target"), out);
    converted(stream_builder().annexb_unit(sps, plain), "length4");
    EXPECT_TRUE(std::filesystem::is_symlink(out));
    EXPECT_EQ(stream_builder().prefixed_unit(4, sps, plain).made(), read_file(folder.path("target")));
}

TEST_F(Convert, PipesInAndOut)
{
    const bytes stream = stream_builder().annexb_unit(sps, escaped).annexb_unit(pps, plain);
    const tool_result result = run_tool({"convert", "-", "-", "--to", "length1"}, {.piped = stream});
    const bytes wanted = stream_builder().prefixed_unit(1, sps, escaped).prefixed_unit(1, pps, plain);
    EXPECT_EQ(std::string(wanted.begin(), wanted.end()), result.out);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
    EXPECT_EQ(0, run_tool({"convert", "-", "/dev/null", "--to", "length1"}, {.piped = stream}).status);
}

TEST_F(Convert, AnOutputThatCannotBeWrittenIsAnErrorWithItsName)
{
    folder.write("in", stream_builder().annexb_unit(sps, plain));
    for (const char* place : {"no/such/folder", ""}) {
        out = folder.path(place);
        const tool_result result = convert(folder.path("in"), "length4");
        EXPECT_EQ(2, result.status);
        EXPECT_EQ(0U, result.err.find("orv-h264: " + out + ": ")) << result.err;
    }
    EXPECT_EQ(1, folder.files());
}

TEST_F(Convert, AFullDiskLeavesNothingBehind)
{
    const std::string in = folder.write("in", stream_builder().annexb_unit(sps, bytes(8192, 0x55)));
    const tool_result result = run_tool({"convert", in, out, "--to", "length4"}, {.max_file = 4096});
    EXPECT_EQ("orv-h264: " + out + ": File too large\n", result.err);
    EXPECT_EQ(2, result.status);
    expect_no_output();
}

TEST_F(Convert, AMissingInputLeavesTheOutputAlone)
{
    folder.write("out", {1, 2, 3});
    EXPECT_EQ(2, convert(folder.path("in"), "length4").status);
    EXPECT_EQ(bytes({1, 2, 3}), read_file(out));
    EXPECT_EQ(1, folder.files());
}

TEST_F(Convert, TheFramingToWriteHasToBeNamed)
{
    const tool_result result = run_tool({"convert", "in", "out"});
    EXPECT_EQ(2, result.status);
    EXPECT_NE(std::string::npos, result.err.find("--to is required")) << result.err;
    EXPECT_EQ(2, run_tool({"convert", "in", "out", "--to", "length5"}).status);
}

#if !defined(ORV_TEST_SANITIZED)
TEST_F(Convert, LongInputIsConvertedInBoundedMemory)
{
    constexpr std::size_t block = 1 << 20;
    const bytes unit = stream_builder().annexb_unit(sps, bytes(block - 4, 0x55));
    const tool_result result = run_tool({"convert", "-", "/dev/null", "--to", "length4"},
                                        {.piped = unit, .repeat = 512, .max_memory = std::size_t{64} << 20});
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}
#endif
