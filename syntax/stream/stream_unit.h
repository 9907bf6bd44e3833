// The unit that a stream reads into, for classes of this library that keep what it has read.
#pragma once

#include "hidden.h"

#include <orv-utils-v4/h264_syntax/stream.h>

#include <memory>

namespace orv_utils_v4::h264 {

class ORV_UTILS_V4_HIDDEN stream_unit {
public:
    /// Within unit_sink::take() of `from`: the unit of the reading, which stays where it is, becomes that of `room`.
    /// The stream reads the next one into what `room` held.
    static void take(stream& from, std::unique_ptr<nal_unit>& room) noexcept;
};

} // namespace orv_utils_v4::h264
