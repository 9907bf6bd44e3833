#include "names.h"

#include "framing.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(Names, EveryUnitTypeHasAWord)
{
    std::set<std::string> words;
    for (unsigned int type = 0; type < 32; ++type)
        words.insert(orv_h264::short_unit_name(static_cast<brenik::h264_nal_unit_type>(type)));
    EXPECT_EQ(words.size(), 32U) << "each another";
    EXPECT_TRUE(words.contains("slice IDR"));
    EXPECT_TRUE(words.contains("SPS"));
    EXPECT_TRUE(words.contains("type-24"));
}

TEST(Names, FramingsAreThoseOfTheCommandLine)
{
    EXPECT_EQ(orv_h264::framing_name(orv_h264::h264::framing::annex_b), "annexb");
    EXPECT_EQ(orv_h264::framing_name(orv_h264::h264::framing::length_1), "length1");
    EXPECT_EQ(orv_h264::framing_name(orv_h264::h264::framing::length_4), "length4");
}

} // namespace
