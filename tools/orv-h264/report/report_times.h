// When the rows of a report are decoded and shown, as the stream says and as a container says, in columns of numbers
// that a script can compute with exactly.
#pragma once

#include "json_output.h"
#include "picture_rows.h"
#include "report/number_column.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace orv_h264 {

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

    void add(const picture_row& row);
    void write(json& columns);
    json tick_json() const { return {tick.numerator, tick.denominator}; }
    std::size_t size() const noexcept
    {
        return numbers.size() + keys.size() + decoding.size() + presentation.size() + durations.size();
    }

private:
    container_ratio tick;
    number_column numbers, keys, decoding, presentation, durations;
    // Of the row before that has a packet.
    std::int64_t number = -1;
    std::int64_t dts = 0;
    std::int64_t dts_step = 0;
    std::int64_t pts = 0;
    std::int64_t output_number = 0;
};

} // namespace orv_h264
