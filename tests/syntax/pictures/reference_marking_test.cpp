// Reference marking: the sliding window, each operation in frames and fields, and gaps (clause 8.2.5).
#include "support/marked_frames.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

made_slice long_idr()
{
    made_slice slice = idr();
    slice.header.dec_ref_pic_marking.long_term_reference_flag = true;
    return slice;
}

/// Frames 0 to `last` with frame_num 0 to `last`, in a window that holds all of them.
marked_frames frames_to(std::uint32_t last, std::uint32_t max_num_ref_frames = 4)
{
    marked_frames m(max_num_ref_frames);
    m.add(idr());
    for (std::uint32_t frame_num = 1; frame_num <= last; ++frame_num)
        m.add(reference(frame_num));
    return m;
}
/// The same as pairs of fields.
marked_frames pairs_to(std::uint32_t last, std::uint32_t max_num_ref_frames = 4)
{
    marked_frames m(max_num_ref_frames);
    m.add(top(idr())).add_second(bottom(reference(0)));
    for (std::uint32_t frame_num = 1; frame_num <= last; ++frame_num)
        m.add_pair(reference(frame_num));
    return m;
}

TEST(ReferenceMarking, TheWindowSlidesOverTheOldestFrames)
{
    marked_frames m = frames_to(3, 2);
    EXPECT_EQ(m.text(), "2 3");
    EXPECT_TRUE(m.marking.uses(3));
    EXPECT_FALSE(m.marking.uses(1));
    EXPECT_FALSE(m.last.too_many);
}

TEST(ReferenceMarking, TheOldestIsToldAcrossTheWrapOfFrameNum)
{
    marked_frames m(3);
    m.add(idr());
    for (std::uint32_t frame_num = 1; frame_num <= 17; ++frame_num)
        m.add(reference(frame_num % 16));
    EXPECT_EQ(m.text(), "15 16 17");
    EXPECT_EQ(m.last.missing, 0U);
}

TEST(ReferenceMarking, OtherPicturesChangeNothing)
{
    marked_frames m = frames_to(1);
    m.add(other(2)).add(top(other(2))).add_second(bottom(other(2)));
    EXPECT_EQ(m.text(), "0 1");
}

TEST(ReferenceMarking, AWindowOf0Is1AndOfMoreThan16Is16)
{
    EXPECT_EQ(frames_to(3, 0).text(), "3");
    EXPECT_EQ(frames_to(3, 1).text(), "3");
    marked_frames m = frames_to(15, 16);
    EXPECT_EQ(m.marking.size(), 16U);
    for (const std::uint32_t most : {16U, 17U, 0xFFFFFFFFU}) {
        marked_frames above(most);
        above.sps.log2_max_frame_num_minus4 = 1;
        above.add(idr());
        for (std::uint32_t i = 1; i < 40; ++i)
            above.add(reference(i % 32));
        EXPECT_EQ(above.marking.size(), 16U);
        EXPECT_EQ(above.marking.begin()->number, 24U);
    }
}

TEST(ReferenceMarking, TheWindowDoesNotSlideForSecondFields)
{
    marked_frames m = pairs_to(1, 2);
    m.add(top(reference(2)));
    EXPECT_EQ(m.text(), "1 2t");
    m.add_second(bottom(reference(2)));
    EXPECT_EQ(m.text(), "1 2");
}

// 8.2.5.3: the window stays for second fields of short-term fields alone.
TEST(ReferenceMarking, TheWindowSlidesForTheSecondFieldOfALongTermField)
{
    marked_frames m(2);
    m.add(idr()).add(with(top(reference(1)), {current_to_long(0)}));
    ASSERT_EQ(m.text(), "0 1tL0");
    m.add_second(bottom(reference(1)));
    EXPECT_EQ(m.text(), "1btL0");
}

// 8.2.5.3 counts frames, pairs and lone fields alike, before the first field of the current one is among them.
TEST(ReferenceMarking, TheWindowCountsFramesPairsAndLoneFieldsAlike)
{
    marked_frames m(3);
    m.add(idr()).add_pair(reference(1)).add(top(reference(2)));
    ASSERT_EQ(m.text(), "0 1 2t");
    m.add(top(reference(3)));
    EXPECT_EQ(m.text(), "1 2t 3t");
    m.add_second(bottom(reference(3))).add(reference(4)).add(bottom(reference(5)));
    EXPECT_EQ(m.text(), "3 4 5b");
}

TEST(ReferenceMarking, LoneFieldsTakeAFrameEach)
{
    marked_frames m(2);
    m.add(top(idr())).add(bottom(reference(1))).add(top(reference(2)));
    EXPECT_EQ(m.text(), "1b 2t");
}

