#include "info.h"

#include "loss_texts.h"
#include "show_info.h"
#include "stream_summary.h"
#include "table_output.h"

namespace orv_h264 {

namespace {

void print_object(const info_options& options, const std::string& file, const json& object)
{
    if (options.format == output_format::json)
        print_json(object);
    else if (options.among_many)
        print_facts_of(file, options.format, object);
    else
        print_facts(options.format, object);
}

} // namespace

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
    else
        print_object(options, input.name(), info_json(input, summary));
    return summary.problems.kinds().empty() ? exit_clean : exit_broken_stream;
}

exit_status info_of_files(const file_set& files, const info_options& options)
{
    info_options one = options;
    if (files.is_one()) {
        one.stream.path = files.paths.front();
        return info(one);
    }
    one.among_many = true;
    file_work work;
    work.read = [&one](const std::string& path) {
        one.stream.path = path;
        return info(one);
    };
    work.print_failure = [&one](const std::string& file, const json& failure) {
        json object = json_head("orv-h264/error", file);
        object.update(failure);
        if (one.format != output_format::text)
            print_object(one, file, object);
    };
    if (one.format == output_format::text)
        work.between = "\n";
    else if (is_table(one.format))
        print_fact_names_of_many(one.format);
    return read_files(files, work);
}

} // namespace orv_h264
