#include "json_fields.h"

#include "field_printer.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

using orv_h264::field_printer;
using orv_h264::json_fields;

/// What `show` makes of a printer that hands on the elements up to bit `limit`.
template <typename Show>
std::string json_of(Show show, std::size_t limit = field_printer::no_limit)
{
    std::string text;
    {
        json_fields fields(text);
        field_printer p(fields, limit);
        show(p);
    }
    return text;
}

TEST(JsonFields, MeaningAndDerivedStandBehindTheElements)
{
    const auto show = [](field_printer& p) {
        p.u(8, "profile_idc", 77, "Main");
        p.derived("twice", {{"double", std::uint64_t{154}}});
        p.se("offset", -3);
    };
    EXPECT_EQ(R"({"profile_idc":77,"offset":-3,"meaning":{"profile_idc":"Main"},"derived":{"double":154}})",
              json_of(show));
}

TEST(JsonFields, AStructureHasItsOwnMeaning)
{
    const auto show = [](field_printer& p) {
        p.u(8, "a", 1, "one");
        {
            const field_printer::deeper indented(p, "inside");
            p.u(8, "b", 2, "two");
        }
        p.u(8, "c", 3);
    };
    EXPECT_EQ(R"({"a":1,"inside":{"b":2,"meaning":{"b":"two"}},"c":3,"meaning":{"a":"one"}})", json_of(show));
}

TEST(JsonFields, EntriesThatWereNotSentAreNull)
{
    const auto show = [](field_printer& p) {
        p.ue({"value", 0}, 5);
        p.ue({"value", 2}, 6, "six");
    };
    EXPECT_EQ(R"({"value":[5,null,6],"meaning":{"value":[null,null,"six"]}})", json_of(show));
}

TEST(JsonFields, ArraysGrowSideBySide)
{
    const auto show = [](field_printer& p) {
        for (std::size_t i = 0; i < 2; ++i) {
            p.se({"left", i}, -1);
            const field_printer::deeper indented(p, {"right", i});
            p.u(8, "b", i);
        }
    };
    EXPECT_EQ(R"({"left":[-1,-1],"right":[{"b":0},{"b":1}]})", json_of(show));
}

TEST(JsonFields, TextIsEscapedAndWhatIsNotUtf8Replaced)
{
    const auto show = [](field_printer& p) {
        p.words("quoted", R"("a\b")");
        p.words("control", "\n\x01\x7F");
        p.words("utf8", "\xC3\xA4");
        p.words("broken", "a\xFFz");
    };
    EXPECT_EQ("{\"quoted\":\"\\\"a\\\\b\\\"\",\"control\":\"\\n\\u0001\x7F\","
              "\"utf8\":\"\xC3\xA4\",\"broken\":\"a\xEF\xBF\xBDz\"}",
              json_of(show));
}

TEST(JsonFields, WithoutFieldsTheObjectIsEmpty)
{
    EXPECT_EQ("{}", json_of([](field_printer&) {}));
}

TEST(JsonFields, BytesAreHexDigitsAndTheirTextIsTheirMeaning)
{
    const std::array<std::uint8_t, 3> bytes = {0x00, 0x9F, 0x22};
    EXPECT_EQ(R"({"data":"009f22"})", json_of([&](field_printer& p) { p.bytes("data", bytes); }));
    EXPECT_EQ(R"({"data":"009f22","meaning":{"data":"\"x"}})",
              json_of([&](field_printer& p) { p.bytes("data", bytes, "\"x"); }));
}

TEST(JsonFields, BytesAreToldUpToABound)
{
    constexpr std::size_t most = orv_h264::json_fields::most_bytes;
    const std::vector<std::uint8_t> fits(most, 'A');
    const std::vector<std::uint8_t> longer(most + 1, 'A');
    const std::string text(most + 1, 'A');
    const auto told = [&](const std::vector<std::uint8_t>& bytes) {
        return json_of(
            [&](field_printer& p) { p.bytes("data", bytes, std::string_view(text).substr(0, bytes.size())); });
    };
    EXPECT_TRUE(told(fits) == told(longer));
    EXPECT_TRUE(told(fits) != told({fits.begin() + 1, fits.end()}));
}

TEST(JsonFields, BehindTheLastBitNoStructureIsOpened)
{
    const auto show = [](field_printer& p) {
        p.u(2, "a", 1);
        {
            const field_printer::deeper indented(p, "begun");
            p.u(8, "b", 2);
        }
        {
            const field_printer::deeper indented(p, "behind");
            p.u(8, "c", 3);
        }
        const field_printer::entry grouped(p, "entries", 0);
        p.u(8, "d", 4);
    };
    EXPECT_EQ(R"({"a":1,"begun":{}})", json_of(show, 3));
    EXPECT_EQ(R"({"a":1,"begun":{"b":2},"behind":{}})", json_of(show, 10)) << "what told of it was there";
}

TEST(JsonFields, OfAParameterSetThatDoesNotParseNothingIsKnownBehindAScalingList)
{
    const brenik::h264_scaling_list list;
    const auto show = [&](field_printer& p) {
        p.flag({"present", 0}, true);
        p.scaling_list(0, list);
        const field_printer::deeper indented(p, "vui_parameters");
        p.flag("more", true);
    };
    EXPECT_EQ(R"({"present":[1]})", json_of(show, 100));
}

} // namespace
