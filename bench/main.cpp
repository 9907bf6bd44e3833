// bench [--megabytes=N] [Google Benchmark's options]   runs every task on every data set by every contender, as
// benchmarks named TASK/DATA/SIDE/CONTENDER. script/bench calls it, and makes the ratios of what it prints. Exit status
// 1: two contenders did not do the same work.
// bench --write=FILE --data=NAME [--megabytes=N]   writes a data set as a file; its length may be any number.
// bench --machine | --vectors   prints what the figures depend on, or the vectors alone.
// bench --list-counted | --run-counted [--megabytes=N]   what bench/instructions.py counts.
#include "counted_run.h"
#include "machine.h"
#include "task.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace {

using bench::contender;
using bench::data_set;
using bench::data_set_named;
using bench::task;

bool all_agree = true;

/// Whether the results of a task on a data set agree, which they must: what does other work is no measure.
bool agrees(const std::string& task_and_data, const contender& by, std::uint64_t result)
{
    static std::map<std::string, std::uint64_t> results;
    if (result == 0)
        return by.who == bench::side::peer || by.who == bench::side::memory;
    return results.try_emplace(task_and_data, result).first->second == result;
}

void measure(benchmark::State& state, const task& what, const contender& by, const std::string& data,
             std::size_t megabytes)
{
    data_set& set = data_set_named(data, megabytes);
    std::uint64_t result = 0;
    for ([[maybe_unused]] auto _ : state)
        result = by.run(set);
    state.SetBytesProcessed(static_cast<std::int64_t>(what.bytes(set)) * state.iterations());
    if (agrees(what.name + '/' + data, by, result))
        return;
    all_agree = false;
    state.SkipWithError(("another result than the others': " + std::to_string(result)).c_str());
}

/// Takes `name` (as --name=) out of the arguments; `otherwise` when it is not there.
std::string taken(int& argc, char** argv, const std::string& name, std::string otherwise)
{
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], name.c_str(), name.size()) == 0)
            otherwise = argv[i] + name.size();
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    return otherwise;
}

std::vector<task> all_tasks()
{
    std::vector<task> all;
    for (const auto& tasks : {bench::split_tasks(), bench::decode_tasks(), bench::encode_tasks(), bench::header_tasks(),
                              bench::frame_tasks(), bench::reframe_tasks(), bench::syntax_tasks()})
        all.insert(all.end(), tasks.begin(), tasks.end());
    return all;
}

int run_benchmarks(const std::vector<task>& tasks, std::size_t megabytes, int argc, char** argv)
{
    for (const task& what : tasks)
        for (const std::string& data : what.data)
            for (const contender& by : what.contenders) {
                const std::string name = what.name + '/' + data + '/' + name_of(by.who) + '/' + by.name;
                benchmark::RegisterBenchmark(name.c_str(), [&what, &by, data, megabytes](benchmark::State& state) {
                    measure(state, what, by, data, megabytes);
                })->Unit(benchmark::kMillisecond);
            }
    benchmark::AddCustomContext("machine", bench::machine());
    benchmark::AddCustomContext("megabytes", std::to_string(megabytes));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return all_agree ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    const std::size_t megabytes = std::strtoul(taken(argc, argv, "--megabytes=", "200").c_str(), nullptr, 10);
    const std::string file = taken(argc, argv, "--write=", "");
    const std::string data = taken(argc, argv, "--data=", "large");
    if (!file.empty())
        return bench::write_stream(data, megabytes, file) ? EXIT_SUCCESS : EXIT_FAILURE;
    const std::vector<task> tasks = all_tasks();
    if (argc == 2 && std::strcmp(argv[1], "--machine") == 0)
        std::puts(bench::machine().c_str());
    else if (argc == 2 && std::strcmp(argv[1], "--vectors") == 0)
        std::puts(bench::vectors_taken().c_str());
    else if (argc == 2 && std::strcmp(argv[1], "--list-counted") == 0)
        bench::print_counted(tasks, megabytes);
    else if (argc == 2 && std::strcmp(argv[1], "--run-counted") == 0)
        bench::run_counted(tasks, megabytes);
    else
        return run_benchmarks(tasks, megabytes, argc, argv);
    return EXIT_SUCCESS;
}
