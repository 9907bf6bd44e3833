#include <orv-utils-v4/h264/nal_slice_header.h>

#include "support/parsed_slice.h"
#include "support/slice_header_fields.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_slice_header;
using support::difference;
using support::fields_of;
using support::full_field_slice;
using support::full_slice;
using support::parsed_slice;
using support::slice_context;
using support::slice_header_description;
using support::slice_of_type;
using support::written;

constexpr std::uint32_t largest = 4294967294;

/// What two slices left.
h264_nal_slice_header filled()
{
    return parsed_slice(full_slice(1), parsed_slice(full_field_slice(0)).object).object;
}

} // namespace

TEST(SliceHeader, NothingBehindTheListsIsRead)
{
    for (const std::uint32_t type : {0U, 1U, 2U, 3U, 4U}) {
        support::element_writer writer = written(slice_of_type(type));
        const std::size_t end = writer.size_in_bits();
        writer.u("behind", 64, ~std::uint64_t{0});
        const parsed_slice p(writer, context_of(slice_of_type(type)));
        EXPECT_TRUE(p.result);
        EXPECT_EQ(end, p.consumed()) << type;
    }
}

TEST(SliceHeader, IdrPicIdIsReadInUnitsOfTypeFiveAlone)
{
    for (std::uint32_t type = 0; type < 40; ++type) {
        slice_header_description slice;
        if (type == 5)
            slice.idr_pic_id = 77;
        slice.redundant_pic_cnt = 3;
        slice_context context = context_of(slice);
        context.nal.nal_unit_type = static_cast<brenik::h264_nal_unit_type>(type);
        const parsed_slice p(written(slice), context);
        EXPECT_TRUE(p.result);
        EXPECT_EQ(type == 5, p->IdrPicFlag) << type;
        EXPECT_EQ(type == 5 ? 77U : 0U, p->idr_pic_id) << type;
        EXPECT_EQ(3U, p->redundant_pic_cnt) << type;
    }
}

TEST(SliceHeader, NothingElseOfTheUnitHeaderCounts)
{
    for (const std::uint32_t type : {1U, 5U, 20U, 21U})
        for (unsigned char ref_idc = 0; ref_idc < 4; ++ref_idc) {
            slice_header_description slice = slice_of_type(0);
            if (type == 5)
                slice.idr_pic_id = 12;
            slice_context context = context_of(slice);
            context.nal.nal_unit_type = static_cast<brenik::h264_nal_unit_type>(type);
            context.nal.nal_ref_idc = ref_idc;
            context.nal.valid = ref_idc % 2 == 0;
            const parsed_slice p(written(slice), context);
            EXPECT_TRUE(p.result);
            EXPECT_EQ(type == 5, p->IdrPicFlag);
            EXPECT_EQ(type == 5 ? 12U : 0U, p->idr_pic_id);
            EXPECT_EQ(2U, p->ref_pic_list_modification_l0.entries.size());
            EXPECT_EQ(written(slice).size_in_bits(), p.consumed());
        }
}

TEST(SliceHeader, TheTypeSaysWhatOfTheReferencesIsRead)
{
    for (const std::uint32_t type : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 10U, 12U, 4294967290U, 4294967291U,
                                     4294967292U, 4294967293U, 4294967294U}) {
        const parsed_slice p(slice_of_type(type));
        const bool is_b = type % 5 == 1;
        const bool is_intra = type % 5 == 2 || type % 5 == 4;
        EXPECT_TRUE(p.result);
        EXPECT_EQ(type, p->slice_type);
        EXPECT_EQ(type % 5, static_cast<std::uint32_t>(p->getSliceType()));
        EXPECT_EQ(written(slice_of_type(type)).size_in_bits(), p.consumed()) << type;
        EXPECT_EQ(9U, p->frame_num);
        EXPECT_EQ(is_b, p->direct_spatial_mv_pred_flag) << type;
        EXPECT_EQ(!is_intra, p->num_ref_idx_active_override_flag) << type;
        EXPECT_EQ(is_intra ? 0U : 3U, p->num_ref_idx_l0_active_minus1) << type;
        EXPECT_EQ(is_b ? 1U : 0U, p->num_ref_idx_l1_active_minus1) << type;
        EXPECT_EQ(!is_intra, p->ref_pic_list_modification_l0.ref_pic_list_modification_flag) << type;
        EXPECT_EQ(is_intra ? 0U : 2U, p->ref_pic_list_modification_l0.entries.size()) << type;
        EXPECT_EQ(is_b, p->ref_pic_list_modification_l1.ref_pic_list_modification_flag) << type;
        EXPECT_EQ(is_b ? 4U : 0U, p->ref_pic_list_modification_l1.entries.size()) << type;
    }
}

TEST(SliceHeader, CountsThatAreNotSentAreNotInferred)
{
    for (const std::uint32_t type : {0U, 1U, 3U}) {
        slice_header_description slice = slice_of_type(type);
        slice.num_ref_idx_active_override_flag = false;
        slice_context context = context_of(slice);
        context.pps.num_ref_idx_l0_default_active_minus1 = 11;
        context.pps.num_ref_idx_l1_default_active_minus1 = 12;
        const parsed_slice p(written(slice), context, filled());
        EXPECT_TRUE(p.result);
        EXPECT_FALSE(p->num_ref_idx_active_override_flag);
        EXPECT_EQ(3U, p->num_ref_idx_l0_active_minus1);
        EXPECT_EQ(1U, p->num_ref_idx_l1_active_minus1);
        const parsed_slice in_new(written(slice), context);
        EXPECT_EQ(0U, in_new->num_ref_idx_l0_active_minus1 + in_new->num_ref_idx_l1_active_minus1);
    }
}

TEST(SliceHeader, ValuesAreStoredAsRead)
{
    slice_header_description slice = full_slice(0);
    slice.first_mb_in_slice = slice.pic_parameter_set_id = largest;
    slice.slice_type = largest - 3;
    slice.idr_pic_id = slice.redundant_pic_cnt = largest;
    slice.num_ref_idx_l0_active_minus1 = slice.num_ref_idx_l1_active_minus1 = largest;
    slice.delta_pic_order_cnt_bottom = -2147483647;
    const parsed_slice p(slice);
    EXPECT_TRUE(p.result);
    EXPECT_EQ(largest, p->first_mb_in_slice);
    EXPECT_EQ(largest - 3, p->slice_type);
    EXPECT_EQ(largest, p->pic_parameter_set_id);
    EXPECT_EQ(largest, p->idr_pic_id);
    EXPECT_EQ(largest, p->redundant_pic_cnt);
    EXPECT_EQ(largest, p->num_ref_idx_l0_active_minus1);
    EXPECT_EQ(largest, p->num_ref_idx_l1_active_minus1);
    EXPECT_EQ(-2147483647, p->delta_pic_order_cnt_bottom);
}

TEST(SliceHeader, ASliceThatSendsLessKeepsTheOtherFields)
{
    const h264_nal_slice_header before = filled();
    slice_header_description slice;
    slice.slice_type = 2;
    slice.frame_num = 15;
    const parsed_slice p(slice, before);
    EXPECT_TRUE(p.result);
    support::named_values expected = fields_of(before);
    expected.at("first_mb_in_slice").number = 0;
    expected.at("slice_type").number = 2;
    expected.at("pic_parameter_set_id").number = 0;
    expected.at("frame_num").number = 15;
    expected.at("IdrPicFlag").number = 0;
    EXPECT_EQ("", difference(expected, fields_of(p.object)));
}
