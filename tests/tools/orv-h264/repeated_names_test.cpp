#include "repeated_names.h"

#include <gtest/gtest.h>

namespace {

TEST(RepeatedNames, ElementsAreKnownByTheirStructure)
{
    EXPECT_TRUE(orv_h264::is_repeated_element("annotated_regions", "ar_bit_equal_to_zero"));
    EXPECT_TRUE(orv_h264::is_repeated_element("pic_timing", "hours_value"));
    EXPECT_TRUE(orv_h264::is_repeated_element("vsp_param", "disparity_diff_wji"));
    EXPECT_FALSE(orv_h264::is_repeated_element("pic_timing", "clock_timestamp_flag"));
    EXPECT_FALSE(orv_h264::is_repeated_element("buffering_period", "hours_value"));
    EXPECT_FALSE(orv_h264::is_repeated_element("", ""));
}

TEST(RepeatedNames, StructuresAreKnown)
{
    EXPECT_TRUE(orv_h264::is_repeated_structure("3dv_acquisition_element"));
    EXPECT_TRUE(orv_h264::is_repeated_structure("sei_message"));
    EXPECT_FALSE(orv_h264::is_repeated_structure("sei_payload"));
}

} // namespace
