// orv-h264 convert with decoder configuration records: made of a stream, and taken for samples.
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

namespace h264 = orv_utils_v4::h264;
using support::aud;
using support::bytes;
using support::idr_slice;
using support::pps;
using support::read_file;
using support::run_tool;
using support::sei;
using support::sps;
using support::stream_builder;
using support::tool_result;

const std::string movie = ORV_TEST_STREAMS "/main_bpyramid_weighted.264";

// Its parameter sets.
const bytes real_sps = {0x4D, 0x40, 0x0B, 0xEC, 0xA1, 0x82, 0xB6, 0x02, 0x20, 0x00, 0x00,
                        0x03, 0x00, 0x20, 0x00, 0x00, 0x06, 0x51, 0xE2, 0x85, 0x32, 0xC0};
const bytes real_pps = {0xE9, 0x38, 0x64, 0xB2};
const bytes other_pps = {0xE9, 0x38, 0x24, 0xB2};
// The begin of slices of its first macroblock, I and P, which name the PPS 0.
const bytes idr = {0x88, 0x84, 0x00, 0x33, 0x55};
const bytes p_slice = {0x9A, 0x24, 0x55, 0x55};
const bytes user_data = support::sei_rbsp({{4, {1, 2, 3}}});
constexpr unsigned char p_header = support::header_byte(2, 1);

bytes record_of(unsigned char length_size, const bytes& pps_payload = real_pps)
{
    return stream_builder()
        .raw({1, 0x4D, 0x40, 0x0B, static_cast<unsigned char>(0xFC | (length_size - 1)), 0xE1})
        .prefixed_unit(2, sps, real_sps)
        .raw({1})
        .prefixed_unit(2, pps, pps_payload);
}

class ConvertRecord : public testing::Test {
protected:
    tool_result run(const std::vector<std::string>& arguments, const bytes& input)
    {
        std::vector<std::string> all = {"convert", folder.write("in", input)};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return run_tool(all);
    }
    std::string message(const std::string& text) { return "orv-h264: " + folder.path("in") + ": " + text + "\n"; }

    /// An IDR picture and others in samples, out in Annex B with the parameter sets of a record.
    bytes with_sets(const bytes& samples, const bytes& record = record_of(4))
    {
        const std::string from = folder.write("record", record);
        const tool_result result =
            run({out, "--to", "annexb", "--format", "length4", "--parameter-sets", from}, samples);
        EXPECT_EQ("", result.err);
        EXPECT_EQ(0, result.status);
        return read_file(out);
    }

    support::temporary_folder folder;
    std::string out = folder.path("out");
    std::string avcc = folder.path("out.avcc");
};

class annexb_builder {
public:
    annexb_builder& unit(unsigned char header, const bytes& payload)
    {
        stream.zeros(1).annexb_unit(header, payload);
        return *this;
    }
    annexb_builder& sets(const bytes& pps_payload = real_pps) { return unit(sps, real_sps).unit(pps, pps_payload); }
    const bytes& made() const { return stream.made(); }
    operator const bytes&() const { return stream.made(); }

private:
    stream_builder stream;
};

/// The units of an Annex B stream that are no parameter sets.
struct other_units final : h264::split_sink {
    explicit other_units(const bytes& stream)
    {
        h264::unit_splitter splitter(h264::framing::annex_b);
        splitter.push(stream.data(), stream.size(), *this);
        splitter.flush(*this);
    }
    void unit(const h264::split_unit& u) override
    {
        constexpr unsigned sets[] = {7, 8, 13, 15, 16};
        if (std::find(std::begin(sets), std::end(sets), u.bytes[0] & 0x1FU) == std::end(sets))
            units.emplace_back(u.bytes, u.bytes + u.size);
    }
    void gap(const h264::split_gap& gap) override { static_cast<void>(gap); }

    std::vector<bytes> units;
};

bytes length4(const std::vector<std::pair<unsigned char, bytes>>& units)
{
    stream_builder stream;
    for (const auto& [header, payload] : units)
        stream.prefixed_unit(4, header, payload);
    return stream;
}

} // namespace

TEST_F(ConvertRecord, IsMadeOfTheParameterSetsOfTheStream)
{
    const bytes stream = read_file(movie);
    for (const auto& [to, size] :
         {std::pair<const char*, unsigned char>{"length1", 1}, {"length2", 2}, {"length4", 4}}) {
        const bytes sets_alone = annexb_builder().sets();
        const tool_result result = run({out, "--to", to, "--avcc", avcc}, sets_alone);
        EXPECT_EQ("", result.err);
        EXPECT_EQ(0, result.status);
        EXPECT_EQ(record_of(size), read_file(avcc)) << to;
        EXPECT_TRUE(std::filesystem::exists(out));
    }
    EXPECT_EQ(0, run({out, "--to", "annexb", "--avcc", avcc}, stream).status);
    EXPECT_EQ(record_of(4), read_file(avcc)) << "of Annex B";
    EXPECT_EQ(stream, read_file(out));
}

