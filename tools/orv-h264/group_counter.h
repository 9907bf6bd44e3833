// Groups of pictures: where decoding can begin, whether what follows needs what came before, and how far pictures stand
// from their place in output order.
#pragma once

#include "picture_rows.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace orv_h264 {

/// Groups, each from a key picture (an IDR picture or a recovery point) up to the next one.
struct group_totals {
    std::uint64_t closed = 0; ///< all its pictures are output behind the key picture
    std::uint64_t open = 0;   ///< some are output before it: they may need pictures of the group before
    /// The key picture is a recovery point whose recovery_frame_cnt is not 0: pictures are right some frames later.
    std::uint64_t gradual = 0;

    std::uint64_t recovery_points = 0; ///< pictures with the message, IDR pictures too
    std::uint32_t least_recovery_frame_cnt = std::numeric_limits<std::uint32_t>::max();
    std::uint32_t most_recovery_frame_cnt = 0;
};

class group_counter {
public:
    /// The next picture in decoding order.
    void add(const picture_row& row);
    /// The groups, the last one included.
    group_totals totals() const;

private:
    enum class group_kind : std::uint8_t { none, closed, open, gradual };

    group_totals ended;
    group_kind current = group_kind::none;
    std::optional<std::uint64_t> key_output_number;
    bool key_is_idr = false;
};

/// The reorder depth that pictures use: how many come before one in decoding order and follow it in output order.
class reorder_meter {
public:
    /// As far as it is told; no stream that keeps to the standard has more than 16.
    static constexpr std::size_t most_depth = 64;

    /// The next picture in decoding order.
    /// @return how many of those before it follow it in output order; 0 of one whose place there is not known
    std::uint32_t add(const picture_row& row);

private:
    std::uint64_t highest[most_depth] = {}; // output numbers so far, falling
    std::size_t size = 0;
};

} // namespace orv_h264
