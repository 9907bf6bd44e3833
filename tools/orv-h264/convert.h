// orv-h264 convert: a stream in another framing.
#pragma once

#include "exit_status.h"
#include "stream_input.h"

#include <string>

namespace orv_h264 {

struct convert_options {
    stream_options stream;
    std::string out; ///< - is the standard output
    h264::framing to = h264::framing::annex_b;
};

/// Writes the units of the stream to `out`, which is there whole or not at all. Throws refusal for an input that is not
/// read, that has no unit, or a unit that cannot be carried, and std::system_error when reading or writing fails.
exit_status convert(const convert_options& options);

} // namespace orv_h264
