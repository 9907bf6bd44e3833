// The layout in memory and the signatures of the parameter sets: member order, widths, offsets, constness. Sizes are
// those of LP64 with vectors of three pointers, and of five words for bits.
#include <orv-utils-v4/h264.h>

#include "support/dirty_memory.h"
#include "support/parameter_set_fields.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <type_traits>
#include <vector>

using namespace brenik;

namespace {

template <typename T, typename Signature>
constexpr bool callable_as = std::is_convertible_v<T, Signature>;

/// Whether every member is a T.
template <typename T, typename... Members>
constexpr bool all_are = (std::is_same_v<T, Members> && ...);

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using i32 = std::int32_t;
using numbers = std::vector<u32>;
using lists = std::array<h264_scaling_list, 6>;
using list = h264_scaling_list;
using hrd = h264_hrd_parameters;
using vui = h264_vui_parameters;
using seq = h264_nal_sps;
using pic = h264_nal_pps;

} // namespace

static_assert(sizeof(void*) == 8 && sizeof(numbers) == 24 && sizeof(std::vector<bool>) == 40, "the sizes below");

// The scaling list
static_assert(std::is_standard_layout_v<list> && sizeof(list) == 32 && sizeof(lists) == 192);
static_assert(std::is_same_v<std::vector<u8>, decltype(list::values)>);
static_assert(
    all_are<bool, decltype(list::useDefaultScalingMatrixFlag), decltype(list::present), decltype(list::valid)>);
static_assert(offsetof(list, values) == 0 && offsetof(list, useDefaultScalingMatrixFlag) == 24);
static_assert(offsetof(list, present) == 25 && offsetof(list, valid) == 26);
static_assert(std::is_same_v<decltype(&list::parse), bool (list::*)(h2645_common_bitreader&, unsigned)>);

// HRD parameters
static_assert(std::is_standard_layout_v<hrd> && sizeof(hrd) == 104);
static_assert(all_are<u32, decltype(hrd::cpb_cnt_minus1)>);
static_assert(
    all_are<u8, decltype(hrd::bit_rate_scale), decltype(hrd::cpb_size_scale),
            decltype(hrd::initial_cpb_removal_delay_length_minus1), decltype(hrd::cpb_removal_delay_length_minus1),
            decltype(hrd::dpb_output_delay_length_minus1), decltype(hrd::time_offset_length)>);
static_assert(all_are<numbers, decltype(hrd::bit_rate_value_minus1), decltype(hrd::cpb_size_value_minus1)>);
static_assert(all_are<std::vector<bool>, decltype(hrd::cbr_flag)> && all_are<bool, decltype(hrd::valid)>);
static_assert(offsetof(hrd, cpb_cnt_minus1) == 0 && offsetof(hrd, bit_rate_scale) == 4);
static_assert(offsetof(hrd, cpb_size_scale) == 5 && offsetof(hrd, bit_rate_value_minus1) == 8);
static_assert(offsetof(hrd, cpb_size_value_minus1) == 32 && offsetof(hrd, cbr_flag) == 56);
static_assert(offsetof(hrd, initial_cpb_removal_delay_length_minus1) == 96);
static_assert(offsetof(hrd, cpb_removal_delay_length_minus1) == 97);
static_assert(offsetof(hrd, dpb_output_delay_length_minus1) == 98);
static_assert(offsetof(hrd, time_offset_length) == 99 && offsetof(hrd, valid) == 100);
static_assert(std::is_same_v<decltype(&hrd::parse), bool (hrd::*)(h2645_common_bitreader&)>);

// VUI parameters
static_assert(std::is_same_v<u8, std::underlying_type_t<h264_video_format>>);
static_assert(h264_video_format_component == 0 && h264_video_format_pal == 1 && h264_video_format_ntsc == 2);
static_assert(h264_video_format_secam == 3 && h264_video_format_mac == 4 && h264_video_format_unspecified == 5);
static_assert(std::is_standard_layout_v<vui> && sizeof(vui) == 296);
static_assert(all_are<bool, decltype(vui::aspect_ratio_info_present_flag), decltype(vui::extended_sar),
                      decltype(vui::overscan_info_present_flag), decltype(vui::overscan_appropriate_flag),
                      decltype(vui::video_signal_type_present_flag), decltype(vui::video_full_range_flag),
                      decltype(vui::colour_description_present_flag), decltype(vui::chroma_loc_info_present_flag),
                      decltype(vui::timing_info_present_flag), decltype(vui::fixed_frame_rate_flag),
                      decltype(vui::nal_hrd_parameters_present_flag), decltype(vui::vcl_hrd_parameters_present_flag),
                      decltype(vui::low_delay_hrd_flag), decltype(vui::pic_struct_present_flag),
                      decltype(vui::bitstream_restriction_flag), decltype(vui::motion_vectors_over_pic_boundaries_flag),
                      decltype(vui::valid)>);
