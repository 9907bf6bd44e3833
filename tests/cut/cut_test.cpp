// orv-h264 cut as a user runs it: the bytes, the messages, the exit status, and what lies in the folder afterwards.
#include "support/made_stream.h"
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <numeric>
#include <random>

namespace {

namespace h264 = orv_utils_v4::h264;
using h264::made_stream;
using support::bytes;
using support::read_file;
using support::run_tool;
using support::tool_input;
using support::tool_result;

using arguments = std::vector<std::string>;

bytes joined(const std::vector<bytes>& units)
{
    bytes all;
    for (const bytes& unit : units) {
        all.insert(all.end(), {0, 0, 0, 1});
        all.insert(all.end(), unit.begin(), unit.end());
    }
    return all;
}

/// The units of the stream at these places.
bytes units_at(const made_stream& stream, const std::vector<std::size_t>& places)
{
    std::vector<bytes> units;
    units.reserve(places.size());
    for (const std::size_t place : places)
        units.push_back(stream.units.at(place));
    return joined(units);
}

/// SPS, PPS, an IDR picture and five others: unit i + 2 is picture i.
struct six_pictures : made_stream {
    six_pictures()
    {
        add_sets().add(h264::idr());
        for (std::uint32_t i = 1; i < 6; ++i)
            add(h264::reference(i));
    }
};

class Cut : public testing::Test {
protected:
    tool_result run(const bytes& stream, const arguments& more, const tool_input& input = {})
    {
        arguments all = {"cut", folder.write("in", stream), out};
        all.insert(all.end(), more.begin(), more.end());
        return run_tool(all, input);
    }

    /// The cut; it has to succeed. What it told goes to `told`.
    bytes cut(const bytes& stream, const arguments& more)
    {
        const tool_result result = run(stream, more);
        EXPECT_EQ(0, result.status) << result.err;
        told = result.err;
        return read_file(out);
    }

    void expect_refused(const bytes& stream, const arguments& more, int status, const std::string& why)
    {
        const tool_result result = run(stream, more);
        EXPECT_EQ(status, result.status);
        EXPECT_NE(std::string::npos, result.err.find(why)) << result.err;
        EXPECT_FALSE(std::filesystem::exists(out));
        EXPECT_EQ(1, folder.files()) << "the input alone";
    }

    void expect_told(const std::string& what) { EXPECT_NE(std::string::npos, told.find(what)) << told; }

    support::temporary_folder folder;
    std::string out = folder.path("out");
    std::string told;
};

struct unit_list final : h264::split_sink {
    void unit(const h264::split_unit& u) override { units.emplace_back(u.bytes, u.bytes + u.size); }
    void gap(const h264::split_gap& g) override { ADD_FAILURE() << "bytes at " << g.offset << " are no unit"; }

    std::vector<bytes> units;
};

std::vector<bytes> split(const bytes& stream)
{
    unit_list list;
    h264::unit_splitter splitter(h264::framing::annex_b);
    splitter.push(stream.data(), stream.size(), list);
    splitter.flush(list);
    return list.units;
}

bool is_set(const bytes& unit)
{
    const unsigned type = unit[0] & 0x1FU;
    return type == 7 || type == 8 || type == 13 || type == 15;
}

class CutStream : public Cut, public testing::WithParamInterface<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, CutStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

TEST_P(CutStream, WithoutPlacesIsTheSameBytes)
{
    const bytes stream = read_file(GetParam());
    const tool_result result = run(stream, {});
    if (support::is_broken(GetParam())) {
        EXPECT_EQ(1, result.status) << "and what is broken is told";
        return;
    }
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.err);
    EXPECT_TRUE(stream == read_file(out));
}

