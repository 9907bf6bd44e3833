// T1: where each unit begins and ends, in Annex B.
#include "literal_loops.h"
#include "memory_pass.h"
#include "task.h"

#include <orv-utils-v4/h264.h>

namespace bench {

namespace {

/// A unit ends where the next begins. A scan is a call that goes from one to the next.
template <typename Scan>
std::uint64_t count_units(data_set& set, Scan scan)
{
    unsigned char* const end = set.annex_b.data() + set.annex_b_size;
    std::uint64_t units = 0;
    brenik::h264_nal_reader reader(brenik::nalfmt_annexb);
    for (scan(reader, set.annex_b.data(), end); reader.found; scan(reader, reader.next, end))
        ++units;
    return units;
}

std::uint64_t by_reader(data_set& set)
{
    return count_units(set, [](brenik::h264_nal_reader& reader, unsigned char* start, unsigned char* end) {
        reader.scan(start, end);
    });
}

std::uint64_t by_literal_loop(data_set& set)
{
    return count_units(set, literal::scan);
}

std::uint64_t by_reading(data_set& set)
{
    read_pass(set.annex_b.data(), set.annex_b_size);
    return 0;
}

} // namespace

std::vector<task> split_tasks()
{
    return {{"T1 split", [](const data_set& set) { return set.annex_b_size; }, data_set_names(),
             std::vector<contender>{{side::ours, "reader", by_reader},
                                    {side::scalar, "literal", by_literal_loop},
                                    {side::memory, "read", by_reading}} +
                 peers::split()}};
}

} // namespace bench
