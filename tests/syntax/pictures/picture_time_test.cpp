// Times of pictures: from HRD parameters (clauses C.1.2 and C.2.2) and from a rate.
#include "support/shown_time.h"
#include "support/timed_pictures.h"
#include "support/told_pictures.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace orv_utils_v4::h264;
using times = std::vector<exact_time>;

constexpr exact_time unknown;

times decoding_of(const told_pictures& told)
{
    times all;
    for (const picture& p : told.decoding_order)
        all.push_back(p.times.decoding);
    return all;
}
/// In output order.
times presentation_of(const told_pictures& told)
{
    times all;
    for (const picture& p : told.output_order)
        all.push_back(p.times.presentation);
    return all;
}
std::vector<time_source> sources_of(const told_pictures& told)
{
    std::vector<time_source> all;
    for (const picture& p : told.decoding_order)
        all.push_back(p.times.source);
    return all;
}

// A tick is 1/50 s.
TEST(HrdTimes, CountFromTheLatestBufferingPeriod)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({9000, 0, 2}, idr());
    stream.add_timed({{}, 2, 6}, reference(1, 8));
    stream.add_timed({{}, 4, 0}, reference(2, 4));
    stream.add_timed({4500, 6, 2}, idr(1)); // its own delay counts from the period before, the next ones from it
    stream.add_timed({{}, 2, 2}, reference(1, 2));
    const told_pictures told = told_of(stream.bytes);
    EXPECT_EQ(decoding_of(told), (times{{1, 10}, {7, 50}, {9, 50}, {11, 50}, {13, 50}}));
    EXPECT_EQ(presentation_of(told), (times{{7, 50}, {9, 50}, {13, 50}, {13, 50}, {3, 10}}));
    for (const picture& p : told.output_order)
        EXPECT_EQ(p.times.source, time_source::hrd);
}

TEST(HrdTimes, OfFieldsAreThoseOfTheFirstOne)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({0, 0, 1, 1}, top(idr()));
    stream.add_timed({{}, 1, 1, 2}, bottom(reference(0, 1)));
    stream.add_timed({0, 2, 1, 1}, top(idr(1)));
    stream.add_timed({{}, 1, 1, 2}, bottom(reference(0, 1)));
    const told_pictures told = told_of(stream.bytes);
    EXPECT_EQ(decoding_of(told), (times{{0, 1}, {1, 25}}));
    EXPECT_EQ(presentation_of(told), (times{{1, 50}, {3, 50}}));
}

/// The latest times with each access unit.
class times_of_units : public access_unit_sink, public picture_sink {
public:
    void take(const access_unit& unit) override { stage.take(unit, *this); }
    void access_unit_came(const access_unit&, const picture*) override { all.push_back(stage.latest_times()); }

    pictures stage;
    std::vector<picture_times> all;
};

class units_to : public split_sink {
public:
    units_to(access_units& units, access_unit_sink& sink) : next(units), to(sink) {}
    void unit(const split_unit& unit) override { next.push({unit.bytes, unit.size, unit.offset, 0}, to); }
    void gap(const split_gap&) override {}

private:
    access_units& next;
    access_unit_sink& to;
};

std::vector<picture_times> latest_times_of(const std::vector<unsigned char>& stream)
{
    times_of_units told;
    access_units units;
    units_to feed(units, told);
    unit_splitter splitter(framing::annex_b);
    splitter.push(stream.data(), stream.size(), feed);
    splitter.flush(feed);
    units.flush(told);
    told.stage.flush(told);
    return told.all;
}

// C.2.2 tells the output of each coded picture, a field or a frame.
TEST(HrdTimes, ASecondFieldHasItsOwn)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({0, 0, 1, 1}, top(idr()));
    stream.add_timed({{}, 1, 4, 2}, bottom(reference(0, 1)));
    stream.add_timed({{}, 2, 7}, reference(1, 2));
    const std::vector<picture_times> all = latest_times_of(stream.bytes);
    ASSERT_EQ(all.size(), 3U);
    const times decoding = {{0, 1}, {1, 50}, {1, 25}};
    const times presentation = {{1, 50}, {1, 10}, {9, 50}};
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].source, time_source::hrd) << i;
        EXPECT_EQ(all[i].decoding, decoding[i]) << i;
        EXPECT_EQ(all[i].presentation, presentation[i]) << i;
    }
}

