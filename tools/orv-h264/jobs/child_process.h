// A process that runs a function of this program, and what it prints.
#pragma once

#include "jobs/kept_output.h"

#include <functional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace orv_h264 {

/// What a process writes to its standard output, or to its standard error stream.
class child_stream {
public:
    child_stream() = default;
    ~child_stream() { close(); }
    child_stream(const child_stream&) = delete;
    child_stream& operator=(const child_stream&) = delete;

    /// Opens the pipe. @return its other end. Throws std::system_error.
    int open();
    void close();

    /// -1 when it has ended.
    int descriptor() const noexcept { return pipe_end; }
    /// What it kept has no room for more.
    bool full() const noexcept { return kept.full(); }

    /// Keeps what has come. Throws std::system_error.
    void read();

    /// Gives the whole lines that have come, and keeps what may become one; of a line beyond 16 MiB the parts.
    void take_lines(const std::function<void(std::string_view)>& to);

private:
    int pipe_end = -1;
    kept_output kept;
    std::string begun; // the last line that was taken, as far as it goes
};

class child_process {
public:
    /// Starts one that calls the function and ends with the status which that gives. It ends with this process, too.
    /// Throws std::system_error.
    explicit child_process(const std::function<int()>& run);
    /// Kills it if it has not ended.
    ~child_process();
    child_process(const child_process&) = delete;
    child_process& operator=(const child_process&) = delete;

    /// Waits for its end where both streams have ended. @return true once, then. Throws std::system_error.
    bool reap();
    bool has_ended() const noexcept { return id < 0; }
    /// As waitpid() gives it, when it has ended.
    int wait_status() const noexcept { return status; }

    child_stream out;
    child_stream err;

private:
    pid_t id = -1;
    int status = 0;
};

} // namespace orv_h264
