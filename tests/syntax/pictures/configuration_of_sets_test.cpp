// The decoder configuration record that is made of parameter sets: what it takes from them, and when there is none.
#include "support/sets_of_stream.h"

#include <orv-utils-v4/h264_legacy.h>

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;
using support::copies_of;
using support::pps_bytes;
using support::sps_bytes;
using support::sps_extension_bytes;
using support::subset_sps_bytes;
using support::unit_list;
using why = configuration_reason;
using sps = seq_parameter_set_data;

class ConfigurationOfSets : public testing::Test {
protected:
    void push(const unit_list& units)
    {
        for (const bytes& unit : units)
            store.push(unit_view{unit.data(), unit.size()});
    }
    /// SPSs with the ids 0, 1, ...
    void push(std::initializer_list<sps> list)
    {
        std::uint32_t id = 0;
        for (sps one : list) {
            one.seq_parameter_set_id = id++;
            push(unit_list{sps_bytes(one)});
        }
    }
    configuration_reason make(unsigned length_size = 4)
    {
        return make_configuration(record, store.all(), length_size).why;
    }

    parameter_set_store store;
    AVCDecoderConfigurationRecord record;
};

sps of_profile(std::uint8_t profile_idc, std::uint8_t level_idc = 30)
{
    sps made = sps_data();
    made.profile_idc = profile_idc;
    made.level_idc = level_idc;
    return made;
}

TEST_F(ConfigurationOfSets, TheFirstBytesAreThoseOfTheSps)
{
    sps one = of_profile(100, 41);
    one.constraint_set1_flag = one.constraint_set5_flag = true;
    one.chroma_format_idc = 1;
    one.bit_depth_luma_minus8 = 2;
    one.bit_depth_chroma_minus8 = 1;
    push({one});
    push(unit_list{pps_bytes(), pps_bytes(1), sps_extension_bytes()});
    EXPECT_EQ(make(2), why::none);
    EXPECT_EQ(record.configurationVersion, 1);
    EXPECT_EQ(record.AVCProfileIndication, 100);
    EXPECT_EQ(record.profile_compatibility, 0x44);
    EXPECT_EQ(record.AVCLevelIndication, 41);
    EXPECT_EQ(record.lengthSizeMinusOne, 1);
    EXPECT_EQ(copies_of(record.sequenceParameterSetNALUnit), unit_list{sps_bytes(one)});
    EXPECT_EQ(copies_of(record.pictureParameterSetNALUnit), (unit_list{pps_bytes(), pps_bytes(1)}));
    EXPECT_TRUE(record.extension_present);
    EXPECT_EQ(record.chroma_format, 1);
    EXPECT_EQ(record.bit_depth_luma_minus8, 2);
    EXPECT_EQ(record.bit_depth_chroma_minus8, 1);
    EXPECT_EQ(copies_of(record.sequenceParameterSetExtNALUnit), unit_list{sps_extension_bytes()});
}

TEST_F(ConfigurationOfSets, OldProfilesHaveNoExtension)
{
    for (const std::uint8_t profile : bytes{66, 77, 88}) {
        push({of_profile(profile)});
        push(unit_list{sps_extension_bytes()});
        EXPECT_EQ(make(), why::none);
        EXPECT_FALSE(record.extension_present) << int{profile};
        EXPECT_TRUE(record.sequenceParameterSetExtNALUnit.empty());
    }
}

TEST_F(ConfigurationOfSets, LengthPrefixesHaveOneTwoOrFourBytes)
{
    push({of_profile(77)});
    for (const unsigned size : {1U, 2U, 4U}) {
        EXPECT_EQ(make(size), why::none);
        EXPECT_EQ(record.lengthSizeMinusOne, size - 1);
    }
    for (const unsigned size : {0U, 3U, 5U, 257U})
        EXPECT_EQ(make(size), why::wrong_length_size) << size;
}

TEST_F(ConfigurationOfSets, ACompatibilityFlagIsSetWhereAllSetIt)
{
    sps one = of_profile(77);
    sps other = of_profile(77);
    one.constraint_set0_flag = one.constraint_set1_flag = true;
    other.constraint_set1_flag = other.constraint_set2_flag = true;
    push({one, other});
    EXPECT_EQ(make(), why::none);
    EXPECT_EQ(record.profile_compatibility, 0x40);
}

