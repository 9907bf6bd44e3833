// SPS, SPS extension, PPS, delimiter, ends and filler spelled by hand; H.264 clauses 7.3.2.1 to 7.3.2.7 and E.1.
#include "support/literal_hrd.h"
#include "support/literal_sequence.h"
#include "support/literal_unit.h"

#include <gtest/gtest.h>

namespace {

using namespace literal;

/// scaling_list() whose entries are `deltas`, clause 7.3.2.1.1.1.
lines scaling_list_of(const std::vector<int>& deltas)
{
    lines list;
    for (std::size_t j = 0; j < deltas.size(); ++j)
        list.push_back({at("delta_scale", j), se, deltas[j]});
    return list;
}

/// A whole list of `size` entries, none of which ends it.
std::vector<int> whole_list(std::size_t size)
{
    std::vector<int> deltas(size, 1);
    deltas[0] = 8;
    deltas[size - 1] = -9;
    return deltas;
}

/// The lists of an SPS or PPS: whole ones, one that is the default, one that ends early, and some that are not there.
lines scaling_lists(const std::string& flag, std::size_t count)
{
    lines all;
    for (std::size_t i = 0; i < count; ++i) {
        const bool present = i != 3 && i != 5;
        all.push_back({at(flag, i), literal::u(1), present});
        if (!present)
            continue;
        if (i == 1)
            all = join(all, scaling_list_of({-8}));
        else if (i == 2)
            all = join(all, scaling_list_of({4, 4, -16}));
        else
            all = join(all, scaling_list_of(whole_list(i < 6 ? 16 : 64)));
    }
    return all;
}

lines whole_vui()
{
    return join(lines{{"aspect_ratio_info_present_flag", u(1), 1},
                      {"aspect_ratio_idc", u(8), 255},
                      {"sar_width", u(16), 40000},
                      {"sar_height", u(16), 30000},
                      {"overscan_info_present_flag", u(1), 1},
                      {"overscan_appropriate_flag", u(1), 0},
                      {"video_signal_type_present_flag", u(1), 1},
                      {"video_format", u(3), 3},
                      {"video_full_range_flag", u(1), 1},
                      {"colour_description_present_flag", u(1), 1},
                      {"colour_primaries", u(8), 9},
                      {"transfer_characteristics", u(8), 16},
                      {"matrix_coefficients", u(8), 8},
                      {"chroma_loc_info_present_flag", u(1), 1},
                      {"chroma_sample_loc_type_top_field", ue, 2},
                      {"chroma_sample_loc_type_bottom_field", ue, 5},
                      {"timing_info_present_flag", u(1), 1},
                      {"num_units_in_tick", u(32), 1001},
                      {"time_scale", u(32), 4294967295},
                      {"fixed_frame_rate_flag", u(1), 1},
                      {"nal_hrd_parameters_present_flag", u(1), 1}},
                hrd_of_one(), lines{{"vcl_hrd_parameters_present_flag", u(1), 1}}, hrd_of_two(),
                lines{{"low_delay_hrd_flag", u(1), 0},
                      {"pic_struct_present_flag", u(1), 1},
                      {"bitstream_restriction_flag", u(1), 1},
                      {"motion_vectors_over_pic_boundaries_flag", u(1), 0},
                      {"max_bytes_per_pic_denom", ue, 3},
                      {"max_bits_per_mb_denom", ue, 4},
                      {"log2_max_mv_length_horizontal", ue, 9},
                      {"log2_max_mv_length_vertical", ue, 10},
                      {"max_num_reorder_frames", ue, 1},
                      {"max_dec_frame_buffering", ue, 5}});
}

TEST(LiteralSps, HighWithEveryConditionOnIsTold)
{
    const nal_unit unit = expect_told(unit_of(7, join(sps_head(244, 31),
                                                      lines{{"chroma_format_idc", ue, 3},
                                                            {"separate_colour_plane_flag", u(1), 1},
                                                            {"bit_depth_luma_minus8", ue, 6},
                                                            {"bit_depth_chroma_minus8", ue, 5},
                                                            {"qpprime_y_zero_transform_bypass_flag", u(1), 1},
                                                            {"seq_scaling_matrix_present_flag", u(1), 1}},
                                                      scaling_lists("seq_scaling_list_present_flag", 12),
                                                      lines{{"log2_max_frame_num_minus4", ue, 12},
                                                            {"pic_order_cnt_type", ue, 1},
                                                            {"delta_pic_order_always_zero_flag", u(1), 1},
                                                            {"offset_for_non_ref_pic", se, -2147483647},
                                                            {"offset_for_top_to_bottom_field", se, 2147483647},
                                                            {"num_ref_frames_in_pic_order_cnt_cycle", ue, 3},
                                                            {"offset_for_ref_frame[0]", se, 7},
                                                            {"offset_for_ref_frame[1]", se, -8},
                                                            {"offset_for_ref_frame[2]", se, 9},
                                                            {"max_num_ref_frames", ue, 5},
                                                            {"gaps_in_frame_num_value_allowed_flag", u(1), 1},
                                                            {"pic_width_in_mbs_minus1", ue, 119},
                                                            {"pic_height_in_map_units_minus1", ue, 33},
                                                            {"frame_mbs_only_flag", u(1), 0},
                                                            {"mb_adaptive_frame_field_flag", u(1), 1},
                                                            {"direct_8x8_inference_flag", u(1), 1},
                                                            {"frame_cropping_flag", u(1), 1},
                                                            {"frame_crop_left_offset", ue, 1},
                                                            {"frame_crop_right_offset", ue, 2},
                                                            {"frame_crop_top_offset", ue, 3},
                                                            {"frame_crop_bottom_offset", ue, 4},
                                                            {"vui_parameters_present_flag", u(1), 1}},
                                                      whole_vui())));
    const seq_parameter_set_data& sps = rbsp_of<seq_parameter_set_rbsp>(unit).seq_parameter_set_data;
    EXPECT_EQ(sps.bit_depth_luma_minus8, 6U);
    EXPECT_EQ(sps.bit_depth_chroma_minus8, 5U);
    EXPECT_EQ(sps.offset_for_non_ref_pic, -2147483647);
    EXPECT_EQ(sps.offset_for_top_to_bottom_field, 2147483647);
    EXPECT_EQ(sps.offset_for_ref_frame[1], -8);
    EXPECT_EQ(sps.lists[0].delta_scale.size(), 16U);
    EXPECT_EQ(sps.lists[1].delta_scale.size(), 1U);
    EXPECT_EQ(sps.lists[2].delta_scale.size(), 3U);
    EXPECT_EQ(sps.lists[11].delta_scale.size(), 64U);
    EXPECT_EQ(sps.frame_crop_left_offset, 1U);
    EXPECT_EQ(sps.frame_crop_right_offset, 2U);
    EXPECT_EQ(sps.frame_crop_top_offset, 3U);
    EXPECT_EQ(sps.frame_crop_bottom_offset, 4U);
    const vui_parameters& vui = sps.vui_parameters;
    EXPECT_EQ(vui.sar_width, 40000);
    EXPECT_EQ(vui.sar_height, 30000);
    EXPECT_EQ(vui.colour_primaries, 9);
    EXPECT_EQ(vui.transfer_characteristics, 16);
    EXPECT_EQ(vui.matrix_coefficients, 8);
    EXPECT_EQ(vui.nal_hrd_parameters.bit_rate_value_minus1[0], 999U);
    expect_hrd_of_two(vui.vcl_hrd_parameters);
    EXPECT_FALSE(vui.low_delay_hrd_flag);
    EXPECT_EQ(vui.max_bytes_per_pic_denom, 3U);
    EXPECT_EQ(vui.max_bits_per_mb_denom, 4U);
    EXPECT_EQ(vui.log2_max_mv_length_horizontal, 9U);
    EXPECT_EQ(vui.log2_max_mv_length_vertical, 10U);
}

TEST(LiteralSps, BaselineWithEveryConditionOffIsToldAndTheRestIsInferred)
{
    const nal_unit unit = expect_told(unit_of(7, join(sps_head(66, 0), sps_plain_rest())));
    const seq_parameter_set_data& sps = rbsp_of<seq_parameter_set_rbsp>(unit).seq_parameter_set_data;
    EXPECT_EQ(sps.chroma_format_idc, 1U);
    EXPECT_EQ(sps.bit_depth_luma_minus8, 0U);
    EXPECT_FALSE(sps.mb_adaptive_frame_field_flag);
    EXPECT_EQ(sps.frame_crop_bottom_offset, 0U);
    EXPECT_EQ(sps.vui_parameters.video_format, 5);
    EXPECT_EQ(sps.vui_parameters.colour_primaries, 2);
    EXPECT_TRUE(sps.vui_parameters.motion_vectors_over_pic_boundaries_flag);
    EXPECT_EQ(sps.vui_parameters.max_bytes_per_pic_denom, 2U);
    EXPECT_EQ(sps.vui_parameters.max_bits_per_mb_denom, 1U);
}

TEST(LiteralSps, PictureOrderCountOfTypeZeroAndEightListsAreTold)
{
    expect_told(unit_of(7, join(sps_head(100, 2),
                                lines{{"chroma_format_idc", ue, 2},
                                      {"bit_depth_luma_minus8", ue, 0},
                                      {"bit_depth_chroma_minus8", ue, 0},
                                      {"qpprime_y_zero_transform_bypass_flag", u(1), 0},
                                      {"seq_scaling_matrix_present_flag", u(1), 1}},
                                scaling_lists("seq_scaling_list_present_flag", 8),
                                lines{{"log2_max_frame_num_minus4", ue, 0},
                                      {"pic_order_cnt_type", ue, 0},
                                      {"log2_max_pic_order_cnt_lsb_minus4", ue, 11},
                                      {"max_num_ref_frames", ue, 1},
                                      {"gaps_in_frame_num_value_allowed_flag", u(1), 0},
                                      {"pic_width_in_mbs_minus1", ue, 0},
                                      {"pic_height_in_map_units_minus1", ue, 0},
                                      {"frame_mbs_only_flag", u(1), 1},
                                      {"direct_8x8_inference_flag", u(1), 0},
                                      {"frame_cropping_flag", u(1), 0},
                                      {"vui_parameters_present_flag", u(1), 0}})));
}

TEST(LiteralSps, TheProfilesWithAChromaFormatAreThoseOfTheTable)
{
    for (const unsigned profile_idc : {100U, 110U, 122U, 244U, 44U, 83U, 86U, 118U, 128U, 138U, 139U, 134U, 135U}) {
        SCOPED_TRACE(profile_idc);
        expect_told(unit_of(7, join(sps_head(profile_idc, 0), sps_chroma(1), sps_plain_rest())));
    }
    for (const unsigned profile_idc : {66U, 77U, 88U, 0U, 99U, 101U, 255U}) {
        SCOPED_TRACE(profile_idc);
        expect_told(unit_of(7, join(sps_head(profile_idc, 0), sps_plain_rest())));
    }
}

lines empty_vui_from(bool fixed_frame_rate_flag)
{
    return {{"vui_parameters_present_flag", u(1), 1},
            {"aspect_ratio_info_present_flag", u(1), 1},
            {"aspect_ratio_idc", u(8), 254},
            {"overscan_info_present_flag", u(1), 0},
            {"video_signal_type_present_flag", u(1), 1},
            {"video_format", u(3), 0},
            {"video_full_range_flag", u(1), 0},
            {"colour_description_present_flag", u(1), 0},
            {"chroma_loc_info_present_flag", u(1), 0},
            {"timing_info_present_flag", u(1), 1},
            {"num_units_in_tick", u(32), 1},
            {"time_scale", u(32), 50},
            {"fixed_frame_rate_flag", u(1), fixed_frame_rate_flag},
            {"nal_hrd_parameters_present_flag", u(1), 0}};
}

TEST(LiteralVui, LowDelayIsSentWithOneHrdAndInferredWithNone)
{
    const lines end = {{"pic_struct_present_flag", u(1), 0}, {"bitstream_restriction_flag", u(1), 0}};
    const lines low_delay = {{"low_delay_hrd_flag", u(1), 1}};
    lines sps = join(sps_head(66, 0), sps_plain_rest());
    sps.pop_back(); // vui_parameters_present_flag
    const lines no_vcl = {{"vcl_hrd_parameters_present_flag", u(1), 0}};
    const lines vcl = {{"vcl_hrd_parameters_present_flag", u(1), 1}};
    for (const bool fixed : {false, true}) {
        const nal_unit unit = expect_told(unit_of(7, join(sps, empty_vui_from(fixed), no_vcl, end)));
        const seq_parameter_set_data& read = rbsp_of<seq_parameter_set_rbsp>(unit).seq_parameter_set_data;
        EXPECT_EQ(read.vui_parameters.low_delay_hrd_flag, !fixed);
    }
    expect_told(unit_of(7, join(sps, empty_vui_from(true), vcl, hrd_of_one(), low_delay, end)));
    lines nal = empty_vui_from(true);
    nal.back().value = 1;
    expect_told(unit_of(7, join(sps, nal, hrd_of_two(), no_vcl, low_delay, end)));
}

TEST(LiteralVui, WithNothingPresentIsTold)
{
    lines sps = join(sps_head(66, 0), sps_plain_rest());
    sps.back().value = 1;
    expect_told(unit_of(7, join(sps, lines{{"aspect_ratio_info_present_flag", u(1), 0},
                                           {"overscan_info_present_flag", u(1), 0},
                                           {"video_signal_type_present_flag", u(1), 0},
                                           {"chroma_loc_info_present_flag", u(1), 0},
                                           {"timing_info_present_flag", u(1), 0},
                                           {"nal_hrd_parameters_present_flag", u(1), 0},
                                           {"vcl_hrd_parameters_present_flag", u(1), 0},
                                           {"pic_struct_present_flag", u(1), 0},
                                           {"bitstream_restriction_flag", u(1), 0}})));
}

TEST(LiteralSpsExtension, WithAndWithoutAlphaIsTold)
{
    const nal_unit unit = expect_told(unit_of(13, {{"seq_parameter_set_id", ue, 7},
                                                   {"aux_format_idc", ue, 2},
                                                   {"bit_depth_aux_minus8", ue, 4},
                                                   {"alpha_incr_flag", u(1), 1},
                                                   {"alpha_opaque_value", u_v(13), 8191},
                                                   {"alpha_transparent_value", u_v(13), 5},
                                                   {"additional_extension_flag", u(1), 0}}));
    const auto& extension = rbsp_of<seq_parameter_set_extension_rbsp>(unit);
    EXPECT_EQ(extension.alpha_opaque_value, 8191U);
    EXPECT_EQ(extension.alpha_transparent_value, 5U);
    expect_told(unit_of(
        13, {{"seq_parameter_set_id", ue, 0}, {"aux_format_idc", ue, 0}, {"additional_extension_flag", u(1), 0}}));
}

/// A PPS with these slice groups, and nothing behind redundant_pic_cnt_present_flag.
lines pps_of(const lines& slice_groups)
{
    return join(lines{{"pic_parameter_set_id", ue, 255},
                      {"seq_parameter_set_id", ue, 0},
                      {"entropy_coding_mode_flag", u(1), 1},
                      {"bottom_field_pic_order_in_frame_present_flag", u(1), 0}},
                slice_groups,
                lines{{"num_ref_idx_l0_default_active_minus1", ue, 3},
                      {"num_ref_idx_l1_default_active_minus1", ue, 2},
                      {"weighted_pred_flag", u(1), 0},
                      {"weighted_bipred_idc", u(2), 2},
                      {"pic_init_qp_minus26", se, -26},
                      {"pic_init_qs_minus26", se, 25},
                      {"chroma_qp_index_offset", se, -12},
                      {"deblocking_filter_control_present_flag", u(1), 1},
                      {"constrained_intra_pred_flag", u(1), 0},
                      {"redundant_pic_cnt_present_flag", u(1), 1}});
}

const lines no_slice_groups = {{"num_slice_groups_minus1", ue, 0}};

/// An SPS with the id 0.
struct one_sps {
    one_sps()
    {
        sps.seq_parameter_set_data.profile_idc = 244;
        sets.sps[0] = &sps;
        context.sets = &sets;
    }
    seq_parameter_set_rbsp sps;
    parameter_sets sets;
    unit_context context;
};

TEST(LiteralPps, WithNothingBehindItsFlagsIsToldAndTheRestIsInferred)
{
    const one_sps with;
    const nal_unit unit = expect_told(unit_of(8, pps_of(no_slice_groups)), with.context);
    const pic_parameter_set_rbsp& pps = rbsp_of<pic_parameter_set_rbsp>(unit);
    EXPECT_FALSE(pps.transform_8x8_mode_flag);
    EXPECT_EQ(pps.second_chroma_qp_index_offset, -12);
    EXPECT_EQ(pps.pic_init_qp_minus26, -26);
    EXPECT_EQ(pps.pic_init_qs_minus26, 25);
    EXPECT_EQ(pps.num_ref_idx_l0_default_active_minus1, 3U);
    EXPECT_EQ(pps.num_ref_idx_l1_default_active_minus1, 2U);
    EXPECT_TRUE(pps.entropy_coding_mode_flag);
    EXPECT_TRUE(pps.redundant_pic_cnt_present_flag);
}

TEST(LiteralPps, ScalingListsAreAsManyAsTransformAndChromaFormatHave)
{
    one_sps with;
    const auto pps = [](bool transform_8x8_mode_flag, std::size_t count) {
        return unit_of(8, join(pps_of(no_slice_groups),
                               lines{{"transform_8x8_mode_flag", u(1), transform_8x8_mode_flag},
                                     {"pic_scaling_matrix_present_flag", u(1), 1}},
                               scaling_lists("pic_scaling_list_present_flag", count),
                               lines{{"second_chroma_qp_index_offset", se, 12}}));
    };
    for (const std::uint32_t chroma_format_idc : {0U, 1U, 2U, 3U}) {
        with.sps.seq_parameter_set_data.chroma_format_idc = chroma_format_idc;
        const nal_unit unit = expect_told(pps(true, chroma_format_idc == 3 ? 12 : 8), with.context);
        EXPECT_EQ(rbsp_of<pic_parameter_set_rbsp>(unit).second_chroma_qp_index_offset, 12);
        expect_told(pps(false, 6), with.context);
    }
    expect_told(unit_of(8, join(pps_of(no_slice_groups), lines{{"transform_8x8_mode_flag", u(1), 1},
                                                               {"pic_scaling_matrix_present_flag", u(1), 0},
                                                               {"second_chroma_qp_index_offset", se, 0}})),
                with.context);
}

TEST(LiteralPps, SliceGroupsOfEveryMapTypeAreTold)
{
    one_sps with;
    with.sps.seq_parameter_set_data.pic_width_in_mbs_minus1 = 9;
    with.sps.seq_parameter_set_data.pic_height_in_map_units_minus1 = 9;
    with.sps.seq_parameter_set_data.frame_mbs_only_flag = true;
    const lines runs = {{"num_slice_groups_minus1", ue, 2},
                        {"slice_group_map_type", ue, 0},
                        {"run_length_minus1[0]", ue, 10},
                        {"run_length_minus1[1]", ue, 20},
                        {"run_length_minus1[2]", ue, 30}};
    const lines dispersed = {{"num_slice_groups_minus1", ue, 7}, {"slice_group_map_type", ue, 1}};
    const lines foreground = {
        {"num_slice_groups_minus1", ue, 2}, {"slice_group_map_type", ue, 2}, {"top_left[0]", ue, 1},
        {"bottom_right[0]", ue, 12},        {"top_left[1]", ue, 3},          {"bottom_right[1]", ue, 34}};
    nal_unit unit = expect_told(unit_of(8, pps_of(runs)), with.context);
    EXPECT_EQ(rbsp_of<pic_parameter_set_rbsp>(unit).run_length_minus1[2], 30U);
    expect_told(unit_of(8, pps_of(dispersed)), with.context);
    unit = expect_told(unit_of(8, pps_of(foreground)), with.context);
    EXPECT_EQ(rbsp_of<pic_parameter_set_rbsp>(unit).top_left[1], 3U);
    EXPECT_EQ(rbsp_of<pic_parameter_set_rbsp>(unit).bottom_right[1], 34U);
    for (const int type : {3, 4, 5}) {
        const lines evolving = {{"num_slice_groups_minus1", ue, 1},
                                {"slice_group_map_type", ue, type},
                                {"slice_group_change_direction_flag", u(1), 1},
                                {"slice_group_change_rate_minus1", ue, 84}};
        expect_told(unit_of(8, pps_of(evolving)), with.context);
    }
}

TEST(LiteralPps, SliceGroupIdsHaveAsManyBitsAsThereAreGroups)
{
    one_sps with;
    const unsigned widths[] = {0, 1, 2, 2, 3, 3, 3, 3}; // Ceil( Log2( num_slice_groups_minus1 + 1 ) )
    for (unsigned groups = 1; groups < 8; ++groups) {
        lines map = {{"num_slice_groups_minus1", ue, groups},
                     {"slice_group_map_type", ue, 6},
                     {"pic_size_in_map_units_minus1", ue, 9}};
        for (unsigned i = 0; i <= 9; ++i)
            map.push_back({at("slice_group_id", i), u_v(widths[groups]), i % (groups + 1)});
        with.sps.seq_parameter_set_data.pic_width_in_mbs_minus1 = 9;
        with.sps.seq_parameter_set_data.frame_mbs_only_flag = true;
        const nal_unit unit = expect_told(unit_of(8, pps_of(map)), with.context);
        EXPECT_EQ(rbsp_of<pic_parameter_set_rbsp>(unit).slice_group_id.size(), 10U);
    }
}

TEST(LiteralUnits, DelimiterEndsAndFillerAreTold)
{
    for (int type = 0; type < 8; ++type) {
        const nal_unit unit = expect_told(unit_of(9, {{"primary_pic_type", u(3), type}}));
        EXPECT_EQ(rbsp_of<access_unit_delimiter_rbsp>(unit).primary_pic_type, type);
    }
    expect_told(nal_header(0, 10));
    expect_told(nal_header(0, 11));
    const nal_unit filler = expect_told(unit_of(12, lines(3, {"ff_byte", f(8), 255})));
    EXPECT_EQ(rbsp_of<filler_data_rbsp>(filler).ff_bytes, 3U);
    expect_told(unit_of(12, {}));
}

} // namespace
