// What the values of syntax elements mean, in words for a person.
#pragma once

#include <orv-utils-v4/h264_syntax/element.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

/// What the value of the element means; "" where a number says it all.
std::string words_of(const orv_utils_v4::h264::traced_element& element);

/// Likewise, of an element by its name in the standard.
std::string words_of(std::string_view element, std::int64_t value);

/// The elements that have a table of words, in alphabetical order.
std::vector<std::string_view> elements_with_words();

} // namespace orv_h264
