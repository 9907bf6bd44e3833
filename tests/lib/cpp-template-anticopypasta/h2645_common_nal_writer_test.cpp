// The NAL writer: its members, its framings, and each way to write nothing.
#include "support/guarded_writer.h"
#include "support/whole_message.h"

#include <orv-utils-v4/h264/nal_writer.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>

namespace {

using brenik::h2645_common_nalfmt;
using brenik::h264_nal_writer;
using support::bytes;
using support::guarded_buffer;
using support::guarded_writer;
using support::stream_builder;

constexpr h2645_common_nalfmt unknown_framing = static_cast<h2645_common_nalfmt>(6);

/// The payload that `payload` becomes behind an SPS header in `nalfmt`.
bytes escaped(h2645_common_nalfmt nalfmt, const bytes& payload)
{
    guarded_writer w(nalfmt, h264_nal_writer::recommended_output_size(payload.size()));
    const std::size_t count = w.encode(support::sps, payload);
    const std::size_t framing = nalfmt == brenik::nalfmt_annexb ? 3 : std::size_t{nalfmt};
    EXPECT_LT(framing, count);
    EXPECT_EQ(support::sps, w.writer.buffer[framing]);
    return bytes(w.writer.buffer + framing + 1, w.writer.write);
}

struct escaping {
    const char* name;
    bytes payload;
    bytes annexb;
    bytes prefixed;
};

const escaping escapings[] = {
    {"nothing", {}, {}, {}},
    {"one zero", {0}, {0}, {0}},
    {"two zeros", {0, 0}, {0, 0, 3}, {0, 0}},
    {"three zeros", {0, 0, 0}, {0, 0, 3, 0}, {0, 0, 3, 0}},
    {"four zeros", {0, 0, 0, 0}, {0, 0, 3, 0, 0, 3}, {0, 0, 3, 0, 0}},
    {"five zeros", {0, 0, 0, 0, 0}, {0, 0, 3, 0, 0, 3, 0}, {0, 0, 3, 0, 0, 3, 0}},
    {"a start code", {9, 0, 0, 1, 8}, {9, 0, 0, 3, 1, 8}, {9, 0, 0, 3, 1, 8}},
    {"a two", {0, 0, 2}, {0, 0, 3, 2}, {0, 0, 3, 2}},
    {"a three", {0, 0, 3}, {0, 0, 3, 3}, {0, 0, 3, 3}},
    {"a four", {0, 0, 4}, {0, 0, 4}, {0, 0, 4}},
    {"a large byte", {0, 0, 0xFF}, {0, 0, 0xFF}, {0, 0, 0xFF}},
    {"single zeros", {0, 1, 0, 2, 0, 3, 0}, {0, 1, 0, 2, 0, 3, 0}, {0, 1, 0, 2, 0, 3, 0}},
    {"one zero at the end", {7, 0}, {7, 0}, {7, 0}},
    {"two zeros at the end", {7, 8, 0, 0}, {7, 8, 0, 0, 3}, {7, 8, 0, 0}},
    {"two zeros one byte earlier", {0, 0, 7}, {0, 0, 7}, {0, 0, 7}},
    {"an escape and then two zeros", {0, 0, 1, 0, 0}, {0, 0, 3, 1, 0, 0, 3}, {0, 0, 3, 1, 0, 0}},
};

} // namespace

TEST(NalWriter, ANewWriterHasNoFramingAndNoBuffer)
{
    h264_nal_writer writer{};
    EXPECT_EQ(brenik::nalfmt_none, writer.nalfmt);
    EXPECT_EQ(nullptr, writer.buffer);
    EXPECT_EQ(nullptr, writer.write);
    EXPECT_EQ(nullptr, writer.fence);
    EXPECT_EQ(0U, writer.data_length());
    EXPECT_TRUE(writer.full());
    EXPECT_EQ(0U, writer.block_encode(nullptr, 0, support::header(support::sps), 0));
}

TEST(NalWriter, TheConstructorStoresWhatItIsGiven)
{
    unsigned char bytes[8] = {};
    const h264_nal_writer writer(bytes + 1, bytes + 3, bytes + 8, brenik::nalfmt_length3);
    EXPECT_EQ(brenik::nalfmt_length3, writer.nalfmt);
    EXPECT_EQ(bytes + 1, writer.buffer);
    EXPECT_EQ(bytes + 3, writer.write);
    EXPECT_EQ(bytes + 8, writer.fence);
    EXPECT_EQ(2U, writer.data_length());
    EXPECT_FALSE(writer.full());
}

