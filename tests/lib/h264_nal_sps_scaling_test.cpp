// The scaling lists of a sequence parameter set: how many there are, and what becomes of those that are not sent.
#include <orv-utils-v4/h264/nal_sps.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/sps_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_sps;
using brenik::h264_scaling_list;
using support::fields_of;
using support::high_sps;
using support::sps_description;
using support::written_rbsp;
using parsed_sps = support::parsed<h264_nal_sps>;

const h264_scaling_list& list_of(const h264_nal_sps& sps, std::size_t i)
{
    return i < 6 ? sps.scaling_list_4x4[i] : sps.scaling_list_8x8[i - 6];
}

h264_nal_sps with_every_list()
{
    sps_description sps = high_sps(3);
    sps.scaling_lists = support::full_scaling_matrix();
    return parsed_sps(written_rbsp(sps)).object;
}

} // namespace

TEST(SpsScalingLists, FormatThreeHasTwelveAndTheOthersEight)
{
    for (const std::uint32_t chroma_format_idc : {0U, 1U, 2U, 3U, 4U}) {
        sps_description sps = high_sps(chroma_format_idc);
        sps.scaling_lists = support::full_scaling_matrix();
        const auto writer = written_rbsp(sps);
        const parsed_sps p(writer);
        EXPECT_TRUE(p.result) << chroma_format_idc;
        EXPECT_EQ(writer.size_in_bits(), p.consumed()) << chroma_format_idc;
        for (std::size_t i = 0; i < 12; ++i) {
            const h264_scaling_list& list = list_of(p.object, i);
            const bool sent = i < 8 || chroma_format_idc == 3;
            EXPECT_EQ(sent, list.present) << i;
            EXPECT_EQ(sent, list.valid) << i;
            ASSERT_EQ(!sent ? 0U : i < 6 ? 16U : 64U, list.values.size()) << i;
            for (std::size_t j = 0; j < list.values.size(); ++j)
                EXPECT_EQ(10 + i + j, list.values[j]) << i;
        }
    }
}

TEST(SpsScalingLists, AListThatIsNotSentKeepsItsEntriesAndLosesItsPresence)
{
    sps_description sps = high_sps(1);
    sps.scaling_lists.emplace();
    const parsed_sps p(written_rbsp(sps), with_every_list());
    EXPECT_TRUE(p.result);
    const h264_nal_sps before = with_every_list();
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(i >= 8, list_of(p.object, i).present) << i;
        EXPECT_EQ(list_of(before, i).values, list_of(p.object, i).values) << i;
        EXPECT_TRUE(list_of(p.object, i).valid) << i;
    }
}

TEST(SpsScalingLists, WithoutTheMatrixNoListChanges)
{
    const parsed_sps p(written_rbsp(high_sps(1)), with_every_list());
    EXPECT_TRUE(p.result);
    EXPECT_FALSE(p->seq_scaling_matrix_present_flag);
    const h264_nal_sps before = with_every_list();
    for (std::size_t i = 0; i < 12; ++i)
        EXPECT_EQ(fields_of(list_of(before, i)), fields_of(list_of(p.object, i))) << i;
}
