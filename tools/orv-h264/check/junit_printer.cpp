// Violations as JUnit's XML: a test case for each rule, which fails where an error was found. The suite of a file
// begins a line and ends one: of a process that was killed no part of it is taken.
#include "check/check_output.h"
#include "standard_output.h"

#include <map>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// The text in an attribute or between tags. What XML 1.0 has no characters for, and bytes that are no UTF-8, become
/// U+FFFD.
std::string xml_of(std::string_view text)
{
    const std::string utf8 = json_line(json(std::string(text)));
    std::string out;
    for (const char c : json::parse(utf8).get<std::string>()) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            if (static_cast<unsigned char>(c) < ' ' && c != '\t')
                out += "\xEF\xBF\xBD";
            else
                out += c;
        }
    }
    return out;
}

class junit_suite final : public check_output {
public:
    void begin(const std::string& file, std::span<const rule* const> in_play) override
    {
        name = xml_of(file);
        rules = in_play;
    }

    void print(const violation& what) override
    {
        std::string& lines = (what.level == severity::error ? failures : remarks)[what.broken->id];
        const std::string unit = what.unit ? fmt::format(", unit {}", what.unit->number) : "";
        lines += xml_of(
            fmt::format("offset {}{}: {}: {}\n", what.offset, unit, name_of(what.level), found_and_allowed(what)));
    }

    void end(const violation_counts&, std::uint64_t) override
    {
        std::string suite = fmt::format(R"(<testsuite name="{}" tests="{}" failures="{}" errors="0">)", name,
                                        rules.size(), failures.size());
        for (const rule* one : rules)
            append_case(suite, *one);
        write_output(suite + "</testsuite>\n");
    }

    void fail(const std::string& file, const std::string& reason, int) override
    {
        write_output(fmt::format("<testsuite name=\"{0}\" tests=\"1\" failures=\"0\" errors=\"1\">"
                                 "<testcase classname=\"orv-h264\" name=\"file-is-read\"><error message=\"{1}\"/>"
                                 "</testcase></testsuite>\n",
                                 xml_of(file), xml_of(reason)));
    }

private:
    using texts = std::map<std::string_view, std::string>; // of each rule that has any

    void append_case(std::string& suite, const rule& one) const
    {
        const std::string open =
            fmt::format(R"(<testcase classname="{}" name="{}")", xml_of(name_of_clause(one.clause)), one.id);
        std::string inside;
        if (const auto failed = failures.find(one.id); failed != failures.end())
            inside += fmt::format(R"(<failure message="{}">{}</failure>)", xml_of(one.title), failed->second);
        if (const auto told = remarks.find(one.id); told != remarks.end())
            inside += fmt::format("<system-out>{}</system-out>", told->second);
        suite += inside.empty() ? open + "/>" : open + ">" + inside + "</testcase>";
    }

    std::string name;
    std::span<const rule* const> rules;
    texts failures;
    texts remarks;
};

constexpr output_frame suites = {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n", "", "</testsuites>\n"};

} // namespace

check_printer make_junit_printer()
{
    return {std::make_unique<junit_suite>(), suites};
}

} // namespace orv_h264
