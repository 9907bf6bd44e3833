#include <orv-utils-v4/h264_legacy/nal_writer.h>

#include "support/legacy_nal_written.h"
#include "support/whole_message.h"
#include "support/zero_heavy.h"

#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace {

using support::bytes;
using support::guarded_buffer;
using support::legacy_nal_written;
using support::pick;
using support::stream_builder;

constexpr std::size_t large = 600;

/// A payload without zero bytes.
bytes plain(std::size_t size)
{
    return bytes(size, 0x55);
}

/// What `payload` goes out as in Annex B, behind a header byte.
bytes escaped(const bytes& payload)
{
    const bytes whole = legacy_nal_written(large, 0, 0x67, payload).output();
    return bytes(whole.begin() + 4, whole.end());
}

/// The room that the header promises to be enough.
std::size_t stated_room(std::size_t payload_size)
{
    return payload_size * 3 / 2 + 16;
}

/// Expects what is written into `out_size` bytes to be what the literal writer writes.
void expect_as_literal(std::size_t out_size, unsigned int k, unsigned char header, const bytes& payload)
{
    const literal::legacy_written expected = literal::legacy_write(out_size, payload, k, header);
    const legacy_nal_written actual(out_size, k, header, payload);
    ASSERT_EQ(expected.result, actual.result);
    ASSERT_EQ(expected.output, actual.first(expected.output.size()));
    ASSERT_TRUE(actual.untouched_from(expected.output.size()));
}

} // namespace

TEST(LegacyNalWrite, AStartCodeTheHeaderAndTheEscapedPayload)
{
    const legacy_nal_written w(large, 0, 0x67, {0x42, 0, 0, 1, 5});
    EXPECT_EQ(10, w.result);
    EXPECT_EQ((bytes{0, 0, 1, 0x67, 0x42, 0, 0, 3, 1, 5}), w.output());
    EXPECT_TRUE(w.untouched_from(10));
}

TEST(LegacyNalWrite, TwoZerosAtTheEndAreNotEscaped)
{
    const legacy_nal_written w(large, 2, 0x06, {0, 0});
    EXPECT_EQ(5, w.result);
    EXPECT_EQ((bytes{0, 3, 6, 0, 0}), w.output());
    EXPECT_EQ((bytes{0}), escaped({0}));
    EXPECT_EQ((bytes{0, 0}), escaped({0, 0}));
    EXPECT_EQ((bytes{9, 0, 0}), escaped({9, 0, 0}));
}

TEST(LegacyNalWrite, AnEmptyPayloadIsAUnitOfItsHeader)
{
    const legacy_nal_written w(16, 0, 0x09, {});
    EXPECT_EQ((bytes{0, 0, 1, 9}), w.output());
    unsigned char out[16];
    EXPECT_EQ(5, h264_nal_write(out, sizeof(out), nullptr, 0, 4, 9));
    EXPECT_EQ((bytes{0, 0, 0, 1, 9}), bytes(out, out + 5));
}

TEST(LegacyNalWrite, AForbiddenHeaderFailsBehindTheStartCode)
{
    for (unsigned int header = 128; header < 256; ++header) {
        const legacy_nal_written w(large, 0, static_cast<unsigned char>(header), {7});
        EXPECT_EQ(-1, w.result);
        EXPECT_EQ((bytes{0, 0, 1}), w.first(3));
        EXPECT_TRUE(w.untouched_from(3));
    }
}

TEST(LegacyNalWrite, LessThan16BytesOfRoomFailBeforeAnythingElse)
{
    for (std::size_t out_size = 0; out_size < 16; ++out_size)
        for (const unsigned int k : {0U, 1U, 4U, 5U, 0xFFFFFFFFU})
            for (const unsigned char header : bytes{0x67, 0x80}) {
                const legacy_nal_written w(out_size, k, header, {7});
                EXPECT_EQ(-1, w.result);
                EXPECT_TRUE(w.untouched_from(0));
            }
}

