// The NAL reader's block_decode and find_unit_end.
#include "support/scanned.h"
#include "support/zero_heavy.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::guarded_buffer;
using support::scanned;
using support::stream_builder;

/// A scanned unit with the payload given, whatever it holds.
struct annexb_unit : scanned {
    explicit annexb_unit(const bytes& payload)
        : scanned(brenik::nalfmt_annexb, stream_builder().annexb_unit(support::sps, payload))
    {
    }
    std::size_t payload_offset(const unsigned char* pointer) const { return offset(pointer) - 4; }
};

struct prefixed_unit : scanned {
    explicit prefixed_unit(const bytes& payload)
        : scanned(brenik::nalfmt_length4,
                  stream_builder().prefixed_unit(4, support::sps, payload).prefixed_unit(4, support::pps, {8}))
    {
    }
};

const bytes escape_then_start_code = {0x41, 0x00, 0x00, 0x03, 0x01, 0x00, 0x00, 0x01};

struct example {
    const char* name;
    bytes payload;
    bytes rbsp;
};

const example decodings[] = {
    {"empty", {}, {}},
    {"one zero", {0}, {0}},
    {"two zeros at the end", {5, 0, 0}, {5, 0, 0}},
    {"two zeros alone", {0, 0}, {0, 0}},
    {"plain", {1, 2, 3, 4, 5, 6, 7}, {1, 2, 3, 4, 5, 6, 7}},
    {"threes and single zeros", {0, 3, 0, 3, 3, 0, 0x80, 0, 3}, {0, 3, 0, 3, 3, 0, 0x80, 0, 3}},
    {"two zeros before a larger byte", {0, 0, 4, 0, 0, 0xFF}, {0, 0, 4, 0, 0, 0xFF}},
    {"escape at the start", {0, 0, 3, 1, 9}, {0, 0, 1, 9}},
    {"escape at the end", {9, 0, 0, 3}, {9, 0, 0}},
    {"escape alone", {0, 0, 3}, {0, 0}},
    {"escape before a larger byte", {0, 0, 3, 0xFF}, {0, 0, 0xFF}},
    {"escaped escape", {0, 0, 3, 3, 7}, {0, 0, 3, 7}},
    {"a run of zeros", {0, 0, 3, 0, 0, 3, 0, 0, 3, 0}, {0, 0, 0, 0, 0, 0, 0}},
    {"a zero carried over an escape", {0, 0, 3, 0, 3, 0, 9}, {0, 0, 0, 3, 0, 9}},
};

const example unit_ends[] = {
    {"at once", {0, 0, 1, 0x68}, {}},
    {"after one byte", {7, 0, 0, 1, 0x68}, {7}},
    {"zeros before the start code", {7, 8, 0, 0, 0, 1, 0x68}, {7, 8}},
    {"three zeros", {7, 0, 0, 0}, {7}},
    {"two zeros and a two", {7, 0, 0, 2, 5}, {7}},
    {"after an escape", {0, 0, 3, 0, 0, 1, 9}, {0, 0}},
    {"a start code as the last three bytes", {7, 8, 9, 0, 0, 1}, {7, 8, 9}},
};

} // namespace

TEST(NalReader, BlockDecodeRemovesEscapesAndStopsAtTheStartCode)
{
    annexb_unit s(escape_then_start_code);
    EXPECT_EQ((bytes{0x41, 0x00, 0x00, 0x01}), s.decode_all());
    EXPECT_EQ(s.reader.decode_fence, s.reader.decode_ptr);
    EXPECT_EQ(bytes{}, s.decode_all());
}

TEST(NalReader, BlockDecodeCopiesTheLastTwoBytesOfRoomUnexamined)
{
    annexb_unit s(escape_then_start_code);
    EXPECT_EQ((bytes{0x41, 0x00}), s.decode(2));
    EXPECT_EQ(2U, s.payload_offset(s.reader.decode_ptr));
    EXPECT_EQ((bytes{0x00, 0x03, 0x01}), s.decode_all());
    EXPECT_EQ(s.reader.decode_fence, s.reader.decode_ptr);
    EXPECT_EQ(bytes{}, s.decode_all());
}

