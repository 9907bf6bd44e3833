// The track of a container as a stream, out of a demuxer that gives what the test says.
#include "container/container_stream.h"

#include "stream_input.h"

#include "support/stream_builder.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using namespace orv_h264;
using support::bytes;
using support::idr_slice;
using support::stream_builder;

// Of tests/streams/main_bpyramid_weighted.264.
const bytes sps_unit = {0x67, 0x4D, 0x40, 0x0B, 0xEC, 0xA1, 0x82, 0xB6, 0x02, 0x20, 0x00, 0x00,
                        0x03, 0x00, 0x20, 0x00, 0x00, 0x06, 0x51, 0xE2, 0x85, 0x32, 0xC0};
const bytes pps_unit = {0x68, 0xE9, 0x38, 0x64, 0xB2};
const bytes payload(20, 0x55);

bytes record_with(unsigned length_size)
{
    return stream_builder()
        .raw({1, 0x4D, 0x40, 0x0B, static_cast<unsigned char>(0xFC | (length_size - 1)), 0xE1})
        .prefix(2, 23)
        .raw(sps_unit)
        .raw({1})
        .prefix(2, 5)
        .raw(pps_unit);
}
constexpr std::size_t record_sps = 8; // where its bytes begin
constexpr std::size_t record_pps = 34;

struct made_packet {
    bytes data;
    std::optional<std::uint64_t> position = {};
    bytes record = {};
    bool damaged = false;
};

struct made_container {
    std::vector<container_track> tracks;
    bytes record = record_with(4);
    std::vector<made_packet> packets;
    std::string failure_to_open;
    std::string failure_to_read;
    std::uint64_t missing = 0;
    std::vector<container_message> messages;
    std::vector<file_stretch> head;
};

class made_demuxer final : public demuxer {
public:
    explicit made_demuxer(const made_container& container) : made(container) {}

    bool is_open() const override { return made.failure_to_open.empty(); }
    std::vector<container_track> tracks() const override { return made.tracks; }
    bool choose(std::optional<unsigned> number) override
    {
        for (const container_track& track : made.tracks)
            if (number ? track.number == *number : track.h264)
                return true;
        return false;
    }
    std::span<const unsigned char> record() const override { return made.record; }
    bool next(container_packet& packet) override
    {
        if (count == made.packets.size())
            return false;
        const made_packet& from = made.packets[count++];
        packet.bytes = from.data;
        packet.record = from.record;
        packet.position = from.position;
        packet.damaged = from.damaged;
        return true;
    }
    std::string failure() const override
    {
        return made.failure_to_open.empty() ? made.failure_to_read : made.failure_to_open;
    }
    std::uint64_t missing() const override { return made.missing; }
    std::uint64_t position() const override { return 4711; }
    std::vector<container_message> take_messages() override { return std::exchange(messages, {}); }
    std::vector<file_stretch> head() const override { return made.head; }

private:
    const made_container& made;
    std::size_t count = 0;
    std::vector<container_message> messages = made.messages;
};

const made_container* to_open = nullptr;

demuxer* open_made(byte_source&, container_kind, std::uint64_t)
{
    return new made_demuxer(*to_open);
}

/// Each unit as "shown offset:framing+size", or for one without an offset of its own "~packet:...", and gaps as g.
class noted final : public h264::split_sink {
public:
    void unit(const h264::split_unit& u) override
    {
        const packet_log& log = stream->packets();
        text += (text.empty() ? "" : " ") + std::string(log.is_own(u.offset) ? "" : "~") +
                std::to_string(log.shown(u.offset)) + ":" + std::to_string(u.framing_size) + "+" +
                std::to_string(u.size) + (u.cut ? "!" : "");
        in_stream.push_back(u.offset);
    }
    void gap(const h264::split_gap&) override { text += text.empty() ? "g" : " g"; }

    const container_stream* stream = nullptr;
    std::string text;
    std::vector<std::uint64_t> in_stream;
};

class ContainerStream : public testing::Test {
protected:
    ContainerStream() { made.tracks = {{1, 1, "video", "h264", true, {}}, {2, 2, "audio", "aac", false, {}}}; }

    container_stream& open(container_kind kind, std::optional<unsigned> track = {})
    {
        to_open = &made;
        file.emplace(folder.write("in", content));
        window.emplace([this](unsigned char* out, std::size_t size) { return file->read(out, size); });
        sink = {};
        sink.stream = &stream.emplace(*file, *window, kind, track, 1000, open_made);
        return *stream;
    }

