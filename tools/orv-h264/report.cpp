#include "report.h"

#include "loss_texts.h"
#include "output_file.h"
#include "report/report_content.h"
#include "report/report_page.h"

#include <filesystem>
#include <system_error>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// The page is no fit place for itself to be read from.
void require_another_place(const report_options& options)
{
    if (options.out == "-" || options.stream.path == "-")
        return;
    std::error_code failed;
    if (std::filesystem::equivalent(options.out, options.stream.path, failed))
        throw refusal(exit_usage_or_io, fmt::format("{}: the report would replace the stream", options.out));
    if (failed && failed != std::errc::no_such_file_or_directory)
        throw std::system_error(failed, options.out);
}

} // namespace

exit_status report(const report_options& options)
{
    require_page_parts();
    stream_input input(options.stream);
    require_another_place(options);
    output_file page(options.out);
    report_content content(input);
    const bool any = input.read_units(content);
    content.finish(input);
    problem_list& problems = content.survey.summary.problems;
    if (!any)
        problems.add(input.bytes_read(), describe_no_unit(input.is_empty()));
    write_page(content.page_data(input), [&page](std::string_view text) {
        page.write({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
    });
    page.commit();
    return problems.kinds().empty() ? exit_clean : exit_broken_stream;
}

} // namespace orv_h264
