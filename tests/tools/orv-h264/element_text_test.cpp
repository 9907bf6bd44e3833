#include "element_text.h"

#include "support/told_elements.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using orv_h264::text_of;
using orv_utils_v4::h264::coding;
using orv_utils_v4::h264::ending;
using orv_utils_v4::h264::reason;
using told::label;

std::string descriptor_of(coding how, unsigned bits)
{
    std::string text;
    orv_h264::append_descriptor(text, told::coded(how, bits, "x", 0));
    return text;
}

std::string value_of(const told::traced_element& e)
{
    std::string text = "=";
    orv_h264::append_value(text, e);
    return text;
}

TEST(ElementText, LabelsHaveAllOfTheirIndices)
{
    EXPECT_EQ(text_of(label("x")), "x");
    EXPECT_EQ(text_of(label("x", 4294967295)), "x[4294967295]");
    EXPECT_EQ(text_of(label("x", 0, 1)), "x[0][1]");
    EXPECT_EQ(text_of(label("x", 0, 1, 2)), "x[0][1][2]");
    EXPECT_EQ(text_of(label("x", 3, 2, 1, 0)), "x[3][2][1][0]");
}

TEST(ElementText, DescriptorsAreThoseOfTheStandardWithAFixedWidthInThem)
{
    const std::pair<coding, const char*> cases[] = {
        {coding::f, "f(8)"}, {coding::u, "u(8)"},   {coding::u_v, "u(v)"}, {coding::i, "i(8)"},   {coding::i_v, "i(v)"},
        {coding::b, "b(8)"}, {coding::ue, "ue(v)"}, {coding::se, "se(v)"}, {coding::st, "st(v)"},
    };
    for (const auto& [how, text] : cases)
        EXPECT_EQ(descriptor_of(how, 8), text);
    EXPECT_EQ(descriptor_of(coding::u, 128), "u(128)");
}

TEST(ElementText, ValuesAreDecimal)
{
    EXPECT_EQ(value_of(told::u(1, "x", 0)), "=0");
    EXPECT_EQ(value_of(told::u(63, "x", std::numeric_limits<std::int64_t>::max())), "=9223372036854775807");
    EXPECT_EQ(value_of(told::se("x", std::numeric_limits<std::int64_t>::min())), "=-9223372036854775808");
}

TEST(ElementText, NumbersOfMoreThan64BitsAreDecimalToo)
{
    const std::pair<std::string, const char*> cases[] = {
        {std::string(16, '\0'), "=0"},
        {std::string(15, '\0') + "\x0A", "=10"},
        {std::string(16, '\xFF'), "=340282366920938463463374607431768211455"},
        {"\x01" + std::string(8, '\0'), "=18446744073709551616"},
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(value_of(told::of_bytes(coding::u, "x", bytes)), text);
}

TEST(ElementText, StringsAreHexDigits)
{
    EXPECT_EQ(value_of(told::st("x", "a\xFF")), "=0x61ff");
    EXPECT_EQ(value_of(told::st("x", "")), "=0x");
}

TEST(ElementText, AFailureNamesElementBitAndReason)
{
    const std::pair<reason, const char*> cases[] = {
        {reason::unit_ends, "x[2] at bit 9: the unit ends"},
        {reason::payload_ends, "x[2] at bit 9: the payload ends"},
        {reason::malformed_code, "x[2] at bit 9: malformed Exp-Golomb code"},
        {reason::too_large, "x[2] -7 at bit 9: more than 31"},
        {reason::too_small, "x[2] -7 at bit 9: less than 31"},
        {reason::no_sps, "x[2] -7 at bit 9: names a sequence parameter set which is missing"},
        {reason::no_pps, "x[2] -7 at bit 9: names a picture parameter set which is missing"},
        {reason::no_partition_a, "x[2] at bit 9: partition A of the slice is missing"},
        {reason::no_source_slice, "x[2] at bit 9: needs another slice, which is not looked up"},
        {reason::no_memory, "x[2] at bit 9: no memory"},
        {reason::unit_too_long, "x[2] at bit 9: the unit is longer than what is read of it"},
    };
    for (const auto& [why, text] : cases)
        EXPECT_EQ(text_of({why, {"x", 2}, 9, -7, 31}), text);
}

TEST(ElementText, AFindingNamesTheRange)
{
    EXPECT_EQ(text_of({{"x", 2}, 9, -7, -6, 6}), "x[2] -7 at bit 9: outside of -6 to 6");
}

TEST(ElementText, OnlyAWrongEndingHasAText)
{
    EXPECT_EQ(text_of(ending::no_stop_bit), "the stop bit is missing");
    EXPECT_EQ(text_of(ending::bytes_behind), "bytes behind the trailing bits");
    for (const ending fine : {ending::unknown, ending::sound, ending::cabac_zero_words})
        EXPECT_EQ(text_of(fine), "");
}

TEST(ElementText, HexadecimalHasTwoDigitsAByte)
{
    const unsigned char bytes[] = {0x00, 0x0F, 0xA0};
    std::string text = "0x";
    orv_h264::append_hexadecimal(text, bytes, sizeof bytes);
    EXPECT_EQ(text, "0x000fa0");
}

} // namespace