TEST_F(ConvertRecord, IsMadeAlone)
{
    const tool_result result = run({"--avcc", avcc}, read_file(movie));
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
    EXPECT_EQ(record_of(4), read_file(avcc));
    EXPECT_EQ(2, folder.files());
    const tool_result piped = run_tool({"convert", movie, "--avcc", "-"});
    const bytes wanted = record_of(4);
    EXPECT_EQ(std::string(wanted.begin(), wanted.end()), piped.out);
}

TEST_F(ConvertRecord, IsMadeOfUnitsThatNoOtherFramingWouldCarry)
{
    const bytes units = length4({{sps, real_sps}, {pps, real_pps}, {idr_slice, {0x88, 0, 0, 1, 0}}});
    const tool_result result = run({"--avcc", avcc, "--format", "length4"}, units);
    EXPECT_EQ("", result.err) << "they are not written";
    EXPECT_EQ(0, result.status);
    EXPECT_EQ(record_of(4), read_file(avcc));
}

TEST_F(ConvertRecord, OfEachRealStreamIsReadByAvcc)
{
    for (const auto& path : support::all_annexb_files()) {
        const tool_result made = run_tool({"convert", path.string(), "--avcc", avcc});
        if (made.err.find("no decoder configuration record can be made") != std::string::npos)
            continue;
        EXPECT_EQ(support::is_broken(path) ? 1 : 0, made.status) << path << made.err;
        EXPECT_EQ(0, run_tool({"avcc", avcc}).status) << path;
    }
}

TEST_F(ConvertRecord, ThatCannotBeMadeIsAnErrorAndNothingIsWritten)
{
    const bytes none = annexb_builder().unit(idr_slice, idr);
    const bytes several =
        annexb_builder().sets().unit(sps, {0x58, 0x40, 0x0B, 0x5F, 0x65, 0x0C, 0x15, 0xB0, 0x11, 0x80});
    for (const auto& [stream, reason] : {std::pair{none, "it has no sequence parameter set"},
                                         {several, "its sequence parameter sets have several profiles"}}) {
        folder.write("out", {1, 2, 3});
        const tool_result result = run({out, "--to", "length4", "--avcc", avcc}, stream);
        EXPECT_EQ(message(std::string("no decoder configuration record can be made: ") + reason), result.err);
        EXPECT_EQ(1, result.status);
        EXPECT_EQ(bytes({1, 2, 3}), read_file(out));
        EXPECT_EQ(2, folder.files());
    }
}

TEST_F(ConvertRecord, HasTheLastOfParameterSetsThatChange)
{
    const tool_result result = run({"--avcc", avcc}, annexb_builder().sets().unit(pps, other_pps));
    EXPECT_EQ(message("1 parameter set changed in the stream; the record has the last of each id"), result.err);
    EXPECT_EQ(0, result.status);
    EXPECT_EQ(record_of(4, other_pps), read_file(avcc));
}

