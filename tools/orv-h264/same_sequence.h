// Whether two sequence parameter sets are of the same sequence.
#pragma once

#include <orv-utils-v4/h264.h>

namespace orv_h264 {

/// True when the sets carry the same fields, but for the id, which only tells where a set is kept. Both were parsed
/// well, each into an object of its own, so that what a set does not carry is equal too.
bool same_sequence(const brenik::h264_nal_sps& a, const brenik::h264_nal_sps& b);

} // namespace orv_h264
