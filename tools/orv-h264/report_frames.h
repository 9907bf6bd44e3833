// The rows of a stream as a report holds them: what changes from row to row in columns of differences from what is
// expected, what repeats as numbers of entries in lists. page/frames.js reads it back. Some bytes a row.
#pragma once

#include "json_output.h"
#include "number_column.h"
#include "picture_rows.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

/// Texts that come again, each with a number from 1 on; 0 stands for what found no room.
class text_list {
public:
    explicit text_list(std::size_t most) : room(most) {}

    std::uint64_t number_of(const std::string& text);
    /// JSON values in order, null in front of them.
    json values() const;
    std::size_t size() const noexcept { return used; }

private:
    std::size_t room; // bytes
    std::size_t used = 0;
    std::map<std::string, std::uint64_t> numbers;
    std::vector<std::string_view> order;
};

/// Times as whole numbers of parts of a second, so many that both times of a row are whole. Those for which a script
/// has no such numbers are kept apart, rounded.
class time_columns {
public:
    /// The most rows whose times are rounded; those of further ones are not told.
    static constexpr std::size_t most_rounded = 4096;

    void add(const picture_row& row);
    void write(json& columns);
    const json& rounded_times() const noexcept { return rounded; }
    std::size_t size() const noexcept { return scales.size() + decoding.size() + presentation.size(); }

private:
    void use_scale(std::int64_t parts);

    number_column scales;
    number_column decoding;
    number_column presentation;
    std::int64_t scale = 1;
    // Of the row before; 0 behind another scale.
    std::int64_t dts = 0;
    std::int64_t dts_step = 0;
    std::int64_t pts = 0;
    std::int64_t output_number = 0;
    json rounded = json::array(); // [row, decoding time, presentation time], in seconds
};

/// What the packets of a container say, in its ticks.
class packet_columns {
public:
    explicit packet_columns(container_ratio seconds_a_tick) : tick(seconds_a_tick) {}

    void add(const std::optional<logged_packet>& packet);
    void write(json& columns);
    json tick_json() const { return {tick.numerator, tick.denominator}; }
    std::size_t size() const noexcept
    {
        return numbers.size() + keys.size() + dts.size() + pts.size() + durations.size();
    }

private:
    /// Ticks that go on as they did.
    struct tick_column {
        number_column numbers;
        std::int64_t last = 0;
        std::int64_t step = 0;

        void add(std::optional<std::int64_t> ticks);
        std::size_t size() const noexcept { return numbers.size(); }
    };

    container_ratio tick;
    number_column numbers, keys, durations;
    tick_column dts, pts;
    std::int64_t last_number = -1;
};

class report_frames {
public:
    /// Of a stream with more rows none is kept.
    static constexpr std::uint64_t most_rows = 1'000'000;

    /// Rows have packets of a container; to be told before the first one.
    void expect_packets(container_ratio seconds_a_tick) { packets.emplace(seconds_a_tick); }
    void add(const picture_row& row);
    /// Null where they are too many, or too unlike for the room of a page.
    json take();

private:
    bool has_room() const;
    std::uint64_t kind_of(const picture_row& row);

    std::uint64_t count = 0;
    number_column kinds, pictures, output_numbers, offsets, sizes, gaps, paddings, fillers, recovery, frame_nums, pocs;
    time_columns times;
    std::optional<packet_columns> packets;
    // Where the row before ends with its padding, and what it has.
    std::uint64_t next_offset = 0;
    std::int64_t last_output = 0;
    std::int64_t last_poc = 0;
    std::int64_t last_frame_num = 0;
    bool last_is_reference = false;
    text_list unit_lists{std::size_t{192} * 1024};
    text_list layer_lists{std::size_t{64} * 1024};
    text_list kind_list{std::size_t{192} * 1024};
};

} // namespace orv_h264
