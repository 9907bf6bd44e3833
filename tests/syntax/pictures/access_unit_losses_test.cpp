// Access units with slices lost, damaged, in any order, or without parameter sets.
#include "support/told_access_units.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

TEST(AccessUnitLosses, ALostFirstSliceIsAFinding)
{
    made_stream stream;
    stream.add_sets().add(from_macroblock(reference(1), 2)).add(from_macroblock(reference(1), 4)).add(reference(2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 1 1|1");
    EXPECT_TRUE(told.all[0].has(picture_finding::first_slice_missing));
    EXPECT_TRUE(told.all[1].unit.findings.empty());
}

TEST(AccessUnitLosses, SlicesInAnyOrderLackNothing)
{
    made_stream stream;
    stream.add_sets().add(from_macroblock(reference(1), 4)).add(reference(1)).add(from_macroblock(reference(1), 2));
    const told_access_units told(stream);
    EXPECT_EQ(told.types(), "7 8 1 1 1");
    EXPECT_TRUE(told.findings().empty());
}

// Between two slices with the same first macroblock those of other pictures are lost, though nothing else differs.
TEST(AccessUnitLosses, AMacroblockThatComesAgainBeginsAPicture)
{
    made_stream stream;
    stream.add_sets().add(other(1)).add(from_macroblock(other(1), 2)).add(other(1)).add(from_macroblock(other(1), 2));
    EXPECT_EQ(told_access_units(stream).types(), "7 8 1 1|1 1");
}

TEST(AccessUnitLosses, ColourPlanesBeginWithMacroblock0Each)
{
    made_stream stream;
    stream.sps().profile_idc = 244;
    stream.sps().chroma_format_idc = 3;
    stream.sps().separate_colour_plane_flag = true;
    stream.add_sets();
    for (std::uint32_t frame_num = 1; frame_num <= 2; ++frame_num) {
        for (std::uint8_t plane = 0; plane < 3; ++plane) {
            made_slice slice = reference(frame_num);
            slice.header.colour_plane_id = plane;
            stream.add(slice);
        }
    }
    const told_access_units told(stream);
    EXPECT_EQ(told.types(), "7 8 1 1 1|1 1 1");
    EXPECT_TRUE(told.findings().empty());
}

TEST(AccessUnitLosses, WithoutParameterSetsBeginWithMacroblock0)
{
    made_stream stream;
    for (std::uint32_t frame_num = 1; frame_num <= 3; ++frame_num)
        stream.add(reference(frame_num)).add(from_macroblock(reference(frame_num), 2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "1 1|1 1|1 1");
    for (const kept_access_unit& unit : told.all) {
        EXPECT_TRUE(unit.has(picture_finding::no_parameter_sets));
        EXPECT_FALSE(unit.unit.whole);
        EXPECT_FALSE(unit.sps);
    }
}

TEST(AccessUnitLosses, WithoutParameterSetsAndTheirFirstSliceEndBeforeMacroblock0)
{
    made_stream stream;
    stream.add(from_macroblock(reference(1), 2)).add(from_macroblock(reference(1), 4)).add(reference(2));
    EXPECT_EQ(told_access_units(stream).types(), "1 1|1");
}

TEST(AccessUnitLosses, ADamagedSliceIsAFindingAndTheNextOneTellsThePicture)
{
    made_stream stream;
    stream.add_sets().add_bytes(0x21, {0xE0}).add(from_macroblock(reference(5), 2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 1 1");
    EXPECT_TRUE(told.all[0].has(picture_finding::slice_damaged));
    EXPECT_FALSE(told.all[0].has(picture_finding::no_parameter_sets));
    EXPECT_TRUE(told.all[0].unit.whole);
    EXPECT_EQ(told.all[0].header->frame_num, 5U);
    EXPECT_TRUE(told.all[0].unit.parts[2].failure);
}

} // namespace
