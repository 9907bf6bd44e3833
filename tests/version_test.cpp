// version.h: its text and its numbers are one version. That of the tool is held against it in tests/cli.
#include <orv-utils-v4/version.h>

#include <gtest/gtest.h>

#include <string>

TEST(Version, TheTextHasTheThreeNumbers)
{
    EXPECT_EQ(std::to_string(ORV_UTILS_V4_VERSION_MAJOR) + '.' + std::to_string(ORV_UTILS_V4_VERSION_MINOR) + '.' +
                  std::to_string(ORV_UTILS_V4_VERSION_PATCH),
              ORV_UTILS_V4_VERSION);
    EXPECT_STREQ(ORV_TEST_VERSION, ORV_UTILS_V4_VERSION);
}