    std::string units(container_kind kind)
    {
        open(kind);
        while (stream->read_packet(sink)) {
        }
        stream->finish(sink);
        return sink.text;
    }

    /// The messages of problems as "!...", and of findings.
    std::vector<std::string> remarks() const
    {
        std::vector<std::string> all;
        for (const container_remark& remark : stream->remarks())
            all.push_back((remark.is_problem ? "!" : "") + std::to_string(remark.offset) + " " + remark.text);
        return all;
    }

    int status_of_refusal(container_kind kind, std::optional<unsigned> track = {})
    {
        try {
            open(kind, track);
        } catch (const refusal& refused) {
            why = refused.what();
            return refused.status;
        }
        return 0;
    }

    using texts = std::vector<std::string>;

    support::temporary_folder folder;
    made_container made;
    bytes content = bytes(1000);
    std::optional<input_file> file;
    std::optional<input_window> window;
    std::optional<container_stream> stream;
    noted sink;
    std::string why;
};

const bytes two_units = stream_builder().prefixed_unit(4, idr_slice, payload).prefixed_unit(4, idr_slice, {1, 2});
constexpr std::size_t transport_packet = 188;
const bytes one_unit = stream_builder().prefixed_unit(4, idr_slice, {7, 8, 9});

TEST_F(ContainerStream, UnitsLieInTheFileWhereTheirPacketsDo)
{
    made.packets = {{two_units, 900}, {one_unit, 48}};
    EXPECT_EQ("904:4+21 929:4+3 52:4+4", units(container_kind::mp4));
    EXPECT_EQ((std::vector<std::uint64_t>{4, 29, 36}), sink.in_stream) << "packets end to end";
    EXPECT_TRUE(stream->has_own_offsets());
    EXPECT_EQ(two_units.size() + one_unit.size(), stream->bytes());
    EXPECT_EQ(h264::framing::length_4, stream->framing());
    EXPECT_EQ(texts(), remarks());
}

TEST_F(ContainerStream, APacketIsSearchedBehindThePlaceOfWhatHoldsIt)
{
    content = stream_builder().raw(one_unit).junk(50).raw(two_units).junk(9).raw(one_unit).junk(3).raw(one_unit);
    made.packets = {{two_units, 40}, {one_unit, 99}, {one_unit, 99}, {one_unit, 130}};
    const auto first = one_unit.size() + 50 + 4;
    const auto second = first + two_units.size() + 9;
    const auto third = second + one_unit.size() + 3;
    EXPECT_EQ(std::to_string(first) + ":4+21 " + std::to_string(first + 25) + ":4+3 " + std::to_string(second) +
                  ":4+4 " + std::to_string(third) + ":4+4 ~130:4+4",
              units(container_kind::matroska));
    EXPECT_EQ((texts{"130 packet that does not lie in the file as it is: the offset is that of what holds it"}),
              remarks());
}

TEST_F(ContainerStream, SearchesNoFurtherWhereAFewWereNotFound)
{
    content = bytes(100);
    for (int i = 0; i < 8; ++i)
        made.packets.push_back({one_unit, 5});
    made.packets.push_back({bytes(10), 5}); // which the file has
    units(container_kind::flv);
    EXPECT_FALSE(stream->packets().is_own(stream->bytes() - 1));
}

TEST_F(ContainerStream, UnitsOfATransportStreamAreKnownByTheirPackets)
{
    made.record = {};
    const bytes whole = stream_builder().annexb_unit(idr_slice, payload).annexb_unit(idr_slice, payload);
    made.packets = {{bytes(whole.begin(), whole.begin() + 25), 564}, {bytes(whole.begin() + 25, whole.end()), 1880}};
    content = bytes(transport_packet * 12);
    EXPECT_EQ("~564:3+21 ~1880:3+21", units(container_kind::transport_stream)) << "its header byte is in the second";
    EXPECT_FALSE(stream->has_own_offsets());
    EXPECT_EQ(h264::framing::annex_b, stream->framing());
    EXPECT_EQ(texts(), remarks());
}

TEST_F(ContainerStream, ATransportStreamHasWholePackets)
{
    made.record = {};
    made.packets = {{stream_builder().annexb_unit(idr_slice, payload).made(), 0}};
    for (const std::size_t packet : {transport_packet, transport_packet + 4, transport_packet + 16}) {
        content = bytes(packet * 5);
        units(container_kind::transport_stream);
        EXPECT_EQ(texts(), remarks()) << packet;
    }
    content = bytes(transport_packet * 5 + 1);
    units(container_kind::transport_stream);
    EXPECT_EQ(texts{"!941 the file begins or ends inside a packet of the transport stream"}, remarks());
}

