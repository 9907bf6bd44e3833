// Where a frame begins and ends in a stream of frames, each rule in every framing. Fields and what the input does are
// in files of their own.
#include "support/frame_notation.h"

#include <gtest/gtest.h>

namespace {

using namespace support::frame_notation;
using lines = std::vector<std::string>;
using support::bytes;

} // namespace

TEST(FrameScan, AFrameOfEveryKindOfUnitEndsBeforeTheNextAud)
{
    EXPECT_EQ("0 to 5: aud sps pps sei slice, 2 fields",
              first_frame({aud, sps(), pps, sei(0), idr(0), aud, slice(1)}, {0, {}}));
}

TEST(FrameScan, AnyUnitOfTypeSixToElevenBehindASliceEndsTheFrame)
{
    for (const unit& boundary : {other_sei(), sps(), pps, aud, end_of_sequence, end_of_stream})
        EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({slice(1), boundary, slice(1)})) << int{boundary.header};
}

TEST(FrameScan, UnitsOfOtherTypesBehindASliceAreWithinTheFrame)
{
    for (unsigned int type = 0; type < 32; ++type) {
        if (type == 1 || (type >= 5 && type <= 11))
            continue;
        EXPECT_EQ("0 to 2: slice, 2 fields", first_frame({slice(1), of_type(type, {0x88}), aud})) << type;
        EXPECT_EQ("0 to 3: slice, 2 fields", first_frame({slice(1), of_type(type), slice(1), aud})) << type;
    }
}

TEST(FrameScan, AnotherFrameNumEndsTheFrameAtTheSlice)
{
    EXPECT_EQ((lines{"0 to 1: slice, 2 fields", "1 to 3: slice, 2 fields", "3 on: slice, 2 fields"}),
              frames({idr(0), slice(1), slice(1), slice(2)}));
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({slice(15), slice(0)})) << "wrapped around";
}

TEST(FrameScan, EqualFrameNumsWithNothingBetweenStayTogether)
{
    EXPECT_EQ("0 to 4: slice, 2 fields", first_frame({idr(2), slice(2), slice(2), filler, aud}));
    EXPECT_EQ((lines{"0 to 2: aud slice, 2 fields", "2 to 4: aud slice, 2 fields", "4 on: aud slice, 2 fields"}),
              frames({aud, slice(2), aud, slice(2), aud, slice(2)}))
        << "a unit between them parts them";
}

TEST(FrameScan, AnIdrSliceIsASliceAsAnyOther)
{
    EXPECT_EQ("0 to 3: slice, 2 fields", first_frame({slice(0), idr(0), slice(0), aud}));
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({idr(3), idr(0), aud}));
}

TEST(FrameScan, LeadingUnitsBelongToTheFrameThatFollows)
{
    EXPECT_EQ("0 to 7: aud sps pps sei slice, 2 fields",
              first_frame({sei(0), aud, pps, sps(), aud, other_sei(), slice(1), aud}));
    for (const unit& leading : {other_sei(), pps, aud})
        EXPECT_EQ("1 to 3: ", first_frame({filler, leading, slice(0), aud}).substr(0, 8));
}

TEST(FrameScan, UnitsOfOtherTypesBeforeTheFirstFrameAreSkipped)
{
    for (unsigned int type = 0; type < 32; ++type) {
        if (type == 1 || (type >= 5 && type <= 9))
            continue;
        EXPECT_EQ("1 to 3: aud slice, 2 fields", first_frame({of_type(type, {0x88}), aud, slice(0), aud})) << type;
        EXPECT_EQ("2 to 3: slice, 2 fields", first_frame({of_type(type), of_type(type), idr(0), aud})) << type;
    }
    EXPECT_EQ("3 to 4: slice, 2 fields", first_frame({end_of_sequence, end_of_stream, filler, slice(0), aud}));
}

TEST(FrameScan, ASliceMayBeginTheFrame)
{
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({slice(1), aud}));
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({idr(1), aud}));
    EXPECT_EQ("1 to 2: slice, 2 fields", first_frame({partition_a, slice(1), aud}));
}

TEST(FrameScan, EndOfSequenceAndOfStreamEndAFrameWithoutASliceToo)
{
    EXPECT_EQ((lines{"0 to 1: aud, 2 fields", "2 on: slice, 2 fields"}), frames({aud, end_of_sequence, slice(0)}));
    EXPECT_EQ((lines{"0 to 2: pps sei, 2 fields", "3 on: aud, 2 fields"}),
              frames({pps, other_sei(), end_of_stream, aud}));
}

TEST(FrameScan, AnyOtherUnitEndsTheLeadingUnits)
{
    for (unsigned int type = 0; type < 32; ++type) {
        if (type >= 5 && type <= 11)
            continue;
        EXPECT_EQ("0 to 2: aud", first_frame({aud, of_type(type, {0x88}), sei(0), slice(1), aud}).substr(0, 11))
            << type;
    }
    EXPECT_EQ((lines{"0 to 2: aud, 2 fields", "2 on: pps slice, 2 fields"}), frames({aud, filler, pps, slice(0)}));
}

