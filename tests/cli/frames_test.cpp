// orv-h264 frames as a user runs it: the table, the closing line, the messages, the exit status.
#include "support/coded_stream.h"
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace {

using nlohmann::json;
using support::bytes;
using support::coded;
using support::coded_sps;
using support::coded_stream;
using support::run_tool;
using support::temporary_file;
using support::tool_result;

const std::string heading = "   frame        offset        size  key       types  fields     seconds  units\n";

/// Three frames at 25 a second: an IDR picture, one of two slices, a recovery point.
coded_stream three_frames()
{
    coded_stream stream;
    stream.aud().sets(coded_sps(false)).idr(coded::frame, 100);
    support::slice_header_description p_slice = stream.described(1);
    p_slice.slice_type = 0;
    p_slice.first_mb_in_slice = 5;
    stream.aud().slice(1, coded::frame, 50).slice(p_slice, 0x41, 50);
    return stream.aud().recovery_point(5).slice(2, coded::frame, 20).filler(10).filler(10);
}

std::vector<json> lines_of(const std::string& text)
{
    std::vector<json> objects;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        objects.push_back(json::parse(line));
    return objects;
}

std::size_t count_lines(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

TEST(Frames, ShowsALineForEachFrameAndAClosingOne)
{
    const coded_stream stream = three_frames();
    const temporary_file file(stream);
    ASSERT_EQ(328U, stream.here());
    const tool_result result = run_tool({"frames", file.path()});
    EXPECT_EQ(heading +
                  "       0             0         141  IDR       I           2    0.040000  AUD SPS PPS IDR\n"
                  "       1           141         117  -         I,P         2    0.040000  AUD slice*2\n"
                  "       2           258          70  recovery  I           2    0.040000  AUD SEI slice filler*2"
                  "  (last)\n"
                  "3 frames, 2 of them key frames, 328 bytes, 0.120000 s, mean 21867 bit/s\n",
              result.out);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST(Frames, JsonHasTheSameAsNumbers)
{
    const temporary_file file(three_frames());
    const tool_result result = run_tool({"frames", "--json", file.path()});
    const auto objects = lines_of(result.out);
    ASSERT_EQ(5U, objects.size());
    EXPECT_EQ((json{{"record", "stream"},
                    {"schema", "orv-h264/frames"},
                    {"schema_version", 1},
                    {"file", file.path()},
                    {"framing", "annexb"},
                    {"split_fields", false}}),
              objects[0]);
    const json recovery = {{"record", "frame"},
                           {"number", 2},
                           {"offset", 258},
                           {"size", 70},
                           {"key", true},
                           {"idr", false},
                           {"recovery_frame_cnt", 5},
                           {"slice_types", {"I"}},
                           {"coded_pictures", 1},
                           {"field_duration", 2},
                           {"poc", 4},
                           {"output_number", 2},
                           {"seconds", 0.04},
                           {"nal_unit_types", {9, 6, 1, 12, 12}},
                           {"cut", false},
                           {"last", true}};
    EXPECT_EQ(recovery, objects[3]);
    EXPECT_EQ(true, objects[1]["idr"]);
    EXPECT_EQ(nullptr, objects[1]["recovery_frame_cnt"]);
    EXPECT_EQ(false, objects[1]["last"]);
    EXPECT_EQ(json({"I", "P"}), objects[2]["slice_types"]);
    EXPECT_EQ(false, objects[2]["key"]);
    const json& summary = objects[4];
    EXPECT_EQ("summary", summary["record"]);
    EXPECT_EQ(3, summary["frames"]);
    EXPECT_EQ(2, summary["key_frames"]);
    EXPECT_EQ(0, summary["joined_frames"]);
    EXPECT_EQ(3, summary["coded_pictures"]);
    EXPECT_EQ(328, summary["bytes"]);
    EXPECT_NEAR(0.12, summary["seconds"], 1e-12);
    EXPECT_NEAR(328 * 8 / 0.12, summary["mean_bit_rate"], 1e-6);
    EXPECT_EQ(nullptr, summary["peak_bit_rate"]) << "not a whole second";
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST(Frames, WithoutAFieldRateThereAreNoSeconds)
{
    const temporary_file file(coded_stream().sets(coded_sps(false, false)).idr());
    const std::string out = run_tool({"frames", file.path()}).out;
    EXPECT_NE(std::string::npos, out.find("IDR       I           2           -  SPS PPS IDR  (last)\n")) << out;
    EXPECT_NE(std::string::npos, out.find(" bytes, bit rate unknown\n")) << out;
    const auto objects = lines_of(run_tool({"frames", "--json", file.path()}).out);
    EXPECT_EQ(nullptr, objects.at(1)["seconds"]);
    for (const char* name : {"seconds", "mean_bit_rate", "peak_bit_rate"})
        EXPECT_EQ(nullptr, objects.at(2)[name]) << name;
}

TEST(Frames, PeakIsThatOfTheFullestSecond)
{
    coded_stream stream;
    stream.sets(coded_sps(false));
    for (std::uint32_t i = 0; i < 50; ++i)
        stream.aud().slice(i % 16, coded::frame, i == 30 ? 1000 : 100);
    const temporary_file file(stream);
    const std::string out = run_tool({"frames", file.path()}).out;
    const auto objects = lines_of(run_tool({"frames", "--json", file.path()}).out);
    double second = 0;
    for (std::size_t i = 26; i <= 50; ++i)
        second += 8 * objects.at(i)["size"].get<double>();
    EXPECT_NEAR(second, objects.back()["peak_bit_rate"], 1e-6 * second);
    EXPECT_NE(std::string::npos, out.find(", peak " + std::to_string(static_cast<int>(second)) + " bit/s\n")) << out;
}

TEST(Frames, SplitFieldsShowsEachFieldByItself)
{
    coded_stream stream;
    stream.sets(coded_sps(true)).idr(coded::top).aud().slice(0, coded::bottom);
    stream.aud().slice(1, coded::top).aud().slice(1, coded::bottom);
    const temporary_file file(stream);
    const auto pairs = lines_of(run_tool({"frames", "--json", file.path()}).out);
    ASSERT_EQ(4U, pairs.size());
    EXPECT_EQ(2, pairs[1]["coded_pictures"]);
    EXPECT_EQ(2, pairs[1]["field_duration"]);
    const auto fields = lines_of(run_tool({"frames", "--json", "--split-fields", file.path()}).out);
    ASSERT_EQ(6U, fields.size());
    EXPECT_EQ(true, fields[0]["split_fields"]);
    for (std::size_t i = 1; i <= 4; ++i) {
        EXPECT_EQ(1, fields[i]["coded_pictures"]);
        EXPECT_EQ(1, fields[i]["field_duration"]);
        EXPECT_EQ(0.02, fields[i]["seconds"]);
    }
    EXPECT_EQ(true, fields[4]["last"]);
}

TEST(Frames, PicturesThatTheirSlicesAloneTellApartAreRows)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1).slice(1).slice(2);
    const temporary_file file(stream);
    const tool_result result = run_tool({"frames", file.path()});
    EXPECT_NE(std::string::npos, result.out.find("\n4 frames, 1 of them key frames")) << result.out;
    EXPECT_EQ(0, result.status);
}

TEST(Frames, LimitStopsAfterThatManyFrames)
{
    const temporary_file file(three_frames());
    for (const std::size_t limit : {0U, 1U, 2U, 3U, 10U}) {
        const tool_result result = run_tool({"frames", "--limit", std::to_string(limit), file.path()});
        const std::size_t shown = std::min<std::size_t>(limit, 3);
        EXPECT_EQ(1 + shown + 1, count_lines(result.out)) << result.out;
        EXPECT_NE(std::string::npos, result.out.find("\n" + std::to_string(shown) + " frames, ")) << result.out;
        EXPECT_EQ(0, result.status);
    }
}

TEST(Frames, OnlyWhatLiesBeforeTheLimitIsReadOfAPipe)
{
    coded_stream stream;
    stream.sets(coded_sps(false));
    for (std::uint32_t i = 0; i < 16; ++i)
        stream.aud().slice(i, coded::frame, 5000);
    const tool_result result =
        run_tool({"frames", "--limit", "3", "--format", "annexb", "-"}, {.piped = stream, .repeat = 1000});
    EXPECT_EQ(5U, count_lines(result.out));
    EXPECT_EQ(0, result.status);
}

TEST(Frames, OfAStreamWithoutFramesThereIsTheClosingLine)
{
    const temporary_file file(coded_stream().filler().end_of_sequence());
    const tool_result result = run_tool({"frames", file.path()});
    EXPECT_EQ(heading + "0 frames, 0 of them key frames, 0 bytes, bit rate unknown\n", result.out);
    EXPECT_EQ(0, result.status);
}

TEST(Frames, WhatIsWrongIsReportedWithItsOffsetAndReadingGoesOn)
{
    coded_stream stream;
    stream.idr().sets(coded_sps(false));
    const std::size_t forbidden_offset = stream.here();
    bytes broken = stream;
    const bytes forbidden = support::stream_builder().annexb_unit(support::forbidden, {1, 2, 3});
    broken.insert(broken.end(), forbidden.begin(), forbidden.end());
    const bytes rest = coded_stream().aud().sets(coded_sps(false)).idr();
    broken.insert(broken.end(), rest.begin(), rest.end());
    const temporary_file file(broken);
    const std::string slice = "slice names picture parameter set 0, which is missing";
    const std::string bit = "unit whose header has the forbidden bit set (7 bytes)";
    const std::string where = "orv-h264: " + file.path() + ": offset ";
    const std::string expected =
        where + "0: " + slice + "\n" + where + std::to_string(forbidden_offset) + ": " + bit + "\n";
    const tool_result result = run_tool({"frames", file.path()});
    EXPECT_EQ(expected, result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.out.find("2 frames, 2 of them key frames")) << result.out;
    const tool_result as_json = run_tool({"frames", "--json", file.path()});
    EXPECT_EQ(expected, as_json.err);
    const auto objects = lines_of(as_json.out);
    EXPECT_EQ((json{{"record", "problem"}, {"offset", 0}, {"message", slice}}), objects.at(1));
    EXPECT_EQ((json{{"record", "problem"}, {"offset", forbidden_offset}, {"message", bit}}), objects.at(2));
    EXPECT_EQ(1, as_json.status);
}

TEST(Frames, AUnitThatTheInputCutsIsReported)
{
    const temporary_file file(support::stream_builder().prefix(4, 50).unit(0x41, {0xE7, 0x55}));
    const tool_result result = run_tool({"frames", "--format", "length4", file.path()});
    EXPECT_NE(std::string::npos, result.err.find("offset 0: unit of 50 bytes runs past the end of the input\n"));
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.out.find("\n1 frames, ")) << "it is a frame all the same";
}

TEST(Frames, AUnitAboveMaxUnitBelongsToNoFrame)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    const std::size_t large = stream.here();
    const temporary_file file(stream.slice(0, coded::frame, 3000).slice(0));
    const tool_result result = run_tool({"frames", "--max-unit", "2K", file.path()});
    EXPECT_NE(std::string::npos, result.err.find("offset " + std::to_string(large) +
                                                 ": unit of type 1 longer than the limit of 2048 bytes"))
        << result.err;
    EXPECT_NE(std::string::npos, result.out.find("SPS PPS IDR\n       1          3046 ")) << result.out;
    EXPECT_EQ(1, result.status);
}

