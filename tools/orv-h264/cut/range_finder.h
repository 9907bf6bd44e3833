// Where a cut begins and ends, as numbers of pictures: a run over the stream before the one that writes, for places
// that only later pictures tell (times, which need the output order, and the key picture before a place).
#pragma once

#include "cut/cut_place.h"
#include "picture_rows.h"
#include "stream_input.h"

#include <cstdint>
#include <optional>

namespace orv_h264 {

/// Where the pictures lie that are written.
struct cut_range {
    std::optional<cut_place> from; ///< from the start of the stream on where it is not told; no time
    std::optional<cut_place> to;   ///< the first picture that is not written; up to the end where it is not told
};

class range_finder final : row_sink {
public:
    /// @param asked the places; may be times
    /// @param key the start goes back to the key picture at or before it
    /// @param rate pictures a second: the times are those of the output order at this rate. Without it a container's
    ///     own times count, where it has some, and else those that the stream tells
    range_finder(const cut_range& asked, bool key, std::optional<h264::ratio> rate);

    /// Reads the stream as far as it has to be. Throws refusal where a time is asked for and no picture has one.
    cut_range find(stream_input& input);

    /// With `key`: there is no key picture at or before the start, which stays where it was asked for.
    bool no_key_picture() const noexcept { return found_from && !from_key; }

private:
    void row(picture_row&& row) override;
    void problem(const row_problem& problem) override { static_cast<void>(problem); } // told when it is written
    bool is_done() const { return found_from && (found_to || !places.to); }
    bool is_at(const picture_row& row, const cut_place& place);
    h264::exact_time time_of_row(const picture_row& row) const;

    const cut_range& places;
    bool back_to_key;
    std::optional<h264::ratio> frame_rate;
    std::optional<container_ratio> tick;
    std::optional<std::uint64_t> last_key; // number of the picture
    std::optional<std::uint64_t> found_from;
    std::optional<std::uint64_t> found_to;
    bool from_key = false;
    bool any_time = false;
};

} // namespace orv_h264
