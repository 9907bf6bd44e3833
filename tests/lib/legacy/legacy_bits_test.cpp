// The reads of the legacy syntax up to a fence. They are not exported: this program compiles their source in.
#include "legacy/legacy_bits.h"

#include "support/guarded_buffer.h"
#include "support/legacy_bits_walk.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using orv_utils_v4::legacy::legacy_bits;
using support::bytes;
using support::guarded_buffer;
using support::legacy_bits_walk;

} // namespace

TEST(LegacyBits, ZerosBehindTheFenceAreAPrefixThatEndsAt24)
{
    for (std::size_t size = 0; size <= 7; ++size) {
        const guarded_buffer data(bytes(size, 0));
        legacy_bits_walk walk(data.begin(), size);
        EXPECT_EQ("", walk.fenced_ue());
        EXPECT_EQ(48U, walk.model.position);
        EXPECT_EQ("", walk.fenced_se());
        EXPECT_EQ(data.end(), walk.real.ptr);
    }
}

TEST(LegacyBits, ACodeCutByTheFenceGoesOnInZeros)
{
    const bytes whole = {0x00, 0x01, 0xFF, 0xFF};
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const guarded_buffer data(bytes(whole.data(), whole.data() + size));
        legacy_bits_walk walk(data.begin(), size);
        EXPECT_EQ("", walk.fenced_ue()) << size;
        EXPECT_EQ("", walk.at_end()) << size;
    }
}

TEST(LegacyBits, ThirtyTwoBitsAreTwoHalves)
{
    const guarded_buffer data(bytes{0xF8, 0x12, 0x34, 0x56, 0x7F});
    for (unsigned char first = 0; first <= 16; ++first) {
        legacy_bits_walk walk(data.begin(), data.size());
        ASSERT_EQ("", walk.read(first));
        ASSERT_EQ("", walk.u32());
    }
    legacy_bits_walk walk(data.begin(), data.size());
    EXPECT_EQ(0xF8123456U, (legacy_bits{walk.real, data.end()}.u32()));
    EXPECT_EQ(0x7FU, (legacy_bits{walk.real, data.end()}.u8(8)));
}

TEST(LegacyBits, TheEndIsWhereNoOneBitRemains)
{
    for (std::size_t size = 0; size <= 6; ++size)
        for (std::size_t one = 0; one <= 8 * size; ++one) {
            bytes content(size, 0);
            if (one > 0)
                content[(one - 1) / 8] = static_cast<unsigned char>(0x80U >> (one - 1) % 8);
            const guarded_buffer data(content);
            legacy_bits_walk walk(data.begin(), size);
            for (std::size_t at = 0; at <= 8 * size; ++at) {
                ASSERT_EQ("", walk.at_end()) << "the one bit is bit " << one << ", at " << at;
                ASSERT_EQ("", walk.read(1));
            }
        }
}

TEST(LegacyBits, AStateWithNothingUnconsumedAtTheFenceIsTheEnd)
{
    be_bitfield b{nullptr, 0xFFFFFFFF, 32, 1};
    const bytes data(1, 0xFF);
    b.ptr = data.data() + 1;
    EXPECT_TRUE((legacy_bits{b, data.data() + 1}.at_end()));
    b.bits = 31;
    EXPECT_FALSE((legacy_bits{b, data.data() + 1}.at_end()));
    b.bits = 32;
    EXPECT_FALSE((legacy_bits{b, data.data() + 2}.at_end()));
    EXPECT_FALSE((legacy_bits{b, nullptr}.at_end())) << "an open-ended reader has no end";
}

TEST(LegacyBits, RandomOperationsOverRandomBytesAgainstSingleBits)
{
    support::random_source random(62);
    for (int round = 0; round < 3000; ++round) {
        const bytes content = support::zero_heavy_up_to(random, 30);
        const guarded_buffer data(content);
        legacy_bits_walk walk(data.begin(), content.size());
        while (walk.model.position < 8 * content.size() + 60)
            switch (support::pick(random, 5)) {
            case 0:
                ASSERT_EQ("", walk.fenced_ue());
                break;
            case 1:
                ASSERT_EQ("", walk.fenced_se());
                break;
            case 2:
                ASSERT_EQ("", walk.u32());
                break;
            case 3:
                ASSERT_EQ("", walk.at_end());
                break;
            default:
                ASSERT_EQ("", walk.read(static_cast<unsigned char>(1 + support::pick(random, 30))));
            }
    }
}
