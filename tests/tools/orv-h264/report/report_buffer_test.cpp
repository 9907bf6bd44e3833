#include "report/report_buffer.h"

#include "support/hrd_stream.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using orv_h264::buffer_stretch;
using orv_h264::json;

json page_data_of(const std::vector<unsigned char>& stream)
{
    const support::temporary_folder folder;
    orv_h264::stream_options options;
    options.path = folder.write("stream.264", stream);
    options.format = framing::annex_b;
    orv_h264::stream_input input(options);
    orv_h264::report_buffer buffer(input);
    input.read_units(buffer.sink());
    buffer.finish();
    return buffer.page_data();
}

// 16000 bits come in the 0.2 s before the first removal, and 3200 more before each of the others; pictures have 3200.
TEST(ReportBuffer, GoesFromRemovalToRemoval)
{
    hrd_stream stream;
    const json data = page_data_of(stream.period().picture(idr()).pictures(1, 8).bytes);
    EXPECT_EQ(data["hrd"], "NAL");
    EXPECT_EQ(data["cpb_size"], hrd_buffer_size);
    EXPECT_EQ(data["bit_rate"], hrd_bit_rate);
    EXPECT_EQ(data["runs"], 1);
    ASSERT_EQ(data["stretches"].size(), 8U);
    EXPECT_EQ(data["stretches"][0], json({0.0, 0.2, 0, 16000}));
    EXPECT_EQ(data["stretches"][1], json({0.2, 0.24, 12800, 16000}));
    EXPECT_EQ(data["stretches"][3], json({0.28, 0.32, 12800, 16000}));
    EXPECT_EQ(data["stretches"][4], json({0.32, 0.36, 12800, 12800})); // all of the stream has come
    EXPECT_EQ(data["stretches"][7], json({0.44, 0.48, 3200, 3200}));
}

TEST(ReportBuffer, RunsFollowOneAnother)
{
    hrd_stream stream;
    stream.period().picture(idr()).picture(reference(1));
    stream.period().picture(idr(1), {.removal = 0}).picture(reference(1));
    const json data = page_data_of(stream.bytes);
    EXPECT_EQ(data["runs"], 2);
    ASSERT_EQ(data["stretches"].size(), 4U);
    EXPECT_EQ(data["stretches"][1][1], 0.24);
    EXPECT_EQ(data["stretches"][2], json({0.24, 0.44, 0, 6400}));
}

TEST(ReportBuffer, IsNothingWithoutAnHrd)
{
    made_stream stream;
    EXPECT_TRUE(page_data_of(stream.add_sets().add(idr()).bytes).is_null());
}

TEST(ReportBuffer, TwoStretchesMakeOne)
{
    buffer_stretch one{1, 0, 0.2, 0, 16000};
    one.add({1, 0.2, 0.24, 12800, 17000});
    EXPECT_EQ(one.count, 2U);
    EXPECT_EQ(one.end, 0.24);
    EXPECT_EQ(one.least, 0);
    EXPECT_EQ(one.most, 17000);
}

} // namespace
