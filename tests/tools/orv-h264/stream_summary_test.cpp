#include "stream_summary.h"

#include "stream_walker.h"
#include "support/coded_stream.h"

#include <gtest/gtest.h>

namespace {

using orv_h264::sequence_summary;
using orv_h264::stream_summary;
using support::bytes;
using support::coded;
using support::coded_sps;
using support::coded_stream;

stream_summary summary_of(const coded_stream& stream)
{
    std::size_t at = 0;
    const bytes& made = stream.made();
    orv_h264::piece_feeder feeder(orv_h264::input_window([&](unsigned char* out, std::size_t size) {
                                      const std::size_t count = std::min(size, made.size() - at);
                                      std::copy_n(made.data() + at, count, out);
                                      at += count;
                                      return count;
                                  }),
                                  brenik::nalfmt_annexb);
    orv_h264::stream_walker walker;
    stream_summary summary;
    for (;;) {
        const orv_h264::fed_item item = feeder.next();
        const auto* const u = std::get_if<orv_h264::unit>(&item);
        if (u == nullptr)
            return summary;
        const brenik::h264_nal nal = feeder.reader().nal;
        summary.add(*u, nal, walker.walk(feeder.reader()));
    }
}

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
        pictures.push_back(sequence.pictures());
    return pictures;
}

using levels = std::vector<int>;
using pictures = std::vector<std::uint64_t>;

} // namespace

TEST(StreamSummary, OfNothingIsEmpty)
{
    const stream_summary summary = summary_of({});
    EXPECT_TRUE(summary.sequences.empty());
    EXPECT_TRUE(summary.problems.kinds().empty());
    EXPECT_EQ("", summary.encoder);
    for (const auto& count : summary.types)
        EXPECT_EQ(0U, count.units);
}

TEST(StreamSummary, CountsUnitsAndTheirBytesByType)
{
    const coded_stream stream = coded_stream().aud().sets(coded_sps(false)).idr().slice(1, coded::frame, 100).aud();
    const stream_summary summary = summary_of(stream);
    EXPECT_EQ(2U, summary.types[9].units);
    EXPECT_EQ(10U, summary.types[9].bytes) << "3 of framing, header and a byte";
    EXPECT_EQ(1U, summary.types[7].units);
    EXPECT_EQ(1U, summary.types[8].units);
    EXPECT_EQ(1U, summary.types[5].units);
    EXPECT_EQ(1U, summary.types[1].units);
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
    const stream_summary summary = summary_of(stream);
    EXPECT_EQ((levels{30}), levels_of(summary));
    EXPECT_EQ((pictures{4}), pictures_of(summary));
}

TEST(StreamSummary, AParameterSetThatChangesMakesASequence)
{
    coded_stream stream;
    stream.sets(with_level(30)).idr();
    stream.sets(with_level(31));
    const std::size_t second = stream.here();
    stream.idr().slice(1);
    stream.sets(with_level(30)).idr();
    const stream_summary summary = summary_of(stream);
    EXPECT_EQ((levels{30, 31}), levels_of(summary));
    EXPECT_EQ((pictures{2, 2}), pictures_of(summary)) << "what comes back is no third";
    EXPECT_EQ(second, summary.sequences[1].offset);
}

TEST(StreamSummary, TheIdThatASetIsKeptUnderMakesNoDifference)
{
    coded_stream stream;
    stream.set(with_level(30, 0)).set(pps_of(0, 0)).idr().set(with_level(30, 5)).set(pps_of(0, 5)).idr();
    const stream_summary summary = summary_of(stream);
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
        stream.slice(slice, 0x41);
    }
    const stream_summary summary = summary_of(stream);
    EXPECT_EQ((levels{31, 30}), levels_of(summary)) << "in the order of their first pictures";
    EXPECT_EQ((pictures{3, 1}), pictures_of(summary));
}

TEST(StreamSummary, ASetThatNoPictureUsesIsNoSequence)
{
    coded_stream stream;
    stream.set(with_level(40, 3)).set(with_level(30)).set(pps_of(0, 0)).set(with_level(41, 4)).idr();
    stream.set(with_level(42, 5)).slice(1);
    const stream_summary summary = summary_of(stream);
    EXPECT_EQ((levels{30}), levels_of(summary));
    EXPECT_EQ((pictures{2}), pictures_of(summary));
}

TEST(StreamSummary, WithoutAPictureEverySetIsASequence)
{
    const coded_stream stream = coded_stream().aud().set(with_level(30)).set(with_level(31)).set(with_level(30));
    const stream_summary summary = summary_of(stream);
    EXPECT_EQ((levels{30, 31}), levels_of(summary));
    EXPECT_EQ((pictures{0, 0}), pictures_of(summary));
    EXPECT_EQ(5U, summary.sequences[0].offset);
}

TEST(StreamSummary, ASetThatDoesNotParseIsNoSequence)
{
    const stream_summary summary = summary_of(coded_stream().unit(support::sps, {66, 0, 30}));
    EXPECT_TRUE(summary.sequences.empty());
    ASSERT_EQ(1U, summary.problems.kinds().size());
    EXPECT_EQ(0U, summary.problems.kinds()[0].first_offset);
}

