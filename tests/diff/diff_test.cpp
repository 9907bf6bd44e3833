// orv-h264 diff as a user runs it: pairs of streams that differ in one way, and what it says of them.
#include "support/made_stream.h"
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <random>

namespace {

namespace h264 = orv_utils_v4::h264;
using h264::made_stream;
using nlohmann::json;
using support::bytes;
using support::read_file;
using support::run_tool;
using support::tool_input;
using support::tool_result;

using arguments = std::vector<std::string>;

/// The slice with another value of an element, before its data as they are.
bytes edited(const bytes& slice, const made_stream& stream, const char* path, std::int64_t value)
{
    h264::nal_unit unit;
    h264::outcome result;
    h264::read(unit, slice.data(), slice.size(), stream.sets.context, result);
    const std::uint64_t data_bit = result.bits;
    EXPECT_TRUE(h264::edit(unit, stream.sets.context, path, value, result));
    bytes room(slice.size() + 100);
    h264::bit_writer writer(room.data(), room.size());
    EXPECT_TRUE(
        h264::write_before_data(unit, stream.sets.context, slice.data(), slice.size(), data_bit, writer, result));
    room.resize(static_cast<std::size_t>(writer.bytes()));
    return room;
}

/// Units of a stream, to be joined in other orders.
struct unit_list : std::vector<bytes> {
    using std::vector<bytes>::vector;

    bytes annexb() const
    {
        bytes all;
        for (const bytes& unit : *this) {
            all.insert(all.end(), {0, 0, 0, 1});
            all.insert(all.end(), unit.begin(), unit.end());
        }
        return all;
    }
};

/// A slice with data of its own: a byte and the stop bit.
bytes with_data(const bytes& slice, unsigned char data)
{
    bytes made(slice.begin(), slice.end() - 1);
    made.push_back(static_cast<unsigned char>(data | 0x40));
    made.push_back(0x80);
    return made;
}

/// SPS, PPS, an IDR picture and so many others, whose data are told apart.
unit_list pictures(std::uint32_t count)
{
    made_stream stream;
    stream.add_sets().add(h264::idr());
    for (std::uint32_t i = 1; i < count; ++i)
        stream.add(h264::reference(i % 16));
    unit_list units(stream.units.begin(), stream.units.end());
    for (std::size_t i = 2; i < units.size(); ++i)
        units[i] = with_data(units[i], static_cast<unsigned char>(i));
    return units;
}

class Diff : public testing::Test {
protected:
    tool_result run(const bytes& a, const bytes& b, const arguments& more = {}, const tool_input& input = {})
    {
        arguments all = {"diff", folder.write("a", a), folder.write("b", b)};
        all.insert(all.end(), more.begin(), more.end());
        return run_tool(all, input);
    }

    /// The object of --json; the status has to go with it.
    json differences(const bytes& a, const bytes& b, arguments more = {})
    {
        more.push_back("--json");
        const tool_result result = run(a, b, more);
        EXPECT_EQ("", result.err);
        json found = json::parse(result.out);
        EXPECT_EQ(found["same"] ? 0 : 1, result.status);
        return found;
    }

    static std::string counts(const json& found)
    {
        const json& n = found["access_units"];
        return n["same"].dump() + " same, " + n["changed"].dump() + " changed, " + n["removed"].dump() + " removed, " +
               n["inserted"].dump() + " inserted, " + n["moved"].dump() + " moved";
    }

    support::temporary_folder folder;
};

class DiffStream : public Diff, public testing::WithParamInterface<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, DiffStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

TEST_P(DiffStream, IsTheSameAsItself)
{
    const std::string path = GetParam().string();
    const tool_result result = run_tool({"diff", path, path});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.err);
    EXPECT_NE(std::string::npos, result.out.find("The streams are the same.")) << result.out;
    EXPECT_EQ(std::string::npos, result.out.find("Framing, which")) << result.out;
}

TEST_P(DiffStream, IsTheSameInAnotherFraming)
{
    if (support::is_broken(GetParam()))
        GTEST_SKIP();
    const std::string other = folder.path("other");
    ASSERT_EQ(0, run_tool({"convert", GetParam().string(), other, "--to", "length4"}).status & ~1);
    const tool_result result = run_tool({"diff", GetParam().string(), other});
    EXPECT_EQ(0, result.status) << result.out;
    EXPECT_NE(std::string::npos, result.out.find("Framing, which is no difference")) << result.out;
}

