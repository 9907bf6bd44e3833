#include "check/check.h"

#include "check/check_output.h"
#include "check/stream_check.h"
#include "standard_output.h"

#include <algorithm>
#include <map>
#include <set>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// "sps-level-known", or "hrd-*" for all whose names begin so.
bool names(std::string_view pattern, std::string_view id)
{
    return pattern.ends_with('*') ? id.starts_with(pattern.substr(0, pattern.size() - 1)) : id == pattern;
}

/// Throws refusal where nothing has such a name.
void refuse_unknown(const std::vector<std::string>& patterns)
{
    for (const std::string& pattern : patterns) {
        const auto fits = [&](const rule* one) { return names(pattern, one->id); };
        if (std::none_of(all_rules().begin(), all_rules().end(), fits))
            throw refusal(exit_usage_or_io, fmt::format("there is no rule '{}'; --rules lists them", pattern));
    }
}

/// Lets the violations of the chosen rules through to the output, as many of each as are wanted, and counts.
class chosen_violations final : public violation_sink {
public:
    chosen_violations(const check_options& options, check_output& to) : limit(options.limit), output(to)
    {
        for (const rule* one : all_rules()) {
            const auto fits = [one](const std::string& pattern) { return names(pattern, one->id); };
            if ((!options.only.empty() && std::none_of(options.only.begin(), options.only.end(), fits)) ||
                std::any_of(options.ignore.begin(), options.ignore.end(), fits))
                passed_over.insert(one);
        }
    }

    void take(const violation& what) override
    {
        if (passed_over.contains(what.broken))
            return;
        ++counts[static_cast<std::size_t>(what.level)];
        if (told[what.broken]++ < limit)
            output.print(what);
        else
            ++untold;
    }

    violation_counts counts = {};
    std::uint64_t untold = 0;

private:
    std::uint64_t limit;
    check_output& output;
    std::set<const rule*> passed_over;
    std::map<const rule*, std::uint64_t> told;
};

/// What prints its output when the file has ended does it in this frame.
exit_status check_with(const check_options& options, check_output& output, const output_frame& frame)
{
    stream_input input(options.stream);
    output.begin(input.name());
    chosen_violations violations(options, output);
    stream_check(input.name(), input.max_unit(), violations).look_at(input);
    write_output(frame.head);
    output.end(violations.counts, violations.untold);
    write_output(frame.tail);
    return violations.counts[static_cast<std::size_t>(severity::error)] > 0 ? exit_broken_stream : exit_clean;
}

void print_rule(const rule& one, check_format format)
{
    if (format == check_format::json_lines)
        print_json(json_of(one));
    else
        write_output(fmt::format("{:36} {:8} {:22} {}\n", one.id, name_of(one.level), one.clause, one.title));
}

} // namespace

exit_status check(const check_options& options)
{
    refuse_unknown(options.only);
    refuse_unknown(options.ignore);
    const check_printer printer = make_check_printer(options.format, false);
    return check_with(options, *printer.output, printer.frame);
}

exit_status check_of_files(const file_set& files, const check_options& options)
{
    check_options one = options;
    if (files.is_one()) {
        one.stream.path = files.paths.front();
        return check(one);
    }
    refuse_unknown(options.only);
    refuse_unknown(options.ignore);
    const check_printer printer = make_check_printer(options.format, true);
    file_work work;
    work.read = [&](const std::string& path) {
        one.stream.path = path;
        return check_with(one, *printer.output, {});
    };
    work.print_failure = [&](const std::string& file, const json& failure) {
        printer.output->fail(file, failure.at("error").get<std::string>(), failure.at("status").get<int>());
    };
    work.between = printer.frame.between;
    work.between_failures = true;
    write_output(printer.frame.head);
    const exit_status status = read_files(files, work);
    write_output(printer.frame.tail);
    return status;
}

exit_status list_rules(check_format format)
{
    for (const rule* one : all_rules())
        print_rule(*one, format);
    return exit_clean;
}

exit_status explain_rule(const std::string& id, check_format format)
{
    const rule* const one = find_rule(id);
    if (one == nullptr)
        throw refusal(exit_usage_or_io, fmt::format("there is no rule '{}'; --rules lists them", id));
    if (format == check_format::json_lines)
        print_json(json_of(*one));
    else
        write_output(fmt::format("{} ({}, {})\n\nHolds: {}.\n\n{}\n\nBroken by: {}.\n", one->id, name_of(one->level),
                                 name_of_clause(one->clause), one->title, one->about, one->example));
    return exit_clean;
}

} // namespace orv_h264
