// orv-h264 frames as a user runs it: the table, the closing line, the messages, the exit status.
#include "support/coded_stream.h"
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
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

const std::string heading =
    "  frame   output       offset       size  key         types  struct  frame_num     poc  ref "
    "        time  fields  units\n";

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
    EXPECT_EQ(
        heading +
            "      0        0            0        141  IDR         I      frame           0       0    3     0.000000"
            "       2  AUD, SPS, PPS, slice IDR\n"
            "      1        1          141        117  -           I,P    frame           1       2    2     0.040000"
            "       2  AUD, slice*2\n"
            "      2        2          258         70  recovery 5  I      frame           2       4    2     0.080000"
            "       2  AUD, SEI, slice, filler*2  (last)\n"
            "3 frames, 2 of them key frames, 328 bytes, 30 of filler, 0.120000 s, mean 21867 bit/s\n",
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
                    {"schema_version", 2},
                    {"file", file.path()},
                    {"framing", "annexb"},
                    {"split_fields", false},
                    {"output_order", false}}),
              objects[0]);
    const json recovery = {{"record", "frame"},
                           {"number", 2},
                           {"picture", 2},
                           {"output_number", 2},
                           {"offset", 258},
                           {"size", 70},
                           {"unit_bytes", 70},
                           {"padding", 0},
                           {"filler", 30},
                           {"key", true},
                           {"idr", false},
                           {"recovery_frame_cnt", 5},
                           {"slice_types", {"I"}},
                           {"structure", "frame"},
                           {"frame_num", 2},
                           {"poc", 4},
                           {"nal_ref_idc", 2},
                           {"pts", {{"numerator", 2}, {"denominator", 25}, {"value", 0.08}}},
                           {"dts", {{"numerator", 2}, {"denominator", 25}, {"value", 0.08}}},
                           {"time_source", "assumed_rate"},
                           {"field_duration", 2},
                           {"duration", {{"numerator", 1}, {"denominator", 25}, {"value", 0.04}}},
                           {"pic_struct", nullptr},
                           {"sps_id", 0},
                           {"pps_id", 0},
                           {"layers", json::array()},
                           {"coded_pictures", 1},
                           {"nal_unit_types", {9, 6, 1, 12, 12}},
                           {"cut", false},
                           {"last", true}};
    EXPECT_EQ(recovery, objects[3]);
    EXPECT_EQ(true, objects[1]["idr"]);
    EXPECT_EQ(nullptr, objects[1]["recovery_frame_cnt"]);
    EXPECT_EQ(false, objects[1]["last"]);
    EXPECT_EQ(json({"I", "P"}), objects[2]["slice_types"]);
    EXPECT_EQ(false, objects[2]["key"]);
    EXPECT_EQ((json{{"record", "summary"},
                    {"frames", 3},
                    {"pictures", 3},
                    {"key_frames", 2},
                    {"coded_pictures", 3},
                    {"bytes", 328},
                    {"unit_bytes", 328},
                    {"padding", 0},
                    {"filler", 30},
                    {"timed_frames", 3},
                    {"seconds", 0.12},
                    {"mean_bit_rate", 21866.667},
                    {"unit_bit_rate", 21866.667},
                    {"peak_bit_rate", nullptr}}),
              objects[4]);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST(Frames, TablesHaveTheMembersOfTheJsonAsColumns)
{
    const temporary_file file(three_frames());
    std::string first_line = run_tool({"frames", "--json", file.path()}).out;
    first_line.erase(0, first_line.find('\n') + 1);
    const auto row = nlohmann::ordered_json::parse(first_line.substr(0, first_line.find('\n')));
    std::string names;
    for (const auto& [name, value] : row.items())
        names += (names.empty() ? "" : ",") + name;
    const tool_result csv = run_tool({"frames", "--csv", file.path()});
    EXPECT_EQ(names +
                  "\nframe,0,0,0,0,141,141,0,0,true,true,,I,frame,0,0,3,0.0,0.0,assumed_rate,2,0.04,,0,0,,1,9 7 8 5,"
                  "false,false\n"
                  "frame,1,1,1,141,117,117,0,0,false,false,,I P,frame,1,2,2,0.04,0.04,assumed_rate,2,0.04,,0,0,,1,9 1 "
                  "1,false,false\n"
                  "frame,2,2,2,258,70,70,0,30,true,false,5,I,frame,2,4,2,0.08,0.08,assumed_rate,2,0.04,,0,0,,1,9 6 1 "
                  "12 12,false,true\n",
              csv.out);
    EXPECT_EQ(0, csv.status);
    std::string with_tabs = csv.out;
    std::replace(with_tabs.begin(), with_tabs.end(), ',', '\t');
    EXPECT_EQ(with_tabs, run_tool({"frames", "--tsv", file.path()}).out);
}

