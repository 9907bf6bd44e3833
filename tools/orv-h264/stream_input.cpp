#include "stream_input.h"

#include "framing.h"
#include "recognise.h"
#include "standard_output.h"

#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

input_window open_window(input_file& file, const stream_options& options)
{
    input_window window([&file](unsigned char* out, std::size_t size) {
        flush_output(); // reading may wait
        return file.read(out, size);
    });
    if (options.format)
        return window;
    if (const char* container = container_name(window))
        throw refusal(exit_not_supported,
                      fmt::format("{}: this is {}; take the H.264 stream out of it first", file.name(), container));
    if (!holds_nothing(window) && !is_annexb(window))
        throw refusal(exit_usage_or_io,
                      fmt::format("{}: not an Annex B stream; name the framing with --format", file.name()));
    return window;
}

namespace {

/// Hands on, and knows whether there was a unit.
class counting_sink final : public h264::split_sink {
public:
    explicit counting_sink(h264::split_sink& to) : next(to) {}

    void unit(const h264::split_unit& unit) override
    {
        any = true;
        next.unit(unit);
    }
    void gap(const h264::split_gap& gap) override
    {
        any = any || gap.reason == h264::split_gap_reason::too_large;
        next.gap(gap);
    }

    bool any = false;

private:
    h264::split_sink& next;
};

} // namespace

stream_input::stream_input(const stream_options& options)
    : file(options.path),
      window(open_window(file, options)),
      frames(options.format.value_or(h264::framing::annex_b)),
      most(options.max_unit)
{
}

bool stream_input::read_units(h264::split_sink& to, const std::function<bool()>& enough)
{
    counting_sink counted(to);
    h264::unit_splitter splitter(frames, static_cast<std::size_t>(most));
    for (window.fill(1); window.size() != 0; window.fill(1)) {
        if (enough())
            return true;
        splitter.push(window.start(), window.size(), counted);
        window.drop(window.size());
    }
    splitter.flush(counted);
    return counted.any;
}

piece_feeder& stream_input::feeder()
{
    if (!pieces)
        pieces.emplace(std::move(window), nalfmt_of(frames), static_cast<std::size_t>(most));
    return *pieces;
}

} // namespace orv_h264
