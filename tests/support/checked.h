// What `orv-h264 check` tells of a stream in memory.
#pragma once

#include "check/stream_check.h"
#include "support/temporary_folder.h"

#include <fmt/format.h>

#include <span>
#include <string>
#include <vector>

namespace support {

/// Keeps all violations.
class kept_violations final : public orv_h264::violation_sink {
public:
    void take(const orv_h264::violation& what) override { all.push_back(what); }

    std::vector<orv_h264::violation> all;
};

/// Options for a file with the stream, which is to be named.
inline orv_h264::stream_options annex_b_options()
{
    orv_h264::stream_options options;
    options.format = orv_utils_v4::h264::framing::annex_b;
    return options;
}

inline std::vector<orv_h264::violation> violations_of(const bytes& stream,
                                                      orv_h264::stream_options options = annex_b_options(),
                                                      std::span<const orv_h264::delivery_profile> profiles = {})
{
    const temporary_folder folder;
    options.path = folder.write("stream.264", stream);
    orv_h264::stream_input input(options);
    kept_violations kept;
    orv_h264::stream_check(input.name(), input.max_unit(), kept, profiles).look_at(input);
    return kept.all;
}

/// Each as "rule@unit element", or "rule@unit", or "rule" where it is of no unit; commas between them.
inline std::string broken_rules(const bytes& stream, const orv_h264::stream_options& options = annex_b_options())
{
    std::string text;
    for (const orv_h264::violation& what : violations_of(stream, options)) {
        text += text.empty() ? "" : ", ";
        text += what.broken->id;
        if (what.unit)
            text += fmt::format("@{}", what.unit->number);
        if (!what.element.empty())
            text += " " + what.element;
    }
    return text;
}

} // namespace support