TEST_P(DiffStream, SaysWhatWasCutOff)
{
    if (support::is_broken(GetParam()))
        GTEST_SKIP();
    const std::string part = folder.path("part");
    const tool_result made = run_tool({"cut", GetParam().string(), part, "--from", "3", "--to", "9"});
    if (made.status == 2)
        GTEST_SKIP() << "it has fewer pictures";
    const json found = json::parse(run_tool({"diff", GetParam().string(), part, "--json"}).out);
    EXPECT_EQ(0, found["access_units"]["inserted"]) << counts(found);
    EXPECT_EQ(0, found["access_units"]["moved"]) << counts(found);
    EXPECT_EQ(found["a"]["access_units"].get<int>() - found["b"]["access_units"].get<int>(),
              found["access_units"]["removed"]);
    EXPECT_LE(found["access_units"]["changed"], 1) << "the first one may have got parameter sets";
}

TEST_F(Diff, OneElementOfTheSps)
{
    made_stream a;
    a.add_sets().add(h264::idr());
    made_stream b;
    b.sps().level_idc = 31;
    b.add_sets().add(h264::idr());
    const json found = differences(a.bytes, b.bytes);
    EXPECT_EQ("0 same, 1 changed, 0 removed, 0 inserted, 0 moved", counts(found));
    ASSERT_EQ(1U, found["elements"].size());
    EXPECT_EQ(json({{"kind", "changed"},
                    {"path", "seq_parameter_set_rbsp.seq_parameter_set_data.level_idc"},
                    {"count", 1},
                    {"offset_a", 0},
                    {"offset_b", 0},
                    {"examples", {{{"a", "30"}, {"b", "31"}}}}}),
              found["elements"][0]);
    EXPECT_EQ(0U, found["units"].size());
    for (const char* const ignored : {"level_idc", "seq_parameter_set_data.*", "frame_num,level_*"})
        EXPECT_TRUE(differences(a.bytes, b.bytes, {"--ignore", ignored})["same"]) << ignored;
    EXPECT_FALSE(differences(a.bytes, b.bytes, {"--ignore", "frame_num", "--ignore", "profile_idc"})["same"]);
}

TEST_F(Diff, AStructureThatOneHasIsOneDifference)
{
    made_stream a;
    a.add_sets().add(h264::idr());
    made_stream b(h264::timed_sps_data(0, 20));
    b.add_sets().add(h264::idr());
    const json found = differences(a.bytes, b.bytes);
    std::map<std::string, std::string> kinds;
    for (const json& element : found["elements"])
        kinds[element["path"].get<std::string>()] = element["kind"].get<std::string>();
    const std::string sps = "seq_parameter_set_rbsp.seq_parameter_set_data.";
    EXPECT_EQ((std::map<std::string, std::string>{{sps + "vui_parameters_present_flag", "changed"},
                                                  {sps + "vui_parameters", "only_b"}}),
              kinds);
    const json other_way = differences(b.bytes, a.bytes);
    EXPECT_EQ("only_a", other_way["elements"][1]["kind"]);
}

TEST_F(Diff, SliceDataAreComparedByTheirBits)
{
    const unit_list a = pictures(4);
    unit_list b = a;
    b[4] = with_data(h264::made_stream().add_sets().add(h264::reference(2)).units[2], 0x11);
    const json found = differences(a.annexb(), b.annexb());
    EXPECT_EQ("3 same, 1 changed, 0 removed, 0 inserted, 0 moved", counts(found));
    ASSERT_EQ(1U, found["elements"].size()) << found["elements"];
    EXPECT_EQ("slice_layer_without_partitioning_rbsp.slice_data", found["elements"][0]["path"]);
    EXPECT_TRUE(differences(a.annexb(), b.annexb(), {"--ignore", "slice_data"})["same"]);
}

TEST_F(Diff, SliceDataBehindALongerHeaderAreTheSame)
{
    made_stream stream;
    stream.add_sets().add(h264::idr());
    unit_list a(stream.units.begin(), stream.units.end());
    unit_list b = a;
    b[2] = edited(a[2], stream, "idr_pic_id", 1000);
    const json found = differences(a.annexb(), b.annexb());
    ASSERT_EQ(1U, found["elements"].size()) << found["elements"];
    EXPECT_EQ("slice_layer_without_partitioning_rbsp.slice_header.idr_pic_id", found["elements"][0]["path"]);
    EXPECT_EQ("1000", found["elements"][0]["examples"][0]["b"]);
}

