// SEI payloads of scalable video spelled by hand; H.264 clauses G.13.1.1 to G.13.1.12.
#include "support/literal_hrd.h"
#include "support/literal_unit.h"

#include <gtest/gtest.h>

namespace {

using namespace literal;

/// Layer i up to its conditional elements; the flags in the table's order.
lines layer_begins(std::size_t i, const std::vector<int>& flags)
{
    static const char* const names[] = {"sub_pic_layer_flag",
                                        "sub_region_layer_flag",
                                        "iroi_division_info_present_flag",
                                        "profile_level_info_present_flag",
                                        "bitrate_info_present_flag",
                                        "frm_rate_info_present_flag",
                                        "frm_size_info_present_flag",
                                        "layer_dependency_info_present_flag",
                                        "parameter_sets_info_present_flag",
                                        "bitstream_restriction_info_present_flag",
                                        "exact_inter_layer_pred_flag"};
    lines layer = {{at("layer_id", i), ue, static_cast<std::int64_t>(i)},
                   {at("priority_id", i), u(6), 33},
                   {at("discardable_flag", i), u(1), 1},
                   {at("dependency_id", i), u(3), 5},
                   {at("quality_id", i), u(4), 9},
                   {at("temporal_id", i), u(3), 6}};
    for (std::size_t n = 0; n < std::size(names); ++n)
        layer.push_back({at(names[n], i), u(1), flags[n]});
    return layer;
}

lines numbers(const std::string& name, std::size_t i, const std::vector<int>& values)
{
    lines list;
    for (std::size_t j = 0; j < values.size(); ++j)
        list.push_back({at(at(name, i), j), ue, values[j]});
    return list;
}

lines restriction(std::size_t i)
{
    return {{at("motion_vectors_over_pic_boundaries_flag", i), u(1), 0},
            {at("max_bytes_per_pic_denom", i), ue, 1},
            {at("max_bits_per_mb_denom", i), ue, 2},
            {at("log2_max_mv_length_horizontal", i), ue, 3},
            {at("log2_max_mv_length_vertical", i), ue, 4},
            {at("max_num_reorder_frames", i), ue, 5},
            {at("max_dec_frame_buffering", i), ue, 6}};
}

/// A layer with all that can come.
lines whole_layer()
{
    return join(layer_begins(0, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0}),
                lines{{"exact_sample_value_match_flag[0]", u(1), 1},
                      {"layer_conversion_flag[0]", u(1), 1},
                      {"layer_output_flag[0]", u(1), 0},
                      {"layer_profile_level_idc[0]", u(24), 0x53400A},
                      {"avg_bitrate[0]", u(16), 1},
                      {"max_bitrate_layer[0]", u(16), 2},
                      {"max_bitrate_layer_representation[0]", u(16), 3},
                      {"max_bitrate_calc_window[0]", u(16), 4},
                      {"constant_frm_rate_idc[0]", u(2), 2},
                      {"avg_frm_rate[0]", u(16), 6400},
                      {"frm_width_in_mbs_minus1[0]", ue, 21},
                      {"frm_height_in_mbs_minus1[0]", ue, 17},
                      {"base_region_layer_id[0]", ue, 8},
                      {"dynamic_rect_flag[0]", u(1), 0},
                      {"horizontal_offset[0]", u(16), 11},
                      {"vertical_offset[0]", u(16), 12},
                      {"region_width[0]", u(16), 13},
                      {"region_height[0]", u(16), 14},
                      {"roi_id[0]", ue, 7},
                      {"iroi_grid_flag[0]", u(1), 1},
                      {"grid_width_in_mbs_minus1[0]", ue, 15},
                      {"grid_height_in_mbs_minus1[0]", ue, 16},
                      {"num_directly_dependent_layers[0]", ue, 2}},
                numbers("directly_dependent_layer_id_delta_minus1", 0, {3, 4}),
                lines{{"num_seq_parameter_set_minus1[0]", ue, 1}}, numbers("seq_parameter_set_id_delta", 0, {5, 6}),
                lines{{"num_subset_seq_parameter_set_minus1[0]", ue, 0}},
                numbers("subset_seq_parameter_set_id_delta", 0, {7}), lines{{"num_pic_parameter_set_minus1[0]", ue, 1}},
                numbers("pic_parameter_set_id_delta", 0, {8, 9}), restriction(0),
                lines{{"conversion_type_idc[0]", ue, 2},
                      {"rewriting_info_flag[0][0]", u(1), 0},
                      {"rewriting_info_flag[0][1]", u(1), 1},
                      {"rewriting_profile_level_idc[0][1]", u(24), 0x64000B},
                      {"rewriting_avg_bitrate[0][1]", u(16), 20},
                      {"rewriting_max_bitrate[0][1]", u(16), 21}});
}

