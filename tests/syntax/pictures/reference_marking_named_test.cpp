// Pictures by their numbers (clause 8.2.4.1), and operations one by one (8.2.5.4).
#include "support/marked_frames.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

/// As the current picture in this slice, which is number 9, has it.
class as_seen_by {
public:
    as_seen_by(marked_frames& of, made_slice of_slice) : frames(of), slice(std::move(of_slice)) {}

    std::string short_term(std::int64_t PicNum) { return text_of(frames.marking.short_term(picture, PicNum)); }
    std::string long_term(std::uint32_t LongTermPicNum)
    {
        return text_of(frames.marking.long_term(picture, LongTermPicNum));
    }
    bool operate(const marking_operation& operation) { return frames.marking.operate(picture, operation); }

private:
    static std::string text_of(const named_reference& named)
    {
        return named.frame == nullptr ? "-" : std::to_string(named.frame->number) + letters_of(named.fields);
    }

    marked_frames& frames;
    made_slice slice;
    marked_picture picture{frames.sps, slice.header, 1, false, false, 9};
};

TEST(ReferenceMarkingNamed, FramesAndFieldsByTheirNumbers)
{
    marked_frames frames(4);
    frames.add_pair(reference(14))
        .add(reference(15))
        .add(with(reference(0), {keep_long_below(1), short_to_long(0, 0)}));
    as_seen_by frame(frames, reference(1));
    EXPECT_EQ(frame.short_term(0), "2tb");
    EXPECT_EQ(frame.short_term(-2), "0tb");
    EXPECT_EQ(frame.short_term(-1), "-");
    EXPECT_EQ(frame.long_term(0), "1tb");
    EXPECT_EQ(frame.long_term(1), "-");
    as_seen_by field(frames, bottom(reference(1)));
    EXPECT_EQ(field.short_term(1), "2b");
    EXPECT_EQ(field.short_term(0), "2t");
    EXPECT_EQ(field.long_term(0), "1t");
    EXPECT_EQ(field.long_term(1), "1b");
}

TEST(ReferenceMarkingNamed, OperationsOneByOneLeaveTheFramesBeyondTheLimit)
{
    marked_frames frames(2);
    frames.add(idr()).add(reference(1));
    as_seen_by current(frames, reference(2));
    EXPECT_TRUE(current.operate(keep_long_below(1)));
    EXPECT_TRUE(current.operate(current_to_long(0)));
    EXPECT_EQ(frames.text(), "0 1 9L0");
    EXPECT_TRUE(current.operate(unmark_short(1)));
    EXPECT_FALSE(current.operate(unmark_short(1)));
    EXPECT_EQ(frames.text(), "1 9L0");
}

} // namespace
