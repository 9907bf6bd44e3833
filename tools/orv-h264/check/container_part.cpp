#include "check/container_part.h"

#include "check/general_rules.h"

namespace orv_h264 {

container_part::container_part(const stream_input& input, h264::split_sink& next) : behind(next)
{
    const container_stream* const container = input.in_container();
    if (container == nullptr)
        return;
    pictures.emplace(container->track().tick);
    row_sink& to = *this;
    rows.emplace(false, input.max_unit(), to, &input.packets());
    rows->begin_with(input.record_sets());
}

void container_part::unit(const h264::split_unit& unit)
{
    if (rows)
        rows->unit(unit);
    behind.unit(unit);
}

void container_part::gap(const h264::split_gap& gap)
{
    if (rows)
        rows->gap(gap);
    behind.gap(gap);
}

void container_part::finish(const stream_input& input, violation_log& log)
{
    const container_stream* const container = input.in_container();
    if (container == nullptr)
        return;
    rows->finish(input.bytes_read());
    pictures->finish();
    for (const container_remark& remark : container->remarks())
        log.tell_at(general_rules::container_whole, remark.offset,
                    {"", remark.text, "", remark.is_problem ? severity::error : severity::note});
    for (const problem_kind& kind : pictures->findings().kinds())
        log.tell_at(general_rules::container_agrees, kind.first_offset, {"", describe_without_offset(kind), ""});
}

} // namespace orv_h264
