// The rules over the load of a stream: how much they weigh, and where they have nothing to say.
#include "support/checked.h"
#include "support/planted_slices.h"
#include "support/timed_pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace support;

/// What the rules over levels tell, with their severities.
std::string of_levels(const bytes& stream)
{
    std::string text;
    for (const orv_h264::violation& what : violations_of(stream))
        if (what.broken->id.starts_with("level-") && what.level != orv_h264::severity::note)
            text += fmt::format("{} {}, ", what.broken->id, name_of(what.level));
    return text;
}

/// A picture of 12 macroblocks at level 1, with so many bytes of data.
bytes of_bytes(seq_parameter_set_data made, const made_slice& slice, std::size_t data)
{
    made.level_idc = 10;
    made_stream stream(made);
    stream.add_sets().add_large(slice, data);
    return stream.bytes;
}

TEST(LevelRules, LargerMacroblocksMayHaveMoreBytes)
{
    seq_parameter_set_data made = sps_of_references(1);
    made.profile_idc = 122;
    made.chroma_format_idc = 2;
    made.bit_depth_luma_minus8 = 2;
    made.bit_depth_chroma_minus8 = 2;
    EXPECT_EQ(of_levels(of_bytes(made, idr(), 3700)), "");
    EXPECT_EQ(of_levels(of_bytes(made, idr(), 4000)), "level-picture-compressed warning, ");
    EXPECT_EQ(of_levels(of_bytes(sps_data(), idr(), 3700)), "level-picture-compressed error, ");
}

TEST(LevelRules, LosslessProfilesAreWarnedAlone)
{
    seq_parameter_set_data made = sps_of_references(1);
    made.profile_idc = 244;
    EXPECT_EQ(of_levels(of_bytes(made, idr(), 3000)), "level-picture-compressed warning, ");
    made.profile_idc = 100;
    EXPECT_EQ(of_levels(of_bytes(made, idr(), 3000)), "level-picture-compressed error, ");
}

TEST(LevelRules, NoTimeIsKnownOfAStreamThatBeginsInTheMiddle)
{
    EXPECT_EQ(of_levels(of_bytes(sps_data(), reference(5), 3700)), "");
}

TEST(LevelRules, NoTimeIsKnownOfALaterPictureWithoutTimingMessages)
{
    made_stream stream;
    stream.sps().level_idc = 10;
    stream.add_sets().add(idr()).add_large(reference(1), 3700);
    EXPECT_EQ(of_levels(stream.bytes), "");
}

/// Pictures at these ticks of a millisecond behind the first one, each output at once.
bytes at_ticks(std::initializer_list<std::pair<std::uint32_t, made_slice>> pictures)
{
    timed_pictures_stream stream(1, 1000, true);
    bool first = true;
    for (const auto& [ticks, slice] : pictures) {
        stream.add_timed({first ? std::optional(900U) : std::nullopt, ticks, 90, 0}, slice);
        first = false;
    }
    return stream.bytes;
}

TEST(LevelRules, TheFieldsOfAFrameTakeAsLongAsAFrame)
{
    const std::string both = "level-decoding-rate error, level-output-rate error, ";
    EXPECT_EQ(of_levels(at_ticks({{0, top(idr())}, {3, bottom(reference(0, 1))}, {6, reference(1, 4)}})), "");
    EXPECT_EQ(of_levels(at_ticks({{0, top(idr())}, {3, bottom(reference(0, 1))}, {5, reference(1, 4)}})), both);
}

TEST(LevelRules, ALoneFieldTakesHalfAsLong)
{
    const std::string both = "level-decoding-rate error, level-output-rate error, ";
    EXPECT_EQ(of_levels(at_ticks({{0, top(idr())}, {3, reference(1, 4)}, {9, reference(2, 8)}})), "");
    EXPECT_EQ(of_levels(at_ticks({{0, top(idr())}, {2, reference(1, 4)}, {9, reference(2, 8)}})), both);
}

TEST(LevelRules, TimesThatGoBackSayNothing)
{
    EXPECT_EQ(of_levels(at_ticks({{0, idr()}, {40, reference(1, 2)}, {39, reference(2, 4)}})), "");
}

} // namespace