TEST(NalWriter, SetbufReplacesThePointersAndKeepsTheFraming)
{
    unsigned char bytes[8] = {};
    h264_nal_writer writer(nullptr, nullptr, nullptr, brenik::nalfmt_annexb);
    writer.setbuf(bytes, bytes + 5, bytes + 7);
    EXPECT_EQ(bytes, writer.buffer);
    EXPECT_EQ(bytes + 5, writer.write);
    EXPECT_EQ(bytes + 7, writer.fence);
    EXPECT_EQ(brenik::nalfmt_annexb, writer.nalfmt);
    EXPECT_EQ(5U, writer.data_length());
}

TEST(NalWriter, IsFullWhenNoByteOfRoomIsLeft)
{
    unsigned char bytes[8] = {};
    h264_nal_writer writer;
    writer.setbuf(bytes, bytes + 6, bytes + 7);
    EXPECT_FALSE(writer.full());
    writer.setbuf(bytes, bytes + 7, bytes + 7);
    EXPECT_TRUE(writer.full());
    writer.setbuf(bytes, bytes + 8, bytes + 7);
    EXPECT_TRUE(writer.full());
}

TEST(NalWriter, RecommendedOutputSizeIsOneAndAHalfTimesThePayloadAnd32)
{
    EXPECT_EQ(32U, h264_nal_writer::recommended_output_size(0));
    EXPECT_EQ(33U, h264_nal_writer::recommended_output_size(1));
    EXPECT_EQ(35U, h264_nal_writer::recommended_output_size(2));
    EXPECT_EQ(183U, h264_nal_writer::recommended_output_size(101));
    EXPECT_EQ(1500032U, h264_nal_writer::recommended_output_size(1000000));
    // 3 n keeps its low bits before it is halved.
    EXPECT_EQ(((SIZE_MAX / 2 * 3) >> 1) + 32, h264_nal_writer::recommended_output_size(SIZE_MAX / 2));
}

TEST(NalWriter, RecommendedOutputSizeHas28ZeroBytesInIt)
{
    for (std::size_t size = 0; size <= 200; ++size) {
        bytes zeros(size);
        brenik::h264_nal header;
        header.valid = true;
        for (const unsigned int zero_bytes : {28U, 29U}) {
            const guarded_buffer out(h264_nal_writer::recommended_output_size(size));
            h264_nal_writer writer(out.begin(), out.begin(), out.end(), brenik::nalfmt_annexb);
            const std::size_t written = writer.block_encode(zeros.data(), size, header, zero_bytes);
            EXPECT_EQ(zero_bytes == 28, written != 0) << size;
        }
    }
}

TEST(NalWriter, RecommendedOutputSizeHoldsThePayloadThatEscapesMost)
{
    for (std::size_t size = 0; size <= 200; ++size)
        for (unsigned int nalfmt = 2; nalfmt <= 6; ++nalfmt) {
            guarded_writer w(static_cast<h2645_common_nalfmt>(nalfmt), h264_nal_writer::recommended_output_size(size));
            EXPECT_LT(size + size / 3, w.encode(support::sps, bytes(size, 0), 1)) << size << " in " << nalfmt;
        }
}

TEST(NalWriter, AnnexBUnitWithAFourByteStartCode)
{
    guarded_writer w(brenik::nalfmt_annexb, 40);
    EXPECT_EQ(10U, w.encode(support::sps, {0x42, 0x00, 0x00, 0x01}, 1));
    EXPECT_EQ((bytes{0x00, 0x00, 0x00, 0x01, 0x67, 0x42, 0x00, 0x00, 0x03, 0x01}), w.output());
    EXPECT_EQ(10U, w.writer.data_length());
    EXPECT_TRUE(guarded_buffer::untouched(w.writer.write, w.writer.fence));
    EXPECT_TRUE(w.buffer.surroundings_untouched());
}

TEST(NalWriter, AnnexBStartCodesHaveAsManyZerosAsAsked)
{
    for (unsigned int zero_bytes = 0; zero_bytes <= 10; ++zero_bytes) {
        guarded_writer w(brenik::nalfmt_annexb, 40);
        EXPECT_EQ(zero_bytes + 5, w.encode(support::aud, {0xF0}, zero_bytes));
        EXPECT_EQ(stream_builder().zeros(zero_bytes).annexb_unit(support::aud, {0xF0}).made(), w.output());
    }
}

