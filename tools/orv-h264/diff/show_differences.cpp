#include "diff/show_differences.h"

#include "framing.h"
#include "printable.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// How many lines of each list are shown. With what stands around them they make a screen of 40.
struct line_counts {
    std::size_t runs;
    std::size_t units;
    std::size_t elements;
};

/// Elements have what stretches and units leave of the screen, and these what elements leave.
line_counts share(const line_counts& there, bool all)
{
    constexpr std::size_t most = 17;
    constexpr std::size_t sure_runs = 4;
    constexpr std::size_t sure_units = 5;
    if (all)
        return there;
    line_counts shown = {std::min(there.runs, sure_runs), std::min(there.units, sure_units), 0};
    shown.elements = std::min(there.elements, most - shown.runs - shown.units);
    shown.units = std::min(there.units, most - shown.runs - shown.elements);
    shown.runs = std::min(there.runs, most - shown.units - shown.elements);
    return shown;
}

const char* plural(std::uint64_t count)
{
    return count == 1 ? "" : "s";
}

std::string row(const char* what, const std::string& a, const std::string& b)
{
    return fmt::format("{:<16}{:>14}{:>14}\n", what, a, b);
}

std::string row(const char* what, std::uint64_t a, std::uint64_t b)
{
    return row(what, std::to_string(a), std::to_string(b));
}

std::string summary_text(const stream_comparison& found)
{
    const compared_stream& a = found.stream(false);
    const compared_stream& b = found.stream(true);
    std::string text = fmt::format("A  {}\nB  {}\n\n", printable(a.name), printable(b.name));
    text += row("", "A", "B") + row("Framing", framing_name(a.framing), framing_name(b.framing));
    text += row("Bytes", a.bytes, b.bytes) + row("Coded pictures", a.totals.pictures, b.totals.pictures);
    text += row("Access units", a.totals.access_units, b.totals.access_units);
    text += row("NAL units", a.totals.units, b.totals.units);
    if (a.totals.problems + b.totals.problems != 0)
        text += row("Damaged places", a.totals.problems, b.totals.problems);
    const access_unit_counts& counts = found.access_units();
    return text + fmt::format("\nAccess units: {} same, {} changed, {} removed, {} inserted, {} moved\n", counts.same,
                              counts.changed, counts.only_a, counts.only_b, counts.moved);
}

/// "10 to 34", of one its number.
std::string numbers(std::uint64_t first, std::uint64_t count)
{
    return count == 1 ? std::to_string(first) : fmt::format("{} to {}", first, first + count - 1);
}

/// Where access units would stand: before one of the other stream, or behind all of them.
std::string before(std::uint64_t number, const compared_stream& of, const char* name)
{
    return number < of.totals.access_units ? fmt::format("before {} of {}", number, name)
                                           : fmt::format("at the end of {}", name);
}

std::string line_of(const unit_run_difference& run, const stream_comparison& found)
{
    switch (run.what) {
    case stream_difference::only_a:
        return fmt::format("removed   {} of A, offset {}, {}\n", numbers(run.first_a, run.count), run.offset_a,
                           before(run.first_b, found.stream(true), "B"));
    case stream_difference::only_b:
        return fmt::format("inserted  {} of B, offset {}, {}\n", numbers(run.first_b, run.count), run.offset_b,
                           before(run.first_a, found.stream(false), "A"));
    default:
        return fmt::format("moved     {} of A, offset {}, to {} of B, offset {}\n", numbers(run.first_a, run.count),
                           run.offset_a, numbers(run.first_b, run.count), run.offset_b);
    }
}

std::string runs_text(const stream_comparison& found, std::size_t lines)
{
    std::string text;
    const auto& runs = found.runs();
    for (std::size_t i = 0; i < lines; ++i)
        text += line_of(runs[i], found);
    const std::uint64_t left = runs.size() - lines + found.further_runs();
    if (left != 0)
        text += fmt::format("... and {} other stretch{} of access units\n", left, left == 1 ? "" : "es");
    return text;
}

std::string unit_line(const told_difference& kind)
{
    const char* const what = kind.what == stream_difference::only_a   ? "only in A"
                             : kind.what == stream_difference::only_b ? "only in B"
                                                                      : "moved";
    return fmt::format("{:>7}  {:<9}  {}, first at {}\n", kind.count, what, kind.path,
                       kind.what == stream_difference::only_a ? fmt::format("{} of A", kind.offset_a)
                       : kind.what == stream_difference::only_b
                           ? fmt::format("{} of B", kind.offset_b)
                           : fmt::format("{} of A, {} of B", kind.offset_a, kind.offset_b));
}

std::string element_line(const told_difference& kind)
{
    std::string values;
    for (const auto& [a, b] : kind.examples)
        values += fmt::format("{}{} -> {}", values.empty() ? "" : "; ", a, b);
    if (kind.what != stream_difference::changed)
        values = kind.what == stream_difference::only_a ? "only in A" : "only in B";
    return fmt::format(
        "{:>7}  {}: {}{}, first at {} of A, {} of B\n", kind.count, kind.path, values,
        kind.examples.size() == told_difference::most_examples && kind.count > kind.examples.size() ? " ..." : "",
        kind.offset_a, kind.offset_b);
}

