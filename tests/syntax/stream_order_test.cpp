// The order in which a stream hands units on, and how much it keeps back.
#include "support/timed_stream.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace orv_utils_v4::h264;

TEST(StreamOrder, UnitsAreHandedOnInTheOrderTheyCame)
{
    timed_stream s;
    s.push_sets();
    s.push(unit_of(9, access_unit_delimiter_rbsp{}));
    s.push_timing(0);
    s.push(unit_of(12, filler_data_rbsp{}));
    s.push_timing(0);
    s.push(pps_unit(7, 0));
    EXPECT_EQ(s.readings.size(), 5U);
    s.push_slice(5, 0);
    s.push_slice(5, 0);
    s.push_timing(0);
    s.flush();
    s.flush();
    EXPECT_EQ(s.order(), (std::vector<std::uint64_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
}

TEST(StreamOrder, NoMoreUnitsAreHeldThanTheMost)
{
    timed_stream s;
    s.push(sps_unit(timed_sps_data(0, 8)));
    for (std::size_t i = 0; i < stream::most_held_units; ++i)
        s.push_timing(0);
    EXPECT_EQ(s.readings.size(), 1U);
    s.push_timing(0);
    EXPECT_EQ(s.readings.size(), stream::most_held_units + 2);
    s.expect_timing_read();
    const std::vector<std::uint64_t> order = s.order();
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(StreamOrder, NoMoreBytesAreHeldThanTheMost)
{
    timed_stream s;
    s.push(sps_unit(timed_sps_data(0, 8)));
    s.push_timing(0);
    std::vector<unsigned char> filler(stream::most_held_bytes, 0xFF);
    filler.front() = 12;
    filler.back() = 0x80;
    EXPECT_EQ(s.readings.size(), 1U);
    s.push_bytes(filler);
    EXPECT_EQ(s.order(), (std::vector<std::uint64_t>{0, 1, 2}));
    s.push_timing(0);
    EXPECT_EQ(s.readings.size(), 3U) << "held again";
    s.flush();
    EXPECT_EQ(s.readings.size(), 4U);
}

TEST(StreamOrder, TheVisitorIsToldOfEachUnitOnceAndInOrder)
{
    class listening : public unit_sink, public visitor {
    public:
        visitor* before(const unit_place& place) override
        {
            numbers.push_back(place.number);
            return this;
        }
        void take(const unit_reading&) override {}
        void open(const char*) override {}
        void close() override {}
        void element(const traced_element& e) override { headers += e.bit == 0 ? 1 : 0; }

        std::vector<std::uint64_t> numbers;
        int headers = 0;
    };
    const small_sets sets(timed_sps_data(0, 8));
    listening to;
    stream reader;
    std::uint64_t number = 0;
    for (const nal_unit& unit : {timing_unit(), sps_unit(timed_sps_data(0, 8)), pps_unit(), slice_unit(5)}) {
        const std::vector<unsigned char> bytes = written(unit, sets.context);
        reader.push({bytes.data(), bytes.size(), 0, number++}, to);
    }
    EXPECT_EQ(to.numbers, (std::vector<std::uint64_t>{0, 1, 2, 3}));
    EXPECT_EQ(to.headers, 4);
}

} // namespace
