// What an annotated trace says beyond the elements: scaling lists, clock timestamps, whose user data are.
#include "annotated_trace.h"

#include "support/annotated_notes.h"
#include "support/told_elements.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using support::lines;
using support::noted_trace;

/// The facts among the lines.
lines facts_of(const noted_trace& t)
{
    lines facts;
    for (const std::string& line : t.notes.lines)
        if (line.starts_with("= "))
            facts.push_back(line);
    return facts;
}

void tell_list(orv_h264::annotated_trace& trace, const std::vector<int>& deltas)
{
    trace.open("scaling_list");
    for (std::size_t j = 0; j < deltas.size(); ++j)
        trace.element(told::se({"delta_scale", j}, deltas[j]));
    trace.close();
}

/// A list behind its flag, in an SPS.
void tell_list(orv_h264::annotated_trace& trace, std::uint64_t index, const std::vector<int>& deltas)
{
    trace.element(told::u(1, {"seq_scaling_list_present_flag", index}, 1));
    tell_list(trace, deltas);
}

std::string json_list(std::size_t size, const std::string& entry)
{
    std::string list = "= list [" + entry;
    for (std::size_t j = 1; j < size; ++j)
        list += "," + entry;
    return list + "]";
}

TEST(AnnotatedTraceFacts, AListWhoseFirstDeltaGivesZeroIsTheDefaultOne)
{
    noted_trace t;
    t.trace.open("seq_parameter_set_data");
    tell_list(t.trace, 0, {-8});
    EXPECT_EQ(facts_of(t), (lines{"= list \"default\""}));
    EXPECT_EQ(t.notes.texts, (lines{"the default list"}));
}

TEST(AnnotatedTraceFacts, AFullListHasAnEntryForEachDelta)
{
    noted_trace t;
    t.trace.open("seq_parameter_set_data");
    tell_list(t.trace, 5, {2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, -5});
    EXPECT_EQ(facts_of(t), (lines{"= list [10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,19]"}));
}

TEST(AnnotatedTraceFacts, ADeltaThatGivesZeroRepeatsTheEntryBeforeItToTheEnd)
{
    noted_trace t;
    t.trace.open("seq_parameter_set_data");
    tell_list(t.trace, 0, {2, -10});
    EXPECT_EQ(facts_of(t), (lines{json_list(16, "10")}));
    EXPECT_EQ(t.notes.texts, (lines{"10 10 10 10 10 10 10 10 10 10 10 10 10 10 10 10"}));
}

TEST(AnnotatedTraceFacts, EntriesAreModulo256)
{
    noted_trace t;
    t.trace.open("seq_parameter_set_data");
    tell_list(t.trace, 0, {-128, -136});
    EXPECT_EQ(facts_of(t), (lines{json_list(16, "136")}));
}

TEST(AnnotatedTraceFacts, FromTheSeventhFlagOnListsHave64Entries)
{
    noted_trace t;
    t.trace.open("seq_parameter_set_data");
    tell_list(t.trace, 6, {0, -8});
    tell_list(t.trace, 5, {1, -9});
    t.trace.element(told::u(1, {"pic_scaling_list_present_flag", 11}, 1));
    tell_list(t.trace, {2, -10});
    EXPECT_EQ(facts_of(t), (lines{json_list(64, "8"), json_list(16, "9"), json_list(64, "10")}));
}

TEST(AnnotatedTraceFacts, NothingIsSaidOfAListThatIsCut)
{
    noted_trace t;
    t.trace.open("seq_parameter_set_data");
    tell_list(t.trace, 0, {});
    tell_list(t.trace, 1, {1, 1, 1});
    EXPECT_EQ(facts_of(t), lines{});
}

void tell_flag(orv_h264::annotated_trace& trace, std::uint64_t index, bool flag)
{
    trace.element(told::u(1, {"clock_timestamp_flag", index}, flag));
}

