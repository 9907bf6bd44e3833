// The lengths that stand before units in a framing of ISO/IEC 14496-15.
#pragma once

#include <orv-utils-v4/h2645_common/nalfmt.h>

#include <cstddef>

namespace brenik {

/// How many bytes of length stand before a unit: 0 for a framing without one.
constexpr std::size_t length_prefix_size(h2645_common_nalfmt nalfmt) noexcept
{
    switch (nalfmt) {
    case nalfmt_length1:
        return 1;
    case nalfmt_length2:
        return 2;
    case nalfmt_length3:
        return 3;
    case nalfmt_length4:
        return 4;
    default:
        return 0;
    }
}

} // namespace brenik
