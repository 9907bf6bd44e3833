#include "element_text.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

namespace orv_h264 {

void append_label(std::string& text, const h264::label& name)
{
    text += name.name();
    for (unsigned i = 0; i < name.depth(); ++i) {
        text += '[';
        append_number(text, name.index(i));
        text += ']';
    }
}

namespace {

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

} // namespace

char* put_descriptor(char* to, const h264::traced_element& e)
{
    const std::string_view name = descriptor_of(e.how);
    to = std::copy(name.begin(), name.end(), to);
    if (name.size() != 1)
        return to;
    *to++ = '(';
    to = put_number(to, e.bits);
    *to++ = ')';
    return to;
}

void append_descriptor(std::string& text, const h264::traced_element& e)
{
    char descriptor[most_descriptor];
    text.append(descriptor, static_cast<std::size_t>(put_descriptor(descriptor, e) - descriptor));
}

void append_hexadecimal(std::string& text, const unsigned char* bytes, std::size_t size)
{
    constexpr std::string_view digits = "0123456789abcdef";
    for (std::size_t i = 0; i < size; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
}

namespace {

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

} // namespace

void append_value(std::string& text, const h264::traced_element& e)
{
    if (e.how == h264::coding::st)
        append_hexadecimal(text += "0x", e.bytes, e.size);
    else if (e.bytes != nullptr)
        append_decimal(text, e.bytes, e.size);
    else
        append_number(text, e.value);
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

std::string text_of(const h264::finding& finding)
{
    return fmt::format("{} {} at bit {}: outside of {} to {}", text_of(finding.element), finding.value, finding.bit,
                       finding.lowest, finding.highest);
}

std::string_view text_of(h264::ending ending)
{
    if (ending == h264::ending::no_stop_bit)
        return "the stop bit is missing";
    if (ending == h264::ending::bytes_behind)
        return "bytes behind the trailing bits";
    return "";
}

} // namespace orv_h264
