#include <orv-utils-v4/h264/nal_pps.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/pps_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_pps;
using brenik::h264_nal_sps;
using brenik::h264_scaling_list;
using support::fields_of;
using support::full_pps;
using support::pps_description;
using support::with_valid;
using support::written_rbsp;
using sps_store = brenik::h2645_common_base_store<h264_nal_sps>;

/// A store with one SPS.
sps_store store_of(std::uint32_t chroma_format_idc = 1, std::uint32_t id = 0, bool valid = true)
{
    h264_nal_sps sps;
    sps.valid = valid;
    sps.chroma_format_idc = chroma_format_idc;
    sps_store store;
    store.insert_or_assign(id, sps);
    return store;
}

struct parsed_pps : support::parsed<h264_nal_pps> {
    template <typename Written>
    explicit parsed_pps(const Written& pps, const h264_nal_pps& before = {}, const sps_store& store = store_of())
        : parsed(pps, before, store)
    {
    }
};

h264_nal_pps full(bool valid = true)
{
    return with_valid(valid, parsed_pps(written_rbsp(full_pps(3)), {}, store_of(3)).object);
}

const h264_scaling_list& list_of(const h264_nal_pps& pps, std::size_t i)
{
    return i < 6 ? pps.pic_scaling_list_4x4[i] : pps.pic_scaling_list_8x8[i - 6];
}

} // namespace

TEST(Pps, AnAbsentSpsFailsBehindTheTwoIds)
{
    for (const std::uint32_t id : {0U, 2U, 4U, 32U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            pps_description pps = full_pps(1);
            pps.entropy_coding_mode_flag = false;
            pps.pic_parameter_set_id = 200;
            pps.seq_parameter_set_id = id;
            const auto writer = written_rbsp(pps);
            const parsed_pps p(writer, full(valid), id == 0 ? sps_store() : store_of(1, 3));
            EXPECT_FALSE(p.result) << id;
            h264_nal_pps expected = full(false);
            expected.pic_parameter_set_id = 200;
            expected.seq_parameter_set_id = id;
            EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
            EXPECT_EQ(writer.elements()[2].position, p.consumed());
        }
}

TEST(Pps, AnSpsThatIsNotValidFailsBehindTheTwoIds)
{
    for (const bool valid : {false, true}) {
        pps_description pps;
        pps.entropy_coding_mode_flag = true;
        const parsed_pps p(written_rbsp(pps), with_valid<h264_nal_pps>(valid), store_of(1, 0, false));
        EXPECT_FALSE(p.result);
        EXPECT_FALSE(p->valid);
        EXPECT_FALSE(p->entropy_coding_mode_flag);
        EXPECT_EQ(2U, p.consumed());
    }
}

TEST(Pps, TheSpsIsFoundUnderAnyId)
{
    for (const std::uint32_t id : {0U, 1U, 31U, 32U, 0xFFFFFFFEU}) {
        pps_description pps = full_pps(3);
        pps.seq_parameter_set_id = id;
        sps_store store = store_of(3, id);
        store.insert_or_assign(id / 2 + 7, h264_nal_sps());
        const parsed_pps p(written_rbsp(pps), {}, store);
        EXPECT_TRUE(p.result) << id;
        EXPECT_EQ(id, p->seq_parameter_set_id);
        EXPECT_TRUE(p->pic_scaling_list_8x8[5].present) << id;
    }
}

TEST(Pps, TheCurrentIdOfTheStoreDoesNotMatter)
{
    sps_store store = store_of(1, 5);
    store.set_current_id(5);
    EXPECT_FALSE(parsed_pps(written_rbsp(pps_description()), {}, store).result);
    pps_description pps;
    pps.seq_parameter_set_id = 5;
    store.set_current_id(sps_store::no_current_id);
    EXPECT_TRUE(parsed_pps(written_rbsp(pps), {}, store).result);
}

TEST(Pps, APpsWithoutTheTailKeepsItsFields)
{
    for (const bool before : {false, true}) {
        h264_nal_pps object = full();
        object.transform_8x8_mode_flag = object.pic_scaling_matrix_present_flag = before;
        const auto writer = written_rbsp(pps_description());
        const parsed_pps p(writer, object);
        EXPECT_TRUE(p.result);
        EXPECT_TRUE(p->valid);
        EXPECT_FALSE(p->more_rbsp_data_present);
        EXPECT_EQ(before, p->transform_8x8_mode_flag);
        EXPECT_EQ(before, p->pic_scaling_matrix_present_flag);
        EXPECT_EQ(3, p->second_chroma_qp_index_offset);
        for (std::size_t i = 0; i < 12; ++i)
            EXPECT_EQ(fields_of(list_of(full(), i)), fields_of(list_of(p.object, i)));
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(Pps, TheSecondChromaOffsetIsNotInferred)
{
    pps_description pps;
    pps.chroma_qp_index_offset = -5;
    const parsed_pps p(written_rbsp(pps));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(-5, p->chroma_qp_index_offset);
    EXPECT_EQ(0, p->second_chroma_qp_index_offset);
}

TEST(Pps, TheNumberOfListsFollowsTheTransformAndTheChromaFormat)
{
    for (const std::uint32_t chroma_format_idc : {0U, 1U, 2U, 3U, 4U})
        for (const bool transform_8x8_mode_flag : {false, true}) {
            pps_description pps = full_pps(chroma_format_idc);
            pps.transform_8x8_mode_flag = transform_8x8_mode_flag;
            pps.scaling_list_count = !transform_8x8_mode_flag ? 6 : chroma_format_idc == 3 ? 12 : 8;
            const auto writer = written_rbsp(pps);
            const parsed_pps p(writer, {}, store_of(chroma_format_idc));
            EXPECT_TRUE(p.result) << chroma_format_idc;
            EXPECT_EQ(writer.size_in_bits(), p.consumed());
            EXPECT_EQ(3, p->second_chroma_qp_index_offset);
            for (std::size_t i = 0; i < 12; ++i) {
                const h264_scaling_list& list = list_of(p.object, i);
                EXPECT_EQ(i < pps.scaling_list_count, list.present) << i;
                ASSERT_EQ(!list.present ? 0U : i < 6 ? 16U : 64U, list.values.size()) << i;
                for (std::size_t j = 0; j < list.values.size(); ++j)
                    EXPECT_EQ(10 + i + j, list.values[j]) << i;
            }
        }
}
