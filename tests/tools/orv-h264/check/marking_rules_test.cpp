// The rules over marking where pictures may be missing, and the places of their violations.
#include "support/checked.h"
#include "support/planted_slices.h"

#include <gtest/gtest.h>

namespace {

using namespace support;

/// What the rules over marking and lists tell.
std::string of_marking(const bytes& stream)
{
    std::string text;
    for (const orv_h264::violation& what : violations_of(stream))
        if (what.broken->id.starts_with("marking-") || what.broken->id.starts_with("slice-list-"))
            text += std::string(what.broken->id) + " ";
    return text;
}

TEST(MarkingRules, AStreamThatBeginsInTheMiddleIsNotBlamedForItsBeginning)
{
    const made_slice named = changed(predicted(with(reference(5), {unmark_short(3), unmark_long(0)}), 2),
                                     {pic_num_down(2), long_pic_num(0)});
    EXPECT_EQ(of_marking(slices_of(sps_of_references(4), {reference(4), named})), "");
    EXPECT_EQ(of_marking(slices_of(sps_of_references(4), {idr(), reference(1), with(reference(2), {unmark_short(3)})})),
              "marking-unmarks-short-term ");
}

TEST(MarkingRules, NothingIsKnownBehindALossUntilAnIdrPicture)
{
    const made_slice lost = with(reference(4), {unmark_short(1)});
    EXPECT_EQ(of_marking(slices_of(sps_of_references(4), {idr(), reference(3), lost})), "");
    EXPECT_EQ(of_marking(slices_of(sps_of_references(4),
                                   {idr(), reference(3), idr(1), with(reference(1), {unmark_short(1)})})),
              "marking-unmarks-short-term ");
}

TEST(MarkingRules, AllIsKnownBehindOperation5)
{
    EXPECT_EQ(of_marking(slices_of(sps_of_references(4), {reference(3), with(reference(4), {forget_all()}),
                                                          with(reference(1), {unmark_short(1)})})),
              "marking-unmarks-short-term ");
}

TEST(MarkingRules, OfSeveralOperationsTheOneToBlameIsPlaced)
{
    const bytes stream =
        slices_of(sps_of_references(2), {idr(), with(reference(1), {unmark_short(0), unmark_short(0)})});
    const std::vector<orv_h264::violation> told = violations_of(stream);
    ASSERT_EQ(told.size(), 1U);
    ASSERT_TRUE(told[0].place);
    const bytes first =
        slices_of(sps_of_references(2), {idr(), with(reference(1), {unmark_short(1), unmark_short(0)})});
    ASSERT_EQ(violations_of(first).size(), 1U);
    EXPECT_GT(told[0].place->bit, violations_of(first)[0].place->bit);
}

} // namespace
