#include "trace_json.h"

#include "support/told_elements.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using orv_h264::json_members;
using orv_h264::trace_json;

/// The JSON of what `tell` says inside of one structure.
template <class Tell>
std::string json_of(Tell tell, bool positions = false)
{
    trace_json made(positions);
    made.open("rbsp", "rbsp");
    tell(made);
    made.close();
    std::string text = made.take();
    EXPECT_TRUE(nlohmann::json::accept(text)) << text;
    return text;
}

orv_h264::shown_element shown(const told::traced_element& e, std::string_view words = "", bool repeated = false)
{
    return {e, 100 + e.bit / 8, words, repeated};
}

std::string text_of(const json_members& members)
{
    std::string text;
    members.append_to(text);
    return text;
}

TEST(JsonMembers, KeepTheOrderInWhichTheyCame)
{
    json_members m;
    EXPECT_TRUE(m.empty());
    EXPECT_EQ(text_of(m), "{}");
    m.put("b", "1");
    m.append("a", "2");
    m.put("c", "3");
    m.append("a", "4");
    EXPECT_FALSE(m.empty());
    EXPECT_EQ(text_of(m), R"({"b":1,"a":[2,4],"c":3})");
}

TEST(JsonMembers, EntriesThatWereNotSentAreNull)
{
    json_members m;
    m.put_entry({"x", 2}, "7");
    m.put_entry({"x", 3}, "8");
    m.put_entry({"x", 5}, "9");
    EXPECT_EQ(text_of(m), R"({"x":[null,null,7,8,null,9]})");
}

TEST(JsonMembers, ArraysInArraysGoOnWhereTheIndicesAreTheSame)
{
    json_members m;
    m.put_entry({"x", 0, 0}, "1");
    m.put_entry({"x", 0, 2}, "2");
    m.put_entry({"x", 2, 1}, "3");
    m.put_entry({"x", 2, 2}, "4");
    EXPECT_EQ(text_of(m), R"({"x":[[1,null,2],null,[null,3,4]]})");
}

TEST(JsonMembers, ArraysOfFourDimensions)
{
    json_members m;
    m.put_entry({"x", 0, 0, 0, 0}, "1");
    m.put_entry({"x", 0, 0, 0, 1}, "2");
    m.put_entry({"x", 0, 0, 1, 0}, "3");
    m.put_entry({"x", 0, 1, 0, 0}, "4");
    m.put_entry({"x", 1, 0, 0, 1}, "5");
    EXPECT_EQ(text_of(m), R"({"x":[[[[1,2],[3]],[[4]]],[[[null,5]]]]})");
}

TEST(JsonMembers, ArraysMayComeByTurns)
{
    json_members m;
    for (std::uint64_t i = 0; i < 2; ++i) {
        m.put_entry({"x", i}, "1");
        m.put_entry({"y", i, i}, "2");
    }
    EXPECT_EQ(text_of(m), R"({"x":[1,1],"y":[[2],[null,2]]})");
}

TEST(TraceJson, ElementsStandUnderTheirNamesAndTheOutermostStructuresAreNoMembers)
{
    trace_json made(false);
    made.open("nal_unit", "nal_unit");
    made.element(shown(told::u(1, "flag", 1)));
    made.close();
    made.open("rbsp", "rbsp");
    made.element(shown(told::se("offset", -3)));
    made.open("inner", "inner");
    made.element(shown(told::u(32, {"x", 1}, 4294967295)));
    made.close();
    made.close();
    EXPECT_EQ(made.take(), R"({"flag":1,"offset":-3,"inner":{"x":[null,4294967295]}})");
}

TEST(TraceJson, TakingBeginsAnew)
{
    trace_json made(true);
    made.open("rbsp", "rbsp");
    made.element(shown(told::u(3, "x", 1), "one"));
    made.follows({"y", "2", ""});
    made.close();
    EXPECT_NE(made.take(), "{}");
    EXPECT_EQ(made.take(), "{}");
}

TEST(TraceJson, RepeatedElementsAndStructuresAreListsInTheOrderTheyCome)
{
    const std::string text = json_of([](trace_json& made) {
        made.element(shown(told::u(8, "x", 1), "one", true));
        made.element(shown(told::u(8, "x", 2), "two", true));
        for (const int value : {3, 4}) {
            made.open("sei_message", "");
            made.element(shown(told::u(8, "y", value)));
            made.close();
        }
    });
    EXPECT_EQ(text, R"({"x":[1,2],"sei_message":[{"y":3},{"y":4}],"meaning":{"x":["one","two"]}})");
}

