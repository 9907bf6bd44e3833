// orv-h264 info: what a stream is, at a glance.
#pragma once

#include "exit_status.h"
#include "jobs/file_jobs.h"
#include "output_format.h"
#include "stream_input.h"

namespace orv_h264 {

struct info_options {
    stream_options stream;
    output_format format = output_format::text;
    bool among_many = false; ///< a table has the file in its first column and no line of names
};

/// Prints the summary of the whole stream to the standard output. Throws as inspect() does.
exit_status info(const info_options& options);

/// The same of each of the files; `options` are those of all.
exit_status info_of_files(const file_set& files, const info_options& options);

} // namespace orv_h264
