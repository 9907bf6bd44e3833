// examples/stream_headers: what it prints of sound and of broken streams.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string printed(const support::bytes& stream)
{
    return support::run_tool({}, {.piped = stream}).out;
}

support::bytes bundled(const std::string& name)
{
    return support::read_file(std::string(ORV_TEST_STREAMS "/") + name);
}

TEST(StreamHeaders, ShowsTheSpsTheTimingAndTheSlice)
{
    EXPECT_EQ("High, avc1.64000B, 176x144, 25.000 frames/s\n"
              "removal after 0 ticks, output after 4 more, pic_struct 0\n"
              "slice of kind I, frame_num 0, pic_order_cnt_lsb 0\n"
              "removal after 2 ticks, output after 10 more, pic_struct 0\n"
              "slice of kind P, frame_num 1, pic_order_cnt_lsb 8\n",
              printed(bundled("hrd_vbr_aud.264")).substr(0, 259));
}

TEST(StreamHeaders, SaysWhatIsMissing)
{
    EXPECT_EQ("pic_parameter_set_id: names a picture parameter set which is missing\n", printed({0, 0, 1, 0x65, 0xB8}));
    EXPECT_EQ("0: no unit\n", printed({7, 0, 0, 1, 9, 0xF0}));
    EXPECT_EQ("", printed({}));
}

} // namespace
