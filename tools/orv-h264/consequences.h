// What follows from the elements of a whole unit.
#pragma once

#include "annotated_trace.h"

#include <vector>

namespace orv_h264 {

/// Of parameter sets and slices that were read without a failure; nothing of other units.
std::vector<fact> consequences_of(const h264::unit_reading& reading);

} // namespace orv_h264
