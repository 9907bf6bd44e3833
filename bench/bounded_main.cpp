// orv_bounded --names | --run KIB... | --resources KIB | --times KIB...   does every work over every adversary.
// --names prints them; --run does each once for every size, through measured_work(), for a program that counts
// instructions; --resources prints and checks what the heap gives and what is thrown; --times prints the time per byte
// beside a memory copy. script/bounded calls it. Exit status 1: a bound does not hold.
#include "adversary.h"
#include "bounded_work.h"
#include "resources.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

// The instructions inside of this function are counted, one call after another.
extern "C" [[gnu::noinline]] std::uint64_t measured_work(const bounded::work& what, bounded::block& data);

std::uint64_t measured_work(const bounded::work& what, bounded::block& data)
{
    const std::uint64_t done = what.run(data);
    asm volatile("" : : "r"(done) : "memory");
    return done;
}

namespace {

using bounded::adversary;
using bounded::block;
using bounded::kind;
using bounded::work;

constexpr std::size_t kib = 1024;

/// Calls `use(work, adversary)` with all pairs, adversaries outside.
template <typename Use>
void each_pair(Use use)
{
    for (const adversary& data : bounded::all_adversaries())
        for (const work& what : bounded::all_works())
            use(what, data);
}

/// In the order of the calls of measured_work().
void print_names(const std::vector<std::size_t>& sizes)
{
    each_pair([&](const work& what, const adversary& data) {
        for (const std::size_t size : sizes)
            std::printf("%s\t%s\t%zu\n", what.name.c_str(), data.name.c_str(), size);
    });
}

void run_all(const std::vector<std::size_t>& sizes)
{
    for (const adversary& data : bounded::all_adversaries()) {
        std::vector<block> blocks;
        blocks.reserve(sizes.size());
        for (const std::size_t size : sizes)
            blocks.emplace_back(data.make(size * kib));
        for (const work& what : bounded::all_works())
            for (block& b : blocks)
                measured_work(what, b);
    }
}

/// The most that the heap may give at one time.
std::size_t heap_bound(const work& what, std::size_t size)
{
    constexpr std::size_t for_a_parse = 64 * kib;
    constexpr std::size_t for_a_byte_of_a_list = 96;
    if (what.what != kind::parsing)
        return 0;
    return what.name == "slice header" ? std::max(for_a_parse, for_a_byte_of_a_list * size) : for_a_parse;
}

/// What the work took over the data, its second time: the first makes the parameter sets.
bounded::resources taken_by(const work& what, block& data)
{
    measured_work(what, data);
    static_cast<void>(bounded::resources_taken());
    measured_work(what, data);
    return bounded::resources_taken();
}

/// Prints the most that any data made the work take; whether the bounds hold.
bool check_resources(const work& what, std::size_t size)
{
    bounded::resources most;
    std::string of;
    for (const adversary& pattern : bounded::all_adversaries()) {
        block data(pattern.make(size));
        const bounded::resources taken = taken_by(what, data);
        if (taken.most_bytes > most.most_bytes)
            of = pattern.name;
        most.allocations = std::max(most.allocations, taken.allocations);
        most.most_bytes = std::max(most.most_bytes, taken.most_bytes);
        most.exceptions = std::max(most.exceptions, taken.exceptions);
    }
    const bool holds =
        most.most_bytes <= heap_bound(what, size) && most.exceptions <= (what.what == kind::parsing ? 1U : 0U);
    std::printf("| %s | %zu | %zu | %zu | %.2f | %s | %zu |%s\n", what.name.c_str(), size, most.allocations,
                most.most_bytes, static_cast<double>(most.most_bytes) / static_cast<double>(size), of.c_str(),
                most.exceptions, holds ? "" : " ABOVE THE BOUND");
    return holds;
}

/// A counter that counts nothing proves nothing.
bool counting_works()
{
    static_cast<void>(bounded::resources_taken());
    try {
        throw std::vector<int>(100);
    } catch (const std::vector<int>&) {
        const bounded::resources taken = bounded::resources_taken();
        return taken.exceptions == 1 && taken.allocations == 1 && taken.most_bytes == 100 * sizeof(int);
    }
}

bool check_resources(std::size_t size)
{
    bool all_hold = counting_works();
    for (const work& what : bounded::all_works())
        all_hold = check_resources(what, size) && all_hold;
    return all_hold;
}

/// Of this process: what else the machine does shall not count.
double processor_seconds()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <typename Work>
double seconds_of(Work run)
{
    const double start = processor_seconds();
    run();
    return processor_seconds() - start;
}

/// The shortest of five runs, in nanoseconds per byte, with a copy's between them.
bool print_time(const work& what, const adversary& pattern, block& data)
{
    constexpr double most_copies = 25;
    double best = 1e9;
    double copy = 1e9;
    for (int i = 0; i < 5; ++i) {
        best = std::min(best, seconds_of([&] { measured_work(what, data); }));
        copy = std::min(copy, seconds_of([&] {
                            std::memcpy(data.room.data(), data.begin(), data.size());
                            asm volatile("" : : "r"(data.room.data()) : "memory");
                        }));
    }
    const double per_byte = 1e9 / static_cast<double>(data.size());
    const bool holds = best <= most_copies * copy;
    std::printf("| %s | %s | %zu | %.3f | %.3f | %.1f |%s\n", what.name.c_str(), pattern.name.c_str(),
                data.size() / kib, best * per_byte, copy * per_byte, best / copy, holds ? "" : " ABOVE THE BOUND");
    return holds;
}

bool print_times(const std::vector<std::size_t>& sizes)
{
    bool all_hold = true;
    std::printf("| Work | Data | KiB | ns a byte | memcpy | Ratio |\n|---|---|---|---|---|---|\n");
    for (const adversary& pattern : bounded::all_adversaries())
        for (const std::size_t size : sizes) {
            block data(pattern.make(size * kib));
            for (const work& what : bounded::all_works())
                if (what.what == kind::framing)
                    all_hold = print_time(what, pattern, data) && all_hold;
        }
    return all_hold;
}

/// What an exception costs: an SPS of zeros throws at its first code.
void print_exception_cost()
{
    constexpr int times = 20000;
    const auto per_parse = [](unsigned char fill) {
        block data(std::vector<unsigned char>(64, fill));
        const work& sps = *std::find_if(bounded::all_works().begin(), bounded::all_works().end(),
                                        [](const work& what) { return what.name == "sps"; });
        double best = 1e9;
        for (int i = 0; i < 5; ++i)
            best = std::min(best, seconds_of([&] {
                                for (int n = 0; n < times; ++n)
                                    measured_work(sps, data);
                            }));
        return 1e9 * best / times;
    };
    std::printf("an SPS of zeros, which throws: %.0f ns; of ones, which does not: %.0f ns\n", per_parse(0),
                per_parse(0xFF));
}

} // namespace

int main(int argc, char** argv)
{
    const std::string option = argc > 1 ? argv[1] : "";
    std::vector<std::size_t> sizes;
    for (int i = 2; i < argc; ++i)
        sizes.push_back(std::strtoul(argv[i], nullptr, 10));
    if (sizes.empty()) {
        static_cast<void>(std::fprintf(stderr, "usage: %s --names|--run|--resources|--times KIB...\n", argv[0]));
        return 2;
    }
    bool holds = true;
    if (option == "--names")
        print_names(sizes);
    else if (option == "--run")
        run_all(sizes);
    else if (option == "--times") {
        holds = print_times(sizes);
        print_exception_cost();
    } else {
        std::printf(
            "| Work | Bytes | Allocations | Heap | per byte | Data | Exceptions |\n|---|---|---|---|---|---|---|\n");
        for (const std::size_t size : sizes) // a list just grown is the worst
            holds = check_resources(size * kib) && check_resources(size * kib + 32) && holds;
    }
    return holds ? EXIT_SUCCESS : EXIT_FAILURE;
}
