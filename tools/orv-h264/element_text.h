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

/// Appends a number in decimal.
template <class Number>
void append_number(std::string& text, Number number)
{
    char digits[20];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

/// Appends two hex digits a byte.
void append_hexadecimal(std::string& text, const unsigned char* bytes, std::size_t size);

/// Appends name and indices of an element: "offset_for_ref_frame[2]".
void append_label(std::string& text, const h264::label& name);

/// Appends the descriptor, H.264 7.2: "u(8)", "ue(v)".
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