TEST(StreamSummary, SequencesBeyondTheBoundAreCountedEachTimeTheyChange)
{
    coded_stream stream;
    for (unsigned int i = 0; i < stream_summary::most_sequences; ++i)
        stream.sets(with_level(i + 1)).idr();
    EXPECT_EQ(0U, summary_of(stream).further_sequences);
    stream.sets(with_level(200)).idr().sets(with_level(200, 0)).idr();
    EXPECT_EQ(1U, summary_of(stream).further_sequences) << "a repeated set is the same sequence";
    stream.sets(with_level(1)).idr().sets(with_level(200)).idr();
    EXPECT_EQ(1U, summary_of(stream).further_sequences) << "so it is behind one that is kept";
    stream.sets(with_level(201)).idr();
    EXPECT_EQ(2U, summary_of(stream).further_sequences);
    stream.sets(with_level(200)).idr();
    EXPECT_EQ(3U, summary_of(stream).further_sequences) << "what comes back behind another counts again";
    EXPECT_EQ(stream_summary::most_sequences, summary_of(stream).sequences.size());
}

TEST(StreamSummary, OfSetsBeforeTheFirstPictureNoneCountsAsFurther)
{
    coded_stream stream;
    for (unsigned int i = 0; i < stream_summary::most_sequences + 5; ++i)
        stream.set(with_level(i + 1));
    EXPECT_EQ(5U, summary_of(stream).further_sequences);
    EXPECT_EQ(0U, summary_of(stream.set(pps_of(0, 0)).idr()).further_sequences);
}

TEST(StreamSummary, SequencesBeyondTheBoundAreNotKept)
{
    coded_stream stream;
    for (unsigned int i = 0; i < stream_summary::most_sequences + 5; ++i)
        stream.sets(with_level(i + 1)).idr();
    stream.sets(with_level(3)).idr();
    const stream_summary summary = summary_of(stream);
    EXPECT_EQ(stream_summary::most_sequences, summary.sequences.size());
    for (std::size_t i = 0; i < summary.sequences.size(); ++i)
        EXPECT_EQ(i == 2 ? 2U : 1U, summary.sequences[i].pictures()) << i;
    EXPECT_EQ(5U, summary.further_sequences);
    EXPECT_EQ(stream_summary::most_sequences + 6, summary.types[5].units);
}

TEST(StreamSummary, ASliceWithoutItsSetsIsAProblemAndNoPicture)
{
    const stream_summary summary = summary_of(coded_stream().slice(1).sets(with_level(30)).idr());
    EXPECT_EQ((pictures{1}), pictures_of(summary));
    ASSERT_EQ(1U, summary.problems.kinds().size());
    EXPECT_EQ("slice names picture parameter set 0, which is missing", summary.problems.kinds()[0].message);
}

TEST(StreamSummary, TheTimingOfTheFirstPictureTellsTheOrderOfItsFields)
{
    const stream_summary summary = summary_of(coded_stream().sets(coded_sps(true)).timing(4).idr());
    ASSERT_EQ(1U, summary.sequences.size());
    EXPECT_EQ(false, summary.sequences[0].top_field_first);
}

TEST(StreamSummary, TimingBelongsToTheSequenceOfThePictureBehindIt)
{
    support::sps_description other = coded_sps(true);
    other.level_idc = 31;
    coded_stream stream;
    stream.sets(coded_sps(true)).timing(0).idr().sets(other).timing(3).idr();
    const stream_summary summary = summary_of(stream);
    ASSERT_EQ(2U, summary.sequences.size());
    EXPECT_FALSE(summary.sequences[0].top_field_first.has_value());
    EXPECT_EQ(true, summary.sequences[1].top_field_first);
}

TEST(StreamSummary, TimingWithoutAPictureBehindItTellsNothing)
{
    const stream_summary summary = summary_of(coded_stream().sets(coded_sps(true)).idr().timing(3));
    EXPECT_FALSE(summary.sequences.at(0).top_field_first.has_value());
}

TEST(StreamSummary, TheEncoderIsTheStartOfWhatItWritesOfItself)
{
    struct encoder_case {
        const char* text;
        const char* encoder;
    };
    const std::string long_text(150, 'a');
    const std::string long_name(100, 'a');
    const encoder_case cases[] = {
        {"", ""},
        {"maker", "maker"},
        {"maker - core 3", "maker - core 3"},
        {"maker - core 3 - H.264 codec - options: a=1", "maker - core 3"},
        {"maker-x -y- z", "maker-x -y- z"},
        {"maker\nmore", "maker"},
        {"\x01maker", ""},
        {"m\xC3\xA4ker", "m"},
        {"~ tilde\x7F", "~ tilde"},
        {long_text.c_str(), long_name.c_str()},
    };
    for (const encoder_case& c : cases)
        EXPECT_EQ(c.encoder, summary_of(coded_stream().user_data(c.text)).encoder) << c.text;
}

TEST(StreamSummary, TheFirstEncoderThatIsNamedHolds)
{
    EXPECT_EQ("first", summary_of(coded_stream().user_data("").user_data("first").user_data("second")).encoder);
}

TEST(StreamSummary, UserDataThatIsCutNamesNoEncoder)
{
    coded_stream stream;
    bytes rbsp = {5, 40};
    rbsp.insert(rbsp.end(), 30, 'a');
    EXPECT_EQ("", summary_of(stream.unit(support::sei, rbsp)).encoder);
}