TEST(NalWriter, PrefixedUnitsCarryTheLengthOfHeaderAndEscapedPayload)
{
    for (unsigned int nalfmt = 1; nalfmt <= 4; ++nalfmt) {
        guarded_writer w(static_cast<h2645_common_nalfmt>(nalfmt), 40);
        EXPECT_EQ(nalfmt + 6, w.encode(support::sps, {0x42, 0x00, 0x00, 0x01}, 7)) << "zero_bytes are ignored";
        EXPECT_EQ(stream_builder().prefixed_unit(nalfmt, support::sps, {0x42, 0x00, 0x00, 0x03, 0x01}).made(),
                  w.output());
    }
}

TEST(NalWriter, AFramingAbove5WritesHeaderAndEscapedPayloadPlainly)
{
    for (unsigned int nalfmt : {6U, 7U, 0xFFFFFFFFU}) {
        guarded_writer w(static_cast<h2645_common_nalfmt>(nalfmt), 40);
        EXPECT_EQ(7U, w.encode(support::sps, {0, 0, 1, 0, 0}, 3)) << nalfmt;
        EXPECT_EQ((bytes{support::sps, 0, 0, 3, 1, 0, 0}), w.output()) << nalfmt;
    }
}

TEST(NalWriter, WithoutFramingNothingIsWritten)
{
    guarded_writer w(brenik::nalfmt_none, 40);
    EXPECT_EQ(0U, w.encode(support::sps, {1, 2, 3}, 1));
    EXPECT_EQ(0U, w.writer.data_length());
    EXPECT_TRUE(guarded_buffer::untouched(w.buffer.begin(), w.buffer.end()));
}

TEST(NalWriter, FourZerosInAnnexBAndBehindAPrefix)
{
    EXPECT_EQ((bytes{0x00, 0x00, 0x03, 0x00, 0x00, 0x03}), escaped(brenik::nalfmt_annexb, bytes(4, 0)));
    guarded_writer w(brenik::nalfmt_length4, 40);
    w.encode(support::sps, bytes(4, 0));
    EXPECT_EQ((bytes{0x00, 0x00, 0x00, 0x06, 0x67, 0x00, 0x00, 0x03, 0x00, 0x00}), w.output());
}

TEST(NalWriter, EveryShapeOfEscape)
{
    for (const escaping& e : escapings) {
        EXPECT_EQ(e.annexb, escaped(brenik::nalfmt_annexb, e.payload)) << "Annex B, " << e.name;
        for (unsigned int nalfmt = 1; nalfmt <= 4; ++nalfmt)
            EXPECT_EQ(e.prefixed, escaped(static_cast<h2645_common_nalfmt>(nalfmt), e.payload)) << nalfmt << e.name;
        guarded_writer plain(unknown_framing, 40);
        plain.encode(support::sps, e.payload);
        EXPECT_EQ(e.prefixed, bytes(plain.writer.buffer + 1, plain.writer.write)) << "no framing, " << e.name;
    }
}

TEST(NalWriter, AnInvalidHeaderGoesOutAsFF)
{
    guarded_writer w(brenik::nalfmt_length1, 40);
    EXPECT_EQ(3U, w.encode(brenik::h264_nal{}, {5}));
    EXPECT_EQ((bytes{2, 0xFF, 5}), w.output());
}

TEST(NalWriter, AnEmptyPayloadMayBeANullPointer)
{
    guarded_writer w(brenik::nalfmt_annexb, 4);
    EXPECT_EQ(4U, w.writer.block_encode(nullptr, 0, support::header(support::aud), 0));
    EXPECT_EQ((bytes{0, 0, 1, support::aud}), w.output());
    EXPECT_TRUE(w.writer.full());
}

TEST(NalWriter, TheBufferAndThePayloadBeforeWriteStayAsTheyWere)
{
    const guarded_buffer buffer(40);
    h264_nal_writer writer(buffer.begin(), buffer.begin() + 10, buffer.end(), brenik::nalfmt_length2);
    const guarded_buffer payload(bytes{0, 0, 1});
    EXPECT_EQ(7U, writer.block_encode(payload.begin(), payload.size(), support::header(support::sps), 0));
    EXPECT_EQ(17U, writer.data_length());
    EXPECT_TRUE(guarded_buffer::untouched(buffer.begin(), buffer.begin() + 10));
    EXPECT_TRUE(guarded_buffer::untouched(buffer.begin() + 17, buffer.end()));
    EXPECT_EQ((bytes{0, 0, 1}), bytes(payload.begin(), payload.end()));
}

