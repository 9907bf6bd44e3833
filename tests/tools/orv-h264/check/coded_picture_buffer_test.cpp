// The coded picture buffer at 90000 bit/s with a tick of half a second: 45000 bits a tick.
#include "check/coded_picture_buffer.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace orv_h264;

hrd_clock half_seconds()
{
    orv_utils_v4::h264::vui_parameters vui;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1;
    vui.time_scale = 2;
    return clock_of(vui).value();
}

class filled_buffer {
public:
    explicit filled_buffer(const hrd_schedule& how, const hrd_delays& first = {90000, 0})
        : delays(first), buffer(how, half_seconds(), first)
    {
    }

    cpb_arrival arrive(std::int64_t ticks, std::int64_t bits, const hrd_delays* period = nullptr)
    {
        const hrd_access_unit unit{count, count, 0, ticks, bits};
        const hrd_delays* const of = count == 0 ? &delays : period;
        ++count;
        return buffer.arrive(unit, of, [this](const cpb_step& step) { steps.push_back(step); });
    }
    void flush()
    {
        buffer.flush([this](const cpb_step& step) { steps.push_back(step); });
    }

    std::vector<cpb_step> steps;

private:
    hrd_delays delays;
    coded_picture_buffer buffer;
    std::uint64_t count = 0;
};

hrd_schedule constant(std::int64_t size)
{
    return {true, 0, 90000, size, true, false};
}

hrd_schedule variable(std::int64_t size)
{
    return {true, 0, 90000, size, false, false};
}

TEST(CodedPictureBuffer, AtAConstantRateBitsComeWithoutAPause)
{
    filled_buffer buffer(constant(90000));
    const std::int64_t bits[] = {45000, 45000, 90000};
    for (std::int64_t n = 0; n < 3; ++n) {
        const cpb_arrival how = buffer.arrive(n, bits[n]);
        EXPECT_EQ(how.missing, 0);
        EXPECT_EQ(how.excess, 0);
    }
    buffer.flush();
    ASSERT_EQ(buffer.steps.size(), 3U);
    const std::int64_t before[] = {90000, 90000, 90000}; // at 1, 1.5 and 2 s
    const std::int64_t after[] = {45000, 45000, 0};
    const double begin[] = {0, 0.5, 1};
    const double end[] = {0.5, 1, 2};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(buffer.steps[i].before, before[i]);
        EXPECT_EQ(buffer.steps[i].after, after[i]);
        EXPECT_EQ(buffer.steps[i].arrival_begin, begin[i]);
        EXPECT_EQ(buffer.steps[i].arrival_end, end[i]);
        EXPECT_EQ(buffer.steps[i].removal, 1 + 0.5 * static_cast<double>(i));
    }
}

TEST(CodedPictureBuffer, OneBitThatComesTooLateIsMissing)
{
    filled_buffer buffer(constant(90000));
    buffer.arrive(0, 45000);
    buffer.arrive(1, 45000);
    EXPECT_EQ(buffer.arrive(2, 90001).missing, 1);
    EXPECT_TRUE(buffer.steps.back().underflow);
    EXPECT_EQ(buffer.steps.back().after, -1);
}

TEST(CodedPictureBuffer, OneBitAboveItsSizeIsTooMuch)
{
    filled_buffer buffer(constant(89999));
    EXPECT_EQ(buffer.arrive(0, 45000).excess, 0);
    const cpb_arrival how = buffer.arrive(1, 45000); // both are there at 1 s, before the first is removed
    EXPECT_EQ(how.excess, 1);
    EXPECT_EQ(how.excess_time, 1);
}

