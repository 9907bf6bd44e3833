#include "encoder_text.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using orv_utils_v4::h264::user_data_unregistered;

user_data_unregistered user_data(std::string_view text)
{
    user_data_unregistered made;
    made.uuid_iso_iec_11578 = {0xDC, 0x45, 0xE9, 0xBD, 0xE6, 0xD9, 0x48, 0xB7,
                               0x96, 0x2C, 0xD8, 0x20, 0xD9, 0x23, 0xEE, 0xEF};
    made.user_data_payload_byte.assign(text.begin(), text.end());
    return made;
}

} // namespace

TEST(EncoderText, NameAndSettingsComeOutOfTheText)
{
    struct encoder_case {
        std::string text;
        std::string name;
        std::string settings;
    };
    const encoder_case cases[] = {
        {"maker", "maker", ""},
        {"maker - core 3", "maker - core 3", ""},
        {"maker - core 3 - H.264 codec - options: a=1 b=2 - 3", "maker - core 3", "a=1 b=2 - 3"},
        {"maker - core 3 - options: ", "maker - core 3", ""},
        {"maker - core 3 - more: a=1", "maker - core 3", ""},
        {"maker-x -y- z", "maker-x -y- z", ""},
        {"maker\nmore - options: a", "maker", ""},
        {std::string("maker - 1 - options: a\0b", 24), "maker - 1", "a"},
        {"m\xC3\xA4ker", "m", ""},
        {"~ tilde\x7F", "~ tilde", ""},
        {std::string(150, 'a'), std::string(100, 'a'), ""},
    };
    for (const encoder_case& c : cases) {
        const auto told = orv_h264::encoder_of(user_data(c.text));
        ASSERT_TRUE(told.has_value()) << c.text;
        EXPECT_EQ(c.name, told->name) << c.text;
        EXPECT_EQ(c.settings, told->settings) << c.text;
    }
}

TEST(EncoderText, NothingElseIsTakenForAnEncoder)
{
    EXPECT_FALSE(orv_h264::encoder_of(user_data("")).has_value());
    EXPECT_FALSE(orv_h264::encoder_of(user_data("\x01maker")).has_value());
    for (std::size_t i = 0; i < 16; ++i) {
        user_data_unregistered other = user_data("maker - core 3");
        other.uuid_iso_iec_11578[i] ^= 1;
        EXPECT_FALSE(orv_h264::encoder_of(other).has_value()) << i;
    }
}
