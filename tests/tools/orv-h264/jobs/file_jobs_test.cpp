// Files in processes of their own: how many at once, and what becomes of one whose reading fails.
#include "jobs/file_jobs.h"

#include "standard_output.h"
#include "stream_input.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using orv_h264::exit_status;
using orv_h264::file_set;
using orv_h264::file_work;

struct printed {
    int status = -1;
    std::string out;
    std::string err;
};

printed run(const file_set& files, const std::function<exit_status(const std::string&)>& read)
{
    file_work work;
    work.read = read;
    work.print_failure = [](const std::string& file, const orv_h264::json& failure) {
        orv_h264::write_output(file + " " + failure.dump() + "\n");
    };
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    printed result;
    result.status = orv_h264::read_files(files, work);
    orv_h264::flush_output();
    result.out = testing::internal::GetCapturedStdout();
    result.err = testing::internal::GetCapturedStderr();
    return result;
}

exit_status fail_as_named(const std::string& path)
{
    orv_h264::write_output("begun " + path + "\n");
    if (path == "memory")
        throw std::bad_alloc();
    if (path == "refused")
        throw orv_h264::refusal(orv_h264::exit_not_supported, "refused: of no use");
    if (path == "other")
        throw std::runtime_error("something else");
    orv_h264::flush_output();
    if (path == "killed")
        std::raise(SIGKILL);
    if (path == "exits")
        _exit(77);
    return orv_h264::exit_clean;
}

TEST(FileJobs, WhateverBecomesOfAFileIsTold)
{
    for (const unsigned jobs : {1U, 4U}) {
        file_set files;
        files.paths = {"memory", "refused", "other", "killed", "exits", "sound"};
        files.jobs = jobs;
        const printed result = run(files, fail_as_named);
        EXPECT_EQ("begun memory\nmemory {\"error\":\"out of memory\",\"status\":2}\n"
                  "begun refused\nrefused {\"error\":\"of no use\",\"status\":3}\n"
                  "begun other\nother {\"error\":\"something else\",\"status\":2}\n"
                  "begun killed\nkilled {\"error\":\"ended by signal 9 (Killed)\",\"status\":2}\n"
                  "begun exits\nexits {\"error\":\"ended with status 77\",\"status\":2}\n"
                  "begun sound\n",
                  result.out);
        EXPECT_EQ("orv-h264: memory: out of memory\n"
                  "orv-h264: refused: of no use\n"
                  "orv-h264: other: something else\n"
                  "orv-h264: killed: ended by signal 9 (Killed)\n"
                  "orv-h264: exits: ended with status 77\n",
                  result.err);
        EXPECT_EQ(3, result.status);
    }
}

/// How many processes there are, in memory that they share.
struct counts {
    std::atomic<int> now{0};
    std::atomic<int> most{0};
};

TEST(FileJobs, NoMoreAreReadAtOnceThanWasSaid)
{
    void* const memory = mmap(nullptr, sizeof(counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(MAP_FAILED, memory);
    for (const unsigned jobs : {1U, 3U, 8U}) {
        auto* const shared = new (memory) counts;
        file_set files;
        for (int i = 0; i < 40; ++i)
            files.paths.push_back(std::to_string(i));
        files.jobs = jobs;
        std::string expected;
        for (const std::string& path : files.paths)
            expected += path + "\n";
        const auto wanted = static_cast<int>(jobs);
        const printed result = run(files, [shared, wanted](const std::string& path) {
            constexpr int patience = 60'000; // milliseconds
            const int now = ++shared->now;
            for (int most = shared->most; most < now && !shared->most.compare_exchange_weak(most, now);)
                ;
            for (int i = 0; shared->most < wanted && i < patience; ++i)
                usleep(1'000); // until so many are there
            orv_h264::write_output(path + "\n");
            --shared->now;
            return orv_h264::exit_clean;
        });
        EXPECT_EQ(expected, result.out);
        EXPECT_EQ(wanted, shared->most);
    }
    munmap(memory, sizeof(counts));
}

} // namespace
