#include <orv-utils-v4/h264/nal_sei.h>

#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>
#include <vector>

namespace {

using brenik::h264_nal_sei_payload_type;
using brenik::h264_nal_sei_payload_type_to_str;
using brenik::h264_nal_sei_reader;
using bytes = std::vector<unsigned char>;

bytes payload_of(const h264_nal_sei_reader& reader)
{
    return {reader.payload, reader.payload_fence};
}

/// A reader on the first message of bytes that end at an unmapped page.
struct on_first_message : h264_nal_sei_reader {
    explicit on_first_message(const bytes& rbsp) : data(rbsp)
    {
        set_ptr(data.begin(), data.end());
        EXPECT_TRUE(next_message());
    }

    const support::guarded_buffer data;
};

/// As before any message of [ptr, fence).
void expect_no_message(const h264_nal_sei_reader& reader, const unsigned char* ptr, const unsigned char* fence)
{
    EXPECT_EQ(reader.ptr, ptr);
    EXPECT_EQ(reader.fence, fence);
    EXPECT_EQ(reader.message, nullptr);
    EXPECT_EQ(reader.payload, nullptr);
    EXPECT_EQ(reader.payload_fence, nullptr);
    EXPECT_EQ(reader.payloadType, 202U);
    EXPECT_EQ(reader.payloadSize, 0U);
    EXPECT_FALSE(reader.has_message);
}

TEST(SeiReader, ANewReaderHasNoMessage)
{
    h264_nal_sei_reader reader;
    expect_no_message(reader, nullptr, nullptr);
    EXPECT_FALSE(reader.truncated);
    EXPECT_FALSE(reader.next_message());
}

TEST(SeiReader, AMessageIsTypeSizeAndPayloadAndTheTrailingBitsEndTheWalk)
{
    on_first_message reader({0x05, 0x02, 0xAA, 0xBB, 0x80});
    EXPECT_TRUE(reader.has_message);
    EXPECT_FALSE(reader.truncated);
    EXPECT_EQ(reader.message, reader.data.begin());
    EXPECT_EQ(reader.payloadType, brenik::h264_nal_sei_payload_type_user_data_unregistered);
    EXPECT_EQ(reader.payloadSize, 2U);
    EXPECT_EQ(payload_of(reader), (bytes{0xAA, 0xBB}));
    EXPECT_EQ(reader.ptr, reader.data.end());
    EXPECT_FALSE(reader.next_message());
    EXPECT_FALSE(reader.has_message);
}

TEST(SeiReader, TypesAbove255AreSums)
{
    on_first_message reader({0xFF, 0x0A, 0x01, 0x00, 0x80});
    EXPECT_EQ(reader.payloadType, 265U);
    EXPECT_EQ(reader.payloadSize, 1U);
    EXPECT_EQ(payload_of(reader), bytes{0x00});
}

TEST(SeiReader, ASizeBeyondTheEndTruncatesThePayload)
{
    on_first_message reader({0x05, 10, 1, 2, 3});
    EXPECT_TRUE(reader.truncated);
    EXPECT_EQ(reader.payloadSize, 10U);
    EXPECT_EQ(payload_of(reader), (bytes{1, 2, 3}));
    EXPECT_EQ(reader.payload_fence, reader.fence);
    EXPECT_EQ(reader.ptr, reader.fence);
    EXPECT_FALSE(reader.next_message());
    EXPECT_FALSE(reader.truncated) << "every next_message() clears it";
}

TEST(SeiReader, APayloadThatEndsWithTheDataIsNotTruncated)
{
    on_first_message reader({0x05, 2, 1, 2});
    EXPECT_FALSE(reader.truncated);
    EXPECT_EQ(payload_of(reader), (bytes{1, 2}));
    EXPECT_EQ(reader.ptr, reader.fence);
}

TEST(SeiReader, MessagesFollowEachOther)
{
    on_first_message reader({0x01, 0x01, 0xAA, 0x06, 0x00, 0x00, 0x02, 0xBB, 0xCC, 0x80});
    EXPECT_EQ(reader.payloadType, 1U);
    EXPECT_EQ(payload_of(reader), bytes{0xAA});
    ASSERT_TRUE(reader.next_message());
    EXPECT_EQ(reader.payloadType, 6U);
    EXPECT_EQ(payload_of(reader), bytes());
    ASSERT_TRUE(reader.next_message());
    EXPECT_EQ(reader.payloadType, 0U);
    EXPECT_EQ(payload_of(reader), (bytes{0xBB, 0xCC}));
    EXPECT_FALSE(reader.next_message());
}

TEST(SeiReader, FewerThanTwoBytesAreNoMessageAndChangeOnlyTheFlags)
{
    for (const std::size_t size : {0U, 1U}) {
        const support::guarded_buffer data(bytes(size, 0x05));
        h264_nal_sei_reader reader(data.begin(), data.end());
        reader.has_message = reader.truncated = true;
        EXPECT_FALSE(reader.next_message());
        EXPECT_FALSE(reader.has_message);
        EXPECT_FALSE(reader.truncated);
        EXPECT_EQ(reader.ptr, data.begin());
        EXPECT_EQ(reader.message, nullptr);
        EXPECT_EQ(reader.payloadType, 202U);
    }
}

TEST(SeiReader, ATypeThatReachesTheEndFailsAndKeepsTheTypeBefore)
{
    on_first_message reader({0x05, 0x00, 0xFF, 0xFF, 0xFF});
    EXPECT_FALSE(reader.next_message());
    EXPECT_FALSE(reader.has_message);
    EXPECT_EQ(reader.payloadType, 5U);
}

TEST(SeiReader, ASizeThatReachesTheEndFailsBehindTheNewType)
{
    on_first_message reader({0x05, 0x00, 0x06, 0xFF});
    EXPECT_FALSE(reader.next_message());
    EXPECT_FALSE(reader.has_message);
    EXPECT_EQ(reader.payloadType, 6U);
    EXPECT_EQ(reader.payloadSize, 0U);
}

TEST(SeiReader, OnlyALoneStopByteIsSkipped)
{
    const support::guarded_buffer other(bytes{0x05, 0x00, 0x81});
    h264_nal_sei_reader reader(other.begin(), other.end());
    ASSERT_TRUE(reader.next_message());
    EXPECT_EQ(reader.ptr, other.end() - 1);
    EXPECT_FALSE(reader.next_message());

    const support::guarded_buffer two(bytes{0x05, 0x00, 0x80, 0x00});
    reader.set_ptr(two.begin(), two.end());
    ASSERT_TRUE(reader.next_message());
    ASSERT_TRUE(reader.next_message()) << "80 00 reads as a message of type 128";
    EXPECT_EQ(reader.payloadType, 128U);
}

TEST(SeiReader, SetPtrStartsOverAndLeavesTruncatedAlone)
{
    on_first_message reader({0x05, 10, 1});
    reader.set_ptr(reader.data.begin(), reader.data.end());
    expect_no_message(reader, reader.data.begin(), reader.data.end());
    EXPECT_TRUE(reader.truncated);
}

TEST(SeiReader, MembersLieInTheirOrder)
{
    static_assert(std::is_trivially_copyable_v<h264_nal_sei_reader>);
    if (sizeof(void*) != 8)
        GTEST_SKIP() << "offsets are those of 64-bit pointers";
    EXPECT_EQ(offsetof(h264_nal_sei_reader, ptr), 0U);
    EXPECT_EQ(offsetof(h264_nal_sei_reader, fence), 8U);
    EXPECT_EQ(offsetof(h264_nal_sei_reader, message), 16U);
    EXPECT_EQ(offsetof(h264_nal_sei_reader, payload), 24U);
    EXPECT_EQ(offsetof(h264_nal_sei_reader, payload_fence), 32U);
    EXPECT_EQ(offsetof(h264_nal_sei_reader, payloadType), 40U);
    EXPECT_EQ(offsetof(h264_nal_sei_reader, payloadSize), 44U);
    EXPECT_EQ(offsetof(h264_nal_sei_reader, has_message), 48U);
    EXPECT_EQ(offsetof(h264_nal_sei_reader, truncated), 49U);
    EXPECT_EQ(sizeof(h264_nal_sei_reader), 56U);
}

TEST(SeiPayloadTypeName, NumbersWithoutANameAreTheEmptyString)
{
    for (const unsigned int number : {202U, 1000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_STREQ(h264_nal_sei_payload_type_to_str(static_cast<h264_nal_sei_payload_type>(number)), "") << number;
}

} // namespace
