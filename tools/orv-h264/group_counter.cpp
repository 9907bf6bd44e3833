#include "group_counter.h"

#include <algorithm>

namespace orv_h264 {

void group_counter::add(const picture_row& row)
{
    if (row.recovery_frame_cnt) {
        ++ended.recovery_points;
        ended.least_recovery_frame_cnt = std::min(ended.least_recovery_frame_cnt, *row.recovery_frame_cnt);
        ended.most_recovery_frame_cnt = std::max(ended.most_recovery_frame_cnt, *row.recovery_frame_cnt);
    }
    if (row.key()) {
        ended = totals();
        key_output_number = row.output_number;
        key_is_idr = row.idr;
        current = !row.idr && *row.recovery_frame_cnt != 0 ? group_kind::gradual : group_kind::closed;
        return;
    }
    const bool leads = key_output_number && row.output_number && *row.output_number < *key_output_number;
    if (current == group_kind::closed && !key_is_idr && leads)
        current = group_kind::open;
}

group_totals group_counter::totals() const
{
    group_totals all = ended;
    all.closed += current == group_kind::closed ? 1U : 0U;
    all.open += current == group_kind::open ? 1U : 0U;
    all.gradual += current == group_kind::gradual ? 1U : 0U;
    return all;
}

std::uint32_t reorder_meter::add(const picture_row& row)
{
    if (!row.output_number)
        return 0;
    std::uint64_t* const place =
        std::find_if(highest, highest + size, [&](std::uint64_t number) { return number < *row.output_number; });
    const auto depth = static_cast<std::uint32_t>(place - highest);
    if (depth == most_depth)
        return depth;
    size = std::min(size + 1, most_depth); // the lowest one falls out
    std::copy_backward(place, highest + size - 1, highest + size);
    *place = *row.output_number;
    return depth;
}

} // namespace orv_h264
