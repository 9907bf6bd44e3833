// The kinds of units that have a text, and of SEI messages.
#pragma once

#include <cstdint>

namespace orv_utils_v4::h264 {

constexpr unsigned coded_types[] = {1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 19, 20, 21};
constexpr std::uint32_t payload_types[] = {
    0,   1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,  13,  14,  15,  16,  17,  18,
    19,  20,  21,  22,  23,  24,  25,  26,  27,  28,  29,  30,  31,  32,  33,  34,  35,  36,  37,
    38,  39,  40,  41,  42,  43,  44,  45,  46,  47,  48,  49,  50,  51,  52,  53,  54,  56,  57,
    137, 142, 144, 147, 148, 149, 150, 151, 154, 155, 156, 181, 200, 201, 202, 205, 254, 255, 600};

} // namespace orv_utils_v4::h264