TEST(RateTimes, ASecondFieldIsDecodedBehindTheFirst)
{
    timed_pictures_stream stream(1, 50, false);
    stream.add(idr()).add(top(reference(1, 2))).add(bottom(reference(1, 3)));
    const std::vector<picture_times> all = latest_times_of(stream.bytes);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[1].decoding, (exact_time{1, 25}));
    EXPECT_EQ(all[2].decoding, (exact_time{3, 50}));
    EXPECT_EQ(all[2].source, time_source::assumed_rate);
    EXPECT_EQ(all[2].presentation, unknown);
}

// (C-7) takes no picture timing.
TEST(HrdTimes, TheFirstPeriodNeedsNoPictureTiming)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({9000, {}}, idr());
    stream.add_timed({{}, 2, 0}, reference(1, 2));
    const told_pictures told = told_of(stream.bytes);
    using s = time_source;
    EXPECT_EQ(sources_of(told), (std::vector<s>{s::assumed_rate, s::hrd}));
    EXPECT_EQ(decoding_of(told)[1], (exact_time{7, 50}));
}

// Delays would count from a removal that is not told; those of the period before are over.
TEST(HrdTimes, AreUnknownBehindALaterPeriodWithoutPictureTiming)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({0, 0, 0}, idr());
    stream.add_timed({9000, {}}, idr(1));
    stream.add_timed({{}, 2, 0}, reference(1, 2));
    stream.add_timed({9000, 4, 0}, idr());
    stream.add_timed({{}, 2, 0}, reference(1, 2));
    const told_pictures told = told_of(stream.bytes);
    using s = time_source;
    EXPECT_EQ(sources_of(told),
              (std::vector<s>{s::hrd, s::assumed_rate, s::assumed_rate, s::assumed_rate, s::assumed_rate}));
}

TEST(PictureTimes, OfFieldsDivideWhatThePictureIsShownFor)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({0, 0, 3, 5}, idr()); // top, bottom, top again
    const picture shown = told_of(stream.bytes).output_order.at(0);
    EXPECT_EQ(field_presentation(shown, 0), (exact_time{3, 50}));
    EXPECT_EQ(field_presentation(shown, 1), (exact_time{2, 25}));
    EXPECT_EQ(field_presentation(shown, 2), (exact_time{1, 10}));
    EXPECT_EQ(field_presentation(shown, 3), unknown);
    picture odd = shown;
    odd.times.duration.denominator = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(field_presentation(odd, 1), unknown);
    odd.times.duration = {};
    EXPECT_EQ(field_presentation(odd, 0), unknown);
    EXPECT_EQ(field_presentation(picture(), 0), unknown);
}

// A period that begins with a second field counts for what follows.
TEST(HrdTimes, APeriodMayBeginWithASecondField)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({0, 0, 0, 1}, top(idr()));
    stream.add_timed({0, 5, 0, 2}, bottom(reference(0, 1)));
    stream.add_timed({{}, 5, 0}, reference(1, 2));
    EXPECT_EQ(decoding_of(told_of(stream.bytes)), (times{{0, 1}, {1, 5}}));
}

TEST(HrdTimes, GoOnWithAnotherTick)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({0, 0, 0}, idr()).add_bytes(10, {});
    stream.sps().vui_parameters.time_scale = 60;
    stream.add_sets();
    stream.add_timed({0, 30, 0}, idr(1)); // ticks of the SPS that is active now
    stream.add_timed({{}, 2, 0}, reference(1, 2));
    EXPECT_EQ(decoding_of(told_of(stream.bytes)), (times{{0, 1}, {1, 2}, {8, 15}}));
}

