// SEI payloads on colour, omnidirectional video, other messages and regions spelled by hand; H.264 clauses D.1.28 to
// D.1.39.
#include "support/literal_unit.h"

#include <gtest/gtest.h>

namespace {

using namespace literal;

TEST(LiteralColour, VolumeLightAndTransferAreTold)
{
    const nal_unit unit = expect_told(sei_of(137, {{"display_primaries_x[0]", u(16), 1},
                                                   {"display_primaries_y[0]", u(16), 2},
                                                   {"display_primaries_x[1]", u(16), 3},
                                                   {"display_primaries_y[1]", u(16), 4},
                                                   {"display_primaries_x[2]", u(16), 5},
                                                   {"display_primaries_y[2]", u(16), 6},
                                                   {"white_point_x", u(16), 7},
                                                   {"white_point_y", u(16), 8},
                                                   {"max_display_mastering_luminance", u(32), 4294967295},
                                                   {"min_display_mastering_luminance", u(32), 9}}));
    const auto& volume = payload_of<mastering_display_colour_volume>(unit);
    EXPECT_EQ(volume.display_primaries_x[2], 5);
    EXPECT_EQ(volume.display_primaries_y[1], 4);
    EXPECT_EQ(volume.white_point_x, 7);
    EXPECT_EQ(volume.white_point_y, 8);
    EXPECT_EQ(volume.min_display_mastering_luminance, 9U);
    expect_told(sei_of(144, {{"max_content_light_level", u(16), 1000}, {"max_pic_average_light_level", u(16), 400}}));
    expect_told(sei_of(147, {{"preferred_transfer_characteristics", u(8), 18}}));
    expect_told(sei_of(148, {{"ambient_illuminance", u(32), 100000},
                             {"ambient_light_x", u(16), 15635},
                             {"ambient_light_y", u(16), 16450}}));
}

/// A look-up table of component c; without entries when there are no values.
lines lut(const std::string& prefix, std::size_t c, unsigned coded_bits, unsigned target_bits,
          const std::vector<int>& values)
{
    const std::size_t last = values.empty() ? 0 : values.size() / 2 - 1;
    lines table = {{at(prefix + "_lut_num_val_minus1", c), u(8), static_cast<std::int64_t>(last)}};
    for (std::size_t i = 0; i < values.size() / 2; ++i) {
        table.push_back({at(at(prefix + "_lut_coded_value", c), i), u_v(coded_bits), values[2 * i]});
        table.push_back({at(at(prefix + "_lut_target_value", c), i), u_v(target_bits), values[2 * i + 1]});
    }
    return table;
}

TEST(LiteralColour, RemappingIsTold)
{
    lines matrix = {{"colour_remap_matrix_present_flag", u(1), 1}, {"log2_matrix_denom", u(4), 15}};
    for (std::size_t n = 0; n < 9; ++n)
        matrix.push_back({at(at("colour_remap_coeffs", n / 3), n % 3), se, static_cast<std::int64_t>(n) * 1000 - 4000});
    const lines begins = {
        {"colour_remap_id", ue, 8}, {"colour_remap_cancel_flag", u(1), 0}, {"colour_remap_repetition_period", ue, 1}};
    expect_told(sei_of(142, join(begins,
                                 lines{{"colour_remap_video_signal_info_present_flag", u(1), 1},
                                       {"colour_remap_full_range_flag", u(1), 1},
                                       {"colour_remap_primaries", u(8), 9},
                                       {"colour_remap_transfer_function", u(8), 16},
                                       {"colour_remap_matrix_coefficients", u(8), 8},
                                       {"colour_remap_input_bit_depth", u(8), 8},
                                       {"colour_remap_output_bit_depth", u(8), 10}},
                                 lut("pre", 0, 8, 16, {0, 1, 255, 1023}), lut("pre", 1, 8, 16, {}),
                                 lut("pre", 2, 8, 16, {2, 3, 4, 5, 6, 7}), matrix, lut("post", 0, 16, 16, {}),
                                 lut("post", 1, 16, 16, {300, 301, 1000, 1001}), lut("post", 2, 16, 16, {}))));
    expect_told(
        sei_of(142, join(begins,
                         lines{{"colour_remap_video_signal_info_present_flag", u(1), 0},
                               {"colour_remap_input_bit_depth", u(8), 16},
                               {"colour_remap_output_bit_depth", u(8), 8}},
                         lut("pre", 0, 16, 8, {}), lut("pre", 1, 16, 8, {65535, 255, 256, 1}), lut("pre", 2, 16, 8, {}),
                         lines{{"colour_remap_matrix_present_flag", u(1), 0}}, lut("post", 0, 8, 8, {}),
                         lut("post", 1, 8, 8, {}), lut("post", 2, 8, 8, {1, 2, 3, 4}))));
    expect_told(sei_of(142, {{"colour_remap_id", ue, 8}, {"colour_remap_cancel_flag", u(1), 1}}));
}

TEST(LiteralOmnidirectional, ProjectionsAndRotationAreTold)
{
    expect_told(sei_of(150, {{"erp_cancel_flag", u(1), 0},
                             {"erp_persistence_flag", u(1), 1},
                             {"erp_guard_band_flag", u(1), 1},
                             {"erp_reserved_zero_2bits", u(2), 0},
                             {"erp_guard_band_type", u(3), 1},
                             {"erp_left_guard_band_width", u(8), 200},
                             {"erp_right_guard_band_width", u(8), 201}}));
    expect_told(sei_of(150, {{"erp_cancel_flag", u(1), 0},
                             {"erp_persistence_flag", u(1), 0},
                             {"erp_guard_band_flag", u(1), 0},
                             {"erp_reserved_zero_2bits", u(2), 0}}));
    expect_told(sei_of(150, {{"erp_cancel_flag", u(1), 1}}));
    expect_told(sei_of(151, {{"cmp_cancel_flag", u(1), 0}, {"cmp_persistence_flag", u(1), 1}}));
    expect_told(sei_of(151, {{"cmp_cancel_flag", u(1), 1}}));
    expect_told(sei_of(154, {{"sphere_rotation_cancel_flag", u(1), 0},
                             {"sphere_rotation_persistence_flag", u(1), 1},
                             {"sphere_rotation_reserved_zero_6bits", u(6), 0},
                             {"yaw_rotation", i(32), -11796480},
                             {"pitch_rotation", i(32), 5898240},
                             {"roll_rotation", i(32), -1}}));
    expect_told(sei_of(154, {{"sphere_rotation_cancel_flag", u(1), 1}}));
}

lines packed_region(std::size_t i, bool guard)
{
    const auto n = static_cast<std::int64_t>(100 * i);
    return {{at("rwp_reserved_zero_4bits", i), u(4), 0},   {at("rwp_transform_type", i), u(3), 5},
            {at("rwp_guard_band_flag", i), u(1), guard},   {at("proj_region_width", i), u(32), n + 1},
            {at("proj_region_height", i), u(32), n + 2},   {at("proj_region_top", i), u(32), n + 3},
            {at("proj_region_left", i), u(32), n + 4},     {at("packed_region_width", i), u(16), n + 5},
            {at("packed_region_height", i), u(16), n + 6}, {at("packed_region_top", i), u(16), n + 7},
            {at("packed_region_left", i), u(16), n + 8}};
}

TEST(LiteralOmnidirectional, PackedRegionsAreTold)
{
    const lines picture = {{"rwp_cancel_flag", u(1), 0},
                           {"rwp_persistence_flag", u(1), 1},
                           {"constituent_picture_matching_flag", u(1), 0},
                           {"rwp_reserved_zero_5bits", u(5), 0},
                           {"num_packed_regions", u(8), 2},
                           {"proj_picture_width", u(32), 7680},
                           {"proj_picture_height", u(32), 3840},
                           {"packed_picture_width", u(16), 3840},
                           {"packed_picture_height", u(16), 1920}};
    const lines guard = {{"rwp_left_guard_band_width[1]", u(8), 1},
                         {"rwp_right_guard_band_width[1]", u(8), 2},
                         {"rwp_top_guard_band_height[1]", u(8), 3},
                         {"rwp_bottom_guard_band_height[1]", u(8), 4},
                         {"rwp_guard_band_not_used_for_pred_flag[1]", u(1), 1},
                         {"rwp_guard_band_type[1][0]", u(3), 0},
                         {"rwp_guard_band_type[1][1]", u(3), 1},
                         {"rwp_guard_band_type[1][2]", u(3), 2},
                         {"rwp_guard_band_type[1][3]", u(3), 3},
                         {"rwp_guard_band_reserved_zero_3bits[1]", u(3), 0}};
    expect_told(sei_of(155, join(picture, packed_region(0, false), packed_region(1, true), guard)));
    expect_told(sei_of(155, {{"rwp_cancel_flag", u(1), 1}}));
}

TEST(LiteralOmnidirectional, ViewportsAreTold)
{
    lines viewports = {{"omni_viewport_id", u(10), 1023},
                       {"omni_viewport_cancel_flag", u(1), 0},
                       {"omni_viewport_persistence_flag", u(1), 1},
                       {"omni_viewport_cnt_minus1", u(4), 1}};
    for (std::size_t n = 0; n < 2; ++n) {
        const auto value = static_cast<std::int64_t>(n);
        viewports = join(viewports, lines{{at("omni_viewport_azimuth_centre", n), i(32), -1 - value},
                                          {at("omni_viewport_elevation_centre", n), i(32), 10 + value},
                                          {at("omni_viewport_tilt_centre", n), i(32), -20 - value},
                                          {at("omni_viewport_hor_range", n), u(32), 30 + value},
                                          {at("omni_viewport_ver_range", n), u(32), 40 + value}});
    }
    expect_told(sei_of(156, viewports));
    expect_told(sei_of(156, {{"omni_viewport_id", u(10), 5}, {"omni_viewport_cancel_flag", u(1), 1}}));
}

TEST(LiteralManifest, OfMessagesAndTheirPrefixesIsTold)
{
    expect_told(sei_of(200, {{"manifest_num_sei_msg_types", u(16), 2},
                             {"manifest_sei_payload_type[0]", u(16), 1},
                             {"manifest_sei_description[0]", u(8), 2},
                             {"manifest_sei_payload_type[1]", u(16), 300},
                             {"manifest_sei_description[1]", u(8), 3}}));
    lines prefixes = {{"prefix_sei_payload_type", u(16), 1}, {"num_sei_prefix_indications_minus1", u(8), 1}};
    prefixes.push_back({"num_bits_in_prefix_indication_minus1[0]", u(16), 2});
    for (std::size_t j = 0; j < 3; ++j)
        prefixes.push_back({at("sei_prefix_data_bit[0]", j), u(1), j != 1});
    for (int bits = 3; bits < 8; ++bits)
        prefixes.push_back({"byte_alignment_bit_equal_to_one", f(1), 1});
    prefixes.push_back({"num_bits_in_prefix_indication_minus1[1]", u(16), 7});
    for (std::size_t j = 0; j < 8; ++j)
        prefixes.push_back({at("sei_prefix_data_bit[1]", j), u(1), j % 3 == 0});
    expect_told(sei_of(201, prefixes));
}

TEST(LiteralRegions, WithEveryConditionOnIsTold)
{
    lines payload = {{"ar_cancel_flag", u(1), 0},
                     {"ar_not_optimized_for_viewing_flag", u(1), 1},
                     {"ar_true_motion_flag", u(1), 0},
                     {"ar_occluded_object_flag", u(1), 1},
                     {"ar_partial_object_flag_present_flag", u(1), 1},
                     {"ar_object_label_present_flag", u(1), 1},
                     {"ar_object_confidence_info_present_flag", u(1), 1},
                     {"ar_object_confidence_length_minus1", u(4), 6},
                     {"ar_object_label_language_present_flag", u(1), 1}};
    const auto align = [&] {
        while (in_bits(payload).bits() % 8 != 0)
            payload.push_back({"ar_bit_equal_to_zero", f(1), 0});
    };
    align();
    payload.push_back({"ar_object_label_language", st, 0, "en-GB"});
    payload = join(
        payload, lines{{"ar_num_label_updates", ue, 2}, {"ar_label_idx[0]", ue, 9}, {"ar_label_cancel_flag", u(1), 0}});
    align();
    payload.push_back({"ar_label[9]", st, 0, "car"});
    payload = join(payload, lines{{"ar_label_idx[1]", ue, 10},
                                  {"ar_label_cancel_flag", u(1), 1},
                                  {"ar_num_object_updates", ue, 4},
                                  {"ar_object_idx[0]", ue, 200},
                                  {"ar_object_cancel_flag", u(1), 0},
                                  {"ar_object_label_update_flag", u(1), 1},
                                  {"ar_object_label_idx[200]", ue, 9},
                                  {"ar_bounding_box_update_flag", u(1), 1},
                                  {"ar_bounding_box_cancel_flag", u(1), 0},
                                  {"ar_bounding_box_top[200]", u(16), 1},
                                  {"ar_bounding_box_left[200]", u(16), 2},
                                  {"ar_bounding_box_width[200]", u(16), 3},
                                  {"ar_bounding_box_height[200]", u(16), 4},
                                  {"ar_partial_object_flag[200]", u(1), 1},
                                  {"ar_object_confidence[200]", u_v(7), 100},
                                  {"ar_object_idx[1]", ue, 3},
                                  {"ar_object_cancel_flag", u(1), 1},
                                  {"ar_object_idx[2]", ue, 4},
                                  {"ar_object_cancel_flag", u(1), 0},
                                  {"ar_object_label_update_flag", u(1), 0},
                                  {"ar_bounding_box_update_flag", u(1), 1},
                                  {"ar_bounding_box_cancel_flag", u(1), 1},
                                  {"ar_object_idx[3]", ue, 5},
                                  {"ar_object_cancel_flag", u(1), 0},
                                  {"ar_object_label_update_flag", u(1), 0},
                                  {"ar_bounding_box_update_flag", u(1), 0}});
    const nal_unit unit = expect_told(sei_of(202, payload));
    const auto& regions = payload_of<annotated_regions>(unit);
    EXPECT_EQ(regions.ar_object_label_language, "en-GB");
    EXPECT_EQ(regions.object_updates[0].ar_bounding_box_left, 2);
    EXPECT_EQ(regions.object_updates[0].ar_bounding_box_width, 3);
}

TEST(LiteralRegions, WithEveryConditionOffIsTold)
{
    lines payload = {{"ar_cancel_flag", u(1), 0},
                     {"ar_not_optimized_for_viewing_flag", u(1), 0},
                     {"ar_true_motion_flag", u(1), 1},
                     {"ar_occluded_object_flag", u(1), 0},
                     {"ar_partial_object_flag_present_flag", u(1), 0},
                     {"ar_object_label_present_flag", u(1), 0},
                     {"ar_object_confidence_info_present_flag", u(1), 0},
                     {"ar_num_object_updates", ue, 1},
                     {"ar_object_idx[0]", ue, 0},
                     {"ar_object_cancel_flag", u(1), 0},
                     {"ar_bounding_box_update_flag", u(1), 1},
                     {"ar_bounding_box_cancel_flag", u(1), 0},
                     {"ar_bounding_box_top[0]", u(16), 10},
                     {"ar_bounding_box_left[0]", u(16), 20},
                     {"ar_bounding_box_width[0]", u(16), 30},
                     {"ar_bounding_box_height[0]", u(16), 40}};
    expect_told(sei_of(202, payload));
    expect_told(sei_of(202, {{"ar_cancel_flag", u(1), 1}}));
}

TEST(LiteralSei, SeveralMessagesAndBytesBehindAPayloadAreTold)
{
    const lines transfer = {{"preferred_transfer_characteristics", u(8), 18}};
    const lines freeze = {{"full_frame_freeze_repetition_period", ue, 2}};
    const lines rest = {{"bit_equal_to_one", f(1), 1},  {"bit_equal_to_zero", f(1), 0}, {"bit_equal_to_zero", f(1), 0},
                        {"bit_equal_to_zero", f(1), 0}, {"bit_equal_to_zero", f(1), 0}, {"payload_byte[0]", b, 77},
                        {"payload_byte[1]", b, 0}};
    const nal_unit unit = expect_told(unit_of(
        6, join(sei_message_of(147, transfer), sei_message_of(13, join(freeze, rest)), sei_message_of(14, {}))));
    const sei_rbsp& sei = rbsp_of<sei_rbsp>(unit);
    ASSERT_EQ(sei.sei_messages.size(), 3U);
    EXPECT_EQ(sei.sei_messages[1].rest.size(), 2U);
    for (const std::uint32_t payload_type : {36U, 56U, 149U, 205U}) // not read
        expect_told(sei_of(payload_type, {{"payload_byte[0]", b, 1}, {"payload_byte[1]", b, 2}}));
}

} // namespace
