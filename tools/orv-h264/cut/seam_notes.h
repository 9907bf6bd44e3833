// What a decoder cannot show at the ends of a cut: pictures that refer to what is gone before it, and pictures that
// would be shown between those of the cut but lie behind it in the stream.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A note with its place in the input.
struct seam_note {
    std::uint64_t offset = 0;
    std::string text;
};

class seam_notes {
public:
    /// No picture is output behind more later ones than this (MaxDpbFrames, clause A.3.1, is 16 at the most).
    static constexpr std::uint64_t most_reordered = 16;

    /// Pictures from this one on are written, the access unit that the cut begins with among them.
    /// @param second_field the first field of the picture is not
    void begin(std::uint64_t picture, std::uint64_t offset, const h264::access_unit& unit, bool second_field);
    /// The stream begins with this picture, and so does what is written: there is no seam.
    void begin_with_stream(std::uint64_t picture);
    /// Pictures from this one on are not.
    /// @param second_field the first field of the picture is
    void end(std::uint64_t picture, std::uint64_t offset, bool second_field);

    /// The next picture of the stream in decoding order, which begins at `offset`.
    void add(const h264::picture& picture, std::uint64_t offset);

    /// No picture from here on says anything about the seams.
    bool is_done() const noexcept { return last && behind > most_reordered; }
    /// In the order of the offsets.
    std::vector<seam_note> notes() const;

private:
    void add_inside(const h264::picture& picture, std::uint64_t offset);
    std::string start_text() const;

    std::optional<std::uint64_t> first;
    std::uint64_t first_offset = 0;
    std::optional<std::uint32_t> recovery_frame_cnt; // of the first one
    bool first_is_second_field = false;
    bool first_of_stream = false;
    std::optional<h264::picture> start; // what is known of the first
    std::uint64_t before_key = 0;       // pictures, the first one too
    std::optional<std::uint64_t> key_offset;
    std::uint64_t leading = 0; // shown before the first one

    std::optional<std::uint64_t> last; // that is not written
    std::uint64_t last_offset = 0;
    bool last_is_second_field = false;
    std::uint64_t behind = 0;                  // pictures
    std::uint64_t missing_between = 0;         // of these, shown before one of the cut
    std::uint64_t sequence = 0;                // of the latest picture of the cut
    std::optional<std::int64_t> highest_count; // in it
};

} // namespace orv_h264
