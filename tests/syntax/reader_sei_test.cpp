// Reading SEI units: a failure ends its payload alone, and what bounds messages and nesting.
#include "support/small_units.h"
#include "support/told_reading.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

struct sei_reading {
    std::vector<sei_message> messages;
    outcome result;
};

sei_reading read_sei(const bytes& rbsp, const unit_context& context = {})
{
    bytes unit = {6};
    unit.insert(unit.end(), rbsp.begin(), rbsp.end());
    const told_reading r = read_of(unit, context);
    return {std::get<sei_rbsp>(r.unit.rbsp).sei_messages, r.result};
}

const recovery_point& recovery(const sei_message& m)
{
    return std::get<recovery_point>(m.payload);
}

// recovery_frame_cnt 2, both flags 0, changing_slice_group_idc 0, alignment: 011 0 0 00 1
constexpr unsigned char recovery_of_2 = 0x61;

TEST(ReaderSei, AFailureInAPayloadEndsThatPayloadAlone)
{
    const sei_reading r = read_sei({6, 1, 0x01, 6, 1, recovery_of_2, 0x80});
    EXPECT_EQ(r.result.failure.why, reason::payload_ends);
    EXPECT_STREQ(r.result.failure.element.name(), "recovery_frame_cnt");
    EXPECT_EQ(r.result.failure.bit, 24U);
    EXPECT_EQ(r.result.ending, ending::sound);
    ASSERT_EQ(r.messages.size(), 2U);
    EXPECT_EQ(recovery(r.messages[0]).recovery_frame_cnt, 0U);
    EXPECT_EQ(recovery(r.messages[1]).recovery_frame_cnt, 2U);
}

TEST(ReaderSei, TheFirstOfSeveralFailuresIsKept)
{
    const sei_reading r = read_sei({1, 1, 0x55, 6, 1, 0x01, 6, 1, recovery_of_2, 0x80});
    EXPECT_EQ(r.result.failure.why, reason::no_sps);
    ASSERT_EQ(r.messages.size(), 3U);
    EXPECT_EQ(recovery(r.messages[2]).recovery_frame_cnt, 2U);
}

TEST(ReaderSei, APayloadLongerThanTheUnitIsTold)
{
    const sei_reading r = read_sei({4, 9, 0xB5, 1, 2, 0x80});
    EXPECT_EQ(r.result.failure.why, reason::unit_ends);
    EXPECT_STREQ(r.result.failure.element.name(), "payload_size");
    EXPECT_EQ(r.result.failure.value, 9);
    EXPECT_EQ(r.result.failure.bound, 4);
    ASSERT_EQ(r.messages.size(), 1U);
    EXPECT_EQ(r.messages[0].payload_size, 9U);
    EXPECT_EQ(std::get<user_data_registered_itu_t_t35>(r.messages[0].payload).itu_t_t35_country_code, 0xB5);
}

TEST(ReaderSei, TypesAndSizesAbove254AreSums)
{
    bytes rbsp = {0xFF, 0xFF, 90, 0xFF, 3};
    rbsp.insert(rbsp.end(), 258, 0x77);
    rbsp.push_back(0x80);
    const sei_reading r = read_sei(rbsp);
    EXPECT_FALSE(r.result.failure);
    ASSERT_EQ(r.messages.size(), 1U);
    EXPECT_EQ(r.messages[0].payload_type, 600U);
    EXPECT_EQ(r.messages[0].payload_size, 258U);
}

TEST(ReaderSei, AUnitCutInTypeOrSizeEnds)
{
    for (const bytes& rbsp : {bytes{0xFF, 0xFF}, bytes{6}, bytes{6, 0xFF}}) {
        const sei_reading r = read_sei(rbsp);
        EXPECT_EQ(r.result.failure.why, reason::unit_ends) << testing::PrintToString(rbsp);
        EXPECT_EQ(r.messages.size(), 1U);
    }
}

TEST(ReaderSei, AUnitWithoutAMessageFails)
{
    const sei_reading r = read_sei({0x80});
    EXPECT_EQ(r.result.failure.why, reason::too_small);
    EXPECT_STREQ(r.result.failure.element.name(), "sei_message");
    EXPECT_EQ(read_sei({}).messages.size(), 0U);
}

