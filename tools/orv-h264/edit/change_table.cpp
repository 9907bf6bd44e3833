#include "edit/change_table.h"

#include <algorithm>

namespace orv_h264::editing {

void change_table::add(const difference& what, std::uint64_t unit)
{
    const bool told_apart = what.cause != difference_cause::renumbered && all.size() < most_rows;
    const auto row = std::find_if(all.begin(), all.end(), [&](const changed_elements& r) {
        return r.what.kind == what.kind && r.what.path == what.path && r.what.cause == what.cause &&
               (!told_apart || (r.what.before == what.before && r.what.after == what.after));
    });
    if (row == all.end()) {
        if (all.size() < 2 * most_rows) // names are many only where bytes of user data are set one by one
            all.push_back({what, 1, unit, false});
        return;
    }
    ++row->units;
    row->values_differ = row->values_differ || row->what.before != what.before || row->what.after != what.after;
}

} // namespace orv_h264::editing
