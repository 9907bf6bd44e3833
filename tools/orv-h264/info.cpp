#include "info.h"

#include "loss_texts.h"
#include "show_info.h"
#include "stream_summary.h"
#include "table_output.h"

namespace orv_h264 {

exit_status info(const info_options& options)
{
    stream_input input(options.stream);
    stream_survey survey(input.framing(), input.max_unit(), &input.packets());
    survey.begin_with(input.record_sets());
    if (input.in_container() != nullptr)
        survey.summary.container.emplace(input.in_container()->track().tick);
    const bool any = input.read_units(survey);
    survey.finish(input.bytes_read());
    stream_summary& summary = survey.summary;
    if (!any)
        summary.problems.add(input.bytes_read(), describe_no_unit(input.is_empty()));
    if (const container_stream* const container = input.in_container()) {
        summary.problems.add(container->problems);
        summary.findings.add(container->findings);
        summary.container->finish();
        summary.findings.add(summary.container->findings());
    }
    if (options.format == output_format::text)
        print_info(input, summary);
    else if (is_table(options.format))
        print_facts(options.format, info_json(input, summary));
    else
        print_json(info_json(input, summary));
    return summary.problems.kinds().empty() ? exit_clean : exit_broken_stream;
}

} // namespace orv_h264
