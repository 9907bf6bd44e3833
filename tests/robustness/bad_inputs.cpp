// bad_inputs [--full | --sample | --list] [--class NAME] [--input N]   runs bad inputs through both interfaces, always
// the same in the same order, and prints how many of each class it ran. --full runs all of them; --sample (default)
// every n-th; --list none, and prints how many there are. --class runs one class, --input one input of it. The exit
// status is 0 when everything held behind every input; else the input's class and number are printed.
// bad_inputs --replay NAME FILE-OR-FOLDER...   runs a fuzz entry point over inputs
#include "entry_point.h"
#include "input_class.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

namespace {

using robustness::input_class;
using robustness::selection;

struct named_class {
    const char* name;
    void (*run)(input_class&);
    std::uint64_t sample_stride; ///< a prime, so that no loop keeps step with it
};

constexpr named_class classes[] = {
    {"bodies", robustness::run_bodies, 197},
    {"windows", robustness::run_windows, 3001},
    {"allocations", robustness::run_allocations, 157},
    {"stream_bodies", robustness::run_stream_bodies, 211},
    {"seed_truncations", robustness::run_seed_truncations, 23},
    {"seed_flips", robustness::run_seed_flips, 23},
    {"writer_sizes", robustness::run_writer_sizes, 499},
    {"legacy_writer_sizes", robustness::run_legacy_writer_sizes, 499},
    {"block_sizes", robustness::run_block_sizes, 499},
    {"legacy_scan_sizes", robustness::run_legacy_scan_sizes, 499},
};

struct options {
    bool full = false;
    bool list = false;
    std::string only_class = {};
    std::optional<std::uint64_t> only_input = {};
};

/// Nothing when they make no sense.
std::optional<options> options_of(const std::vector<std::string>& arguments)
{
    options o;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool has_value = i + 1 < arguments.size();
        if (arguments[i] == "--full")
            o.full = true;
        else if (arguments[i] == "--list")
            o.list = true;
        else if (arguments[i] == "--class" && has_value)
            o.only_class = arguments[++i];
        else if (arguments[i] == "--input" && has_value)
            o.only_input = std::strtoull(arguments[++i].c_str(), nullptr, 10);
        else if (arguments[i] != "--sample")
            return {};
    }
    return o;
}

/// Runs the classes asked for; how many inputs they ran, or have.
std::uint64_t run(const options& o)
{
    std::uint64_t total = 0;
    for (const named_class& c : classes) {
        if (!o.only_class.empty() && o.only_class != c.name)
            continue;
        input_class inputs(c.name, selection{o.full ? 1 : c.sample_stride, o.only_input, o.list});
        c.run(inputs);
        const std::uint64_t count = o.list ? inputs.numbered() : inputs.runs();
        std::printf("%-20s %12llu\n", c.name, static_cast<unsigned long long>(count));
        static_cast<void>(std::fflush(stdout));
        total += count;
    }
    return total;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && std::string_view(argv[1]) == "--replay")
        return robustness::replay({argv + 2, argv + argc});
    const auto o = options_of({argv + 1, argv + argc});
    if (!o) {
        static_cast<void>(std::fprintf(stderr,
                                       "usage: %s [--full | --sample | --list] [--class NAME] [--input N]\n"
                                       "       %s --replay NAME FILE-OR-FOLDER...\n",
                                       argv[0], argv[0]));
        return 2;
    }
    robustness::name_input_on_signals();
    try {
        const std::uint64_t total = run(*o);
        std::printf("%-20s %12llu\n", "inputs", static_cast<unsigned long long>(total));
        return total == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
    } catch (const std::exception& failure) {
        static_cast<void>(std::fprintf(stderr, "came out: %s\n", failure.what()));
        std::abort(); // which names the input
    }
}