TEST(LegacyNalWriteDeathTest, APrefixAboveFourBytesIsTheCallersMistake)
{
    EXPECT_EXIT(legacy_nal_written(16, 5, 0x67, {}), testing::KilledBySignal(SIGABRT),
                support::whole_message("lib/nal_writer:27: assertion failed: nal_length_size <= 4\n"));
    EXPECT_EXIT(legacy_nal_written(16, 0xFFFFFFFF, 0x80, {}), testing::KilledBySignal(SIGABRT),
                "lib/nal_writer:27: assertion failed: nal_length_size <= 4");
}

TEST(LegacyNalWrite, ALengthAboveItsPrefixLosesItsHighBits)
{
    const legacy_nal_written w(large, 1, 0x67, plain(300));
    EXPECT_EQ(302, w.result);
    EXPECT_EQ(45, w.output()[0]);
    const legacy_nal_written longer(70000, 2, 0x67, plain(65600));
    EXPECT_EQ(65603, longer.result);
    EXPECT_EQ((bytes{0, 65}), longer.first(2));
}

TEST(LegacyNalWrite, A20ByteOutputKeepsThreeBytesOfRoom)
{
    const legacy_nal_written w(20, 0, 0x67, plain(100));
    EXPECT_EQ(17, w.result);
    EXPECT_EQ(stream_builder().annexb_unit(0x67, plain(13)).made(), w.output());
    EXPECT_TRUE(w.untouched_from(17));
}

TEST(LegacyNalWrite, RoomStepByStepAgainstTheLiteralWriter)
{
    const bytes payloads[] = {plain(30), bytes(30, 0), {9, 0, 0, 1, 0, 0, 0, 3, 0, 0, 4, 0, 0}, {0, 0, 0}, {}};
    for (const bytes& payload : payloads)
        for (unsigned int k = 0; k <= 4; ++k) {
            const std::size_t need = literal::legacy_write(large, payload, k, 0x67).output.size();
            for (std::size_t out_size = 15; out_size <= std::max<std::size_t>(need, 16) + 4; ++out_size)
                expect_as_literal(out_size, k, 0x67, payload);
        }
}

TEST(LegacyNalWrite, RandomPayloadsInEveryRoomAgainstTheLiteralWriter)
{
    support::random_source random(64);
    for (int round = 0; round < 300 && !testing::Test::HasFatalFailure(); ++round) {
        const bytes payload = support::zero_heavy_up_to(random, 40);
        const auto header = static_cast<unsigned char>(pick(random, 140));
        const auto k = static_cast<unsigned int>(pick(random, 5));
        for (std::size_t out_size = 14; out_size <= stated_room(payload.size()); ++out_size)
            expect_as_literal(out_size, k, header, payload);
    }
}

TEST(LegacyNalWrite, TheStatedRoomIsEnoughForNothingButZeros)
{
    for (std::size_t size = 0; size <= 200; ++size)
        for (unsigned int k = 0; k <= 4; ++k) {
            const legacy_nal_written w(stated_room(size), k, 0x67, bytes(size, 0));
            const std::size_t framing = k == 0 ? 3 : k;
            EXPECT_EQ(framing + 1 + size + (size > 2 ? (size - 1) / 2 : 0), w.output().size()) << size;
        }
}

TEST(LegacyNalWrite, WhatIsWrittenIsScanned)
{
    support::random_source random(66);
    for (int round = 0; round < 3000; ++round) {
        const bytes payload = support::zero_heavy_up_to(random, 60);
        const auto header = static_cast<unsigned char>(pick(random, 128));
        const auto k = static_cast<unsigned int>(pick(random, 5));
        const bytes written = legacy_nal_written(stated_room(payload.size()), k, header, payload).output();
        const guarded_buffer stream(written);
        const guarded_buffer out(payload.size());
        h264_nal_parser_state s;
        ASSERT_EQ(stream.end(), h264_nal_parser_scan(&s, out.begin(), out.size(), stream.begin(), stream.end(), k));
        ASSERT_EQ(1, s.found);
        ASSERT_EQ(header / 32, s.nal_ref_idc);
        ASSERT_EQ(header % 32, s.nal_unit_type);
        ASSERT_EQ(payload, bytes(s.nal, s.nal_fence));
    }
}
