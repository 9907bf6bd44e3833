#include "frame_finder.h"

#include "support/both_framings.h"
#include "support/coded_stream.h"
#include "support/found_frames.h"
#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_h264::frame;
using support::bytes;
using support::coded;
using support::coded_sps;
using support::coded_stream;

std::vector<frame> frames_of(const coded_stream& stream, bool split_fields = false)
{
    return support::found_frames(stream, brenik::nalfmt_annexb, split_fields).frames;
}

/// The types of a frame's units.
std::vector<int> types_of(const frame& f)
{
    std::vector<int> types;
    for (const orv_h264::frame_unit& u : f.units)
        types.push_back(static_cast<int>(u.nal.nal_unit_type));
    return types;
}

using types = std::vector<int>;

} // namespace

TEST(FrameFinder, OfNothingThereIsNoFrame)
{
    orv_h264::frame_finder finder(false);
    frame f;
    EXPECT_FALSE(finder.next(f));
    finder.finish();
    EXPECT_FALSE(finder.next(f));
    EXPECT_FALSE(finder.next(f));
}

TEST(FrameFinder, WithoutAUnitThatBeginsAFrameThereIsNone)
{
    EXPECT_TRUE(frames_of(coded_stream().filler().end_of_sequence().filler(100000).unit(11, {})).empty());
}

TEST(FrameFinder, AFrameNumberBehindTheLongestCodesTellsFramesApart)
{
    constexpr std::size_t three_codes = 3 * (24 + 24) / 8; // bytes, which escapes make half as many again
    coded_stream stream;
    stream.sets(coded_sps(false));
    for (const unsigned int frame_num : {0x10U, 0x10U, 0x20U}) {
        bytes rbsp(500, 0);
        rbsp[three_codes] = static_cast<unsigned char>(frame_num);
        std::fill(rbsp.begin() + three_codes + 1, rbsp.end(), static_cast<unsigned char>(0x55));
        stream.unit(support::header_byte(2, 1), rbsp);
    }
    const auto frames = frames_of(stream);
    ASSERT_EQ(2U, frames.size());
    EXPECT_EQ((types{7, 8, 1, 1}), types_of(frames[0]));
    EXPECT_EQ((types{1}), types_of(frames[1]));
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

TEST(FrameFinder, UnitsBetweenFramesBelongToNone)
{
    coded_stream stream;
    stream.filler();
    const std::size_t first = stream.here();
    stream.sets(coded_sps(false)).idr();
    const std::size_t first_end = stream.here();
    stream.end_of_sequence().filler();
    const std::size_t second = stream.here();
    stream.idr().end_of_sequence();
    const auto frames = frames_of(stream);
    ASSERT_EQ(2U, frames.size());
    EXPECT_EQ(first, frames[0].offset);
    EXPECT_EQ(first_end - first, frames[0].size);
    EXPECT_EQ(second, frames[1].offset);
    EXPECT_EQ((types{5}), types_of(frames[1]));
    EXPECT_FALSE(frames[1].last) << "the end of the sequence ended it";
}

TEST(FrameFinder, TheSizeOfAFrameCountsZeroBytesBetweenItsUnits)
{
    const bytes unit = coded_stream().slice(0);
    support::stream_builder stream;
    stream.zeros(1).raw(unit).zeros(5).raw(unit).zeros(3);
    const auto frames = support::found_frames(stream, brenik::nalfmt_annexb, false).frames;
    ASSERT_EQ(1U, frames.size());
    EXPECT_EQ(0U, frames[0].offset) << "of the zero_byte";
    EXPECT_EQ(1 + unit.size() + 5 + unit.size(), frames[0].size);
}

TEST(FrameFinder, ADurationIsInSecondsWhereTheSpsTellsTheFieldRate)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).timing(7).idr().timing(5).slice(1).timing(9).slice(2);
    const auto frames = frames_of(stream);
    ASSERT_EQ(3U, frames.size());
    EXPECT_EQ(4U, frames[0].field_duration);
    EXPECT_EQ(0.08, frames[0].seconds);
    EXPECT_EQ(3U, frames[1].field_duration);
    EXPECT_EQ(0.06, frames[1].seconds);
    EXPECT_EQ(0U, frames[2].field_duration) << "pic_struct 9 is reserved";
    EXPECT_EQ(0.0, frames[2].seconds);
    const auto untimed = frames_of(coded_stream().sets(coded_sps(false, false)).idr());
    ASSERT_EQ(1U, untimed.size());
    EXPECT_EQ(2U, untimed[0].field_duration);
    EXPECT_FALSE(untimed[0].seconds.has_value());
}

