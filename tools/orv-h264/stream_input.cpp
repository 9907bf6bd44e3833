#include "stream_input.h"

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

stream_input::stream_input(const stream_options& options)
    : file(options.path),
      nalfmt(options.format.value_or(brenik::nalfmt_annexb)),
      pieces(open_window(file, options), nalfmt, static_cast<std::size_t>(options.max_unit))
{
}

} // namespace orv_h264