static_assert(all_are<u8, decltype(vui::aspect_ratio_idc), decltype(vui::video_format), decltype(vui::colour_primaries),
                      decltype(vui::transfer_characteristics), decltype(vui::matrix_coefficients)>);
static_assert(all_are<u16, decltype(vui::sar_width), decltype(vui::sar_height)>);
static_assert(
    all_are<u32, decltype(vui::chroma_sample_loc_type_top_field), decltype(vui::chroma_sample_loc_type_bottom_field),
            decltype(vui::num_units_in_tick), decltype(vui::time_scale), decltype(vui::max_bytes_per_pic_denom),
            decltype(vui::max_bits_per_mb_denom), decltype(vui::log2_max_mv_length_horizontal),
            decltype(vui::log2_max_mv_length_vertical), decltype(vui::max_num_reorder_frames),
            decltype(vui::max_dec_frame_buffering)>);
static_assert(all_are<hrd, decltype(vui::nal_hrd), decltype(vui::vcl_hrd)>);
static_assert(offsetof(vui, aspect_ratio_info_present_flag) == 0 && offsetof(vui, aspect_ratio_idc) == 1);
static_assert(offsetof(vui, extended_sar) == 2 && offsetof(vui, sar_width) == 4 && offsetof(vui, sar_height) == 6);
static_assert(offsetof(vui, overscan_info_present_flag) == 8 && offsetof(vui, overscan_appropriate_flag) == 9);
static_assert(offsetof(vui, video_signal_type_present_flag) == 10 && offsetof(vui, video_format) == 11);
static_assert(offsetof(vui, video_full_range_flag) == 12 && offsetof(vui, colour_description_present_flag) == 13);
static_assert(offsetof(vui, colour_primaries) == 14 && offsetof(vui, transfer_characteristics) == 15);
static_assert(offsetof(vui, matrix_coefficients) == 16 && offsetof(vui, chroma_loc_info_present_flag) == 17);
static_assert(offsetof(vui, chroma_sample_loc_type_top_field) == 20);
static_assert(offsetof(vui, chroma_sample_loc_type_bottom_field) == 24);
static_assert(offsetof(vui, timing_info_present_flag) == 28 && offsetof(vui, num_units_in_tick) == 32);
static_assert(offsetof(vui, time_scale) == 36 && offsetof(vui, fixed_frame_rate_flag) == 40);
static_assert(offsetof(vui, nal_hrd_parameters_present_flag) == 41 && offsetof(vui, nal_hrd) == 48);
static_assert(offsetof(vui, vcl_hrd_parameters_present_flag) == 152 && offsetof(vui, vcl_hrd) == 160);
static_assert(offsetof(vui, low_delay_hrd_flag) == 264 && offsetof(vui, pic_struct_present_flag) == 265);
static_assert(offsetof(vui, bitstream_restriction_flag) == 266);
static_assert(offsetof(vui, motion_vectors_over_pic_boundaries_flag) == 267);
static_assert(offsetof(vui, max_bytes_per_pic_denom) == 268 && offsetof(vui, max_bits_per_mb_denom) == 272);
static_assert(offsetof(vui, log2_max_mv_length_horizontal) == 276);
static_assert(offsetof(vui, log2_max_mv_length_vertical) == 280 && offsetof(vui, max_num_reorder_frames) == 284);
static_assert(offsetof(vui, max_dec_frame_buffering) == 288 && offsetof(vui, valid) == 292);
static_assert(std::is_same_v<decltype(&vui::parse), bool (vui::*)(h2645_common_bitreader&)>);
static_assert(std::is_same_v<decltype(&vui::video_format_to_str), const char* (vui::*)() const>);
static_assert(std::is_same_v<decltype(&h264_video_format_to_str), const char* (*)(h264_video_format)>);

