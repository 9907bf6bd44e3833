// The two sinks of fields, side by side.
#include "json_fields.h"
#include "text_fields.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

using orv_h264::field_sink;

/// What `fill` gives to a sink of text.
template <typename Fill>
std::string text_of(Fill fill)
{
    std::string out;
    orv_h264::text_fields sink(out);
    fill(static_cast<field_sink&>(sink));
    return out;
}

/// Likewise, of JSON, on one line.
template <typename Fill>
std::string json_of(Fill fill)
{
    std::string out;
    {
        orv_h264::json_fields sink(out);
        fill(static_cast<field_sink&>(sink));
    }
    return out;
}

} // namespace

TEST(FieldSinks, ValuesOfEveryKind)
{
    const std::array<std::uint8_t, 3> list = {1, 20, 255};
    const auto fill = [&](field_sink& sink) {
        sink.element("largest", std::uint64_t{UINT64_MAX}, "");
        sink.element("negative", std::int64_t{-5}, "");
        sink.element("rate", 12.5, "");
        sink.element("name", std::string_view("two words"), "");
        sink.element("list", std::span<const std::uint8_t>(list), "");
        sink.element("none", std::span<const std::uint8_t>(), "");
    };
    EXPECT_EQ("    largest 18446744073709551615\n"
              "    negative -5\n"
              "    rate 12.5\n"
              "    name two words\n"
              "    list 1 20 255\n"
              "    none \n",
              text_of(fill));
    EXPECT_EQ(R"({"largest":18446744073709551615,"negative":-5,"rate":12.5,"name":"two words","list":[1,20,255],)"
              R"("none":[]})",
              json_of(fill));
}

TEST(FieldSinks, ANoteIsInBracketsOrAMeaning)
{
    const auto fill = [](field_sink& sink) {
        sink.element("type", std::uint64_t{7}, "I");
        sink.element("plain", std::uint64_t{1}, "");
    };
    EXPECT_EQ("    type 7 (I)\n    plain 1\n", text_of(fill));
    EXPECT_EQ(R"({"type":7,"plain":1,"meaning":{"type":"I"}})", json_of(fill));
}

TEST(FieldSinks, AnEntryStandsAtItsIndex)
{
    const auto fill = [](field_sink& sink) {
        sink.element({"flag", 2}, std::uint64_t{1}, "yes");
        sink.element({"flag", 0}, std::uint64_t{0}, "");
    };
    EXPECT_EQ("    flag[2] 1 (yes)\n    flag[0] 0\n", text_of(fill));
    EXPECT_EQ(R"({"flag":[0,null,1],"meaning":{"flag":[null,null,"yes"]}})", json_of(fill));
}

TEST(FieldSinks, StructuresAreIndentedOrNested)
{
    const auto fill = [](field_sink& sink) {
        sink.open("outer", "Outer:");
        sink.element("a", std::uint64_t{1}, "");
        sink.open({"inner", 1}, "");
        sink.element("b", std::uint64_t{2}, "");
        sink.close();
        sink.close();
        sink.element("c", std::uint64_t{3}, "");
    };
    EXPECT_EQ("    Outer:\n        a 1\n            b 2\n    c 3\n", text_of(fill));
    EXPECT_EQ(R"({"outer":{"a":1,"inner":[null,{"b":2}]},"c":3})", json_of(fill));
}

TEST(FieldSinks, AnEntryOfItsOwnIsNestedInJsonOnly)
{
    const auto fill = [](field_sink& sink) {
        sink.open_entry({"entry", 0});
        sink.element("a", std::uint64_t{1}, "");
        sink.close_entry();
        sink.element("b", std::uint64_t{2}, "");
    };
    EXPECT_EQ("    a 1\n    b 2\n", text_of(fill));
    EXPECT_EQ(R"({"entry":[{"a":1}],"b":2})", json_of(fill));
}

TEST(FieldSinks, WhatAHeadingToldIsForJsonAndWhatFollowsForBoth)
{
    const auto fill = [](field_sink& sink) {
        sink.told({"told", std::uint64_t{4}});
        sink.derived("176x144", {{"width", std::uint64_t{176}}, {"height", std::uint64_t{144}}});
        sink.derived("square", {{"ratio", 1.0}});
    };
    EXPECT_EQ("    = 176x144\n    = square\n", text_of(fill));
    EXPECT_EQ(R"({"told":4,"derived":{"width":176,"height":144,"ratio":1.0}})", json_of(fill));
}