TEST(ReferenceMarking, LongTermFramesDoNotSlideAway)
{
    marked_frames m(3);
    m.add(long_idr()).add(reference(1)).add(reference(2)).add(reference(3));
    EXPECT_EQ(m.text(), "0L0 2 3");
}

TEST(ReferenceMarking, AnIdrPictureForgetsAllBefore)
{
    EXPECT_EQ(frames_to(3).add(idr()).text(), "4");
    EXPECT_EQ(frames_to(3).add(long_idr()).text(), "4L0");
    EXPECT_EQ(frames_to(3).add(top(long_idr())).add_second(with(bottom(reference(0)), {current_to_long(0)})).text(),
              "4L0");
}

TEST(ReferenceMarking, Operation1UnmarksAFrame)
{
    for (std::uint32_t difference = 0; difference < 4; ++difference) {
        const char* const left[] = {"0 1 2 4", "0 1 3 4", "0 2 3 4", "1 2 3 4"};
        marked_frames m = frames_to(3);
        m.add(with(reference(4), {unmark_short(difference)}));
        EXPECT_EQ(m.text(), left[difference]);
        EXPECT_FALSE(m.last.no_such_picture);
    }
}

// CurrPicNum is 5: the fields of frame 1 are 3 (same parity) and 2, those of frame 0 are 1 and 0.
TEST(ReferenceMarking, Operation1UnmarksAFieldOfEitherParity)
{
    const char* const from_top[] = {"0 1b 2t", "0 1t 2t", "0b 1 2t", "0t 1 2t"};
    const char* const from_bottom[] = {"0 1t 2b", "0 1b 2b", "0t 1 2b", "0b 1 2b"};
    for (std::uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(pairs_to(1).add(with(top(reference(2)), {unmark_short(i + 1)})).text(), from_top[i]);
        EXPECT_EQ(pairs_to(1).add(with(bottom(reference(2)), {unmark_short(i + 1)})).text(), from_bottom[i]);
    }
}

TEST(ReferenceMarking, Operation1ReachesAcrossTheWrapOfFrameNum)
{
    marked_frames m(4);
    m.add(idr());
    for (std::uint32_t frame_num = 1; frame_num <= 16; ++frame_num)
        m.add(reference(frame_num % 16));
    ASSERT_EQ(m.text(), "13 14 15 16");
    m.add(with(reference(1), {unmark_short(2)})); // frame_num 14 is -2
    EXPECT_EQ(m.text(), "13 15 16 17");
}

TEST(ReferenceMarking, ASecondFieldUnmarksTheFirstOne)
{
    marked_frames m = pairs_to(1);
    m.add(top(reference(2))).add_second(with(bottom(reference(2)), {unmark_short(0)}));
    EXPECT_EQ(m.text(), "0 1 2b");
    EXPECT_FALSE(m.last.no_such_picture);
}

TEST(ReferenceMarking, AFrameOfOneFieldHasNoNumberForFrames)
{
    marked_frames m = pairs_to(1);
    m.add(with(top(reference(2)), {unmark_short(1)})); // leaves frame 1 its bottom field
    m.add(with(reference(3), {unmark_short(1)}));
    EXPECT_TRUE(m.last.no_such_picture);
    EXPECT_EQ(m.text(), "0 1b 2t 3");
}

TEST(ReferenceMarking, Operation2UnmarksLongTermFramesAndFields)
{
    marked_frames m = frames_to(1);
    m.add(with(reference(2), {short_to_long(0, 3), short_to_long(1, 1)}));
    ASSERT_EQ(m.text(), "0L1 1L3 2");
    marked_frames frame = m;
    EXPECT_EQ(frame.add(with(reference(3), {unmark_long(3)})).text(), "0L1 2 3");
    const char* const from_top[] = {"0tL1 1L3 2 3t", "0bL1 1L3 2 3t"}; // long-term picture numbers 2 and 3
    const char* const from_bottom[] = {"0bL1 1L3 2 3b", "0tL1 1L3 2 3b"};
    for (std::uint32_t i = 0; i < 2; ++i) {
        marked_frames of_top = m, of_bottom = m;
        EXPECT_EQ(of_top.add(with(top(reference(3)), {unmark_long(2 + i)})).text(), from_top[i]);
        EXPECT_EQ(of_bottom.add(with(bottom(reference(3)), {unmark_long(2 + i)})).text(), from_bottom[i]);
    }
}

