#include "check/check.h"

#include "check/show_hrd.h"
#include "command_line/subcommands.h"
#include "help_texts.h"

#include <tuple>

namespace orv_h264 {

namespace {

/// What `check` does.
struct check_wish {
    check_options options;
    file_set files;
    bool rules = false; ///< they are listed
    bool hrd = false;   ///< how full its buffers are is shown
    std::string rule;   ///< that is explained
};

/// Adds --json, --sarif and --junit, which stand alone.
void add_check_format(CLI::App& app, check_format& format)
{
    const std::tuple<const char*, check_format, const char*> formats[] = {
        {"--json", check_format::json_lines, json_lines},
        {"--sarif", check_format::sarif, "Print SARIF 2.1.0 instead"},
        {"--junit", check_format::junit, "Print JUnit instead, a test case for each rule"}};
    for (const auto& [name, value, description] : formats)
        app.add_flag_callback(
            name,
            [&format, name = name, value = value] {
                if (format != check_format::text)
                    throw CLI::ValidationError(name, "one of --json, --sarif and --junit is enough");
                format = value;
            },
            description);
}

exit_status run_check(const check_wish& wish)
{
    if (wish.rules)
        return list_rules(wish.options.format);
    if (!wish.rule.empty())
        return explain_rule(wish.rule, wish.options.format);
    if (wish.hrd)
        return show_hrd_of_files(wish.files, {wish.options.stream, wish.options.format == check_format::json_lines});
    return check_of_files(wish.files, wish.options);
}

} // namespace

void add_check(CLI::App& tool, chosen_command& chosen)
{
    const auto wish = std::make_shared<check_wish>();
    CLI::App& checking = *tool.add_subcommand("check", "Tell what a stream breaks of the standard");
    add_streams(checking, wish->files, wish->options.stream);
    add_check_format(checking, wish->options.format);
    checking
        .add_option("--ignore", wish->options.ignore,
                    "Pass this rule over; a * at the end stands for all that begin so")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("RULES");
    checking.add_option("--only", wish->options.only, "Look with these rules alone")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("RULES");
    checking
        .add_option("--profile", wish->options.profiles,
                    "Look with the requirements of a delivery profile too: disc, low-latency, streaming, or a file")
        ->allow_extra_args(false)
        ->type_name("NAME");
    add_limit(checking, wish->options.limit, "Show N violations of a rule, and count the others");
    checking.add_flag("--hrd", wish->hrd,
                      "Show how full the buffers of the hypothetical reference decoder are instead");
    checking.add_flag("--rules", wish->rules, "List the rules instead, in the order of their clauses");
    checking.add_option("--explain", wish->rule, "Tell of this rule instead")->type_name("RULE");
    checking.footer(std::string(help_texts::check) + help_texts::many_files + help_texts::exit_statuses);
    checking.parse_complete_callback([wish] {
        if (wish->hrd && wish->options.format > check_format::json_lines)
            throw CLI::ValidationError("--hrd", "not together with --sarif or --junit");
        if (!wish->rules && wish->rule.empty())
            check(wish->files);
    });
    run_with(checking, chosen, run_check, wish);
}

} // namespace orv_h264