TEST(Frames, ProblemsDoNotStandInATable)
{
    const tool_result result = run_tool({"frames", "--csv", "-"}, {.piped = coded_stream().slice(1)});
    EXPECT_EQ(2U, count_lines(result.out));
    EXPECT_EQ(1U, count_lines(result.err));
    EXPECT_EQ(1, result.status);
    const tool_result nothing = run_tool({"frames", "--csv", "-"}, {.piped = coded_stream().aud()});
    EXPECT_EQ(1U, count_lines(nothing.out)) << "the names of the columns";
    EXPECT_EQ(result.out.substr(0, nothing.out.size()), nothing.out);
}

TEST(Frames, WithoutAFieldRateThereAreNoSeconds)
{
    const temporary_file file(coded_stream().sets(coded_sps(false, false)).idr());
    const std::string out = run_tool({"frames", file.path()}).out;
    EXPECT_NE(std::string::npos, out.find("           -       2  SPS, PPS, slice IDR  (last)\n")) << out;
    EXPECT_NE(std::string::npos, out.find(" bytes, bit rate unknown\n")) << out;
    const auto objects = lines_of(run_tool({"frames", "--json", file.path()}).out);
    for (const char* name : {"pts", "dts", "duration"})
        EXPECT_EQ(nullptr, objects.at(1)[name]) << name;
    EXPECT_EQ("none", objects.at(1)["time_source"]);
    EXPECT_EQ(0, objects.at(2)["timed_frames"]);
    for (const char* name : {"seconds", "mean_bit_rate", "unit_bit_rate", "peak_bit_rate"})
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

TEST(Frames, WhatIsNotTimedIsTold)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1).sets(coded_sps(false, false)).idr();
    const std::string out = run_tool({"frames", "-"}, {.piped = stream}).out;
    EXPECT_NE(std::string::npos, out.find(" bytes, 0.080000 s of 2 that are timed, mean ")) << out;
    const auto objects = lines_of(run_tool({"frames", "--json", "-"}, {.piped = stream}).out);
    const auto size = objects[1]["size"].get<double>() + objects[2]["size"].get<double>();
    EXPECT_EQ(2, objects.back()["timed_frames"]);
    EXPECT_NEAR(8 * size / 0.08, objects.back()["mean_bit_rate"], 0.001);
}

TEST(Frames, PaddingIsToldAndRatesAreWithItAndWithout)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    bytes padded = stream;
    padded.insert(padded.end(), 1000, 0);
    const std::string out = run_tool({"frames", "-"}, {.piped = padded}).out;
    const auto rate = [](std::size_t size) { return std::to_string(size * 8 * 25) + " bit/s"; };
    EXPECT_NE(std::string::npos, out.find(std::to_string(stream.here()) + " bytes, 1000 of padding, 0.040000 s, mean " +
                                          rate(padded.size()) + " (" + rate(stream.here()) + " without padding)\n"))
        << out;
    const auto objects = lines_of(run_tool({"frames", "--json", "-"}, {.piped = padded}).out);
    EXPECT_EQ(stream.here(), objects[1]["size"]);
    EXPECT_EQ(1000, objects[1]["padding"]);
    EXPECT_EQ(stream.here() * 8 * 25, objects[2]["unit_bit_rate"]);
    EXPECT_EQ(padded.size() * 8 * 25, objects[2]["mean_bit_rate"]);
}

TEST(Frames, FieldsAreRowsAndKeyPicturesAreCountedAsPictures)
{
    coded_stream stream;
    stream.sets(coded_sps(true)).idr(coded::top).aud().slice(0, coded::bottom);
    stream.aud().slice(1, coded::top).aud().slice(1, coded::bottom);
    const temporary_file file(stream);
    const auto pairs = lines_of(run_tool({"frames", "--json", file.path()}).out);
    ASSERT_EQ(4U, pairs.size());
    EXPECT_EQ(2, pairs[1]["coded_pictures"]);
    EXPECT_EQ(2, pairs[1]["field_duration"]);
    EXPECT_EQ("fields", pairs[1]["structure"]);
    const std::string out = run_tool({"frames", "--json", "--fields", file.path()}).out;
    EXPECT_EQ(out, run_tool({"frames", "--json", "--split-fields", file.path()}).out);
    const auto fields = lines_of(out);
    ASSERT_EQ(6U, fields.size());
    EXPECT_EQ(true, fields[0]["split_fields"]);
    for (std::size_t i = 1; i <= 4; ++i) {
        EXPECT_EQ(i - 1, fields[i]["number"]);
        EXPECT_EQ((i - 1) / 2, fields[i]["picture"]);
        EXPECT_EQ((i - 1) / 2, fields[i]["output_number"]);
        EXPECT_EQ(1, fields[i]["coded_pictures"]);
        EXPECT_EQ(1, fields[i]["field_duration"]);
        EXPECT_EQ(0.02, fields[i]["duration"]["value"]);
        EXPECT_EQ(i % 2 == 1 ? "top" : "bottom", fields[i]["structure"]);
    }
    EXPECT_EQ(true, fields[4]["last"]);
    EXPECT_EQ(4, fields[5]["frames"]);
    EXPECT_EQ(2, fields[5]["pictures"]);
    const std::string text = run_tool({"frames", "--fields", file.path()}).out;
    EXPECT_NE(std::string::npos, text.find("\n4 fields of 2 pictures, 1 of them key pictures, ")) << text;
}

