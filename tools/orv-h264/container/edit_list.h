// The edit list of an MP4 track, ISO/IEC 14496-12 8.6.6: which stretches of its time a player shows. libavformat
// applies it or not, and does not show it.
#pragma once

#include "input_file.h"

#include <cstdint>
#include <vector>

namespace orv_h264 {

struct edit {
    std::uint64_t duration = 0;  ///< in ticks of the movie; 0 is up to the end
    std::int64_t media_time = 0; ///< where it begins, in ticks of the track; -1 of a stretch in which nothing is shown
    double rate = 1;             ///< 0 of a picture that stands still
};

struct edit_list {
    /// The most that are kept.
    static constexpr std::size_t most_edits = 64;

    std::uint32_t movie_ticks = 0; ///< a second
    std::vector<edit> edits;       ///< none where the track has no list
    std::uint64_t further = 0;     ///< beyond the most
};

/// That of the track with this track_ID, in a file that is_seekable(). What is damaged passes for absent.
edit_list read_edit_list(const input_file& file, std::int64_t track_id);

} // namespace orv_h264
