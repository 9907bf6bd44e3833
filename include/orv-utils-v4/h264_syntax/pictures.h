/// @file
/// Pictures of a stream with their order and time. picture_reader takes bytes; pictures takes access units, for a
/// caller who has those.
#pragma once

#include <orv-utils-v4/h264_syntax/output_order.h>
#include <orv-utils-v4/h264_syntax/picture.h>
#include <orv-utils-v4/h264_syntax/reference_marking.h>
#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace orv_utils_v4::h264 {

/// Puts access units in decoding order together to pictures: fields to frames, counts, marking, order and time.
class ORV_UTILS_V4_EXPORT pictures {
public:
    /// Pictures are output as the mode says.
    explicit pictures(output_mode mode = output_mode::bumping);
    ~pictures();
    /// What it has kept goes on in the new one.
    pictures(pictures&&) noexcept;
    /// Likewise.
    pictures& operator=(pictures&&) noexcept;

    /// The next access unit.
    /// @param unit it
    /// @param to who takes the pictures
    /// @param stamp of the caller for it, or null
    void take(const access_unit& unit, picture_sink& to, const timestamp* stamp = nullptr);
    /// The stream has ended: all pictures are output.
    void flush(picture_sink& to);

    /// The frames that are used for reference by now.
    const reference_marking& marking() const noexcept;
    /// Times of the access unit that was taken last, for picture_sink::access_unit_came(). Of a second field its own,
    /// which its picture's leave out: removal and output by its own picture timing (clauses C.1.2 and C.2.2), else its
    /// decoding at a rate; no stamps. Of others those of the picture, as far as they are known then.
    picture_times latest_times() const noexcept;

private:
    struct state;
    std::unique_ptr<state> s;
};

/// What a caller knows of a piece of a stream.
struct piece_facts {
    const timestamp* stamp = nullptr; ///< of the first access unit with its first header byte in the piece; or null
    /// The bytes stay where they are until the access units in them have been handed on (a file in memory): of units
    /// that lie whole in the piece no copy is made.
    bool stays = false;
};

/// Reads a stream that comes in pieces of any size: bytes in, access units and pictures out.
class ORV_UTILS_V4_EXPORT picture_reader {
public:
    /// The most timestamps that wait for their access units; the oldest go.
    static constexpr std::size_t most_stamps = 1024;

    /// For a stream of this framing.
    explicit picture_reader(framing how, output_mode mode = output_mode::bumping);
    ~picture_reader();
    /// What it has kept goes on in the new one.
    picture_reader(picture_reader&&) noexcept;
    /// Likewise.
    picture_reader& operator=(picture_reader&&) noexcept;

    /// The next bytes of the stream.
    /// @param piece the first of them
    /// @param size how many
    /// @param to who takes the pictures
    /// @param facts what else is known of them
    void push(const unsigned char* piece, std::size_t size, picture_sink& to, const piece_facts& facts = {});
    /// The stream has ended.
    void flush(picture_sink& to);

    /// The parameter sets as they stand.
    const parameter_sets& sets() const noexcept;

private:
    struct state;
    std::unique_ptr<state> s;
};

} // namespace orv_utils_v4::h264