namespace {

/// Four frames that are decoded as 0, 3, 1, 2.
coded_stream reordered_frames()
{
    support::sps_description seq = coded_sps(false);
    seq.pic_order_cnt_type = 0;
    coded_stream stream;
    stream.sets(seq);
    const auto add = [&](std::uint32_t frame_num, std::uint32_t lsb, unsigned char header) {
        support::slice_header_description slice = stream.described(frame_num);
        slice.pic_order_cnt_lsb = lsb;
        if (header == support::idr_slice)
            slice.idr_pic_id = 0;
        stream.slice(slice, header);
    };
    add(0, 0, support::idr_slice);
    add(1, 6, 0x41);
    add(2, 2, 0x01);
    add(2, 4, 0x01);
    return stream;
}

std::vector<json> frames_in(const std::vector<json>& objects)
{
    std::vector<json> frames = objects;
    std::erase_if(frames, [](const json& object) { return object["record"] != "frame"; });
    return frames;
}

/// A member of each frame.
std::vector<json> column(const std::vector<json>& objects, const char* name)
{
    std::vector<json> values;
    for (const json& frame : frames_in(objects))
        values.push_back(frame[name]);
    return values;
}

} // namespace

TEST(Frames, OutputOrderSortsTheRows)
{
    const temporary_file file(reordered_frames());
    const auto decoded = lines_of(run_tool({"frames", "--json", file.path()}).out);
    EXPECT_EQ((std::vector<json>{0, 3, 1, 2}), column(decoded, "output_number"));
    const auto output = lines_of(run_tool({"frames", "--json", "--output-order", file.path()}).out);
    EXPECT_EQ(true, output[0]["output_order"]);
    EXPECT_EQ((std::vector<json>{0, 1, 2, 3}), column(output, "output_number"));
    EXPECT_EQ((std::vector<json>{0, 2, 3, 1}), column(output, "number"));
    EXPECT_EQ(decoded.back(), output.back()) << "the totals";
    const auto first = lines_of(run_tool({"frames", "--json", "--output-order", "--limit", "2", file.path()}).out);
    EXPECT_EQ((std::vector<json>{0, 2}), column(first, "number"));
    EXPECT_EQ(first[1]["size"].get<int>() + first[2]["size"].get<int>(), first[3]["bytes"]);
}

TEST(Frames, RowsWithoutAnOutputNumberAreTold)
{
    support::sps_description seq = coded_sps(false);
    seq.pic_order_cnt_type = 0;
    coded_stream stream;
    support::slice_header_description slice = stream.sets(seq).described(0);
    slice.pic_order_cnt_lsb = 7; // above all that follow
    stream.slice(slice, 0x41);
    slice.frame_num = 1;
    slice.pic_order_cnt_lsb = 6;
    for (int i = 0; i < 1100; ++i)
        stream.slice(slice, 0x01);
    const tool_result result = run_tool({"frames", "--json", "-"}, {.piped = stream});
    EXPECT_EQ("orv-h264: standard input: offset 0: 1 rows are without an output number, this one first: 1024 later "
              "pictures and more come before their turn\n",
              result.err.substr(0, result.err.find('\n') + 1));
    EXPECT_EQ(0, result.status);
    const auto objects = lines_of(result.out);
    EXPECT_EQ(nullptr, objects[1]["output_number"]);
    EXPECT_EQ(0, objects[2]["output_number"]);
    EXPECT_EQ("finding", objects[objects.size() - 2]["record"]);
}

TEST(Frames, FindingsLeaveTheStatus)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1);
    const std::size_t behind_gap = stream.here();
    const tool_result result = run_tool({"frames", "--json", "-"}, {.piped = stream.slice(4)});
    const std::string what = "picture 2: frames are missing before it";
    EXPECT_EQ("orv-h264: standard input: offset " + std::to_string(behind_gap) + ": " + what + "\n", result.err);
    EXPECT_EQ((json{{"record", "finding"}, {"offset", behind_gap}, {"message", what}}), lines_of(result.out).at(3));
    EXPECT_EQ(0, result.status);
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

