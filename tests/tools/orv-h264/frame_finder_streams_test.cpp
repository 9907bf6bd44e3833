// The frame finder over every real stream: unit by unit it finds what the frame scan finds in the whole.
#include "support/found_frames.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::found_frames;

class FrameFinderStream : public testing::TestWithParam<std::filesystem::path> {
protected:
    bytes stream = support::read_file(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Streams, FrameFinderStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

} // namespace

TEST_P(FrameFinderStream, UnitByUnitTheFramesAreThoseOfTheWhole)
{
    for (const bool split_fields : {false, true}) {
        const auto whole = support::scan_whole(stream, split_fields);
        for (const std::size_t piece : {7U, 65536U}) {
            const found_frames found(stream, brenik::nalfmt_annexb, split_fields, piece);
            ASSERT_EQ(whole.size(), found.frames.size());
            for (std::size_t i = 0; i < whole.size(); ++i) {
                const orv_h264::frame& f = found.frames[i];
                EXPECT_EQ(whole[i].start, f.offset + f.units.front().where.framing_size - 3);
                EXPECT_LE(f.offset + f.size, whole[i].end);
                EXPECT_EQ(whole[i].field_duration, f.field_duration) << "frame " << i;
            }
            EXPECT_EQ(support::scan_whole(found.joined, split_fields), found.placed());
        }
    }
}

TEST_P(FrameFinderStream, BehindLengthPrefixesTheFramesAreTheSame)
{
    for (const bool split_fields : {false, true}) {
        const found_frames annexb(stream, brenik::nalfmt_annexb, split_fields);
        const found_frames found(annexb.prefixed, brenik::nalfmt_length4, split_fields);
        EXPECT_EQ(annexb.placed(), found.placed());
        ASSERT_EQ(annexb.frames.size(), found.frames.size());
        for (std::size_t i = 0; i < found.frames.size(); ++i) {
            EXPECT_EQ(annexb.frames[i].units.size(), found.frames[i].units.size()) << "frame " << i;
            EXPECT_EQ(annexb.frames[i].field_duration, found.frames[i].field_duration) << "frame " << i;
            EXPECT_EQ(annexb.frames[i].seconds, found.frames[i].seconds) << "frame " << i;
        }
    }
}

TEST_P(FrameFinderStream, TheUnitsOfTheFramesFollowOnEachOther)
{
    std::uint64_t end = 0;
    const auto frames = found_frames(stream, brenik::nalfmt_annexb, false).frames;
    ASSERT_FALSE(frames.empty());
    for (const orv_h264::frame& f : frames) {
        ASSERT_FALSE(f.units.empty());
        EXPECT_EQ(f.offset, f.units.front().where.offset);
        EXPECT_FALSE(f.cut);
        for (const orv_h264::frame_unit& u : f.units) {
            EXPECT_GE(u.where.offset, end);
            end = u.where.offset + u.where.framing_size + u.where.length;
        }
        EXPECT_EQ(end, f.offset + f.size);
    }
    EXPECT_LE(end, stream.size());
}