TEST_F(ContainerStream, TheSetsOfTheRecordLieWhereItIsFound)
{
    content = stream_builder().junk(70).raw(made.record);
    made.head = {{0, 20}, {60, content.size()}};
    const auto& sets = open(container_kind::mp4).record_sets();
    ASSERT_EQ(2U, sets.size());
    EXPECT_EQ(sps_unit, bytes(sets[0].bytes, sets[0].bytes + sets[0].size));
    EXPECT_EQ(pps_unit, bytes(sets[1].bytes, sets[1].bytes + sets[1].size));
    EXPECT_EQ(packet_log::record_begin + record_sps, sets[0].offset);
    EXPECT_EQ(70 + record_sps, stream->packets().shown(sets[0].offset));
    EXPECT_EQ(70 + record_pps, stream->packets().shown(sets[1].offset));
    made.head = {{0, 75}};
    EXPECT_FALSE(open(container_kind::mp4).packets().is_own(packet_log::record_begin)) << "not read to open the file";
}

TEST_F(ContainerStream, PrefixesHaveTheSizeOfTheRecord)
{
    for (const unsigned size : {1U, 2U, 3U, 4U}) {
        made.record = record_with(size);
        made.packets = {{stream_builder().prefixed_unit(size, idr_slice, payload), 100}};
        EXPECT_EQ(std::to_string(100 + size) + ":" + std::to_string(size) + "+21", units(container_kind::mp4));
        EXPECT_EQ(static_cast<h264::framing>(size), stream->framing());
    }
}

TEST_F(ContainerStream, AnotherRecordBringsItsSetsAndItsSizeOfPrefixes)
{
    const bytes with_two = stream_builder().prefixed_unit(2, idr_slice, payload);
    made.packets = {{one_unit, 100}, {with_two, 200, record_with(2)}, {with_two, 300, record_with(2)}};
    EXPECT_EQ("104:4+4 ~200:2+23 ~200:2+5 202:2+21 302:2+21", units(container_kind::mp4));
    EXPECT_EQ((texts{"200 another decoder configuration record holds from here on"}), remarks())
        << "the third is equal";
    EXPECT_TRUE(std::is_sorted(sink.in_stream.begin(), sink.in_stream.end()));
}

TEST_F(ContainerStream, AnotherRecordThatIsNoneChangesNothing)
{
    made.packets = {{one_unit, 100}, {one_unit, 200, {0, 1, 2, 3}}};
    EXPECT_EQ("104:4+4 204:4+4", units(container_kind::mp4));
    EXPECT_EQ((texts{"!200 another decoder configuration record, which cannot be read"}), remarks());
}

TEST_F(ContainerStream, WithoutARecordPacketsTellTheFraming)
{
    for (const bytes& record : {bytes(), bytes{0xEE, 1, 2, 3}}) {
        made.record = record;
        made.packets = {{one_unit, 100}};
        EXPECT_EQ("104:4+4", units(container_kind::mp4));
        ASSERT_EQ(1U, remarks().size());
        EXPECT_NE(std::string::npos, remarks()[0].find("lengths of 4 bytes are assumed")) << remarks()[0];
        for (const unsigned zeros : {0U, 1U}) {
            made.packets = {{stream_builder().zeros(zeros).annexb_unit(idr_slice, payload), 100}};
            EXPECT_EQ("~100:" + std::to_string(3 + zeros) + "+21", units(container_kind::mp4));
            EXPECT_EQ(h264::framing::annex_b, stream->framing());
            EXPECT_EQ(texts(), remarks());
        }
    }
}

TEST_F(ContainerStream, ParameterSetsBehindStartCodesDoForARecord)
{
    made.record = stream_builder().start_code().raw(sps_unit).zeros(1).start_code().raw(pps_unit).annexb_unit(
        idr_slice, payload); // which is none
    made.packets = {{stream_builder().annexb_unit(idr_slice, payload), 100}};
    const auto& sets = open(container_kind::matroska).record_sets();
    ASSERT_EQ(2U, sets.size());
    EXPECT_EQ(sps_unit, bytes(sets[0].bytes, sets[0].bytes + sets[0].size));
    EXPECT_EQ(pps_unit, bytes(sets[1].bytes, sets[1].bytes + sets[1].size));
    EXPECT_EQ(packet_log::record_begin + 3, sets[0].offset);
    EXPECT_EQ(packet_log::record_begin + 30, sets[1].offset);
    EXPECT_EQ(texts(), remarks());
}