TEST_F(ConfigurationOfSets, TheLevelIsTheHighest)
{
    struct row {
        std::uint8_t profile;
        std::uint8_t first;
        std::uint8_t second;
        bool second_is_1b; // by constraint_set3_flag
        std::uint8_t highest;
    };
    for (const row& r : {row{77, 30, 41, false, 41}, row{77, 41, 30, false, 41}, row{100, 9, 10, false, 9},
                         row{100, 10, 9, false, 9}, row{100, 9, 11, false, 11}, row{100, 11, 9, false, 11},
                         row{66, 10, 11, true, 11}, row{66, 12, 11, true, 12}, row{66, 9, 10, false, 10}}) {
        parameter_set_store sets;
        sps first = of_profile(r.profile, r.first);
        sps second = of_profile(r.profile, r.second);
        second.seq_parameter_set_id = 1;
        second.constraint_set3_flag = r.second_is_1b;
        for (const bytes& unit : {sps_bytes(first), sps_bytes(second)})
            sets.push(unit_view{unit.data(), unit.size()});
        ASSERT_TRUE(make_configuration(record, sets.all(), 4).sound());
        EXPECT_EQ(record.AVCLevelIndication, r.highest)
            << int{r.profile} << " " << int{r.first} << " " << int{r.second};
    }
}

TEST_F(ConfigurationOfSets, SpssThatOneRecordCannotDescribeAreRefused)
{
    const sps base = of_profile(100);
    sps chroma = base;
    chroma.chroma_format_idc = 0;
    sps luma_depth = base;
    luma_depth.bit_depth_luma_minus8 = 1;
    sps chroma_depth = base;
    chroma_depth.bit_depth_chroma_minus8 = 1;
    sps colour = base;
    colour.vui_parameters_present_flag = colour.vui_parameters.video_signal_type_present_flag =
        colour.vui_parameters.colour_description_present_flag = true;
    for (std::uint8_t vui_parameters::*member :
         {&vui_parameters::colour_primaries, &vui_parameters::transfer_characteristics,
          &vui_parameters::matrix_coefficients}) {
        sps other = colour;
        other.vui_parameters.*member = 9;
        push({base, other});
        EXPECT_EQ(make(), why::colours_differ);
    }
    push({base, colour}); // it says "unspecified", as what is not sent is
    EXPECT_EQ(make(), why::none);
    push({base, of_profile(110)});
    EXPECT_EQ(make(), why::profiles_differ);
    push({base, chroma});
    EXPECT_EQ(make(), why::chroma_formats_differ);
    push({base, luma_depth});
    EXPECT_EQ(make(), why::bit_depths_differ);
    push({base, chroma_depth});
    const configuration_outcome result = make_configuration(record, store.all(), 4);
    EXPECT_EQ(result.why, why::bit_depths_differ);
    EXPECT_STREQ(result.element.name(), "sequenceParameterSetNALUnit");
    EXPECT_EQ(result.element.index(0), 1U);
    EXPECT_TRUE(record == AVCDecoderConfigurationRecord());
}

TEST_F(ConfigurationOfSets, WithoutAnSpsThereIsNone)
{
    EXPECT_EQ(make(), why::no_sps);
    push(unit_list{pps_bytes(), subset_sps_bytes()});
    EXPECT_EQ(make(), why::no_sps);
}

TEST_F(ConfigurationOfSets, SetsOfOtherLayersAreLeftOut)
{
    push(unit_list{sps_bytes(), subset_sps_bytes(0), subset_sps_bytes(1), pps_bytes(0, 0), pps_bytes(1, 1)});
    EXPECT_EQ(make(), why::none);
    EXPECT_EQ(copies_of(record.sequenceParameterSetNALUnit), unit_list{sps_bytes()});
    EXPECT_EQ(copies_of(record.pictureParameterSetNALUnit), unit_list{pps_bytes()});
}

TEST_F(ConfigurationOfSets, TheSetsOfOneSpsMakeARecordOfTheirOwn)
{
    push({of_profile(77), of_profile(100)});
    push(unit_list{pps_bytes(0, 0), pps_bytes(1, 1)});
    EXPECT_EQ(make(), why::profiles_differ);
    EXPECT_TRUE(make_configuration(record, store.of_sps(1), 4).sound());
    EXPECT_EQ(record.AVCProfileIndication, 100);
    EXPECT_EQ(copies_of(record.pictureParameterSetNALUnit), unit_list{pps_bytes(1, 1)});
}