// The store
using sps_store = h2645_common_base_store<seq>;
static_assert(sizeof(sps_store) == 56 && sizeof(std::map<u32, seq>) == 48);
static_assert(all_are<u32, decltype(sps_store::current)> && all_are<std::map<u32, seq>, decltype(sps_store::entries)>);
static_assert(callable_as<decltype(&sps_store::find), const seq* (sps_store::*)(u32) const>);
static_assert(callable_as<decltype(&sps_store::at), const seq& (sps_store::*)(u32) const>);
static_assert(callable_as<decltype(&sps_store::insert_or_assign), void (sps_store::*)(u32, seq)>);
static_assert(callable_as<decltype(&sps_store::erase), bool (sps_store::*)(u32)>);
static_assert(callable_as<decltype(&sps_store::size), std::size_t (sps_store::*)() const>);
static_assert(callable_as<decltype(&sps_store::current_id), u32 (sps_store::*)() const>);
static_assert(callable_as<decltype(&sps_store::set_current_id), void (sps_store::*)(u32)>);

// The sequence parameter set
static_assert(std::is_standard_layout_v<seq> && std::is_copy_assignable_v<seq>);
static_assert(std::is_nothrow_move_constructible_v<seq>);
static_assert(all_are<u8, decltype(seq::profile_idc), decltype(seq::reserved_zero_2bits), decltype(seq::level_idc)>);
static_assert(all_are<bool, decltype(seq::constraint_set0_flag), decltype(seq::constraint_set1_flag),
                      decltype(seq::constraint_set2_flag), decltype(seq::constraint_set3_flag),
                      decltype(seq::constraint_set4_flag), decltype(seq::constraint_set5_flag),
                      decltype(seq::separate_colour_plane_flag), decltype(seq::qpprime_y_zero_transform_bypass_flag),
                      decltype(seq::seq_scaling_matrix_present_flag), decltype(seq::delta_pic_order_always_zero_flag),
                      decltype(seq::gaps_in_frame_num_value_allowed_flag), decltype(seq::frame_mbs_only_flag),
                      decltype(seq::mb_adaptive_frame_field_flag), decltype(seq::direct_8x8_inference_flag),
                      decltype(seq::frame_cropping_flag), decltype(seq::vui_parameters_present_flag),
                      decltype(seq::valid), decltype(seq::high_profile_syntax_present)>);
static_assert(
    all_are<u32, decltype(seq::seq_parameter_set_id), decltype(seq::chroma_format_idc),
            decltype(seq::bit_depth_luma_minus8), decltype(seq::bit_depth_chroma_minus8),
            decltype(seq::log2_max_frame_num_minus4), decltype(seq::pic_order_cnt_type),
            decltype(seq::log2_max_pic_order_cnt_lsb_minus4), decltype(seq::num_ref_frames_in_pic_order_cnt_cycle),
            decltype(seq::max_num_ref_frames), decltype(seq::pic_width_in_mbs_minus1),
            decltype(seq::pic_height_in_map_units_minus1), decltype(seq::frame_crop_left_offset),
            decltype(seq::frame_crop_right_offset), decltype(seq::frame_crop_top_offset),
            decltype(seq::frame_crop_bottom_offset), decltype(seq::SubWidthC), decltype(seq::SubHeightC)>);
