// orv-h264 check --hrd: how full the coded picture buffers of the hypothetical reference decoder are over time.
#pragma once

#include "exit_status.h"
#include "jobs/file_jobs.h"
#include "stream_input.h"

namespace orv_h264 {

struct hrd_options {
    stream_options stream;
    bool in_json = false;
    bool among_many = false; ///< every line of JSON names its file
};

/// Prints a line for each access unit and schedule, in the order of removals of each schedule, and one for each
/// schedule that sums up. Throws as check() does.
exit_status show_hrd(const hrd_options& options);
/// The same of each of the files.
exit_status show_hrd_of_files(const file_set& files, const hrd_options& options);

} // namespace orv_h264
