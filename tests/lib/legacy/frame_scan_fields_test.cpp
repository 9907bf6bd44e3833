// Fields and durations: which of two fields make a frame, and how long it is shown.
#include "support/frame_notation.h"

#include <gtest/gtest.h>

namespace {

using namespace support::frame_notation;
using lines = std::vector<std::string>;

} // namespace

TEST(FrameScanFields, TwoFieldsAndWhatLeadsTheSecondAreOneFrame)
{
    EXPECT_EQ("0 to 4: sei slice, 2 fields", first_frame({sei(1), slice(3, top), sei(2), slice(3, bottom), aud}));
    for (const unit& between : {other_sei(), pps, aud, sps()})
        EXPECT_EQ("0 to 3: ", first_frame({slice(3, top), between, slice(3, bottom), pps}).substr(0, 8));
    EXPECT_EQ("0 to 7: aud sps pps sei slice, 2 fields",
              first_frame({slice(3, top), aud, sps(), pps, other_sei(), sei(0), slice(3, bottom), other_sei()}));
}

TEST(FrameScanFields, SplitEachFieldIsAFrame)
{
    EXPECT_EQ((lines{"0 to 2: sei slice, 1 fields", "2 to 4: sei slice, 1 fields", "4 on: aud, 2 fields"}),
              frames({sei(1), slice(3, top), sei(2), slice(3, bottom), aud}, {split_fields}));
    EXPECT_EQ((lines{"0 to 1: slice, 1 fields", "1 to 3: aud slice, 1 fields", "3 on: aud, 2 fields"}),
              frames({slice(3, top), aud, slice(3, bottom), aud}, {split_fields}))
        << "without picture timing";
}

TEST(FrameScanFields, EveryUnitOfTypeSixToElevenBehindTheSecondFieldEndsTheFrame)
{
    for (const unit& boundary : {other_sei(), sps(), pps, aud, end_of_sequence, end_of_stream}) {
        EXPECT_EQ("0 to 3: aud slice, 2 fields", first_frame({slice(3, top), aud, slice(3, bottom), boundary}));
        EXPECT_EQ("0 to 4: aud slice, 2 fields",
                  first_frame({slice(3, top), aud, slice(3, bottom), slice(3, bottom), boundary}));
    }
}

TEST(FrameScanFields, EndOfSequenceAndOfStreamBetweenTheFieldsEndTheFrame)
{
    EXPECT_EQ((lines{"0 to 1: slice, 2 fields", "2 on: slice, 2 fields"}),
              frames({slice(3, top), end_of_sequence, slice(3, bottom)}));
    EXPECT_EQ("0 to 2: slice, 2 fields", first_frame({slice(3, top), filler, end_of_stream, slice(3, bottom)}));
    EXPECT_EQ("0 to 2: aud slice, 2 fields", first_frame({slice(3, top), aud, end_of_sequence, slice(3, bottom)}));
}

TEST(FrameScanFields, FieldsOfOneFrameNumWithNothingBetweenStayTogetherEvenWhenSplit)
{
    EXPECT_EQ("0 to 2: slice, 2 fields", first_frame({slice(3, top), slice(3, bottom), slice(4, top)}));
    EXPECT_EQ("0 to 2: slice, 2 fields", first_frame({slice(3, top), slice(3, bottom), slice(4, top)}, {split_fields}));
    EXPECT_EQ("0 to 2: slice, 1 fields", first_frame({slice(3, top), slice(3, bottom), aud}, {split_fields}));
    EXPECT_EQ("0 to 4: aud slice, 2 fields", first_frame({slice(3, top), slice(3, bottom), aud, slice(3, top), aud}))
        << "they count as one field";
}

TEST(FrameScanFields, AnotherFrameNumBehindAFieldLeavesItAlone)
{
    EXPECT_EQ((lines{"0 to 1: sei slice, 2 fields", "1 on: sei slice, 2 fields"}),
              frames({slice(3, top), other_sei(), slice(4, top)}));
    EXPECT_EQ((lines{"0 to 1: slice, 2 fields", "1 on: slice, 2 fields"}), frames({slice(3, top), slice(4, bottom)}))
        << "with nothing between";
    EXPECT_EQ("0 to 2: aud slice, 2 fields", first_frame({slice(3, top), slice(3, top), aud, slice(4, top)}));
}

