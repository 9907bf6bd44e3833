// The rows that frames and info are made of: pictures, each with its units, and its output number once that is known.
#include "frame_finder.h"

#include "support/coded_stream.h"
#include "support/stream_files.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_h264::frame;
using orv_h264::frame_finder;
using support::bytes;
using support::coded;
using support::coded_sps;
using support::coded_stream;
using types = std::vector<int>;

/// Gives the units of an Annex B stream to a finder.
class fed_finder : orv_utils_v4::h264::split_sink {
public:
    explicit fed_finder(bool split_fields = false) : finder(split_fields) {}

    void feed(const bytes& stream)
    {
        orv_utils_v4::h264::unit_splitter splitter(orv_utils_v4::h264::framing::annex_b);
        splitter.push(stream.data(), stream.size(), *this);
        splitter.flush(*this);
    }
    std::vector<frame> finish()
    {
        finder.finish();
        take();
        return frames;
    }

    frame_finder finder;
    std::vector<frame> frames;

private:
    void unit(const orv_utils_v4::h264::split_unit& u) override
    {
        finder.add({u.offset - u.framing_size, u.framing_size, u.size, 0, false}, {u.bytes, u.size});
        take();
    }
    void gap(const orv_utils_v4::h264::split_gap&) override {}
    void take()
    {
        for (frame f; finder.next(f);)
            frames.push_back(f);
    }
};

std::vector<frame> frames_of(const bytes& stream, bool split_fields = false)
{
    fed_finder fed(split_fields);
    fed.feed(stream);
    return fed.finish();
}

/// The types of a frame's units.
types types_of(const frame& f)
{
    types of;
    for (const orv_h264::frame_unit& u : f.units)
        of.push_back(static_cast<int>(u.type));
    return of;
}

} // namespace

TEST(FrameFinder, OfNothingThereIsNoFrame)
{
    EXPECT_TRUE(frames_of({}).empty());
    EXPECT_TRUE(frames_of(coded_stream().filler().end_of_sequence().filler(100000).unit(11, {})).empty());
    EXPECT_TRUE(frames_of(coded_stream().aud().sets(coded_sps(false)).recovery_point(0)).empty());
}

TEST(FrameFinder, AFrameHoldsWhatLeadsToItAndEndsBehindItsLastUnit)
{
    coded_stream stream;
    stream.aud().sets(coded_sps(false)).idr();
    const std::size_t second = stream.here();
    stream.timing(0).slice(1).filler();
    const auto frames = frames_of(stream);
    ASSERT_EQ(2U, frames.size());
    EXPECT_EQ((types{9, 7, 8, 5}), types_of(frames[0]));
    EXPECT_EQ(0U, frames[0].offset);
    EXPECT_EQ(second, frames[0].size);
    EXPECT_FALSE(frames[0].last);
    EXPECT_EQ((types{6, 1, 12}), types_of(frames[1]));
    EXPECT_EQ(second, frames[1].offset);
    EXPECT_EQ(stream.here() - second, frames[1].size);
    EXPECT_TRUE(frames[1].last);
}

TEST(FrameFinder, PicturesThatNothingButTheirSlicesTellApartAreRows)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1).slice(2);
    support::slice_header_description later = stream.described(2);
    later.first_mb_in_slice = 5;
    stream.slice(later, 0x41);
    const auto frames = frames_of(stream);
    ASSERT_EQ(3U, frames.size());
    EXPECT_EQ((types{1}), types_of(frames[1]));
    EXPECT_EQ((types{1, 1}), types_of(frames[2]));
}

TEST(FrameFinder, ADurationIsInSecondsWhereTheSpsTellsTheFieldRate)
{
    support::sps_description slow = coded_sps(false);
    slow.vui->time_scale = 10;
    coded_stream stream;
    stream.sets(coded_sps(false)).timing(7).idr().timing(5).slice(1).timing(9).slice(2);
    stream.sets(slow).idr().sets(coded_sps(false, false)).idr();
    const auto frames = frames_of(stream);
    ASSERT_EQ(5U, frames.size());
    EXPECT_EQ(4U, frames[0].field_duration);
    EXPECT_EQ(0.08, frames[0].seconds);
    EXPECT_EQ(3U, frames[1].field_duration);
    EXPECT_EQ(0.06, frames[1].seconds);
    EXPECT_EQ(2U, frames[2].field_duration) << "pic_struct 9 is reserved";
    EXPECT_EQ(0.2, frames[3].seconds);
    EXPECT_EQ(2U, frames[4].field_duration);
    EXPECT_FALSE(frames[4].seconds.has_value()) << "an SPS without VUI tells no rate, whatever came before";
}

TEST(FrameFinder, APairOfFieldsIsAFrameUnlessFieldsAreSplit)
{
    coded_stream stream;
    stream.sets(coded_sps(true));
    stream.timing(1).slice(1, coded::top).timing(2).slice(1, coded::bottom);
    stream.timing(2).slice(2, coded::bottom).timing(1).slice(2, coded::top);
    stream.timing(1).slice(3, coded::top);
    const auto pairs = frames_of(stream);
    ASSERT_EQ(3U, pairs.size());
    EXPECT_EQ((types{7, 8, 6, 1, 6, 1}), types_of(pairs[0]));
    EXPECT_EQ(2U, pairs[0].field_duration);
    EXPECT_EQ(2U, pairs[0].coded_pictures);
    EXPECT_EQ((types{6, 1, 6, 1}), types_of(pairs[1]));
    EXPECT_EQ(1U, pairs[2].coded_pictures) << "a field alone";
    EXPECT_EQ(1U, pairs[2].field_duration);
    const auto fields = frames_of(stream, true);
    ASSERT_EQ(5U, fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        EXPECT_EQ(1U, fields[i].field_duration);
        EXPECT_EQ(1U, fields[i].coded_pictures);
        EXPECT_EQ(i / 2, fields[i].output_number) << "of their frame";
        EXPECT_EQ(i == 4, fields[i].last);
    }
}

