#include <orv-utils-v4/h264/nal_pps.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/pps_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace {

using brenik::h264_nal_pps;
using brenik::h264_nal_sps;
using brenik::h264_scaling_list;
using support::fields_of;
using support::full_pps;
using support::pps_description;
using support::with_valid;
using support::written;
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

TEST(Pps, ANewPpsIsZeroEmptyAndInvalid)
{
    for (const support::value& field : fields_of(h264_nal_pps{}).values)
        EXPECT_EQ(support::value{}, field);
}

TEST(Pps, EveryElementIsReadIntoItsField)
{
    const auto writer = written_rbsp(full_pps(1));
    const parsed_pps p(writer);
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
    EXPECT_EQ(9U, p->pic_parameter_set_id);
    EXPECT_EQ(0U, p->seq_parameter_set_id);
    EXPECT_TRUE(p->entropy_coding_mode_flag);
    EXPECT_FALSE(p->bottom_field_pic_order_in_frame_present_flag);
    EXPECT_EQ(0U, p->num_slice_groups_minus1);
    EXPECT_EQ(4U, p->num_ref_idx_l0_default_active_minus1);
    EXPECT_EQ(5U, p->num_ref_idx_l1_default_active_minus1);
    EXPECT_TRUE(p->weighted_pred_flag);
    EXPECT_EQ(2, p->weighted_bipred_idc);
    EXPECT_EQ(-6, p->pic_init_qp_minus26);
    EXPECT_EQ(8, p->pic_init_qs_minus26);
    EXPECT_EQ(-2, p->chroma_qp_index_offset);
    EXPECT_TRUE(p->deblocking_filter_control_present_flag);
    EXPECT_FALSE(p->constrained_intra_pred_flag);
    EXPECT_TRUE(p->redundant_pic_cnt_present_flag);
    EXPECT_TRUE(p->more_rbsp_data_present);
    EXPECT_TRUE(p->transform_8x8_mode_flag && p->pic_scaling_matrix_present_flag);
    EXPECT_EQ(3, p->second_chroma_qp_index_offset);
}

TEST(Pps, SingleFlagsAreReadByThemselves)
{
    for (unsigned int flags = 0; flags < 128; ++flags) {
        pps_description pps;
        pps.entropy_coding_mode_flag = (flags & 1) != 0;
        pps.bottom_field_pic_order_in_frame_present_flag = (flags & 2) != 0;
        pps.weighted_pred_flag = (flags & 4) != 0;
        pps.deblocking_filter_control_present_flag = (flags & 8) != 0;
        pps.constrained_intra_pred_flag = (flags & 16) != 0;
        pps.redundant_pic_cnt_present_flag = (flags & 32) != 0;
        pps.tail = true;
        pps.transform_8x8_mode_flag = (flags & 64) != 0;
        pps.weighted_bipred_idc = flags % 4;
        const parsed_pps p(written_rbsp(pps));
        EXPECT_TRUE(p.result);
        EXPECT_EQ((flags & 1) != 0, p->entropy_coding_mode_flag);
        EXPECT_EQ((flags & 2) != 0, p->bottom_field_pic_order_in_frame_present_flag);
        EXPECT_EQ((flags & 4) != 0, p->weighted_pred_flag);
        EXPECT_EQ((flags & 8) != 0, p->deblocking_filter_control_present_flag);
        EXPECT_EQ((flags & 16) != 0, p->constrained_intra_pred_flag);
        EXPECT_EQ((flags & 32) != 0, p->redundant_pic_cnt_present_flag);
        EXPECT_EQ((flags & 64) != 0, p->transform_8x8_mode_flag);
        EXPECT_EQ(flags % 4, p->weighted_bipred_idc);
    }
}

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

TEST(Pps, TheTailOfZerosIsSeenByItsOneBits)
{
    pps_description pps;
    pps.tail = true;
    const auto writer = written_rbsp(pps);
    const parsed_pps p(writer, full());
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->more_rbsp_data_present);
    EXPECT_FALSE(p->transform_8x8_mode_flag);
    EXPECT_FALSE(p->pic_scaling_matrix_present_flag);
    EXPECT_EQ(0, p->second_chroma_qp_index_offset);
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
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

TEST(Pps, NoListSentTakesAFlagEach)
{
    for (const std::size_t count : {6U, 8U, 12U}) {
        pps_description pps;
        pps.tail = true;
        pps.transform_8x8_mode_flag = count != 6;
        const std::size_t without = written(pps).size_in_bits();
        pps.scaling_lists.emplace();
        pps.scaling_list_count = count;
        const auto writer = written_rbsp(pps);
        const parsed_pps p(writer, {}, store_of(count == 12 ? 3 : 1));
        EXPECT_EQ(without + count, written(pps).size_in_bits());
        EXPECT_TRUE(p.result) << count;
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
        for (std::size_t i = 0; i < 12; ++i)
            EXPECT_EQ(fields_of(h264_scaling_list{}), fields_of(list_of(p.object, i)));
    }
}

TEST(Pps, MissingTrailingBitsMakeItInvalid)
{
    for (const bool valid : {false, true}) {
        const parsed_pps p(written(full_pps(1)), with_valid<h264_nal_pps>(valid));
        EXPECT_FALSE(p.result);
        EXPECT_FALSE(p->valid);
        EXPECT_EQ(3, p->second_chroma_qp_index_offset);
    }
}

TEST(Pps, AStrayBitInTheTrailingBitsMakesItInvalid)
{
    pps_description pps;
    pps.tail = true;
    support::bytes data = written_rbsp(pps).made();
    ASSERT_EQ(0, data.back() & 1);
    data.back() |= 1;
    const parsed_pps p(data, with_valid<h264_nal_pps>(true));
    EXPECT_FALSE(p.result);
    EXPECT_FALSE(p->valid);
}

TEST(Pps, AMalformedCodeThrowsAndValidKeepsItsValue)
{
    const sps_store store = store_of(3);
    std::vector<support::element_writer> writers = {written_rbsp(full_pps(3))};
    for (std::uint32_t map_type = 0; map_type <= 6; ++map_type)
        writers.push_back(written_rbsp(support::pps_of_map_type(map_type)));
    for (const support::element_writer& writer : writers)
        for (const support::element& e : writer.elements()) {
            if (e.how == support::descriptor::u)
                continue;
            for (const bool valid : {false, true}) {
                const support::guarded_buffer buffer(support::with_malformed_code(writer, e));
                brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
                h264_nal_pps pps = with_valid<h264_nal_pps>(valid);
                EXPECT_THROW(pps.parse(br, store), brenik::h2645_common_malformed_code) << e.name;
                EXPECT_EQ(valid, pps.valid) << e.name;
                EXPECT_EQ(e.position + 32, br.bits_consumed()) << e.name;
            }
        }
}

TEST(Pps, ACopyIsDeep)
{
    h264_nal_pps original = full();
    original.run_length_minus1 = original.top_left = original.bottom_right = original.slice_group_id = {1, 2, 3};
    const support::named_values before = fields_of(original);
    h264_nal_pps copy = original;
    copy.run_length_minus1[0] = copy.top_left[0] = copy.bottom_right[0] = copy.slice_group_id[0] = 9;
    copy.pic_scaling_list_4x4[5].values[0] = 99;
    copy.pic_scaling_list_8x8[5].values.clear();
    EXPECT_EQ("", difference(before, fields_of(original)));
}
