// The texts of the options that stand for several elements.
#include "edit/edit_plan.h"
#include "edit/sps_wishes.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

struct colour_name {
    std::string_view name;
    std::uint8_t value;
};

// H.264 Table E-3; BT.601 is that of 525 lines, as SMPTE 170M
constexpr colour_name primaries_names[] = {
    {"bt709", 1},     {"unspecified", 2}, {"bt470m", 4},   {"bt470bg", 5}, {"bt601", 6},
    {"smpte170m", 6}, {"smpte240m", 7},   {"film", 8},     {"bt2020", 9},  {"smpte428", 10},
    {"smpte431", 11}, {"smpte432", 12},   {"ebu3213", 22},
};

// H.264 Table E-4
constexpr colour_name transfer_names[] = {
    {"bt709", 1},     {"unspecified", 2}, {"bt470m", 4},    {"bt470bg", 5},    {"bt601", 6},
    {"smpte170m", 6}, {"smpte240m", 7},   {"linear", 8},    {"log100", 9},     {"log316", 10},
    {"xvycc", 11},    {"bt1361", 12},     {"srgb", 13},     {"bt2020-10", 14}, {"bt2020-12", 15},
    {"pq", 16},       {"smpte2084", 16},  {"smpte428", 17}, {"hlg", 18},
};

// H.264 Table E-5
constexpr colour_name matrix_names[] = {
    {"identity", 0},   {"rgb", 0},        {"bt709", 1},     {"unspecified", 2}, {"fcc", 4},      {"bt470bg", 5},
    {"bt601", 6},      {"smpte170m", 6},  {"smpte240m", 7}, {"ycgco", 8},       {"bt2020nc", 9}, {"bt2020c", 10},
    {"smpte2085", 11}, {"chroma-nc", 12}, {"chroma-c", 13}, {"ictcp", 14},
};

[[noreturn]] void refuse(const std::string& text, const char* is_no)
{
    throw std::invalid_argument(fmt::format("'{}' is no {}", text, is_no));
}

/// The parts between separators.
std::vector<std::string> parts_of(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::size_t from = 0;
    for (std::size_t at = text.find(separator); at != std::string::npos; at = text.find(separator, from)) {
        parts.push_back(text.substr(from, at - from));
        from = at + 1;
    }
    parts.push_back(text.substr(from));
    return parts;
}

std::uint64_t number_up_to(const std::string& text, std::int64_t highest, const char* is_no)
{
    std::int64_t value = -1;
    try {
        value = parse_value(text);
    } catch (const std::invalid_argument&) {
        refuse(text, is_no);
    }
    if (value < 0 || value > highest)
        refuse(text, is_no);
    return static_cast<std::uint64_t>(value);
}

template <std::size_t N>
std::uint8_t colour_of(const colour_name (&names)[N], const std::string& text, const char* is_no)
{
    const auto* const row =
        std::find_if(std::begin(names), std::end(names), [&](const colour_name& known) { return known.name == text; });
    if (row != std::end(names))
        return row->value;
    constexpr std::int64_t highest = 255;
    return static_cast<std::uint8_t>(number_up_to(text, highest, is_no));
}

constexpr const char* no_level = "level (1, 1b, 1.1 to 6.2, or auto)";

} // namespace

h264::ratio parse_sar(const std::string& text)
{
    constexpr const char* no_sar = "sample aspect ratio (for example 4:3, each 1 to 65535)";
    constexpr std::int64_t highest = 0xFFFF;
    const std::vector<std::string> parts = parts_of(text, ':');
    if (parts.size() != 2)
        refuse(text, no_sar);
    const h264::ratio sar = {number_up_to(parts[0], highest, no_sar), number_up_to(parts[1], highest, no_sar)};
    if (sar.numerator == 0 || sar.denominator == 0)
        refuse(text, no_sar);
    return sar;
}

h264::ratio parse_rate(const std::string& text)
{
    constexpr const char* no_rate = "frame rate (for example 25 or 30000/1001)";
    constexpr std::int64_t highest = 0x7FFFFFFF; // time_scale is twice as much
    const std::vector<std::string> parts = parts_of(text, '/');
    if (parts.size() > 2)
        refuse(text, no_rate);
    const h264::ratio rate = {number_up_to(parts[0], highest, no_rate),
                              parts.size() == 1 ? 1 : number_up_to(parts[1], highest, no_rate)};
    if (rate.numerator == 0 || rate.denominator == 0)
        refuse(text, no_rate);
    return rate;
}

std::string parse_level(const std::string& text)
{
    static constexpr std::array<std::string_view, 21> levels = {"auto", "1",   "1b",  "1.1", "1.2", "1.3", "2",
                                                                "2.1",  "2.2", "3",   "3.1", "3.2", "4",   "4.1",
                                                                "4.2",  "5",   "5.1", "5.2", "6",   "6.1", "6.2"};
    if (std::find(levels.begin(), levels.end(), text) == levels.end())
        refuse(text, no_level);
    return text;
}

wanted_colour parse_colour(const std::string& text)
{
    const std::vector<std::string> parts = parts_of(text, ':');
    if (parts.size() != 3)
        refuse(text, "colour (PRIMARIES:TRANSFER:MATRIX, for example bt709:bt709:bt709)");
    return {colour_of(primaries_names, parts[0], "name or number of colour primaries"),
            colour_of(transfer_names, parts[1], "name or number of transfer characteristics"),
            colour_of(matrix_names, parts[2], "name or number of matrix coefficients")};
}

wanted_crop parse_crop(const std::string& text)
{
    constexpr const char* no_crop = "crop (LEFT,TOP,RIGHT,BOTTOM in luma samples)";
    constexpr std::int64_t highest = 0xFFFFFF;
    const std::vector<std::string> parts = parts_of(text, ',');
    if (parts.size() != 4)
        refuse(text, no_crop);
    const auto side = [&](std::size_t i) {
        return static_cast<std::uint32_t>(number_up_to(parts[i], highest, no_crop));
    };
    return {side(0), side(1), side(2), side(3)};
}

bool parse_range(const std::string& text)
{
    if (text != "on" && text != "off")
        refuse(text, "range (on or off)");
    return text == "on";
}

} // namespace orv_h264
