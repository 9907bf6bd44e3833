// The frame scan against the literal one, over random rows of units and over inputs that end anywhere.
#include "support/frame_notation.h"
#include "support/scanned_units.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

namespace {

using namespace support::frame_notation;
using support::bytes;
using support::guarded_buffer;
using support::pick;
using support::random_source;

/// One of a few units that matter to the frame scan.
unit random_unit(random_source& random)
{
    switch (pick(random, 16)) {
    case 0:
        return aud;
    case 1: {
        support::sps_description seq = field_stream();
        seq.frame_mbs_only_flag = pick(random, 4) == 0;
        seq.log2_max_frame_num_minus4 = pick(random, 8) == 0 ? 21 : 0;
        seq.vui->pic_struct_present_flag = pick(random, 4) != 0;
        return sps(seq);
    }
    case 2:
        return pps;
    case 3:
        return other_sei();
    case 4:
        return of_type(10 + static_cast<unsigned int>(pick(random, 3)));
    case 5:
        return of_type(static_cast<unsigned int>(pick(random, 32)), bytes(pick(random, 3), 0x88));
    case 6:
    case 7:
    case 8:
        return sei(static_cast<unsigned int>(pick(random, 10)) % 7);
    default:
        return slice(static_cast<std::uint32_t>(pick(random, 8) / 6), static_cast<picture>(pick(random, 3)),
                     pick(random, 8) == 0 ? 5 : 1);
    }
}

units random_row(random_source& random)
{
    units row;
    for (std::size_t count = 1 + pick(random, 24); count > 0; --count)
        row.push_back(random_unit(random));
    return row;
}

/// The units as the row says them, without a scanner; those above `room` are too large.
literal::placed_units placed(const units& row, const stream& s, std::size_t room)
{
    literal::placed_units all;
    all.end = s.data.size();
    for (std::size_t i = 0; i < row.size(); ++i) {
        const std::size_t next = i + 1 == row.size() ? s.data.size() : s.starts[i + 1] - s.zero_bytes;
        all.units.push_back({s.starts[i], next, row[i].header % 32U, row[i].rbsp, row[i].rbsp.size() > room});
    }
    return all;
}

/// What the library says of `s`, and the literal scan of `all`.
void expect_same(const literal::placed_units& all, const stream& s, unsigned int flags, std::size_t room)
{
    support::frame_scanner<guarded_buffer> scanner(s.data, s.nal_length_size, room, flags, known_sps());
    ASSERT_EQ(literal::scan_frames(all, (flags & split_fields) != 0, known_sps()), support::scan_frames(scanner));
}

/// Every length of the stream, with the units that the scanner finds in it.
void expect_same_wherever_cut(const stream& whole)
{
    for (std::size_t size = 0; size <= whole.data.size(); ++size) {
        stream s = whole;
        s.data.resize(size);
        const auto all = support::scanned_units(guarded_buffer(s.data), s.nal_length_size, 100);
        for (const unsigned int flags : {0U, split_fields}) {
            SCOPED_TRACE(size);
            ASSERT_NO_FATAL_FAILURE(expect_same(all, s, flags, 100));
        }
    }
}

const units fields_and_frames = {
    aud,    sps(),  pps,         sei(1),           idr(0, top),     sei(2), slice(0, bottom),
    filler, aud,    slice(1),    slice(2),         end_of_sequence, sps(),  idr(0, top),
    aud,    idr(0), partition_a, slice(5, bottom), end_of_stream,   aud};

} // namespace

TEST(FrameScanModel, RandomRowsOfUnitsGiveTheSameFrames)
{
    random_source random(65);
    for (int round = 0; round < 6000; ++round) {
        const units row = random_row(random);
        const std::size_t room = round % 4 == 0 ? pick(random, 20) : 100;
        for (const framing& how : every_framing) {
            const stream s = framed(row, how);
            for (const unsigned int flags : {0U, split_fields}) {
                SCOPED_TRACE("round " + std::to_string(round));
                ASSERT_NO_FATAL_FAILURE(expect_same(placed(row, s, room), s, flags, room));
            }
        }
    }
}

TEST(FrameScanModel, AStreamThatEndsAtAnyByteGivesTheSameFrames)
{
    for (const framing& how : every_framing)
        ASSERT_NO_FATAL_FAILURE(expect_same_wherever_cut(framed(fields_and_frames, how)));
}

TEST(FrameScanModel, ACutUnitEndsAFrameInAnnexBAndIsLostBehindAPrefix)
{
    const units row = {slice(1), sei(0)};
    stream s = framed(row, annexb);
    s.data.resize(s.starts[1] + 4);
    EXPECT_EQ("0 to 1: slice, 2 fields", lines_of(s).front()) << "a header byte is enough";
    s.data.resize(s.starts[1] + 3);
    EXPECT_EQ("0 on: slice, 2 fields", lines_of(s).front());
    stream prefixed = framed(row, {1});
    prefixed.data.pop_back();
    EXPECT_EQ("0 on: slice, 2 fields", lines_of(prefixed).front());
    prefixed.data.resize(3);
    EXPECT_EQ("none, next end: 2 fields", lines_of(prefixed).front()) << "not to be called again with more";
}

TEST(FrameScanModel, ACutSliceHeaderReadsAsZeros)
{
    stream s = framed({slice(3), of_type(1, {0x88, 0x84})}, annexb);
    s.data.pop_back();
    EXPECT_EQ("0 to 1: slice, 2 fields", lines_of(s).front()) << "frame_num 0 in place of what comes";
}