TEST_P(CutStream, TwoCutsAtOnePlaceHaveEachByteOnce)
{
    if (support::is_broken(GetParam()))
        GTEST_SKIP();
    const bytes stream = read_file(GetParam());
    for (const char* const place : {"5", "@4000"}) {
        SCOPED_TRACE(place);
        bytes head = cut(stream, {"--to", place});
        const tool_result rest = run(stream, {"--from", place});
        if (rest.status == 2)
            continue; // it has fewer pictures
        const bytes tail = read_file(out);
        ASSERT_GT(head.size(), 0U);
        ASSERT_TRUE(std::equal(head.begin(), head.end(), stream.begin()));
        const bytes wanted(stream.begin() + static_cast<std::ptrdiff_t>(head.size()), stream.end());
        const std::vector<bytes> expected = split(wanted);
        std::size_t next = 0;
        for (const bytes& unit : split(tail))
            if (next < expected.size() && unit == expected[next])
                ++next;
            else
                EXPECT_TRUE(is_set(unit)) << "which is added";
        EXPECT_EQ(expected.size(), next);
    }
}

TEST_F(Cut, BeginsWithTheSetsInForceAndEndsBeforeTo)
{
    const six_pictures stream;
    EXPECT_EQ(units_at(stream, {0, 1, 4, 5}), cut(stream.bytes, {"--from", "2", "--to", "4"}));
    EXPECT_EQ(units_at(stream, {0, 1, 2, 3}), cut(stream.bytes, {"--to", "2"}));
    EXPECT_EQ("", told);
    EXPECT_EQ(units_at(stream, {0, 1, 7}), cut(stream.bytes, {"--from", "5"}));
}

TEST_F(Cut, NamesAPictureByTheOffsetAtOrBehindWhichItBegins)
{
    const six_pictures stream;
    const std::size_t third = units_at(stream, {0, 1, 2, 3}).size();
    const std::string decimal = "@" + std::to_string(third);
    char hexadecimal[32];
    std::snprintf(hexadecimal, sizeof hexadecimal, "@0x%zx", third);
    const bytes wanted = units_at(stream, {0, 1, 4, 5, 6, 7});
    EXPECT_EQ(wanted, cut(stream.bytes, {"--from", decimal}));
    EXPECT_EQ(wanted, cut(stream.bytes, {"--from", hexadecimal}));
    EXPECT_EQ(wanted, cut(stream.bytes, {"--from", "@" + std::to_string(third - 1)})) << "inside of the one before";
    EXPECT_EQ(units_at(stream, {0, 1, 2, 3}), cut(stream.bytes, {"--to", decimal}));
    EXPECT_EQ(units_at(stream, {0, 1, 4}), cut(stream.bytes, {"--from", decimal, "--to", "3"})) << "kinds go together";
}

TEST_F(Cut, SetsThatTheFirstAccessUnitCarriesAreNotDoubled)
{
    six_pictures stream;
    stream.add_sets().add(h264::idr(1)).add(h264::reference(1));
    EXPECT_EQ(units_at(stream, {8, 9, 10, 11}), cut(stream.bytes, {"--from", "6"}));
    EXPECT_EQ("", told) << "an IDR picture is a clean start";
}

TEST_F(Cut, SetsOfTheFirstAccessUnitReplaceThoseOfTheirId)
{
    six_pictures stream;
    stream.add(h264::pps_unit(1)); // unit 8
    stream.sps().level_idc = 31;
    stream.add(unit_of(7, stream.sets.sps)).add(h264::idr(1)); // 9, 10
    // The SPS in force goes, PPS 0 and PPS 1 come behind the new one, which they name. PPS 1 is the access unit's own.
    EXPECT_EQ(units_at(stream, {8, 9, 1, 10}), cut(stream.bytes, {"--from", "6"}));
}

TEST_F(Cut, SetsComeBehindTheDelimiter)
{
    made_stream stream;
    stream.add_bytes(9, {0x10}).add_sets().add(h264::idr()); // 0 to 3
    stream.add_bytes(9, {0x10}).add(h264::reference(1));     // 4, 5
    EXPECT_EQ(units_at(stream, {4, 1, 2, 5}), cut(stream.bytes, {"--from", "1"}));
}

