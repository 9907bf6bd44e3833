// examples/display_order: what it prints of sound and of broken streams.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string printed(const std::string& name)
{
    return support::run_tool({}, {.piped = support::read_file(std::string(ORV_TEST_STREAMS "/") + name)}).out;
}

TEST(DisplayOrder, IsNotThatOfDecoding)
{
    EXPECT_EQ(0U, printed("main_bpyramid_weighted.264")
                      .find("0: picture 0 at byte 4, a frame, IDR, shown at 2/25 s for 2 fields\n"
                            "1: picture 3 at byte 1899, a frame, shown at 3/25 s for 2 fields\n"));
}

TEST(DisplayOrder, ShowsFieldsAndHowLongTheyLast)
{
    EXPECT_NE(std::string::npos,
              printed("high422_10_mbaff_tff.264").find(", a frame of frame and field macroblocks, "));
    EXPECT_NE(std::string::npos, printed("pulldown32.264").find(" for 3 fields\n"));
}

TEST(DisplayOrder, SaysWhatAPictureLacks)
{
    EXPECT_NE(std::string::npos,
              printed("broken_cut.264").find("a frame\n  a slice names a parameter set that is not there\n"));
}

} // namespace