TEST_F(ConfigurationOfSets, ThirtyOneSpssFitAndThirtyTwoDoNot)
{
    for (std::uint32_t id = 0; id < 31; ++id)
        push(unit_list{sps_bytes(sps_data(id))});
    EXPECT_EQ(make(), why::none);
    EXPECT_EQ(record.sequenceParameterSetNALUnit.size(), 31U);
    push(unit_list{sps_bytes(sps_data(31))});
    EXPECT_EQ(make(), why::too_many_sps);
}

TEST_F(ConfigurationOfSets, TwoHundredAndFiftyFivePpssFitAndOneMoreDoesNot)
{
    push({of_profile(77)});
    for (std::uint32_t id = 1; id < 256; ++id)
        push(unit_list{pps_bytes(id)});
    EXPECT_EQ(make(), why::none);
    EXPECT_EQ(record.pictureParameterSetNALUnit.size(), 255U);
    push(unit_list{pps_bytes(0)});
    EXPECT_EQ(make(), why::too_many_pps);
}

TEST_F(ConfigurationOfSets, WhatIsNoSpsOrHasNoFormatIsRefused)
{
    const bytes cut = {0x67, 77, 0};
    parameter_set_list list;
    list.grow();
    list.back() = {cut.data(), cut.size()};
    EXPECT_EQ(make_configuration(record, list, 4).why, why::unreadable_set);
    sps no_format = of_profile(100);
    no_format.chroma_format_idc = 257; // a finding: it can be read
    push({no_format});
    EXPECT_EQ(make(), why::unreadable_set);
}

TEST_F(ConfigurationOfSets, ASetLongerThanARecordHoldsIsRefusedInWriting)
{
    bytes set = sps_bytes();
    set.resize(AVCDecoderConfigurationRecord::most_set_bytes, 0xFF);
    push(unit_list{set});
    EXPECT_EQ(make(), why::none);
    EXPECT_EQ(write(record, nullptr, 0).why, why::no_room);
    set.resize(set.size() + 1, 0xFF);
    push(unit_list{set});
    EXPECT_EQ(make(), why::none);
    EXPECT_EQ(write(record, nullptr, 0).why, why::set_too_long);
}

/// The units of a list, which lies in a record of the legacy interface.
unit_list units_between(const unsigned char* at, const unsigned char* end)
{
    return support::units_in({at, end}, framing::length_2);
}

// What orv-h264 avcc stands on reads of the record what was put into it.
TEST_F(ConfigurationOfSets, TheRecordsOfRealStreamsAreReadByTheLegacyInterface)
{
    std::size_t made = 0;
    for (const auto& path : support::all_annexb_files()) {
        parameter_set_store sets;
        for (const bytes& unit : support::units_in(support::read_file(path)))
            sets.push(unit_view{unit.data(), unit.size()});
        if (!make_configuration(record, sets.all(), 4).sound())
            continue;
        ++made;
        bytes out(write(record, nullptr, 0).bytes);
        ASSERT_TRUE(write(record, out.data(), out.size()).sound()) << path;
        h264_AVCDecoderConfigurationRecord legacy;
        ASSERT_EQ(h264_AVCDecoderConfigurationRecord_parse(&legacy, out.data(), out.data() + out.size()), 0) << path;
        EXPECT_EQ(legacy.configurationVersion, 1U);
        EXPECT_EQ(legacy.AVCProfileIndication, record.AVCProfileIndication);
        EXPECT_EQ(legacy.profile_compatibility, record.profile_compatibility);
        EXPECT_EQ(legacy.AVCLevelIndication, record.AVCLevelIndication);
        EXPECT_EQ(legacy.lengthSizeMinusOne, 3U);
        EXPECT_EQ(units_between(legacy.sps_list, legacy.sps_list_end), copies_of(record.sequenceParameterSetNALUnit));
        EXPECT_EQ(units_between(legacy.pps_list, legacy.pps_list_end), copies_of(record.pictureParameterSetNALUnit));
        AVCDecoderConfigurationRecord again;
        EXPECT_TRUE(read(again, out.data(), out.size()).sound());
        parameter_set_store from_record;
        EXPECT_EQ(from_record.push(again), 0U);
        const parameter_set_list all = sets.all();
        const bool other_layers =
            std::any_of(all.begin(), all.end(), [](const unit_view& u) { return u.type() == 15; });
        EXPECT_TRUE(other_layers || copies_of(from_record.all()) == copies_of(all)) << path;
    }
    EXPECT_GE(made, 14U);
}

} // namespace