TEST_F(Cut, OnlyTheLatestSetOfAnIdComes)
{
    six_pictures stream;
    stream.sps().level_idc = 31;
    stream.add_sets().add(h264::idr(1)).add(h264::reference(1)); // 8 to 11
    EXPECT_EQ(units_at(stream, {8, 9, 11}), cut(stream.bytes, {"--from", "7"}));
}

TEST_F(Cut, UnitsKeepTheirStartCodesAndPadding)
{
    const six_pictures stream;
    bytes in = joined({stream.units[0], stream.units[1], stream.units[2]});
    bytes wanted = in;
    for (const std::size_t i : {3U, 4U}) {
        const bytes piece = support::stream_builder().zeros(5).start_code().raw(stream.units[i]);
        in.insert(in.end(), piece.begin(), piece.end());
        if (i == 3)
            wanted.insert(wanted.end(), piece.begin(), piece.end());
    }
    wanted.insert(wanted.end(), 4, 0); // what is before the start code of four bytes belongs to the unit before
    EXPECT_EQ(wanted, cut(in, {"--to", "2"}));
    const bytes tail = cut(in, {"--from", "2"});
    EXPECT_EQ(joined({stream.units[0], stream.units[1], stream.units[4]}), tail);
}

TEST_F(Cut, LengthPrefixesStay)
{
    const six_pictures stream;
    const auto prefixed = [&](const std::vector<std::size_t>& places) {
        support::stream_builder made;
        for (const std::size_t place : places)
            made.prefix(2, static_cast<std::uint32_t>(stream.units[place].size())).raw(stream.units[place]);
        return made.made();
    };
    EXPECT_EQ(prefixed({0, 1, 5, 6}),
              cut(prefixed({0, 1, 2, 3, 4, 5, 6, 7}), {"--from", "3", "--to", "5", "--format", "length2"}));
}

TEST_F(Cut, TimesNameWhatIsShownThenOrLater)
{
    const bytes stream = read_file(std::filesystem::path(ORV_TEST_STREAMS) / "hrd_vbr_aud.264"); // 25 pictures a second
    const bytes from_number = cut(stream, {"--from", "50"});
    EXPECT_EQ("", told) << "an IDR picture";
    const nlohmann::json row = nlohmann::json::parse([&] {
        const tool_result rows = run_tool({"frames", "--json", folder.path("in")});
        std::string line;
        std::istringstream lines(rows.out);
        for (int i = 0; i <= 51; ++i) // a line about the stream comes first
            std::getline(lines, line);
        return line;
    }());
    ASSERT_EQ(50, row["number"]);
    const double seconds = row["pts"]["value"].get<double>();
    char plain[32];
    std::snprintf(plain, sizeof plain, "%.6fs", seconds - 0.001);
    char clock[32];
    std::snprintf(clock, sizeof clock, "0:00:%09.6f", seconds - 0.001);
    EXPECT_TRUE(from_number == cut(stream, {"--from", plain}));
    EXPECT_TRUE(from_number == cut(stream, {"--from", clock}));
    EXPECT_TRUE(cut(stream, {"--to", "50"}) == cut(stream, {"--to", plain}));
}

TEST_F(Cut, AStreamWithoutTimesTakesARate)
{
    const six_pictures stream;
    expect_refused(stream.bytes, {"--from", "0.1s"}, 2, "nothing tells when its pictures are shown");
    EXPECT_EQ(units_at(stream, {0, 1, 5, 6, 7}), cut(stream.bytes, {"--from", "0.12s", "--rate", "25"}));
    EXPECT_EQ(units_at(stream, {0, 1, 5, 6}),
              cut(stream.bytes, {"--from", "0.05s", "--to", "0:00.08", "--rate", "60000/1001"}));
}

