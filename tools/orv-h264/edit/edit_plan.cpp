#include "edit/edit_plan.h"

#include "input_file.h"
#include "names.h"
#include "type_set.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

/// Takes what stands before the word off the text, and the word; all of it where there is none.
std::string_view take_before(std::string_view& text, std::string_view word)
{
    const std::size_t at = text.find(word);
    const std::string_view before = text.substr(0, at);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + word.size());
    return trimmed(before);
}

edit_condition parse_equation(std::string_view text, const char* what)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || trimmed(text.substr(0, equals)).empty())
        throw std::invalid_argument(fmt::format("'{}' is no {}", text, what));
    return {std::string(trimmed(text.substr(0, equals))), parse_value(trimmed(text.substr(equals + 1)))};
}

/// What stands behind `where`, conditions joined by `and`.
std::vector<edit_condition> parse_conditions(std::string_view text)
{
    std::vector<edit_condition> conditions;
    while (!text.empty())
        conditions.push_back(parse_equation(take_before(text, " and "), "condition (NAME=VALUE)"));
    return conditions;
}

constexpr std::string_view where_word = " where ";

unsigned hex_digit(char c)
{
    constexpr std::string_view digits = "0123456789abcdef";
    const auto lower = static_cast<char>(c >= 'A' && c <= 'F' ? c - 'A' + 'a' : c);
    const std::size_t value = digits.find(lower);
    if (value == std::string_view::npos)
        throw std::invalid_argument(fmt::format("'{}' is no hexadecimal digit", c));
    return static_cast<unsigned>(value);
}

std::vector<unsigned char> parse_hex(std::string_view text)
{
    if (text.size() % 2 != 0)
        throw std::invalid_argument("hexadecimal bytes have two digits each");
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < text.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(hex_digit(text[i]) << 4 | hex_digit(text[i + 1])));
    return bytes;
}

std::vector<unsigned char> read_whole(const std::string& path)
{
    constexpr std::size_t most = std::size_t{64} << 20;
    input_file file(path);
    std::vector<unsigned char> bytes;
    std::array<unsigned char, 65536> block;
    while (const std::size_t count = file.read(block.data(), block.size())) {
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
        if (bytes.size() > most)
            throw std::invalid_argument(fmt::format("{} is longer than 64 MiB", path));
    }
    return bytes;
}

/// Without a start code before it; the unit has to be one that can stand behind one (H.264 7.4.1).
std::vector<unsigned char> checked_unit(std::vector<unsigned char> bytes)
{
    std::size_t zeros = 0;
    while (zeros < bytes.size() && bytes[zeros] == 0)
        ++zeros;
    if (zeros >= 2 && zeros < bytes.size() && bytes[zeros] == 1)
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(zeros) + 1);
    if (bytes.empty() || bytes.back() == 0)
        throw std::invalid_argument("a unit has a byte at least, and does not end in 00");
    for (std::size_t i = 0; i + 2 < bytes.size(); ++i)
        if (bytes[i] == 0 && bytes[i + 1] == 0 && bytes[i + 2] < 3)
            throw std::invalid_argument(fmt::format("byte {} of the unit begins 00 00 0{}, which needs an "
                                                    "emulation-prevention byte",
                                                    i, bytes[i + 2]));
    return bytes;
}

std::vector<unsigned char> parse_unit(const std::string& text)
{
    if (text.starts_with("hex:"))
        return checked_unit(parse_hex(std::string_view(text).substr(4)));
    if (text.starts_with("file:"))
        return checked_unit(read_whole(text.substr(5)));
    throw std::invalid_argument(fmt::format("'{}' is no unit (hex:BYTES or file:PATH)", text));
}

void parse_place(std::string_view text, unit_insertion& to)
{
    if (!text.starts_with("unit ")) {
        to.at = parse_picture_place(std::string(text));
        return;
    }
    const std::int64_t number = parse_value(trimmed(text.substr(5)));
    if (number < 0)
        throw std::invalid_argument(fmt::format("'{}' is no place: units count from 0", text));
    to.at = edit_place::unit;
    to.number = static_cast<std::uint64_t>(number);
}

std::array<std::uint8_t, 16> parse_uuid(std::string_view text)
{
    std::string digits;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '-' || (i != 8 && i != 13 && i != 18 && i != 23))
            digits += text[i];
    std::array<std::uint8_t, 16> uuid = {};
    if (digits.size() != 2 * uuid.size())
        throw std::invalid_argument(fmt::format("'{}' is no UUID of 32 hexadecimal digits", text));
    const std::vector<unsigned char> bytes = parse_hex(digits);
    std::copy(bytes.begin(), bytes.end(), uuid.begin());
    return uuid;
}

