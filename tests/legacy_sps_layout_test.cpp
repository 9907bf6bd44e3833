// The layout in memory and the signatures of the legacy SPS, slice and SEI reads: member order, widths, offsets. Sizes
// are those of LP64.
#include <orv-utils-v4/h264_legacy.h>

#include "support/dirty_memory.h"
#include "support/legacy_fields.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <type_traits>

namespace {

/// Whether every member is a T.
template <typename T, typename... Members>
constexpr bool all_are = (std::is_same_v<T, Members> && ...);

template <typename T>
constexpr bool is_plain = std::is_standard_layout_v<T>&& std::is_trivially_copyable_v<T>;

using u8 = std::uint8_t;
using u32 = std::uint32_t;
using seq = h264_sps;
using slice = h264_nal_slice_info;
using pair = h264_sei_pair;
using timing = h264_sei_picture_timing_info;

} // namespace

static_assert(sizeof(void*) == 8, "the sizes below");

// The SPS
static_assert(is_plain<seq> && sizeof(seq) == 132 && alignof(seq) == 4 && !std::is_aggregate_v<seq>);
static_assert(
    all_are<u8, decltype(seq::gaps_in_frame_num_value_allowed_flag), decltype(seq::qprime_y_zero_transform_bypass_flag),
            decltype(seq::delta_pic_order_always_zero_flag), decltype(seq::seq_scaling_matrix_present_flag),
            decltype(seq::separate_colour_plane_flag), decltype(seq::max_pic_order_cnt_lsb),
            decltype(seq::constraint_set0_flag), decltype(seq::constraint_set1_flag),
            decltype(seq::constraint_set2_flag), decltype(seq::constraint_set3_flag),
            decltype(seq::constraint_set4_flag), decltype(seq::constraint_set5_flag),
            decltype(seq::reserved_zero_2bits), decltype(seq::max_num_ref_frames), decltype(seq::pic_order_cnt_type),
            decltype(seq::log2_max_frame_num), decltype(seq::profile_idc), decltype(seq::level_idc),
            decltype(seq::frame_mbs_only_flag), decltype(seq::mb_adaptive_frame_field_flag),
            decltype(seq::direct_8x8_inference_flag), decltype(seq::frame_cropping_flag),
            decltype(seq::vui_parameters_present_flag), decltype(seq::aspect_ratio_info_present_flag),
            decltype(seq::aspect_ratio_idc), decltype(seq::overscan_info_present_flag),
            decltype(seq::overscan_info_appropriate_flag), decltype(seq::video_signal_type_present_flag),
            decltype(seq::video_format), decltype(seq::video_full_range_flag),
            decltype(seq::colour_description_present_flag), decltype(seq::colour_primaries),
            decltype(seq::transfer_characteristics), decltype(seq::matrix_coefficients),
            decltype(seq::chroma_location_info_present_flag), decltype(seq::timing_info_present_flag),
            decltype(seq::fixed_frame_rate_flag), decltype(seq::nal_hrd_parameters_present_flag),
            decltype(seq::vcl_hrd_parameters_present_flag), decltype(seq::low_delay_hrd_flag),
            decltype(seq::pic_struct_present_flag), decltype(seq::initial_cpb_removal_delay_length),
            decltype(seq::cpb_removal_delay_length), decltype(seq::dpb_output_delay_length),
            decltype(seq::time_offset_length)>);
static_assert(
    all_are<u32, decltype(seq::pic_height_in_map_units), decltype(seq::seq_parameter_set_id),
            decltype(seq::chroma_format_idc), decltype(seq::pic_width_in_mbps), decltype(seq::bit_depth_chroma),
            decltype(seq::bit_depth_luma), decltype(seq::max_frame_num), decltype(seq::frame_crop_left_offset),
            decltype(seq::frame_crop_right_offset), decltype(seq::frame_crop_top_offset),
            decltype(seq::frame_crop_bottom_offset), decltype(seq::sar_width), decltype(seq::sar_height),
            decltype(seq::chroma_sample_location_type_top_field),
            decltype(seq::chroma_sample_location_type_bottom_field), decltype(seq::num_units_in_ticks),
            decltype(seq::time_scale)>);
