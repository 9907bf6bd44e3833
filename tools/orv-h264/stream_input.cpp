#include "stream_input.h"

#include "failed_allocations.h"
#include "framing.h"
#include "recognise.h"
#include "standard_output.h"

#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

void refuse_other_formats(const std::string& name, const recognition& what, const char* advice)
{
    if (what.kind != input_kind::foreign)
        return;
    const std::string next =
        what.format.holds ? "; take the H.264 stream out of it first" : fmt::format(", not H.264{}", advice);
    throw refusal(exit_not_supported, fmt::format("{}: this is {}{}", name, what.format.name, next));
}

namespace {

/// Hands on until there is enough, and knows whether there was a unit.
class counting_sink final : public h264::split_sink {
public:
    counting_sink(h264::split_sink& to, const std::function<bool()>& enough) : next(to), is_enough(enough) {}

    void unit(const h264::split_unit& unit) override
    {
        any = true;
        if (!done())
            next.unit(unit);
    }
    void gap(const h264::split_gap& gap) override
    {
        if (gap.reason == h264::split_gap_reason::no_memory)
            static_cast<void>(take_failed_allocation()); // the gap tells of it
        any = any || gap.is_unit();
        if (!done())
            next.gap(gap);
    }
    bool done() { return stopped = stopped || is_enough(); }

    bool any = false;

private:
    h264::split_sink& next;
    const std::function<bool()>& is_enough;
    bool stopped = false;
};

} // namespace

stream_input::stream_input(const stream_options& options)
    : file(options.path, options.name.empty() ? input_name(options.path) : options.name),
      window([this](unsigned char* out, std::size_t size) {
          flush_output(); // reading may wait
          return file.read(out, size);
      }),
      most(options.max_unit),
      frames(options.format ? *options.format : find_framing(options)),
      recognised(!options.format && !container && frames != h264::framing::annex_b)
{
    if (options.track && !container)
        throw refusal(exit_usage_or_io, fmt::format("{}: --track is for containers, and this is none", file.name()));
}

std::span<const h264::split_unit> stream_input::record_sets() const noexcept
{
    if (container)
        return container->record_sets();
    return {};
}

h264::framing stream_input::find_framing(const stream_options& options)
{
    const recognition what = recognise(window);
    if (const container_kind kind = what.format.container; kind != container_kind::none) {
        container = std::make_unique<container_stream>(file, window, kind, options.track, most);
        return container->framing();
    }
    refuse_other_formats(file.name(), what, "; if it is, name its framing with --format");
    if (what.kind == input_kind::record)
        throw refusal(
            exit_usage_or_io,
            fmt::format("{}: this is a decoder configuration record, no stream; orv-h264 avcc shows it", file.name()));
    if (what.kind == input_kind::unknown)
        throw refusal(exit_usage_or_io,
                      fmt::format("{}: no H.264 stream is recognised; if it is one, name its framing with --format",
                                  file.name()));
    return what.framing;
}

bool stream_input::read_units(h264::split_sink& to, const std::function<bool()>& enough)
{
    counting_sink counted(to, enough);
    const auto is_more = [this] {
        window.fill(1);
        return container || window.size() != 0;
    };
    while (!(counted.done() && is_more()) && read_piece(counted))
        ;
    return counted.any || !ended;
}

bool stream_input::read_piece(h264::split_sink& to)
{
    if (ended)
        return false;
    if (container && container->read_packet(to))
        return true;
    if (container) {
        container->finish(to);
        ended = true;
        return false;
    }
    if (!splitter)
        splitter.emplace(frames, static_cast<std::size_t>(most));
    window.fill(1);
    ended = window.size() == 0;
    if (ended)
        splitter->flush(to);
    else
        splitter->push(window.start(), window.size(), to);
    window.drop(window.size());
    return !ended;
}

} // namespace orv_h264