TEST(FrameFinder, EachFrameIsTimedByItsOwnSps)
{
    support::sps_description slow = coded_sps(false);
    slow.vui->time_scale = 10;
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().sets(slow).idr().sets(coded_sps(false, false)).idr().sets(slow).idr();
    const auto frames = frames_of(stream);
    ASSERT_EQ(4U, frames.size());
    EXPECT_EQ(0.04, frames[0].seconds);
    EXPECT_EQ(0.2, frames[1].seconds);
    EXPECT_FALSE(frames[2].seconds.has_value()) << "an SPS without VUI tells no rate, whatever came before";
    EXPECT_EQ(0.2, frames[3].seconds);
}

TEST(FrameFinder, ALoneFieldIsNotTimedByTheSpsBehindIt)
{
    support::sps_description slow = coded_sps(true);
    slow.vui->time_scale = 10;
    const auto frames =
        frames_of(coded_stream().sets(coded_sps(true)).slice(1, coded::top).sets(slow).slice(2, coded::top));
    ASSERT_EQ(2U, frames.size());
    EXPECT_EQ((types{7, 8, 1}), types_of(frames[0]));
    EXPECT_EQ(0.04, frames[0].seconds);
    EXPECT_EQ(0.2, frames[1].seconds);
}

TEST(FrameFinder, AFrameWithoutASliceHasNoSeconds)
{
    const auto frames = frames_of(coded_stream().sets(coded_sps(false)));
    ASSERT_EQ(1U, frames.size());
    EXPECT_EQ((types{7, 8}), types_of(frames[0]));
    EXPECT_EQ(2U, frames[0].field_duration);
    EXPECT_FALSE(frames[0].seconds.has_value());
    EXPECT_TRUE(frames[0].last);
}

TEST(FrameFinder, APairOfFieldsIsAFrameUnlessFieldsAreSplit)
{
    coded_stream stream;
    stream.sets(coded_sps(true));
    stream.timing(1).slice(1, coded::top).timing(2).slice(1, coded::bottom);
    stream.timing(2).slice(2, coded::bottom).timing(1).slice(2, coded::top);
    const auto pairs = frames_of(stream);
    ASSERT_EQ(2U, pairs.size());
    EXPECT_EQ((types{7, 8, 6, 1, 6, 1}), types_of(pairs[0]));
    EXPECT_EQ(2U, pairs[0].field_duration);
    EXPECT_FALSE(pairs[0].last);
    EXPECT_EQ((types{6, 1, 6, 1}), types_of(pairs[1]));
    EXPECT_EQ(2U, pairs[1].field_duration) << "the end of the input is like any other end";
    EXPECT_TRUE(pairs[1].last);
    const auto fields = frames_of(stream, true);
    ASSERT_EQ(4U, fields.size());
    for (const frame& f : fields)
        EXPECT_EQ(1U, f.field_duration);
    EXPECT_EQ((types{6, 1}), types_of(fields[3]));
    EXPECT_TRUE(fields[3].last);
}

TEST(FrameFinder, ALastFieldWithoutTimingLastsOneFieldWhenFieldsAreSplit)
{
    const coded_stream stream = coded_stream().sets(coded_sps(true)).slice(1, coded::top).aud().slice(1, coded::bottom);
    ASSERT_EQ(1U, frames_of(stream).size());
    EXPECT_EQ(2U, frames_of(stream)[0].field_duration);
    const auto fields = frames_of(stream, true);
    ASSERT_EQ(2U, fields.size());
    EXPECT_EQ(1U, fields[0].field_duration);
    EXPECT_EQ(1U, fields[1].field_duration);
}

