// The unit that rules over a picture blame.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <algorithm>
#include <cstdint>

namespace orv_h264 {

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
