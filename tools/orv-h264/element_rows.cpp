#include "element_rows.h"

#include <array>
#include <charconv>
#include <vector>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

template <class Number>
void append_number(std::string& text, Number number)
{
    char digits[20];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void append_label(std::string& text, const h264::label& name)
{
    text += name.name();
    for (unsigned i = 0; i < name.depth(); ++i) {
        text += '[';
        append_number(text, name.index(i));
        text += ']';
    }
}

std::string_view descriptor_of(h264::coding how)
{
    using h264::coding;
    switch (how) {
    case coding::u_v:
        return "u(v)";
    case coding::i_v:
        return "i(v)";
    case coding::ue:
        return "ue(v)";
    case coding::se:
        return "se(v)";
    case coding::st:
        return "st(v)";
    case coding::f:
        return "f";
    case coding::u:
        return "u";
    case coding::i:
        return "i";
    case coding::b:
        return "b";
    }
    return "";
}

void append_descriptor(std::string& text, const h264::traced_element& e)
{
    const std::string_view name = descriptor_of(e.how);
    text += name;
    if (name.size() == 1) {
        text += '(';
        append_number(text, e.bits);
        text += ')';
    }
}

void append_hexadecimal(std::string& text, const unsigned char* bytes, std::size_t size)
{
    constexpr std::string_view digits = "0123456789abcdef";
    text += "0x";
    for (std::size_t i = 0; i < size; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
}

/// A number of any size, most significant byte first.
void append_decimal(std::string& text, const unsigned char* bytes, std::size_t size)
{
    std::vector<unsigned char> number(bytes, bytes + size);
    std::string digits; // last one first
    do {
        unsigned rest = 0;
        for (unsigned char& byte : number) {
            const unsigned part = rest << 8 | byte;
            byte = static_cast<unsigned char>(part / 10);
            rest = part % 10;
        }
        digits += static_cast<char>('0' + rest);
        while (!number.empty() && number.front() == 0)
            number.erase(number.begin());
    } while (!number.empty());
    text.append(digits.rbegin(), digits.rend());
}

void append_value(std::string& text, const h264::traced_element& e)
{
    if (e.how == h264::coding::st)
        append_hexadecimal(text, e.bytes, e.size);
    else if (e.bytes != nullptr)
        append_decimal(text, e.bytes, e.size);
    else
        append_number(text, e.value);
}

} // namespace

void element_rows::begin(const h264::unit_place& place)
{
    unit_columns.clear();
    append_number(unit_columns, place.number);
    unit_columns += '\t';
    append_number(unit_columns, place.size == 0 ? 0U : place.bytes[0] & 0x1FU);
    unit_columns += '\t';
    raw_bytes.emplace(place.bytes, place.size);
    offset = place.offset;
    path.clear();
}

void element_rows::open(const char* name)
{
    if (!path.empty())
        path += '.';
    path += name;
}

void element_rows::close()
{
    const std::size_t dot = path.rfind('.');
    path.resize(dot == std::string::npos ? 0 : dot);
}

void element_rows::element(const h264::traced_element& e)
{
    text += unit_columns;
    append_number(text, offset + (*raw_bytes)(e.bit / 8));
    text += '\t';
    append_number(text, e.bit % 8);
    text += '\t';
    append_number(text, e.bit);
    text += '\t';
    append_number(text, e.bits);
    text += '\t';
    append_descriptor(text, e);
    text += '\t';
    text += path;
    text += '\t';
    append_label(text, e.name);
    text += '\t';
    append_value(text, e);
    text += e.inside ? "\t1\n" : "\t0\n";
}

std::string text_of(const h264::label& name)
{
    std::string text;
    append_label(text, name);
    return text;
}

std::string text_of(const h264::failure& failure)
{
    using h264::reason;
    std::string text = text_of(failure.element);
    const bool with_value = failure.why == reason::too_large || failure.why == reason::too_small ||
                            failure.why == reason::no_sps || failure.why == reason::no_pps;
    if (with_value)
        text += fmt::format(" {}", failure.value);
    text += fmt::format(" at bit {}: {}", failure.bit, h264::text_of(failure.why));
    if (failure.why == reason::too_large || failure.why == reason::too_small)
        text += fmt::format(" {}", failure.bound);
    return text;
}

} // namespace orv_h264
