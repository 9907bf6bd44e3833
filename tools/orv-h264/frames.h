// orv-h264 frames: where each frame of a stream lies, what it holds and how long it is shown.
#pragma once

#include "exit_status.h"
#include "output_format.h"
#include "stream_input.h"

#include <cstdint>
#include <limits>

namespace orv_h264 {

struct frames_options {
    stream_options stream;
    bool split_fields = false; ///< each field of a pair is a frame of its own
    output_format format = output_format::text;
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
};

/// Prints a line for each frame and a closing one to the standard output, and what is wrong to the standard error
/// stream. Throws as inspect() does.
exit_status frames(const frames_options& options);

} // namespace orv_h264
