// orv-h264 diff: what two streams have otherwise: access units, units, elements, slice data.
#pragma once

#include "diff/path_patterns.h"
#include "exit_status.h"
#include "stream_input.h"

#include <string>

namespace orv_h264 {

struct diff_options {
    stream_options stream; ///< of both; its path is not looked at
    std::string a;
    std::string b;
    path_patterns ignored; ///< elements, structures and units that may differ
    bool all = false;      ///< the text tells everything, and not a screen of it
    bool json = false;
};

/// Prints how B differs from A. Throws as stream_input does, and refusal for what is no file or cannot be compared.
/// @return 1 where they differ, which no damage is
exit_status diff(const diff_options& options);

} // namespace orv_h264
