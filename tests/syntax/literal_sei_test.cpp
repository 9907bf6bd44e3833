// SEI payloads on time, pictures and the display spelled by hand; H.264 clauses D.1.2 to D.1.24, D.1.26 and D.1.27.
#include "support/literal_unit.h"

#include <gtest/gtest.h>

namespace {

using namespace literal;

/// An SPS and a PPS with the id 0, which are active.
struct active_sets {
    active_sets()
    {
        data().frame_mbs_only_flag = true;
        data().pic_width_in_mbs_minus1 = 2;
        data().pic_height_in_map_units_minus1 = 1;
        data().max_num_ref_frames = 4;
        sets.sps[0] = &sps;
        sets.pps[0] = &pps;
        context.sets = &sets;
        context.active_sps = &data();
        context.active_pps = &pps;
    }
    seq_parameter_set_data& data() { return sps.seq_parameter_set_data; }

    seq_parameter_set_rbsp sps;
    pic_parameter_set_rbsp pps;
    parameter_sets sets;
    unit_context context;
};

/// With HRDs whose lengths differ.
struct hrd_sets : active_sets {
    hrd_sets()
    {
        vui_parameters& vui = data().vui_parameters;
        data().vui_parameters_present_flag = true;
        vui.nal_hrd_parameters_present_flag = true;
        vui.vcl_hrd_parameters_present_flag = true;
        vui.pic_struct_present_flag = true;
        set(vui.nal_hrd_parameters, 1, 18, 9, 10, 6);
        set(vui.vcl_hrd_parameters, 0, 31, 7, 8, 0);
    }
    static void set(hrd_parameters& hrd, std::uint32_t cpb_cnt_minus1, std::uint8_t initial, std::uint8_t cpb,
                    std::uint8_t dpb, std::uint8_t offset)
    {
        hrd.cpb_cnt_minus1 = cpb_cnt_minus1;
        hrd.initial_cpb_removal_delay_length_minus1 = initial;
        hrd.cpb_removal_delay_length_minus1 = cpb;
        hrd.dpb_output_delay_length_minus1 = dpb;
        hrd.time_offset_length = offset;
        for (std::uint32_t i = 0; i <= cpb_cnt_minus1; ++i) {
            hrd.cpb_size_value_minus1[i] = 4000000000U;
            hrd.bit_rate_value_minus1[i] = 1;
        }
    }
};

TEST(LiteralBufferingPeriod, DelaysOfBothHrdsAreTold)
{
    hrd_sets with;
    const lines id = {{"seq_parameter_set_id", ue, 0}};
    const lines nal = {{"initial_cpb_removal_delay[0]", u_v(19), 1},
                       {"initial_cpb_removal_delay_offset[0]", u_v(19), 2},
                       {"initial_cpb_removal_delay[1]", u_v(19), 500000},
                       {"initial_cpb_removal_delay_offset[1]", u_v(19), 4}};
    const lines vcl = {{"initial_cpb_removal_delay[0]", u_v(32), 90000},
                       {"initial_cpb_removal_delay_offset[0]", u_v(32), 4294967295}};
    const nal_unit unit = expect_told(sei_of(0, join(id, nal, vcl)), with.context);
    const auto& period = payload_of<buffering_period>(unit);
    ASSERT_EQ(period.nal.size(), 2U);
    EXPECT_EQ(period.nal[1].initial_cpb_removal_delay, 500000U);
    EXPECT_EQ(period.nal[1].initial_cpb_removal_delay_offset, 4U);
    ASSERT_EQ(period.vcl.size(), 1U);
    EXPECT_EQ(period.vcl[0].initial_cpb_removal_delay, 90000U);
    with.data().vui_parameters.nal_hrd_parameters_present_flag = false;
    expect_told(sei_of(0, join(id, vcl)), with.context);
    with.data().vui_parameters_present_flag = false;
    expect_told(sei_of(0, id), with.context);
}

lines clock_begins(std::size_t i, bool full_timestamp_flag)
{
    return {{at("clock_timestamp_flag", i), u(1), 1},
            {"ct_type", u(2), 2},
            {"nuit_field_based_flag", u(1), 1},
            {"counting_type", u(5), 4},
            {"full_timestamp_flag", u(1), full_timestamp_flag},
            {"discontinuity_flag", u(1), 0},
            {"cnt_dropped_flag", u(1), 1},
            {"n_frames", u(8), 29}};
}

const lines time_offset = {{"time_offset", i_v(6), -32}};

TEST(LiteralPicTiming, ClocksOfEveryCompletenessAreTold)
{
    hrd_sets with;
    const lines full = {{"seconds_value", u(6), 59}, {"minutes_value", u(6), 58}, {"hours_value", u(5), 23}};
    const lines hours = {{"seconds_flag", u(1), 1},  {"seconds_value", u(6), 1}, {"minutes_flag", u(1), 1},
                         {"minutes_value", u(6), 2}, {"hours_flag", u(1), 1},    {"hours_value", u(5), 3}};
    const lines seconds = {{"seconds_flag", u(1), 1}, {"seconds_value", u(6), 7}, {"minutes_flag", u(1), 0}};
    const nal_unit unit = expect_told(sei_of(1, join(lines{{"cpb_removal_delay", u_v(10), 1000},
                                                           {"dpb_output_delay", u_v(11), 2000},
                                                           {"pic_struct", u(4), 8}},
                                                     clock_begins(0, true), full, time_offset, clock_begins(1, false),
                                                     hours, time_offset, clock_begins(2, false), seconds, time_offset)),
                                      with.context);
    const auto& timing = payload_of<pic_timing>(unit);
    EXPECT_EQ(timing.cpb_removal_delay, 1000U);
    EXPECT_EQ(timing.dpb_output_delay, 2000U);
    EXPECT_EQ(timing.timestamps[0].minutes_value, 58);
    EXPECT_EQ(timing.timestamps[0].time_offset, -32);
    EXPECT_EQ(timing.timestamps[1].hours_value, 3);
    EXPECT_EQ(timing.timestamps[2].seconds_value, 7);
}

TEST(LiteralPicTiming, OfTheVclHrdOrOfNoneIsTold)
{
    hrd_sets with;
    vui_parameters& vui = with.data().vui_parameters;
    vui.nal_hrd_parameters_present_flag = false;
    const lines delays = {{"cpb_removal_delay", u_v(8), 255}, {"dpb_output_delay", u_v(9), 511}};
    const lines minutes = {{"seconds_flag", u(1), 1},
                           {"seconds_value", u(6), 7},
                           {"minutes_flag", u(1), 1},
                           {"minutes_value", u(6), 8},
                           {"hours_flag", u(1), 0}};
    const lines none = {{"seconds_flag", u(1), 0}};
    expect_told(sei_of(1, join(delays, lines{{"pic_struct", u(4), 3}}, clock_begins(0, false), minutes,
                               clock_begins(1, false), none)),
                with.context);
    vui.pic_struct_present_flag = false;
    expect_told(sei_of(1, delays), with.context);
    vui.vcl_hrd_parameters_present_flag = false;
    vui.pic_struct_present_flag = true;
    // without an HRD time_offset_length is inferred as 24
    expect_told(sei_of(1, join(lines{{"pic_struct", u(4), 0}}, clock_begins(0, false), none,
                               lines{{"time_offset", i_v(24), 8388607}})),
                with.context);
}

TEST(LiteralPicTiming, NumClockTsIsThatOfThePictureStructure)
{
    hrd_sets with;
    with.data().vui_parameters.nal_hrd_parameters_present_flag = false;
    with.data().vui_parameters.vcl_hrd_parameters_present_flag = false;
    const std::size_t clocks[] = {1, 1, 1, 2, 2, 3, 3, 2, 3}; // Table D-1
    for (std::size_t pic_struct = 0; pic_struct < std::size(clocks); ++pic_struct) {
        lines payload = {{"pic_struct", u(4), static_cast<std::int64_t>(pic_struct)}};
        for (std::size_t i = 0; i < clocks[pic_struct]; ++i)
            payload.push_back({at("clock_timestamp_flag", i), u(1), 0});
        expect_told(sei_of(1, payload), with.context);
    }
}

TEST(LiteralPanScan, WithAndWithoutRectanglesIsTold)
{
    const nal_unit unit = expect_told(sei_of(2, {{"pan_scan_rect_id", ue, 300},
                                                 {"pan_scan_rect_cancel_flag", u(1), 0},
                                                 {"pan_scan_cnt_minus1", ue, 1},
                                                 {"pan_scan_rect_left_offset[0]", se, -1},
                                                 {"pan_scan_rect_right_offset[0]", se, 2},
                                                 {"pan_scan_rect_top_offset[0]", se, -3},
                                                 {"pan_scan_rect_bottom_offset[0]", se, 4},
                                                 {"pan_scan_rect_left_offset[1]", se, 5},
                                                 {"pan_scan_rect_right_offset[1]", se, -6},
                                                 {"pan_scan_rect_top_offset[1]", se, 7},
                                                 {"pan_scan_rect_bottom_offset[1]", se, -8},
                                                 {"pan_scan_rect_repetition_period", ue, 16384}}));
    const auto& rect = payload_of<pan_scan_rect>(unit);
    EXPECT_EQ(rect.pan_scan_rect_id, 300U);
    EXPECT_EQ(rect.pan_scan_rect_repetition_period, 16384U);
    expect_told(sei_of(2, {{"pan_scan_rect_id", ue, 4294967294}, {"pan_scan_rect_cancel_flag", u(1), 1}}));
}

TEST(LiteralUserData, FillerAndBothKindsAreTold)
{
    expect_told(sei_of(3, lines(300, {"ff_byte", f(8), 255})));
    expect_told(sei_of(4, {{"itu_t_t35_country_code", b, 255},
                           {"itu_t_t35_country_code_extension_byte", b, 17},
                           {"itu_t_t35_payload_byte[2]", b, 18},
                           {"itu_t_t35_payload_byte[3]", b, 0}}));
    const nal_unit unit = expect_told(sei_of(4, {{"itu_t_t35_country_code", b, 181},
                                                 {"itu_t_t35_payload_byte[1]", b, 0},
                                                 {"itu_t_t35_payload_byte[2]", b, 49}}));
    EXPECT_EQ(payload_of<user_data_registered_itu_t_t35>(unit).itu_t_t35_payload_byte.back(), 49);
    expect_told(sei_of(5, {{"uuid_iso_iec_11578", u(128), 0, "0123456789abcdef"},
                           {"user_data_payload_byte[0]", b, 1},
                           {"user_data_payload_byte[1]", b, 128}}));
    expect_told(
        sei_of(99, {{"reserved_sei_message_payload_byte[0]", b, 1}, {"reserved_sei_message_payload_byte[1]", b, 2}}));
    expect_told(sei_of(600, {}));
}

TEST(LiteralPictures, RecoveryPointIsTold)
{
    active_sets with;
    with.data().log2_max_frame_num_minus4 = 5;
    const nal_unit unit = expect_told(sei_of(6, {{"recovery_frame_cnt", ue, 511},
                                                 {"exact_match_flag", u(1), 0},
                                                 {"broken_link_flag", u(1), 1},
                                                 {"changing_slice_group_idc", u(2), 2}}),
                                      with.context);
    EXPECT_FALSE(payload_of<recovery_point>(unit).exact_match_flag);
    EXPECT_TRUE(payload_of<recovery_point>(unit).broken_link_flag);
}

TEST(LiteralPictures, RepeatedMarkingIsTold)
{
    active_sets with;
    const lines sliding = {{"adaptive_ref_pic_marking_mode_flag", u(1), 0}};
    expect_told(sei_of(7, join(lines{{"original_idr_flag", u(1), 0}, {"original_frame_num", ue, 15}}, sliding)),
                with.context);
    with.data().frame_mbs_only_flag = false;
    expect_told(sei_of(7, join(lines{{"original_idr_flag", u(1), 0},
                                     {"original_frame_num", ue, 3},
                                     {"original_field_pic_flag", u(1), 0}},
                               sliding)),
                with.context);
    const nal_unit unit = expect_told(sei_of(7, {{"original_idr_flag", u(1), 1},
                                                 {"original_frame_num", ue, 0},
                                                 {"original_field_pic_flag", u(1), 1},
                                                 {"original_bottom_field_flag", u(1), 1},
                                                 {"no_output_of_prior_pics_flag", u(1), 1},
                                                 {"long_term_reference_flag", u(1), 0}}),
                                      with.context);
    EXPECT_TRUE(payload_of<dec_ref_pic_marking_repetition>(unit).original_bottom_field_flag);
}

TEST(LiteralPictures, SparePicturesOfEveryAreaAreTold)
{
    active_sets with;
    lines areas = {
        {"target_frame_num", ue, 14},     {"spare_field_flag", u(1), 1},       {"target_bottom_field_flag", u(1), 0},
        {"num_spare_pics_minus1", ue, 2}, {"delta_spare_frame_num[0]", ue, 1}, {"spare_bottom_field_flag[0]", u(1), 1},
        {"spare_area_idc[0]", ue, 0},     {"delta_spare_frame_num[1]", ue, 2}, {"spare_bottom_field_flag[1]", u(1), 0},
        {"spare_area_idc[1]", ue, 1}};
    for (std::size_t j = 0; j < 6; ++j) // PicSizeInMapUnits
        areas.push_back({at("spare_unit_flag[1]", j), u(1), j % 2 != 0});
    areas = join(areas, lines{{"delta_spare_frame_num[2]", ue, 3},
                              {"spare_bottom_field_flag[2]", u(1), 0},
                              {"spare_area_idc[2]", ue, 2},
                              {"zero_run_length[2][0]", ue, 1},
                              {"zero_run_length[2][1]", ue, 0},
                              {"zero_run_length[2][2]", ue, 2}});
    expect_told(sei_of(8, areas), with.context);
    expect_told(sei_of(8, {{"target_frame_num", ue, 1},
                           {"spare_field_flag", u(1), 0},
                           {"num_spare_pics_minus1", ue, 0},
                           {"delta_spare_frame_num[0]", ue, 0},
                           {"spare_area_idc[0]", ue, 0}}),
                with.context);
}

TEST(LiteralPictures, ScenesAndSubSequencesAreTold)
{
    active_sets with;
    const nal_unit unit = expect_told(sei_of(9, {{"scene_info_present_flag", u(1), 1},
                                                 {"scene_id", ue, 5},
                                                 {"scene_transition_type", ue, 4},
                                                 {"second_scene_id", ue, 6}}));
    EXPECT_EQ(payload_of<scene_info>(unit).scene_id, 5U);
    EXPECT_EQ(payload_of<scene_info>(unit).second_scene_id, 6U);
    expect_told(
        sei_of(9, {{"scene_info_present_flag", u(1), 1}, {"scene_id", ue, 5}, {"scene_transition_type", ue, 3}}));
    expect_told(sei_of(9, {{"scene_info_present_flag", u(1), 0}}));
    expect_told(sei_of(10, {{"sub_seq_layer_num", ue, 255},
                            {"sub_seq_id", ue, 65535},
                            {"first_ref_pic_flag", u(1), 1},
                            {"leading_non_ref_pic_flag", u(1), 0},
                            {"last_pic_flag", u(1), 1},
                            {"sub_seq_frame_num_flag", u(1), 1},
                            {"sub_seq_frame_num", ue, 15}}),
                with.context);
    expect_told(sei_of(10, {{"sub_seq_layer_num", ue, 1},
                            {"sub_seq_id", ue, 2},
                            {"first_ref_pic_flag", u(1), 0},
                            {"leading_non_ref_pic_flag", u(1), 1},
                            {"last_pic_flag", u(1), 0},
                            {"sub_seq_frame_num_flag", u(1), 0}}),
                with.context);
    expect_told(sei_of(11, {{"num_sub_seq_layers_minus1", ue, 1},
                            {"accurate_statistics_flag", u(1), 1},
                            {"average_bit_rate", u(16), 65535},
                            {"average_frame_rate", u(16), 6400},
                            {"accurate_statistics_flag", u(1), 0},
                            {"average_bit_rate", u(16), 1},
                            {"average_frame_rate", u(16), 2}}));
    expect_told(sei_of(12, {{"sub_seq_layer_num", ue, 1},
                            {"sub_seq_id", ue, 2},
                            {"duration_flag", u(1), 1},
                            {"sub_seq_duration", u(32), 4294967295},
                            {"average_rate_flag", u(1), 1},
                            {"accurate_statistics_flag", u(1), 1},
                            {"average_bit_rate", u(16), 3},
                            {"average_frame_rate", u(16), 4},
                            {"num_referenced_subseqs", ue, 2},
                            {"ref_sub_seq_layer_num", ue, 5},
                            {"ref_sub_seq_id", ue, 6},
                            {"ref_sub_seq_direction", u(1), 1},
                            {"ref_sub_seq_layer_num", ue, 7},
                            {"ref_sub_seq_id", ue, 8},
                            {"ref_sub_seq_direction", u(1), 0}}));
    expect_told(sei_of(12, {{"sub_seq_layer_num", ue, 1},
                            {"sub_seq_id", ue, 2},
                            {"duration_flag", u(1), 0},
                            {"average_rate_flag", u(1), 0},
                            {"num_referenced_subseqs", ue, 0}}));
}

TEST(LiteralPictures, FreezesSnapshotsAndRefinementsAreTold)
{
    expect_told(sei_of(13, {{"full_frame_freeze_repetition_period", ue, 16384}}));
    expect_told(sei_of(14, {}));
    expect_told(sei_of(15, {{"snapshot_id", ue, 4294967294}}));
    const nal_unit unit =
        expect_told(sei_of(16, {{"progressive_refinement_id", ue, 7}, {"num_refinement_steps_minus1", ue, 8}}));
    EXPECT_EQ(payload_of<progressive_refinement_segment_start>(unit).progressive_refinement_id, 7U);
    EXPECT_EQ(payload_of<progressive_refinement_segment_start>(unit).num_refinement_steps_minus1, 8U);
    expect_told(sei_of(17, {{"progressive_refinement_id", ue, 9}}));
}

TEST(LiteralPictures, ConstrainedSliceGroupsAreTold)
{
    active_sets with;
    with.pps.num_slice_groups_minus1 = 4;
    expect_told(sei_of(18, {{"num_slice_groups_in_set_minus1", ue, 1},
                            {"slice_group_id[0]", u_v(3), 4},
                            {"slice_group_id[1]", u_v(3), 1},
                            {"exact_sample_value_match_flag", u(1), 1},
                            {"pan_scan_rect_flag", u(1), 1},
                            {"pan_scan_rect_id", ue, 70}}),
                with.context);
    with.pps.num_slice_groups_minus1 = 0;
    expect_told(sei_of(18, {{"num_slice_groups_in_set_minus1", ue, 0},
                            {"exact_sample_value_match_flag", u(1), 0},
                            {"pan_scan_rect_flag", u(1), 0}}),
                with.context);
}

TEST(LiteralFilmGrain, WithEveryConditionOnAndOffIsTold)
{
    active_sets with;
    const nal_unit unit = expect_told(sei_of(19, {{"film_grain_characteristics_cancel_flag", u(1), 0},
                                                  {"film_grain_model_id", u(2), 1},
                                                  {"separate_colour_description_present_flag", u(1), 1},
                                                  {"film_grain_bit_depth_luma_minus8", u(3), 5},
                                                  {"film_grain_bit_depth_chroma_minus8", u(3), 6},
                                                  {"film_grain_full_range_flag", u(1), 1},
                                                  {"film_grain_colour_primaries", u(8), 9},
                                                  {"film_grain_transfer_characteristics", u(8), 16},
                                                  {"film_grain_matrix_coefficients", u(8), 8},
                                                  {"blending_mode_id", u(2), 1},
                                                  {"log2_scale_factor", u(4), 15},
                                                  {"comp_model_present_flag[0]", u(1), 1},
                                                  {"comp_model_present_flag[1]", u(1), 0},
                                                  {"comp_model_present_flag[2]", u(1), 1},
                                                  {"num_intensity_intervals_minus1[0]", u(8), 1},
                                                  {"num_model_values_minus1[0]", u(3), 1},
                                                  {"intensity_interval_lower_bound[0][0]", u(8), 1},
                                                  {"intensity_interval_upper_bound[0][0]", u(8), 2},
                                                  {"comp_model_value[0][0][0]", se, 3},
                                                  {"comp_model_value[0][0][1]", se, -4},
                                                  {"intensity_interval_lower_bound[0][1]", u(8), 5},
                                                  {"intensity_interval_upper_bound[0][1]", u(8), 6},
                                                  {"comp_model_value[0][1][0]", se, 7},
                                                  {"comp_model_value[0][1][1]", se, -8},
                                                  {"num_intensity_intervals_minus1[2]", u(8), 0},
                                                  {"num_model_values_minus1[2]", u(3), 0},
                                                  {"intensity_interval_lower_bound[2][0]", u(8), 9},
                                                  {"intensity_interval_upper_bound[2][0]", u(8), 10},
                                                  {"comp_model_value[2][0][0]", se, 11},
                                                  {"film_grain_characteristics_repetition_period", ue, 12}}),
                                      with.context);
    const auto& grain = payload_of<film_grain_characteristics>(unit);
    EXPECT_EQ(grain.film_grain_bit_depth_luma_minus8, 5);
    EXPECT_EQ(grain.film_grain_bit_depth_chroma_minus8, 6);
    EXPECT_EQ(grain.film_grain_characteristics_repetition_period, 12U);
    expect_told(sei_of(19, {{"film_grain_characteristics_cancel_flag", u(1), 0},
                            {"film_grain_model_id", u(2), 0},
                            {"separate_colour_description_present_flag", u(1), 0},
                            {"blending_mode_id", u(2), 0},
                            {"log2_scale_factor", u(4), 2},
                            {"comp_model_present_flag[0]", u(1), 0},
                            {"comp_model_present_flag[1]", u(1), 0},
                            {"comp_model_present_flag[2]", u(1), 0},
                            {"film_grain_characteristics_repetition_period", ue, 1}}),
                with.context);
    expect_told(sei_of(19, {{"film_grain_characteristics_cancel_flag", u(1), 1}}), with.context);
}

TEST(LiteralDisplay, DeblockingPreferenceAndStereoAreTold)
{
    expect_told(sei_of(20, {{"deblocking_display_preference_cancel_flag", u(1), 0},
                            {"display_prior_to_deblocking_preferred_flag", u(1), 1},
                            {"dec_frame_buffering_constraint_flag", u(1), 0},
                            {"deblocking_display_preference_repetition_period", ue, 3}}));
    expect_told(sei_of(20, {{"deblocking_display_preference_cancel_flag", u(1), 1}}));
    expect_told(sei_of(21, {{"field_views_flag", u(1), 1},
                            {"top_field_is_left_view_flag", u(1), 1},
                            {"left_view_self_contained_flag", u(1), 0},
                            {"right_view_self_contained_flag", u(1), 1}}));
    expect_told(sei_of(21, {{"field_views_flag", u(1), 0},
                            {"current_frame_is_left_view_flag", u(1), 1},
                            {"next_frame_is_second_view_flag", u(1), 0},
                            {"left_view_self_contained_flag", u(1), 1},
                            {"right_view_self_contained_flag", u(1), 0}}));
}

TEST(LiteralDisplay, PostFilterIsTold)
{
    lines hint = {{"filter_hint_size_y", ue, 2}, {"filter_hint_size_x", ue, 3}, {"filter_hint_type", u(2), 1}};
    for (std::size_t cIdx = 0; cIdx < 3; ++cIdx) {
        for (std::size_t cy = 0; cy < 2; ++cy) {
            for (std::size_t cx = 0; cx < 3; ++cx)
                hint.push_back({at(at(at("filter_hint", cIdx), cy), cx), se,
                                static_cast<std::int64_t>(6 * cIdx + 3 * cy + cx) - 9});
        }
    }
    hint.push_back({"additional_extension_flag", u(1), 0});
    expect_told(sei_of(22, hint));
}

lines tone_map(unsigned coded_data_bit_depth, unsigned target_bit_depth, unsigned model)
{
    return {{"tone_map_id", ue, 77},
            {"tone_map_cancel_flag", u(1), 0},
            {"tone_map_repetition_period", ue, 5},
            {"coded_data_bit_depth", u(8), coded_data_bit_depth},
            {"target_bit_depth", u(8), target_bit_depth},
            {"tone_map_model_id", ue, model}};
}

TEST(LiteralToneMapping, OfEveryModelIsTold)
{
    expect_told(sei_of(23, {{"tone_map_id", ue, 1}, {"tone_map_cancel_flag", u(1), 1}}));
    expect_told(sei_of(23, join(tone_map(14, 8, 0), lines{{"min_value", u(32), 1}, {"max_value", u(32), 4294967295}})));
    expect_told(
        sei_of(23, join(tone_map(8, 16, 1), lines{{"sigmoid_midpoint", u(32), 9}, {"sigmoid_width", u(32), 8}})));
    lines intervals = tone_map(9, 1, 2);
    for (std::size_t i = 0; i < 2; ++i) // 1 << target_bit_depth, of ((9 + 7) >> 3) << 3 bits
        intervals.push_back({at("start_of_coded_interval", i), u_v(16), static_cast<std::int64_t>(400 + i)});
    expect_told(sei_of(23, intervals));
    expect_told(sei_of(23, join(tone_map(8, 9, 3), lines{{"num_pivots", u(16), 2},
                                                         {"coded_pivot_value[0]", u_v(8), 3},
                                                         {"target_pivot_value[0]", u_v(16), 300},
                                                         {"coded_pivot_value[1]", u_v(8), 255},
                                                         {"target_pivot_value[1]", u_v(16), 511}})));
    const lines luminance = {{"exposure_compensation_value_sign_flag", u(1), 1},
                             {"exposure_compensation_value_numerator", u(16), 1},
                             {"exposure_compensation_value_denom_idc", u(16), 2},
                             {"ref_screen_luminance_white", u(32), 3},
                             {"extended_range_white_level", u(32), 4},
                             {"nominal_black_level_luma_code_value", u(16), 5},
                             {"nominal_white_level_luma_code_value", u(16), 6},
                             {"extended_white_level_luma_code_value", u(16), 7}};
    expect_told(sei_of(23, join(tone_map(8, 8, 4),
                                lines{{"camera_iso_speed_idc", u(8), 255},
                                      {"camera_iso_speed_value", u(32), 100},
                                      {"exposure_index_idc", u(8), 255},
                                      {"exposure_index_value", u(32), 200}},
                                luminance)));
    expect_told(
        sei_of(23, join(tone_map(8, 8, 4), lines{{"camera_iso_speed_idc", u(8), 254}, {"exposure_index_idc", u(8), 1}},
                        luminance)));
}

lines frame_packing(unsigned type, bool quincunx_sampling_flag)
{
    return {{"frame_packing_arrangement_id", ue, 3},
            {"frame_packing_arrangement_cancel_flag", u(1), 0},
            {"frame_packing_arrangement_type", u(7), type},
            {"quincunx_sampling_flag", u(1), quincunx_sampling_flag},
            {"content_interpretation_type", u(6), 2},
            {"spatial_flipping_flag", u(1), 1},
            {"frame0_flipped_flag", u(1), 0},
            {"field_views_flag", u(1), 0},
            {"current_frame_is_frame0_flag", u(1), 1},
            {"frame0_self_contained_flag", u(1), 0},
            {"frame1_self_contained_flag", u(1), 1}};
}

TEST(LiteralDisplay, FramePackingAndOrientationAreTold)
{
    const lines grid = {{"frame0_grid_position_x", u(4), 1},
                        {"frame0_grid_position_y", u(4), 2},
                        {"frame1_grid_position_x", u(4), 3},
                        {"frame1_grid_position_y", u(4), 15}};
    const lines end = {{"frame_packing_arrangement_reserved_byte", u(8), 0},
                       {"frame_packing_arrangement_repetition_period", ue, 1},
                       {"frame_packing_arrangement_extension_flag", u(1), 0}};
    const nal_unit unit = expect_told(sei_of(45, join(frame_packing(3, false), grid, end)));
    const auto& packing = payload_of<frame_packing_arrangement>(unit);
    EXPECT_EQ(packing.frame0_grid_position_x, 1);
    EXPECT_EQ(packing.frame0_grid_position_y, 2);
    EXPECT_EQ(packing.frame1_grid_position_x, 3);
    EXPECT_EQ(packing.frame1_grid_position_y, 15);
    expect_told(sei_of(45, join(frame_packing(5, false), end)));
    expect_told(sei_of(45, join(frame_packing(0, true), end)));
    expect_told(sei_of(45, {{"frame_packing_arrangement_id", ue, 3},
                            {"frame_packing_arrangement_cancel_flag", u(1), 1},
                            {"frame_packing_arrangement_extension_flag", u(1), 0}}));
    expect_told(sei_of(47, {{"display_orientation_cancel_flag", u(1), 0},
                            {"hor_flip", u(1), 1},
                            {"ver_flip", u(1), 0},
                            {"anticlockwise_rotation", u(16), 49152},
                            {"display_orientation_repetition_period", ue, 1},
                            {"display_orientation_extension_flag", u(1), 0}}));
    expect_told(sei_of(47, {{"display_orientation_cancel_flag", u(1), 1}}));
}

} // namespace
