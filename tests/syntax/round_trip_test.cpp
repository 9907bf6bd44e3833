// What is made up and written is read back the same, from the same bits, for every kind of unit and SEI payload; and
// what a trace tells covers every bit of it.
#include "support/coded_kinds.h"
#include "support/told_reading.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

bool is_slice(unsigned type)
{
    return (type >= 1 && type <= 5) || (type >= 19 && type <= 21);
}

/// Reads what was written, holds the structure, the trace and a second writing against the first.
void check_round_trip(const nal_unit& unit, const unit_context& context)
{
    const std::vector<unsigned char> bytes = written(unit, context);
    ASSERT_FALSE(bytes.empty());

    const told_reading again = read_of(bytes, context);
    const outcome& result = again.result;
    ASSERT_FALSE(result.failure) << result.failure.element.name() << ": " << text_of(result.failure.why) << " at bit "
                                 << result.failure.bit;
    EXPECT_EQ(result.finding_count, 0U) << result.findings[0].element.name() << " " << result.findings[0].value;
    EXPECT_TRUE(again.unit == unit);
    EXPECT_EQ(written(again.unit, context), bytes);
    EXPECT_TRUE(is_slice(unit.header.nal_unit_type) || result.ending == ending::sound);

    std::uint64_t bit = 0;
    for (const kept_element& e : again.elements) {
        EXPECT_EQ(e.bit, bit) << e.path;
        EXPECT_GT(e.bits, 0U) << e.path;
        EXPECT_TRUE(e.inside) << e.path << " " << e.value;
        bit = e.bit + e.bits;
    }
    EXPECT_EQ(bit, result.bits);
}

class RoundTrip : public testing::TestWithParam<unsigned> {};

TEST_P(RoundTrip, OfUnitsOfTheTypeKeepsBitsAndValues)
{
    unit_maker maker(GetParam());
    for (int i = 0; i < 400 && !HasFailure(); ++i) {
        maker.renew_sets();
        check_round_trip(maker.make(GetParam()), maker.context());
    }
}
INSTANTIATE_TEST_SUITE_P(Types, RoundTrip, testing::ValuesIn(coded_types));

class SeiRoundTrip : public testing::TestWithParam<std::uint32_t> {};

TEST_P(SeiRoundTrip, OfMessagesOfTheTypeKeepsBitsAndValues)
{
    unit_maker maker(GetParam());
    for (int i = 0; i < 100 && !HasFailure(); ++i) {
        maker.renew_sets();
        check_round_trip(maker.make_sei(GetParam()), maker.context());
    }
}
INSTANTIATE_TEST_SUITE_P(Payloads, SeiRoundTrip, testing::ValuesIn(payload_types));

/// Values that lead where chance hardly does.
using forced_values = std::vector<std::pair<const char*, std::int64_t>>;

void check_forced(unsigned nal_unit_type, std::uint32_t payload_type, std::uint8_t subset_profile_idc,
                  const forced_values& values)
{
    unit_maker maker(payload_type + nal_unit_type);
    for (const auto& [name, value] : values)
        maker.force(name, value);
    for (int i = 0; i < 30 && !testing::Test::HasFailure(); ++i) {
        do
            maker.renew_sets();
        while (subset_profile_idc != 0 &&
               maker.context().sets->subset_sps[0]->seq_parameter_set_data.profile_idc != subset_profile_idc);
        check_round_trip(nal_unit_type == 6 ? maker.make_sei(payload_type) : maker.make(nal_unit_type),
                         maker.context());
    }
}

TEST(RareRoundTrip, OfClocksWithMinutesAndHoursKeepsBitsAndValues)
{
    for (const std::int64_t time_offset_length : {0, 31})
        check_forced(6, 1, 0,
                     {{"vui_parameters_present_flag", 1},
                      {"nal_hrd_parameters_present_flag", 1},
                      {"time_offset_length", time_offset_length},
                      {"pic_struct_present_flag", 1},
                      {"clock_timestamp_flag", 1},
                      {"full_timestamp_flag", 0},
                      {"seconds_flag", 1},
                      {"minutes_flag", 1}});
}

TEST(RareRoundTrip, OfFramesInTurnAndOfIsoSpeedsKeepsBitsAndValues)
{
    check_forced(6, 45, 0,
                 {{"frame_packing_arrangement_cancel_flag", 0},
                  {"quincunx_sampling_flag", 0},
                  {"frame_packing_arrangement_type", 5}});
    check_forced(6, 23, 0,
                 {{"tone_map_cancel_flag", 0},
                  {"tone_map_model_id", 4},
                  {"camera_iso_speed_idc", 255},
                  {"exposure_index_idc", 255}});
}

TEST(RareRoundTrip, OfPredictedHeadersOf3davcSlicesKeepsBitsAndValues)
{
    constexpr std::uint8_t enhanced_depth_high = 139;
    const forced_values predicted = {{"avc_3d_extension_flag", 1},        {"nal_ref_idc", 1},
                                     {"depth_view_present_flag", 1},      {"slice_header_prediction_flag", 1},
                                     {"pre_slice_header_src", 1},         {"pre_ref_lists_src", 0},
                                     {"weighted_pred_flag", 1},           {"weighted_bipred_idc", 1},
                                     {"pre_pred_weight_table_src", 0},    {"pre_dec_ref_pic_marking_src", 0},
                                     {"num_ref_idx_l0_active_minus1", 1}, {"num_ref_idx_l1_active_minus1", 2}};
    for (const std::int64_t slice_type : {0, 1, 3}) {
        forced_values values = predicted;
        values.emplace_back("slice_type", slice_type);
        check_forced(21, 0, enhanced_depth_high, values);
        values.emplace_back("pre_pred_weight_table_src", 1);
        values.emplace_back("pre_dec_ref_pic_marking_src", 1);
        check_forced(21, 0, enhanced_depth_high, values);
    }
}

} // namespace
