// From the system, the compiler and the peers.
#include "machine.h"

#include "task.h"

#include <fstream>

namespace bench {

namespace {

/// The first value of that name in /proc/cpuinfo.
std::string processor_value(const std::string& name)
{
    std::ifstream lines("/proc/cpuinfo");
    for (std::string line; std::getline(lines, line);)
        if (const std::size_t colon = line.find(": "); colon != std::string::npos && line.starts_with(name))
            return line.substr(colon + 2);
    return "unknown";
}

/// Of those that the libraries and the memory pass have code for.
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
    if (__builtin_cpu_supports("avx512vbmi2"))
        have += ", AVX-512VBMI2";
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
    return std::string(__VERSION__) + ", " BENCH_FLAGS;
#else
    return "g++ " __VERSION__ ", " BENCH_FLAGS;
#endif
}

} // namespace

std::vector<std::pair<std::string, std::string>> machine_facts()
{
    std::vector<std::pair<std::string, std::string>> facts = {
        {"processor", processor_value("model name") + ", family " + processor_value("cpu family") + ", model " +
                          processor_value("model\t")},
        {"vector_extensions", vector_extensions()},
        {"compiler", compiler()}};
    for (auto& [name, version] : peers::versions())
        facts.emplace_back("peer_" + name, version);
    return facts;
}

} // namespace bench