TEST_F(ContainerStream, ARecordThatBreaksOffGivesWhatItHas)
{
    made.record.resize(record_pps);
    made.packets = {{one_unit, 100}};
    EXPECT_EQ("104:4+4", units(container_kind::mp4));
    ASSERT_EQ(1U, stream->record_sets().size());
    ASSERT_EQ(1U, remarks().size());
    EXPECT_TRUE(remarks()[0].starts_with("!0 decoder configuration record: ")) << remarks()[0];
}

TEST_F(ContainerStream, AUnitEndsWithItsPacketAtTheLatest)
{
    bytes cut = two_units;
    cut.resize(cut.size() - 1);
    made.packets = {{cut, 100}, {{}, 200}, {{0, 0}, 250}, {one_unit, 300}};
    EXPECT_EQ("104:4+21 129:4+2! g 304:4+4", units(container_kind::mp4));
}

TEST_F(ContainerStream, TellsWhatTheDemuxerTells)
{
    made.packets = {{one_unit, 100, {}, true}};
    made.messages = {{77, "odd"}};
    made.missing = 3;
    EXPECT_EQ("104:4+4", units(container_kind::mp4));
    EXPECT_EQ((texts{"!77 libavformat: odd", "!100 packet that is not whole in the file",
                     "!4711 the container announces 3 further packets"}),
              remarks());
    made.failure_to_read = "broken";
    units(container_kind::mp4);
    EXPECT_EQ("!4711 the container cannot be read further: broken", remarks()[2]);
}

TEST_F(ContainerStream, SetsInTheStreamAreHeldAgainstTheRecords)
{
    const auto as_packet = [](const bytes& unit) {
        return stream_builder().prefix(4, static_cast<std::uint32_t>(unit.size())).raw(unit).made();
    };
    bytes changed = sps_unit;
    changed[3] = 0x0C; // level_idc
    made.packets = {{as_packet(sps_unit), 100}, {as_packet(pps_unit), 200}};
    units(container_kind::mp4);
    EXPECT_EQ(texts(), remarks()) << "they are equal";
    made.packets.push_back({as_packet(changed), 300});
    units(container_kind::mp4);
    EXPECT_EQ((texts{"304 parameter set that differs from the one of its id in the record, or before"}), remarks());
}

TEST_F(ContainerStream, EndsWherePacketsLieOverOneAnotherTooOften)
{
    content = bytes(one_unit.size());
    for (int i = 0; i < 200; ++i)
        made.packets.push_back({one_unit, 0});
    units(container_kind::mp4);
    EXPECT_EQ(72U, sink.in_stream.size());
    ASSERT_EQ(1U, remarks().size());
    EXPECT_TRUE(remarks()[0].starts_with("!7 packets are 64 times as long as the file")) << remarks()[0];
    made.packets.resize(71);
    units(container_kind::mp4);
    EXPECT_EQ(71U, sink.in_stream.size());
    EXPECT_EQ(texts(), remarks());
}

TEST_F(ContainerStream, RefusesWithTheStatusThatFits)
{
    EXPECT_EQ(0, status_of_refusal(container_kind::mp4));
    EXPECT_EQ(0, status_of_refusal(container_kind::mp4, 1));
    EXPECT_EQ(3, status_of_refusal(container_kind::mp4, 2));
    EXPECT_NE(std::string::npos, why.find("track 1 h264 video, 2 aac audio")) << why;
    EXPECT_EQ(2, status_of_refusal(container_kind::mp4, 3));
    made.tracks.erase(made.tracks.begin());
    EXPECT_EQ(3, status_of_refusal(container_kind::matroska));
    made.tracks.clear();
    EXPECT_EQ(3, status_of_refusal(container_kind::flv));
    EXPECT_NE(std::string::npos, why.find("no track")) << why;
    made.failure_to_open = "no moov";
    EXPECT_EQ(1, status_of_refusal(container_kind::mp4));
    EXPECT_NE(std::string::npos, why.find("offset 4711: MP4 that cannot be opened: no moov")) << why;
}

TEST_F(ContainerStream, WithoutADemuxerItSaysWhatTheFileIs)
{
    const std::string path = folder.write("in", {});
    input_file in(path);
    input_window bytes_of([&](unsigned char* out, std::size_t size) { return in.read(out, size); });
    try {
        const container_stream opened(in, bytes_of, container_kind::matroska, {}, 1000, nullptr);
        FAIL();
    } catch (const refusal& refused) {
        EXPECT_EQ(3, refused.status);
        EXPECT_NE(std::string::npos, std::string(refused.what()).find("this is Matroska, and there is no libavformat"));
    }
}

} // namespace
