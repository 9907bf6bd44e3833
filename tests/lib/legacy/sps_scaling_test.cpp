// The scaling lists of a legacy SPS, which are skipped.
#include "support/legacy_parse.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using support::bit_writer;
using support::element_writer;
using support::high_sps;
using support::open_bits;
using support::parsed_legacy_sps;
using support::scaling_list_description;
using support::sps_description;
using support::written;

/// Skips a list of `size` entries; the bits consumed.
std::size_t skip_list(const bit_writer& writer, unsigned int size)
{
    open_bits open(writer);
    h264_sps sps = support::numbered_sps();
    const support::named_values before = support::fields_of(sps);
    sps.discard_h264_video_scaling_matrix_list_because_nobody_fucking_cares(open.bf, size);
    EXPECT_EQ("", support::difference(before, support::fields_of(sps)));
    return open.consumed();
}

bit_writer list_bits(const std::vector<std::int32_t>& deltas)
{
    bit_writer writer;
    writer.flag(true);
    for (const std::int32_t delta : deltas)
        writer.se(delta);
    return writer;
}

/// Parses an SPS with these lists, and expects its end and what stands behind the lists.
void expect_skipped(std::uint32_t chroma_format_idc, const support::scaling_matrix& lists)
{
    sps_description seq = high_sps(chroma_format_idc);
    seq.scaling_lists = lists;
    seq.log2_max_frame_num_minus4 = 5;
    seq.vui.emplace().pic_struct_present_flag = true;
    const element_writer writer = written(seq);
    const parsed_legacy_sps p(writer);
    EXPECT_EQ(1, p->seq_scaling_matrix_present_flag);
    EXPECT_EQ(9, p->log2_max_frame_num);
    EXPECT_EQ(1, p->pic_struct_present_flag);
    EXPECT_EQ(support::end_of(writer, "vui.pic_struct_present_flag"), p.consumed());
}

} // namespace

TEST(LegacyScalingLists, FormatThreeHasTwelveAndTheOthersEight)
{
    for (const std::uint32_t format : {0U, 1U, 2U, 3U, 4U}) {
        expect_skipped(format, {});
        expect_skipped(format, support::full_scaling_matrix());
        for (std::size_t only = 0; only < 12; ++only) {
            support::scaling_matrix lists;
            lists[only] = support::rising_list(only < 6 ? 16 : 64, 20);
            expect_skipped(format, lists);
        }
    }
}

TEST(LegacyScalingLists, AListThatIsNotSentIsOneBit)
{
    for (const unsigned int size : {0U, 1U, 16U, 64U, 0xFFFFFFFFU})
        EXPECT_EQ(1U, skip_list(bit_writer().flag(false).u(40, 0xFFFFFFFFFF), size));
}

TEST(LegacyScalingLists, AListHasADeltaForEveryEntry)
{
    for (const unsigned int size : {1U, 2U, 16U, 64U, 100U}) {
        const bit_writer writer = list_bits(std::vector<std::int32_t>(size, 3));
        EXPECT_EQ(writer.bits(), skip_list(bit_writer(writer).u(32, 0xFFFFFFFF), size));
    }
}

TEST(LegacyScalingLists, AScaleOfZeroEndsTheList)
{
    const std::vector<std::vector<std::int32_t>> ending = {
        {-8}, {248}, {-264}, {8388600}, {1, -9}, {5, 243}, {1, 1, 1, 1, -12}, {247, 1}, {-7, -1}, {-9, -255}};
    for (const auto& deltas : ending) {
        const bit_writer writer = list_bits(deltas);
        EXPECT_EQ(writer.bits(), skip_list(bit_writer(writer).u(40, 0xFFFFFFFFFF), 16)) << deltas.size();
    }
}

TEST(LegacyScalingLists, ScalesAreTakenModulo256)
{
    // 8 + 255 is 7, and 7 - 263 is 0; 8 - 200 is 64, and 64 - 64 is 0.
    for (const auto& deltas : {std::vector<std::int32_t>{255, -263}, {-200, -64}, {-9, 1}, {100, 148}}) {
        const bit_writer writer = list_bits(deltas);
        EXPECT_EQ(writer.bits(), skip_list(bit_writer(writer).u(40, 0xFFFFFFFFFF), 64));
    }
}