TEST(FrameFinder, ALoneFieldIsAFrame)
{
    coded_stream stream;
    stream.sets(coded_sps(true)).timing(1).slice(1, coded::top).timing(0).slice(2).timing(1).slice(3, coded::top);
    const auto frames = frames_of(stream);
    ASSERT_EQ(3U, frames.size());
    EXPECT_EQ((types{7, 8, 6, 1}), types_of(frames[0]));
    EXPECT_EQ((types{6, 1}), types_of(frames[1]));
    EXPECT_EQ(2U, frames[1].field_duration);
    EXPECT_EQ((types{6, 1}), types_of(frames[2]));
    // The scan counts a field whose pair did not come before the end of the stream twice.
    EXPECT_EQ(2U, frames[2].field_duration);
    EXPECT_TRUE(frames[2].last);
}

TEST(FrameFinder, SlicesAreReadWithTheSpsBeforeThem)
{
    support::sps_description wide = coded_sps(false);
    wide.log2_max_frame_num_minus4 = 4;
    coded_stream stream;
    stream.sets(coded_sps(false)).slice(1).slice(2).set(wide);
    // frame_num 0x10 and 0x11 in 8 bits: in 4 bits they would be equal.
    support::slice_header_description header = stream.described(0x10);
    header.frame_num_width = 8;
    stream.slice(header, 0x41);
    header.frame_num = 0x11;
    stream.slice(header, 0x41);
    EXPECT_EQ(4U, frames_of(stream).size());
}

TEST(FrameFinder, FramesComeOutAsSoonAsThereIsEnoughToScan)
{
    coded_stream stream;
    stream.sets(coded_sps(false));
    for (std::uint32_t i = 0; i < 400; ++i)
        stream.slice(i % 16, coded::frame, 1000);
    std::size_t fed = 0;
    std::size_t found = 0;
    std::size_t most_behind = 0;
    orv_h264::frame_finder finder(false);
    for (const support::found_unit& u : support::legacy_units(support::guarded_buffer(stream.made()), 0)) {
        const std::size_t size = u.fence - u.start;
        orv_h264::frame_unit added;
        added.where = {u.start, 3, size - 3, 0, false};
        finder.add(added, std::span(stream.made()).subspan(u.start + 3, size - 3));
        ++fed;
        for (frame f; finder.next(f);)
            found += f.units.size();
        most_behind = std::max(most_behind, fed - found);
    }
    EXPECT_EQ(402U, fed);
    EXPECT_LE(most_behind, 70U) << "not more than twice the 32 KiB that are worth a scan";
    EXPECT_GT(most_behind, 16U) << "nor a scan for each unit";
}

namespace {

/// One unit walked behind sound parameter sets.
orv_h264::frame_unit made(const support::slice_header_description& header, unsigned char nal_header,
                          const support::pps_description& pic = {})
{
    coded_stream stream;
    stream.set(coded_sps(true)).set(pic).slice(header, nal_header);
    return frames_of(stream).at(0).units.at(2);
}

support::slice_header_description p_field()
{
    support::slice_header_description header;
    header.slice_type = 0;
    header.field_pic_flag = true;
    return header;
}

} // namespace

TEST(FrameUnit, ASliceTellsItsTypeWhetherItIsOfAFieldAndBeginsAPicture)
{
    const orv_h264::frame_unit u = made(p_field(), 0x41);
    EXPECT_EQ(brenik::h264_slice_type_P, u.slice_type);
    EXPECT_TRUE(u.begins_picture);
    EXPECT_TRUE(u.field);
    support::slice_header_description later = p_field();
    later.first_mb_in_slice = 5;
    later.field_pic_flag = false;
    EXPECT_FALSE(made(later, 0x41).begins_picture);
    EXPECT_FALSE(made(later, 0x41).field);
    EXPECT_TRUE(made(p_field(), 0x42).begins_picture) << "partition A";
}

TEST(FrameUnit, ARedundantPictureIsNone)
{
    support::pps_description pic;
    pic.redundant_pic_cnt_present_flag = true;
    support::slice_header_description header = p_field();
    header.redundant_pic_cnt = 1;
    EXPECT_FALSE(made(header, 0x41, pic).begins_picture);
    header.redundant_pic_cnt = 0;
    EXPECT_TRUE(made(header, 0x41, pic).begins_picture);
}

