// Syntax elements, their values and what is wrong with them as text.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

constexpr std::size_t most_digits = 20; ///< of a number in decimal, with its sign

/// Puts a number in decimal at `to`, where there is room for most_digits; the end of it.
template <class Number>
char* put_number(char* to, Number number)
{
    if (number < 0 || number > 9)
        return std::to_chars(to, to + most_digits, number).ptr;
    *to = static_cast<char>('0' + number); // mostly
    return to + 1;
}

/// Appends a number in decimal.
template <class Number>
void append_number(std::string& text, Number number)
{
    char digits[most_digits];
    text.append(digits, static_cast<std::size_t>(put_number(digits, number) - digits));
}

/// Appends two hex digits a byte.
void append_hexadecimal(std::string& text, const unsigned char* bytes, std::size_t size);

/// Appends name and indices of an element: "offset_for_ref_frame[2]".
void append_label(std::string& text, const h264::label& name);

constexpr std::size_t most_descriptor = most_digits + 3; ///< letters of a descriptor

/// Puts the descriptor, H.264 7.2, at `to`, where there is room for most_descriptor; the end of it: "u(8)", "ue(v)".
char* put_descriptor(char* to, const h264::traced_element& element);
/// Appends it.
void append_descriptor(std::string& text, const h264::traced_element& element);

/// Appends the value: decimal, of st(v) 0x and its bytes.
void append_value(std::string& text, const h264::traced_element& element);

std::string text_of(const h264::label& name);

/// A failure in one line for a person: element, value, bit and reason.
std::string text_of(const h264::failure& failure);

/// A value outside of its range likewise.
std::string text_of(const h264::finding& finding);

/// What stands behind the last element, where it is wrong; "" where it is not.
std::string_view text_of(h264::ending ending);

} // namespace orv_h264