static_assert(offsetof(seq, gaps_in_frame_num_value_allowed_flag) == 0);
static_assert(offsetof(seq, qprime_y_zero_transform_bypass_flag) == 1);
static_assert(offsetof(seq, delta_pic_order_always_zero_flag) == 2);
static_assert(offsetof(seq, seq_scaling_matrix_present_flag) == 3 && offsetof(seq, separate_colour_plane_flag) == 4);
static_assert(offsetof(seq, pic_height_in_map_units) == 8 && offsetof(seq, max_pic_order_cnt_lsb) == 12);
static_assert(offsetof(seq, constraint_set0_flag) == 13 && offsetof(seq, constraint_set1_flag) == 14);
static_assert(offsetof(seq, constraint_set2_flag) == 15 && offsetof(seq, constraint_set3_flag) == 16);
static_assert(offsetof(seq, constraint_set4_flag) == 17 && offsetof(seq, constraint_set5_flag) == 18);
static_assert(offsetof(seq, reserved_zero_2bits) == 19 && offsetof(seq, seq_parameter_set_id) == 20);
static_assert(offsetof(seq, max_num_ref_frames) == 24 && offsetof(seq, pic_order_cnt_type) == 25);
static_assert(offsetof(seq, chroma_format_idc) == 28 && offsetof(seq, pic_width_in_mbps) == 32);
static_assert(offsetof(seq, bit_depth_chroma) == 36 && offsetof(seq, bit_depth_luma) == 40);
static_assert(offsetof(seq, log2_max_frame_num) == 44 && offsetof(seq, max_frame_num) == 48);
static_assert(offsetof(seq, profile_idc) == 52 && offsetof(seq, level_idc) == 53);
static_assert(offsetof(seq, frame_mbs_only_flag) == 54 && offsetof(seq, mb_adaptive_frame_field_flag) == 55);
static_assert(offsetof(seq, direct_8x8_inference_flag) == 56 && offsetof(seq, frame_cropping_flag) == 57);
static_assert(offsetof(seq, frame_crop_left_offset) == 60 && offsetof(seq, frame_crop_right_offset) == 64);
static_assert(offsetof(seq, frame_crop_top_offset) == 68 && offsetof(seq, frame_crop_bottom_offset) == 72);
static_assert(offsetof(seq, vui_parameters_present_flag) == 76);
static_assert(offsetof(seq, aspect_ratio_info_present_flag) == 77 && offsetof(seq, aspect_ratio_idc) == 78);
static_assert(offsetof(seq, sar_width) == 80 && offsetof(seq, sar_height) == 84);
static_assert(offsetof(seq, overscan_info_present_flag) == 88 && offsetof(seq, overscan_info_appropriate_flag) == 89);
static_assert(offsetof(seq, video_signal_type_present_flag) == 90 && offsetof(seq, video_format) == 91);
static_assert(offsetof(seq, video_full_range_flag) == 92 && offsetof(seq, colour_description_present_flag) == 93);
static_assert(offsetof(seq, colour_primaries) == 94 && offsetof(seq, transfer_characteristics) == 95);
static_assert(offsetof(seq, matrix_coefficients) == 96 && offsetof(seq, chroma_location_info_present_flag) == 97);
static_assert(offsetof(seq, chroma_sample_location_type_top_field) == 100);
static_assert(offsetof(seq, chroma_sample_location_type_bottom_field) == 104);
static_assert(offsetof(seq, timing_info_present_flag) == 108 && offsetof(seq, num_units_in_ticks) == 112);
static_assert(offsetof(seq, time_scale) == 116 && offsetof(seq, fixed_frame_rate_flag) == 120);
static_assert(offsetof(seq, nal_hrd_parameters_present_flag) == 121);
static_assert(offsetof(seq, vcl_hrd_parameters_present_flag) == 122 && offsetof(seq, low_delay_hrd_flag) == 123);
static_assert(offsetof(seq, pic_struct_present_flag) == 124 && offsetof(seq, initial_cpb_removal_delay_length) == 125);
static_assert(offsetof(seq, cpb_removal_delay_length) == 126 && offsetof(seq, dpb_output_delay_length) == 127);
static_assert(offsetof(seq, time_offset_length) == 128);
static_assert(std::is_same_v<decltype(&seq::reset), void (seq::*)()>);
static_assert(std::is_same_v<decltype(&seq::parse_sps), void (seq::*)(be_bitfield&)>);
static_assert(std::is_same_v<decltype(&seq::discard_h264_video_scaling_matrix_list_because_nobody_fucking_cares),
                             void (seq::*)(be_bitfield&, unsigned)>);
static_assert(std::is_same_v<decltype(&seq::discard_h264_video_hrd_params_because_nobody_fucking_cares),
                             void (seq::*)(be_bitfield&)>);
static_assert(all_are<int (seq::*)(), decltype(&seq::get_final_frame_width), decltype(&seq::get_final_frame_height)>);
static_assert(std::is_same_v<decltype(&seq::get_final_field_rate), int (seq::*)(unsigned&, unsigned&)>);
static_assert(std::is_same_v<decltype(&seq::dump), void (seq::*)(std::FILE*)>);
static_assert(std::is_same_v<decltype(h264_aspect_ratio_stdent_presets), const u8[17][2]>);
static_assert(sizeof(h264_aspect_ratio_stdent_presets) == 34);

// The slice
static_assert(is_plain<slice> && sizeof(slice) == 24 && alignof(slice) == 4);
static_assert(all_are<u32, decltype(slice::first_mb_in_slice), decltype(slice::slice_type),
                      decltype(slice::pic_parameter_set_id), decltype(slice::frame_num)>);
