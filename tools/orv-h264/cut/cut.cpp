#include "cut/cut.h"

#include "cut/cut_run.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

bool is_time(const std::optional<cut_place>& place)
{
    return place && place->what == cut_place::kind::time;
}

/// The places as numbers or offsets that one run knows when it comes to them. Where it takes a run before that to find
/// them, the input has to be a file, which can be read again.
cut_range resolved(const cut_options& options, std::vector<std::string>& remarks)
{
    if (!options.key && !is_time(options.range.from) && !is_time(options.range.to))
        return options.range;
    stream_input input(options.stream);
    if (options.stream.path == "-" || !input.size())
        throw refusal(exit_usage_or_io, fmt::format("{}: {} take the input twice, so it has to be a file", input.name(),
                                                    options.key ? "the key picture of --key, and times," : "times"));
    range_finder finder(options.range, options.key, options.rate);
    cut_range found = finder.find(input);
    if (finder.no_key_picture())
        remarks.emplace_back("there is no key picture at or before the start, which stays where it is");
    return found;
}

} // namespace

exit_status cut(const cut_options& options)
{
    std::vector<std::string> remarks;
    const cut_range range = resolved(options, remarks);
    stream_input input(options.stream);
    output_file out(options.out); // it stays where it is: a signal removes what it has written
    cut_run work(options, range, input, out);
    const exit_status status = work.run();
    for (const std::string& remark : remarks)
        work.note(0, remark);
    out.commit();
    if (options.json)
        print_json(work.summary());
    return status;
}

} // namespace orv_h264
