// SEI messages and picture timing for the legacy interface.
#include "support/legacy_parse.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using support::bit_writer;
using support::bytes;
using support::guarded_buffer;

/// The message at the start of some bytes that end at an unmapped page; pointers as offsets.
struct read_pair {
    guarded_buffer buffer;
    h264_sei_pair pair = {9, 9, 9, nullptr, &dirt, &dirt};
    const unsigned char* next;

    explicit read_pair(const bytes& data) : buffer(data), next(h264_sei_read_pair(&pair, buffer.begin(), buffer.end()))
    {
    }

    const h264_sei_pair* operator->() const { return &pair; }

    static constexpr unsigned char dirt = 0;
};

/// An SPS with HRD parameters of these lengths, or none, and pic_struct.
h264_sps timing_sps(bool hrd, unsigned int cpb = 24, unsigned int dpb = 24)
{
    h264_sps sps;
    sps.nal_hrd_parameters_present_flag = hrd ? 1 : 0;
    sps.cpb_removal_delay_length = static_cast<std::uint8_t>(cpb);
    sps.dpb_output_delay_length = static_cast<std::uint8_t>(dpb);
    sps.pic_struct_present_flag = 1;
    return sps;
}

struct parsed_timing_info {
    guarded_buffer buffer;
    h264_sei_picture_timing_info info = {9, 9, 9, 9};
    int result;

    parsed_timing_info(const bytes& data, h264_sps sps)
        : buffer(data), result(h264_sei_picture_timing_info_parse(&info, buffer.begin(), buffer.end(), sps))
    {
    }

    const h264_sei_picture_timing_info* operator->() const { return &info; }
};

int duration_of(const bytes& rbsp, h264_sps sps = timing_sps(false))
{
    const guarded_buffer buffer(rbsp);
    return h264_sei_get_field_duration(sps, buffer.begin(), buffer.end());
}

constexpr std::uint32_t durations[16] = {2, 1, 1, 2, 2, 3, 3, 4, 6};

} // namespace

TEST(LegacySei, AMessageIsTypeSizeAndPayload)
{
    const read_pair p({0x05, 0x02, 0xAA, 0xBB, 0x80});
    EXPECT_EQ(1, p->valid);
    EXPECT_EQ(5U, p->payload_type);
    EXPECT_EQ(2U, p->payload_size);
    EXPECT_EQ(p.buffer.begin(), p->start);
    EXPECT_EQ(p.buffer.begin() + 2, p->data);
    EXPECT_EQ(p.buffer.begin() + 4, p->fence);
    EXPECT_EQ(p.buffer.begin() + 4, p.next);
}

TEST(LegacySei, AnEmptyRangeHasNoMessage)
{
    unsigned char byte = 5;
    const unsigned char* const ranges[][2] = {{&byte, &byte}, {&byte + 1, &byte}, {nullptr, nullptr}};
    for (const auto& range : ranges) {
        h264_sei_pair pair = {1, 2, 3, nullptr, &byte, &byte};
        EXPECT_EQ(range[1], h264_sei_read_pair(&pair, range[0], range[1]));
        EXPECT_EQ(0, pair.valid);
        EXPECT_EQ(0U, pair.payload_type);
        EXPECT_EQ(0U, pair.payload_size);
        EXPECT_EQ(range[0], pair.start);
        EXPECT_EQ(nullptr, pair.data);
        EXPECT_EQ(nullptr, pair.fence);
    }
}

TEST(LegacySei, TheTrailingBitsAreATypeWithoutASize)
{
    const read_pair p({0x80});
    EXPECT_EQ(p.buffer.end(), p.next);
    EXPECT_EQ(0, p->valid);
    EXPECT_EQ(128U, p->payload_type);
    EXPECT_EQ(0U, p->payload_size);
    EXPECT_EQ(nullptr, p->data);
}

TEST(LegacySei, EveryTruncationIsReadAsTheLiteralOneReadsIt)
{
    bytes data = {0xFF, 0xFF, 0x03, 0xFF, 0x05};
    data.resize(5 + 260, 0xEE);
    const bytes tail = {0x01, 0x01, 0x70, 0x06, 0x00, 0x80};
    data.insert(data.end(), tail.begin(), tail.end());
    for (std::size_t size = 0; size <= data.size(); ++size) {
        const guarded_buffer buffer(bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size)));
        ASSERT_EQ("", support::compare_sei_messages(buffer.begin(), buffer.end())) << size;
    }
}

TEST(LegacySei, RandomBytesAreReadAsTheLiteralOneReadsThem)
{
    support::random_source random(5);
    for (int i = 0; i < 5000; ++i) {
        bytes data = support::zero_heavy_up_to(random, 60);
        for (unsigned char& byte : data)
            if (support::pick(random, 4) == 0)
                byte = 0xFF;
        const guarded_buffer buffer(data);
        ASSERT_EQ("", support::compare_sei_messages(buffer.begin(), buffer.end())) << i;
    }
}

TEST(LegacyPicTiming, EveryPicStructHasItsDuration)
{
    for (unsigned int pic_struct = 0; pic_struct < 16; ++pic_struct) {
        const parsed_timing_info p({static_cast<unsigned char>(pic_struct * 16 + 15)}, timing_sps(false));
        EXPECT_EQ(1, p.result);
        EXPECT_EQ(pic_struct, p->pic_struct);
        EXPECT_EQ(durations[pic_struct], p->field_duration);
        EXPECT_EQ(0U, p->cpb_removal_delay);
        EXPECT_EQ(0U, p->dpb_output_delay);
    }
}

