// While one lives, the signals that would end the tool wait: for the moments in which a file has a name, and nobody
// knows yet that it is to be removed.
#pragma once

#include <array>
#include <csignal>

namespace orv_h264 {

constexpr std::array<int, 7> ending_signals = {SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM, SIGXCPU, SIGXFSZ};

class signals_held {
public:
    signals_held() noexcept
    {
        sigset_t held;
        ::sigemptyset(&held);
        for (const int number : ending_signals)
            ::sigaddset(&held, number);
        ::sigprocmask(SIG_BLOCK, &held, &before);
    }
    signals_held(const signals_held&) = delete;
    signals_held& operator=(const signals_held&) = delete;
    ~signals_held() { ::sigprocmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before = {};
};

} // namespace orv_h264