TEST(Frames, WithoutASliceThereIsNone)
{
    struct sliceless_case {
        coded_stream stream;
        std::size_t frames;
    };
    for (const auto& [stream, frames] :
         {sliceless_case{coded_stream().sets(coded_sps(false)), 0},
          {coded_stream().aud(), 0},
          {coded_stream().sets(coded_sps(false)).recovery_point(0), 0},
          {coded_stream().sets(coded_sps(false)).idr().aud().sets(coded_sps(false)), 1}}) {
        const tool_result result = run_tool({"frames", "-"}, {.piped = stream});
        EXPECT_EQ(1 + frames + 1, count_lines(result.out)) << result.out;
        EXPECT_NE(std::string::npos, result.out.find("\n" + std::to_string(frames) + " frames, ")) << result.out;
        EXPECT_EQ(0, result.status) << result.err;
        const auto objects = lines_of(run_tool({"frames", "--json", "-"}, {.piped = stream}).out);
        EXPECT_EQ(1 + frames + 1, objects.size());
        const json in_info = json::parse(run_tool({"info", "--json", "-"}, {.piped = stream}).out)["frames"];
        EXPECT_EQ(objects.back()["frames"], in_info["count"]);
        EXPECT_EQ(objects.back()["key_frames"], in_info["key_frames"]);
        EXPECT_EQ(frames, in_info["count"]);
        EXPECT_EQ(frames, in_info["pictures"]);
    }
}