static_assert(
    all_are<u8, decltype(slice::colour_plane_id), decltype(slice::field_pic_flag), decltype(slice::bottom_field_flag)>);
static_assert(offsetof(slice, first_mb_in_slice) == 0 && offsetof(slice, slice_type) == 4);
static_assert(offsetof(slice, pic_parameter_set_id) == 8 && offsetof(slice, colour_plane_id) == 12);
static_assert(offsetof(slice, frame_num) == 16 && offsetof(slice, field_pic_flag) == 20);
static_assert(offsetof(slice, bottom_field_flag) == 21);
static_assert(std::is_same_v<decltype(&h264_slice_parse), int (*)(slice&, h264_nal_parser_state&, seq&)>);

// SEI
static_assert(is_plain<pair> && sizeof(pair) == 40 && all_are<u8, decltype(pair::valid)>);
static_assert(all_are<u32, decltype(pair::payload_type), decltype(pair::payload_size)>);
static_assert(all_are<const unsigned char*, decltype(pair::start), decltype(pair::data), decltype(pair::fence)>);
static_assert(offsetof(pair, valid) == 0 && offsetof(pair, payload_type) == 4 && offsetof(pair, payload_size) == 8);
static_assert(offsetof(pair, start) == 16 && offsetof(pair, data) == 24 && offsetof(pair, fence) == 32);
static_assert(is_plain<timing> && sizeof(timing) == 16 && alignof(timing) == 4);
static_assert(all_are<u32, decltype(timing::cpb_removal_delay), decltype(timing::dpb_output_delay),
                      decltype(timing::pic_struct), decltype(timing::field_duration)>);
static_assert(offsetof(timing, cpb_removal_delay) == 0 && offsetof(timing, dpb_output_delay) == 4);
static_assert(offsetof(timing, pic_struct) == 8 && offsetof(timing, field_duration) == 12);
using bytes_at = const unsigned char*;
static_assert(std::is_same_v<decltype(&h264_sei_read_pair), bytes_at (*)(pair*, bytes_at, bytes_at)>);
static_assert(
    std::is_same_v<decltype(&h264_sei_picture_timing_info_parse), int (*)(timing*, bytes_at, bytes_at, seq&)>);
static_assert(std::is_same_v<decltype(&h264_sei_get_field_duration), int (*)(seq&, bytes_at, bytes_at)>);

namespace {

/// Whether every field is zero; pointers are, when they count as null.
template <typename T>
bool is_zero(const T& object)
{
    for (const support::value& field : support::fields_of(object).values)
        if (field != support::value{})
            return false;
    return true;
}

template <support::made_with How>
void expect_zeros()
{
    EXPECT_TRUE(is_zero(*support::made_on_dirty_memory<seq, How>()));
    EXPECT_TRUE(is_zero(*support::made_on_dirty_memory<slice, How>()));
    EXPECT_TRUE(is_zero(*support::made_on_dirty_memory<timing, How>()));
    const support::made_on_dirty_memory<pair, How> made;
    EXPECT_EQ(0, made->valid);
    EXPECT_EQ(0U, made->payload_type);
    EXPECT_EQ(0U, made->payload_size);
    EXPECT_TRUE(made->start == nullptr && made->data == nullptr && made->fence == nullptr);
}

} // namespace

TEST(LegacySpsLayout, AnEmptyBraceMakesZeros)
{
    expect_zeros<support::made_with::braces>();
}

TEST(LegacySpsLayout, EveryMemberIsZeroWithoutBracesToo)
{
    expect_zeros<support::made_with::no_braces>();
}

TEST(LegacySpsLayout, EveryMemberIsAmongTheFieldsThatTestsCompare)
{
    EXPECT_EQ(62U, support::names_of(seq{}).in_order.size());
    EXPECT_EQ(62U, support::names_of(seq{}).index.size());
    EXPECT_EQ(7U, support::names_of(slice{}).in_order.size());
    EXPECT_EQ(5U, support::names_of(pair{}).in_order.size());
    EXPECT_EQ(4U, support::names_of(timing{}).in_order.size());
}

TEST(LegacySpsLayout, TheSampleAspectRatiosAreThoseOfTheStandard)
{
    const u8 expected[17][2] = {{0, 1},   {1, 1},    {12, 11}, {10, 11}, {16, 11}, {40, 33},
                                {24, 11}, {20, 11},  {32, 11}, {80, 33}, {18, 11}, {15, 11},
                                {64, 33}, {160, 99}, {4, 3},   {3, 2},   {2, 1}};
    for (std::size_t idc = 0; idc < 17; ++idc) {
        EXPECT_EQ(expected[idc][0], h264_aspect_ratio_stdent_presets[idc][0]) << idc;
        EXPECT_EQ(expected[idc][1], h264_aspect_ratio_stdent_presets[idc][1]) << idc;
    }
}
