/// @file
/// How SEI messages code their payload type and size.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace brenik {

/// One payloadType or payloadSize of H.264 clause 7.3.2.3.1: every byte FF adds 255 and goes on, the first other byte
/// adds its value and ends.
/// @param p moved past the bytes read; at `fence` after a failure
/// @param fence one past the last byte that may be read
/// @return the sum, at most 0xFFFFFFFE; 0xFFFFFFFF when `fence` is reached before a byte other than FF
ORV_UTILS_V4_EXPORT std::uint32_t h2645_common_read_xostylesei_vlu32(unsigned char*& p, unsigned char* fence);

} // namespace brenik
