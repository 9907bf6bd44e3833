// The writer's length prefix at values that no unit of a test can have.
#include "cpp-template-anticopypasta/h2645_common_nal_writer.template"

#include "support/stream_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using support::bytes;

/// The prefix of `size` bytes for `body`; no bytes when it does not fit.
bytes stored(std::size_t size, std::uint64_t body)
{
    bytes prefix(size, 0x77);
    if (brenik::store_prefix(prefix.data(), size, body))
        return prefix;
    EXPECT_EQ(bytes(size, 0x77), prefix) << "a refused length is not stored";
    return {};
}

} // namespace

TEST(NalWriterPrefix, IsBigEndian)
{
    EXPECT_EQ((bytes{0x12}), stored(1, 0x12));
    EXPECT_EQ((bytes{0x12, 0x34}), stored(2, 0x1234));
    EXPECT_EQ((bytes{0x12, 0x34, 0x56}), stored(3, 0x123456));
    EXPECT_EQ((bytes{0x12, 0x34, 0x56, 0x78}), stored(4, 0x12345678));
    EXPECT_EQ((bytes{0x00, 0x00, 0x00, 0x01}), stored(4, 1));
}

TEST(NalWriterPrefix, HoldsTheLargestLengthAndNoneAbove)
{
    for (std::size_t size = 1; size <= 4; ++size) {
        const std::uint64_t largest = (std::uint64_t{1} << 8 * size) - 1;
        EXPECT_EQ(bytes(size, 0xFF), stored(size, largest)) << size;
        EXPECT_EQ(bytes{}, stored(size, largest + 1)) << size;
        EXPECT_EQ(bytes{}, stored(size, UINT64_MAX)) << size;
    }
}

TEST(NalWriterPrefix, AFramingWithoutAPrefixTakesAnyLength)
{
    EXPECT_TRUE(brenik::store_prefix(nullptr, 0, UINT64_MAX));
}

TEST(NalWriterPrefix, OnlyTheFirstFourFramingsHaveOne)
{
    EXPECT_EQ(0U, brenik::length_prefix_size(brenik::nalfmt_none));
    EXPECT_EQ(1U, brenik::length_prefix_size(brenik::nalfmt_length1));
    EXPECT_EQ(2U, brenik::length_prefix_size(brenik::nalfmt_length2));
    EXPECT_EQ(3U, brenik::length_prefix_size(brenik::nalfmt_length3));
    EXPECT_EQ(4U, brenik::length_prefix_size(brenik::nalfmt_length4));
    EXPECT_EQ(0U, brenik::length_prefix_size(brenik::nalfmt_annexb));
    EXPECT_EQ(0U, brenik::length_prefix_size(static_cast<brenik::h2645_common_nalfmt>(6)));
}
