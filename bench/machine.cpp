// From the system, the benchmark library, the compiler and the peers.
#include "machine.h"

#include "task.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <fstream>

namespace bench {

namespace {

/// The first value of that name in /proc/cpuinfo.
std::string processor_value(const std::string& name)
{
    std::ifstream lines("/proc/cpuinfo");
    for (std::string line; std::getline(lines, line);)
        if (line.find_first_of("\t:") == name.size() && line.starts_with(name))
            return line.substr(line.find(": ") + 2);
    return "unknown";
}

std::string processor()
{
    const benchmark::CPUInfo& info = benchmark::CPUInfo::Get();
    return std::to_string(info.num_cpus) + " cores, " + processor_value("model name") + " (" +
           processor_value("vendor_id") + " family " + processor_value("cpu family") + " model " +
           processor_value("model") + "), " + std::to_string(std::lround(info.cycles_per_second / 1e6)) + " MHz";
}

std::string caches()
{
    std::string all;
    for (const benchmark::CPUInfo::CacheInfo& cache : benchmark::CPUInfo::Get().caches)
        if (cache.type != "Instruction")
            all += (all.empty() ? "L" : ", L") + std::to_string(cache.level) + " of " +
                   std::to_string(cache.size / 1024) + " KiB for " + std::to_string(cache.num_sharing) + " cores";
    return all;
}

/// Of those that the memory pass has code for.
std::string vector_extensions()
{
#if defined(__x86_64__)
    std::string have = "SSE2";
    if (__builtin_cpu_supports("avx2"))
        have += ", AVX2";
    if (__builtin_cpu_supports("avx512f"))
        have += ", AVX-512F";
    if (__builtin_cpu_supports("avx512bw"))
        have += ", AVX-512BW";
    return have;
#elif defined(__aarch64__)
    return "NEON";
#else
    return "none known";
#endif
}

std::string compiler()
{
#if defined(__clang__)
    return std::string(__VERSION__) + " with " BENCH_FLAGS;
#else
    return "g++ " __VERSION__ " with " BENCH_FLAGS;
#endif
}

} // namespace

std::string machine()
{
    std::string line =
        processor() + "; caches: " + caches() + "; vector extensions: " + vector_extensions() + "; " + compiler();
    for (const auto& [name, version] : peers::versions())
        line += "; " + name + ' ' + version;
    return line;
}

} // namespace bench
