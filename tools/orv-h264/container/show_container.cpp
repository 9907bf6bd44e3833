#include "container/show_container.h"

#include "framing.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr unsigned sps_type = 7;
constexpr unsigned pps_type = 8;

std::size_t sets_of_type(const container_stream& container, unsigned type)
{
    return static_cast<std::size_t>(std::ranges::count_if(
        container.record_sets(), [&](const h264::split_unit& set) { return (set.bytes[0] & 0x1FU) == type; }));
}

std::string track_text(const container_track& track)
{
    return fmt::format("{} {}", track.codec, track.media);
}

std::string seconds_text(h264::exact_time time)
{
    return time ? fmt::format("{:.6f} s", static_cast<double>(time.numerator) / static_cast<double>(time.denominator))
                : "-";
}

json time_json(h264::exact_time time)
{
    return time ? json_fraction(time.numerator, time.denominator) : json();
}

h264::exact_time movie_time(std::uint64_t ticks, const edit_list& list)
{
    return time_of(static_cast<std::int64_t>(ticks), {1, list.movie_ticks});
}

std::string edit_text(const edit& e, const container_stream& container)
{
    const std::string length =
        e.duration == 0 ? "up to the end" : "for " + seconds_text(movie_time(e.duration, container.edits()));
    if (e.media_time < 0)
        return fmt::format("nothing {}", length);
    const std::string begin = seconds_text(time_of(e.media_time, container.track().tick));
    return fmt::format("from {} {}{}", begin, length, e.rate == 1 ? "" : fmt::format(" at rate {}", e.rate));
}

std::string edits_text(const container_stream& container)
{
    constexpr std::size_t most_shown = 4;
    const edit_list& list = container.edits();
    std::string text;
    for (std::size_t i = 0; i < std::min(list.edits.size(), most_shown); ++i)
        text += (i == 0 ? "" : ", then ") + edit_text(list.edits[i], container);
    const std::uint64_t more = list.edits.size() - std::min(list.edits.size(), most_shown) + list.further;
    return more == 0 ? text : fmt::format("{}, and {} more", text, more);
}

std::string record_text(const container_stream& container)
{
    const std::string place = container.record_place() ? fmt::format(" at offset {}", *container.record_place()) : "";
    return fmt::format("{} bytes{}: {} SPS, {} PPS, lengths of {} byte{}", container.record().size(), place,
                       sets_of_type(container, sps_type), sets_of_type(container, pps_type),
                       prefix_size_of(container.framing()), prefix_size_of(container.framing()) == 1 ? "" : "s");
}

json record_json(const container_stream& container)
{
    if (container.record().empty())
        return {};
    return {{"offset", container.record_place() ? json(*container.record_place()) : json()},
            {"bytes", container.record().size()},
            {"length_size", prefix_size_of(container.framing())},
            {"sps", sets_of_type(container, sps_type)},
            {"pps", sets_of_type(container, pps_type)}};
}

json edits_json(const container_stream& container)
{
    json edits = json::array();
    for (const edit& e : container.edits().edits)
        edits.push_back(
            {{"media_time", e.media_time < 0 ? json() : time_json(time_of(e.media_time, container.track().tick))},
             {"duration", time_json(movie_time(e.duration, container.edits()))},
             {"rate", rounded(e.rate, 6)}});
    return edits;
}

} // namespace

std::string text_of(const container_stream& container)
{
    const std::size_t tracks = container.tracks().size();
    return fmt::format("{}, track {}{} ({}), offsets are those of {}", name_of(container.kind()),
                       container.track().number, tracks > 1 ? fmt::format(" of {}", tracks) : "",
                       track_text(container.track()), container.has_own_offsets() ? "the file" : "packets in the file");
}

std::vector<std::pair<const char*, std::string>> lines_of(const container_stream& container,
                                                          const container_check& times)
{
    std::vector<std::pair<const char*, std::string>> lines;
    for (const container_track& track : container.tracks())
        if (track.number != container.track().number)
            lines.emplace_back("Other track", fmt::format("{} ({})", track.number, track_text(track)));
    if (!container.record().empty())
        lines.emplace_back("Record", record_text(container));
    if (!container.edits().edits.empty())
        lines.emplace_back("Edit list", edits_text(container));
    const container_ratio tick = container.track().tick;
    const std::string keys = times.keys() ? fmt::format(", {} marked as key frames", *times.keys()) : "";
    lines.emplace_back("Packets", fmt::format("{} that pictures begin in{}, shown from {} to {}", times.packets(), keys,
                                              seconds_text(time_of(times.first_pts(), tick)),
                                              seconds_text(time_of(times.last_pts(), tick))));
    return lines;
}

json json_of(const container_stream& container)
{
    json tracks = json::array();
    for (const container_track& track : container.tracks())
        tracks.push_back({{"number", track.number}, {"id", track.id}, {"media", track.media}, {"codec", track.codec}});
    const container_ratio tick = container.track().tick;
    return {{"format", name_of(container.kind())},
            {"track", container.track().number},
            {"tracks", std::move(tracks)},
            {"offsets", container.has_own_offsets() ? "file" : "packet"},
            {"tick", tick.denominator == 0 ? json() : json_fraction(tick.numerator, tick.denominator)},
            {"record", record_json(container)},
            {"edit_list", edits_json(container)},
            {"further_edits", container.edits().further}};
}

void add_totals(json& object, const container_check& times, container_ratio tick)
{
    object["packets"] = times.packets();
    object["key_packets"] = times.keys() ? json(*times.keys()) : json();
    object["first_pts"] = time_json(time_of(times.first_pts(), tick));
    object["last_pts"] = time_json(time_of(times.last_pts(), tick));
}

} // namespace orv_h264
