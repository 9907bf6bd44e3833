// The example of README.md, compiled as it stands there.
#include "readme_example.h"

#include "support/stream_builder.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::stream_builder;

TEST(Readme, TheExamplePrintsEachUnitAndRewritesTheFraming)
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

} // namespace
