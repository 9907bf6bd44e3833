// SEI payloads of multiview video, and of that with depth, spelled by hand; H.264 clauses H.13.1, I.13.1 and J.13.1.
#include "support/literal_hrd.h"
#include "support/literal_unit.h"

#include <gtest/gtest.h>

namespace {

using namespace literal;

TEST(LiteralMultiview, NestingMessagesAreTold)
{
    const nal_unit unit = expect_told(sei_of(37, with_nested_message({{"operation_point_flag", u(1), 0},
                                                                      {"all_view_components_in_au_flag", u(1), 0},
                                                                      {"num_view_components_minus1", ue, 1},
                                                                      {"sei_view_id[0]", u(10), 1023},
                                                                      {"sei_view_id[1]", u(10), 1}})));
    EXPECT_EQ(payload_of<mvc_scalable_nesting>(unit).messages.size(), 1U);
    expect_told(sei_of(
        37, with_nested_message({{"operation_point_flag", u(1), 0}, {"all_view_components_in_au_flag", u(1), 1}})));
    expect_told(sei_of(37, with_nested_message({{"operation_point_flag", u(1), 1},
                                                {"num_view_components_op_minus1", ue, 1},
                                                {"sei_op_view_id[0]", u(10), 2},
                                                {"sei_op_view_id[1]", u(10), 3},
                                                {"sei_op_temporal_id", u(3), 7}})));
}

/// Views of operation point i; in the payload of MVCD each with what is present of it.
lines views(const std::string& name, std::size_t i, const std::vector<int>& ids, bool mvcd)
{
    lines list;
    for (std::size_t j = 0; j < ids.size(); ++j) {
        list.push_back({at(at(name, i), j), ue, ids[j]});
        if (mvcd && j == 0)
            list = join(list, lines{{"view_info_depth_view_present_flag", u(1), 1},
                                    {"mvcd_depth_view_flag", u(1), 0},
                                    {"view_info_texture_view_present_flag", u(1), 1},
                                    {"mvcd_texture_view_flag", u(1), 1}});
        else if (mvcd)
            list = join(list, lines{{"view_info_depth_view_present_flag", u(1), 0},
                                    {"view_info_texture_view_present_flag", u(1), 0}});
    }
    return list;
}

/// Two operation points: of one view with all that can come, and of two views with nothing.
lines view_scalability(bool mvcd)
{
    return join(lines{{"num_operation_points_minus1", ue, 1},
                      {"operation_point_id[0]", ue, 65535},
                      {"priority_id[0]", u(5), 31},
                      {"temporal_id[0]", u(3), 6},
                      {"num_target_output_views_minus1[0]", ue, 0}},
                views("view_id", 0, {1023}, mvcd),
                lines{{"profile_level_info_present_flag[0]", u(1), 1},
                      {"bitrate_info_present_flag[0]", u(1), 1},
                      {"frm_rate_info_present_flag[0]", u(1), 1},
                      {"view_dependency_info_present_flag[0]", u(1), 1},
                      {"parameter_sets_info_present_flag[0]", u(1), 1},
                      {"bitstream_restriction_info_present_flag[0]", u(1), 1},
                      {"op_profile_level_idc[0]", u(24), 0x76001E},
                      {"avg_bitrate[0]", u(16), 1},
                      {"max_bitrate[0]", u(16), 2},
                      {"max_bitrate_calc_window[0]", u(16), 3},
                      {"constant_frm_rate_idc[0]", u(2), 2},
                      {"avg_frm_rate[0]", u(16), 4},
                      {"num_directly_dependent_views[0]", ue, 2}},
                views("directly_dependent_view_id", 0, {5, 6}, mvcd),
                lines{{"num_seq_parameter_set_minus1[0]", ue, 1},
                      {"seq_parameter_set_id_delta[0][0]", ue, 1},
                      {"seq_parameter_set_id_delta[0][1]", ue, 2},
                      {"num_subset_seq_parameter_set_minus1[0]", ue, 0},
                      {"subset_seq_parameter_set_id_delta[0][0]", ue, 3},
                      {"num_pic_parameter_set_minus1[0]", ue, 1},
                      {"pic_parameter_set_id_delta[0][0]", ue, 4},
                      {"pic_parameter_set_id_delta[0][1]", ue, 5},
                      {"motion_vectors_over_pic_boundaries_flag[0]", u(1), 0},
                      {"max_bytes_per_pic_denom[0]", ue, 1},
                      {"max_bits_per_mb_denom[0]", ue, 2},
                      {"log2_max_mv_length_horizontal[0]", ue, 3},
                      {"log2_max_mv_length_vertical[0]", ue, 4},
                      {"max_num_reorder_frames[0]", ue, 5},
                      {"max_dec_frame_buffering[0]", ue, 6},
                      {"operation_point_id[1]", ue, 2},
                      {"priority_id[1]", u(5), 1},
                      {"temporal_id[1]", u(3), 2},
                      {"num_target_output_views_minus1[1]", ue, 1}},
                views("view_id", 1, {7, 8}, mvcd),
                lines{{"profile_level_info_present_flag[1]", u(1), 0},
                      {"bitrate_info_present_flag[1]", u(1), 0},
                      {"frm_rate_info_present_flag[1]", u(1), 0},
                      {"parameter_sets_info_present_flag[1]", u(1), 0},
                      {"bitstream_restriction_info_present_flag[1]", u(1), 0},
                      {"view_dependency_info_src_op_id[1]", ue, 9},
                      {"parameter_sets_info_src_op_id[1]", ue, 10}});
}

TEST(LiteralMultiview, ScalabilityOfViewsIsTold)
{
    const nal_unit unit = expect_told(sei_of(38, view_scalability(false)));
    const auto& info = payload_of<view_scalability_info>(unit);
    ASSERT_EQ(info.operation_points.size(), 2U);
    EXPECT_EQ(info.operation_points[0].max_bitrate, 2);
    EXPECT_EQ(info.operation_points[0].max_bitrate_calc_window, 3);
    EXPECT_EQ(info.operation_points[1].view_dependency_info_src_op_id, 9U);
    EXPECT_EQ(info.operation_points[1].parameter_sets_info_src_op_id, 10U);
    expect_told(sei_of(49, view_scalability(true)));
}

/// A floating-point number of the cameras; `bits` of mantissa.
lines camera(const std::string& what, const std::string& indices, unsigned exponent, unsigned bits, int mantissa)
{
    lines number = {{"sign_" + what + indices, u(1), mantissa % 2}, {"exponent_" + what + indices, u(6), exponent}};
    if (bits != 0)
        number.push_back({"mantissa_" + what + indices, u_v(bits), mantissa});
    return number;
}

/// Intrinsic parameters of camera i with the precisions 31, 10 and 35.
lines intrinsic(std::size_t i)
{
    const std::string index = at("", i);
    return join(camera("focal_length_x", index, 0, 1, 1), camera("focal_length_y", index, 8, 8, 100),
                camera("principal_point_x", index, 0, 0, 0), camera("principal_point_y", index, 62, 41, 12345),
                camera("skew_factor", index, 3, 3, 5));
}

/// Extrinsic parameters of camera i with the precisions 30 and 20.
lines extrinsic(std::size_t i)
{
    lines all;
    for (std::size_t j = 1; j <= 3; ++j) {
        for (std::size_t k = 1; k <= 3; ++k)
            all = join(all, camera("r", at(at(at("", i), j), k), static_cast<unsigned>(j + k),
                                   static_cast<unsigned>(j + k - 1), static_cast<int>(j)));
        all = join(all, camera("t", at(at("", i), j), 30, 19, static_cast<int>(1000 * i + j)));
    }
    return all;
}

TEST(LiteralMultiview, AcquisitionIsTold)
{
    expect_told(sei_of(39, {{"max_disparity", ue, 1023}}));
    const lines precisions = {
        {"prec_focal_length", ue, 31}, {"prec_principal_point", ue, 10}, {"prec_skew_factor", ue, 31}};
    const lines extrinsics = {{"prec_rotation_param", ue, 30}, {"prec_translation_param", ue, 20}};
    const auto begins = [](int intrinsic_flag, int extrinsic_flag) {
        return lines{{"num_views_minus1", ue, 1},
                     {"intrinsic_param_flag", u(1), intrinsic_flag},
                     {"extrinsic_param_flag", u(1), extrinsic_flag}};
    };
    const lines equal = {{"intrinsic_params_equal_flag", u(1), 1}};
    const lines unequal = {{"intrinsic_params_equal_flag", u(1), 0}};
    expect_told(sei_of(40, join(begins(1, 1), unequal, precisions, intrinsic(0), intrinsic(1), extrinsics, extrinsic(0),
                                extrinsic(1))));
    expect_told(sei_of(40, join(begins(1, 0), equal, precisions, intrinsic(0))));
    expect_told(sei_of(40, begins(0, 0)));
}

TEST(LiteralMultiview, ComponentsAndTheirDependencyAreTold)
{
    expect_told(sei_of(41, {{"num_info_entries_minus1", ue, 1},
                            {"view_order_index[0]", ue, 3},
                            {"num_non_required_view_components_minus1[0]", ue, 1},
                            {"index_delta_minus1[0][0]", ue, 0},
                            {"index_delta_minus1[0][1]", ue, 1},
                            {"view_order_index[1]", ue, 5},
                            {"num_non_required_view_components_minus1[1]", ue, 0},
                            {"index_delta_minus1[1][0]", ue, 2}}));
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data.profile_idc = 118;
    auto& mvc = subset.seq_parameter_set_mvc_extension;
    mvc.num_views_minus1 = 2;
    mvc.views.resize(3);
    mvc.views[1].references.num_anchor_refs_l0 = 1;
    mvc.views[1].references.num_non_anchor_refs_l1 = 2;
    mvc.views[2].references.num_anchor_refs_l1 = 2;
    mvc.views[2].references.num_non_anchor_refs_l0 = 1;
    parameter_sets sets;
    sets.subset_sps[4] = &subset;
    unit_context context;
    context.sets = &sets;
    const lines anchors = {{"anchor_ref_l0_flag[1][0]", u(1), 1},
                           {"anchor_ref_l1_flag[2][0]", u(1), 0},
                           {"anchor_ref_l1_flag[2][1]", u(1), 1}};
    const lines others = {{"non_anchor_ref_l1_flag[1][0]", u(1), 1},
                          {"non_anchor_ref_l1_flag[1][1]", u(1), 0},
                          {"non_anchor_ref_l0_flag[2][0]", u(1), 1}};
    const auto begins = [](int anchor, int non_anchor) {
        return lines{{"seq_parameter_set_id", ue, 4},
                     {"anchor_update_flag", u(1), anchor},
                     {"non_anchor_update_flag", u(1), non_anchor}};
    };
    expect_told(sei_of(42, join(begins(1, 1), anchors, others)), context);
    expect_told(sei_of(42, join(begins(1, 0), anchors)), context);
    expect_told(sei_of(42, join(begins(0, 1), others)), context);
    expect_told(sei_of(42, begins(0, 0)), context);
}

TEST(LiteralMultiview, OperationPointsHrdAndPositionsAreTold)
{
    expect_told(sei_of(43, {{"num_operation_points", ue, 2},
                            {"operation_point_not_present_id[0]", ue, 5},
                            {"operation_point_not_present_id[1]", ue, 65535}}));
    expect_told(sei_of(43, {{"num_operation_points", ue, 0}}));
    expect_told(
        sei_of(44, join(lines{{"num_of_temporal_layers_in_base_view_minus1", ue, 1},
                              {"sei_mvc_temporal_id[0]", u(3), 5},
                              {"sei_mvc_timing_info_present_flag[0]", u(1), 1},
                              {"sei_mvc_num_units_in_tick[0]", u(32), 1},
                              {"sei_mvc_time_scale[0]", u(32), 50},
                              {"sei_mvc_fixed_frame_rate_flag[0]", u(1), 0},
                              {"sei_mvc_nal_hrd_parameters_present_flag[0]", u(1), 1}},
                        hrd_of_two(), lines{{"sei_mvc_vcl_hrd_parameters_present_flag[0]", u(1), 1}}, hrd_of_one(),
                        lines{{"sei_mvc_low_delay_hrd_flag[0]", u(1), 1},
                              {"sei_mvc_pic_struct_present_flag[0]", u(1), 0},
                              {"sei_mvc_temporal_id[1]", u(3), 2},
                              {"sei_mvc_timing_info_present_flag[1]", u(1), 0},
                              {"sei_mvc_nal_hrd_parameters_present_flag[1]", u(1), 0},
                              {"sei_mvc_vcl_hrd_parameters_present_flag[1]", u(1), 0},
                              {"sei_mvc_pic_struct_present_flag[1]", u(1), 1}})));
    expect_told(sei_of(46, {{"num_views_minus1", ue, 1},
                            {"view_position[0]", ue, 1},
                            {"view_position[1]", ue, 0},
                            {"multiview_view_position_extension_flag", u(1), 0}}));
}

TEST(LiteralDepth, NestingMessagesAreTold)
{
    expect_told(sei_of(48, with_nested_message({{"operation_point_flag", u(1), 0},
                                                {"all_view_components_in_au_flag", u(1), 0},
                                                {"num_view_components_minus1", ue, 1},
                                                {"sei_view_id[0]", u(10), 1},
                                                {"sei_view_applicability_flag[0]", u(1), 1},
                                                {"sei_view_id[1]", u(10), 2},
                                                {"sei_view_applicability_flag[1]", u(1), 0}})));
    expect_told(sei_of(
        48, with_nested_message({{"operation_point_flag", u(1), 0}, {"all_view_components_in_au_flag", u(1), 1}})));
    expect_told(sei_of(48, with_nested_message({{"operation_point_flag", u(1), 1},
                                                {"sei_op_texture_only_flag", u(1), 0},
                                                {"num_view_components_op_minus1", ue, 1},
                                                {"sei_op_view_id[0]", u(10), 1},
                                                {"sei_op_depth_flag[0]", u(1), 1},
                                                {"sei_op_texture_flag[0]", u(1), 0},
                                                {"sei_op_view_id[1]", u(10), 1023},
                                                {"sei_op_depth_flag[1]", u(1), 0},
                                                {"sei_op_texture_flag[1]", u(1), 1},
                                                {"sei_op_temporal_id", u(3), 6}})));
    const nal_unit unit = expect_told(sei_of(48, with_nested_message({{"operation_point_flag", u(1), 1},
                                                                      {"sei_op_texture_only_flag", u(1), 1},
                                                                      {"num_view_components_op_minus1", ue, 0},
                                                                      {"sei_op_view_id[0]", u(10), 9},
                                                                      {"sei_op_temporal_id", u(3), 0}})));
    const auto& nesting = payload_of<mvcd_scalable_nesting>(unit);
    ASSERT_EQ(nesting.op_views.size(), 1U);
    EXPECT_FALSE(nesting.op_views[0].sei_op_depth_flag);
    EXPECT_TRUE(nesting.op_views[0].sei_op_texture_flag);
}

/// depth_representation_sei_element() with a mantissa of `bits`.
lines depth_element(unsigned exponent, unsigned bits, int mantissa)
{
    return {{"da_sign_flag", u(1), mantissa % 2},
            {"da_exponent", u(7), exponent},
            {"da_mantissa_len_minus1", u(5), bits - 1},
            {"da_mantissa", u_v(bits), mantissa}};
}

TEST(LiteralDepth, RepresentationIsTold)
{
    const nal_unit unit = expect_told(sei_of(50, join(lines{{"all_views_equal_flag", u(1), 0},
                                                            {"num_views_minus1", ue, 1},
                                                            {"z_near_flag", u(1), 1},
                                                            {"z_far_flag", u(1), 1},
                                                            {"z_axis_equal_flag", u(1), 0},
                                                            {"d_min_flag", u(1), 1},
                                                            {"d_max_flag", u(1), 1},
                                                            {"depth_representation_type", ue, 3},
                                                            {"depth_info_view_id[0]", ue, 3},
                                                            {"z_axis_reference_view[0]", ue, 4},
                                                            {"disparity_reference_view[0]", ue, 5}},
                                                      depth_element(126, 32, 2000000000), depth_element(2, 1, 1),
                                                      depth_element(3, 8, 200), depth_element(4, 9, 300),
                                                      lines{{"depth_info_view_id[1]", ue, 6},
                                                            {"z_axis_reference_view[1]", ue, 7},
                                                            {"disparity_reference_view[1]", ue, 8}},
                                                      depth_element(5, 10, 5), depth_element(6, 10, 6),
                                                      depth_element(7, 10, 7), depth_element(8, 10, 8),
                                                      lines{{"depth_nonlinear_representation_num_minus1", ue, 1},
                                                            {"depth_nonlinear_representation_model[1]", ue, 65535},
                                                            {"depth_nonlinear_representation_model[2]", ue, 1}})));
    const auto& info = payload_of<depth_representation_info>(unit);
    ASSERT_EQ(info.views.size(), 2U);
    EXPECT_EQ(info.views[1].z_near.da_mantissa, 5U);
    EXPECT_EQ(info.views[1].z_far.da_mantissa, 6U);
    EXPECT_EQ(info.views[1].d_min.da_mantissa, 7U);
    EXPECT_EQ(info.views[1].d_max.da_mantissa, 8U);
    EXPECT_EQ(info.views[0].disparity_reference_view, 5U);
}

TEST(LiteralDepth, RepresentationOfEqualViewsIsTold)
{
    const lines equal = {{"all_views_equal_flag", u(1), 1}};
    expect_told(sei_of(50, join(equal, lines{{"z_near_flag", u(1), 0},
                                             {"z_far_flag", u(1), 0},
                                             {"d_min_flag", u(1), 0},
                                             {"d_max_flag", u(1), 0},
                                             {"depth_representation_type", ue, 0},
                                             {"depth_info_view_id[0]", ue, 1}})));
    expect_told(sei_of(50, join(equal,
                                lines{{"z_near_flag", u(1), 0},
                                      {"z_far_flag", u(1), 1},
                                      {"z_axis_equal_flag", u(1), 1},
                                      {"common_z_axis_reference_view", ue, 9},
                                      {"d_min_flag", u(1), 0},
                                      {"d_max_flag", u(1), 1},
                                      {"depth_representation_type", ue, 2},
                                      {"depth_info_view_id[0]", ue, 1},
                                      {"disparity_reference_view[0]", ue, 2}},
                                depth_element(1, 2, 3), depth_element(4, 5, 6))));
    expect_told(sei_of(50, join(equal,
                                lines{{"z_near_flag", u(1), 1},
                                      {"z_far_flag", u(1), 0},
                                      {"z_axis_equal_flag", u(1), 0},
                                      {"d_min_flag", u(1), 1},
                                      {"d_max_flag", u(1), 0},
                                      {"depth_representation_type", ue, 1},
                                      {"depth_info_view_id[0]", ue, 1},
                                      {"z_axis_reference_view[0]", ue, 3},
                                      {"disparity_reference_view[0]", ue, 2}},
                                depth_element(1, 2, 3), depth_element(4, 5, 6))));
}

/// A parameter of display i; `bits` of mantissa.
lines display(const std::string& what, std::size_t i, unsigned exponent, unsigned bits, int mantissa)
{
    lines number = {{at("exponent_ref_" + what, i), u(6), exponent}};
    if (bits != 0)
        number.push_back({at("mantissa_ref_" + what, i), u_v(bits), mantissa});
    return number;
}

TEST(LiteralDepth, ReferenceDisplaysAreTold)
{
    const lines end = {{"three_dimensional_reference_displays_extension_flag", u(1), 0}};
    expect_told(sei_of(
        51, join(lines{{"prec_ref_baseline", ue, 31},
                       {"prec_ref_display_width", ue, 20},
                       {"ref_viewing_distance_flag", u(1), 1},
                       {"prec_ref_viewing_dist", ue, 30},
                       {"num_ref_displays_minus1", ue, 1}},
                 display("baseline", 0, 0, 1, 1), display("display_width", 0, 31, 20, 500000),
                 display("viewing_distance", 0, 5, 4, 9),
                 lines{{"additional_shift_present_flag[0]", u(1), 1}, {"num_sample_shift_plus512[0]", u(10), 1023}},
                 display("baseline", 1, 62, 62, 77), display("display_width", 1, 0, 0, 0),
                 display("viewing_distance", 1, 0, 0, 0), lines{{"additional_shift_present_flag[1]", u(1), 0}}, end)));
    expect_told(sei_of(51, join(lines{{"prec_ref_baseline", ue, 0},
                                      {"prec_ref_display_width", ue, 1},
                                      {"ref_viewing_distance_flag", u(1), 0},
                                      {"num_ref_displays_minus1", ue, 0}},
                                display("baseline", 0, 32, 1, 1), display("display_width", 0, 32, 2, 3),
                                lines{{"additional_shift_present_flag[0]", u(1), 0}}, end)));
}

TEST(LiteralDepth, TimingIsOfOneOrOfEveryDepthView)
{
    subset_seq_parameter_set_rbsp subset;
    auto& mvcd = subset.seq_parameter_set_mvcd_extension;
    mvcd.num_views_minus1 = 2;
    mvcd.views.resize(3);
    mvcd.views[0].depth_view_present_flag = true;
    mvcd.views[2].depth_view_present_flag = true;
    unit_context context;
    context.mvcd_sps = &subset;
    expect_told(sei_of(52, {{"per_view_depth_timing_flag", u(1), 1},
                            {"offset_len_minus1", u(5), 31},
                            {"depth_disp_delay_offset_fp", u_v(32), 4294967295},
                            {"depth_disp_delay_offset_dp", u(6), 63},
                            {"offset_len_minus1", u(5), 0},
                            {"depth_disp_delay_offset_fp", u_v(1), 1},
                            {"depth_disp_delay_offset_dp", u(6), 1}}),
                context);
    expect_told(sei_of(52, {{"per_view_depth_timing_flag", u(1), 0},
                            {"offset_len_minus1", u(5), 4},
                            {"depth_disp_delay_offset_fp", u_v(5), 21},
                            {"depth_disp_delay_offset_dp", u(6), 2}}));
}

const lines grid_position = {{"depth_grid_pos_x_fp", u(20), 1000000}, {"depth_grid_pos_x_dp", u(4), 15},
                             {"depth_grid_pos_x_sign_flag", u(1), 1}, {"depth_grid_pos_y_fp", u(20), 3},
                             {"depth_grid_pos_y_dp", u(4), 2},        {"depth_grid_pos_y_sign_flag", u(1), 0}};

TEST(LiteralDepth, SamplingAndConstraintsAreTold)
{
    const auto begins = [](int per_view) {
        return lines{{"dttsr_x_mul", u(16), 65535},
                     {"dttsr_x_dp", u(4), 15},
                     {"dttsr_y_mul", u(16), 1},
                     {"dttsr_y_dp", u(4), 2},
                     {"per_view_depth_grid_pos_flag", u(1), per_view}};
    };
    expect_told(sei_of(53, join(begins(1),
                                lines{{"num_video_plus_depth_views_minus1", ue, 1}, {"depth_grid_view_id[0]", ue, 5}},
                                grid_position, lines{{"depth_grid_view_id[1]", ue, 1023}}, grid_position)));
    const nal_unit unit = expect_told(sei_of(53, join(begins(0), grid_position)));
    EXPECT_EQ(payload_of<depth_sampling_info>(unit).dttsr_x_mul, 65535);
    EXPECT_EQ(payload_of<depth_sampling_info>(unit).dttsr_y_mul, 1);
    expect_told(sei_of(54, {{"max_dps_id", ue, 63}, {"max_dps_id_diff", ue, 5}}));
}

} // namespace
