#include "diff/stream_comparison.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

stream_options at_path(const diff_options& options, const std::string& path)
{
    stream_options stream = options.stream;
    stream.path = path;
    return stream;
}

/// Both are read a second time where they differ.
void refuse_what_is_no_file(const diff_options& options)
{
    for (const std::string& path : {options.a, options.b})
        if (path == "-" || !stream_input(at_path(options, path)).size())
            throw refusal(exit_usage_or_io, fmt::format("{}: streams are read twice to be compared, so both have to be "
                                                        "files",
                                                        input_name(path)));
}

} // namespace

stream_comparison::stream_comparison(const diff_options& chosen) : options(chosen), log(chosen.ignored)
{
    refuse_what_is_no_file(options);
}

void stream_comparison::run()
{
    prints_a = read(options.a, streams[0]);
    prints_b = read(options.b, streams[1]);
    partners = align(prints_a.entries, prints_b.entries, true);
    add_runs();
    compare_elements();
}

stream_comparison::prints stream_comparison::read(const std::string& path, compared_stream& what) const
{
    access_unit_feed feed(at_path(options, path), false);
    prints made;
    while (const auto unit = feed.next()) {
        made.entries.push_back(unit->print());
        made.offsets.push_back(unit->units.empty() ? 0 : unit->units[0].offset);
    }
    what = {feed.name(), feed.framing(), feed.bytes(), feed.totals()};
    return made;
}

/// Stretches in the order of A, those of B alone where they lie.
void stream_comparison::add_runs()
{
    std::uint64_t j = 0;
    const auto add_only_b = [&] {
        for (; j < partners.of_b.size() && (partners.of_b[j] == alignment::none || partners.moved_b[j]); ++j)
            if (partners.of_b[j] == alignment::none)
                add_run(difference::only_b, partners.of_a.size(), j);
    };
    for (std::uint64_t i = 0; i < partners.of_a.size(); ++i) {
        const std::uint32_t partner = partners.of_a[i];
        if (partner == alignment::none) {
            add_run(difference::only_a, i, j);
        } else if (partners.moved_a[i]) {
            add_run(difference::moved, i, partner);
        } else {
            for (; j < partner; ++j)
                if (partners.of_b[j] == alignment::none)
                    add_run(difference::only_b, i, j);
            ++j;
        }
    }
    add_only_b();
    for (; j < partners.of_b.size(); ++j)
        if (partners.of_b[j] == alignment::none)
            add_run(difference::only_b, partners.of_a.size(), j);
}

void stream_comparison::add_run(difference what, std::uint64_t a, std::uint64_t b)
{
    std::uint64_t& count = what == difference::only_a   ? counts.only_a
                           : what == difference::only_b ? counts.only_b
                                                        : counts.moved;
    ++count;
    if (!stretches.empty()) {
        unit_run_difference& last = stretches.back();
        const bool next_a = what == difference::only_b ? last.first_a == a : last.first_a + last.count == a;
        const bool next_b = what == difference::only_a ? last.first_b == b : last.first_b + last.count == b;
        if (last.what == what && next_a && next_b) {
            ++last.count;
            return;
        }
    }
    if (stretches.size() == most_runs) {
        ++stretches_not_kept;
        return;
    }
    stretches.push_back({what, a, b, 1, a < partners.of_a.size() ? prints_a.offsets[a] : streams[0].bytes,
                         b < partners.of_b.size() ? prints_b.offsets[b] : streams[1].bytes});
}

bool stream_comparison::is_same(std::uint64_t a, std::uint64_t b) const
{
    return prints_a.entries[a].whole == prints_b.entries[b].whole;
}

/// The pairs that hold something else, in their order, which is that of both streams.
void stream_comparison::compare_elements()
{
    bool any = false;
    for (std::uint64_t i = 0; i < partners.of_a.size(); ++i) {
        const std::uint32_t j = partners.of_a[i];
        const bool beside = j != alignment::none && !partners.moved_a[i];
        if (beside && is_same(i, j))
            ++counts.same;
        else
            any = any || beside;
    }
    if (!any)
        return;
    access_unit_feed feed_a(at_path(options, options.a), true);
    access_unit_feed feed_b(at_path(options, options.b), true);
    unit_comparison units(log);
    compared_access_unit a;
    compared_access_unit b;
    std::uint64_t next_a = 0;
    std::uint64_t next_b = 0;
    for (std::uint64_t i = 0; i < partners.of_a.size(); ++i) {
        const std::uint32_t j = partners.of_a[i];
        if (j == alignment::none || partners.moved_a[i] || is_same(i, j))
            continue;
        if (!skip_to(feed_a, next_a, i, a) || !skip_to(feed_b, next_b, j, b))
            throw refusal(exit_usage_or_io, "a file became shorter while it was read");
        ++(units.compare(a, b) ? counts.changed : counts.same);
    }
    units.finish();
}

bool stream_comparison::skip_to(access_unit_feed& feed, std::uint64_t& next, std::uint64_t wanted,
                                compared_access_unit& to)
{
    for (; next <= wanted; ++next) {
        auto unit = feed.next();
        if (!unit)
            return false;
        to = std::move(*unit);
    }
    return true;
}

} // namespace orv_h264