TEST(FrameScanFields, ALoneFieldKeepsWhatTheUnitsBehindItSet)
{
    EXPECT_EQ((lines{"0 to 1: aud sps pps sei slice, 4 fields", "1 on: aud sps pps sei slice, 4 fields"}),
              frames({slice(3, top), aud, sps(), pps, sei(7), slice(4, top)}));
    EXPECT_EQ("0 to 2: sei slice, 1 fields", first_frame({sei(1), slice(3, top), sei(1), slice(4, top)}))
        << "no adjustment at a slice";
}

TEST(FrameScanFields, AFramePictureBehindALoneFieldEndsItProvisionally)
{
    EXPECT_EQ("0 on, 1 so far: aud slice, 2 fields", first_frame({slice(3, top), aud, slice(3)}));
    EXPECT_EQ("0 on, 1 so far: aud slice, 2 fields", first_frame({slice(3, top), aud, slice(3), slice(3, bottom)}));
    EXPECT_EQ("0 to 3: aud slice, 2 fields", first_frame({slice(3, top), aud, slice(3), aud})) << "overwritten";
    EXPECT_EQ("0 to 1: aud slice, 2 fields", first_frame({slice(3, top), aud, slice(4), aud}));
    EXPECT_EQ("0 on: aud slice, 2 fields", first_frame({slice(3, top), aud, slice(3, bottom)})) << "a field";
    EXPECT_EQ("0 on: slice, 2 fields", first_frame({slice(3, top), slice(3)})) << "nothing between";
    EXPECT_EQ("0 on: aud slice, 2 fields", first_frame({slice(3, top), aud, empty_slice})) << "no header";
}

TEST(FrameScanFields, AProvisionalEndStaysWhenThereIsNoRoom)
{
    const unit large = of_type(12, support::bytes(301, 0xFF));
    const stream s = framed({slice(3, top), aud, slice(3), large}, annexb);
    EXPECT_EQ((lines{"0, no room, 1 so far: aud slice, 2 fields"}), lines_of(s));
}

TEST(FrameScanFields, AFrameThatBeginsWithAFramePictureHasNoPair)
{
    EXPECT_EQ("0 to 2: slice, 2 fields", first_frame({slice(3), filler, aud, slice(3, bottom)}));
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({slice(3), aud, slice(3, bottom), aud}));
}

TEST(FrameScanFields, PartitionsAndFillerDoNotCloseTheFirstField)
{
    EXPECT_EQ("0 to 3: slice, 2 fields", first_frame({slice(3, top), filler, slice(3, bottom), end_of_stream}));
    EXPECT_EQ("0 to 5: aud slice, 2 fields",
              first_frame({slice(3, top), filler, aud, slice(3, bottom), partition_a, aud}));
}

TEST(FrameScanFields, PictureTimingSaysHowLongAFrameIs)
{
    const unsigned int expected[] = {2, 1, 1, 2, 2, 3, 3, 4, 6, 0, 0, 0, 0, 0, 0, 0};
    for (unsigned int pic_struct = 0; pic_struct < 16; ++pic_struct)
        EXPECT_EQ("0 to 2: sei slice, " + std::to_string(expected[pic_struct]) + " fields",
                  first_frame({sei(pic_struct), slice(0), aud}));
}

TEST(FrameScanFields, TheLastPictureTimingCounts)
{
    const auto timing = [](unsigned int pic_struct) {
        return std::pair<unsigned char, support::bytes>{1, {static_cast<unsigned char>(pic_struct << 4)}};
    };
    EXPECT_EQ("0 to 2: sei slice, 6 fields", first_frame({sei_of({timing(1), timing(8)}), slice(0), aud}));
    EXPECT_EQ("0 to 2: sei slice, 4 fields", first_frame({sei_of({timing(8), {4, {1}}, timing(7)}), slice(0), aud}));
    EXPECT_EQ("0 to 3: sei slice, 3 fields", first_frame({sei(1), sei(5), slice(0), aud}));
    EXPECT_EQ("0 to 3: sei slice, 3 fields", first_frame({sei(5), other_sei(), slice(0), aud})) << "others say nothing";
    EXPECT_EQ("0 to 2: sei slice, 3 fields", first_frame({sei_of({timing(5), {1, {}}}), slice(0), aud}))
        << "nor does an empty one";
}

