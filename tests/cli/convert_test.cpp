// orv-h264 convert as a user runs it: the bytes, the messages, the exit status, and what lies in the folder afterwards.
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

namespace h264 = orv_utils_v4::h264;
using support::bytes;
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

/// Units, byte for byte.
struct unit_list final : h264::split_sink {
    void unit(const h264::split_unit& u) override { units.emplace_back(u.bytes, u.bytes + u.size); }
    void gap(const h264::split_gap& g) override
    {
        static_cast<void>(g);
        ++gaps;
    }

    std::vector<bytes> units;
    int gaps = 0;
};

unit_list split(const bytes& stream, h264::framing framing)
{
    unit_list list;
    h264::unit_splitter splitter(framing);
    splitter.push(stream.data(), stream.size(), list);
    splitter.flush(list);
    return list;
}

} // namespace

TEST_P(ConvertStream, KeepsUnitsByteForByteOnTheWayToLengthsAndBack)
{
    const std::vector<bytes> wanted = split(read_file(GetParam()), h264::framing::annex_b).units;
    for (const unsigned int size : {2U, 3U, 4U}) {
        const auto framing = static_cast<h264::framing>(size);
        const std::string name = "length" + std::to_string(size);
        const tool_result there = convert(GetParam().string(), name);
        if (there.status == 2) { // some stream has a unit that two bytes cannot tell the length of
            EXPECT_EQ(2U, size);
            EXPECT_NE(std::string::npos, there.err.find("does not fit behind a length of 2 bytes")) << there.err;
            continue;
        }
        EXPECT_EQ(support::is_broken(GetParam()) ? 1 : 0, there.status) << there.err;
        const bytes prefixed = read_file(out);
        EXPECT_EQ(wanted, split(prefixed, framing).units) << name;
        convert(folder.write("in", prefixed), "annexb", {"--format", name});
        EXPECT_EQ(wanted, split(read_file(out), h264::framing::annex_b).units) << name;
    }
}

