#include "counted_run.h"

#include <cstdio>

// The instructions inside of this function are counted, one call after another.
extern "C" [[gnu::noinline]] std::uint64_t measured_run(const bench::contender& by, bench::data_set& set);

std::uint64_t measured_run(const bench::contender& by, bench::data_set& set)
{
    const std::uint64_t result = by.run(set);
    asm volatile("" : : "r"(result) : "memory");
    return result;
}

namespace bench {

namespace {

template <typename Use>
void each_counted(const std::vector<task>& tasks, std::size_t megabytes, Use use)
{
    for (const task& what : tasks)
        for (const std::string& data : what.data) {
            if (!what.is_counted || (data != "70" && data != "5"))
                continue;
            for (const contender& by : what.contenders)
                if (by.who == side::ours || by.who == side::scalar)
                    use(what, by, data_set_named(data, megabytes));
        }
}

} // namespace

void print_counted(const std::vector<task>& tasks, std::size_t megabytes)
{
    each_counted(tasks, megabytes, [](const task& what, const contender& by, const data_set& set) {
        std::printf("%s\t%s\t%s\t%s\t%zu\n", what.name.c_str(), set.name.c_str(), name_of(by.who), by.name.c_str(),
                    set.units.size());
    });
}

void run_counted(const std::vector<task>& tasks, std::size_t megabytes)
{
    each_counted(tasks, megabytes, [](const task&, const contender& by, data_set& set) {
        by.run(set); // what is done once for all of them: rooms, symbols
        measured_run(by, set);
    });
}

} // namespace bench