TEST_F(Cut, KeyGoesBackToWhereDecodingCanBegin)
{
    six_pictures stream;
    stream.add(h264::idr(1)).add(h264::reference(1)).add(h264::reference(2)); // 8 to 10, pictures 6 to 8
    EXPECT_EQ(units_at(stream, {0, 1, 8, 9, 10}), cut(stream.bytes, {"--from", "8", "--key"}));
    EXPECT_EQ("", told);
    EXPECT_EQ(units_at(stream, {0, 1, 8, 9}), cut(stream.bytes, {"--from", "7", "--to", "8", "--key"}));
    EXPECT_EQ(units_at(stream, {0, 1, 2, 3}), cut(stream.bytes, {"--from", "1", "--to", "2", "--key"}));
}

TEST_F(Cut, KeyWithoutAKeyPictureStaysAndSaysSo)
{
    made_stream stream;
    stream.add_sets();
    for (std::uint32_t i = 0; i < 4; ++i)
        stream.add(h264::reference(i));
    EXPECT_EQ(units_at(stream, {0, 1, 4, 5}), cut(stream.bytes, {"--from", "2", "--key"}));
    expect_told("no key picture at or before the start");
    expect_told("begins with no key picture, and has none: its 2 pictures");
}

TEST_F(Cut, OnlyWritesUnitsWithoutSets)
{
    const six_pictures stream;
    EXPECT_EQ(units_at(stream, {0, 1}), cut(stream.bytes, {"--only", "sps,pps"}));
    EXPECT_EQ(units_at(stream, {1, 2}), cut(stream.bytes, {"--only", "pps", "--only", "5"}));
    EXPECT_EQ(units_at(stream, {4, 5, 6, 7}), cut(stream.bytes, {"--only", "1", "--from", "2"}));
    EXPECT_EQ("", told) << "nobody decodes that";
}

TEST_F(Cut, APlaceBehindTheEndIsRefused)
{
    const six_pictures stream;
    expect_refused(stream.bytes, {"--from", "6"}, 2, "--from 6 is behind the end: there are 6 pictures in");
    expect_refused(stream.bytes, {"--from", "@100000"}, 2, "--from @100000 is behind the end");
    expect_refused(stream.bytes, {"--from", "7s", "--rate", "25"}, 2, "--from 7s is behind the end");
    expect_refused(stream.bytes, {"--only", "19"}, 2, "there is no unit to write");
    EXPECT_EQ(stream.bytes, cut(stream.bytes, {"--to", "99"}));
    expect_told("the stream ends before --to 99");
}

TEST_F(Cut, AnEndThatIsNotBehindTheStartIsRefused)
{
    const six_pictures stream;
    for (const arguments& places :
         {arguments{"--from", "3", "--to", "3"}, {"--from", "@9", "--to", "@8"}, {"--from", "2s", "--to", "0:01.5"}})
        expect_refused(stream.bytes, places, 2, "--to: it names the first picture that is not written");
    expect_refused(stream.bytes, {"--to", "0"}, 2, "there is no unit to write");
    expect_refused(stream.bytes, {"--from", "3", "--to", "@40"}, 2, "there is no unit to write");
}

TEST_F(Cut, PlacesThatAreNoneAreRefused)
{
    for (const char* const place : {"", "x", "-1", "12.5", "1:60", "60:1:1:1", "1:2.5:3", "s", "1.s", "@", "@0xg",
                                    "@-1", "99999999999999999999", "1.0000000001s", "1e3s"})
        expect_refused({}, {"--from", place}, 2, "is no place");
}

TEST_F(Cut, OptionsThatDoNotGoTogetherAreRefused)
{
    expect_refused({}, {"--base", "--layer", "1"}, 2, "one of --base, --layer and --view is enough");
    expect_refused({}, {"--view", "1", "--layer", "1"}, 2, "one of --base, --layer and --view is enough");
    expect_refused({}, {"--layer", "8"}, 2, "is no layer");
    expect_refused({}, {"--layer", "1,2,3,4"}, 2, "is no layer");
    expect_refused({}, {"--view", "1024"}, 2, "is no view_id");
    expect_refused({}, {"--rate", "0/1"}, 2, "rate");
    const tool_result result = run_tool({"cut", "nowhere", "-", "--json"});
    EXPECT_EQ(2, result.status);
    EXPECT_NE(std::string::npos, result.err.find("taken by OUT")) << result.err;
}