TEST(ReferenceMarking, Operation3TakesAnIndexOver)
{
    marked_frames m = frames_to(2);
    m.add(with(reference(3), {short_to_long(2, 0)}));
    EXPECT_EQ(m.text(), "0L0 1 2 3");
    m.add(with(reference(4), {short_to_long(1, 0)}));
    EXPECT_EQ(m.text(), "1 2L0 3 4");
    EXPECT_FALSE(m.last.no_such_picture);
}

TEST(ReferenceMarking, FieldsOfAFrameShareAnIndex)
{
    marked_frames m = pairs_to(1);
    m.add(with(top(reference(2)), {short_to_long(1, 2)})); // the top field of frame 1
    EXPECT_EQ(m.text(), "0 1btL2 2t");
    m.add_second(with(bottom(reference(2)), {short_to_long(1, 2)})); // its bottom field
    EXPECT_EQ(m.text(), "0 1L2 2");
    m.add(with(top(reference(3)), {short_to_long(5, 2)})); // the top field of frame 0 takes it from both
    EXPECT_EQ(m.text(), "0btL2 2 3t");
}

TEST(ReferenceMarking, Operation4KeepsLongTermFramesBelowAnIndex)
{
    const char* const left[] = {"3 4", "0L0 3 4", "0L0 1L1 3 4", "0L0 1L1 2L2 3 4", "0L0 1L1 2L2 3 4"};
    for (std::uint32_t most = 0; most < 5; ++most) {
        marked_frames m = frames_to(2, 5);
        m.add(with(reference(3), {short_to_long(2, 0), short_to_long(1, 1), short_to_long(0, 2)}));
        EXPECT_EQ(m.add(with(reference(4), {keep_long_below(most)})).text(), left[most]);
    }
}

TEST(ReferenceMarking, Operation5ForgetsAllAndMakesFrameNum0)
{
    marked_frames m = frames_to(2);
    m.add(with(reference(3), {short_to_long(2, 0)})).add(with(reference(4), {forget_all()}));
    EXPECT_EQ(m.text(), "4");
    EXPECT_EQ(m.marking.begin()->frame_num, 0U);
    m.add(reference(1));
    EXPECT_EQ(m.text(), "4 5");
    EXPECT_EQ(m.last.missing, 0U);
}

TEST(ReferenceMarking, Operation5InAFieldLeavesItsSecondFieldFrameNum0)
{
    marked_frames m = pairs_to(2);
    m.add(with(top(reference(3)), {forget_all()})).add_second(bottom(reference(0)));
    EXPECT_EQ(m.text(), "3");
    m.add(with(bottom(reference(1)), {unmark_short(1)})); // the bottom field of frame_num 0
    EXPECT_EQ(m.text(), "3t 4b");
}

TEST(ReferenceMarking, Operation6MakesTheCurrentPictureLongTerm)
{
    marked_frames m = frames_to(1);
    m.add(with(reference(2), {current_to_long(1)}));
    EXPECT_EQ(m.text(), "0 1 2L1");
    m.add(with(reference(3), {current_to_long(1)}));
    EXPECT_EQ(m.text(), "0 1 3L1");
    m.add(with(top(reference(4)), {current_to_long(0)}));
    EXPECT_EQ(m.text(), "0 1 3L1 4tL0");
    m.add_second(with(bottom(reference(4)), {current_to_long(0)}));
    EXPECT_EQ(m.text(), "0 1 3L1 4L0");
}

TEST(ReferenceMarking, Operation5And6LeaveOneLongTermFrame)
{
    EXPECT_EQ(frames_to(2).add(with(reference(3), {forget_all(), current_to_long(0)})).text(), "3L0");
}

TEST(ReferenceMarking, AnOperationOnNothingIsTold)
{
    const marking_operation operations[] = {unmark_short(4),     unmark_short(0xFFFFFFFF),
                                            unmark_long(0),      unmark_long(0xFFFFFFFF),
                                            short_to_long(4, 0), short_to_long(0xFFFFFFFF, 0xFFFFFFFF)};
    for (const marking_operation& operation : operations) {
        for (const made_slice& slice : {reference(3), top(reference(3)), bottom(reference(3))}) {
            marked_frames m = frames_to(1);
            m.add(reference(2)).add(with(slice, {operation}));
            if (slice.header.field_pic_flag && operation.difference_of_pic_nums_minus1 == 4)
                continue; // a field of frame 0
            EXPECT_TRUE(m.last.no_such_picture) << operation.memory_management_control_operation;
            EXPECT_EQ(m.marking.size(), 4U);
        }
    }
}

