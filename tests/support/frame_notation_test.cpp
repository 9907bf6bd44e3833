// The notation of the frame scan: streams that are what their notation says, and lines that leave nothing out.
#include "support/frame_notation.h"
#include "support/scanned_units.h"

#include <gtest/gtest.h>

namespace {

using namespace support::frame_notation;
using support::bytes;
using support::frame_outcome;
using support::guarded_buffer;

const units every_unit = {
    aud,           sps(),       pps,        sei(1), other_sei(), idr(0), filler, slice(3, bottom), end_of_sequence,
    end_of_stream, partition_a, empty_slice};

} // namespace

TEST(FrameNotation, EveryFramingHoldsTheSameUnitsWhereTheStreamSays)
{
    for (const framing& how : every_framing) {
        const stream s = framed(every_unit, how);
        const auto found = support::scanned_units(guarded_buffer(s.data), s.nal_length_size, 100);
        ASSERT_EQ(every_unit.size(), found.units.size());
        EXPECT_EQ(s.data.size(), found.end);
        for (std::size_t i = 0; i < every_unit.size(); ++i) {
            EXPECT_EQ(s.starts[i], found.units[i].start);
            EXPECT_EQ(every_unit[i].header % 32U, found.units[i].nal_unit_type);
            EXPECT_EQ(every_unit[i].rbsp, found.units[i].rbsp) << "unit " << i;
        }
    }
}

TEST(FrameNotation, AStartCodeOfFourBytesBeginsBeforeTheUnit)
{
    const stream s = framed({aud, pps}, {0, 4});
    EXPECT_EQ((bytes{0, 0, 0, 1, 0x29, 0xF0, 0, 0, 0, 1, 0x28, 0xCE, 0x38, 0x80}), s.data);
    EXPECT_EQ((std::vector<std::size_t>{1, 7}), s.starts);
}

TEST(FrameNotation, APrefixIsBigEndian)
{
    const stream s = framed({pps, end_of_stream}, {2});
    EXPECT_EQ((bytes{0, 4, 0x28, 0xCE, 0x38, 0x80, 0, 1, 0x2B}), s.data);
    EXPECT_EQ((std::vector<std::size_t>{0, 6}), s.starts);
}

TEST(FrameNotation, PayloadsAreEscaped)
{
    EXPECT_EQ((bytes{0, 0, 3, 0, 0, 3, 3, 0, 0, 4}), escaped({0, 0, 0, 0, 3, 0, 0, 4}));
}

TEST(FrameNotation, ASliceHasTheFieldsOfItsNotation)
{
    const literal::legacy::stored_sps seq(support::fields_of(known_sps()));
    for (const std::uint32_t frame_num : {0U, 3U, 15U})
        for (const picture kind : {frame, top, bottom}) {
            support::named_values read = support::fields_of(h264_nal_slice_info());
            literal::legacy_bit_reader bits(slice(frame_num, kind).rbsp);
            EXPECT_TRUE(literal::legacy::slice({read, bits}, seq));
            EXPECT_EQ(frame_num, read.at("frame_num").number);
            EXPECT_EQ(kind != frame, read.at("field_pic_flag").number == 1);
            EXPECT_EQ(kind == bottom, read.at("bottom_field_flag").number == 1);
        }
    EXPECT_EQ(0b1'00110'1'0011'10U, literal::bit_reader{slice(3, top).rbsp}.get(13))
        << "ue(0) ue(5) ue(0) u(4) u(1) u(1)";
}

TEST(FrameNotation, TheSpsIsTheKnownOne)
{
    support::named_values read = support::fields_of(h264_sps());
    literal::legacy_bit_reader bits(sps().rbsp);
    EXPECT_TRUE(literal::legacy::sps({read, bits}));
    const support::named_values known = support::fields_of(known_sps());
    for (const char* const name : {"log2_max_frame_num", "frame_mbs_only_flag", "pic_struct_present_flag"})
        EXPECT_EQ(known.at(name), read.at(name)) << name;
}

TEST(FrameNotation, ALineNamesUnitsByTheirIndex)
{
    const stream s = framed({aud, pps, idr(0)}, annexb);
    frame_outcome f = {s.starts[1], s.starts[0], s.starts[1], true};
    EXPECT_EQ("0 to 1: 2 fields", describe(f, s));
    f.result = s.starts[2];
    EXPECT_EQ("0 to 1, next 2: 2 fields", describe(f, s));
    f = {s.starts[1], s.starts[1]};
    f.need_more_data = true;
    EXPECT_EQ("1 on: 2 fields", describe(f, s));
    f.end = s.data.size() - 1;
    EXPECT_EQ("1 on, byte 18 so far: 2 fields", describe(f, s));
    EXPECT_EQ("none, next end: 2 fields", describe({s.data.size()}, s));
    EXPECT_EQ("1, no room: 2 fields", describe({s.starts[1], s.starts[1]}, s));
}

TEST(FrameNotation, EveryFieldOfAnOutcomeShowsInItsLine)
{
    const stream s = framed({aud, pps}, annexb);
    const frame_outcome usual = {s.starts[1], s.starts[0], s.starts[1], true};
    std::vector<frame_outcome> others(12, usual);
    others[0].result = s.starts[0];
    others[1].start = support::nowhere;
    others[2].end = s.data.size();
    others[3].complete = false;
    others[4].need_more_data = true;
    others[5].has_aud = true;
    others[6].has_sps = true;
    others[7].has_pps = true;
    others[8].has_sei = true;
    others[9].has_slice = true;
    others[10].field_duration = 1;
    others[11].sps_updated = true;
    for (const frame_outcome& other : others)
        EXPECT_NE(describe(usual, s), describe(other, s)) << other;
}

TEST(FrameNotation, FramingsThatDifferAreNamed)
{
    const units too_long_for_a_byte = {aud, of_type(1, bytes(300, 0x88)), aud};
    EXPECT_TRUE(frames(too_long_for_a_byte, {0, known_sps(), 400}).back().starts_with("with prefixes of 1"));
}
