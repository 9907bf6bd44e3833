#include "printable.h"

#include <gtest/gtest.h>

namespace {

using orv_h264::printable;
using namespace std::string_literals;

TEST(Printable, TextStaysAsItIs)
{
    for (const std::string& text : {""s, "movie.264"s, R"( ~"'\x1b)"s, "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xA5"s})
        EXPECT_EQ(text, printable(text));
}

TEST(Printable, EveryControlCharacterOfOneByteIsEscaped)
{
    for (unsigned int byte = 0; byte < 0x80; ++byte) {
        const std::string text = {'a', static_cast<char>(byte), 'b'};
        const bool is_control = byte < 0x20 || byte == 0x7F;
        EXPECT_EQ(is_control, printable(text) != text) << byte;
        for (const char c : printable(text))
            EXPECT_TRUE(c >= ' ' && c <= '~') << byte;
    }
    EXPECT_EQ("\\x00\\x1b[2J\\n\\r\\t\\x7f", printable("\0\x1B[2J\n\r\t\x7F"s));
}

TEST(Printable, C1InUtf8IsEscapedAndItsNeighboursAreNot)
{
    EXPECT_EQ("\\xc2\\x80\\xc2\\x9b31m\\xc2\\x9f", printable("\xC2\x80\xC2\x9B"
                                                             "31m\xC2\x9F"));
    for (const std::string& text : {"\xC2\xA0"s, "\xC3\x9B"s, "\xE2\x80\x9B"s})
        EXPECT_EQ(text, printable(text));
}

TEST(Printable, BytesThatAreNoUtf8Stay)
{
    for (const std::string& text : {"\xC2"s, "a\xC2z"s, "\x9B"s, "\xFF\xC2\xC2"s})
        EXPECT_EQ(text, printable(text));
    EXPECT_EQ("\xC2\\n", printable("\xC2\n"));
}

} // namespace
