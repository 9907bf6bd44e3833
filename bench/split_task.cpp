// T1: where each unit begins and ends, in Annex B.
#include "literal_loops.h"
#include "memory_pass.h"
#include "task.h"

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_syntax.h>

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

std::uint64_t by_search(data_set& set)
{
    constexpr std::size_t at_once = 256;
    orv_utils_v4::h264::unit_range found[at_once];
    orv_utils_v4::h264::unit_search search(set.annex_b.data(), set.annex_b_size);
    std::uint64_t units = 0;
    for (std::size_t count = at_once; count == at_once; units += count)
        count = search.next(found, at_once);
    return units;
}

class unit_counter : public orv_utils_v4::h264::split_sink {
public:
    void unit(const orv_utils_v4::h264::split_unit&) override { ++units; }
    void gap(const orv_utils_v4::h264::split_gap&) override {}

    std::uint64_t units = 0;
};

/// The stream in one piece, the last unit from a copy.
std::uint64_t by_splitter(data_set& set)
{
    unit_counter counter;
    orv_utils_v4::h264::unit_splitter splitter(orv_utils_v4::h264::framing::annex_b);
    splitter.push(set.annex_b.data(), set.annex_b_size, counter);
    splitter.flush(counter);
    return counter.units;
}

} // namespace

std::vector<task> split_tasks()
{
    return {{"T1 split", [](const data_set& set) { return set.annex_b_size; }, data_set_names(),
             std::vector<contender>{{side::ours, "reader", by_reader},
                                    {side::ours, "search", by_search},
                                    {side::ours, "splitter", by_splitter},
                                    {side::scalar, "literal", by_literal_loop}} +
                 read_passes() + peers::split()}};
}

} // namespace bench