TEST(ReaderSei, BytesBehindAPayloadsOwnSyntaxAreKept)
{
    const sei_reading r = read_sei({6, 3, recovery_of_2, 0xAA, 0xBB, 0x80});
    EXPECT_FALSE(r.result.failure);
    ASSERT_EQ(r.messages.size(), 1U);
    EXPECT_EQ(recovery(r.messages[0]).recovery_frame_cnt, 2U);
    EXPECT_EQ(r.messages[0].rest, (std::vector<std::uint8_t>{0xAA, 0xBB}));
}

TEST(ReaderSei, AThousandAndTwentyFourMessagesAreReadAndNoMore)
{
    bytes rbsp;
    for (std::size_t i = 0; i < sei_rbsp::most_messages; ++i)
        rbsp.insert(rbsp.end(), {3, 0});
    bytes more = rbsp;
    rbsp.push_back(0x80);
    more.insert(more.end(), {3, 0, 0x80});
    const sei_reading most = read_sei(rbsp);
    EXPECT_FALSE(most.result.failure);
    EXPECT_EQ(most.messages.size(), 1024U);
    const sei_reading beyond = read_sei(more);
    EXPECT_EQ(beyond.result.failure.why, reason::too_large);
    EXPECT_STREQ(beyond.result.failure.element.name(), "sei_message");
    EXPECT_EQ(beyond.result.failure.value, 1025);
    EXPECT_EQ(beyond.result.failure.bound, 1024);
    EXPECT_EQ(beyond.messages.size(), 1024U);
}

/// A recovery point inside `depth` scalable nesting messages, all_layer_representations_in_au_flag set in each: 1, then
/// seven alignment bits.
bytes nested(unsigned depth)
{
    bytes message = {6, 1, recovery_of_2};
    for (unsigned i = 0; i < depth; ++i) {
        bytes outer = {30, static_cast<unsigned char>(message.size() + 1), 0x80};
        outer.insert(outer.end(), message.begin(), message.end());
        message = outer;
    }
    message.push_back(0x80);
    return message;
}

TEST(ReaderSei, NestingGoesTwoDeep)
{
    for (unsigned depth = 0; depth <= 2; ++depth)
        EXPECT_FALSE(read_sei(nested(depth)).result.failure) << depth;
    for (const unsigned depth : {3U, 50U}) {
        const sei_reading r = read_sei(nested(depth));
        EXPECT_EQ(r.result.failure.why, reason::too_large) << depth;
        EXPECT_STREQ(r.result.failure.element.name(), "sei_message");
        EXPECT_EQ(r.result.failure.value, 3);
        EXPECT_EQ(r.result.failure.bound, 2);
        EXPECT_EQ(r.result.ending, ending::sound);
    }
}

TEST(ReaderSei, ABufferingPeriodOfAnSpsThatIsNotThereFails)
{
    const sei_reading r = read_sei({0, 1, 0x28, 0x80}); // id 4
    EXPECT_EQ(r.result.failure.why, reason::no_sps);
    EXPECT_EQ(r.result.failure.value, 4);
    EXPECT_EQ(r.result.failure.bit, 24U);
}

TEST(ReaderSei, AReservedPicStructEndsItsPayload)
{
    seq_parameter_set_data sps = sps_data();
    sps.vui_parameters_present_flag = sps.vui_parameters.pic_struct_present_flag = true;
    unit_context context;
    context.active_sps = &sps;
    const sei_reading r = read_sei({1, 1, 0x98, 6, 1, recovery_of_2, 0x80}, context);
    EXPECT_EQ(r.result.failure.why, reason::too_large);
    EXPECT_STREQ(r.result.failure.element.name(), "pic_struct");
    EXPECT_EQ(r.result.failure.value, 9);
    ASSERT_EQ(r.messages.size(), 2U);
    EXPECT_EQ(recovery(r.messages[1]).recovery_frame_cnt, 2U);
}

