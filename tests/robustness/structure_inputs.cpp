// Bad inputs for the parses of structures: short bodies, pairs of bytes replaced, and memory that runs out.
#include "input_class.h"

#include "support/damage.h"
#include "support/read_only_input.h"
#include "support/subject.h"

#include <algorithm>
#include <cstddef>

namespace robustness {

namespace {

using support::all_subjects;
using support::bytes;
using support::object_state;
using support::object_states;
using support::read_only_input;
using support::subject;

/// Checks the bytes as the subject.
void check(input_class& inputs, const subject& what, object_state state, const bytes& data)
{
    static read_only_input memory;
    inputs.input(what.name, [&] {
        const unsigned char* const start = memory.put(data);
        return what.check({start, memory.end()}, state);
    });
}

/// One structure is an input for each allocation that its parse asks for.
void check_without_memory(input_class& inputs, const subject& what, object_state state, const bytes& data)
{
    static read_only_input memory;
    inputs.input(what.name, [&] {
        const unsigned char* const start = memory.put(data);
        std::size_t k = 0;
        for (bool failed = true; failed; ++k) {
            const support::parse_without_memory parse =
                support::check_without_memory(what, {start, memory.end()}, state, k);
            if (!parse.fault.empty())
                return "allocation " + std::to_string(k) + ": " + parse.fault;
            failed = parse.failed;
        }
        inputs.also_ran(k - 1);
        return std::string();
    });
}

/// Calls `use` with those that bodies and pairs of bytes are tried as.
template <typename Use>
void each_typical_subject(Use use)
{
    for (const subject& what : all_subjects())
        if (what.typical)
            use(what);
}

} // namespace

/// All bodies of no byte, one and two.
void run_bodies(input_class& inputs)
{
    each_typical_subject([&](const subject& what) {
        for (const object_state state : object_states) {
            check(inputs, what, state, {});
            for (unsigned int first = 0; first < 256; ++first) {
                check(inputs, what, state, {static_cast<unsigned char>(first)});
                for (unsigned int second = 0; second < 256; ++second)
                    check(inputs, what, state, {static_cast<unsigned char>(first), static_cast<unsigned char>(second)});
            }
        }
    });
}

/// Every two neighbouring bytes of the structures that are not long, at all their values.
void run_windows(input_class& inputs)
{
    constexpr std::size_t long_structure = 80;
    each_typical_subject([&](const subject& what) {
        bytes data = what.valid.made();
        for (std::size_t i = 0; i + 1 < data.size() && data.size() < long_structure; ++i) {
            for (unsigned int value = 0; value < 65536; ++value) {
                data[i] = static_cast<unsigned char>(value / 256);
                data[i + 1] = static_cast<unsigned char>(value % 256);
                check(inputs, what, object_states[value % 3], data);
            }
            std::copy_n(what.valid.made().begin() + static_cast<std::ptrdiff_t>(i), 2,
                        data.begin() + static_cast<std::ptrdiff_t>(i));
        }
    });
}

/// Each structure with one element at a limit.
void run_allocations(input_class& inputs)
{
    std::size_t turn = 0;
    for (const subject& what : all_subjects())
        each_limit(what.valid, [&](const bytes& data, const support::element&, std::int64_t) {
            check_without_memory(inputs, what, support::memory_states[turn++ % (what.grows ? 2 : 4)], data);
        });
}

} // namespace robustness