/// One whose regions of interest are listed, and whose rectangle moves.
lines layer_of_regions()
{
    return join(layer_begins(1, {0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1}),
                lines{{"exact_sample_value_match_flag[1]", u(1), 0},
                      {"layer_conversion_flag[1]", u(1), 0},
                      {"layer_output_flag[1]", u(1), 1},
                      {"frm_width_in_mbs_minus1[1]", ue, 10},
                      {"frm_height_in_mbs_minus1[1]", ue, 11},
                      {"base_region_layer_id[1]", ue, 0},
                      {"dynamic_rect_flag[1]", u(1), 1},
                      {"iroi_grid_flag[1]", u(1), 0},
                      {"num_rois_minus1[1]", ue, 1},
                      {"first_mb_in_roi[1][0]", ue, 1},
                      {"roi_width_in_mbs_minus1[1][0]", ue, 2},
                      {"roi_height_in_mbs_minus1[1][0]", ue, 3},
                      {"first_mb_in_roi[1][1]", ue, 4},
                      {"roi_width_in_mbs_minus1[1][1]", ue, 5},
                      {"roi_height_in_mbs_minus1[1][1]", ue, 6},
                      {"layer_dependency_info_src_layer_id_delta[1]", ue, 1},
                      {"parameter_sets_info_src_layer_id_delta[1]", ue, 2}});
}

/// One with nothing but its size.
lines plain_layer(std::size_t i, int frm_size_info_present_flag)
{
    lines layer = join(layer_begins(i, {0, 0, 0, 0, 0, 0, frm_size_info_present_flag, 0, 0, 0, 0}),
                       lines{{at("layer_conversion_flag", i), u(1), 0}, {at("layer_output_flag", i), u(1), 1}});
    if (frm_size_info_present_flag != 0)
        layer =
            join(layer, lines{{at("frm_width_in_mbs_minus1", i), ue, 1}, {at("frm_height_in_mbs_minus1", i), ue, 2}});
    return join(layer, lines{{at("layer_dependency_info_src_layer_id_delta", i), ue, 0},
                             {at("parameter_sets_info_src_layer_id_delta", i), ue, 0}});
}

TEST(LiteralScalabilityInfo, WithEveryConditionOnIsTold)
{
    const nal_unit unit =
        expect_told(sei_of(24, join(lines{{"temporal_id_nesting_flag", u(1), 1},
                                          {"priority_layer_info_present_flag", u(1), 1},
                                          {"priority_id_setting_flag", u(1), 1},
                                          {"num_layers_minus1", ue, 3}},
                                    whole_layer(), layer_of_regions(), plain_layer(2, 0), plain_layer(3, 1),
                                    lines{{"pr_num_dIds_minus1", ue, 1},
                                          {"pr_dependency_id[0]", u(3), 6},
                                          {"pr_num_minus1[0]", ue, 1},
                                          {"pr_id[0][0]", ue, 1},
                                          {"pr_profile_level_idc[0][0]", u(24), 2},
                                          {"pr_avg_bitrate[0][0]", u(16), 3},
                                          {"pr_max_bitrate[0][0]", u(16), 4},
                                          {"pr_id[0][1]", ue, 5},
                                          {"pr_profile_level_idc[0][1]", u(24), 6},
                                          {"pr_avg_bitrate[0][1]", u(16), 7},
                                          {"pr_max_bitrate[0][1]", u(16), 8},
                                          {"pr_dependency_id[1]", u(3), 1},
                                          {"pr_num_minus1[1]", ue, 0},
                                          {"pr_id[1][0]", ue, 9},
                                          {"pr_profile_level_idc[1][0]", u(24), 10},
                                          {"pr_avg_bitrate[1][0]", u(16), 11},
                                          {"pr_max_bitrate[1][0]", u(16), 12},
                                          {"priority_id_setting_uri[0]", b, 'u'},
                                          {"priority_id_setting_uri[1]", b, 'r'},
                                          {"priority_id_setting_uri[2]", b, 0}})));
    const auto& info = payload_of<scalability_info>(unit);
    ASSERT_EQ(info.layers.size(), 4U);
    EXPECT_EQ(info.layers[0].max_bitrate_layer, 2);
    EXPECT_EQ(info.layers[0].max_bitrate_layer_representation, 3);
    EXPECT_EQ(info.layers[0].region_width, 13);
    EXPECT_EQ(info.layers[0].region_height, 14);
}