TEST(FrameScanFields, DurationsOfOneFieldEachMakeTwo)
{
    EXPECT_EQ("0 to 4: sei slice, 2 fields", first_frame({sei(1), slice(3, top), sei(2), slice(3, bottom), aud}));
    EXPECT_EQ("0 to 4: aud sei slice, 2 fields", first_frame({sei(1), slice(3, top), aud, slice(3, bottom), pps}))
        << "one message for both";
}

TEST(FrameScanFields, OtherDurationsOfAPairAreTheLastOne)
{
    EXPECT_EQ("0 to 4: sei slice, 3 fields", first_frame({sei(1), slice(3, top), sei(5), slice(3, bottom), aud}));
    EXPECT_EQ("0 to 4: sei slice, 1 fields", first_frame({sei(5), slice(3, top), sei(1), slice(3, bottom), aud}));
    EXPECT_EQ("0 to 3: sei slice, 1 fields", first_frame({slice(3, top), sei(1), slice(3, bottom), aud}));
    EXPECT_EQ("0 to 4: sei slice, 2 fields", first_frame({sei(1), slice(3, top), sei(0), slice(3, bottom), aud}));
    EXPECT_EQ("0 to 4: sei slice, 0 fields", first_frame({sei(1), slice(3, top), sei(9), slice(3, bottom), aud}));
}

TEST(FrameScanFields, OneFieldAloneKeepsItsDuration)
{
    EXPECT_EQ("0 to 2: sei slice, 1 fields", first_frame({sei(1), slice(3), aud})) << "no pair was closed";
    EXPECT_EQ("0 to 2: sei slice, 2 fields", first_frame({sei(1), slice(3, top), end_of_stream}))
        << "closed by its end";
}

TEST(FrameScanFields, SplitFieldsHaveOneFieldUnlessTimingSaysOtherwise)
{
    EXPECT_EQ("0 to 2: sei slice, 1 fields", first_frame({sei(0), slice(3, top), aud}, {split_fields}));
    EXPECT_EQ("0 to 2: sei slice, 3 fields", first_frame({sei(5), slice(3, top), aud}, {split_fields}));
    EXPECT_EQ("0 to 2: sei slice, 1 fields", first_frame({sei(2), slice(3, bottom), aud}, {split_fields}));
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({slice(3), aud}, {split_fields})) << "a frame";
    EXPECT_EQ("0 to 2: slice, 2 fields", first_frame({slice(3, top), slice(3), aud}, {split_fields}))
        << "the last slice";
    EXPECT_EQ("0 to 2: slice, 1 fields", first_frame({slice(3), slice(3, top), aud}, {split_fields}));
    EXPECT_EQ("0 to 2: slice, 1 fields", first_frame({slice(3, top), empty_slice, aud}, {split_fields}))
        << "the last slice that has a header";
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({slice(3, top), slice(4, top), aud}, {split_fields}))
        << "no adjustment at a slice";
    EXPECT_EQ("0 to 1: aud, 2 fields", first_frame({aud, end_of_stream}, {split_fields})) << "no slice";
}

TEST(FrameScanFields, AFrameNumThatCountsAsNotSeenDoesNotPartTheFields)
{
    support::sps_description unknown = field_stream();
    unknown.log2_max_frame_num_minus4 = 21;
    EXPECT_EQ("0 to 1: sps slice, 2 fields", first_frame({slice(3, top), sps(unknown), slice(3, top, 1, 0), aud}))
        << "3 and unknown are not the same";
    h264_sps before = known_sps();
    before.log2_max_frame_num = 25;
    EXPECT_EQ("0 to 3: sps slice, 2 fields",
              first_frame({slice(0, top, 1, 0), sps(), slice(3, bottom), aud}, {0, before}))
        << "unknown takes the second field's";
    EXPECT_EQ("0 to 1: sps slice, 2 fields",
              first_frame({slice(0, top, 1, 0), sps(), slice(3, bottom), slice(4, top)}, {0, before}));
}
