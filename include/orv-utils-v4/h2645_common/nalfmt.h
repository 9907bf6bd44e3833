/// @file
/// How NAL units are framed in a byte buffer.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace brenik {

/// NAL framing: a big-endian length before each unit (ISO/IEC 14496-15) or start codes (H.264 Annex B).
enum ORV_UTILS_V4_EXPORT h2645_common_nalfmt : std::uint32_t {
    nalfmt_none = 0,    ///< no framing known: nothing is found, nothing is written
    nalfmt_length1 = 1, ///< 1-byte length prefix
    nalfmt_length2 = 2, ///< 2-byte length prefix
    nalfmt_length3 = 3, ///< 3-byte length prefix
    nalfmt_length4 = 4, ///< 4-byte length prefix
    nalfmt_annexb = 5,  ///< byte stream with the start code 00 00 01
};

} // namespace brenik
