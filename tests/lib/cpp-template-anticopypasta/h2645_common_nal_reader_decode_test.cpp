// The NAL reader's block_decode and find_unit_end.
#include "support/scanned.h"
#include "support/zero_heavy.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <gtest/gtest.h>

namespace {

using brenik::h264_nal_reader;
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

TEST(NalReader, BlockDecodeOfBlocksThatFillUpGoesOnWhereItStopped)
{
    const bytes payload = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    for (std::size_t block = 1; block <= 12; ++block) {
        annexb_unit s(payload);
        bytes rbsp;
        for (bytes part = s.decode(block); !part.empty(); part = s.decode(block)) {
            EXPECT_EQ(std::min(block, payload.size() - rbsp.size()), part.size());
            rbsp.insert(rbsp.end(), part.begin(), part.end());
        }
        EXPECT_EQ(payload, rbsp) << "blocks of " << block;
    }
}

TEST(NalReader, BlockDecodeExaminesAnEscapeWhenThreeBytesOfRoomAreLeft)
{
    annexb_unit three({9, 0, 0, 3, 8});
    EXPECT_EQ((bytes{9, 0, 0, 8}), three.decode(4));
    annexb_unit exact({0, 0, 3, 8});
    EXPECT_EQ((bytes{0, 0, 8}), exact.decode(3));
    annexb_unit two({9, 0, 0, 3, 8});
    EXPECT_EQ((bytes{9, 0, 0}), two.decode(3));
    EXPECT_EQ((bytes{3, 8}), two.decode_all());
}

TEST(NalReader, BlockDecodeStopsAtAStartCodeOnlyWithThreeBytesOfRoomLeft)
{
    const bytes unit_and_start_code = {7, 8, 9, 0, 0, 1, 0x68};
    EXPECT_EQ((bytes{7, 8, 9}), annexb_unit(unit_and_start_code).decode(3));
    EXPECT_EQ((bytes{7, 8, 9, 0}), annexb_unit(unit_and_start_code).decode(4));
    EXPECT_EQ((bytes{7, 8, 9, 0, 0}), annexb_unit(unit_and_start_code).decode(5));
    EXPECT_EQ((bytes{7, 8, 9}), annexb_unit(unit_and_start_code).decode(6));
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

TEST(NalReader, BlockDecodeIsRepeatedAfterRewind)
{
    annexb_unit s(escape_then_start_code);
    s.decode(2);
    s.reader.rewind();
    EXPECT_EQ((bytes{0x41, 0x00, 0x00, 0x01}), s.decode_all());
    s.reader.rewind();
    EXPECT_EQ((bytes{0x41, 0x00, 0x00, 0x01}), s.decode_all());
}

TEST(NalReader, BlockDecodeChangesNoMemberButDecodePtr)
{
    annexb_unit s(escape_then_start_code);
    const h264_nal_reader before = s.reader;
    s.decode(2);
    EXPECT_EQ(before.next, s.reader.next);
    EXPECT_EQ(before.payload, s.reader.payload);
    EXPECT_EQ(before.decode_fence, s.reader.decode_fence);
    EXPECT_EQ(before.nal_start, s.reader.nal_start);
    EXPECT_EQ(before.zero_count, s.reader.zero_count);
    EXPECT_TRUE(s.reader.found);
    EXPECT_FALSE(s.reader.incomplete);
}

TEST(NalReader, BlockDecodeWorksInPlace)
{
    for (const example& e : decodings) {
        annexb_unit s(e.payload);
        const std::size_t count = s.reader.block_decode(s.reader.payload, s.size() - 4);
        EXPECT_EQ(e.rbsp, bytes(s.reader.payload, s.reader.payload + count)) << e.name;
    }
}

TEST(NalReader, BlockDecodeInPlaceInSmallBlocks)
{
    annexb_unit s({1, 2, 3, 0, 0, 3, 1, 5, 6, 0, 0, 3, 0});
    unsigned char* out = s.reader.payload;
    while (const std::size_t count = s.reader.block_decode(out, 6))
        out += count;
    EXPECT_EQ((bytes{1, 2, 3, 0, 0, 1, 5, 6, 0, 0, 0}), bytes(s.reader.payload, out));
}

TEST(NalReader, BlockDecodeNeverWritesToTheInput)
{
    const bytes payload = {1, 0, 0, 3, 1, 0, 0, 3, 0, 0, 0, 1, 0x67};
    annexb_unit s(payload);
    s.decode(4);
    s.decode_all();
    EXPECT_EQ(payload, bytes(s.reader.payload, s.buffer.end()));
}

TEST(NalReader, FindUnitEndIsWhereBlockDecodeStops)
{
    for (const example& e : unit_ends) {
        annexb_unit s(e.payload);
        const std::size_t end = s.payload_offset(s.reader.find_unit_end());
        ASSERT_LT(end, e.payload.size()) << e.name;
        EXPECT_EQ(0, e.payload[end]) << e.name;
        EXPECT_EQ(0, e.payload[end + 1]) << e.name;
        EXPECT_GT(3, e.payload[end + 2]) << e.name;
        EXPECT_EQ(e.rbsp, annexb_unit(bytes(e.payload.data(), e.payload.data() + end)).decode_all()) << e.name;
        EXPECT_EQ(0U, s.payload_offset(s.reader.decode_ptr)) << "it moves nothing";
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

TEST(NalReader, FindUnitEndGoesOnFromDecodePtr)
{
    annexb_unit s({1, 0, 0, 1, 2, 0, 0, 1, 3});
    EXPECT_EQ(1U, s.payload_offset(s.reader.find_unit_end()));
    s.decode(2); // the second byte is the first zero of the start code, taken unexamined
    EXPECT_EQ(5U, s.payload_offset(s.reader.find_unit_end()));
    s.reader.rewind();
    s.decode_all();
    EXPECT_EQ(s.buffer.end(), s.reader.find_unit_end());
}