TEST(CodedPictureBuffer, AtAVariableRateBitsWaitForTheirTime)
{
    filled_buffer buffer(variable(90000));
    buffer.arrive(0, 9000);
    buffer.arrive(1, 9000); // removed at 1.5 s, so not sent before 0.5 s
    const hrd_delays later = {45000, 45000};
    buffer.arrive(2, 9000, &later); // removed at 2 s, sent half a second before
    buffer.flush();
    ASSERT_EQ(buffer.steps.size(), 3U);
    EXPECT_DOUBLE_EQ(buffer.steps[0].arrival_end, 0.1);
    EXPECT_DOUBLE_EQ(buffer.steps[1].arrival_begin, 0.5);
    EXPECT_DOUBLE_EQ(buffer.steps[1].arrival_end, 0.6);
    EXPECT_DOUBLE_EQ(buffer.steps[2].arrival_begin, 1.5);
    EXPECT_EQ(buffer.steps[0].before, 18000);
    EXPECT_EQ(buffer.steps[1].before, 9000);
}

TEST(CodedPictureBuffer, WithLowDelayABigPictureIsRemovedTicksLater)
{
    hrd_schedule how = variable(200000);
    how.low_delay = true;
    filled_buffer buffer(how);
    buffer.arrive(0, 90000);
    buffer.arrive(1, 45001); // its last bit comes at 1.5 s and a 90000th of a second
    buffer.flush();
    EXPECT_FALSE(buffer.steps[1].underflow);
    EXPECT_EQ(buffer.steps[1].removal, 2);
}

TEST(CodedPictureBuffer, TheGapBeforeAPeriodIsRoundedBothWays)
{
    filled_buffer buffer(constant(90000));
    buffer.arrive(0, 45000);
    const hrd_delays next = {90000, 0};
    EXPECT_EQ(buffer.arrive(1, 45000, &next).gap, std::pair(std::int64_t{90000}, std::int64_t{90000}));

    hrd_schedule slower = constant(90000);
    slower.bit_rate = 89984;
    filled_buffer fractions(slower);
    fractions.arrive(0, 45000); // takes 45008.0013 ticks of 90 kHz
    EXPECT_EQ(fractions.arrive(1, 45000, &next).gap, std::pair(std::int64_t{89991}, std::int64_t{89992}));
}

TEST(CodedPictureBuffer, NumbersOfABrokenStreamStayInTheirRange)
{
    orv_utils_v4::h264::vui_parameters vui;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = ~std::uint32_t{0};
    vui.time_scale = ~std::uint32_t{0} - 1;
    hrd_schedule how{true, 0, std::uint64_t{1} << 53, std::int64_t{1} << 51, false, true};
    coded_picture_buffer buffer(how, clock_of(vui).value(), {~std::uint32_t{0}, ~std::uint32_t{0}});
    const auto ignore = [](const cpb_step&) {};
    const hrd_delays period = {1, 1};
    std::int64_t ticks = 0;
    for (std::uint64_t n = 0; n < 100; ++n) {
        const cpb_arrival how_it_was = buffer.arrive({n, n, 0, ticks, std::int64_t{1} << 40}, &period, ignore);
        EXPECT_GE(how_it_was.missing, 0);
        ticks += std::int64_t{1} << 56;
    }
    buffer.flush(ignore);
}

TEST(HrdClock, DividesRoundingDownAndUp)
{
    EXPECT_EQ(static_cast<int>(floor_of(-7, 2)), -4);
    EXPECT_EQ(static_cast<int>(ceil_of(-7, 2)), -3);
    EXPECT_EQ(static_cast<int>(floor_of(7, 2)), 3);
    EXPECT_EQ(static_cast<int>(ceil_of(7, 2)), 4);
    EXPECT_EQ(narrowed(product(wide_number{1} << 100, -(wide_number{1} << 100))),
              std::numeric_limits<std::int64_t>::min());
}

TEST(HrdClock, HasWholeUnitsForTheTickAnd90KHz)
{
    orv_utils_v4::h264::vui_parameters vui;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1001;
    vui.time_scale = 60000;
    const hrd_clock clock = clock_of(vui).value();
    EXPECT_EQ(clock.second, 180000);
    EXPECT_EQ(clock.tick, 3003);
    EXPECT_EQ(clock.of_90_khz, 2);
    vui.time_scale = 0;
    EXPECT_FALSE(clock_of(vui));
}

} // namespace
