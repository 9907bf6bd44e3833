// Which input is run at the moment, told when the process ends.
#include "input_class.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace robustness {

namespace {

/// The input that is run, in memory that a signal handler may read.
struct running {
    const char* class_name = "none";
    char subject[64] = {};
    std::uint64_t number = 0;
};

running now;

void tell()
{
    char line[256];
    const int length = std::snprintf(line, sizeof line, "bad_inputs: --class %s --input %llu (%s)\n", now.class_name,
                                     static_cast<unsigned long long>(now.number), now.subject);
    if (length > 0 && write(STDERR_FILENO, line, static_cast<std::size_t>(length)) < 0)
        std::_Exit(EXIT_FAILURE);
}

std::map<int, struct sigaction>& earlier_actions()
{
    static std::map<int, struct sigaction> actions;
    return actions;
}

/// Tells, and leaves the signal to whom it belonged before: it comes again.
void on_signal(int number)
{
    tell();
    sigaction(number, &earlier_actions()[number], nullptr);
    if (number == SIGABRT)
        raise(number);
}

} // namespace

bool input_class::next(std::string_view subject)
{
    const std::uint64_t number = count++;
    if (chosen.none || (chosen.only ? number != *chosen.only : number % chosen.stride != 0))
        return false;
    now.class_name = name;
    now.number = number;
    const std::size_t length = std::min(subject.size(), sizeof now.subject - 1);
    std::copy_n(subject.data(), length, now.subject);
    now.subject[length] = 0;
    ++run_count;
    return true;
}

void input_class::fail(const std::string& fault) const
{
    tell();
    static_cast<void>(std::fprintf(stderr, "%s\n", fault.c_str()));
    std::_Exit(EXIT_FAILURE);
}

void name_input_on_signals()
{
    for (const int number : {SIGABRT, SIGSEGV, SIGBUS}) {
        struct sigaction action = {};
        action.sa_handler = on_signal;
        sigaction(number, &action, &earlier_actions()[number]);
    }
}

} // namespace robustness
