// What a report says of a stream as a whole, in bounded memory: stretches of frames and of seconds, each longer the
// longer the stream is, and how many pictures there are of each kind.
#pragma once

#include "bit_rate_meter.h"
#include "json_output.h"
#include "picture_rows.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <tuple>
#include <vector>

namespace orv_h264 {

/// What slices a row has at the most: the kind that needs most of other pictures counts.
enum class row_type : std::uint8_t { i, p, b, none };
row_type type_of(const picture_row& row);

/// Stretches of equal length, of which only the last one may be shorter. When there are too many, two become one.
template <class Stretch>
class stretch_list {
public:
    static constexpr std::size_t most = 4096;

    /// The stretch that has room, and for how many more.
    Stretch& next()
    {
        if (list.empty() || list.back().count == length) {
            if (list.size() == most)
                halve();
            if (list.empty() || list.back().count == length)
                list.emplace_back();
        }
        return list.back();
    }
    std::uint64_t room() { return length - next().count; }

    const std::vector<Stretch>& all() const noexcept { return list; }
    std::uint64_t each() const noexcept { return length; }

private:
    void halve()
    {
        for (std::size_t i = 0; i < most; i += 2) {
            list[i].add(list[i + 1]);
            list[i / 2] = list[i];
        }
        list.resize(most / 2);
        length *= 2;
    }

    std::vector<Stretch> list;
    std::uint64_t length = 1;
};

struct frame_stretch {
    std::uint64_t count = 0;
    std::uint64_t bytes = 0;
    std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
    std::array<std::uint64_t, 4> most = {}; // by row_type
    std::uint64_t keys = 0;

    void add(const frame_stretch& other);
};

struct second_stretch {
    std::uint64_t count = 0;
    double bits = 0;
    double most = 0;

    void add(const second_stretch& other);
};

class report_aggregates {
public:
    void add(const picture_row& row);

    /// The stretches, for a page without rows.
    json stretches() const;
    /// How many pictures of which structure, reference use and type.
    json pictures() const;

private:
    void add_seconds(double bits, std::uint64_t count);

    struct picture_count {
        std::uint64_t pictures = 0;
        std::uint64_t bytes = 0;
    };

    stretch_list<frame_stretch> frames;
    stretch_list<second_stretch> seconds;
    bit_rate_meter rate;
    std::map<std::tuple<row_structure, std::uint8_t, row_type>, picture_count> kinds;
};

} // namespace orv_h264