TEST(ReferenceMarking, AnUnknownOperationDoesNothing)
{
    const marking_operation unknown = {7, 0, 0, 0, 0};
    marked_frames m = frames_to(1);
    EXPECT_EQ(m.add(with(reference(2), {unknown})).text(), "0 1 2");
    EXPECT_FALSE(m.last.no_such_picture);
}

TEST(ReferenceMarking, OperationsThatLeaveTooManyFramesAreTold)
{
    marked_frames m = frames_to(1, 2);
    m.add(with(reference(2), {keep_long_below(0)})); // no window slides where there are operations
    EXPECT_TRUE(m.last.too_many);
    EXPECT_EQ(m.text(), "1 2");
    m.add(with(reference(3), {short_to_long(0, 0), current_to_long(1)}));
    EXPECT_TRUE(m.last.too_many);
    EXPECT_EQ(m.text(), "2L0 3L1");
    m.add(reference(4)); // nothing can slide
    EXPECT_TRUE(m.last.too_many);
    EXPECT_EQ(m.text(), "3L1 4");
}

TEST(ReferenceMarking, GapsBecomeNonExistingFrames)
{
    marked_frames m = frames_to(1);
    m.add(reference(4));
    EXPECT_EQ(m.last.missing, 2U);
    EXPECT_EQ(m.text(), "1 x2 x3 2");
    EXPECT_FALSE(m.marking.uses(0)); // their number is nobody's
}

TEST(ReferenceMarking, GapsBeforeOtherPicturesCountToo)
{
    marked_frames m = frames_to(1);
    m.add(other(4));
    EXPECT_EQ(m.last.missing, 2U);
    EXPECT_EQ(m.text(), "0 1 x2 x3");
    m.add(other(4)).add(reference(4));
    EXPECT_EQ(m.last.missing, 0U);
    EXPECT_EQ(m.text(), "1 x2 x3 4");
}

TEST(ReferenceMarking, GapsReachAcrossTheWrap)
{
    marked_frames m(4);
    m.add(idr());
    for (std::uint32_t frame_num = 1; frame_num <= 14; ++frame_num)
        m.add(reference(frame_num));
    m.add(reference(1));
    EXPECT_EQ(m.last.missing, 2U);
    EXPECT_EQ(m.text(), "14 x15 x0 15");
}

TEST(ReferenceMarking, GapsLargerThanTheWindowPushAllOut)
{
    marked_frames m = frames_to(2, 3);
    m.sps.log2_max_frame_num_minus4 = 12;
    m.add(reference(60000));
    EXPECT_EQ(m.last.missing, 59997U);
    EXPECT_EQ(m.text(), "x59998 x59999 3");
    marked_frames kept(3);
    kept.add(long_idr()).add(reference(10));
    EXPECT_EQ(kept.text(), "0L0 x9 1");
}

TEST(ReferenceMarking, TheLargestGapIsCountedInFull)
{
    marked_frames m = frames_to(1, 3);
    m.sps.log2_max_frame_num_minus4 = 0xFFFFFFFF;
    m.add(reference(0));
    EXPECT_EQ(m.last.missing, 0xFFFFFFFE);
    EXPECT_EQ(m.text(), "x4294967294 x4294967295 2");
}

TEST(ReferenceMarking, ThereIsNoGapBeforeTheFirstPictureAndAnIdrPicture)
{
    marked_frames m(4);
    m.add(reference(9));
    EXPECT_EQ(m.last.missing, 0U);
    m.add(idr());
    EXPECT_EQ(m.last.missing, 0U);
    EXPECT_EQ(m.text(), "1");
}

// It follows a reference picture with the frame_num before, which is not there.
TEST(ReferenceMarking, ThereIsNoGapBehindAFirstPictureThatIsNoReference)
{
    for (const std::uint32_t frame_num : {9U, 0U}) {
        marked_frames m(4);
        m.add(other(frame_num)).add(other(frame_num)).add(reference(frame_num));
        EXPECT_EQ(m.last.missing, 0U);
        EXPECT_EQ(m.text(), "2");
    }
}

// numShortTerm and numLongTerm both count a frame with a field of each kind (8.2.5.3).
TEST(ReferenceMarking, AFrameWithAFieldOfEachKindCountsTwiceInTheWindow)
{
    marked_frames m = pairs_to(1, 3);
    m.add(with(top(reference(2)), {short_to_long(1, 0), unmark_short(3), unmark_short(4)}));
    ASSERT_EQ(m.text(), "1btL0 2t");
    m.add(reference(3));
    EXPECT_EQ(m.text(), "1tL0 2t 3");
}

} // namespace
