// Elements as a trace tells them, in a line each.
#pragma once

#include <orv-utils-v4/h264_syntax/element.h>

#include <cstdint>
#include <string_view>

namespace told {

using orv_utils_v4::h264::coding;
using orv_utils_v4::h264::label;
using orv_utils_v4::h264::traced_element;

/// An element with any value inside of its range.
inline traced_element coded(coding how, std::uint64_t bits, label name, std::int64_t value, std::uint64_t bit = 0)
{
    return {name, how, bit, bits, value, value, value};
}

inline traced_element u(unsigned bits, label name, std::int64_t value, std::uint64_t bit = 0)
{
    return coded(coding::u, bits, name, value, bit);
}

inline traced_element se(label name, std::int64_t value)
{
    return coded(coding::se, 5, name, value);
}

inline traced_element b(label name, std::int64_t value, std::uint64_t bit = 0)
{
    return coded(coding::b, 8, name, value, bit);
}

/// A bit that has to be `pattern`.
inline traced_element f(label name, std::int64_t value, std::int64_t pattern, std::uint64_t bit = 0)
{
    return {name, coding::f, bit, 1, value, pattern, pattern, value == pattern};
}

/// Bytes, which have to live as long as the element.
inline traced_element of_bytes(coding how, label name, std::string_view bytes)
{
    traced_element e = {name, how, 0, 8 * bytes.size()};
    e.bytes = reinterpret_cast<const unsigned char*>(bytes.data());
    e.size = bytes.size();
    return e;
}

/// Its null byte not among the bytes.
inline traced_element st(label name, std::string_view text)
{
    return of_bytes(coding::st, name, text);
}

} // namespace told