static_assert(all_are<i32, decltype(seq::offset_for_non_ref_pic), decltype(seq::offset_for_top_to_bottom_field)>);
static_assert(all_are<std::vector<i32>, decltype(seq::offset_for_ref_frame)> && all_are<vui, decltype(seq::vui)>);
static_assert(all_are<lists, decltype(seq::scaling_list_4x4), decltype(seq::scaling_list_8x8)>);
static_assert(sizeof(seq) == 832);
static_assert(offsetof(seq, profile_idc) == 0 && offsetof(seq, constraint_set0_flag) == 1);
static_assert(offsetof(seq, constraint_set1_flag) == 2 && offsetof(seq, constraint_set2_flag) == 3);
static_assert(offsetof(seq, constraint_set3_flag) == 4 && offsetof(seq, constraint_set4_flag) == 5);
static_assert(offsetof(seq, constraint_set5_flag) == 6 && offsetof(seq, reserved_zero_2bits) == 7);
static_assert(offsetof(seq, level_idc) == 8 && offsetof(seq, seq_parameter_set_id) == 12);
static_assert(offsetof(seq, chroma_format_idc) == 16 && offsetof(seq, separate_colour_plane_flag) == 20);
static_assert(offsetof(seq, bit_depth_luma_minus8) == 24 && offsetof(seq, bit_depth_chroma_minus8) == 28);
static_assert(offsetof(seq, qpprime_y_zero_transform_bypass_flag) == 32);
static_assert(offsetof(seq, seq_scaling_matrix_present_flag) == 33);
static_assert(offsetof(seq, scaling_list_4x4) == 40 && offsetof(seq, scaling_list_8x8) == 232);
static_assert(offsetof(seq, log2_max_frame_num_minus4) == 424 && offsetof(seq, pic_order_cnt_type) == 428);
static_assert(offsetof(seq, log2_max_pic_order_cnt_lsb_minus4) == 432);
static_assert(offsetof(seq, delta_pic_order_always_zero_flag) == 436 && offsetof(seq, offset_for_non_ref_pic) == 440);
static_assert(offsetof(seq, offset_for_top_to_bottom_field) == 444);
static_assert(offsetof(seq, num_ref_frames_in_pic_order_cnt_cycle) == 448);
static_assert(offsetof(seq, offset_for_ref_frame) == 456 && offsetof(seq, max_num_ref_frames) == 480);
static_assert(offsetof(seq, gaps_in_frame_num_value_allowed_flag) == 484);
static_assert(offsetof(seq, pic_width_in_mbs_minus1) == 488);
static_assert(offsetof(seq, pic_height_in_map_units_minus1) == 492 && offsetof(seq, frame_mbs_only_flag) == 496);
static_assert(offsetof(seq, mb_adaptive_frame_field_flag) == 497 && offsetof(seq, direct_8x8_inference_flag) == 498);
static_assert(offsetof(seq, frame_cropping_flag) == 499 && offsetof(seq, frame_crop_left_offset) == 500);
static_assert(offsetof(seq, frame_crop_right_offset) == 504 && offsetof(seq, frame_crop_top_offset) == 508);
static_assert(offsetof(seq, frame_crop_bottom_offset) == 512 && offsetof(seq, vui_parameters_present_flag) == 516);
static_assert(offsetof(seq, vui) == 520 && offsetof(seq, valid) == 816);
static_assert(offsetof(seq, high_profile_syntax_present) == 817 && offsetof(seq, SubWidthC) == 820);
static_assert(offsetof(seq, SubHeightC) == 824);
static_assert(std::is_same_v<decltype(&seq::parse), bool (seq::*)(h2645_common_bitreader&)>);
static_assert(
    all_are<u32 (seq::*)() const, decltype(&seq::getCropLeft), decltype(&seq::getCropRight), decltype(&seq::getCropTop),
            decltype(&seq::getCropBottom), decltype(&seq::getPicWidth), decltype(&seq::getCroppedPicWidth),
            decltype(&seq::getPicHeight), decltype(&seq::getCroppedPicHeight)>);

// The picture parameter set
static_assert(std::is_standard_layout_v<pic> && std::is_copy_assignable_v<pic>);
static_assert(std::is_nothrow_move_constructible_v<pic>);
static_assert(all_are<bool, decltype(pic::valid), decltype(pic::entropy_coding_mode_flag),
                      decltype(pic::bottom_field_pic_order_in_frame_present_flag),
                      decltype(pic::slice_group_change_direction_flag), decltype(pic::weighted_pred_flag),
                      decltype(pic::deblocking_filter_control_present_flag), decltype(pic::constrained_intra_pred_flag),
                      decltype(pic::redundant_pic_cnt_present_flag), decltype(pic::more_rbsp_data_present),
                      decltype(pic::transform_8x8_mode_flag), decltype(pic::pic_scaling_matrix_present_flag)>);
static_assert(
    all_are<u32, decltype(pic::pic_parameter_set_id), decltype(pic::seq_parameter_set_id),
            decltype(pic::num_slice_groups_minus1), decltype(pic::slice_group_map_type),
            decltype(pic::slice_group_change_rate_minus1), decltype(pic::num_ref_idx_l0_default_active_minus1),
            decltype(pic::num_ref_idx_l1_default_active_minus1), decltype(pic::pic_size_in_map_units_minus1)>);
static_assert(all_are<i32, decltype(pic::pic_init_qp_minus26), decltype(pic::pic_init_qs_minus26),
                      decltype(pic::chroma_qp_index_offset), decltype(pic::second_chroma_qp_index_offset)>);
static_assert(all_are<u8, decltype(pic::weighted_bipred_idc)>);
static_assert(all_are<numbers, decltype(pic::run_length_minus1), decltype(pic::top_left), decltype(pic::bottom_right),
                      decltype(pic::slice_group_id)>);
