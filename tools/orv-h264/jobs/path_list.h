// The paths of a list, one after another as they come: a list may be a pipe, and longer than memory.
#pragma once

#include "input_file.h"

#include <cstddef>
#include <optional>
#include <string>

namespace orv_h264 {

class path_list {
public:
    /// The longest path of a list, bytes; no file has one.
    static constexpr std::size_t longest = 65536;

    /// Opens the list at `path`, - for the standard input, whose paths end with `separator`. Throws std::system_error.
    path_list(const std::string& path, char separator) : file(path), ends_path(separator) {}

    /// The next path that has come whole. Empty ones are left out.
    std::optional<std::string> next();

    /// Reads on, which may wait. Throws std::system_error, and refusal where a path is too long.
    void read_more();

    /// Nothing more will come, besides what next() still gives.
    bool at_end() const noexcept { return ended; }

    /// To be polled before reading.
    int descriptor() const noexcept { return file.file_descriptor(); }

private:
    input_file file;
    char ends_path;
    std::string come;
    std::size_t taken = 0; // of `come`
    bool ended = false;
};

} // namespace orv_h264