TEST(LegacyPicTiming, AnEmptyPayloadIsRefusedWithADurationOfTwo)
{
    const parsed_timing_info p({}, timing_sps(true));
    EXPECT_EQ(0, p.result);
    unsigned char byte = 0xFF;
    h264_sps sps = timing_sps(true);
    const unsigned char* const ranges[][2] = {{&byte, &byte}, {&byte + 1, &byte}, {nullptr, nullptr}};
    for (const auto& range : ranges) {
        h264_sei_picture_timing_info info = {9, 9, 9, 9};
        EXPECT_EQ(0, h264_sei_picture_timing_info_parse(&info, range[0], range[1], sps));
        EXPECT_EQ(0U, info.cpb_removal_delay);
        EXPECT_EQ(0U, info.dpb_output_delay);
        EXPECT_EQ(0U, info.pic_struct);
        EXPECT_EQ(2U, info.field_duration);
    }
}

TEST(LegacyPicTiming, ADelayAbove24BitsIsAllOnesAndConsumesNothing)
{
    for (unsigned int wide = 25; wide < 256; ++wide) {
        const parsed_timing_info dpb(bit_writer().u(24, 0x123456).u(4, 5).bytes(), timing_sps(true, 24, wide));
        EXPECT_EQ(0x123456U, dpb->cpb_removal_delay);
        EXPECT_EQ(0xFFFFFFFFU, dpb->dpb_output_delay);
        EXPECT_EQ(5U, dpb->pic_struct);
        const parsed_timing_info cpb(bit_writer().u(24, 0x123456).u(4, 5).bytes(), timing_sps(true, wide, 24));
        EXPECT_EQ(0xFFFFFFFFU, cpb->cpb_removal_delay);
        EXPECT_EQ(0x123456U, cpb->dpb_output_delay);
        EXPECT_EQ(5U, cpb->pic_struct);
    }
}

TEST(LegacyPicTiming, CutAnywhereReadsZerosBehindTheEnd)
{
    const bytes whole = bit_writer().u(23, 0x5A5A5A).u(21, 0x1BCDEF).u(4, 7).bytes();
    for (std::size_t size = 1; size <= whole.size(); ++size) {
        const bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const parsed_timing_info alone(cut, timing_sps(true, 23, 21));
        const parsed_timing_info padded(support::followed_by_zeros(cut, 16), timing_sps(true, 23, 21));
        EXPECT_EQ(1, alone.result);
        EXPECT_EQ(padded->cpb_removal_delay, alone->cpb_removal_delay);
        EXPECT_EQ(padded->dpb_output_delay, alone->dpb_output_delay);
        EXPECT_EQ(padded->pic_struct, alone->pic_struct);
        EXPECT_EQ(padded->field_duration, alone->field_duration);
    }
}

TEST(LegacyFieldDuration, OtherMessagesArePassedOver)
{
    EXPECT_EQ(3, duration_of({0, 2, 0x11, 0x22, 5, 0, 0xFF, 0x00, 1, 0xFF, 1, 1, 0x50, 0x80}));
}

TEST(LegacyFieldDuration, TheFirstPictureTimingCounts)
{
    EXPECT_EQ(1, duration_of({1, 1, 0x10, 1, 1, 0x70, 0x80}));
    EXPECT_EQ(4, duration_of({1, 1, 0x70, 1, 1, 0x10, 0x80}));
    EXPECT_EQ(2, duration_of({1, 0, 1, 1, 0x70, 0x80})) << "an empty one counts too";
}

TEST(LegacyFieldDuration, IsTwoWithoutAPictureTiming)
{
    EXPECT_EQ(2, duration_of({}));
    EXPECT_EQ(2, duration_of({0x80}));
    EXPECT_EQ(2, duration_of({0, 1, 0x70, 0x80}));
    EXPECT_EQ(2, duration_of({0, 1, 0x70}));
    EXPECT_EQ(2, duration_of({0xFF, 2, 1, 0x70, 0x80})) << "a type of 257";
    h264_sps sps = timing_sps(false);
    EXPECT_EQ(2, h264_sei_get_field_duration(sps, nullptr, nullptr));
    unsigned char byte = 1;
    EXPECT_EQ(2, h264_sei_get_field_duration(sps, &byte + 1, &byte));
    sps.pic_struct_present_flag = 0;
    EXPECT_EQ(2, duration_of({1, 1, 0x70, 0x80}, sps));
}

TEST(LegacyFieldDuration, AMessageThatIsNotWholeEndsTheWalk)
{
    EXPECT_EQ(2, duration_of({1, 2, 0x70}));
    EXPECT_EQ(2, duration_of({0, 9, 1, 1, 0x70, 0x80}));
    EXPECT_EQ(2, duration_of({1}));
    EXPECT_EQ(2, duration_of({1, 0xFF}));
}

TEST(LegacyFieldDuration, ThePayloadAloneIsRead)
{
    // 24 and 24 bits of delays do not fit: pic_struct lies behind the payload and is 0, whatever stands there.
    EXPECT_EQ(2, duration_of({1, 6, 0, 0, 0, 0, 0, 0, 0x70, 0, 0x80}, timing_sps(true)));
    EXPECT_EQ(4, duration_of({1, 7, 0, 0, 0, 0, 0, 0, 0x70, 0x80}, timing_sps(true)));
}
