#include "support/coded_stream.h"
#include "support/surveyed.h"

#include <gtest/gtest.h>

namespace {

using orv_h264::sequence_summary;
using orv_h264::stream_summary;
using support::coded;
using support::coded_sps;
using support::coded_stream;
using support::survey_of;

/// A parameter set that differs from others by its level.
support::sps_description with_level(unsigned int level_idc, std::uint32_t id = 0)
{
    support::sps_description seq = coded_sps(false);
    seq.level_idc = level_idc;
    seq.seq_parameter_set_id = id;
    return seq;
}

support::pps_description pps_of(std::uint32_t id, std::uint32_t sps_id)
{
    support::pps_description pic;
    pic.pic_parameter_set_id = id;
    pic.seq_parameter_set_id = sps_id;
    return pic;
}

std::vector<int> levels_of(const stream_summary& summary)
{
    std::vector<int> levels;
    for (const sequence_summary& sequence : summary.sequences)
        levels.push_back(sequence.sps.level_idc);
    return levels;
}

std::vector<std::uint64_t> pictures_of(const stream_summary& summary)
{
    std::vector<std::uint64_t> pictures;
    for (const sequence_summary& sequence : summary.sequences)
        pictures.push_back(sequence.pictures);
    return pictures;
}

using levels = std::vector<int>;
using pictures = std::vector<std::uint64_t>;

} // namespace

TEST(StreamSummary, OfNothingIsEmpty)
{
    const stream_summary summary = survey_of(support::bytes());
    EXPECT_TRUE(summary.sequences.empty());
    EXPECT_TRUE(summary.problems.kinds().empty());
    EXPECT_TRUE(summary.findings.kinds().empty());
    EXPECT_FALSE(summary.encoder.has_value());
    for (const auto& count : summary.types)
        EXPECT_EQ(0U, count.units);
}

TEST(StreamSummary, CountsUnitsAndTheirBytesByType)
{
    const coded_stream stream = coded_stream().aud().sets(coded_sps(false)).idr().slice(1, coded::frame, 100).aud();
    const stream_summary summary = survey_of(stream);
    EXPECT_EQ(2U, summary.types[9].units);
    EXPECT_EQ(10U, summary.types[9].bytes) << "3 of framing, header and a byte";
    for (const std::size_t type : {1U, 5U, 7U, 8U})
        EXPECT_EQ(1U, summary.types[type].units) << type;
    EXPECT_GT(summary.types[1].bytes, 100U);
    std::uint64_t bytes = 0;
    for (const auto& count : summary.types)
        bytes += count.bytes;
    EXPECT_EQ(stream.here(), bytes);
}

TEST(StreamSummary, AParameterSetThatIsRepeatedMakesNoSequence)
{
    coded_stream stream;
    stream.sets(with_level(30)).idr().sets(with_level(30)).idr().slice(1).sets(with_level(30)).idr();
    const stream_summary summary = survey_of(stream);
    EXPECT_EQ((levels{30}), levels_of(summary));
    EXPECT_EQ((pictures{4}), pictures_of(summary));
}

TEST(StreamSummary, AParameterSetThatChangesMakesASequence)
{
    coded_stream stream;
    stream.sets(with_level(30)).idr();
    const std::size_t second = stream.here();
    stream.sets(with_level(31)).idr().slice(1);
    stream.sets(with_level(30)).idr();
    const stream_summary summary = survey_of(stream);
    EXPECT_EQ((levels{30, 31}), levels_of(summary));
    EXPECT_EQ((pictures{2, 2}), pictures_of(summary)) << "what comes back is no third";
    EXPECT_EQ(0U, summary.sequences[0].offset);
    EXPECT_EQ(second, summary.sequences[1].offset) << "where its first picture begins";
}

TEST(StreamSummary, TheIdThatASetIsKeptUnderMakesNoDifference)
{
    coded_stream stream;
    stream.set(with_level(30, 0)).set(pps_of(0, 0)).idr().set(with_level(30, 5)).set(pps_of(0, 5)).idr();
    const stream_summary summary = survey_of(stream);
    EXPECT_EQ((levels{30}), levels_of(summary));
    EXPECT_EQ((pictures{2}), pictures_of(summary));
}

