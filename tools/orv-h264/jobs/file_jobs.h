// Many files: each is read in a process of its own, several at once, so that none takes the others with it. What these
// print comes in the order of the files, whole lines at a time.
#pragma once

#include "exit_status.h"
#include "json_output.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

/// The files of a run: those that are named, then those of a list.
struct file_set {
    std::vector<std::string> paths;
    std::string list;            ///< a file with a path a line, - the standard input; "" for none
    bool null_separated = false; ///< in the list a zero byte ends a path, not the end of a line
    unsigned jobs = 1;           ///< how many are read at once; 0 for as many as there are processors

    /// A single file, which is read without all this.
    bool is_one() const { return list.empty() && paths.size() == 1; }
};

/// What a subcommand does with each of them.
struct file_work {
    /// Reads one and prints what there is to say, in the process of the file. Throws as a run over it alone does.
    std::function<exit_status(const std::string& path)> read;
    /// Prints, behind that, why the file could not be read: the members error and status.
    std::function<void(const std::string& file, const json& failure)> print_failure;
    /// Stands between what two files have printed.
    std::string_view between;
    /// It stands before what print_failure() prints of a file that has printed nothing, too.
    bool between_failures = false;
};

/// Reads all the files.
/// @return the greatest of their statuses; where a signal ended the process of a file, that one's is exit_usage_or_io
/// Throws what reading the list or writing the output throws; the processes have ended then.
exit_status read_files(const file_set& files, const file_work& work);

} // namespace orv_h264
