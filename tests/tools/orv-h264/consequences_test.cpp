#include "consequences.h"

#include "support/framed_unit.h"
#include "support/small_units.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;

/// What follows from the last of some units, by name.
struct last_facts final : unit_sink {
    void take(const unit_reading& reading) override
    {
        json.clear();
        text.clear();
        for (const orv_h264::fact& what : orv_h264::consequences_of(reading)) {
            json[std::string(what.name)] = what.json;
            text[std::string(what.name)] = what.text;
        }
    }

    std::map<std::string, std::string> json;
    std::map<std::string, std::string> text;
};

last_facts facts_of(const std::vector<std::vector<unsigned char>>& units)
{
    last_facts facts;
    stream reader;
    std::uint64_t number = 0;
    for (const std::vector<unsigned char>& unit : units)
        reader.push({unit.data(), unit.size(), 0, number++}, facts);
    reader.flush(facts);
    return facts;
}

last_facts facts_of(const seq_parameter_set_data& sps)
{
    return facts_of({bytes_of(sps_unit(sps))});
}

TEST(Consequences, AnSpsSaysProfileLevelCodecAndSize)
{
    const last_facts facts = facts_of(sps_data(0, 120, 68));
    const std::map<std::string, std::string> json = {{"profile", "\"Main\""},
                                                     {"level", "\"3\""},
                                                     {"codec", "\"avc1.4D001E\""},
                                                     {"cropped_width", "1920"},
                                                     {"cropped_height", "1088"}};
    const std::map<std::string, std::string> text = {{"profile", "profile Main"},
                                                     {"level", "level 3"},
                                                     {"codec", "codec avc1.4D001E"},
                                                     {"cropped_width", ""},
                                                     {"cropped_height", "cropped size 1920x1088"}};
    EXPECT_EQ(facts.json, json);
    EXPECT_EQ(facts.text, text);
}

TEST(Consequences, Level1bIsKnownByItsFlag)
{
    seq_parameter_set_data sps = sps_data();
    sps.level_idc = 11;
    EXPECT_EQ(facts_of(sps).text["level"], "level 1.1");
    sps.constraint_set3_flag = true;
    EXPECT_EQ(facts_of(sps).text["level"], "level 1b");
    EXPECT_EQ(facts_of(sps).json["level"], "\"1b\"");
}

TEST(Consequences, AProfileOrLevelWithoutANameIsLeftOut)
{
    seq_parameter_set_data sps = sps_data();
    sps.profile_idc = 1;
    sps.level_idc = 99;
    const last_facts facts = facts_of(sps);
    EXPECT_FALSE(facts.json.contains("profile"));
    EXPECT_FALSE(facts.json.contains("level"));
    EXPECT_EQ(facts.text.at("codec"), "codec avc1.010063");
}

TEST(Consequences, CroppingMayLeaveNothing)
{
    seq_parameter_set_data sps = sps_data(0, 4, 3);
    sps.frame_cropping_flag = true;
    sps.frame_crop_right_offset = 31;
    EXPECT_EQ(facts_of(sps).text["cropped_height"], "cropped size 2x48");
    sps.frame_crop_right_offset = 32;
    EXPECT_EQ(facts_of(sps).text["cropped_height"], "coded size 64x48, cropped to nothing");
    EXPECT_EQ(facts_of(sps).json["cropped_width"], "0");
    EXPECT_EQ(facts_of(sps).json["cropped_height"], "0");
}

/// An SPS of so many fields a second.
seq_parameter_set_data with_rate(std::uint32_t num_units_in_tick, std::uint32_t time_scale)
{
    seq_parameter_set_data sps = sps_data();
    sps.vui_parameters_present_flag = true;
    sps.vui_parameters.timing_info_present_flag = true;
    sps.vui_parameters.num_units_in_tick = num_units_in_tick;
    sps.vui_parameters.time_scale = time_scale;
    return sps;
}

TEST(Consequences, TheFieldRateIsAReducedFractionWithItsValueRounded)
{
    last_facts facts = facts_of(with_rate(1001, 60000));
    EXPECT_EQ(facts.json["field_rate"], R"({"numerator":60000,"denominator":1001,"value":59.94006})");
    EXPECT_EQ(facts.text["field_rate"], "field rate 59.94006 Hz");
    facts = facts_of(with_rate(40, 2000));
    EXPECT_EQ(facts.json["field_rate"], R"({"numerator":50,"denominator":1,"value":50})");
    EXPECT_EQ(facts.text["field_rate"], "field rate 50 Hz");
}

