#include "support/run_tool.h"

#include "support/stream_files.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

namespace {

// In the child, between fork and exec: only calls that are safe there.
[[noreturn]] void become_tool(char* const* argv, int in, int out, int err, const tool_input& input)
{
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    for (const int descriptor : input.closed)
        close(descriptor);
    if (input.max_memory) {
        const rlimit limit = {*input.max_memory, *input.max_memory};
        setrlimit(RLIMIT_AS, &limit);
    }
    if (input.max_seconds) {
        const rlimit limit = {*input.max_seconds, *input.max_seconds + 1};
        setrlimit(RLIMIT_CPU, &limit);
    }
    if (input.max_file) {
        const rlimit limit = {*input.max_file, *input.max_file};
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, SIG_IGN);
    }
    signal(SIGPIPE, SIG_DFL);
    execv(argv[0], argv);
    _exit(127);
}

void write_all(int fd, const bytes& data)
{
    for (std::size_t at = 0; at < data.size();) {
        const ssize_t count = write(fd, data.data() + at, data.size() - at);
        if (count < 0)
            return; // the tool has stopped reading
        at += static_cast<std::size_t>(count);
    }
}

int open_file(const std::string& path, int flags)
{
    const int fd = open(path.c_str(), flags | O_CLOEXEC, 0600);
    if (fd < 0)
        throw std::runtime_error("cannot open " + path);
    return fd;
}

std::string text_of(const std::string& path)
{
    const bytes content = read_file(path);
    return {content.begin(), content.end()};
}

} // namespace

tool_result run_tool(const std::vector<std::string>& arguments, const tool_input& input)
{
    std::vector<std::string> words = {tested_program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv(words.size() + 1, nullptr);
    std::transform(words.begin(), words.end(), argv.begin(), [](std::string& word) { return word.data(); });

    signal(SIGPIPE, SIG_IGN);
    const temporary_file out_file({});
    const temporary_file err_file({});
    int ends[2] = {open_file("/dev/null", O_RDONLY), -1};
    if (input.piped) {
        close(ends[0]);
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
    }
    const int out = open_file(input.out_path.empty() ? out_file.path() : input.out_path, O_WRONLY);
    const int err = open_file(input.err_path.empty() ? err_file.path() : input.err_path, O_WRONLY);

    const pid_t child = fork();
    if (child == 0)
        become_tool(argv.data(), ends[0], out, err, input);
    close(ends[0]);
    close(out);
    close(err);
    if (input.piped) {
        for (std::size_t i = 0; i < input.repeat; ++i)
            write_all(ends[1], *input.piped);
        close(ends[1]);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of(out_file.path()), text_of(err_file.path())};
}

temporary_file::temporary_file(const bytes& content)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "orv-test-XXXXXX").string();
    const int fd = mkstemp(pattern.data());
    if (fd < 0)
        throw std::runtime_error("no temporary file");
    close(fd);
    name = pattern;
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

temporary_file::~temporary_file()
{
    std::error_code ignored;
    std::filesystem::remove(name, ignored);
}

} // namespace support