static_assert(all_are<lists, decltype(pic::pic_scaling_list_4x4), decltype(pic::pic_scaling_list_8x8)>);
static_assert(sizeof(pic) == 552);
static_assert(offsetof(pic, valid) == 0 && offsetof(pic, pic_parameter_set_id) == 4);
static_assert(offsetof(pic, seq_parameter_set_id) == 8 && offsetof(pic, entropy_coding_mode_flag) == 12);
static_assert(offsetof(pic, bottom_field_pic_order_in_frame_present_flag) == 13);
static_assert(offsetof(pic, num_slice_groups_minus1) == 16 && offsetof(pic, slice_group_map_type) == 20);
static_assert(offsetof(pic, run_length_minus1) == 24 && offsetof(pic, top_left) == 48);
static_assert(offsetof(pic, bottom_right) == 72 && offsetof(pic, slice_group_change_direction_flag) == 96);
static_assert(offsetof(pic, slice_group_change_rate_minus1) == 100);
static_assert(offsetof(pic, num_ref_idx_l0_default_active_minus1) == 104);
static_assert(offsetof(pic, num_ref_idx_l1_default_active_minus1) == 108);
static_assert(offsetof(pic, weighted_pred_flag) == 112 && offsetof(pic, weighted_bipred_idc) == 113);
static_assert(offsetof(pic, pic_init_qp_minus26) == 116 && offsetof(pic, pic_init_qs_minus26) == 120);
static_assert(offsetof(pic, chroma_qp_index_offset) == 124);
static_assert(offsetof(pic, deblocking_filter_control_present_flag) == 128);
static_assert(offsetof(pic, constrained_intra_pred_flag) == 129);
static_assert(offsetof(pic, redundant_pic_cnt_present_flag) == 130 && offsetof(pic, more_rbsp_data_present) == 131);
static_assert(offsetof(pic, transform_8x8_mode_flag) == 132 && offsetof(pic, pic_scaling_matrix_present_flag) == 133);
static_assert(offsetof(pic, second_chroma_qp_index_offset) == 136);
static_assert(offsetof(pic, pic_size_in_map_units_minus1) == 140 && offsetof(pic, slice_group_id) == 144);
static_assert(offsetof(pic, pic_scaling_list_4x4) == 168 && offsetof(pic, pic_scaling_list_8x8) == 360);
static_assert(std::is_same_v<decltype(&pic::parse), bool (pic::*)(h2645_common_bitreader&, const sps_store&)>);

namespace {

/// Whether `T{}` on dirty memory has nothing but zeros, falses and empty arrays.
template <typename T>
bool made_of_zeros()
{
    const support::made_on_dirty_memory<T> object;
    for (const support::value& field : support::fields_of(*object).values)
        if (field != support::value{})
            return false;
    return true;
}

} // namespace

TEST(ParameterSetLayout, AnEmptyBraceMakesZerosFalsesAndEmpties)
{
    EXPECT_TRUE(made_of_zeros<list>());
    EXPECT_TRUE(made_of_zeros<hrd>());
    EXPECT_TRUE(made_of_zeros<vui>());
    EXPECT_TRUE(made_of_zeros<seq>());
    EXPECT_TRUE(made_of_zeros<pic>());
    const support::made_on_dirty_memory<sps_store> store;
    EXPECT_EQ(0xFFFFFFFFU, store->current_id());
    EXPECT_EQ(0U, store->size());
}

TEST(ParameterSetLayout, TheStoresMapLiesBehindTheCurrentId)
{
    const sps_store store;
    const auto* const start = reinterpret_cast<const char*>(&store);
    EXPECT_EQ(0, reinterpret_cast<const char*>(&store.current) - start);
    EXPECT_EQ(8, reinterpret_cast<const char*>(&store.entries) - start);
}

TEST(ParameterSetLayout, EveryMemberIsAmongTheFieldsThatTestsCompare)
{
    EXPECT_EQ(4U, support::names_of(list{}).in_order.size());
    EXPECT_EQ(11U, support::names_of(hrd{}).in_order.size());
    EXPECT_EQ(34U + 2 * 11, support::names_of(vui{}).in_order.size());
    EXPECT_EQ(support::names_of(seq{}).in_order.size(), support::names_of(seq{}).index.size());
    EXPECT_EQ(support::names_of(pic{}).in_order.size(), support::names_of(pic{}).index.size());
    EXPECT_EQ(41U + 12 * 4 + 34 + 2 * 11, support::names_of(seq{}).in_order.size());
    EXPECT_EQ(28U + 12 * 4, support::names_of(pic{}).in_order.size());
}
