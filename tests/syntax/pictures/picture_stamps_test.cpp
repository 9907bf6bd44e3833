// Timestamps of the caller: whose they are, their wraps, and when they count.
#include "support/shown_time.h"
#include "support/timed_pictures.h"
#include "support/told_pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using times = std::vector<exact_time>;

constexpr exact_time unknown;

timestamp stamp_of(std::int64_t presentation, std::uint8_t bits = 64, std::uint32_t clock = 1)
{
    timestamp stamp;
    stamp.presentation = presentation;
    stamp.bits = bits;
    stamp.clock = clock;
    return stamp;
}

/// Pieces with their stamps, read one by one.
class stamped {
public:
    void push(const std::vector<unsigned char>& piece, const timestamp* stamp = nullptr)
    {
        reader.push(piece.data(), piece.size(), told, {stamp, false});
    }
    void push(const std::vector<unsigned char>& piece, const timestamp& stamp) { push(piece, &stamp); }
    times presentation_stamps()
    {
        reader.flush(told);
        times all;
        for (const picture& p : told.decoding_order)
            all.push_back(p.times.presentation_stamp);
        return all;
    }

    picture_reader reader{framing::annex_b};
    told_pictures told;
};

/// Each picture with its parameter sets is a piece.
std::vector<std::vector<unsigned char>> pictures_apart(std::size_t count)
{
    std::vector<std::vector<unsigned char>> pieces;
    for (std::size_t i = 0; i < count; ++i) {
        made_stream stream;
        stream.add_sets().add(idr(static_cast<std::uint32_t>(i % 2)));
        pieces.push_back(stream.bytes);
    }
    return pieces;
}

times stamps_without_wraps(const std::vector<std::int64_t>& values, std::uint8_t bits)
{
    stamped s;
    const auto pieces = pictures_apart(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        s.push(pieces[i], stamp_of(values[i], bits));
    return s.presentation_stamps();
}

TEST(Timestamps, OfAFewBitsAreToldWithoutTheirWraps)
{
    constexpr std::int64_t range_33 = std::int64_t{1} << 33;
    constexpr std::int64_t range_32 = std::int64_t{1} << 32;
    EXPECT_EQ(stamps_without_wraps({range_33 - 5, 3, range_33 - 2, 10}, 33),
              (times{{range_33 - 5, 1}, {range_33 + 3, 1}, {range_33 - 2, 1}, {range_33 + 10, 1}}));
    EXPECT_EQ(stamps_without_wraps({range_32 - 5, 3, range_32 - 2}, 32),
              (times{{range_32 - 5, 1}, {range_32 + 3, 1}, {range_32 - 2, 1}}));
    EXPECT_EQ(stamps_without_wraps({2, range_33 - 1, 4}, 33), (times{{2, 1}, {-1, 1}, {4, 1}}));
    // three times around
    const std::int64_t third = range_33 / 3;
    EXPECT_EQ(stamps_without_wraps({0, third, 2 * third, 0, third}, 33).back(), (exact_time{range_33 + third, 1}));
}

TEST(Timestamps, Of64BitsAreAsTheyAre)
{
    constexpr std::int64_t highest = 9223372036854775807;
    EXPECT_EQ(stamps_without_wraps({highest, -highest - 1, 0}, 64), (times{{highest, 1}, {-highest - 1, 1}, {0, 1}}));
}

TEST(Timestamps, BeyondTheirBitsCountByTheirLowOnes)
{
    constexpr std::int64_t range = std::int64_t{1} << 33;
    EXPECT_EQ(stamps_without_wraps({1, range + 5, 7 - range}, 33), (times{{1, 1}, {5, 1}, {7, 1}}));
    constexpr std::int64_t highest = 9223372036854775807;
    EXPECT_EQ(stamps_without_wraps({-1, highest, 0}, 33), (times{{range - 1, 1}, {range - 1, 1}, {range, 1}}));
}

TEST(Timestamps, OfManyBitsDoNotOverflow)
{
    constexpr std::int64_t quarter = std::int64_t{1} << 59;
    const times all = stamps_without_wraps(
        {0, quarter, 2 * quarter, 3 * quarter, 0, quarter, 2 * quarter, 3 * quarter, 0, quarter, 2 * quarter}, 61);
    EXPECT_EQ(all[7], (exact_time{7 * quarter, 1}));
    EXPECT_EQ(all[9], (exact_time{quarter, 1})); // begins again
}

TEST(Timestamps, AreReducedFractionsOfTheirClock)
{
    stamped s;
    const auto pieces = pictures_apart(3);
    timestamp with_decoding = stamp_of(90000 * 3 / 2, 33, 90000);
    with_decoding.decoding = 45000;
    with_decoding.has_decoding = true;
    s.push(pieces[0], with_decoding);
    s.push(pieces[1], stamp_of(-7, 64, 48000));
    s.push(pieces[2], stamp_of(5, 64, 0)); // no clock
    EXPECT_EQ(s.presentation_stamps(), (times{{3, 2}, {-7, 48000}, unknown}));
    EXPECT_EQ(s.told.decoding_order[0].times.decoding_stamp, (exact_time{1, 2}));
    EXPECT_EQ(s.told.decoding_order[0].times.decoding, (exact_time{1, 2}));
    EXPECT_EQ(s.told.decoding_order[1].times.decoding_stamp, unknown);
}

TEST(Timestamps, AreOfTheFirstAccessUnitThatBeginsInTheirPiece)
{
    made_stream both, lone;
    both.add_sets().add(idr(0)).add(idr(1));
    lone.add_sets().add(idr(0));
    stamped s;
    s.push(both.bytes, stamp_of(10));
    s.push(lone.bytes, stamp_of(20));
    s.push(lone.bytes);
    EXPECT_EQ(s.presentation_stamps(), (times{{10, 1}, unknown, {20, 1}, unknown}));
}

TEST(Timestamps, OfPiecesInWhichNoneBeginsAreNobodys)
{
    made_stream one;
    one.add_sets().add(idr(0));
    stamped s;
    const std::vector<unsigned char>& bytes = one.bytes;
    for (std::size_t at = 0; at < bytes.size(); ++at)
        s.push({bytes[at]}, stamp_of(static_cast<std::int64_t>(at)));
    s.push({}, stamp_of(99));
    s.push(bytes, stamp_of(100));
    EXPECT_EQ(s.presentation_stamps(), (times{{4, 1}, {100, 1}})); // its first header byte is the fifth byte
}

TEST(Timestamps, GoThroughWhateverThePieces)
{
    const auto pieces = pictures_apart(5);
    for (std::size_t size = 1; size < 60; ++size) {
        stamped s;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            for (std::size_t at = 0; at < pieces[i].size(); at += size) {
                const std::size_t end = std::min(at + size, pieces[i].size());
                const timestamp stamp = stamp_of(static_cast<std::int64_t>(i));
                const bool has_header = at <= 4 && 4 < end; // as packets tell it
                s.push({pieces[i].begin() + static_cast<std::ptrdiff_t>(at),
                        pieces[i].begin() + static_cast<std::ptrdiff_t>(end)},
                       has_header ? &stamp : nullptr);
            }
        }
        EXPECT_EQ(s.presentation_stamps(), (times{{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}})) << size;
    }
}

