#include "signals_held.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

volatile std::sig_atomic_t come = 0;

void count(int)
{
    come = come + 1;
}

TEST(SignalsHeld, EachComesWhenTheyAreLetGo)
{
    for (const int number : orv_h264::ending_signals) {
        come = 0;
        void (*const before)(int) = std::signal(number, count);
        {
            const orv_h264::signals_held held;
            std::raise(number);
            EXPECT_EQ(0, come) << number;
        }
        EXPECT_EQ(1, come) << number;
        std::signal(number, before);
    }
}

} // namespace
