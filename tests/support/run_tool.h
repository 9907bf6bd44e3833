// Runs a program as a user does, and keeps what it printed: orv-h264, or in the tests of the examples one of those.
#pragma once

#include "support/stream_builder.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// What run_tool() starts; each test program has its own.
extern const char* const tested_program;

struct tool_result {
    int status = -1; ///< the exit status; -1 when a signal ended the tool
    std::string out;
    std::string err;
};

struct tool_input {
    std::optional<bytes> piped = std::nullopt; ///< what a pipe on the standard input gives; nothing is /dev/null
    std::size_t repeat = 1;                    ///< how often the pipe gives it
    std::optional<std::size_t> max_memory = std::nullopt;  ///< bytes of address space
    std::optional<std::size_t> max_seconds = std::nullopt; ///< of processor time
    std::optional<std::size_t> max_file = std::nullopt;    ///< bytes that a file may grow to
    std::string out_path = {};                             ///< where the standard output goes instead of `out`
    std::string err_path = {};                             ///< where the standard error stream goes instead of `err`
    std::vector<int> closed = {};                          ///< descriptors that the tool finds closed
};

/// Runs the program with `arguments` and waits for its end.
tool_result run_tool(const std::vector<std::string>& arguments, const tool_input& input = {});

/// A file that goes when the object does.
class temporary_file {
public:
    explicit temporary_file(const bytes& content);
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;
    ~temporary_file();

    const std::string& path() const { return name; }

private:
    std::string name;
};

} // namespace support