TEST_F(Cut, APipeIsEnoughForNumbersAndOffsets)
{
    const six_pictures stream;
    tool_input input;
    input.piped = stream.bytes;
    EXPECT_EQ(0, run_tool({"cut", "-", out, "--from", "2", "--to", "4"}, input).status);
    EXPECT_EQ(units_at(stream, {0, 1, 4, 5}), read_file(out));
    const tool_result result = run_tool({"cut", "-", "-", "--to", "1"}, input);
    EXPECT_EQ(units_at(stream, {0, 1, 2}), bytes(result.out.begin(), result.out.end()));
    for (const arguments& twice : {arguments{"--key"}, {"--from", "1s"}}) {
        arguments all = {"cut", "-", folder.path("none")};
        all.insert(all.end(), twice.begin(), twice.end());
        const tool_result refused = run_tool(all, input);
        EXPECT_EQ(2, refused.status);
        EXPECT_NE(std::string::npos, refused.err.find("it has to be a file")) << refused.err;
    }
}

TEST_F(Cut, OutMayBeIn)
{
    const six_pictures stream;
    const std::string path = folder.write("stream", stream.bytes);
    EXPECT_EQ(0, run_tool({"cut", path, path, "--from", "0.08s", "--rate", "25"}).status);
    EXPECT_EQ(units_at(stream, {0, 1, 4, 5, 6, 7}), read_file(path));
}

TEST_F(Cut, AnInputWithoutAUnitLeavesOutAsItWas)
{
    std::ofstream(out) << "kept";
    EXPECT_EQ(1, run({}, {}).status);
    EXPECT_EQ("kept", std::string(reinterpret_cast<const char*>(read_file(out).data()), 4));
}

TEST_F(Cut, DamageIsToldWhereItIsWritten)
{
    const six_pictures stream;
    bytes in = units_at(stream, {0, 1, 2, 3});
    const std::size_t junk_at = in.size();
    const bytes junk = support::stream_builder().zeros(3).junk(9); // no start code: bytes between units
    in.insert(in.end(), junk.begin(), junk.end());
    const bytes rest = units_at(stream, {4, 5, 6, 7});
    in.insert(in.end(), rest.begin(), rest.end());
    const tool_result with = run(in, {"--from", "1", "--to", "4"});
    EXPECT_EQ(1, with.status);
    EXPECT_NE(std::string::npos, with.err.find("offset " + std::to_string(junk_at + 3) + ": bytes")) << with.err;
    EXPECT_EQ(units_at(stream, {0, 1, 3, 4, 5}), read_file(out));
    EXPECT_EQ(0, run(in, {"--from", "3"}).status);
    EXPECT_EQ(units_at(stream, {0, 1, 5, 6, 7}), read_file(out));
}

TEST_F(Cut, AUnitThatIsTooLargeStopsItWhereItIsWritten)
{
    const six_pictures stream;
    bytes in = units_at(stream, {0, 1, 2});
    const bytes large = support::stream_builder().zeros(1).start_code().unit(0x21, bytes(3000, 0xEE));
    in.insert(in.end(), large.begin(), large.end());
    const bytes rest = units_at(stream, {4, 5});
    in.insert(in.end(), rest.begin(), rest.end());
    expect_refused(in, {"--max-unit", "1000"}, 1, "nothing is written");
    EXPECT_EQ(units_at(stream, {0, 1, 5}), cut(in, {"--max-unit", "1000", "--from", "2"}));
}