TEST(HrdTimes, AreUnknownBeforeTheFirstPeriodAndWithoutTiming)
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({{}, 4, 0}, idr());
    stream.add_timed({9000, 2, 0}, reference(1, 2));
    stream.add_timed({}, reference(2, 4));
    stream.add_timed({{}, 4, 0}, reference(3, 6));
    const told_pictures told = told_of(stream.bytes);
    using s = time_source;
    EXPECT_EQ(sources_of(told), (std::vector<s>{s::assumed_rate, s::hrd, s::assumed_rate, s::hrd}));
    EXPECT_EQ(decoding_of(told)[1], (exact_time{1, 10}));
    EXPECT_EQ(decoding_of(told)[3], (exact_time{9, 50}));
}

TEST(PictureTimes, TheFieldsShownAreThoseOfPicStruct)
{
    const std::uint8_t fields[] = {2, 1, 1, 2, 2, 3, 3, 4, 6};
    for (std::uint8_t pic_struct = 0; pic_struct < 9; ++pic_struct) {
        timed_pictures_stream stream(1, 50, true);
        stream.add_timed({0, 0, 0, pic_struct}, idr());
        const told_pictures told = told_of(stream.bytes);
        ASSERT_EQ(told.decoding_order.size(), 1U);
        EXPECT_EQ(told.decoding_order[0].fields_shown, fields[pic_struct]);
        EXPECT_EQ(told.decoding_order[0].times.duration, time_after({0, 1}, fields[pic_struct], {1, 50}));
    }
}

TEST(PictureTimes, TheFieldsShownAreThoseOfThePictureWithoutPicStruct)
{
    timed_pictures_stream stream(1, 50, true);
    stream.sps().vui_parameters.pic_struct_present_flag = false;
    stream.add_sets().add(idr()).add(top(reference(1, 2))).add(bottom(reference(1, 3))).add(top(reference(2, 4)));
    std::vector<int> shown;
    for (const picture& p : told_of(stream.bytes).decoding_order)
        shown.push_back(p.fields_shown);
    EXPECT_EQ(shown, (std::vector<int>{2, 2, 1}));
}

TEST(RateTimes, AreToldInBothOrders)
{
    for (const bool fixed : {true, false}) {
        timed_pictures_stream stream(1001, 60000, false);
        stream.sps().vui_parameters.fixed_frame_rate_flag = fixed;
        stream.sps().vui_parameters.low_delay_hrd_flag = !fixed;
        stream.add_sets().add(idr()).add(reference(1, 4)).add(other(2, 2)).add(reference(2, 6));
        const told_pictures told = told_of(stream.bytes);
        EXPECT_EQ(told.output_numbers(), (std::vector<std::uint64_t>{0, 2, 1, 3}));
        EXPECT_EQ(decoding_of(told), (times{{0, 1}, {1001, 30000}, {1001, 15000}, {1001, 10000}}));
        // one picture may be reordered: shown one frame later
        EXPECT_EQ(presentation_of(told), (times{{1001, 30000}, {1001, 15000}, {1001, 10000}, {1001, 7500}}));
        for (const picture& p : told.output_order)
            EXPECT_EQ(p.times.source, fixed ? time_source::constant_rate : time_source::assumed_rate);
    }
}

TEST(RateTimes, FollowPulldown)
{
    timed_pictures_stream stream(1, 60, false);
    stream.sps().vui_parameters.max_num_reorder_frames = 0;
    stream.add_sets();
    std::uint32_t frame_num = 0;
    for (const unsigned pic_struct : {5U, 4U, 6U, 3U})
        stream.add_timed({{}, 0, 0, static_cast<std::uint8_t>(pic_struct)},
                         frame_num++ == 0 ? idr() : reference(frame_num - 1, 2 * frame_num));
    const told_pictures told = told_of(stream.bytes);
    EXPECT_EQ(presentation_of(told), (times{{0, 1}, {1, 20}, {1, 12}, {2, 15}}));
    EXPECT_EQ(decoding_of(told), presentation_of(told));
}

