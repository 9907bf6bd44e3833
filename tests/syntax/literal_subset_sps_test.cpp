// Subset SPS with each of its extensions, and the depth parameter set, spelled by hand; H.264 clauses 7.3.2.1.3,
// G.7.3.2.1.4, G.14.1, H.7.3.2.1.4, H.14.1, I.7.3.2.1.5, I.14.1, J.7.3.2.1.5 and J.7.3.2.13.
#include "support/literal_hrd.h"
#include "support/literal_sequence.h"
#include "support/literal_unit.h"

#include <gtest/gtest.h>

namespace {

using namespace literal;

const lines no_more = {{"additional_extension2_flag", u(1), 0}};

/// A subset SPS of the profile.
lines subset_of(unsigned profile_idc, const lines& extension, unsigned chroma_format_idc = 1,
                bool frame_mbs_only_flag = true)
{
    return unit_of(15, join(sps_head(profile_idc, 3), sps_chroma(chroma_format_idc),
                            sps_plain_rest(frame_mbs_only_flag), extension, no_more));
}

/// The timing and the buffers of entry i of a VUI extension whose names begin with `prefix`.
lines extension_timing(const std::string& prefix, std::size_t i, bool all)
{
    const auto name = [&](const char* rest) { return at(prefix + rest, i); };
    if (!all)
        return {{name("timing_info_present_flag"), u(1), 0},
                {name("nal_hrd_parameters_present_flag"), u(1), 0},
                {name("vcl_hrd_parameters_present_flag"), u(1), 0},
                {name("pic_struct_present_flag"), u(1), 1}};
    return join(lines{{name("timing_info_present_flag"), u(1), 1},
                      {name("num_units_in_tick"), u(32), 1001},
                      {name("time_scale"), u(32), 60000},
                      {name("fixed_frame_rate_flag"), u(1), 1},
                      {name("nal_hrd_parameters_present_flag"), u(1), 1}},
                hrd_of_one(), lines{{name("vcl_hrd_parameters_present_flag"), u(1), 1}}, hrd_of_two(),
                lines{{name("low_delay_hrd_flag"), u(1), 0}, {name("pic_struct_present_flag"), u(1), 0}});
}

void expect_timing(const vui_extension_timing& x)
{
    EXPECT_EQ(x.num_units_in_tick, 1001U);
    EXPECT_EQ(x.time_scale, 60000U);
    EXPECT_EQ(x.nal_hrd_parameters.bit_rate_value_minus1[0], 999U);
    expect_hrd_of_two(x.vcl_hrd_parameters);
    EXPECT_FALSE(x.low_delay_hrd_flag);
    EXPECT_FALSE(x.pic_struct_present_flag);
}

TEST(LiteralSubsetSps, OfAnotherProfileHasNoExtensionAndMayHaveFlagsBehindIt)
{
    const lines flags = {{"additional_extension2_flag", u(1), 1},
                         {"additional_extension2_data_flag", u(1), 0},
                         {"additional_extension2_data_flag", u(1), 1},
                         {"additional_extension2_data_flag", u(1), 0}};
    expect_told(unit_of(15, join(sps_head(100, 3), sps_chroma(1), sps_plain_rest(), flags)));
    expect_told(subset_of(100, {}));
}

TEST(LiteralSvcSps, WithEveryConditionOnIsTold)
{
    const lines extension = join(lines{{"inter_layer_deblocking_filter_control_present_flag", u(1), 1},
                                       {"extended_spatial_scalability_idc", u(2), 1},
                                       {"chroma_phase_x_plus1_flag", u(1), 0},
                                       {"chroma_phase_y_plus1", u(2), 2},
                                       {"seq_ref_layer_chroma_phase_x_plus1_flag", u(1), 1},
                                       {"seq_ref_layer_chroma_phase_y_plus1", u(2), 1},
                                       {"seq_scaled_ref_layer_left_offset", se, -32768},
                                       {"seq_scaled_ref_layer_top_offset", se, 32767},
                                       {"seq_scaled_ref_layer_right_offset", se, 3},
                                       {"seq_scaled_ref_layer_bottom_offset", se, -4},
                                       {"seq_tcoeff_level_prediction_flag", u(1), 1},
                                       {"adaptive_tcoeff_level_prediction_flag", u(1), 1},
                                       {"slice_header_restriction_flag", u(1), 0},
                                       {"svc_vui_parameters_present_flag", u(1), 1},
                                       {"vui_ext_num_entries_minus1", ue, 1},
                                       {"vui_ext_dependency_id[0]", u(3), 7},
                                       {"vui_ext_quality_id[0]", u(4), 15},
                                       {"vui_ext_temporal_id[0]", u(3), 1}},
                                 extension_timing("vui_ext_", 0, false),
                                 lines{{"vui_ext_dependency_id[1]", u(3), 2},
                                       {"vui_ext_quality_id[1]", u(4), 3},
                                       {"vui_ext_temporal_id[1]", u(3), 4}},
                                 extension_timing("vui_ext_", 1, true));
    const nal_unit unit = expect_told(subset_of(83, extension));
    const auto& subset = rbsp_of<subset_seq_parameter_set_rbsp>(unit);
    EXPECT_EQ(subset.seq_parameter_set_svc_extension.seq_scaled_ref_layer_left_offset, -32768);
    EXPECT_EQ(subset.seq_parameter_set_svc_extension.seq_scaled_ref_layer_bottom_offset, -4);
    ASSERT_EQ(subset.svc_vui_parameters_extension.entries.size(), 2U);
    EXPECT_EQ(subset.svc_vui_parameters_extension.entries[1].vui_ext_quality_id, 3);
    EXPECT_TRUE(subset.svc_vui_parameters_extension.entries[0].timing.low_delay_hrd_flag);
    expect_timing(subset.svc_vui_parameters_extension.entries[1].timing);
    expect_told(subset_of(86, extension));
}

TEST(LiteralSvcSps, WithEveryConditionOffIsToldAndThePhasesAreInferred)
{
    const lines end = {{"seq_tcoeff_level_prediction_flag", u(1), 0},
                       {"slice_header_restriction_flag", u(1), 1},
                       {"svc_vui_parameters_present_flag", u(1), 0}};
    nal_unit unit =
        expect_told(subset_of(83, join(lines{{"inter_layer_deblocking_filter_control_present_flag", u(1), 0},
                                             {"extended_spatial_scalability_idc", u(2), 2},
                                             {"chroma_phase_x_plus1_flag", u(1), 0},
                                             {"chroma_phase_y_plus1", u(2), 2}},
                                       end)));
    const auto& of_420 = rbsp_of<subset_seq_parameter_set_rbsp>(unit).seq_parameter_set_svc_extension;
    EXPECT_FALSE(of_420.seq_ref_layer_chroma_phase_x_plus1_flag);
    EXPECT_EQ(of_420.seq_ref_layer_chroma_phase_y_plus1, 2);

    unit = expect_told(subset_of(83,
                                 join(lines{{"inter_layer_deblocking_filter_control_present_flag", u(1), 0},
                                            {"extended_spatial_scalability_idc", u(2), 1},
                                            {"seq_scaled_ref_layer_left_offset", se, 1},
                                            {"seq_scaled_ref_layer_top_offset", se, 2},
                                            {"seq_scaled_ref_layer_right_offset", se, 3},
                                            {"seq_scaled_ref_layer_bottom_offset", se, 4}},
                                      end),
                                 0));
    const auto& of_luma = rbsp_of<subset_seq_parameter_set_rbsp>(unit).seq_parameter_set_svc_extension;
    EXPECT_TRUE(of_luma.chroma_phase_x_plus1_flag);
    EXPECT_EQ(of_luma.chroma_phase_y_plus1, 1);
    EXPECT_EQ(of_luma.seq_scaled_ref_layer_top_offset, 2);
    EXPECT_EQ(of_luma.seq_scaled_ref_layer_right_offset, 3);

    expect_told(subset_of(83,
                          join(lines{{"inter_layer_deblocking_filter_control_present_flag", u(1), 0},
                                     {"extended_spatial_scalability_idc", u(2), 0},
                                     {"chroma_phase_x_plus1_flag", u(1), 1}},
                               end),
                          2));
}

/// seq_parameter_set_mvc_extension() of three views up to its levels.
lines mvc_views()
{
    return {{"num_views_minus1", ue, 2},
            {"view_id[0]", ue, 1023},
            {"view_id[1]", ue, 5},
            {"view_id[2]", ue, 6},
            {"num_anchor_refs_l0[1]", ue, 1},
            {"anchor_ref_l0[1][0]", ue, 1023},
            {"num_anchor_refs_l1[1]", ue, 2},
            {"anchor_ref_l1[1][0]", ue, 6},
            {"anchor_ref_l1[1][1]", ue, 1023},
            {"num_anchor_refs_l0[2]", ue, 2},
            {"anchor_ref_l0[2][0]", ue, 5},
            {"anchor_ref_l0[2][1]", ue, 7},
            {"num_anchor_refs_l1[2]", ue, 0},
            {"num_non_anchor_refs_l0[1]", ue, 0},
            {"num_non_anchor_refs_l1[1]", ue, 1},
            {"non_anchor_ref_l1[1][0]", ue, 9},
            {"num_non_anchor_refs_l0[2]", ue, 2},
            {"non_anchor_ref_l0[2][0]", ue, 10},
            {"non_anchor_ref_l0[2][1]", ue, 11},
            {"num_non_anchor_refs_l1[2]", ue, 0}};
}

lines mvc_levels()
{
    return {{"num_level_values_signalled_minus1", ue, 1},
            {"level_idc[0]", u(8), 40},
            {"num_applicable_ops_minus1[0]", ue, 0},
            {"applicable_op_temporal_id[0][0]", u(3), 7},
            {"applicable_op_num_target_views_minus1[0][0]", ue, 1},
            {"applicable_op_target_view_id[0][0][0]", ue, 1023},
            {"applicable_op_target_view_id[0][0][1]", ue, 5},
            {"applicable_op_num_views_minus1[0][0]", ue, 2},
            {"level_idc[1]", u(8), 51},
            {"num_applicable_ops_minus1[1]", ue, 1},
            {"applicable_op_temporal_id[1][0]", u(3), 1},
            {"applicable_op_num_target_views_minus1[1][0]", ue, 0},
            {"applicable_op_target_view_id[1][0][0]", ue, 6},
            {"applicable_op_num_views_minus1[1][0]", ue, 1},
            {"applicable_op_temporal_id[1][1]", u(3), 2},
            {"applicable_op_num_target_views_minus1[1][1]", ue, 0},
            {"applicable_op_target_view_id[1][1][0]", ue, 8},
            {"applicable_op_num_views_minus1[1][1]", ue, 0}};
}

lines mvc_vui()
{
    return join(lines{{"vui_mvc_num_ops_minus1", ue, 1},
                      {"vui_mvc_temporal_id[0]", u(3), 3},
                      {"vui_mvc_num_target_output_views_minus1[0]", ue, 0},
                      {"vui_mvc_view_id[0][0]", ue, 5}},
                extension_timing("vui_mvc_", 0, true),
                lines{{"vui_mvc_temporal_id[1]", u(3), 6},
                      {"vui_mvc_num_target_output_views_minus1[1]", ue, 1},
                      {"vui_mvc_view_id[1][0]", ue, 1},
                      {"vui_mvc_view_id[1][1]", ue, 1023}},
                extension_timing("vui_mvc_", 1, false));
}

const lines one_bit = {{"bit_equal_to_one", f(1), 1}};
const lines one_view_and_level = {{"num_views_minus1", ue, 0},
                                  {"view_id[0]", ue, 0},
                                  {"num_level_values_signalled_minus1", ue, 0},
                                  {"level_idc[0]", u(8), 9},
                                  {"num_applicable_ops_minus1[0]", ue, 0},
                                  {"applicable_op_temporal_id[0][0]", u(3), 0},
                                  {"applicable_op_num_target_views_minus1[0][0]", ue, 0},
                                  {"applicable_op_target_view_id[0][0][0]", ue, 0},
                                  {"applicable_op_num_views_minus1[0][0]", ue, 0}};

TEST(LiteralMvcSps, ViewsLevelsAndVuiAreTold)
{
    const nal_unit unit = expect_told(subset_of(
        118, join(one_bit, mvc_views(), mvc_levels(), lines{{"mvc_vui_parameters_present_flag", u(1), 1}}, mvc_vui())));
    const auto& subset = rbsp_of<subset_seq_parameter_set_rbsp>(unit);
    const auto& extension = subset.seq_parameter_set_mvc_extension;
    ASSERT_EQ(extension.views.size(), 3U);
    EXPECT_EQ(extension.views[1].references.anchor_ref_l1[1], 1023U);
    EXPECT_EQ(extension.views[2].references.anchor_ref_l0[1], 7U);
    EXPECT_EQ(extension.views[1].references.non_anchor_ref_l1[0], 9U);
    EXPECT_EQ(extension.views[2].references.non_anchor_ref_l0[1], 11U);
    ASSERT_EQ(extension.levels.size(), 2U);
    EXPECT_EQ(extension.levels[1].operation_points[1].applicable_op_target_view_id[0], 8U);
    EXPECT_EQ(subset.mvc_vui_parameters_extension.operation_points[1].vui_mvc_view_id[1], 1023U);
    expect_timing(subset.mvc_vui_parameters_extension.operation_points[0].timing);
    expect_told(subset_of(128, join(one_bit, one_view_and_level, lines{{"mvc_vui_parameters_present_flag", u(1), 0}})));
}

TEST(LiteralMfcSps, GridAndFilterAreTold)
{
    const lines end = {{"mvc_vui_parameters_present_flag", u(1), 0}};
    const lines grid = {{"mfc_format_idc", u(6), 1},         {"default_grid_position_flag", u(1), 0},
                        {"view0_grid_position_x", u(4), 1},  {"view0_grid_position_y", u(4), 2},
                        {"view1_grid_position_x", u(4), 8},  {"view1_grid_position_y", u(4), 15},
                        {"rpu_filter_enabled_flag", u(1), 1}};
    const lines field = {{"rpu_field_processing_flag", u(1), 1}};
    const nal_unit unit = expect_told(subset_of(134, join(one_bit, one_view_and_level, grid, field, end), 1, false));
    const auto& extension = rbsp_of<subset_seq_parameter_set_rbsp>(unit).seq_parameter_set_mvc_extension;
    EXPECT_EQ(extension.view0_grid_position_x, 1);
    EXPECT_EQ(extension.view0_grid_position_y, 2);
    EXPECT_EQ(extension.view1_grid_position_x, 8);
    EXPECT_EQ(extension.view1_grid_position_y, 15);
    expect_told(subset_of(134, join(one_bit, one_view_and_level, grid, end)));
    expect_told(subset_of(134, join(one_bit, one_view_and_level,
                                    lines{{"mfc_format_idc", u(6), 0},
                                          {"default_grid_position_flag", u(1), 1},
                                          {"rpu_filter_enabled_flag", u(1), 0}},
                                    end)));
    expect_told(subset_of(134, join(one_bit, one_view_and_level,
                                    lines{{"mfc_format_idc", u(6), 2}, {"rpu_filter_enabled_flag", u(1), 0}}, end)));
}

/// Three views: both, texture alone, both. NumDepthViews is 2.
lines mvcd_views()
{
    return {{"num_views_minus1", ue, 2},
            {"view_id[0]", ue, 2},
            {"depth_view_present_flag[0]", u(1), 1},
            {"texture_view_present_flag[0]", u(1), 1},
            {"view_id[1]", ue, 3},
            {"depth_view_present_flag[1]", u(1), 0},
            {"texture_view_present_flag[1]", u(1), 1},
            {"view_id[2]", ue, 1000},
            {"depth_view_present_flag[2]", u(1), 1},
            {"texture_view_present_flag[2]", u(1), 0},
            {"num_anchor_refs_l0[2]", ue, 1},
            {"anchor_ref_l0[2][0]", ue, 2},
            {"num_anchor_refs_l1[2]", ue, 1},
            {"anchor_ref_l1[2][0]", ue, 3},
            {"num_non_anchor_refs_l0[2]", ue, 2},
            {"non_anchor_ref_l0[2][0]", ue, 4},
            {"non_anchor_ref_l0[2][1]", ue, 5},
            {"num_non_anchor_refs_l1[2]", ue, 0}};
}

lines mvcd_levels()
{
    return {{"num_level_values_signalled_minus1", ue, 0},
            {"level_idc[0]", u(8), 40},
            {"num_applicable_ops_minus1[0]", ue, 1},
            {"applicable_op_temporal_id[0][0]", u(3), 5},
            {"applicable_op_num_target_views_minus1[0][0]", ue, 1},
            {"applicable_op_target_view_id[0][0][0]", ue, 2},
            {"applicable_op_depth_flag[0][0][0]", u(1), 1},
            {"applicable_op_texture_flag[0][0][0]", u(1), 0},
            {"applicable_op_target_view_id[0][0][1]", ue, 3},
            {"applicable_op_depth_flag[0][0][1]", u(1), 0},
            {"applicable_op_texture_flag[0][0][1]", u(1), 1},
            {"applicable_op_num_texture_views_minus1[0][0]", ue, 1},
            {"applicable_op_num_depth_views[0][0]", ue, 2},
            {"applicable_op_temporal_id[0][1]", u(3), 1},
            {"applicable_op_num_target_views_minus1[0][1]", ue, 0},
            {"applicable_op_target_view_id[0][1][0]", ue, 1000},
            {"applicable_op_depth_flag[0][1][0]", u(1), 1},
            {"applicable_op_texture_flag[0][1][0]", u(1), 1},
            {"applicable_op_num_texture_views_minus1[0][1]", ue, 0},
            {"applicable_op_num_depth_views[0][1]", ue, 1}};
}

lines mvcd_vui()
{
    return join(lines{{"vui_mvcd_num_ops_minus1", ue, 0},
                      {"vui_mvcd_temporal_id[0]", u(3), 4},
                      {"vui_mvcd_num_target_output_views_minus1[0]", ue, 1},
                      {"vui_mvcd_view_id[0][0]", ue, 2},
                      {"vui_mvcd_depth_flag[0][0]", u(1), 1},
                      {"vui_mvcd_texture_flag[0][0]", u(1), 0},
                      {"vui_mvcd_view_id[0][1]", ue, 3},
                      {"vui_mvcd_depth_flag[0][1]", u(1), 0},
                      {"vui_mvcd_texture_flag[0][1]", u(1), 1}},
                extension_timing("vui_mvcd_", 0, true));
}

const lines no_mvcd_vui = {{"mvcd_vui_parameters_present_flag", u(1), 0},
                           {"texture_vui_parameters_present_flag", u(1), 0}};

TEST(LiteralMvcdSps, ViewsLevelsAndVuiAreTold)
{
    const lines extension =
        join(one_bit, mvcd_views(), mvcd_levels(), lines{{"mvcd_vui_parameters_present_flag", u(1), 1}}, mvcd_vui(),
             lines{{"texture_vui_parameters_present_flag", u(1), 1}}, mvc_vui());
    const nal_unit unit = expect_told(subset_of(138, extension));
    const auto& mvcd = rbsp_of<subset_seq_parameter_set_rbsp>(unit).seq_parameter_set_mvcd_extension;
    ASSERT_EQ(mvcd.views.size(), 3U);
    EXPECT_TRUE(mvcd.views[2].depth_view_present_flag);
    EXPECT_FALSE(mvcd.views[2].texture_view_present_flag);
    EXPECT_EQ(mvcd.views[2].references.non_anchor_ref_l0[1], 5U);
    const auto& point = mvcd.levels[0].operation_points[0];
    EXPECT_TRUE(point.target_views[0].applicable_op_depth_flag);
    EXPECT_TRUE(point.target_views[1].applicable_op_texture_flag);
    EXPECT_EQ(point.applicable_op_num_texture_views_minus1, 1U);
    EXPECT_EQ(point.applicable_op_num_depth_views, 2U);
    expect_told(subset_of(135, extension));
    expect_told(subset_of(138, join(one_bit, mvcd_views(), mvcd_levels(), no_mvcd_vui)));
}

/// depth_ranges( 2, 2, 0 ) with nearest values alone.
lines depth_ranges_of_two_views()
{
    return {{"z_near_flag", u(1), 1},
            {"z_far_flag", u(1), 1},
            {"element_equal_flag", u(1), 0},
            {"mantissa_len_minus1", u(5), 7},
            {"sign0[0]", u(1), 1},
            {"exponent0[0]", u_v(7), 100},
            {"mantissa0[0]", u_v(8), 129},
            {"sign0[1]", u(1), 0},
            {"exponent0[1]", u_v(7), 3},
            {"mantissa0[1]", u_v(8), 4},
            {"element_equal_flag", u(1), 1},
            {"mantissa_len_minus1", u(5), 31},
            {"sign0[0]", u(1), 0},
            {"exponent0[0]", u_v(7), 126},
            {"mantissa0[0]", u_v(32), 4294967295}};
}

const lines vsp_of_two_views = {{"disparity_diff_wji[0][1]", se, 1},
                                {"disparity_diff_oji[0][1]", se, -2},
                                {"disparity_diff_wij[1][0]", se, 3},
                                {"disparity_diff_oij[1][0]", se, -4}};

TEST(Literal3davcSps, WithEveryConditionOnIsTold)
{
    const lines extension =
        join(one_bit, mvcd_views(), mvcd_levels(), no_mvcd_vui,
             lines{{"3dv_acquisition_idc", ue, 1}, {"view_id_3dv[0]", ue, 2}, {"view_id_3dv[1]", ue, 1000}},
             depth_ranges_of_two_views(), vsp_of_two_views,
             lines{{"reduced_resolution_flag", u(1), 1},
                   {"depth_pic_width_in_mbs_minus1", ue, 4},
                   {"depth_pic_height_in_map_units_minus1", ue, 3},
                   {"depth_hor_mult_minus1", ue, 1},
                   {"depth_ver_mult_minus1", ue, 2},
                   {"depth_hor_rsh", ue, 5},
                   {"depth_ver_rsh", ue, 6},
                   {"depth_frame_cropping_flag", u(1), 1},
                   {"depth_frame_crop_left_offset", ue, 1},
                   {"depth_frame_crop_right_offset", ue, 2},
                   {"depth_frame_crop_top_offset", ue, 3},
                   {"depth_frame_crop_bottom_offset", ue, 4},
                   {"grid_pos_num_views", ue, 2},
                   {"grid_pos_view_id[0]", ue, 2},
                   {"grid_pos_x[2]", se, -5},
                   {"grid_pos_y[2]", se, 6},
                   {"grid_pos_view_id[1]", ue, 1000},
                   {"grid_pos_x[1000]", se, 7},
                   {"grid_pos_y[1000]", se, -8},
                   {"slice_header_prediction_flag", u(1), 1},
                   {"seq_view_synthesis_flag", u(1), 0},
                   {"alc_sps_enable_flag", u(1), 1},
                   {"enable_rle_skip_flag", u(1), 0},
                   {"num_anchor_refs_l0[1]", ue, 1},
                   {"anchor_ref_l0[1][0]", ue, 2},
                   {"num_anchor_refs_l1[1]", ue, 0},
                   {"num_non_anchor_refs_l0[1]", ue, 0},
                   {"num_non_anchor_refs_l1[1]", ue, 1},
                   {"non_anchor_ref_l1[1][0]", ue, 6}});
    const nal_unit unit = expect_told(subset_of(139, extension));
    const auto& x = rbsp_of<subset_seq_parameter_set_rbsp>(unit).seq_parameter_set_3davc_extension;
    EXPECT_EQ(x.depth_hor_mult_minus1, 1U);
    EXPECT_EQ(x.depth_ver_mult_minus1, 2U);
    EXPECT_EQ(x.depth_frame_crop_left_offset, 1U);
    EXPECT_EQ(x.depth_frame_crop_bottom_offset, 4U);
    EXPECT_TRUE(x.slice_header_prediction_flag);
    EXPECT_FALSE(x.seq_view_synthesis_flag);
}

TEST(Literal3davcSps, WithoutDepthViewsIsTold)
{
    lines views = {{"num_views_minus1", ue, 0},
                   {"view_id[0]", ue, 0},
                   {"depth_view_present_flag[0]", u(1), 0},
                   {"texture_view_present_flag[0]", u(1), 1}};
    expect_told(subset_of(139, join(one_bit, views, mvcd_levels(), no_mvcd_vui,
                                    lines{
                                        {"alc_sps_enable_flag", u(1), 0},
                                        {"enable_rle_skip_flag", u(1), 1},
                                    })));
}

TEST(Literal3davcSps, WithEveryConditionOffIsTold)
{
    expect_told(subset_of(139, join(one_bit,
                                    lines{{"num_views_minus1", ue, 0},
                                          {"view_id[0]", ue, 0},
                                          {"depth_view_present_flag[0]", u(1), 1},
                                          {"texture_view_present_flag[0]", u(1), 1}},
                                    mvcd_levels(), no_mvcd_vui,
                                    lines{{"3dv_acquisition_idc", ue, 0},
                                          {"view_id_3dv[0]", ue, 0},
                                          {"reduced_resolution_flag", u(1), 0},
                                          {"depth_frame_cropping_flag", u(1), 0},
                                          {"grid_pos_num_views", ue, 0},
                                          {"slice_header_prediction_flag", u(1), 0},
                                          {"seq_view_synthesis_flag", u(1), 1},
                                          {"alc_sps_enable_flag", u(1), 0},
                                          {"enable_rle_skip_flag", u(1), 1}})));
}

TEST(LiteralDps, OfPredictionFromTwoSetsIsTold)
{
    const nal_unit unit = expect_told(unit_of(16, {{"depth_parameter_set_id", ue, 63},
                                                   {"pred_direction", ue, 0},
                                                   {"ref_dps_id0", ue, 1},
                                                   {"ref_dps_id1", ue, 2},
                                                   {"pred_weight0", u(6), 63},
                                                   {"num_depth_views_minus1", ue, 1},
                                                   {"z_near_flag", u(1), 1},
                                                   {"z_far_flag", u(1), 0},
                                                   {"element_equal_flag", u(1), 0},
                                                   {"skip_flag[0]", u(1), 0},
                                                   {"sign1[0]", u(1), 1},
                                                   {"exponent_skip_flag[0]", u(1), 0},
                                                   {"exponent1[0]", u_v(7), 65},
                                                   {"mantissa_diff[0]", se, -3},
                                                   {"skip_flag[1]", u(1), 0},
                                                   {"sign1[1]", u(1), 0},
                                                   {"exponent_skip_flag[1]", u(1), 1},
                                                   {"mantissa_diff[1]", se, 4},
                                                   {"vsp_param_flag", u(1), 1},
                                                   {"disparity_diff_wji[0][1]", se, 1},
                                                   {"disparity_diff_oji[0][1]", se, 2},
                                                   {"disparity_diff_wij[1][0]", se, 3},
                                                   {"disparity_diff_oij[1][0]", se, 4},
                                                   {"depth_param_additional_extension_flag", u(1), 1},
                                                   {"nonlinear_depth_representation_num", ue, 2},
                                                   {"nonlinear_depth_representation_model[1]", ue, 11},
                                                   {"nonlinear_depth_representation_model[2]", ue, 12},
                                                   {"depth_param_additional_extension_data_flag", u(1), 1},
                                                   {"depth_param_additional_extension_data_flag", u(1), 0}}));
    const auto& dps = rbsp_of<depth_parameter_set_rbsp>(unit);
    EXPECT_EQ(dps.ref_dps_id0, 1U);
    EXPECT_EQ(dps.ref_dps_id1, 2U);
    EXPECT_EQ(dps.vsp_param.pairs[0].disparity_diff_oji, 2);
    EXPECT_EQ(dps.vsp_param.pairs[0].disparity_diff_wij, 3);
}

TEST(LiteralDps, OfOtherPredictionsIsTold)
{
    const lines nothing = {{"vsp_param_flag", u(1), 0},
                           {"depth_param_additional_extension_flag", u(1), 0},
                           {"nonlinear_depth_representation_num", ue, 0}};
    expect_told(unit_of(16, join(lines{{"depth_parameter_set_id", ue, 1},
                                       {"pred_direction", ue, 1},
                                       {"ref_dps_id0", ue, 5},
                                       {"num_depth_views_minus1", ue, 0},
                                       {"z_near_flag", u(1), 0},
                                       {"z_far_flag", u(1), 1},
                                       {"skip_flag[0]", u(1), 1}},
                                 nothing)));
    expect_told(unit_of(
        16, join(lines{{"depth_parameter_set_id", ue, 1}, {"pred_direction", ue, 2}, {"num_depth_views_minus1", ue, 1}},
                 depth_ranges_of_two_views(), nothing)));
}

} // namespace