TEST_F(Cut, FieldsOfAFrameStayTogetherButByOffset)
{
    h264::seq_parameter_set_data sps = h264::sps_data();
    sps.frame_mbs_only_flag = false;
    sps.pic_order_cnt_type = 0;
    made_stream stream(sps);
    stream.add_sets().add(h264::top(h264::idr()));   // 0 to 2
    stream.add(h264::bottom(h264::reference(0, 1))); // 3
    for (std::uint32_t i = 1; i < 3; ++i)            // 4 to 7
        stream.add(h264::top(h264::reference(i, 2 * i))).add(h264::bottom(h264::reference(i, 2 * i + 1)));
    EXPECT_EQ(units_at(stream, {0, 1, 4, 5}), cut(stream.bytes, {"--from", "1", "--to", "2"}));
    const auto place = [&](const std::vector<std::size_t>& before) {
        return "@" + std::to_string(units_at(stream, before).size());
    };
    EXPECT_EQ(units_at(stream, {0, 1, 5, 6}),
              cut(stream.bytes, {"--from", place({0, 1, 2, 3, 4}), "--to", place({0, 1, 2, 3, 4, 5, 6})}));
    expect_told("begins with the second field of a frame");
    expect_told("ends with the first field of a frame");
}

TEST_F(Cut, TellsWhatIsShownAcrossTheSeams)
{
    const bytes stream = read_file(std::filesystem::path(ORV_TEST_STREAMS) / "open_gop_frame_packing.264");
    cut(stream, {"--from", "13", "--to", "29"});
    expect_told("offset 5807: begins at a recovery point, which is no IDR picture");
    expect_told("offset 5807: open at its start: 2 pictures behind the first one are shown before it");
    expect_told("offset 13962: open at its end: 2 pictures that are not written are shown before the last one");
    cut(stream, {"--from", "16", "--to", "28"});
    expect_told("offset 8202: begins with no key picture, and has none: its 12 pictures");
    cut(stream, {"--from", "16"});
    expect_told("begins with no key picture: 12 pictures may not be decoded rightly, up to the one at offset 11728");
    EXPECT_EQ(std::string::npos, told.find("open at its end")) << told;
}

TEST_F(Cut, TheSummaryCountsWhatIsWritten)
{
    const six_pictures stream;
    const tool_result result = run(stream.bytes, {"--from", "2", "--to", "4", "--json"});
    const nlohmann::json summary = nlohmann::json::parse(result.out);
    EXPECT_EQ("orv-h264/cut", summary["schema"]);
    EXPECT_EQ("annexb", summary["framing"]);
    EXPECT_EQ(2, summary["first_picture"]);
    EXPECT_EQ(units_at(stream, {0, 1, 2, 3}).size(), summary["first_offset"]);
    EXPECT_EQ(2, summary["pictures"]);
    EXPECT_EQ(2, summary["access_units"]);
    EXPECT_EQ(2, summary["units"]);
    EXPECT_EQ(2, summary["parameter_sets_added"]);
    EXPECT_EQ(0, summary["units_left_out"]);
    EXPECT_EQ(std::filesystem::file_size(out), summary["bytes"]);
    ASSERT_EQ(1U, summary["notes"].size());
    EXPECT_EQ(summary["first_offset"], summary["notes"][0]["offset"]);
}

/// A base view and two others, of which view 2 refers to view 1. Each access unit has a slice of all three.
class CutViews : public Cut {
protected:
    CutViews()
    {
        subset.seq_parameter_set_data = h264::sps_data();
        subset.seq_parameter_set_data.profile_idc = 118;
        h264::seq_parameter_set_mvc_extension& views = subset.seq_parameter_set_mvc_extension;
        views.num_views_minus1 = 3;
        views.views.resize(4);
        for (std::uint32_t i = 0; i < 4; ++i)
            views.views[i].view_id = 10 * i;
        h264::inter_view_references& of_20 = views.views[2].references;
        of_20.num_anchor_refs_l0 = 1;
        of_20.anchor_ref_l0.grow();
        of_20.anchor_ref_l0.back() = 10;
        views.levels.resize(1);
        views.levels[0].level_idc = 30;
        views.levels[0].operation_points.resize(1);
        views.levels[0].operation_points[0].applicable_op_target_view_id = {0};
        stream.sets.sets.subset_sps[0] = &subset;
        stream.add_sets().add(unit_of(15, subset)); // 0 to 2
        for (std::uint32_t i = 0; i < 2; ++i) {     // 3 to 6, 7 to 10
            stream.add(i == 0 ? h264::idr() : h264::reference(i));
            for (const unsigned view : {10U, 20U, 30U})
                stream.add_view(static_cast<std::uint16_t>(view));
        }
    }

