// Which of two exact times comes first, without a product that may not fit.
#pragma once

#include <orv-utils-v4/h264_syntax/picture_time.h>

#include <cstdint>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// a < b, of known times with denominators above 0. The quotients of Euclid's algorithm decide, a few dozen steps.
constexpr bool is_before(h264::exact_time a, h264::exact_time b)
{
    const auto floor_of = [](const h264::exact_time& t) {
        return t.numerator / t.denominator - (t.numerator % t.denominator < 0 ? 1 : 0);
    };
    for (bool swapped = false;; swapped = !swapped) {
        const std::int64_t whole_a = floor_of(a);
        const std::int64_t whole_b = floor_of(b);
        if (whole_a != whole_b)
            return (whole_a < whole_b) != swapped;
        const std::int64_t rest_a = a.numerator - whole_a * a.denominator;
        const std::int64_t rest_b = b.numerator - whole_b * b.denominator;
        if (rest_a == 0 || rest_b == 0)
            return rest_a != rest_b && (rest_a == 0) != swapped;
        a = {a.denominator, rest_a}; // of fractions below 1 the reciprocals have the other order
        b = {b.denominator, rest_b};
    }
}

} // namespace orv_h264
