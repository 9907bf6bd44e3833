#include "type_set.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using orv_h264::parse_type_set;

TEST(TypeSet, NumbersAndRangesAreTaken)
{
    EXPECT_EQ(parse_type_set("5").to_ulong(), 1UL << 5);
    EXPECT_EQ(parse_type_set("7,8").to_ulong(), 3UL << 7);
    EXPECT_EQ(parse_type_set("1-5,9").to_ulong(), 0x23EUL);
    EXPECT_EQ(parse_type_set("0-31").to_ulong(), 0xFFFFFFFFUL);
    EXPECT_EQ(parse_type_set("3-3").to_ulong(), 8UL);
}

TEST(TypeSet, NamesStandForTheirTypes)
{
    EXPECT_EQ(parse_type_set("sps,pps,sei,idr").to_ulong(), 0x1E0UL);
    EXPECT_EQ(parse_type_set("slice").to_ulong(), 0x3EUL);
    EXPECT_EQ(parse_type_set("extension,7").to_ulong(), (3UL << 20) | (1UL << 7));
}

TEST(TypeSet, WhatIsNoListIsRefused)
{
    for (const char* text : {"", ",", "5,", ",5", "x", "5x", " 5", "-", "1-", "-1", "5-1", "32", "1-32", "1-2-3",
                             "99999999999999999999999", "SPS", "sps-pps"})
        EXPECT_THROW(parse_type_set(text), std::invalid_argument) << text;
}

TEST(TypeSet, TheRefusalNamesThePartThatIsWrong)
{
    try {
        parse_type_set("7,40");
        FAIL();
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(),
                     ("'40' is no NAL unit type (0 to 31, or one of " + orv_h264::type_names() + ")").c_str());
    }
}

} // namespace