    h264::subset_seq_parameter_set_rbsp subset;
    made_stream stream;
};

TEST_F(CutViews, BaseHasNoUnitOfOthers)
{
    EXPECT_EQ(units_at(stream, {0, 1, 3, 7}), cut(stream.bytes, {"--base"}));
    EXPECT_EQ(units_at(stream, {0, 1, 3, 7}), cut(stream.bytes, {"--view", "0"})) << "it is the base view";
    EXPECT_EQ(units_at(stream, {0, 1, 7}), cut(stream.bytes, {"--base", "--from", "1"}));
}

TEST_F(CutViews, AViewComesWithThoseThatItRefersTo)
{
    EXPECT_EQ(units_at(stream, {0, 1, 2, 3, 4, 7, 8}), cut(stream.bytes, {"--view", "10"}));
    EXPECT_EQ(units_at(stream, {0, 1, 2, 3, 4, 5, 7, 8, 9}), cut(stream.bytes, {"--view", "20"}));
    EXPECT_EQ(units_at(stream, {0, 1, 2, 3, 6, 7, 10}), cut(stream.bytes, {"--view", "30"}));
    EXPECT_EQ(units_at(stream, {0, 2, 1, 7, 10}), cut(stream.bytes, {"--view", "30", "--from", "1"}));
}

TEST_F(CutViews, AViewThatIsNotThereIsRefused)
{
    expect_refused(stream.bytes, {"--view", "40"}, 2, "there is no view of view_id 40");
    expect_refused(six_pictures().bytes, {"--view", "1"}, 2, "there is no view of view_id 1");
    expect_refused(six_pictures().bytes, {"--layer", "1"}, 2, "there is no layer of dependency_id 1");
}

TEST_F(Cut, MemoryStaysBounded)
{
    tool_input input;
    input.piped = read_file(std::filesystem::path(ORV_TEST_STREAMS) / "hrd_vbr_aud.264");
    input.repeat = 1500; // 73 MB
#ifndef ORV_TEST_SANITIZED
    input.max_memory = std::size_t{64} << 20;
#endif
    const tool_result result = run_tool({"cut", "-", out, "--from", "10"}, input);
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_GT(std::filesystem::file_size(out), input.piped->size() * 1499);
}

TEST_F(Cut, DamagedStreamsEndWell)
{
    const bytes whole = read_file(std::filesystem::path(ORV_TEST_STREAMS) / "open_gop_frame_packing.264");
    std::mt19937 random(20261122);
    const std::vector<arguments> ways = {{"--from", "7", "--to", "30", "--key"},
                                         {"--base", "--from", "@3000"},
                                         {"--from", "0.3s", "--to", "0.9s"},
                                         {"--layer", "0,0,0"}};
    for (int round = 0; round < 60; ++round) {
        bytes damaged = whole;
        for (int i = 0; i < 1 << round % 8; ++i)
            damaged[random() % damaged.size()] = static_cast<unsigned char>(random());
        damaged.resize(damaged.size() - random() % 2000);
        tool_input input;
        input.max_seconds = 20;
        const tool_result result = run(damaged, ways[static_cast<std::size_t>(round) % ways.size()], input);
        EXPECT_GE(result.status, 0) << "round " << round;
        EXPECT_LE(result.status, 2) << "round " << round;
    }
}

} // namespace
