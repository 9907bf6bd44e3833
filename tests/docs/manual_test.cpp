// Functions out of the documents, compiled as they stand there. Their programs are run by check-console-blocks.
#include "annexb_to_length4.h"
#include "print_frames.h"
#include "reframe_as_length4.h"

#include "support/stream_builder.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::stream_builder;

TEST(Manual, TheExamplePrintsEachUnitAndRewritesTheFraming)
{
    bytes stream = stream_builder()
                       .zeros(1)
                       .annexb_unit(support::sps, {0x42, 0, 0, 3, 1})
                       .annexb_unit(support::aud, {0x10})
                       .zeros(4);
    testing::internal::CaptureStdout();
    const bytes out = annexb_to_length4(stream);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "      4  Sequence parameter set, seq_parameter_set_rbsp()\n"
                                                      "      1  Access unit delimiter, access_unit_delimiter_rbsp()\n");
    EXPECT_EQ(out, bytes(stream_builder()
                             .prefixed_unit(4, support::sps, {0x42, 0, 0, 3, 1})
                             .prefixed_unit(4, support::aud, {0x10})));
}

TEST(Manual, OnlyTheCopyKeepsEveryByteOfAUnit)
{
    bytes stream = stream_builder()
                       .annexb_unit(support::idr_slice, {0x42, 0, 0, 3, 0, 0, 3}) // ends in a cabac_zero_word
                       .zeros(1)
                       .annexb_unit(support::aud, {0x10});
    const stream_builder kept = stream_builder()
                                    .prefixed_unit(4, support::idr_slice, {0x42, 0, 0, 3, 0, 0, 3})
                                    .prefixed_unit(4, support::aud, {0x10});
    EXPECT_EQ(kept.made(), reframe_as_length4(stream));
    testing::internal::CaptureStdout();
    EXPECT_EQ(bytes(stream_builder()
                        .prefixed_unit(4, support::idr_slice, {0x42, 0, 0, 3, 0, 0})
                        .prefixed_unit(4, support::aud, {0x10})),
              annexb_to_length4(stream));
    testing::internal::GetCapturedStdout();
}

TEST(Manual, TheCopyOfARealStreamIsItsLengthPrefixedTwin)
{
    bytes stream = support::read_file(ORV_TEST_STREAMS "/main_bpyramid_weighted.264");
    EXPECT_TRUE(support::read_file(ORV_TEST_STREAMS "/main_bpyramid_weighted.length4") == reframe_as_length4(stream));
}

TEST(Manual, TheLegacyExamplePrintsEachFrame)
{
    testing::internal::CaptureStdout();
    print_frames(support::read_file(ORV_TEST_STREAMS "/pulldown32.264"));
    const std::string lines = testing::internal::GetCapturedStdout();
    const std::string start = "    2717  176 x 144  3 fields\n"
                              "     961  176 x 144  3 fields\n";
    EXPECT_EQ(start, lines.substr(0, start.size()));
    EXPECT_EQ(39, std::count(lines.begin(), lines.end(), '\n'));
}

TEST(Manual, TheLegacyExampleFindsNoFramesWhereThereIsNone)
{
    testing::internal::CaptureStdout();
    print_frames({});
    print_frames(bytes(100, 0));
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
}

} // namespace