TEST(StreamSummary, PicturesCountForTheSetThatTheirSlicesName)
{
    coded_stream stream;
    stream.set(with_level(30, 0)).set(with_level(31, 1)).set(pps_of(0, 0)).set(pps_of(1, 1));
    for (const std::uint32_t pps : {1U, 0U, 1U, 1U}) {
        support::slice_header_description slice = stream.described(0);
        slice.pic_parameter_set_id = pps;
        slice.idr_pic_id = pps;
        stream.slice(slice, support::idr_slice).aud();
    }
    const stream_summary summary = survey_of(stream);
    EXPECT_EQ((levels{31, 30}), levels_of(summary)) << "in the order of their first pictures";
    EXPECT_EQ((pictures{3, 1}), pictures_of(summary));
}

TEST(StreamSummary, ASetThatNoPictureUsesIsNoSequence)
{
    coded_stream stream;
    stream.set(with_level(40, 3)).set(with_level(30)).set(pps_of(0, 0)).set(with_level(41, 4)).idr();
    stream.set(with_level(42, 5)).slice(1);
    const stream_summary summary = survey_of(stream);
    EXPECT_EQ((levels{30}), levels_of(summary));
    EXPECT_EQ((pictures{2}), pictures_of(summary));
}

TEST(StreamSummary, WithoutAPictureEverySetIsASequence)
{
    const coded_stream stream = coded_stream().aud().set(with_level(30)).set(with_level(31)).set(with_level(30));
    const stream_summary summary = survey_of(stream);
    EXPECT_EQ((levels{30, 31}), levels_of(summary));
    EXPECT_EQ((pictures{0, 0}), pictures_of(summary));
    EXPECT_EQ(8U, summary.sequences[0].offset) << "its header";
}

TEST(StreamSummary, ASetThatCannotBeReadIsNoSequenceAndAProblem)
{
    const stream_summary summary = survey_of(coded_stream().unit(support::sps, {66, 0, 30}));
    EXPECT_TRUE(summary.sequences.empty());
    ASSERT_EQ(1U, summary.problems.kinds().size());
    EXPECT_EQ(0U, summary.problems.kinds()[0].first_offset);
}

TEST(StreamSummary, SequencesBeyondTheBoundAreCountedEachTimeTheyChange)
{
    coded_stream stream;
    for (unsigned int i = 0; i < stream_summary::most_sequences; ++i)
        stream.sets(with_level(i + 1)).idr();
    EXPECT_EQ(0U, survey_of(stream).further_sequences);
    stream.sets(with_level(200)).idr().sets(with_level(200, 0)).idr();
    EXPECT_EQ(1U, survey_of(stream).further_sequences) << "a repeated set is the same sequence";
    stream.sets(with_level(1)).idr().sets(with_level(200)).idr();
    EXPECT_EQ(1U, survey_of(stream).further_sequences) << "so it is behind one that is kept";
    stream.sets(with_level(201)).idr();
    EXPECT_EQ(2U, survey_of(stream).further_sequences);
    stream.sets(with_level(200)).idr();
    const stream_summary summary = survey_of(stream);
    EXPECT_EQ(3U, summary.further_sequences) << "what comes back behind another counts again";
    ASSERT_EQ(stream_summary::most_sequences, summary.sequences.size());
    for (std::size_t i = 0; i < summary.sequences.size(); ++i)
        EXPECT_EQ(i == 0 ? 2U : 1U, summary.sequences[i].pictures) << i;
}

TEST(StreamSummary, OfSetsBeforeTheFirstPictureNoneCountsAsFurther)
{
    coded_stream stream;
    for (unsigned int i = 0; i < stream_summary::most_sequences + 5; ++i)
        stream.set(with_level(i + 1)).slice(i % 16); // whose PPS is missing
    EXPECT_EQ(5U, survey_of(stream).further_sequences);
    EXPECT_EQ(0U, survey_of(stream.set(pps_of(0, 0)).idr()).further_sequences);
}

TEST(StreamSummary, ASliceWithoutItsSetsIsAProblemAndOfNoSequence)
{
    const stream_summary summary = survey_of(coded_stream().slice(1).sets(with_level(30)).idr());
    EXPECT_EQ((pictures{1}), pictures_of(summary));
    ASSERT_EQ(1U, summary.problems.kinds().size());
    EXPECT_EQ(0U, summary.problems.kinds()[0].first_offset);
}

TEST(StreamSummary, AGapInFrameNumIsAFindingAndNoProblem)
{
    const stream_summary summary = survey_of(coded_stream().sets(coded_sps(false)).idr().slice(5));
    EXPECT_TRUE(summary.problems.kinds().empty());
    ASSERT_EQ(1U, summary.findings.kinds().size());
}

