// The rows of a stream as a report holds them: what changes from row to row in columns of differences from what is
// expected, what repeats as numbers of entries in lists. page/frames.js reads it back. Some bytes a row.
#pragma once

#include "json_output.h"
#include "picture_rows.h"
#include "report/number_column.h"
#include "report/report_times.h"

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

class report_frames {
public:
    /// Of a stream with more rows none is kept.
    static constexpr std::uint64_t most_rows = 1'000'000;

    /// Rows have packets of a container; to be told before the first one.
    void expect_packets(container_ratio seconds_a_tick) { packets.emplace(seconds_a_tick); }
    void add(const picture_row& row);
    /// Null where they are too many, or too unlike for the room that a page has beside what is `around` them, in bytes.
    json take(std::size_t around);

private:
    bool has_room(std::size_t around) const;
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
