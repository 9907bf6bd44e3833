// SEI units in a stream: held until it is known which SPS they are read with, and handed on in order.
#include "support/timed_stream.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

TEST(StreamSei, TheSliceBehindItTellsTheSps)
{
    for (const std::uint32_t id : {0U, 1U, 0U}) {
        timed_stream s;
        s.push_sets();
        s.push_timing(id);
        EXPECT_EQ(s.readings.size(), 4U) << "held";
        s.push_slice(5, id);
        s.expect_timing_read();
        EXPECT_EQ(s.order(), (std::vector<std::uint64_t>{0, 1, 2, 3, 4, 5}));
    }
}

TEST(StreamSei, EachAccessUnitHasItsOwnSps)
{
    timed_stream s;
    s.push_sets();
    for (const std::uint32_t id : {0U, 1U, 1U, 0U}) {
        s.push_timing(id);
        s.push_slice(5, id);
        s.expect_timing_read();
    }
}

TEST(StreamSei, ParameterSetsBehindItInTheSameAccessUnitCount)
{
    timed_stream s;
    s.push_timing(1);
    s.push_sets();
    EXPECT_TRUE(s.readings.empty());
    s.push_slice(5, 1);
    s.expect_timing_read();
    EXPECT_EQ(s.order(), (std::vector<std::uint64_t>{0, 1, 2, 3, 4, 5}));
}

TEST(StreamSei, ABufferingPeriodIsReadWithTheSpsThatItNames)
{
    for (const std::uint32_t id : {0U, 1U}) {
        timed_stream s;
        s.push_sets();
        s.push_slice(5, 0);
        s.push_period(id);
        s.push_slice(5, 0);
        const kept_reading& sei = s.readings[s.readings.size() - 2];
        EXPECT_EQ(sei.nal_unit_type, 6U);
        EXPECT_FALSE(sei.result.failure);
        const auto& period = std::get<buffering_period>(std::get<sei_rbsp>(sei.unit.rbsp).sei_messages[0].payload);
        EXPECT_EQ(period.nal[0].initial_cpb_removal_delay, 9U);
    }
}

TEST(StreamSei, ABufferingPeriodActivatesItsSpsWhereNoSliceIsKnown)
{
    timed_stream s;
    s.push_sets();
    s.push_period(1);
    s.push_timing(1);
    s.flush();
    s.expect_timing_read();
}

TEST(StreamSei, ABufferingPeriodActivatesItsSpsForTheTimingOfItsOwnUnit)
{
    for (const std::uint32_t id : {0U, 1U}) {
        seq_parameter_set_rbsp sps = {timed_sps_data(id, id == 0 ? 8 : 20)};
        parameter_sets sets;
        sets.sps[id] = &sps;
        unit_context context;
        context.sets = &sets;
        context.active_sps = &sps.seq_parameter_set_data;
        nal_unit unit = timing_unit();
        auto& messages = std::get<sei_rbsp>(unit.rbsp).sei_messages;
        messages.push_back(std::get<sei_rbsp>(period_unit(id).rbsp).sei_messages[0]);
        timed_stream s;
        s.push_sets();
        s.push(unit, context);
        s.flush();
        s.expect_timing_read();
        EXPECT_EQ(s.last().sps_width, 4U);
    }
}

TEST(StreamSei, AnEmptyBufferingPeriodActivatesNothing)
{
    timed_stream s;
    s.push_sets();
    s.push_bytes({6, 0, 0, 0x80});
    s.push_timing(0);
    s.flush();
    EXPECT_EQ(s.last().result.failure.why, reason::no_sps);
}

TEST(StreamSei, WithoutASliceTheActiveSpsCounts)
{
    timed_stream s;
    s.push_sets();
    s.push_slice(5, 1);
    s.push_timing(1);
    s.flush();
    s.expect_timing_read();
}

TEST(StreamSei, BeforeAnySliceTheOnlySpsCounts)
{
    timed_stream s;
    s.push(sps_unit(timed_sps_data(1, 20)));
    s.push_timing(1);
    s.flush();
    s.expect_timing_read();
}

TEST(StreamSei, WithoutAnSpsOrWithSeveralTheTimingFails)
{
    timed_stream none;
    none.push_timing(0);
    none.flush();
    EXPECT_EQ(none.last().result.failure.why, reason::no_sps);
    timed_stream several;
    several.push_sets();
    several.push_timing(0);
    several.flush();
    EXPECT_EQ(several.last().result.failure.why, reason::no_sps);
}

TEST(StreamSei, ADelimiterEndsWhatIsHeld)
{
    for (const unsigned type : {9U, 10U, 11U}) {
        timed_stream s;
        s.push_sets();
        s.push_slice(5, 0);
        s.push_timing(0);
        EXPECT_EQ(s.readings.size(), 5U);
        s.push_bytes({static_cast<unsigned char>(type), 0x30});
        EXPECT_EQ(s.readings.size(), 7U) << type;
        s.expect_timing_read();
    }
}

} // namespace