std::uint32_t parse_payload_type(const std::string& text)
{
    constexpr std::uint32_t highest_named = 255;
    constexpr std::int64_t highest = 0xFFFFFFFF;
    for (std::uint32_t type = 0; type <= highest_named; ++type)
        if (!text.empty() && text == payload_name(type))
            return type;
    std::int64_t type = -1;
    try {
        type = parse_value(text);
    } catch (const std::invalid_argument&) { // neither a name nor a number
    }
    if (type < 0 || type > highest)
        throw std::invalid_argument(
            fmt::format("'{}' is no SEI payload type (a number, or a name such as pic_timing)", text));
    return static_cast<std::uint32_t>(type);
}

} // namespace

bool edit_plan::removes_payload(std::uint32_t payload_type) const
{
    constexpr std::uint32_t filler_payload = 3;
    return (remove_filler && payload_type == filler_payload) ||
           std::find(removed_payloads.begin(), removed_payloads.end(), payload_type) != removed_payloads.end();
}

bool edit_plan::any() const
{
    return !sets.empty() || !deletions.empty() || !insertions.empty() || !removed_payloads.empty() || sps.any() ||
           add_aud || remove_aud || remove_filler || repeat_headers;
}

std::int64_t parse_value(std::string_view text)
{
    const std::string wrong = fmt::format("'{}' is no number", text);
    const bool negative = text.starts_with('-');
    std::string_view digits = text.substr(negative ? 1 : 0);
    const bool hexadecimal = digits.starts_with("0x");
    digits.remove_prefix(hexadecimal ? 2 : 0);
    std::uint64_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, hexadecimal ? 16 : 10);
    if (digits.empty() || error != std::errc() || stop != end || value > std::uint64_t{1} << 62U)
        throw std::invalid_argument(wrong);
    return negative ? -static_cast<std::int64_t>(value) : static_cast<std::int64_t>(value);
}

edit_assignment parse_assignment(const std::string& text)
{
    std::string_view rest = text;
    const edit_condition equation = parse_equation(take_before(rest, where_word), "assignment (PATH=VALUE)");
    return {equation.path, equation.value, parse_conditions(rest), text};
}

unit_deletion parse_deletion(const std::string& text)
{
    std::string_view rest = text;
    const std::bitset<32> types = parse_type_set(std::string(take_before(rest, where_word)));
    return {types, parse_conditions(rest), text};
}

unit_insertion parse_insertion(const std::string& text)
{
    unit_insertion insertion;
    insertion.text = text;
    const std::size_t before = text.rfind(" before ");
    const std::size_t behind = text.rfind(" after ");
    const std::size_t at = before == std::string::npos ? behind : before;
    if (at == std::string::npos)
        throw std::invalid_argument(
            fmt::format("'{}' names no place (before or after: unit N, first, idr or picture)", text));
    insertion.behind = before == std::string::npos;
    parse_place(trimmed(std::string_view(text).substr(at + (insertion.behind ? 7 : 8))), insertion);
    insertion.unit = parse_unit(std::string(trimmed(std::string_view(text).substr(0, at))));
    return insertion;
}

unit_insertion parse_sei_insertion(const std::string& text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
        throw std::invalid_argument(fmt::format("'{}' is not UUID:TEXT", text));
    h264::user_data_unregistered data;
    data.uuid_iso_iec_11578 = parse_uuid(std::string_view(text).substr(0, colon));
    data.user_data_payload_byte.assign(text.begin() + static_cast<std::ptrdiff_t>(colon) + 1, text.end());
    h264::nal_unit unit;
    unit.header.nal_unit_type = 6;
    auto& message = unit.rbsp.emplace<h264::sei_rbsp>().sei_messages.emplace_back();
    message.payload_type = 5;
    message.payload = std::move(data);
    h264::outcome result;
    std::vector<unsigned char> clean(text.size() * 2 + 64);
    h264::bit_writer to(clean.data(), clean.size());
    if (!h264::write(unit, {}, to, result))
        throw std::invalid_argument(fmt::format("'{}' cannot be written", text));
    unit_insertion insertion;
    insertion.text = text;
    insertion.before_slices = true;
    insertion.unit.resize(clean.size() * 3 / 2 + 40);
    const std::size_t framed =
        h264::frame(clean.data(), to.bytes(), 0, false, insertion.unit.data(), insertion.unit.size());
    insertion.unit.resize(framed);
    insertion.unit.erase(insertion.unit.begin(), insertion.unit.begin() + 3); // its start code
    return insertion;
}

edit_place parse_picture_place(const std::string& text)
{
    if (text == "first")
        return edit_place::first_picture;
    if (text == "idr")
        return edit_place::idr_picture;
    if (text == "picture")
        return edit_place::picture;
    throw std::invalid_argument(fmt::format("'{}' is no place (first, idr, picture, or of --insert unit N)", text));
}

std::vector<std::uint32_t> parse_payload_types(const std::string& text)
{
    std::vector<std::uint32_t> types;
    std::string_view rest = text;
    do
        types.push_back(parse_payload_type(std::string(take_before(rest, ","))));
    while (!rest.empty());
    return types;
}

} // namespace orv_h264
