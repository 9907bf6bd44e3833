// What --ignore matches: ends of paths.
#include "diff/path_patterns.h"

#include <gtest/gtest.h>

namespace {

using orv_h264::path_patterns;

bool matches(const std::string& list, const std::string& path)
{
    path_patterns patterns;
    patterns.add(list);
    return patterns.match(path);
}

const std::string level = "seq_parameter_set_rbsp.seq_parameter_set_data.level_idc";
const std::string offset = "seq_parameter_set_rbsp.seq_parameter_set_data.offset_for_ref_frame[12]";

TEST(PathPatterns, MatchEndsFromADotOn)
{
    EXPECT_TRUE(matches("level_idc", level));
    EXPECT_TRUE(matches("seq_parameter_set_data.level_idc", level));
    EXPECT_TRUE(matches(level, level));
    EXPECT_FALSE(matches("vel_idc", level));
    EXPECT_FALSE(matches("seq_parameter_set_data", level));
    EXPECT_FALSE(matches("level_idc.x", level));
}

TEST(PathPatterns, AStarIsAnything)
{
    EXPECT_TRUE(matches("*", level));
    EXPECT_TRUE(matches("seq_parameter_set_data.*", level));
    EXPECT_TRUE(matches("level_*", level));
    EXPECT_TRUE(matches("seq*data*idc", level));
    EXPECT_FALSE(matches("pic*idc", level));
    EXPECT_FALSE(matches("level_*x", level));
}

TEST(PathPatterns, IndicesMayBeLeftOut)
{
    EXPECT_TRUE(matches("offset_for_ref_frame[12]", offset));
    EXPECT_TRUE(matches("offset_for_ref_frame[]", offset));
    EXPECT_TRUE(matches("offset_for_ref_frame*", offset));
    EXPECT_FALSE(matches("offset_for_ref_frame[1]", offset));
    EXPECT_EQ("a[].b[][].c", orv_h264::without_indices("a[1].b[2][33].c"));
}

TEST(PathPatterns, AreSeveral)
{
    EXPECT_TRUE(matches("frame_num,,level_idc", level));
    EXPECT_FALSE(matches("frame_num,poc", level));
    EXPECT_FALSE(matches("", level));
    EXPECT_FALSE(matches(",", level));
}

TEST(PathPatterns, ManyStarsTakeNoLongTime)
{
    std::string pattern;
    for (int i = 0; i < 2000; ++i)
        pattern += "*a";
    EXPECT_FALSE(matches(pattern + "b", std::string(20000, 'a')));
}

} // namespace