TEST(FrameUnit, OfThreeColourPlanesTheFirstBeginsThePicture)
{
    support::sps_description seq = coded_sps(false);
    seq.profile_idc = 244;
    seq.high_profile_syntax = true;
    seq.chroma_format_idc = 3;
    seq.separate_colour_plane_flag = true;
    coded_stream stream;
    stream.sets(seq);
    for (const unsigned int plane : {0U, 1U, 2U}) {
        support::slice_header_description header = stream.described(0);
        header.colour_plane_id = plane;
        stream.slice(header, 0x41);
    }
    const auto frames = frames_of(stream);
    ASSERT_EQ(1U, frames.size());
    EXPECT_EQ(1U, orv_h264::coded_pictures(frames[0]));
    EXPECT_EQ(1U, orv_h264::shown_pictures(frames[0]));
}

TEST(FrameUnit, ASliceWithoutItsParameterSetsTellsNothing)
{
    const auto frames = frames_of(coded_stream().slice(1));
    ASSERT_EQ(1U, frames.size());
    EXPECT_FALSE(frames[0].units[0].slice_type.has_value());
    EXPECT_FALSE(frames[0].units[0].begins_picture);
    EXPECT_EQ(0U, orv_h264::coded_pictures(frames[0]));
}

TEST(Frame, AnIdrPictureAndARecoveryPointAreKeys)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().recovery_point(7).slice(1).recovery_point(0).slice(2).slice(3);
    const auto frames = frames_of(stream);
    ASSERT_EQ(4U, frames.size());
    EXPECT_TRUE(orv_h264::has_idr(frames[0]));
    EXPECT_FALSE(orv_h264::recovery_frame_cnt(frames[0]).has_value());
    EXPECT_TRUE(orv_h264::is_key(frames[0]));
    EXPECT_FALSE(orv_h264::has_idr(frames[1]));
    EXPECT_EQ(7U, orv_h264::recovery_frame_cnt(frames[1]));
    EXPECT_TRUE(orv_h264::is_key(frames[1]));
    EXPECT_EQ(0U, orv_h264::recovery_frame_cnt(frames[2]));
    EXPECT_TRUE(orv_h264::is_key(frames[2]));
    EXPECT_FALSE(orv_h264::is_key(frames[3]));
}

TEST(Frame, ARecoveryPointThatIsCutIsNone)
{
    const auto frames =
        frames_of(coded_stream().sets(coded_sps(false)).unit(support::sei, support::sei_rbsp({{6, {0x01}}})).slice(1));
    ASSERT_EQ(1U, frames.size());
    EXPECT_FALSE(orv_h264::is_key(frames[0]));
}

TEST(Frame, IsJoinedWhenItHoldsMoreThanAFrameOrAPairOfFields)
{
    coded_stream stream;
    stream.sets(coded_sps(true)).slice(1).slice(1);                              // two frames
    stream.slice(2, coded::top).slice(2, coded::bottom);                         // one pair
    stream.aud().slice(2, coded::top).aud();                                     // nothing of these joins them
    stream.slice(3).slice(3, coded::top);                                        // a frame and a field
    stream.aud().slice(4, coded::top).slice(4, coded::top).slice(4, coded::top); // a field too much
    const auto frames = frames_of(stream);
    std::vector<std::uint64_t> pictures;
    std::vector<bool> joined;
    for (const frame& f : frames) {
        pictures.push_back(orv_h264::coded_pictures(f));
        joined.push_back(orv_h264::shown_pictures(f) > 1);
    }
    EXPECT_EQ((std::vector<std::uint64_t>{2, 3, 2, 3}), pictures);
    EXPECT_EQ((std::vector<bool>{true, true, true, true}), joined);
    const auto sound = frames_of(coded_stream().sets(coded_sps(true)).slice(2, coded::top).slice(2, coded::bottom));
    ASSERT_EQ(1U, sound.size());
    EXPECT_EQ(2U, orv_h264::coded_pictures(sound[0]));
    EXPECT_EQ(1U, orv_h264::shown_pictures(sound[0]));
}
