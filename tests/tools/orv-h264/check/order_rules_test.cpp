// Streams that come near to what the rules over access units and pictures forbid, and keep to them.
#include "support/checked.h"
#include "support/special_streams.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

/// What is told of the order of units, and of pictures and their slices.
std::string told_of_order(const std::vector<unsigned char>& stream)
{
    std::string told;
    for (const orv_h264::violation& what : support::violations_of(stream)) {
        const std::string_view id = what.broken->id;
        if (id.starts_with("order-") || id.starts_with("set-") || id.starts_with("picture-") ||
            id.starts_with("slice-"))
            told += fmt::format("{}@{} ", id, what.unit ? what.unit->number : 0);
    }
    return told;
}

const std::vector<unsigned char> user_data = {0x05, 0x10, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0x80};
const std::vector<unsigned char> recovery = {0x06, 0x01, 0x84, 0x80}; // recovery_frame_cnt 0

class sound_stream : public made_stream {
public:
    explicit sound_stream(std::uint8_t profile_idc = 77) : made_stream(sps_of_profile(profile_idc))
    {
        pps().redundant_pic_cnt_present_flag = profile_idc == 66;
        add_sets();
    }
};

TEST(OrderRules, UnitsThatBelongToTheNextPictureMayStandBehindTheLastSlice)
{
    sound_stream s;
    s.add(idr()).add_bytes(9, {0xF0}).add_sets().add_bytes(6, user_data).add(reference(1)).add_bytes(6, user_data);
    s.add(reference(2));
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(OrderRules, FillerDataMayStandBetweenSlices)
{
    sound_stream s;
    s.add(idr()).add_bytes(12, {0xFF, 0x80}).add(from_macroblock(idr(), 6)).add_bytes(12, {0xFF, 0x80});
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(OrderRules, AnSpsExtensionMayStandBehindItsSps)
{
    made_stream s;
    s.add(unit_of(7, s.sets.sps)).add(unit_of(13, seq_parameter_set_extension_rbsp())).add(unit_of(8, s.sets.pps));
    s.add(idr());
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(OrderRules, AnAuxiliaryPictureMayStandBehindARedundantOne)
{
    made_stream s(sps_of_profile(66));
    s.pps().redundant_pic_cnt_present_flag = true;
    s.sets.context.primary_idr = true;
    seq_parameter_set_extension_rbsp extension;
    extension.aux_format_idc = 1;
    s.add(unit_of(7, s.sets.sps)).add(unit_of(13, extension)).add(unit_of(8, s.sets.pps));
    s.add(idr()).add_redundant(idr(), 1).add_redundant(idr(), 2).add(slice_unit(19));
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(OrderRules, AnIdrPictureMayFollowAnEndOfSequence)
{
    sound_stream s;
    s.add(idr()).add(reference(1)).add_bytes(10, {}).add(idr()).add_bytes(10, {}).add_bytes(11, {});
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(OrderRules, AStreamThatBeginsWithARecoveryPointIsAWarning)
{
    sound_stream s;
    s.add_bytes(6, recovery).add(reference(3)).add(reference(4));
    EXPECT_EQ(told_of_order(s.bytes), "order-begins-with-idr@3 ");
    EXPECT_EQ(support::violations_of(s.bytes)[0].level, orv_h264::severity::warning);
}

TEST(OrderRules, AnotherStreamBehindTheEndOfAStreamIsAWarning)
{
    sound_stream s;
    s.add(idr()).add_bytes(11, {}).add_sets().add(idr());
    EXPECT_EQ(told_of_order(s.bytes), "order-nothing-behind-end-of-stream@4 ");
    EXPECT_EQ(support::violations_of(s.bytes)[0].level, orv_h264::severity::warning);
}

TEST(OrderRules, UnitsAtTheEndNeedNoPicture)
{
    sound_stream s;
    s.add(idr()).add_bytes(9, {0xF0}).add_sets();
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(OrderRules, ASliceMayHaveNoPartitionB)
{
    EXPECT_EQ(told_of_order(partitioned_stream()), "");
}

TEST(OrderRules, LayersAndViewsStandBehindTheBase)
{
    EXPECT_EQ(told_of_order(scalable_stream()), "");
    EXPECT_EQ(told_of_order(multiview_stream(118, {0, 1, 2})), "");
}

TEST(PictureRules, SlicesStandInAnyOrderInBaseline)
{
    sound_stream s(66);
    s.add(from_macroblock(idr(), 6)).add(idr()).add(from_macroblock(idr(), 3));
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(PictureRules, SlicesOfGroupsAndOfRedundantPicturesBeginAnywhere)
{
    for (std::uint32_t type = 0; type <= 6; ++type)
        EXPECT_EQ(told_of_order(slice_group_stream(type)), "") << type;
    EXPECT_EQ(told_of_order(redundant_stream()), "");
}

TEST(PictureRules, TypesBelow5SayNothingOfOtherSlices)
{
    sound_stream s;
    made_slice predicted = from_macroblock(reference(1), 6);
    predicted.header.slice_type = 0;
    made_slice intra = reference(1);
    intra.header.slice_type = 2;
    s.add(idr()).add(intra).add(predicted);
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(PictureRules, IdrPicturesWithAnotherBetweenMayShareTheirId)
{
    sound_stream s;
    s.add(idr()).add(reference(1)).add(idr()).add(idr(1));
    EXPECT_EQ(told_of_order(s.bytes), "");
}

TEST(PictureRules, ColourPlanesHaveAnOrderEach)
{
    seq_parameter_set_data sps = sps_of_profile(244);
    sps.chroma_format_idc = 3;
    sps.separate_colour_plane_flag = true;
    made_stream s(sps);
    s.add_sets();
    for (const std::uint32_t first_mb_in_slice : {0U, 6U}) {
        for (std::uint8_t plane = 0; plane < 3; ++plane) {
            made_slice slice = from_macroblock(idr(), first_mb_in_slice);
            slice.header.colour_plane_id = plane;
            s.add(slice);
        }
    }
    EXPECT_EQ(told_of_order(s.bytes), "");
}

} // namespace