TEST(FrameScan, EndOfSequenceAndOfStreamBelongToNoFrame)
{
    EXPECT_EQ((lines{"0 to 1: slice, 2 fields", "3 to 4: slice, 2 fields", "none, next end: 2 fields"}),
              frames({slice(1), end_of_sequence, end_of_stream, slice(1), end_of_stream}));
}

TEST(FrameScan, ASliceWithoutPayloadTellsNoFrameNum)
{
    EXPECT_EQ("0 to 4: slice, 2 fields", first_frame({empty_slice, slice(1), empty_slice, slice(1), slice(2)}));
    EXPECT_EQ("0 to 1: slice, 2 fields", first_frame({of_type(5), aud}));
    EXPECT_EQ("0 to 2: aud slice, 2 fields", first_frame({aud, empty_slice, aud}));
}

TEST(FrameScan, TheNumberOfTheFirstMacroblockIsNotUsed)
{
    unit second_half = slice(1);
    second_half.rbsp = support::bit_writer().ue(50).ue(5).ue(0).u(4, 1).u(9, 1).trailing_bits().bytes();
    unit other_pps = slice(1);
    other_pps.rbsp = support::bit_writer().ue(0).ue(7).ue(9).u(4, 1).u(9, 1).trailing_bits().bytes();
    EXPECT_EQ("0 to 4: slice, 2 fields", first_frame({slice(1), second_half, other_pps, slice(1), aud}));
}

TEST(FrameScan, TheReferenceIdcIsNotUsed)
{
    unit reference = slice(1);
    reference.header = support::header_byte(3, 1);
    unit disposable = slice(1);
    disposable.header = support::header_byte(0, 1);
    EXPECT_EQ("0 to 3: slice, 2 fields", first_frame({reference, disposable, idr(1), aud}));
}

TEST(FrameScan, SlicesFollowTheSpsAtOnce)
{
    support::sps_description wide = field_stream();
    wide.log2_max_frame_num_minus4 = 12;
    const unit first = slice(0x1234, frame, 5, 16);
    const unit second = slice(0x1235, frame, 1, 16);
    EXPECT_EQ((lines{"0 to 2: sps slice, 2 fields", "2 on: slice, 2 fields"}), frames({sps(wide), first, second}))
        << "told apart by their last bits";
    EXPECT_EQ("0 to 3: sps slice, 2 fields", first_frame({sps(wide), first, first, aud}));
    EXPECT_EQ("0 on: slice, 2 fields", first_frame({first, second})) << "by 4 bits they are the same";
}

TEST(FrameScan, ALaterFrameUsesTheSpsOfAnEarlierOne)
{
    support::sps_description frames_only = field_stream();
    frames_only.frame_mbs_only_flag = true;
    frames_only.log2_max_frame_num_minus4 = 1;
    EXPECT_EQ((lines{"0 to 2: sps slice, 2 fields", "2 to 3: slice, 2 fields", "3 on: aud slice, 2 fields"}),
              frames({sps(frames_only), slice(16, top, 5, 5), slice(17, top, 1, 5), aud, slice(18, top, 1, 5)}))
        << "the bit behind frame_num is no field_pic_flag";
}

TEST(FrameScan, ColourPlanesStandBeforeTheFrameNum)
{
    const auto plane_slice = [](unsigned int plane, std::uint32_t frame_num) {
        return of_type(
            1, support::bit_writer().ue(0).ue(5).ue(0).u(2, plane).u(4, frame_num).u(9, 1).trailing_bits().bytes());
    };
    support::sps_description planes = support::high_sps(3);
    planes.separate_colour_plane_flag = true;
    EXPECT_EQ("0 to 4: sps slice, 2 fields",
              first_frame({sps(planes), plane_slice(0, 6), plane_slice(1, 6), plane_slice(2, 6), plane_slice(0, 7)}));
}

TEST(FrameScan, FrameNumsOfMoreThan24BitsCountAsNotYetSeen)
{
    h264_sps unknown = known_sps();
    unknown.log2_max_frame_num = 25;
    EXPECT_EQ("0 to 3: slice, 2 fields", first_frame({slice(1), slice(2), slice(3), aud}, {0, unknown}));
    unknown.log2_max_frame_num = 24;
    EXPECT_EQ("0 to 1: slice, 2 fields",
              first_frame({slice(0xFFFFFF, frame, 1, 24), slice(0xFFFFFE, frame, 1, 24)}, {0, unknown}));
    unknown.log2_max_frame_num = 0;
    EXPECT_EQ("0 on: slice, 2 fields", first_frame({slice(1), slice(2), slice(3)}, {0, unknown})) << "all are 0";
}

TEST(FrameScan, OtherFlagsAreIgnored)
{
    const units row = {aud, sei(1), slice(3, top), sei(2), slice(3, bottom), aud};
    const lines whole = frames(row);
    const lines split = frames(row, {split_fields});
    EXPECT_NE(whole, split);
    for (unsigned int bit = 1; bit < 32; ++bit) {
        EXPECT_EQ(whole, frames(row, {1U << bit}));
        EXPECT_EQ(split, frames(row, {1U << bit | split_fields}));
    }
}