TEST(FrameFinder, TheOutputNumberAndTheCountAreThoseOfThePicture)
{
    support::sps_description seq = coded_sps(false);
    seq.pic_order_cnt_type = 0;
    coded_stream stream;
    stream.sets(seq);
    const auto add = [&](std::uint32_t frame_num, std::uint32_t lsb, unsigned char header) {
        support::slice_header_description slice = stream.described(frame_num);
        slice.pic_order_cnt_lsb = lsb;
        if (header == support::idr_slice)
            slice.idr_pic_id = 0;
        stream.slice(slice, header);
    };
    add(0, 0, support::idr_slice);
    add(1, 4, 0x41);
    add(2, 2, 0x01);
    const auto frames = frames_of(stream);
    ASSERT_EQ(3U, frames.size());
    const std::uint64_t order[] = {0, 2, 1};
    const std::int64_t counts[] = {0, 4, 2};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(order[i], frames[i].output_number);
        EXPECT_EQ(counts[i], frames[i].poc);
    }
}

TEST(FrameFinder, AFrameWithoutItsParameterSetsHasNoCount)
{
    const auto frames = frames_of(coded_stream().slice(1));
    ASSERT_EQ(1U, frames.size());
    EXPECT_FALSE(frames[0].poc.has_value());
    EXPECT_EQ(0U, frames[0].output_number);
    EXPECT_FALSE(frames[0].units[0].slice.has_value());
}

TEST(FrameFinder, AnIdrPictureAndARecoveryPointAreKeys)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().recovery_point(7).slice(1).recovery_point(0).slice(2).slice(3);
    const auto frames = frames_of(stream);
    ASSERT_EQ(4U, frames.size());
    EXPECT_TRUE(frames[0].idr && frames[0].key());
    EXPECT_FALSE(frames[0].recovery_frame_cnt.has_value());
    EXPECT_FALSE(frames[1].idr);
    EXPECT_EQ(7U, frames[1].recovery_frame_cnt);
    EXPECT_TRUE(frames[1].key());
    EXPECT_EQ(0U, frames[2].recovery_frame_cnt);
    EXPECT_FALSE(frames[3].key());
    const auto cut =
        frames_of(coded_stream().sets(coded_sps(false)).unit(support::sei, support::sei_rbsp({{6, {}}})).slice(1));
    ASSERT_EQ(1U, cut.size());
    EXPECT_FALSE(cut[0].key()) << "a message that is cut is none";
}

TEST(FrameFinder, AFrameComesOutAsSoonAsItsOutputIsKnown)
{
    coded_stream stream;
    stream.sets(coded_sps(false));
    for (std::uint32_t i = 0; i < 10; ++i)
        stream.slice(i);
    fed_finder fed;
    fed.feed(stream);
    EXPECT_EQ(9U, fed.frames.size()) << "with picture order count type 2 nothing waits but what may go on";
    EXPECT_EQ(10U, fed.finish().size());
}

TEST(FrameFinder, AFrameOfTooManyUnitsIsCut)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    for (std::size_t i = 0; i < orv_utils_v4::h264::access_units::most_units; ++i)
        stream.filler(1);
    const auto frames = frames_of(stream.slice(1));
    ASSERT_EQ(2U, frames.size());
    EXPECT_TRUE(frames[0].cut);
    EXPECT_EQ(orv_utils_v4::h264::access_units::most_units, frames[0].units.size());
    EXPECT_NE(std::string::npos, describe_cut(frames[0]).find("65536 units, cut there"));
    EXPECT_FALSE(frames[1].cut);
}

TEST(FrameFinder, WhatWaitsForTooLongGoesWithoutItsOutputNumber)
{
    support::sps_description seq = coded_sps(false);
    seq.pic_order_cnt_type = 0;
    coded_stream head;
    support::slice_header_description waiting = head.sets(seq).described(0);
    waiting.pic_order_cnt_lsb = 7; // above all that follow
    head.slice(waiting, 0x41);
    fed_finder fed;
    fed.feed(head);
    support::slice_header_description low = head.described(1);
    low.pic_order_cnt_lsb = 6;
    coded_stream rest;
    for (int i = 0; i < 64; ++i)
        rest.slice(low, 0x01);
    while (fed.frames.empty())
        fed.feed(rest);
    EXPECT_FALSE(fed.frames[0].output_number.has_value());
    EXPECT_EQ(7, fed.frames[0].poc);
}

namespace {

class FrameFinderStream : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, FrameFinderStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

} // namespace

TEST_P(FrameFinderStream, TheFramesFollowOnEachOtherAndAreOutputOnce)
{
    std::uint64_t end = 0;
    std::vector<std::uint64_t> numbers;
    for (const frame& f : frames_of(support::read_file(GetParam()))) {
        EXPECT_GE(f.offset, end);
        end = f.offset + f.size;
        EXPECT_FALSE(f.units.empty());
        EXPECT_FALSE(f.cut);
        numbers.push_back(f.output_number.value());
    }
    std::sort(numbers.begin(), numbers.end());
    for (std::size_t i = 0; i < numbers.size(); ++i)
        EXPECT_EQ(i, numbers[i]);
    EXPECT_LE(end, support::read_file(GetParam()).size());
}
