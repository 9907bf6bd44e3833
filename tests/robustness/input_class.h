// A class of bad inputs: every input has a number, is counted when it is run, and is named when something about it does
// not hold, however the process ends.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace robustness {

/// Which inputs of a class are run: every `stride`-th, or the one with a number, or none, to number them all.
struct selection {
    std::uint64_t stride = 1;
    std::optional<std::uint64_t> only = {};
    bool none = false;
};

/// The numbers of a class's inputs, in the order that they are made in.
class input_class {
public:
    input_class(const char* class_name, const selection& wanted) : name(class_name), chosen(wanted) {}

    /// The next input, of something called `subject`: `run` returns what does not hold, "" when all does.
    template <typename Run>
    void input(std::string_view subject, Run run)
    {
        if (!next(subject))
            return;
        const std::string fault = run();
        if (!fault.empty())
            fail(fault);
    }

    /// Whether the next input is to be run; its run then follows.
    bool next(std::string_view subject);

    /// Counts further runs within the latest input.
    void also_ran(std::uint64_t more) { run_count += more; }

    /// Ends the process and names the input that was run last.
    [[noreturn]] void fail(const std::string& fault) const;

    /// Whether all inputs are run.
    bool whole() const { return chosen.stride == 1 && !chosen.only && !chosen.none; }

    std::uint64_t numbered() const { return count; }
    std::uint64_t runs() const { return run_count; }

private:
    const char* name;
    selection chosen;
    std::uint64_t count = 0;
    std::uint64_t run_count = 0;
};

/// Names the input when a signal ends the process: a failed claim of a fuzz entry point, an access to a guard page.
void name_input_on_signals();

/// The classes.
void run_bodies(input_class& inputs);
void run_windows(input_class& inputs);
void run_allocations(input_class& inputs);
void run_stream_bodies(input_class& inputs);
void run_seed_truncations(input_class& inputs);
void run_seed_flips(input_class& inputs);
void run_writer_sizes(input_class& inputs);
void run_legacy_writer_sizes(input_class& inputs);
void run_block_sizes(input_class& inputs);
void run_legacy_scan_sizes(input_class& inputs);

} // namespace robustness