TEST_P(ConvertStream, StaysAsItIsInAnnexB)
{
    const bytes stream = read_file(GetParam());
    const tool_result result = convert(GetParam().string(), "annexb");
    if (split(stream, h264::framing::annex_b).gaps == 0)
        EXPECT_TRUE(stream == read_file(out)) << result.err;
    else
        EXPECT_EQ(1, result.status) << result.err;
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

TEST_F(Convert, UnitsKeepBytesThatNobodyNeeds)
{
    const bytes needless = {0x42, 0, 0, 3, 5, 0x80}; // a byte 5 needs no emulation prevention
    const bytes zero_words = {0x80, 0, 0, 3, 0, 0, 3};
    const bytes annexb =
        stream_builder().zeros(1).annexb_unit(sps, needless).zeros(1).annexb_unit(idr_slice, zero_words);
    for (const unsigned int size : {1U, 2U, 3U, 4U}) {
        const std::string framing = "length" + std::to_string(size);
        const bytes prefixed =
            stream_builder().prefixed_unit(size, sps, needless).prefixed_unit(size, idr_slice, zero_words);
        EXPECT_EQ(prefixed, converted(annexb, framing));
        EXPECT_EQ(prefixed, converted(prefixed, framing, {"--format", framing}));
        EXPECT_EQ(annexb, converted(prefixed, "annexb", {"--format", framing}));
    }
}

TEST_F(Convert, BehindLengthsUnitsKeepWhatStartCodesCannotCarry)
{
    const bytes prefixed =
        stream_builder().prefixed_unit(4, sps, {0x80, 0}).prefixed_unit(4, pps, {1, 0, 0, 1, 0, 0, 0, 2});
    EXPECT_EQ(prefixed, converted(prefixed, "length4", {"--format", "length4"}));
}

TEST_F(Convert, PaddingAndStartCodesStayInAnnexB)
{
    const bytes stream = stream_builder()
                             .zeros(7)
                             .annexb_unit(sps, escaped)
                             .zeros(2)
                             .annexb_unit(pps, plain)
                             .annexb_unit(idr_slice, {0x88, 0, 0, 3})
                             .zeros(10000)
                             .annexb_unit(idr_slice, plain)
                             .zeros(3);
    EXPECT_EQ(stream, converted(stream, "annexb"));
    bytes without = stream;
    without.resize(without.size() - 3);
    EXPECT_EQ(without, converted(without, "annexb"));
}

TEST_F(Convert, PaddingThatLengthsCannotCarryIsToldWithItsSize)
{
    const auto padded = [](std::size_t first, std::size_t last) {
        return stream_builder().zeros(1 + first).annexb_unit(sps, plain).annexb_unit(pps, plain).zeros(last).made();
    };
    const bytes prefixed = stream_builder().prefixed_unit(4, sps, plain).prefixed_unit(4, pps, plain);
    const auto told = [&](const bytes& stream) {
        const tool_result result = convert(folder.write("in", stream), "length4");
        EXPECT_EQ(0, result.status) << "nothing is wrong with it";
        EXPECT_EQ(prefixed, read_file(out));
        return result.err;
    };
    EXPECT_EQ("", told(padded(0, 0)));
    EXPECT_EQ(message("1 byte of zero padding in 1 place left out: length prefixes carry none"), told(padded(1, 0)));
    EXPECT_EQ(message("5005 bytes of zero padding in 2 places left out: length prefixes carry none"),
              told(padded(5000, 5)));
}

// H.264 7.4.1: no NAL unit ends in 00; behind cabac_zero_words stands 03.
TEST_F(Convert, ZerosAtTheEndGetA03BehindStartCodes)
{
    EXPECT_EQ(stream_builder().zeros(1).annexb_unit(idr_slice, {0x80, 0, 0, 3}).made(),
              converted(stream_builder().prefixed_unit(4, idr_slice, {0x80, 0, 0}), "annexb", {"--format", "length4"}));
}

TEST_F(Convert, AZeroByteAtTheEndThatStartCodesCannotCarryIsTold)
{
    const std::string in = folder.write("in", stream_builder().prefixed_unit(4, sps, {0x80, 0}));
    const tool_result result = convert(in, "annexb", {"--format", "length4"});
    EXPECT_EQ(message("offset 0: unit ends in 00, which start codes cannot carry: left out"), result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(stream_builder().zeros(1).annexb_unit(sps, {0x80}).made(), read_file(out));
}

TEST_F(Convert, AUnitThatIsAZeroByteIsLeftOutBehindStartCodes)
{
    const std::string in = folder.write("in", stream_builder().prefixed_unit(4, 0, {}).prefixed_unit(4, pps, plain));
    const tool_result result = convert(in, "annexb", {"--format", "length4"});
    EXPECT_EQ(message("offset 0: unit of one byte 00, which start codes cannot carry: left out"), result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(stream_builder().zeros(1).annexb_unit(pps, plain).made(), read_file(out));
}

TEST_F(Convert, StartCodesInsideAUnitAreEscapedAndTold)
{
    const std::pair<bytes, bytes> cases[] = {
        {{1, 0, 0, 1, 0x80}, {1, 0, 0, 3, 1, 0x80}},
        {{1, 0, 0, 0, 0, 0, 1, 0x80}, {1, 0, 0, 3, 0, 0, 3, 0, 1, 0x80}},
        {{1, 0, 0, 2, 0, 0, 3, 1, 0, 0, 0, 0}, {1, 0, 0, 2, 0, 0, 3, 1, 0, 0, 3, 0, 0, 3}},
    };
    for (const auto& [payload, wanted] : cases) {
        const std::string in =
            folder.write("in", stream_builder().prefixed_unit(4, sps, plain).prefixed_unit(4, pps, payload));
        const tool_result result = convert(in, "annexb", {"--format", "length4"});
        EXPECT_EQ(message("offset 7: start code inside the unit: an emulation-prevention byte is put into it"),
                  result.err);
        EXPECT_EQ(1, result.status);
        EXPECT_EQ(stream_builder().zeros(1).annexb_unit(sps, plain).zeros(1).annexb_unit(pps, wanted).made(),
                  read_file(out));
    }
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

TEST_F(Convert, AUnitWithAForbiddenBitIsCarriedAndTold)
{
    folder.write(
        "in", stream_builder().annexb_unit(pps, plain).annexb_unit(support::forbidden, plain).annexb_unit(sps, plain));
    const tool_result result = convert(folder.path("in"), "length4");
    EXPECT_EQ(message("offset 6: unit whose header has the forbidden bit set"), result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(stream_builder()
                  .prefixed_unit(4, pps, plain)
                  .prefixed_unit(4, support::forbidden, plain)
                  .prefixed_unit(4, sps, plain)
                  .made(),
              read_file(out));
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
    folder.write("in",
                 stream_builder().junk(5).annexb_unit(sps, plain).raw({0, 0, 0, 2}).junk(2).annexb_unit(pps, plain));
    const tool_result result = convert(folder.path("in"), "length4");
    EXPECT_EQ(message("offset 0: bytes before the first start code (5 bytes)") +
                  message("offset 14: bytes behind a place where the unit's decoding stops (3 bytes)"),
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