TEST(Frames, WhatCannotBeReadEndsIt)
{
    const tool_result missing = run_tool({"frames", "/nonexistent/stream.264"});
    EXPECT_EQ(2, missing.status);
    EXPECT_NE(std::string::npos, missing.err.find("/nonexistent/stream.264"));
    const temporary_file junk(bytes(50, 0xEE));
    EXPECT_EQ(2, run_tool({"frames", junk.path()}).status);
    const temporary_file container(support::stream_builder().prefix(4, 24).raw({'f', 't', 'y', 'p'}).zeros(16));
    EXPECT_EQ(3, run_tool({"frames", container.path()}).status);
    EXPECT_EQ(2, run_tool({"frames"}).status);
    EXPECT_EQ(2, run_tool({"frames", "--limit", "many", junk.path()}).status);
    EXPECT_EQ(2, run_tool({"frames", "--only", "7", junk.path()}).status) << "an option of inspect";
}

TEST(Frames, AFullDiskIsAnError)
{
    const temporary_file file(three_frames());
    const tool_result result = run_tool({"frames", file.path()}, {.out_path = "/dev/full"});
    EXPECT_EQ(2, result.status);
    EXPECT_NE("", result.err);
}

TEST(Frames, HelpNamesEveryOptionAndTheExitStatus)
{
    const tool_result result = run_tool({"frames", "--help"});
    EXPECT_EQ(0, result.status);
    for (const char* word :
         {"FILE", "--split-fields", "--limit", "--format", "--max-unit", "--json", "Examples:", "Exit status:"})
        EXPECT_NE(std::string::npos, result.out.find(word)) << word;
}

