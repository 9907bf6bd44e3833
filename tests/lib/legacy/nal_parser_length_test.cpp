// The legacy NAL scanner in length-prefixed framing.
#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include "support/legacy_scanned.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using support::bytes;
using support::legacy_scanned;
using support::stream_builder;

constexpr std::size_t longest_unit = 16777214;

/// A unit of `length` bytes behind a prefix of `prefix_size`, all of it there.
bytes long_unit(unsigned int prefix_size, std::size_t length)
{
    return stream_builder()
        .prefix(prefix_size, static_cast<std::uint32_t>(length))
        .fill(1, support::sps)
        .fill(length - 1, 0x55)
        .raw({7, 7});
}

} // namespace

TEST(LegacyNalScan, PrefixedUnitsOfEveryPrefixSize)
{
    for (unsigned int k = 1; k <= 4; ++k) {
        legacy_scanned s(stream_builder()
                             .prefixed_unit(k, support::sps, {7, 0, 0, 3, 1})
                             .prefixed_unit(k, support::pps, {})
                             .prefixed_unit(k, support::aud, {0, 0}),
                         k);
        EXPECT_EQ(1, s.state.found);
        EXPECT_EQ(7, s.state.nal_unit_type);
        EXPECT_EQ((bytes{7, 0, 0, 1}), s.payload());
        EXPECT_EQ(0U, s.raw_offset());
        EXPECT_EQ(k + 6, s.next_offset());
        s.scan();
        EXPECT_EQ(8, s.state.nal_unit_type);
        EXPECT_EQ(bytes{}, s.payload());
        EXPECT_EQ(k + 6, s.raw_offset());
        EXPECT_EQ(s.next, s.state.raw_nal_fence);
        s.scan();
        EXPECT_EQ((bytes{0, 0}), s.payload());
        EXPECT_EQ(s.input.end(), s.next);
        s.scan();
        EXPECT_EQ(0, s.state.found);
        EXPECT_EQ(s.input.end(), s.next);
    }
}

TEST(LegacyNalScan, ACutPrefixIsNotConsumed)
{
    for (unsigned int k = 1; k <= 4; ++k)
        for (std::size_t size = 0; size < k; ++size) {
            const legacy_scanned s(bytes(size, 1), k);
            EXPECT_EQ(0U, s.next_offset());
            EXPECT_TRUE(s.took_nothing());
            EXPECT_EQ(nullptr, s.state.raw_nal);
        }
}

TEST(LegacyNalScan, ALengthOfZeroGivesUpTheRange)
{
    for (unsigned int k = 1; k <= 4; ++k) {
        const legacy_scanned s(stream_builder().prefix(k, 0).prefixed_unit(k, support::sps, {1}), k);
        EXPECT_EQ(s.input.end(), s.next);
        EXPECT_TRUE(s.took_nothing());
        EXPECT_EQ(0U, s.raw_offset());
        EXPECT_EQ(nullptr, s.state.raw_nal_fence);
    }
}

TEST(LegacyNalScan, ACutUnitGivesUpTheRange)
{
    for (unsigned int k = 1; k <= 4; ++k)
        for (std::size_t there = 0; there <= 3; ++there) {
            const legacy_scanned s(stream_builder().prefix(k, 3).raw(bytes(there, 7)), k);
            EXPECT_EQ(s.input.end(), s.next);
            EXPECT_EQ(there == 3, !s.took_nothing());
            EXPECT_EQ(there == 3 ? s.input.end() : nullptr, s.state.raw_nal_fence);
        }
}

TEST(LegacyNalScan, TheLargestLengthsOfAPrefixGiveUpTheRange)
{
    for (unsigned int k = 1; k <= 4; ++k) {
        const legacy_scanned s(stream_builder().fill(k, 0xFF).raw(bytes(9, 7)), k);
        EXPECT_EQ(s.input.end(), s.next);
        EXPECT_TRUE(s.took_nothing());
        EXPECT_EQ(0U, s.raw_offset());
    }
}

TEST(LegacyNalScan, AUnitOf16777214BytesIsTaken)
{
    for (const unsigned int k : {3U, 4U}) {
        const legacy_scanned s(long_unit(k, longest_unit), k, longest_unit);
        EXPECT_EQ(1, s.state.found);
        EXPECT_EQ(0, s.state.overflow);
        EXPECT_EQ(longest_unit - 1, s.payload().size());
        EXPECT_EQ(k + longest_unit, s.next_offset());
    }
}

TEST(LegacyNalScan, AUnitOf16777215BytesGivesUpTheRange)
{
    for (const unsigned int k : {3U, 4U}) {
        const legacy_scanned s(long_unit(k, longest_unit + 1), k);
        EXPECT_EQ(s.input.end(), s.next);
        EXPECT_TRUE(s.took_nothing());
    }
}

TEST(LegacyNalScan, APrefixedUnitWithAForbiddenHeaderIsSkipped)
{
    for (unsigned int k = 1; k <= 4; ++k) {
        legacy_scanned s(
            stream_builder().prefixed_unit(k, support::forbidden, {0, 0, 1}).prefixed_unit(k, support::pps, {9}), k);
        EXPECT_EQ(k + 4, s.next_offset());
        EXPECT_TRUE(s.took_nothing());
        EXPECT_EQ(0U, s.raw_offset());
        EXPECT_EQ(nullptr, s.state.raw_nal_fence);
        s.scan();
        EXPECT_EQ(1, s.state.found);
        EXPECT_EQ(8, s.state.nal_unit_type);
    }
}

/// The bytes behind the place are then taken for a length prefix.
TEST(LegacyNalScan, APrefixedUnitEndsAtAStartCodeInsideIt)
{
    for (unsigned int k = 1; k <= 4; ++k)
        for (const unsigned char third : bytes{0, 1, 2}) {
            legacy_scanned s(stream_builder().prefixed_unit(k, support::sps, {9, 0, 0, third, 1, 8, 7}), k);
            EXPECT_EQ(1, s.state.found);
            EXPECT_EQ(bytes{9}, s.payload());
            EXPECT_EQ(k + 2, s.next_offset());
            EXPECT_EQ(s.next, s.state.raw_nal_fence);
            s.scan();
            EXPECT_EQ(k + 2, s.raw_offset());
        }
}

TEST(LegacyNalScan, APrefixedUnitIsCopiedUpToItsEndAlone)
{
    const legacy_scanned s(stream_builder().prefixed_unit(2, support::sps, {9, 0, 0}).prefixed_unit(2, 0x61, {5}), 2);
    EXPECT_EQ((bytes{9, 0, 0}), s.payload()) << "the prefix behind it begins with a zero";
    EXPECT_EQ(6U, s.next_offset());
}
