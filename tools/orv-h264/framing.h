// What the numbers of the framings mean.
#pragma once

#include <orv-utils-v4/h264.h>

namespace orv_h264 {

/// The bytes of the length prefix before each unit, ISO/IEC 14496-15; 0 in Annex B, which has start codes instead. The
/// enumerators of the length-prefixed framings are these sizes.
constexpr unsigned int prefix_size_of(brenik::h2645_common_nalfmt framing)
{
    return framing == brenik::nalfmt_annexb ? 0 : static_cast<unsigned int>(framing);
}

static_assert(prefix_size_of(brenik::nalfmt_length1) == 1 && prefix_size_of(brenik::nalfmt_length2) == 2 &&
              prefix_size_of(brenik::nalfmt_length3) == 3 && prefix_size_of(brenik::nalfmt_length4) == 4);

} // namespace orv_h264