TEST(TraceJson, FixedPatternsAreListsThoughTheyHaveIndices)
{
    const std::string text = json_of([](trace_json& made) {
        made.element(shown(told::f({"marker_bits", 5}, 1, 1)));
        made.element(shown(told::f("marker_bits", 0, 1)));
    });
    EXPECT_EQ(text, R"({"marker_bits":[1,0]})");
}

TEST(TraceJson, MeaningsDerivedValuesAndPlacesStandBehindTheElements)
{
    const std::string text = json_of(
        [](trace_json& made) {
            made.follows({"why", "\"so\"", ""});
            made.element(shown(told::u(3, "x", 1, 21), "one"));
            made.element(shown(told::u(8, {"y", 1}, 2, 32), "two"));
        },
        true);
    EXPECT_EQ(text, R"({"x":1,"y":[null,2],"meaning":{"x":"one","y":[null,"two"]},"derived":{"why":"so"},)"
                    R"("positions":{"x":[102,5,3],"y":[null,[104,0,8]]}})");
}

TEST(TraceJson, WhatFollowsStandsInTheStructureThatIsOpen)
{
    const std::string text = json_of([](trace_json& made) {
        made.open("inner", "");
        made.follows({"a", "1", ""});
        made.close();
        made.follows({"b", "2", ""});
    });
    EXPECT_EQ(text, R"({"inner":{"derived":{"a":1}},"derived":{"b":2}})");
}

TEST(TraceJson, TextIsEscaped)
{
    const std::string text = json_of([](trace_json& made) {
        made.element(shown(told::st("x", "a\"b\\c\n\x01\xFF")));
        made.element(shown(told::st("empty", "")));
        made.element(shown(told::u(1, "y", 0), "\"quoted\""));
    });
    EXPECT_EQ(text, "{\"x\":\"a\\\"b\\\\c\\n\\u0001\uFFFD\",\"empty\":\"\",\"y\":0,"
                    "\"meaning\":{\"y\":\"\\\"quoted\\\"\"}}");
}

TEST(TraceJson, NumbersOfManyBitsAreHexDigits)
{
    const std::string text = json_of([](trace_json& made) {
        made.element(shown(told::of_bytes(told::coding::u, "uuid_iso_iec_11578", {"\x00\x1F\xE0", 3})));
    });
    EXPECT_EQ(text, R"({"uuid_iso_iec_11578":"001fe0"})");
}

TEST(TraceJson, ARunOfBytesIsOneStringWithoutAnIndexAtThePlaceOfTheFirst)
{
    told::traced_element first = told::b({"payload_byte", 3}, 0x0A, 16);
    first.bits = 16;
    const std::vector<unsigned char> run = {0x0A, 0xFF};
    const std::string text = json_of(
        [&](trace_json& made) {
            made.bytes(shown(first, "words"), {run.data(), run.size()});
        },
        true);
    EXPECT_EQ(text, R"({"payload_byte":"0aff","meaning":{"payload_byte":"words"},)"
                    R"("positions":{"payload_byte":[102,0,16]}})");
}

TEST(TraceJson, WordsOfRepeatedElementsStandWhereTheirValuesDo)
{
    const std::string text = json_of([&](trace_json& made) {
        made.element(shown(told::u(8, "x", 9), "", true));
        made.element(shown(told::u(8, "x", 1), "one", true));
        made.element(shown(told::u(8, "x", 9), "", true));
        made.element(shown(told::u(8, "x", 2), "two", true));
    });
    EXPECT_EQ(text, R"({"x":[9,1,9,2],"meaning":{"x":[null,"one",null,"two"]}})");
}

TEST(TraceJson, OfALongListTheFirstEntriesAreTold)
{
    const std::string text = json_of([&](trace_json& made) {
        for (std::size_t i = 0; i <= orv_h264::json_members::most_entries; ++i)
            made.element(shown(told::u(1, "x", 1), "", true));
    });
    EXPECT_EQ(text.size(), 2 * orv_h264::json_members::most_entries - 1 + std::string(R"({"x":[]})").size());
}

TEST(TraceJson, OfALongRunTheFirstBytesAreTold)
{
    for (const std::size_t size : {trace_json::most_bytes, trace_json::most_bytes + 1}) {
        const std::vector<unsigned char> run(size, 0x42);
        const std::string text = json_of([&](trace_json& made) {
            made.bytes(shown(told::b("x", 0x42)), {run.data(), run.size()});
        });
        EXPECT_EQ(text.size(), 2 * trace_json::most_bytes + std::string(R"({"x":""})").size());
    }
}

} // namespace
