// Exact times as tests show them.
#pragma once

#include <orv-utils-v4/h264_syntax/picture_time.h>

#include <ostream>

namespace orv_utils_v4::h264 {

inline std::ostream& operator<<(std::ostream& out, const exact_time& t)
{
    return out << t.numerator << '/' << t.denominator;
}

} // namespace orv_utils_v4::h264
