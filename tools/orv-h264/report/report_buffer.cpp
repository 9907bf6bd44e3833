#include "report/report_buffer.h"

#include <algorithm>

namespace orv_h264 {

void buffer_stretch::add(const buffer_stretch& other)
{
    if (count == 0) {
        *this = other;
        return;
    }
    count += other.count;
    end = other.end;
    least = std::min(least, other.least);
    most = std::max(most, other.most);
}

void report_buffer::began(const hrd_access_unit&, const std::vector<coded_picture_buffer>& buffers)
{
    if (!shown)
        shown = buffers.front().schedule();
    schedules = std::max(schedules, buffers.size());
    ++runs;
    run_begin = time; // runs follow one another
    latest = 0;
}

// Between two removals bits come alone.
void report_buffer::removed(const hrd_schedule& schedule, const cpb_step& step)
{
    if (schedule.nal != shown->nal || schedule.SchedSelIdx != shown->SchedSelIdx)
        return;
    const double end = run_begin + step.removal;
    const std::int64_t least = std::max<std::int64_t>(latest, 0);
    const buffer_stretch next{1, time, std::max(time, end), least, std::max(least, step.before)};
    stretches.next().add(next);
    latest = step.after;
    time = next.end;
}

json report_buffer::page_data() const
{
    if (!shown)
        return nullptr;
    constexpr int digits = 4;
    json rows = json::array();
    for (const buffer_stretch& one : stretches.all())
        rows.push_back({rounded(one.begin, digits), rounded(one.end, digits), one.least, one.most});
    return {{"hrd", shown->nal ? "NAL" : "VCL"},
            {"schedule", shown->SchedSelIdx},
            {"schedules", schedules},
            {"bit_rate", shown->bit_rate},
            {"cpb_size", shown->size},
            {"cbr", shown->cbr},
            {"runs", runs},
            {"access_units_each", stretches.each()},
            {"stretches", std::move(rows)}};
}

} // namespace orv_h264
