// The unit that rules over a picture blame.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <algorithm>
#include <cstdint>

namespace orv_h264 {

/// Of so many pictures it is known at a time: those that wait to be output, and as many that did.
constexpr std::size_t most_open = std::size_t{2} * orv_utils_v4::h264::output_order::most_waiting;

/// That of the slice which the header of the access unit comes from.
inline std::uint64_t first_slice_of(const orv_utils_v4::h264::access_unit& unit)
{
    const auto is_it = [](const orv_utils_v4::h264::access_unit_part& p) {
        return p.role == orv_utils_v4::h264::unit_role::primary && !p.failure;
    };
    const auto found = std::find_if(unit.parts.begin(), unit.parts.end(), is_it);
    return found == unit.parts.end() ? unit.parts.front().place.number : found->place.number;
}

} // namespace orv_h264