TEST(NalWriter, AUnitLongerThanItsPrefixCanTellIsNotWritten)
{
    struct limit {
        h2645_common_nalfmt nalfmt;
        std::size_t largest_body;
    };
    for (const limit& l : {limit{brenik::nalfmt_length1, 255}, limit{brenik::nalfmt_length2, 65535},
                           limit{brenik::nalfmt_length3, 16777215}}) {
        SCOPED_TRACE(l.nalfmt);
        guarded_writer w(l.nalfmt, l.largest_body + 40);
        w.encode(support::aud, {});
        const std::size_t before = w.writer.data_length();
        EXPECT_EQ(0U, w.encode(support::sps, bytes(l.largest_body, 9)));
        EXPECT_EQ(before, w.writer.data_length());
        EXPECT_EQ(l.nalfmt + l.largest_body, w.encode(support::sps, bytes(l.largest_body - 1, 9)));
        EXPECT_EQ(bytes(l.nalfmt, 0xFF), bytes(w.writer.buffer + before, w.writer.buffer + before + l.nalfmt));
    }
}

TEST(NalWriter, MoreZerosThanThereIsRoomForAreNotWritten)
{
    for (const unsigned int zero_bytes : {37U, 41U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        guarded_writer w(brenik::nalfmt_annexb, 40);
        EXPECT_EQ(0U, w.encode(support::sps, {1}, zero_bytes));
        EXPECT_EQ(0U, w.writer.data_length());
    }
    guarded_writer w(brenik::nalfmt_annexb, 40);
    EXPECT_EQ(40U, w.encode(support::sps, {}, 36));
}

TEST(NalWriter, AFullBufferIsRefusedBeforeAnyAssertion)
{
    const guarded_buffer buffer(8);
    const brenik::h264_nal nal = support::header(support::sps);
    h264_nal_writer full(buffer.begin(), buffer.end(), buffer.end(), brenik::nalfmt_annexb);
    EXPECT_EQ(0U, full.block_encode(nullptr, 0, nal, 0));
    h264_nal_writer past_its_fence(buffer.begin(), buffer.end(), buffer.begin() + 4, brenik::nalfmt_annexb);
    EXPECT_EQ(0U, past_its_fence.block_encode(nullptr, 0, nal, 0));
    EXPECT_EQ(buffer.end(), past_its_fence.write);
    h264_nal_writer write_before_buffer(buffer.end(), buffer.begin() + 4, buffer.begin() + 4, brenik::nalfmt_annexb);
    EXPECT_EQ(0U, write_before_buffer.block_encode(nullptr, 0, nal, 0));
    EXPECT_TRUE(guarded_buffer::untouched(buffer.begin(), buffer.end()));
}

TEST(NalWriter, AMissingBufferIsRefusedWhateverTheOtherPointersAre)
{
    const guarded_buffer buffer(8);
    h264_nal_writer writer(nullptr, buffer.begin(), buffer.end(), brenik::nalfmt_annexb);
    EXPECT_EQ(0U, writer.block_encode(nullptr, 0, support::header(support::sps), 0));
    EXPECT_EQ(buffer.begin(), writer.write);
    EXPECT_TRUE(guarded_buffer::untouched(buffer.begin(), buffer.end()));
}

TEST(NalWriterDeathTest, WriteBeforeBufferIsTheAssertionOfLine37)
{
    const guarded_buffer buffer(8);
    for (unsigned int nalfmt = 0; nalfmt <= 6; ++nalfmt) {
        h264_nal_writer writer(buffer.begin() + 1, buffer.begin(), buffer.end(),
                               static_cast<h2645_common_nalfmt>(nalfmt));
        EXPECT_EXIT(writer.block_encode(nullptr, 0, support::header(support::sps), 0), testing::KilledBySignal(SIGABRT),
                    support::whole_message(
                        "lib/cpp-template-anticopypasta/h2645_common_nal_writer\\.template:37: assertion failed: "
                        "buffer <= write\n"));
    }
}