TEST(Timestamps, OfASecondFieldCountWhereTheFirstOneHasNone)
{
    timed_pictures_stream first(1, 50, false), second(1, 50, false);
    first.bytes.clear();
    second.bytes.clear();
    first.add_sets().add(top(idr()));
    second.add(bottom(reference(0, 1)));
    for (const bool first_has : {false, true}) {
        stamped s;
        const timestamp of_first = stamp_of(5), of_second = stamp_of(6);
        s.push(first.bytes, first_has ? &of_first : nullptr);
        s.push(second.bytes, of_second);
        EXPECT_EQ(s.presentation_stamps(), (times{{first_has ? 5 : 6, 1}}));
    }
}

TEST(Timestamps, CountMoreThanAnAssumedRateAndLessThanAPromise)
{
    for (const bool hrd : {false, true}) {
        for (const bool fixed : {false, true}) {
            timed_pictures_stream stream(1, 50, hrd);
            stream.bytes.clear();
            stream.sps().vui_parameters.fixed_frame_rate_flag = fixed;
            stream.sps().vui_parameters.low_delay_hrd_flag = false;
            stream.add_sets();
            stream.add_timed({hrd ? std::optional<std::uint32_t>(0) : std::nullopt,
                              hrd ? std::optional<std::uint32_t>(0) : std::nullopt},
                             idr(0));
            const auto with_stamp = stream.bytes;
            stream.bytes.clear();
            stream.add(reference(1, 2));
            stamped s;
            s.push(with_stamp, stamp_of(500));
            s.push(stream.bytes);
            EXPECT_EQ(s.presentation_stamps(), (times{{500, 1}, unknown}));
            const picture &first = s.told.output_order[0], &second = s.told.output_order[1];
            const time_source source = hrd     ? time_source::hrd
                                       : fixed ? time_source::constant_rate
                                               : time_source::caller;
            EXPECT_EQ(first.times.source, source);
            EXPECT_EQ(first.times.presentation == (exact_time{500, 1}), source == time_source::caller);
            // a rate that is not promised says nothing beside stamps
            EXPECT_EQ(second.times.source, fixed ? time_source::constant_rate : time_source::none);
            EXPECT_EQ(second.times.presentation == unknown, !fixed);
        }
    }
}

TEST(Timestamps, BeyondTheMostThatWaitTheOldestGo)
{
    made_stream stream;
    stream.add_sets().add(idr(0));
    stamped s;
    s.push({stream.bytes.begin(), stream.bytes.begin() + 5}, stamp_of(1)); // its first header byte
    const std::vector<unsigned char> nothing;
    for (std::size_t i = 0; i < picture_reader::most_stamps; ++i)
        s.push(nothing, stamp_of(2));
    s.push({stream.bytes.begin() + 5, stream.bytes.end()});
    EXPECT_EQ(s.presentation_stamps(), (times{unknown}));
}

} // namespace
