// The texts that the library gives for numbers, all of them in one file: a row for each number with a text.
#include <orv-utils-v4/h264/nal.h>
#include <orv-utils-v4/h264/nal_sei.h>
#include <orv-utils-v4/h264/nal_sei_pic_timing.h>
#include <orv-utils-v4/h264/nal_slice_header.h>
#include <orv-utils-v4/h264/vui_parameters.h>
#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

namespace {

constexpr unsigned int fence = 1000; // above every number with a text

/// The rows of the numbers for which `text_of` does not give `none`.
template <typename TextOf>
std::string rows(const char* heading, unsigned int end, const std::string& none, TextOf text_of)
{
    std::string made = std::string(heading) + '\n';
    for (unsigned int number = 0; number < end; ++number)
        if (const std::string text = text_of(number); text != none)
            made += "    " + std::to_string(number) + ' ' + text + '\n';
    return made;
}

std::string pic_struct_text(unsigned int number)
{
    brenik::h264_nal_sei_pic_timing timing;
    timing.pic_struct = static_cast<std::uint8_t>(number);
    return timing.pic_struct_to_str();
}

std::string ct_type_text(unsigned int number)
{
    brenik::h264_nal_sei_pic_timing::timestamp_t timestamp;
    timestamp.ct_type = static_cast<std::uint8_t>(number);
    return timestamp.ct_type_to_str();
}

/// "none" for the types whose name is a null pointer.
std::string legacy_unit_text(unsigned int type)
{
    const char* const name = h264_nal_parser_unit_type_to_str(static_cast<unsigned char>(type));
    return name == nullptr ? "none" : name;
}

std::string every_text()
{
    return rows("nal_unit_type of the legacy interface", 256, "none", legacy_unit_text) +
           rows("nal_unit_type", fence, "",
                [](unsigned int n) { return h264_nal_unit_type_to_str(static_cast<brenik::h264_nal_unit_type>(n)); }) +
           rows("slice_type", fence, "",
                [](unsigned int n) { return h264_slice_type_t_to_string(static_cast<brenik::h264_slice_type_t>(n)); }) +
           rows("video_format", 256, "?",
                [](unsigned int n) { return h264_video_format_to_str(static_cast<brenik::h264_video_format>(n)); }) +
           rows("pic_struct", 256, "?", pic_struct_text) + rows("ct_type", 256, "?", ct_type_text) +
           rows("payloadType", fence, "", [](unsigned int n) {
               return h264_nal_sei_payload_type_to_str(static_cast<brenik::h264_nal_sei_payload_type>(n));
           });
}

std::string read_file(const char* path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

} // namespace

TEST(Names, AreThoseOfTheCheckedInText)
{
    EXPECT_EQ(read_file(ORV_TEST_NAMES), every_text());
}
