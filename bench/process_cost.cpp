// process_cost PROGRAM [ARGUMENT...]   runs a program whose output goes nowhere, and prints a line: exit status,
// seconds by the clock, seconds of the processor, and the most memory that it had at one time, in KiB. It stands
// between the script and the program because a new process counts the memory of the one that it was made from: so
// little is kept here that it does not matter. Exit status 1: the program cannot be run.
#include <sys/resource.h>
#include <sys/wait.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace {

constexpr int cannot_run = 127;

double now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

[[noreturn]] void become(char** command)
{
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC); // NOLINT(cppcoreguidelines-pro-type-vararg)
    if (nowhere >= 0 && dup2(nowhere, STDIN_FILENO) >= 0 && dup2(nowhere, STDOUT_FILENO) >= 0 &&
        dup2(nowhere, STDERR_FILENO) >= 0)
        execvp(command[0], command);
    _exit(cannot_run);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return 1;
    const double start = now();
    const pid_t child = fork();
    if (child == 0)
        become(argv + 1);
    int status = 0;
    rusage used = {};
    if (child < 0 || wait4(child, &status, 0, &used) != child)
        return 1;
    const double wall = now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) == cannot_run)
        return 1;
    std::printf("%d %.6f %.6f %ld\n", WEXITSTATUS(status), wall, seconds(used.ru_utime) + seconds(used.ru_stime),
                used.ru_maxrss);
    return 0;
}