// No message tells decoding times: the second picture lasts three fields, and the third one is shown before they are
// over.
TEST(RateTimes, MayShowAReorderedPictureBeforeItsDecodingWithPulldown)
{
    timed_pictures_stream stream(1, 60, false);
    stream.add_timed({{}, 0, 0, 3}, idr());
    stream.add_timed({{}, 0, 0, 5}, reference(1, 4));
    stream.add_timed({{}, 0, 0, 3}, other(2, 2));
    const told_pictures told = told_of(stream.bytes);
    EXPECT_EQ(decoding_of(told), (times{{0, 1}, {1, 30}, {1, 12}}));
    EXPECT_EQ(presentation_of(told), (times{{1, 30}, {1, 15}, {1, 10}}));
}

// The common denominator of three such ticks has more than 64 bits.
TEST(RateTimes, ThatCannotBeToldAnyMoreStayUnknown)
{
    timed_pictures_stream stream(1, 2147483647, false);
    stream.add(idr(0));
    for (const std::uint32_t time_scale : {2147483629U, 2147483587U, 50U, 50U}) {
        stream.sps().vui_parameters.time_scale = time_scale;
        stream.add_sets().add(idr(time_scale % 2));
    }
    const told_pictures told = told_of(stream.bytes);
    const times presentation = presentation_of(told), decoding = decoding_of(told);
    ASSERT_EQ(presentation.size(), 5U);
    EXPECT_TRUE(presentation[1]);
    EXPECT_TRUE(decoding[1]);
    EXPECT_EQ(presentation[4], unknown);
    EXPECT_EQ(decoding[4], unknown);
}

TEST(RateTimes, WithoutTimingInformationAreUnknown)
{
    made_stream stream;
    stream.add_sets().add(idr()).add(reference(1));
    const told_pictures told = told_of(stream.bytes);
    EXPECT_EQ(decoding_of(told), (times{unknown, unknown}));
    EXPECT_EQ(presentation_of(told), (times{unknown, unknown}));
    EXPECT_EQ(told.decoding_order[0].times.duration, unknown);
    EXPECT_EQ(sources_of(told), (std::vector<time_source>{time_source::none, time_source::none}));
}

TEST(PictureClocks, AreThoseOfTheFrameOrItsFieldsOneAfterTheOther)
{
    timed_pictures_stream stream(1, 50, true);
    const auto add = [&](std::uint8_t pic_struct, std::uint8_t seconds, const made_slice& slice) {
        pic_timing timing;
        timing.pic_struct = pic_struct;
        for (unsigned i = 0; i < timing.NumClockTS(); ++i) {
            clock_timestamp& stamp = timing.timestamps[i];
            stamp.clock_timestamp_flag = true;
            stamp.seconds_flag = i == 0;
            stamp.seconds_value = i == 0 ? seconds : 0;
            stamp.n_frames = static_cast<std::uint8_t>(i);
        }
        stream.add(unit_of(6, sei_rbsp{{message_of(1, timing)}})).add(slice);
    };
    add(5, 7, idr());
    add(1, 8, top(reference(1, 2)));
    add(2, 9, bottom(reference(1, 3)));
    const told_pictures told = told_of(stream.bytes);
    ASSERT_EQ(told.decoding_order.size(), 2U);
    const picture &frame = told.decoding_order[0], &pair = told.decoding_order[1];
    ASSERT_EQ(frame.clock_count, 3U);
    EXPECT_EQ(frame.clocks[2].seconds, 7);
    EXPECT_EQ(frame.clocks[2].frames, 2U);
    ASSERT_EQ(pair.clock_count, 2U);
    EXPECT_EQ(pair.clocks[0].seconds, 8);
    EXPECT_EQ(pair.clocks[1].seconds, 9);
}

} // namespace