TEST(LiteralScalabilityInfo, WithEveryConditionOffIsTold)
{
    expect_told(sei_of(24, join(lines{{"temporal_id_nesting_flag", u(1), 0},
                                      {"priority_layer_info_present_flag", u(1), 0},
                                      {"priority_id_setting_flag", u(1), 0},
                                      {"num_layers_minus1", ue, 0}},
                                plain_layer(0, 0))));
}

TEST(LiteralScalable, LayersAreTold)
{
    expect_told(sei_of(25, {{"layer_id", ue, 2047}}));
    expect_told(sei_of(26, {{"num_info_entries_minus1", ue, 1},
                            {"entry_dependency_id[0]", u(3), 1},
                            {"num_non_required_layer_reps_minus1[0]", ue, 1},
                            {"non_required_layer_rep_dependency_id[0][0]", u(3), 2},
                            {"non_required_layer_rep_quality_id[0][0]", u(4), 3},
                            {"non_required_layer_rep_dependency_id[0][1]", u(3), 4},
                            {"non_required_layer_rep_quality_id[0][1]", u(4), 15},
                            {"entry_dependency_id[1]", u(3), 6},
                            {"num_non_required_layer_reps_minus1[1]", ue, 0},
                            {"non_required_layer_rep_dependency_id[1][0]", u(3), 7},
                            {"non_required_layer_rep_quality_id[1][0]", u(4), 8}}));
    expect_told(sei_of(27, {{"pr_dependency_id", u(3), 5},
                            {"num_priority_ids", u(4), 2},
                            {"alt_priority_id[0]", u(6), 63},
                            {"alt_priority_id[1]", u(6), 1}}));
    expect_told(sei_of(28, {{"num_layers", ue, 2}, {"layer_id[0]", ue, 3}, {"layer_id[1]", ue, 4}}));
    expect_told(sei_of(29, {{"num_layers_minus1", ue, 1},
                            {"layer_id[0]", ue, 1},
                            {"layer_dependency_info_present_flag[0]", u(1), 1},
                            {"num_directly_dependent_layers[0]", ue, 2},
                            {"directly_dependent_layer_id_delta_minus1[0][0]", ue, 3},
                            {"directly_dependent_layer_id_delta_minus1[0][1]", ue, 4},
                            {"layer_id[1]", ue, 5},
                            {"layer_dependency_info_present_flag[1]", u(1), 0},
                            {"layer_dependency_info_src_layer_id_delta_minus1[1]", ue, 6}}));
}

TEST(LiteralScalable, NestingMessagesAreTold)
{
    const nal_unit unit = expect_told(sei_of(30, with_nested_message({{"all_layer_representations_in_au_flag", u(1), 0},
                                                                      {"num_layer_representations_minus1", ue, 1},
                                                                      {"sei_dependency_id[0]", u(3), 1},
                                                                      {"sei_quality_id[0]", u(4), 2},
                                                                      {"sei_dependency_id[1]", u(3), 3},
                                                                      {"sei_quality_id[1]", u(4), 14},
                                                                      {"sei_temporal_id", u(3), 5}})));
    EXPECT_EQ(payload_of<scalable_nesting>(unit).messages.size(), 1U);
    expect_told(sei_of(30, with_nested_message({{"all_layer_representations_in_au_flag", u(1), 1}})));
}

