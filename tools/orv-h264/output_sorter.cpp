#include "output_sorter.h"

#include <utility>

namespace orv_h264 {

void output_sorter::add(picture_row&& row)
{
    if (row.output_number)
        latest = row.output_number;
    if (!latest)
        return to(row);
    ++held_rows;
    held_units += row.units.size() + row.problems.size();
    held[*latest].push_back(std::move(row));
    while (!held.empty() && (is_full() || (held.begin()->first <= next && held.begin()->first != latest)))
        give_lowest();
}

void output_sorter::flush()
{
    while (!held.empty())
        give_lowest();
}

void output_sorter::give_lowest()
{
    const auto lowest = held.begin();
    next = lowest->first + 1;
    for (const picture_row& row : lowest->second) {
        held_units -= row.units.size() + row.problems.size();
        to(row);
    }
    held_rows -= lowest->second.size();
    held.erase(lowest);
}

} // namespace orv_h264