TEST(NalReader, BlockDecodeOfEveryShapeOfEscape)
{
    for (const example& e : decodings) {
        EXPECT_EQ(e.rbsp, annexb_unit(e.payload).decode_all()) << "Annex B, " << e.name;
        EXPECT_EQ(e.rbsp, prefixed_unit(e.payload).decode_all()) << "length-prefixed, " << e.name;
    }
}

TEST(NalReader, BlockDecodeStopsAtEveryShapeOfUnitEnd)
{
    for (const example& e : unit_ends) {
        annexb_unit s(e.payload);
        EXPECT_EQ(e.rbsp, s.decode_all()) << e.name;
        EXPECT_EQ(s.reader.decode_fence, s.reader.decode_ptr) << e.name;
        EXPECT_EQ(bytes{}, s.decode_all()) << e.name;
    }
}

TEST(NalReader, BlockDecodeStopsAtAStartCodeInsideAPrefixedUnitToo)
{
    prefixed_unit s({7, 0, 0, 1, 9, 9});
    EXPECT_EQ((bytes{7}), s.decode_all());
    EXPECT_EQ(bytes{}, s.decode_all());
}

TEST(NalReader, BlockDecodeNeverReadsBehindAPrefixedUnit)
{
    // The prefix of the next unit would make these zeros a unit's end.
    prefixed_unit s({9, 0, 0});
    EXPECT_EQ((bytes{9, 0, 0}), s.decode_all());
    EXPECT_EQ(s.offset(s.reader.next), s.offset(s.reader.decode_ptr));
}

TEST(NalReader, BlockDecodeOfNoRoomWritesAndMovesNothing)
{
    annexb_unit s({1, 2, 3});
    EXPECT_EQ(0U, s.reader.block_decode(nullptr, 0));
    EXPECT_EQ(0U, s.payload_offset(s.reader.decode_ptr));
    EXPECT_EQ((bytes{1, 2, 3}), s.decode_all());
}

TEST(NalReader, ABlockOfThreeBytesMoreThanThePayloadOrAsLargeAsTheBufferHoldsAUnit)
{
    support::random_source random(2);
    for (int round = 0; round < 2000; ++round) {
        const bytes stream = support::zero_heavy_up_to(random, 40);
        for (const auto nalfmt : {brenik::nalfmt_annexb, brenik::nalfmt_length1}) {
            scanned s(nalfmt, stream);
            if (!s.reader.found)
                continue;
            const auto payload = static_cast<std::size_t>(s.reader.find_unit_end() - s.reader.payload);
            const bytes rbsp = s.decode(2 * stream.size() + 100);
            s.reader.rewind();
            EXPECT_EQ(rbsp, s.decode(payload + 3)) << round;
            s.reader.rewind();
            EXPECT_EQ(rbsp, s.decode(stream.size())) << round;
        }
    }
}

TEST(NalReader, BlockDecodeLeavesRoomBehindTheUnitUntouched)
{
    annexb_unit s(escape_then_start_code);
    const guarded_buffer out(9);
    EXPECT_EQ(4U, s.reader.block_decode(out.begin(), out.size()));
    EXPECT_TRUE(guarded_buffer::untouched(out.begin() + 4, out.end()));
    EXPECT_TRUE(out.surroundings_untouched());
}

TEST(NalReader, BlockDecodeWorksInPlace)
{
    for (const example& e : decodings) {
        annexb_unit s(e.payload);
        const std::size_t count = s.reader.block_decode(s.reader.payload, s.size() - 4);
        EXPECT_EQ(e.rbsp, bytes(s.reader.payload, s.reader.payload + count)) << e.name;
    }
}

TEST(NalReader, FindUnitEndWithoutAnEndIsTheFence)
{
    for (const example& e : decodings) {
        annexb_unit annexb(e.payload);
        EXPECT_EQ(annexb.buffer.end(), annexb.reader.find_unit_end()) << e.name;
        prefixed_unit prefixed(e.payload);
        EXPECT_EQ(prefixed.reader.next, prefixed.reader.find_unit_end()) << e.name;
    }
}