TEST_F(ConvertRecord, LacksAParameterSetThatCannotBeRead)
{
    const tool_result result = run({"--avcc", avcc}, annexb_builder().sets().unit(sps, {0x4D}));
    EXPECT_EQ(message("offset 36: parameter set that cannot be read is not kept"), result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(record_of(4), read_file(avcc));
}

TEST_F(ConvertRecord, TellsNoLengthsOfThreeBytes)
{
    const tool_result result = run({out, "--to", "length3", "--avcc", avcc}, read_file(movie));
    EXPECT_EQ("orv-h264: --avcc: a record tells length prefixes of 1, 2 and 4 bytes, not of 3; see orv-h264 convert "
              "--help\n",
              result.err);
    EXPECT_EQ(2, result.status);
    EXPECT_EQ(1, folder.files());
}

TEST_F(ConvertRecord, GoesToAnotherPlaceThanTheStream)
{
    EXPECT_EQ(2, run({out, "--to", "length4", "--avcc", out}, read_file(movie)).status);
    EXPECT_EQ(2, run({"-", "--to", "length4", "--avcc", "-"}, read_file(movie)).status);
    EXPECT_EQ(1, folder.files());
}

TEST_F(ConvertRecord, ThatCannotBeWrittenLeavesTheStreamUnwritten)
{
    const tool_result result = run({out, "--to", "length4", "--avcc", folder.path("no/such/folder")}, read_file(movie));
    EXPECT_EQ(2, result.status);
    EXPECT_EQ(1, folder.files());
}

TEST_F(ConvertRecord, BringsItsParameterSetsBeforeIdrPicturesThatLackThem)
{
    const bytes samples =
        length4({{idr_slice, idr}, {p_header, p_slice}, {aud, {0x10}}, {sei, user_data}, {idr_slice, idr}});
    const bytes wanted = annexb_builder()
                             .sets()
                             .unit(idr_slice, idr)
                             .unit(p_header, p_slice)
                             .unit(aud, {0x10})
                             .sets()
                             .unit(sei, user_data)
                             .unit(idr_slice, idr);
    EXPECT_EQ(wanted, with_sets(samples));
    const bytes box = stream_builder()
                          .prefix(4, static_cast<std::uint32_t>(record_of(4).size() + 8))
                          .raw({'a', 'v', 'c', 'C'})
                          .raw(record_of(4));
    EXPECT_EQ(wanted, with_sets(samples, box)) << "a whole box";
}

TEST_F(ConvertRecord, BringsItsParameterSetsBeforeTheFirstPictureOfAnyKind)
{
    EXPECT_EQ(annexb_builder().unit(aud, {0x30}).sets().unit(p_header, p_slice).unit(p_header, p_slice).made(),
              with_sets(length4({{aud, {0x30}}, {p_header, p_slice}, {p_header, p_slice}})));
}

TEST_F(ConvertRecord, LeavesPicturesThatHaveTheirParameterSets)
{
    EXPECT_EQ(annexb_builder().sets().unit(idr_slice, idr).made(),
              with_sets(length4({{sps, real_sps}, {pps, real_pps}, {idr_slice, idr}})));
    EXPECT_EQ(annexb_builder().sets(other_pps).unit(idr_slice, idr).made(),
              with_sets(length4({{pps, other_pps}, {idr_slice, idr}})))
        << "what the stream changes is in force";
}

TEST_F(ConvertRecord, ComesInInOtherFramingsToo)
{
    const std::string from = folder.write("record", record_of(4));
    const bytes stream = stream_builder().annexb_unit(idr_slice, idr).zeros(5).annexb_unit(idr_slice, idr);
    EXPECT_EQ(0, run({out, "--to", "annexb", "--parameter-sets", from}, stream).status);
    EXPECT_EQ(stream_builder()
                  .raw(annexb_builder().sets().made())
                  .annexb_unit(idr_slice, idr)
                  .raw(annexb_builder().sets().made())
                  .zeros(5)
                  .annexb_unit(idr_slice, idr)
                  .made(),
              read_file(out));
    EXPECT_EQ(
        0,
        run({out, "--to", "length1", "--parameter-sets", from}, stream_builder().annexb_unit(idr_slice, idr)).status);
    EXPECT_EQ(stream_builder()
                  .prefixed_unit(1, sps, real_sps)
                  .prefixed_unit(1, pps, real_pps)
                  .prefixed_unit(1, idr_slice, idr)
                  .made(),
              read_file(out));
}

TEST_F(ConvertRecord, OfAStreamLeavesItsOtherUnitsWhereTheyAre)
{
    for (const auto& path : support::all_annexb_files()) {
        std::filesystem::remove(avcc);
        run_tool({"convert", path.string(), "--avcc", avcc});
        if (!std::filesystem::exists(avcc))
            continue;
        run_tool({"convert", path.string(), out, "--to", "annexb", "--parameter-sets", avcc});
        EXPECT_TRUE(other_units(read_file(path)).units == other_units(read_file(out)).units) << path;
    }
}

TEST_F(ConvertRecord, ThatIsNoneIsAnErrorAndNothingIsWritten)
{
    const std::pair<bytes, const char*> cases[] = {
        {{1, 0x4D, 0x40}, "not a decoder configuration record: AVCLevelIndication: the record ends"},
        {{2, 0x4D, 0x40, 0x0B, 0xFF, 0xE0, 0},
         "not a decoder configuration record: configurationVersion: not 1, so that "
         "the record cannot be read"},
        {{1, 0x4D, 0x40, 0x0B, 0xFF, 0xE0, 0}, "a record with no parameter set"},
        {stream_builder()
             .raw({1, 0x4D, 0x40, 0x0B, 0xFF, 0xE1})
             .prefixed_unit(2, sps, real_sps)
             .raw({1})
             .prefixed_unit(2, pps, {}),
         "a record with a parameter set that cannot be read"},
    };
    for (const auto& [record, reason] : cases) {
        const std::string from = folder.write("record", record);
        const tool_result result =
            run({out, "--to", "annexb", "--parameter-sets", from}, stream_builder().annexb_unit(idr_slice, idr));
        EXPECT_EQ("orv-h264: " + from + ": " + reason + "; see orv-h264 avcc\n", result.err);
        EXPECT_EQ(1, result.status);
        EXPECT_EQ(2, folder.files());
    }
}
