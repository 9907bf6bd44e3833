// From the system, the benchmark library, the compiler and the peers.
#include "machine.h"

#include "task.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <fstream>

#if defined(__x86_64__) && defined(__GLIBC__)
#include "bytescan/wide_runs.h"
#endif

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
                   std::to_string(cache.size / 1024) + " KiB " +
                   (cache.num_sharing == 1 ? "a core" : "for " + std::to_string(cache.num_sharing) + " cores");
    return all;
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

std::string vectors_taken()
{
#if defined(__x86_64__) && defined(__GLIBC__)
    switch (brenik::bytescan::vectors_at_hand()) {
    case brenik::bytescan::vectors::sse2:
        return "SSE2";
    case brenik::bytescan::vectors::avx2:
        return "AVX2";
    case brenik::bytescan::vectors::avx512:
        return "AVX-512";
    }
    return "unknown";
#elif defined(__x86_64__)
    return "SSE2";
#elif defined(__aarch64__)
    return "NEON";
#else
    return "no vectors";
#endif
}

std::string machine()
{
    std::string line =
        processor() + "; caches: " + caches() + "; the libraries take " + vectors_taken() + "; " + compiler();
    for (const auto& [name, version] : peers::versions())
        line.append("; ").append(name).append(" ").append(version);
    return line;
}

} // namespace bench