TEST(Consequences, AFieldRateOfZeroOrOverZeroIsLeftOut)
{
    EXPECT_FALSE(facts_of(with_rate(0, 0)).json.contains("field_rate"));
    EXPECT_FALSE(facts_of(with_rate(0, 50)).json.contains("field_rate"));
    EXPECT_FALSE(facts_of(with_rate(1, 0)).json.contains("field_rate"));
    seq_parameter_set_data sps = with_rate(1, 50);
    sps.vui_parameters_present_flag = false;
    EXPECT_FALSE(facts_of(sps).json.contains("field_rate"));
}

TEST(Consequences, EachScheduleOfAnHrdHasItsRateAndBuffer)
{
    seq_parameter_set_data sps = timed_sps_data(0, 8);
    hrd_parameters& hrd = sps.vui_parameters.nal_hrd_parameters;
    hrd.cpb_cnt_minus1 = 1;
    hrd.bit_rate_scale = 1;
    hrd.cpb_size_scale = 2;
    hrd.bit_rate_value_minus1[0] = 9;
    hrd.cpb_size_value_minus1[0] = 4;
    hrd.bit_rate_value_minus1[1] = 4294967294;
    hrd.cpb_size_value_minus1[1] = 5;
    hrd.cbr_flag[1] = true;
    last_facts facts = facts_of(sps);
    EXPECT_EQ(facts.json["nal_hrd"], R"([{"bit_rate":1280,"cpb_size":320,"cbr":false},)"
                                     R"({"bit_rate":549755813760,"cpb_size":384,"cbr":true}])");
    EXPECT_EQ(facts.text["nal_hrd"], "NAL HRD: 1280 bit/s at most, buffer of 320 bits; "
                                     "549755813760 bit/s constant, buffer of 384 bits");
    EXPECT_FALSE(facts.json.contains("vcl_hrd"));
}

TEST(Consequences, TheVclHrdIsToldLikewise)
{
    seq_parameter_set_data sps = timed_sps_data(0, 8);
    sps.vui_parameters.vcl_hrd_parameters_present_flag = true;
    sps.vui_parameters.vcl_hrd_parameters = sps.vui_parameters.nal_hrd_parameters;
    last_facts facts = facts_of(sps);
    EXPECT_EQ(facts.text["vcl_hrd"], "VCL HRD: 64 bit/s at most, buffer of 16 bits");
}

TEST(Consequences, ASubsetSpsIsToldLikeAnSps)
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data(0, 2, 2);
    EXPECT_EQ(facts_of({bytes_of(unit_of(15, subset))}).text["cropped_height"], "cropped size 32x32");
}

/// A slice behind its sets, which have the ids 3 and 7.
std::vector<std::vector<unsigned char>> sets_and_slice(unsigned nal_unit_type)
{
    small_sets sets;
    sets.sps.seq_parameter_set_data.seq_parameter_set_id = 3;
    sets.pps = pps_rbsp(7, 3);
    sets.sets.sps[0] = nullptr;
    sets.sets.pps[0] = nullptr;
    sets.sets.sps[3] = &sets.sps;
    sets.sets.pps[7] = &sets.pps;
    return {bytes_of(sps_unit(sps_data(3))), bytes_of(pps_unit(7, 3)),
            bytes_of(slice_unit(nal_unit_type, 7), sets.context)};
}

TEST(Consequences, ASliceSaysWhichSetsItStandsOn)
{
    last_facts facts = facts_of(sets_and_slice(1));
    EXPECT_EQ(facts.json, (std::map<std::string, std::string>{{"pps_id", "7"}, {"sps_id", "3"}}));
    EXPECT_EQ(facts.text["sps_id"], "stands on PPS 7 and SPS 3");
}

TEST(Consequences, ASliceOfAnIdrPictureSaysSo)
{
    last_facts facts = facts_of(sets_and_slice(5));
    EXPECT_EQ(facts.json["IdrPicFlag"], "1");
    EXPECT_EQ(facts.text["IdrPicFlag"], "IDR picture");
}

TEST(Consequences, OfUnitsThatFailedNothingFollows)
{
    std::vector<std::vector<unsigned char>> units = sets_and_slice(5);
    for (std::vector<unsigned char>& unit : units) {
        std::vector<std::vector<unsigned char>> with_cut = units;
        with_cut.push_back(unit);
        with_cut.back().resize(2);
        EXPECT_TRUE(facts_of(with_cut).json.empty()) << int{unit[0]};
    }
    EXPECT_TRUE(facts_of({units[2]}).json.empty()) << "a slice without its sets";
}

TEST(Consequences, OfOtherUnitsNothingFollows)
{
    std::vector<std::vector<unsigned char>> units = sets_and_slice(5);
    EXPECT_TRUE(facts_of({units[0], units[1]}).json.empty());
    units.push_back({6, 13, 1, 0xC0, 0x80});
    EXPECT_TRUE(facts_of(units).json.empty()) << "SEI";
}

} // namespace
