/// @file
/// Exp-Golomb codes of the legacy interface, H.264 clause 9.1.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/misc/be_bitfields.h>

/// One ue(v) element: 0 to 33554430. After 24 zero bits the prefix ends without a one bit and the next 24 bits are the
/// suffix, so that a code of exactly 24 leading zeros is misread. Open-ended: up to four bytes behind the code must be
/// readable.
ORV_UTILS_V4_EXPORT unsigned int h264_ue_golomb_read(be_bitfield* b);

/// One se(v) element, H.264 clause 9.1.1, of the code that h264_ue_golomb_read() reads.
ORV_UTILS_V4_EXPORT int h264_se_golomb_read(be_bitfield* b);