TEST(Frames, NothingBeyondTheLimitIsReported)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1).slice(4).filler(3000);
    const auto lines_of_errors = [&](const std::string& limit, const char* order) {
        return count_lines(
            run_tool({"frames", "--max-unit", "2K", "--limit", limit, order, "-"}, {.piped = stream}).err);
    };
    for (const char* order : {"--fields", "--output-order"}) {
        EXPECT_EQ(0U, lines_of_errors("0", order));
        EXPECT_EQ(0U, lines_of_errors("2", order));
        EXPECT_EQ(1U, lines_of_errors("3", order)) << "frames are missing";
        EXPECT_EQ(2U, lines_of_errors("4", order)) << "and a unit is too large";
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
    stream.idr().filler(3000);
    const std::size_t large = stream.last();
    const temporary_file file(stream.aud().sets(coded_sps(false)).idr());
    const std::string slice = "pic_parameter_set_id 0 at bit 16: names a picture parameter set which is missing";
    const std::string filler = "unit of type 12 longer than the limit of 2048 bytes (3005 bytes)";
    const std::string where = "orv-h264: " + file.path() + ": offset ";
    const std::string expected = where + "0: " + slice + "\n" + where + std::to_string(large) + ": " + filler + "\n";
    const tool_result result = run_tool({"frames", "--max-unit", "2K", file.path()});
    EXPECT_EQ(expected, result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.out.find("2 frames, 2 of them key frames")) << result.out;
    const tool_result as_json = run_tool({"frames", "--max-unit", "2K", "--json", file.path()});
    EXPECT_EQ(expected, as_json.err);
    const auto objects = lines_of(as_json.out);
    EXPECT_EQ((json{{"record", "problem"}, {"offset", 0}, {"message", slice}}), objects.at(1));
    EXPECT_EQ((json{{"record", "problem"}, {"offset", large}, {"message", filler}}), objects.at(3));
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
    EXPECT_NE(std::string::npos, result.out.find("SPS, PPS, slice IDR\n      1        1         3046 ")) << result.out;
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
    const temporary_file avi(
        support::stream_builder().raw({'R', 'I', 'F', 'F', 0, 0, 0, 0, 'A', 'V', 'I', ' '}).zeros(16));
    EXPECT_EQ(3, run_tool({"frames", avi.path()}).status);
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
    for (const char* word : {"FILE", "--fields", "--split-fields", "--output-order", "--csv", "--tsv", "--limit",
                             "--format", "--max-unit", "--json", "Examples:", "Exit status:"})
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
    EXPECT_NE(std::string::npos, out.find(" type-0, filler, ...  (last)\n")) << out;
    std::string shown = out.substr(out.find(" SPS, PPS"));
    shown.resize(shown.find("..."));
    EXPECT_EQ(64, std::count(shown.begin(), shown.end(), ','));
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
        EXPECT_NE(std::string::npos, result.out.find(" of filler, bit rate unknown\n")) << "up to the end";
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
    for (const std::vector<std::string>& how :
         std::initializer_list<std::vector<std::string>>{{"frames", "--json"},
                                                         {"frames", "--json", "--fields"},
                                                         {"frames", "--json", "--output-order"},
                                                         {"frames", "--json", "--limit", "7"}}) {
        std::vector<std::string> arguments = how;
        arguments.push_back(GetParam().string());
        const auto objects = lines_of(run_tool(arguments).out);
        const auto frames = frames_in(objects);
        const json& summary = objects.back();
        for (const char* name : {"bytes", "unit_bytes", "padding", "filler", "coded_pictures"}) {
            const char* const of_row = name == std::string("bytes") ? "size" : name;
            std::uint64_t sum = 0;
            for (const json& frame : frames)
                sum += frame[of_row].get<std::uint64_t>();
            EXPECT_EQ(sum, summary[name]) << name;
        }
        std::set<json> pictures, key_pictures;
        double seconds = 0;
        std::uint64_t timed = 0;
        for (const json& frame : frames) {
            pictures.insert(frame["picture"]);
            if (frame["key"])
                key_pictures.insert(frame["picture"]);
            seconds += frame["duration"].is_null() ? 0 : frame["duration"]["value"].get<double>();
            timed += frame["duration"].is_null() ? 0 : 1;
        }
        EXPECT_EQ(frames.size(), summary["frames"]);
        EXPECT_EQ(pictures.size(), summary["pictures"]);
        EXPECT_EQ(key_pictures.size(), summary["key_frames"]);
        EXPECT_EQ(timed, summary["timed_frames"]);
        EXPECT_NEAR(seconds, summary["seconds"].is_null() ? 0.0 : summary["seconds"].get<double>(), 1e-6);
    }
}
