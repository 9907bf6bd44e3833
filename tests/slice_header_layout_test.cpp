// The layout in memory and the signatures of the slice header: member order, widths, offsets, constness. Sizes are
// those of LP64 with vectors of three pointers.
#include <orv-utils-v4/h264.h>

#include "support/dirty_memory.h"
#include "support/slice_header_fields.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

using namespace brenik;

namespace {

/// Whether every member is a T.
template <typename T, typename... Members>
constexpr bool all_are = (std::is_same_v<T, Members> && ...);

using u8 = std::uint8_t;
using u32 = std::uint32_t;
using i32 = std::int32_t;
using slice = h264_nal_slice_header;
using list = slice::ref_pic_list_modification_entry_t;
using step = list::entry;
using kind = h264_slice_type_t;
using sps_store = h2645_common_base_store<h264_nal_sps>;
using pps_store = h2645_common_base_store<h264_nal_pps>;

} // namespace

static_assert(sizeof(void*) == 8 && sizeof(std::vector<step>) == 24, "the sizes below");

// The kinds of slices
static_assert(std::is_enum_v<kind> && all_are<i32, std::underlying_type_t<kind>>);
static_assert(std::is_convertible_v<kind, int>, "unscoped");
static_assert(h264_slice_type_P == 0 && h264_slice_type_B == 1 && h264_slice_type_I == 2);
static_assert(h264_slice_type_SP == 3 && h264_slice_type_SI == 4);
static_assert(std::is_same_v<decltype(h264_slice_type_t_str), const char* [5]>);
static_assert(std::is_same_v<decltype(&h264_slice_type_t_to_string), const char* (*)(const kind&)>);

// One step of a list modification
static_assert(std::is_standard_layout_v<step> && std::is_trivially_copyable_v<step> && sizeof(step) == 8);
static_assert(all_are<u32, decltype(step::modification_of_pic_nums_idc), decltype(step::pic_num_value)>);
static_assert(offsetof(step, modification_of_pic_nums_idc) == 0 && offsetof(step, pic_num_value) == 4);

// The modification of one list
static_assert(std::is_standard_layout_v<list> && std::is_copy_assignable_v<list> && sizeof(list) == 32);
static_assert(all_are<bool, decltype(list::ref_pic_list_modification_flag)>);
static_assert(all_are<std::vector<step>, decltype(list::entries)>);
static_assert(offsetof(list, ref_pic_list_modification_flag) == 0 && offsetof(list, entries) == 8);
static_assert(std::is_same_v<decltype(&list::parse), bool (list::*)(h2645_common_bitreader&)>);

// The slice header
static_assert(std::is_standard_layout_v<slice> && std::is_copy_assignable_v<slice> && !std::is_polymorphic_v<slice>);
static_assert(std::is_nothrow_move_constructible_v<slice> && sizeof(slice) == 136);
static_assert(all_are<u32, decltype(slice::first_mb_in_slice), decltype(slice::slice_type),
                      decltype(slice::pic_parameter_set_id), decltype(slice::frame_num), decltype(slice::idr_pic_id),
                      decltype(slice::pic_order_cnt_lsb), decltype(slice::redundant_pic_cnt),
                      decltype(slice::num_ref_idx_l0_active_minus1), decltype(slice::num_ref_idx_l1_active_minus1)>);
static_assert(all_are<u8, decltype(slice::colour_plane_id)>);
static_assert(all_are<i32, decltype(slice::delta_pic_order_cnt_bottom)>);
static_assert(all_are<i32[2], decltype(slice::delta_pic_order_cnt)>);
static_assert(all_are<bool, decltype(slice::field_pic_flag), decltype(slice::bottom_field_flag),
                      decltype(slice::direct_spatial_mv_pred_flag), decltype(slice::num_ref_idx_active_override_flag),
                      decltype(slice::IdrPicFlag), decltype(slice::valid)>);
static_assert(
    all_are<list, decltype(slice::ref_pic_list_modification_l0), decltype(slice::ref_pic_list_modification_l1)>);
static_assert(offsetof(slice, first_mb_in_slice) == 0 && offsetof(slice, slice_type) == 4);
static_assert(offsetof(slice, pic_parameter_set_id) == 8 && offsetof(slice, colour_plane_id) == 12);
static_assert(offsetof(slice, frame_num) == 16 && offsetof(slice, field_pic_flag) == 20);
static_assert(offsetof(slice, bottom_field_flag) == 21 && offsetof(slice, idr_pic_id) == 24);
static_assert(offsetof(slice, pic_order_cnt_lsb) == 28 && offsetof(slice, delta_pic_order_cnt_bottom) == 32);
static_assert(offsetof(slice, delta_pic_order_cnt) == 36 && offsetof(slice, redundant_pic_cnt) == 44);
static_assert(offsetof(slice, direct_spatial_mv_pred_flag) == 48);
static_assert(offsetof(slice, num_ref_idx_active_override_flag) == 49);
static_assert(offsetof(slice, num_ref_idx_l0_active_minus1) == 52);
static_assert(offsetof(slice, num_ref_idx_l1_active_minus1) == 56);
static_assert(offsetof(slice, ref_pic_list_modification_l0) == 64);
static_assert(offsetof(slice, ref_pic_list_modification_l1) == 96);
static_assert(offsetof(slice, IdrPicFlag) == 128 && offsetof(slice, valid) == 129);
static_assert(std::is_same_v<decltype(&slice::parse), bool (slice::*)(h2645_common_bitreader&, const sps_store&,
                                                                      const pps_store&, const h264_nal&)>);
static_assert(std::is_same_v<decltype(&slice::getSliceType), kind (slice::*)() const>);

TEST(SliceHeaderLayout, AnEmptyBraceMakesZerosFalsesAndEmpties)
{
    const support::made_on_dirty_memory<slice> made;
    support::named_values expected = support::fields_of(*made);
    for (support::value& field : expected.values)
        field = {};
    expected.at("delta_pic_order_cnt").entries = {0, 0};
    EXPECT_EQ("", difference(expected, support::fields_of(*made)));
    const support::made_on_dirty_memory<list> of_a_list;
    for (const support::value& field : support::fields_of(*of_a_list).values)
        EXPECT_EQ(support::value{}, field);
    const support::made_on_dirty_memory<step> of_a_step;
    EXPECT_EQ(0U, of_a_step->modification_of_pic_nums_idc | of_a_step->pic_num_value);
}

TEST(SliceHeaderLayout, EveryMemberIsAmongTheFieldsThatTestsCompare)
{
    EXPECT_EQ(3U, support::names_of(list{}).in_order.size());
    EXPECT_EQ(18U + 2 * 3, support::names_of(slice{}).in_order.size());
    EXPECT_EQ(support::names_of(slice{}).in_order.size(), support::names_of(slice{}).index.size());
}