namespace {

/// A frame of `count` runs of units, at least 3.
coded_stream frame_of_runs(std::size_t count)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    for (std::size_t i = 3; i < count; ++i)
        stream.unit(static_cast<unsigned char>(i % 2 == 1 ? 12 : 0), {0x80});
    return stream;
}

} // namespace

TEST(Frames, OfCountlessRunsOfUnitsTheFirst64AreShown)
{
    const temporary_file all(frame_of_runs(64));
    const std::string all_out = run_tool({"frames", all.path()}).out;
    EXPECT_EQ(std::string::npos, all_out.find("...")) << all_out;
    const temporary_file more(frame_of_runs(65));
    const std::string out = run_tool({"frames", more.path()}).out;
    EXPECT_NE(std::string::npos, out.find(" type-0 filler ...  (last)\n")) << out;
    std::string shown = out.substr(out.find(" SPS PPS"));
    shown.resize(shown.find(" ..."));
    EXPECT_EQ(64, std::count(shown.begin(), shown.end(), ' '));
    EXPECT_EQ(65U, lines_of(run_tool({"frames", "--json", more.path()}).out).at(1)["nal_unit_types"].size());
}

#if !defined(ORV_TEST_SANITIZED)
TEST(Frames, LongInputIsReadInBoundedMemory)
{
    // 512 MiB through a pipe, with 96 MiB of address space: frames of 1 MiB.
    coded_stream stream;
    stream.aud().sets(coded_sps(false)).idr(coded::frame, std::size_t{1} << 20);
    const tool_result result = run_tool({"frames", "--format", "annexb", "-"},
                                        {.piped = stream, .repeat = 512, .max_memory = std::size_t{96} << 20});
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ(1U + 512 + 1, count_lines(result.out));
    EXPECT_NE(std::string::npos, result.out.find("\n512 frames, 512 of them key frames, "));
}

TEST(Frames, UnitsWithoutEndAreReadInBoundedMemory)
{
    // Large units and small ones, with a picture now and then.
    struct endless_case {
        std::size_t unit;
        std::size_t megabytes;
    };
    for (const endless_case& c : {endless_case{65536, 512}, {1, 24}}) {
        coded_stream stream;
        stream.slice(3);
        while (stream.here() < std::size_t{1} << 20)
            stream.filler(c.unit);
        const tool_result result =
            run_tool({"frames", "--format", "annexb", "-"},
                     {.piped = stream, .repeat = c.megabytes, .max_memory = std::size_t{160} << 20});
        EXPECT_EQ(1, result.status);
        EXPECT_EQ(c.unit == 1, result.err.find(": offset 0: frame without an end in ") != std::string::npos);
        EXPECT_EQ(c.unit == 1, result.out.find("  (cut)\n") != std::string::npos);
        EXPECT_NE(std::string::npos, result.out.find(" bytes, bit rate unknown\n")) << "up to the end";
    }
}
#endif

namespace {

class FramesStream : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, FramesStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

} // namespace

TEST_P(FramesStream, TheClosingLineAddsTheFramesUp)
{
    auto objects = lines_of(run_tool({"frames", "--json", GetParam().string()}).out);
    const json summary = objects.back();
    std::erase_if(objects, [](const json& object) { return object.value("record", "") != "frame"; });
    json sums = {{"frames", 0}, {"key_frames", 0}, {"coded_pictures", 0}, {"bytes", 0}};
    double seconds = 0;
    for (const json& frame : objects) {
        EXPECT_EQ(sums["frames"], frame["number"]);
        sums["frames"] = sums["frames"].get<int>() + 1;
        sums["key_frames"] = sums["key_frames"].get<int>() + (frame["key"] ? 1 : 0);
        sums["coded_pictures"] = sums["coded_pictures"].get<int>() + frame["coded_pictures"].get<int>();
        sums["bytes"] = sums["bytes"].get<int>() + frame["size"].get<int>();
        seconds += frame["seconds"].is_null() ? 0 : frame["seconds"].get<double>();
    }
    for (const auto& [name, sum] : sums.items())
        EXPECT_EQ(sum, summary[name]) << name;
    if (summary["seconds"].is_null())
        EXPECT_EQ(0, seconds);
    else
        EXPECT_NEAR(seconds, summary["seconds"], 1e-6);
}
