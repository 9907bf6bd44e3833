#include <orv-utils-v4/misc/be_bitfields.h>

#include "support/guarded_buffer.h"
#include "support/legacy_bits_walk.h"
#include "support/stream_builder.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <tuple>

namespace {

using support::bytes;
using support::guarded_buffer;
using support::legacy_bits_walk;

constexpr std::uint32_t all_ones = 0xFFFFFFFF;

be_bitfield opened(const unsigned char* data)
{
    be_bitfield b;
    be_bitfield_open(&b, data);
    return b;
}

auto members(const be_bitfield& b)
{
    return std::tuple(b.ptr, b.word, b.bits, b.open);
}

/// `size` bytes, each different from its neighbours in every bit width.
bytes counted(std::size_t size)
{
    bytes made(size);
    for (std::size_t i = 0; i < size; ++i)
        made[i] = static_cast<unsigned char>(37 * i + 0x5B);
    return made;
}

} // namespace

TEST(BeBitfield, OpeningLoadsFourBytes)
{
    const guarded_buffer data(bytes{0x12, 0x34, 0x56, 0x78});
    be_bitfield b{nullptr, 9, 5, 0};
    be_bitfield_open(&b, data.begin());
    EXPECT_EQ(std::tuple(data.end(), 0x12345678U, 0, 1), members(b));
}

TEST(BeBitfield, AWidthOfZeroGivesZeroAndLeavesTheReaderAlone)
{
    const guarded_buffer data(bytes{0xFF, 0xFE, 0xFD, 0xFC});
    for (unsigned int bits = 0; bits < 256; ++bits) {
        be_bitfield b{data.end(), all_ones, static_cast<std::uint8_t>(bits), 1};
        const be_bitfield before = b;
        EXPECT_EQ(0U, be_bitfield_read(&b, 0));
        EXPECT_EQ(members(before), members(b));
    }
}

TEST(BeBitfield, WidthsAbove24GiveAllOnesAndLeaveTheReaderAlone)
{
    const guarded_buffer data(bytes{0, 0, 0, 0});
    for (unsigned int n = 25; n < 256; ++n)
        for (unsigned int bits = 0; bits < 256; ++bits) {
            be_bitfield b{data.end(), 0, static_cast<std::uint8_t>(bits), 0};
            const be_bitfield before = b;
            ASSERT_EQ(all_ones, be_bitfield_read(&b, static_cast<unsigned char>(n)));
            ASSERT_EQ(members(before), members(b)) << n << ", " << bits;
        }
}

/// The assertion cannot be reached: whatever `bits` holds, a refill leaves at most 7 and a read adds at most 24.
TEST(BeBitfield, EveryStateAndEveryWidth)
{
    const bytes content = counted(40);
    const guarded_buffer data(content);
    for (unsigned int bits = 0; bits < 256; ++bits)
        for (unsigned int n = 0; n < 256; ++n) {
            literal::legacy_bit_reader model(content, bits);
            be_bitfield b = opened(data.begin());
            b.bits = static_cast<std::uint8_t>(bits);
            ASSERT_EQ(model.u(n), be_bitfield_read(&b, static_cast<unsigned char>(n))) << bits << ", " << n;
            ASSERT_EQ(std::tuple(data.begin() + model.loaded, model.word(), model.bits(), 1), members(b));
        }
}

TEST(BeBitfield, FourReadableBytesBehindTheLastBitAreEnough)
{
    for (unsigned char n = 1; n <= 24; ++n)
        for (std::size_t size = 0; size <= 12; ++size) {
            const guarded_buffer data(counted(size + 4));
            be_bitfield b = opened(data.begin());
            for (std::size_t left = 8 * size; left > 0;) {
                const auto width = static_cast<unsigned char>(std::min<std::size_t>(n, left));
                be_bitfield_read(&b, width);
                left -= width;
            }
            EXPECT_LE(b.ptr, data.end());
        }
}

TEST(BeBitfield, OpeningUpToAFenceReadsNothingAtIt)
{
    const bytes content = {0x81, 0x82, 0x83, 0x84, 0x85};
    const std::uint32_t words[] = {0, 0x81000000, 0x81820000, 0x81828300, 0x81828384, 0x81828384};
    for (std::size_t size = 0; size <= 5; ++size) {
        const guarded_buffer data(bytes(content.data(), content.data() + size));
        be_bitfield b{nullptr, 9, 5, 0};
        be_bitfield_open_until(&b, data.begin(), data.end());
        EXPECT_EQ(std::tuple(data.begin() + std::min<std::size_t>(size, 4), words[size], 0, 1), members(b));
    }
}

TEST(BeBitfield, BitsAtAndPastTheFenceAreZeroAndPtrStays)
{
    for (std::size_t size = 0; size <= 6; ++size)
        for (unsigned char n = 1; n <= 24; ++n) {
            const guarded_buffer data(bytes(size, 0xFF));
            legacy_bits_walk walk(data.begin(), size);
            ASSERT_EQ("", walk.opened());
            for (int reads = 0; reads < 12; ++reads)
                ASSERT_EQ("", walk.read(n)) << size << " bytes in reads of " << int{n};
            ASSERT_EQ("", walk.read(0));
            ASSERT_EQ("", walk.read(25));
        }
}

TEST(BeBitfield, AFenceWithinReadableBytesHidesThem)
{
    const bytes content = counted(12);
    for (std::size_t size = 0; size <= 12; ++size) {
        legacy_bits_walk walk(content.data(), size);
        ASSERT_EQ("", walk.opened());
        for (int reads = 0; reads < 40; ++reads)
            ASSERT_EQ("", walk.read(5)) << size;
    }
}

TEST(BeBitfield, APtrPastTheFenceStaysAndReadsZeros)
{
    const guarded_buffer data(bytes(8, 0xFF));
    be_bitfield b = opened(data.begin());
    b.bits = 32;
    EXPECT_EQ(0U, be_bitfield_read_until(&b, 24, data.begin() + 3));
    EXPECT_EQ(std::tuple(data.begin() + 4, 0U, 24, 1), members(b));
}

TEST(BeBitfield, ANullFenceIsNoFence)
{
    const guarded_buffer data(counted(12));
    be_bitfield b;
    be_bitfield_open_until(&b, data.begin(), nullptr);
    be_bitfield same = opened(data.begin());
    EXPECT_EQ(members(same), members(b));
    for (int reads = 0; reads < 9; ++reads) {
        EXPECT_EQ(be_bitfield_read(&same, 7), be_bitfield_read_until(&b, 7, nullptr));
        EXPECT_EQ(members(same), members(b));
    }
}

TEST(BeBitfield, RandomReadsOverRandomBytesAgainstSingleBits)
{
    support::random_source random(61);
    for (int round = 0; round < 2000; ++round) {
        const bytes content = support::zero_heavy_up_to(random, 30);
        const guarded_buffer data(content);
        legacy_bits_walk fenced(data.begin(), content.size());
        ASSERT_EQ("", fenced.opened());
        while (fenced.model.position < 8 * content.size() + 40)
            ASSERT_EQ("", fenced.read(static_cast<unsigned char>(1 + support::pick(random, 30))));
        const guarded_buffer longer(support::stream_builder().raw(content).fill(4, 0xFF));
        legacy_bits_walk open(longer.begin(), longer.size(), legacy_bits_walk::end::open);
        ASSERT_EQ("", open.opened());
        while (open.model.position + 24 <= 8 * content.size())
            ASSERT_EQ("", open.read(static_cast<unsigned char>(support::pick(random, 256))));
    }
}