TEST(StreamSummary, TheTimingOfAPictureIsOfItsSequence)
{
    support::sps_description other = coded_sps(true);
    other.level_idc = 31;
    coded_stream stream;
    stream.sets(coded_sps(true)).timing(0).idr().sets(other).timing(3).idr().timing(4);
    const stream_summary summary = survey_of(stream);
    ASSERT_EQ(2U, summary.sequences.size());
    EXPECT_FALSE(summary.sequences[0].top_field_first.has_value());
    EXPECT_EQ(true, summary.sequences[1].top_field_first);
}

TEST(StreamSummary, TheFirstEncoderThatIsNamedHolds)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).user_data("no encoder").idr();
    EXPECT_FALSE(survey_of(stream).encoder.has_value()) << "its UUID is not known";
    stream.encoder("").slice(1).encoder("first - 1 - options: a=1").encoder("second").slice(2);
    const stream_summary summary = survey_of(stream);
    ASSERT_TRUE(summary.encoder.has_value());
    EXPECT_EQ("first - 1", summary.encoder->name);
    EXPECT_EQ("a=1", summary.encoder->settings);
}

namespace {

using namespace orv_utils_v4::h264;

seq_parameter_set_data reordering_sps()
{
    seq_parameter_set_data made = support::timed_sps();
    made.pic_order_cnt_type = 0;
    made.log2_max_pic_order_cnt_lsb_minus4 = 4;
    made.log2_max_frame_num_minus4 = 4;
    made.max_num_ref_frames = 4;
    made.vui_parameters.bitstream_restriction_flag = true;
    made.vui_parameters.max_num_reorder_frames = 4;
    made.vui_parameters.max_dec_frame_buffering = 4;
    return made;
}

/// Of an IDR picture, and references whose places in output order behind it are these.
stream_summary reordered(const std::vector<std::uint32_t>& places)
{
    made_stream stream(reordering_sps());
    stream.add_sets().add(idr());
    std::uint32_t frame_num = 1;
    for (const std::uint32_t place : places)
        stream.add(reference(frame_num++, 2 * place));
    return survey_of(stream);
}

} // namespace

TEST(StreamSummary, TheReorderDepthIsThatWhichPicturesUse)
{
    const std::pair<std::vector<std::uint32_t>, std::uint32_t> cases[] = {
        {{1, 2, 3}, 0}, {{2, 1, 4, 3}, 1}, {{4, 2, 1, 3}, 2}, {{4, 3, 2, 1}, 3}, {{3, 1, 2}, 1},
    };
    for (const auto& [places, depth] : cases) {
        const stream_summary summary = reordered(places);
        ASSERT_EQ(1U, summary.sequences.size());
        EXPECT_EQ(depth, summary.sequences[0].reorder_depth) << places.front();
    }
}

TEST(StreamSummary, LayersOfOtherStreamsAreNone)
{
    EXPECT_TRUE(reordered({1, 2}).layers.layers().empty());
}

TEST(StreamSummary, EverySecondIsHeldAgainstTheSchedules)
{
    seq_parameter_set_data sps = support::timed_sps();
    sps.vui_parameters.nal_hrd_parameters_present_flag = true;
    sps.vui_parameters.nal_hrd_parameters.cpb_cnt_minus1 = 1;
    sps.vui_parameters.nal_hrd_parameters.bit_rate_value_minus1[0] = 200; // 12,864 bit/s
    sps.vui_parameters.nal_hrd_parameters.bit_rate_value_minus1[1] = 20000;
    made_stream stream(sps);
    stream.add_sets().add(idr());
    std::vector<unsigned char> filler(2000, 0xFF);
    filler.push_back(0x80);
    for (std::uint32_t i = 1; i < 50; ++i) {
        stream.add(reference(i % 16));
        if (i == 30)
            stream.add_bytes(12, filler);
    }
    const stream_summary summary = survey_of(stream);
    ASSERT_EQ(1U, summary.sequences.size());
    const orv_h264::second_rates& rates = summary.sequences[0].nal_seconds;
    EXPECT_EQ(2U, rates.seconds);
    EXPECT_EQ(1U, rates.above[0]) << "the one with the filler data";
    EXPECT_EQ(0U, rates.above[1]);
    EXPECT_GT(rates.largest, 16000);
    EXPECT_LT(rates.largest, 20000);
    EXPECT_DOUBLE_EQ(rates.largest, summary.frames.bit_rate().peak().value());
    EXPECT_LT(summary.sequences[0].vcl_seconds.largest, rates.largest) << "without sets and start codes";
    EXPECT_GT(summary.sequences[0].vcl_seconds.largest, 16000) << "with filler data";
}
