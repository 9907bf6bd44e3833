// orv-h264 frames: where each picture of a stream lies, what it holds, when it is decoded and shown.
#pragma once

#include "exit_status.h"
#include "jobs/file_jobs.h"
#include "output_format.h"
#include "stream_input.h"

#include <cstdint>
#include <limits>

namespace orv_h264 {

struct frames_options {
    stream_options stream;
    bool split_fields = false; ///< each field is a row of its own
    bool output_order = false; ///< rows come in output order, not in decoding order
    output_format format = output_format::text;
    bool among_many = false; ///< every line of JSON and of a table names its file, and a block of text begins with it
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
};

/// Prints a line for each row and, but for a table, a closing one to the standard output, and what is wrong to the
/// standard error stream. Throws as inspect() does.
exit_status frames(const frames_options& options);

/// The same of each of the files; `options` are those of all.
exit_status frames_of_files(const file_set& files, const frames_options& options);

} // namespace orv_h264