TEST(LiteralScalable, TemporalHrdIsTold)
{
    const nal_unit unit = expect_told(
        sei_of(31, join(lines{{"num_of_temporal_layers_in_base_layer_minus1", ue, 1},
                              {"sei_temporal_id[0]", u(3), 0},
                              {"sei_timing_info_present_flag[0]", u(1), 0},
                              {"sei_nal_hrd_parameters_present_flag[0]", u(1), 0},
                              {"sei_vcl_hrd_parameters_present_flag[0]", u(1), 0},
                              {"sei_pic_struct_present_flag[0]", u(1), 1},
                              {"sei_temporal_id[1]", u(3), 6},
                              {"sei_timing_info_present_flag[1]", u(1), 1},
                              {"sei_num_units_in_tick[1]", u(32), 1001},
                              {"sei_time_scale[1]", u(32), 60000},
                              {"sei_fixed_frame_rate_flag[1]", u(1), 1},
                              {"sei_nal_hrd_parameters_present_flag[1]", u(1), 1}},
                        hrd_of_one(), lines{{"sei_vcl_hrd_parameters_present_flag[1]", u(1), 1}}, hrd_of_two(),
                        lines{{"sei_low_delay_hrd_flag[1]", u(1), 0}, {"sei_pic_struct_present_flag[1]", u(1), 0}})));
    EXPECT_EQ(payload_of<base_layer_temporal_hrd>(unit).num_of_temporal_layers_in_base_layer_minus1, 1U);
}

TEST(LiteralScalable, ChecksRedundantPicturesAndSwitchingAreTold)
{
    expect_told(sei_of(32, {{"num_info_entries_minus1", ue, 1},
                            {"entry_dependency_id[0]", u(3), 1},
                            {"quality_layer_crc[0]", u(16), 65535},
                            {"entry_dependency_id[1]", u(3), 2},
                            {"quality_layer_crc[1]", u(16), 3}}));
    expect_told(sei_of(33, {{"num_dIds_minus1", ue, 1},
                            {"dependency_id[0]", u(3), 1},
                            {"num_qIds_minus1[0]", ue, 1},
                            {"quality_id[0][0]", u(4), 2},
                            {"num_redundant_pics_minus1[0][0]", ue, 1},
                            {"redundant_pic_cnt_minus1[0][0][0]", ue, 3},
                            {"pic_match_flag[0][0][0]", u(1), 1},
                            {"redundant_pic_cnt_minus1[0][0][1]", ue, 4},
                            {"pic_match_flag[0][0][1]", u(1), 0},
                            {"mb_type_match_flag[0][0][1]", u(1), 1},
                            {"motion_match_flag[0][0][1]", u(1), 0},
                            {"residual_match_flag[0][0][1]", u(1), 1},
                            {"intra_samples_match_flag[0][0][1]", u(1), 0},
                            {"quality_id[0][1]", u(4), 5},
                            {"num_redundant_pics_minus1[0][1]", ue, 0},
                            {"redundant_pic_cnt_minus1[0][1][0]", ue, 6},
                            {"pic_match_flag[0][1][0]", u(1), 1},
                            {"dependency_id[1]", u(3), 7},
                            {"num_qIds_minus1[1]", ue, 0},
                            {"quality_id[1][0]", u(4), 8},
                            {"num_redundant_pics_minus1[1][0]", ue, 0},
                            {"redundant_pic_cnt_minus1[1][0][0]", ue, 9},
                            {"pic_match_flag[1][0][0]", u(1), 1}}));
    const nal_unit unit = expect_told(sei_of(34, {{"tl0_dep_rep_idx", u(8), 255}, {"effective_idr_pic_id", u(16), 2}}));
    EXPECT_EQ(payload_of<tl0_dep_rep_index>(unit).tl0_dep_rep_idx, 255);
    expect_told(sei_of(35, {{"delta_frame_num", se, -7}}));
}

} // namespace
