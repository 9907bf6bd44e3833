// What the tool tells the shell.
#pragma once

namespace orv_h264 {

enum exit_status : int {
    exit_clean = 0,         ///< everything asked for was read, and nothing is wrong with it
    exit_broken_stream = 1, ///< the stream is broken somewhere; what was readable has been shown
    exit_usage_or_io = 2,   ///< the command line, or reading or writing a file
    exit_not_supported = 3, ///< the input is recognised, but not something the tool reads
};

} // namespace orv_h264