/// The parts of a timestamp in the order of its table; -1 is not sent.
void tell_timestamp(orv_h264::annotated_trace& trace, std::uint64_t index, int frames, int seconds, int minutes,
                    int hours)
{
    tell_flag(trace, index, true);
    trace.element(told::u(8, "n_frames", frames));
    if (seconds >= 0)
        trace.element(told::u(6, "seconds_value", seconds));
    if (minutes >= 0)
        trace.element(told::u(6, "minutes_value", minutes));
    if (hours >= 0)
        trace.element(told::u(5, "hours_value", hours));
}

TEST(AnnotatedTraceFacts, AWholeTimestampIsATimeOfDay)
{
    noted_trace t;
    t.trace.open("pic_timing");
    tell_timestamp(t.trace, 0, 4, 3, 2, 1);
    t.trace.close();
    EXPECT_EQ(t.notes.lines.end()[-2], "= time [\"01:02:03:04\"]");
    EXPECT_EQ(t.notes.texts, (lines{"01:02:03:04"}));
}

TEST(AnnotatedTraceFacts, NothingIsSaidOfATimestampWithoutAllOfItsParts)
{
    for (const int seconds : {-1, 3}) {
        noted_trace t;
        t.trace.open("pic_timing");
        tell_flag(t.trace, 0, false);
        tell_timestamp(t.trace, 1, 4, seconds, seconds < 0 ? -1 : 2, -1);
        t.trace.close();
        EXPECT_EQ(facts_of(t), lines{});
    }
}

TEST(AnnotatedTraceFacts, EachTimestampOfAMessageHasItsTime)
{
    noted_trace t;
    t.trace.open("pic_timing");
    tell_timestamp(t.trace, 0, 255, 59, 59, 23);
    tell_timestamp(t.trace, 1, 4, 3, -1, -1);
    tell_timestamp(t.trace, 2, 0, 0, 0, 0);
    t.trace.close();
    EXPECT_EQ(facts_of(t), (lines{R"(= time ["23:59:59:255",null,"00:00:00:00"])"}));
    EXPECT_EQ(t.notes.texts, (lines{"23:59:59:255, 00:00:00:00"}));
}

TEST(AnnotatedTraceFacts, ATimestampTakesNothingFromTheMessageBefore)
{
    noted_trace t;
    t.trace.open("pic_timing");
    tell_timestamp(t.trace, 0, 4, 3, 2, 1);
    t.trace.close();
    t.trace.open("pic_timing");
    tell_timestamp(t.trace, 0, 4, 3, 2, -1);
    t.trace.close();
    EXPECT_EQ(facts_of(t).size(), 1U);
}

/// User data, their country code first.
void tell_user_data(orv_h264::annotated_trace& trace, const std::vector<unsigned char>& bytes)
{
    trace.open("user_data_registered_itu_t_t35");
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 0)
            trace.element(told::b("itu_t_t35_country_code", bytes[0]));
        else
            trace.element(told::b({"itu_t_t35_payload_byte", i}, bytes[i]));
    }
    trace.close();
}

TEST(AnnotatedTraceFacts, RegisteredUserDataSayWhoRegisteredThem)
{
    noted_trace t;
    tell_user_data(t.trace, {0xB5, 0x00, 0x31, 'G', 'A', '9', '4', 3});
    EXPECT_EQ(facts_of(t), (lines{R"(= registered_for "ATSC")"}));
    EXPECT_EQ(t.notes.texts, (lines{"registered for ATSC"}));
}

TEST(AnnotatedTraceFacts, UserDataThatAreCutTakeNothingFromTheMessageBefore)
{
    for (const std::vector<unsigned char>& cut : {std::vector<unsigned char>{}, {0xB5}, {0xB5, 0}}) {
        noted_trace t;
        tell_user_data(t.trace, {0xB5, 0x00, 0x31, 'G', 'A', '9', '4', 3});
        tell_user_data(t.trace, cut);
        EXPECT_EQ(facts_of(t).size(), 1U) << cut.size();
    }
}

} // namespace