TEST(ReaderSei, ATypeThatNoNumberHoldsIsRefused)
{
    bytes unit(1 + 0xFFFFFFFF / 255 + 1, 0xFF); // 255 times as many is 2^32 + 254
    unit[0] = 6;
    unit.insert(unit.end(), {0, 0, 0x80});
    nal_unit made;
    outcome result;
    read(made, unit.data(), unit.size(), {}, result);
    EXPECT_EQ(result.failure.why, reason::too_large);
    EXPECT_STREQ(result.failure.element.name(), "last_payload_type_byte");
}

TEST(ReaderSei, WhatStandsOnAMissingParameterSetFailsAndNamesWhatItIsNeededFor)
{
    const auto check = [](unsigned char payload_type, unsigned char payload, reason why, const char* element) {
        const sei_reading r = read_sei({payload_type, 1, payload, 6, 1, recovery_of_2, 0x80});
        EXPECT_EQ(r.result.failure.why, why) << element;
        EXPECT_STREQ(r.result.failure.element.name(), element);
        ASSERT_EQ(r.messages.size(), 2U);
        EXPECT_EQ(recovery(r.messages[1]).recovery_frame_cnt, 2U);
    };
    check(7, 0x80, reason::no_sps, "original_idr_flag");
    check(8, 0xB5, reason::no_sps, "spare_area_idc"); // 1: a flag for each map unit
    check(18, 0x80, reason::no_pps, "num_slice_groups_in_set_minus1");
    check(42, 0x80, reason::no_sps, "seq_parameter_set_id");
    check(52, 0x80, reason::no_sps, "per_view_depth_timing_flag");
}

TEST(ReaderSei, FilmGrainHasTheRangeOfItsBitDepthWhereThatIsKnown)
{
    film_grain_characteristics grain;
    grain.components[0].comp_model_present_flag = true;
    grain.components[0].intervals.resize(1);
    grain.components[0].intervals[0].comp_model_value[0] = 256;
    const auto findings = [&](const unit_context& context) {
        const nal_unit unit = unit_of(6, sei_rbsp{{message_of(19, grain)}});
        const outcome result = read_of(written(unit, context), context).result;
        EXPECT_FALSE(result.failure);
        return result.finding_count;
    };
    const small_sets s;
    EXPECT_EQ(findings(s.context), 1U);
    EXPECT_EQ(findings({}), 0U);
    grain.separate_colour_description_present_flag = true;
    EXPECT_EQ(findings({}), 1U);
    grain.film_grain_bit_depth_luma_minus8 = 1;
    EXPECT_EQ(findings({}), 0U);
    grain.film_grain_bit_depth_luma_minus8 = 0;
    grain.film_grain_model_id = 2; // reserved: the finding is the model alone
    EXPECT_EQ(findings({}), 1U);
}

TEST(ReaderSei, ATargetBitDepthThatNoNumberHoldsEndsItsPayload)
{
    // tone_map_id 0, not cancelled, period 0, coded_data_bit_depth 8, target_bit_depth 64, tone_map_model_id 2
    const sei_reading r = read_sei({23, 3, 0xA1, 0x08, 0x0C, 0x80});
    EXPECT_EQ(r.result.failure.why, reason::payload_ends);
    EXPECT_STREQ(r.result.failure.element.name(), "start_of_coded_interval");
    EXPECT_TRUE(std::get<tone_mapping_info>(r.messages[0].payload).start_of_coded_interval.empty());
}

TEST(ReaderSei, AViewDependencyChangeOfASubsetSpsWithoutViewsHasNoFlags)
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data.profile_idc = 118;
    parameter_sets sets;
    sets.subset_sps[0] = &subset;
    unit_context context;
    context.sets = &sets;
    const sei_reading r = read_sei({42, 1, 0xF0, 0x80}, context); // both update flags are set
    EXPECT_FALSE(r.result.failure);
    const auto& change = std::get<view_dependency_change>(r.messages[0].payload);
    EXPECT_TRUE(change.anchor_update_flag && change.non_anchor_update_flag);
    EXPECT_TRUE(change.views.empty());
}

} // namespace
