#include "scaling_lists.h"

#include "support/bit_writer.h"
#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>

namespace {

using brenik::h264_scaling_list;
using brenik::parse_scaling_lists;
using brenik::scaling_list_8x8_count;
using lists = std::array<h264_scaling_list, 6>;

} // namespace

static_assert(brenik::entries_4x4 == 16 && brenik::entries_8x8 == 64);

TEST(ScalingLists, OnlyChromaFormatThreeHasSix8x8Lists)
{
    for (const std::uint32_t chroma_format_idc : {0U, 1U, 2U, 4U, 259U, 0xFFFFFFFEU})
        EXPECT_EQ(2U, scaling_list_8x8_count(chroma_format_idc)) << chroma_format_idc;
    EXPECT_EQ(6U, scaling_list_8x8_count(3));
}

TEST(ScalingLists, TheFirstOnesAreReadAndTheOthersKept)
{
    for (std::size_t count = 0; count <= 6; ++count) {
        lists read{};
        for (h264_scaling_list& list : read)
            list.present = true;
        const support::guarded_buffer buffer(support::bit_writer().u(6, 0).bytes());
        brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
        EXPECT_TRUE(parse_scaling_lists(br, read, count, 16));
        EXPECT_EQ(count, br.bits_consumed());
        for (std::size_t i = 0; i < 6; ++i) {
            EXPECT_EQ(i >= count, read[i].present) << i;
            EXPECT_FALSE(read[i].valid);
        }
    }
}

TEST(ScalingLists, APresentListIsParsedInItsSize)
{
    const support::guarded_buffer buffer(support::bit_writer().flag(false).flag(true).se(1).se(1).se(1).bytes());
    brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
    lists read{};
    EXPECT_TRUE(parse_scaling_lists(br, read, 2, 3));
    EXPECT_FALSE(read[0].present);
    EXPECT_TRUE(read[0].values.empty());
    EXPECT_TRUE(read[1].present && read[1].valid);
    EXPECT_EQ((std::vector<std::uint8_t>{9, 10, 11}), read[1].values);
    EXPECT_EQ(2U + 9, br.bits_consumed());
}

TEST(ScalingLists, AListThatFailsEndsTheRead)
{
    const support::guarded_buffer buffer(support::bit_writer().u(3, 0b011).bytes());
    brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
    lists read{};
    EXPECT_FALSE(parse_scaling_lists(br, read, 6, 129));
    EXPECT_EQ(2U, br.bits_consumed());
    EXPECT_TRUE(read[1].present);
    EXPECT_FALSE(read[1].valid);
    EXPECT_FALSE(read[2].present);
}