TEST_F(Diff, AccessUnitsAreRemovedInsertedAndMoved)
{
    const unit_list a = pictures(8);
    unit_list removed = a;
    removed.erase(removed.begin() + 4, removed.begin() + 6); // pictures 2 and 3
    const json found = differences(a.annexb(), removed.annexb());
    EXPECT_EQ("6 same, 0 changed, 2 removed, 0 inserted, 0 moved", counts(found));
    ASSERT_EQ(1U, found["stretches"].size());
    EXPECT_EQ(json({{"kind", "only_a"},
                    {"first_a", 2},
                    {"first_b", 2},
                    {"count", 2},
                    {"offset_a", unit_list(a.begin(), a.begin() + 4).annexb().size()},
                    {"offset_b", unit_list(a.begin(), a.begin() + 4).annexb().size()}}),
              found["stretches"][0]);
    const json inserted = differences(removed.annexb(), a.annexb());
    EXPECT_EQ("6 same, 0 changed, 0 removed, 2 inserted, 0 moved", counts(inserted));
    EXPECT_EQ("only_b", inserted["stretches"][0]["kind"]);

    unit_list moved = a;
    std::rotate(moved.begin() + 4, moved.begin() + 5, moved.begin() + 9); // picture 2 behind 6
    const json of_moved = differences(a.annexb(), moved.annexb());
    EXPECT_EQ("7 same, 0 changed, 0 removed, 0 inserted, 1 moved", counts(of_moved));
    EXPECT_EQ(2, of_moved["stretches"][0]["first_a"]);
    EXPECT_EQ(6, of_moved["stretches"][0]["first_b"]);
}

TEST_F(Diff, UnitsAreRemovedInsertedAndMoved)
{
    unit_list a = pictures(4);
    const bytes delimiter = {9, 0x10};
    const bytes message = {6, 5, 17, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 42, 0x80};
    unit_list b = a;
    b.insert(b.begin(), delimiter);
    const json inserted = differences(a.annexb(), b.annexb());
    EXPECT_EQ("3 same, 1 changed, 0 removed, 0 inserted, 0 moved", counts(inserted));
    ASSERT_EQ(1U, inserted["units"].size());
    EXPECT_EQ("only_b", inserted["units"][0]["kind"]);
    EXPECT_EQ("access_unit_delimiter_rbsp", inserted["units"][0]["path"]);
    EXPECT_TRUE(differences(a.annexb(), b.annexb(), {"--ignore", "access_unit_delimiter_rbsp"})["same"]);

    unit_list with_early = a;
    with_early.insert(with_early.begin() + 3, message); // before picture 1
    unit_list with_late = a;
    with_late.insert(with_late.begin() + 5, message); // before picture 3
    const json moved = differences(with_early.annexb(), with_late.annexb());
    EXPECT_EQ("2 same, 2 changed, 0 removed, 0 inserted, 0 moved", counts(moved));
    ASSERT_EQ(1U, moved["units"].size()) << moved["units"];
    EXPECT_EQ("moved", moved["units"][0]["kind"]);
    EXPECT_EQ("sei_rbsp.sei_message.sei_payload.user_data_unregistered", moved["units"][0]["path"]);
    EXPECT_TRUE(differences(with_early.annexb(), with_late.annexb(), {"--ignore", "user_data_unregistered"})["same"]);

    unit_list turned = with_early;
    turned.insert(turned.begin() + 3, bytes{6, 3, 1, 0x2A, 0x80}); // filler payload before the user data
    unit_list other_way = turned;
    std::swap(other_way[3], other_way[4]);
    const json within = differences(turned.annexb(), other_way.annexb());
    ASSERT_EQ(1U, within["units"].size()) << within["units"];
    EXPECT_EQ("moved", within["units"][0]["kind"]);
}

TEST_F(Diff, BytesInARowAreOneElement)
{
    unit_list a = pictures(2);
    bytes message = {6, 5, 20, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 50, 51, 52, 53, 0x80};
    a.insert(a.begin() + 2, message);
    unit_list b = a;
    b[2][20] = 60;
    const json found = differences(a.annexb(), b.annexb());
    ASSERT_EQ(1U, found["elements"].size()) << found["elements"];
    EXPECT_EQ(json({{{"a", "4 bytes"}, {"b", "others"}}}), found["elements"][0]["examples"]);
    b[2].insert(b[2].begin() + 20, 61);
    b[2][2] = 21;
    const json longer = differences(a.annexb(), b.annexb());
    ASSERT_EQ(1U, longer["elements"].size()) << longer["elements"];
    EXPECT_EQ(json({{{"a", "4 bytes"}, {"b", "5 bytes"}}}), longer["elements"][0]["examples"]);
}

TEST_F(Diff, WhatLiesAroundUnitsIsNoDifference)
{
    const unit_list a = pictures(3);
    support::stream_builder b;
    for (const bytes& unit : a)
        b.start_code().raw(unit).zeros(3);
    const tool_result result = run(a.annexb(), b);
    EXPECT_EQ(0, result.status);
    EXPECT_NE(std::string::npos, result.out.find("A has 5 start codes of 4 bytes; B has 1 start code")) << result.out;
    EXPECT_NE(std::string::npos, result.out.find("11 zero bytes")) << result.out;
}

