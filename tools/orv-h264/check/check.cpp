#include "check/check.h"

#include "check/check_output.h"
#include "check/stream_check.h"
#include "standard_output.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// "sps-level-known", or "hrd-*" for all whose names begin so.
bool matches(std::string_view pattern, std::string_view id)
{
    return pattern.ends_with('*') ? id.starts_with(pattern.substr(0, pattern.size() - 1)) : id == pattern;
}

bool any_names(const std::vector<std::string>& patterns, const rule& one)
{
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& p) { return matches(p, one.id); });
}

/// The profiles that are asked for, and the rules that a stream is looked at with.
class chosen_rules {
public:
    /// Throws refusal for what there is not.
    explicit chosen_rules(const check_options& options)
    {
        for (const std::string& name : options.profiles)
            profiles.push_back(load_profile(name));
        std::vector<const rule*> all(all_rules().begin(), all_rules().end());
        for (const delivery_profile& profile : profiles)
            for (const std::unique_ptr<requirement>& asked : profile.requirements)
                all.push_back(&asked->what);
        refuse_unknown(options.only, all);
        refuse_unknown(options.ignore, all);
        std::copy_if(all.begin(), all.end(), std::back_inserter(rules), [&](const rule* one) {
            return (options.only.empty() || any_names(options.only, *one)) && !any_names(options.ignore, *one);
        });
    }

    std::vector<delivery_profile> profiles;
    std::vector<const rule*> rules;

private:
    static void refuse_unknown(const std::vector<std::string>& patterns, const std::vector<const rule*>& all)
    {
        for (const std::string& pattern : patterns)
            if (std::none_of(all.begin(), all.end(), [&](const rule* one) { return matches(pattern, one->id); }))
                throw refusal(exit_usage_or_io, fmt::format("there is no rule '{}'; --rules lists them", pattern));
    }
};

/// Lets the violations of the chosen rules through to the output, as many of each as are wanted, and counts.
class chosen_violations final : public violation_sink {
public:
    chosen_violations(const std::vector<const rule*>& rules, std::uint64_t most_of_a_rule, check_output& to)
        : limit(most_of_a_rule), output(to), looked_at(rules.begin(), rules.end())
    {
    }

    void take(const violation& what) override
    {
        if (!looked_at.contains(what.broken))
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
    std::set<const rule*> looked_at;
    std::map<const rule*, std::uint64_t> told;
};

/// What prints its output when the file has ended does it in this frame.
exit_status check_with(const check_options& options, const chosen_rules& chosen, check_output& output,
                       const output_frame& frame)
{
    stream_input input(options.stream);
    output.begin(input.name(), chosen.rules);
    chosen_violations violations(chosen.rules, options.limit, output);
    stream_check(input.name(), input.max_unit(), violations, chosen.profiles).look_at(input);
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
    const chosen_rules chosen(options);
    const check_printer printer = make_check_printer(options.format, false);
    return check_with(options, chosen, *printer.output, printer.frame);
}

exit_status check_of_files(const file_set& files, const check_options& options)
{
    check_options one = options;
    if (files.is_one()) {
        one.stream.path = files.paths.front();
        return check(one);
    }
    const chosen_rules chosen(options);
    const check_printer printer = make_check_printer(options.format, true);
    file_work work;
    work.read = [&](const std::string& path) {
        one.stream.path = path;
        return check_with(one, chosen, *printer.output, {});
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