/// The first lines of the kinds that are of units, or of those that are not.
std::string kinds_text(const stream_comparison& found, bool of_unit, const char* heading, std::size_t lines)
{
    std::vector<const told_difference*> kinds;
    std::uint64_t count = 0;
    for (const told_difference& kind : found.elements().kinds())
        if (kind.of_unit == of_unit) {
            kinds.push_back(&kind);
            count += kind.count;
        }
    if (kinds.empty())
        return "";
    std::string text = fmt::format("\n{} ({} in all)\n", heading, count);
    for (std::size_t i = 0; i < lines; ++i) {
        text += of_unit ? unit_line(*kinds[i]) : element_line(*kinds[i]);
        count -= kinds[i]->count;
    }
    if (lines != kinds.size())
        text += fmt::format("    ... and {} other{} in {} place{}; --all lists them\n", kinds.size() - lines,
                            plural(kinds.size() - lines), count, plural(count));
    if (!of_unit && found.elements().further() != 0)
        text += fmt::format("    ... and {} of kinds that are not told apart\n", found.elements().further());
    return text;
}

std::string framing_of(const compared_stream& stream)
{
    const feed_totals& t = stream.totals;
    std::string text;
    const auto add = [&](std::uint64_t count, const std::string& what) {
        if (count != 0)
            text +=
                fmt::format("{}{} {}", text.empty() ? "" : ", ", count, fmt::format(fmt::runtime(what), plural(count)));
    };
    add(t.short_start_codes, "start code{} of 3 bytes");
    add(t.long_start_codes, "start code{} of 4 bytes");
    add(t.length_prefixes, fmt::format("length{{}} of {} byte{}", t.prefix_size, plural(t.prefix_size)));
    add(t.escapes, "emulation-prevention byte{}");
    add(t.zeros, "zero byte{}");
    add(t.lost_bytes, "byte{} in no unit");
    return text.empty() ? "nothing" : text;
}

std::string framing_text(const stream_comparison& found)
{
    const std::string a = framing_of(found.stream(false));
    const std::string b = framing_of(found.stream(true));
    return a == b ? "" : fmt::format("\nFraming, which is no difference: A has {}; B has {}\n", a, b);
}

json json_of_stream(const compared_stream& stream)
{
    const feed_totals& t = stream.totals;
    return {{"file", stream.name},
            {"framing", framing_name(stream.framing)},
            {"bytes", stream.bytes},
            {"coded_pictures", t.pictures},
            {"access_units", t.access_units},
            {"units", t.units},
            {"damaged_places", t.problems},
            {"start_codes_of_3", t.short_start_codes},
            {"start_codes_of_4", t.long_start_codes},
            {"emulation_prevention_bytes", t.escapes},
            {"zero_bytes", t.zeros},
            {"bytes_in_no_unit", t.lost_bytes}};
}

const char* word_of(stream_difference what)
{
    constexpr const char* names[] = {"changed", "only_a", "only_b", "moved"};
    return names[static_cast<std::size_t>(what)];
}

json json_of_kind(const told_difference& kind)
{
    json examples = json::array();
    for (const auto& [a, b] : kind.examples)
        examples.push_back({{"a", a}, {"b", b}});
    return {{"kind", word_of(kind.what)}, {"path", kind.path},         {"count", kind.count},
            {"offset_a", kind.offset_a},  {"offset_b", kind.offset_b}, {"examples", examples}};
}

json json_of_runs(const stream_comparison& found)
{
    json runs = json::array();
    for (const unit_run_difference& run : found.runs())
        runs.push_back({{"kind", word_of(run.what)},
                        {"first_a", run.first_a},
                        {"first_b", run.first_b},
                        {"count", run.count},
                        {"offset_a", run.offset_a},
                        {"offset_b", run.offset_b}});
    return runs;
}

} // namespace

std::string text_of(const stream_comparison& found, bool all)
{
    const auto& kinds = found.elements().kinds();
    const auto of_units = static_cast<std::size_t>(
        std::count_if(kinds.begin(), kinds.end(), [](const told_difference& kind) { return kind.of_unit; }));
    const line_counts lines = share({found.runs().size(), of_units, kinds.size() - of_units}, all);
    std::string text = summary_text(found) + runs_text(found, lines.runs);
    text += kinds_text(found, true, "Units", lines.units);
    text += kinds_text(found, false, "Elements", lines.elements);
    text += framing_text(found);
    return text + (found.differs() ? "" : "\nThe streams are the same.\n");
}

json json_of(const stream_comparison& found)
{
    json object = json_head("orv-h264/diff", found.stream(false).name);
    object["same"] = !found.differs();
    object["a"] = json_of_stream(found.stream(false));
    object["b"] = json_of_stream(found.stream(true));
    const access_unit_counts& counts = found.access_units();
    object["access_units"] = {{"same", counts.same},
                              {"changed", counts.changed},
                              {"removed", counts.only_a},
                              {"inserted", counts.only_b},
                              {"moved", counts.moved}};
    object["stretches"] = json_of_runs(found);
    object["further_stretches"] = found.further_runs();
    object["units"] = json::array();
    object["elements"] = json::array();
    for (const told_difference& kind : found.elements().kinds())
        object[kind.of_unit ? "units" : "elements"].push_back(json_of_kind(kind));
    object["further_differences"] = found.elements().further();
    return object;
}

} // namespace orv_h264