TEST_F(Diff, TheTextIsAScreenOfLines)
{
    const auto lines = [](const tool_result& result) { return std::count(result.out.begin(), result.out.end(), '\n'); };
    const std::filesystem::path streams = ORV_TEST_STREAMS;
    for (const char* const a : {"hrd_vbr_aud.264", "two_sizes.264", "pulldown32.264", "broken_cut.264"})
        for (const char* const b : {"open_gop_frame_packing.264", "high422_10_mbaff_tff.264", "baseline_slices.264"}) {
            const tool_result result = run_tool({"diff", streams / a, streams / b});
            EXPECT_EQ(1, result.status);
            EXPECT_LE(lines(result), 40) << result.out;
        }
    EXPECT_GT(lines(run_tool({"diff", "--all", streams / "hrd_vbr_aud.264", streams / "open_gop_frame_packing.264"})),
              60);
}

TEST_F(Diff, TheFirstOfMorePlacesStandsWithSomeValues)
{
    made_stream stream;
    stream.add_sets().add(h264::idr());
    for (std::uint32_t i = 1; i < 6; ++i)
        stream.add(h264::reference(i));
    unit_list a(stream.units.begin(), stream.units.end());
    unit_list b = a;
    for (std::size_t i = 3; i < b.size(); ++i)
        b[i] = edited(a[i], stream, "slice_qp_delta", static_cast<std::int64_t>(i));
    const json found = differences(a.annexb(), b.annexb());
    ASSERT_EQ(1U, found["elements"].size()) << found["elements"];
    const json& qp = found["elements"][0];
    EXPECT_EQ("slice_layer_without_partitioning_rbsp.slice_header.slice_qp_delta", qp["path"]);
    EXPECT_EQ(5, qp["count"]);
    EXPECT_EQ(3U, qp["examples"].size());
    EXPECT_EQ(unit_list(a.begin(), a.begin() + 3).annexb().size(), qp["offset_a"]);
}

TEST_F(Diff, WhatCannotBeComparedIsTrouble)
{
    const unit_list a = pictures(2);
    const std::string path = folder.write("a", a.annexb());
    const auto expect_trouble = [](const arguments& all, int status, const std::string& why) {
        const tool_result result = run_tool(all);
        EXPECT_EQ(status, result.status);
        EXPECT_NE(std::string::npos, result.err.find(why)) << result.err;
    };
    expect_trouble({"diff", path, folder.path("none")}, 2, "No such file");
    expect_trouble({"diff", path, "-"}, 2, "both have to be files");
    expect_trouble({"diff", "-", path}, 2, "both have to be files");
    expect_trouble({"diff", path}, 2, "B is required");
    expect_trouble({"diff", path, folder.write("text", {'R', 'e', 'a', 'd', ' ', 'm', 'e', '\n'})}, 2,
                   "no H.264 stream");
    expect_trouble({"diff", path, path, "--max-unit", "3"}, 2, "too large to be compared");
    expect_trouble({"diff", path, folder.write("wave", {'R', 'I', 'F', 'F', 4, 0, 0, 0, 'W', 'A', 'V', 'E'})}, 3,
                   "WAV");
}

TEST_F(Diff, EmptyStreamsAreTheSame)
{
    EXPECT_EQ(0, run({}, {}).status);
    const json found = differences({}, pictures(3).annexb());
    EXPECT_EQ("0 same, 0 changed, 0 removed, 3 inserted, 0 moved", counts(found));
}

TEST_F(Diff, DamagedStreamsAreComparedAsFarAsTheyCanBeRead)
{
    const bytes whole = read_file(std::filesystem::path(ORV_TEST_STREAMS) / "open_gop_frame_packing.264");
    std::mt19937 random(20261122);
    for (int round = 0; round < 60; ++round) {
        bytes damaged = whole;
        for (int i = 0; i < 1 << round % 8; ++i)
            damaged[random() % damaged.size()] = static_cast<unsigned char>(random());
        damaged.resize(damaged.size() - random() % 2000);
        tool_input input;
        input.max_seconds = 20;
        const tool_result result = run(whole, damaged, round % 2 == 0 ? arguments{} : arguments{"--json"}, input);
        EXPECT_EQ(1, result.status) << "round " << round << ": " << result.err;
        EXPECT_EQ("", result.err);
    }
}

TEST_F(Diff, ManySmallUnitsTakeNoLongTime)
{
    std::mt19937 random(7);
    const auto many = [&] {
        support::stream_builder made;
        for (int i = 0; i < 200'000; ++i) // of types without a meaning, two values: one access unit after the other
            made.annexb_unit(static_cast<unsigned char>(random() % 64 == 0 ? 9 : 24 + random() % 8),
                             {static_cast<unsigned char>(1 + random() % 2)});
        return made.made();
    };
    tool_input input;
    input.max_seconds = 60;
    EXPECT_EQ(1, run(many(), many(), {}, input).status);
}

} // namespace
