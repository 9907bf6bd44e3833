/// @file
/// The order in which pictures are output: the bumping process of H.264 clause C.4.
#pragma once

#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/picture.h>
#include <orv-utils-v4/h264_syntax/reference_marking.h>

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// When a picture is output.
enum class output_mode : std::uint8_t {
    bumping,      ///< as late as a decoder of clause C.4 may that has no more than its picture buffer
    early,        ///< in the same order, as soon as max_num_reorder_frames pictures wait
    when_decoded, ///< at once, in decoding order: `sequence` and `count` tell the order
};

/// The frames that a decoder may hold, 0 to 16: max_dec_frame_buffering, or what is inferred for it (E.2.1).
ORV_UTILS_V4_EXPORT std::uint32_t most_buffered_frames(const seq_parameter_set_data& sps) noexcept;

/// The frames that may come before another one in decoding order and follow it in output order, 0 to 16:
/// max_num_reorder_frames, or what is inferred for it (E.2.1); 0 with pic_order_cnt_type 2 (7.4.2.1.1).
ORV_UTILS_V4_EXPORT std::uint32_t most_reordered_frames(const seq_parameter_set_data& sps) noexcept;

/// Puts decoded pictures into output order. Of each picture begin(), with its first field or its frame, then end().
class ORV_UTILS_V4_EXPORT output_order {
public:
    /// The most pictures that wait.
    static constexpr std::uint32_t most_waiting = reference_marking::most_frames;

    /// As the mode says.
    explicit output_order(output_mode how) noexcept : mode(how) {}

    /// Pictures before an IDR picture, or one with operation 5, are output (C.4.4).
    /// @param discard no_output_of_prior_pics_flag
    /// @param to who takes them
    void end_sequence(bool discard, picture_sink& to);
    /// Pictures are output until there is room for the non-existing frames of a gap in frame_num that the SPS allows
    /// (C.4.2), before begin(). For frames that are lost the clause makes no room.
    /// @param sps active for the picture behind the gap
    /// @param marking behind before_picture() of that picture, before after_picture()
    /// @param to who takes them
    void make_room(const seq_parameter_set_data& sps, const reference_marking& marking, picture_sink& to);
    /// Pictures are output until there is room for the next one (C.4.5.1 and C.4.5.2).
    /// @param next it, as far as it is known
    /// @param sps active for it
    /// @param marking behind its marking process
    /// @param to who takes them
    void begin(const picture& next, const seq_parameter_set_data& sps, const reference_marking& marking,
               picture_sink& to);
    /// A picture without a count begins: it is output when it is complete.
    void begin_alone() noexcept;
    /// The picture that has begun is complete.
    void end(const picture& complete, picture_sink& to);

private:
    friend class picture_slots;
    /// A picture that waits.
    struct waiting_picture {
        std::int64_t count; // the lower one
        std::uint64_t number;
        std::uint8_t slot; // of `slots`
    };

    std::size_t fullness(const reference_marking& marking, std::uint64_t except) const noexcept;
    const waiting_picture* lowest() const noexcept;
    void bump(picture_sink& to);
    void output(picture& picture, picture_sink& to);

    output_mode mode;
    bounded_list<waiting_picture, most_waiting + 1> waiting; // in decoding order
    picture slots[most_waiting + 1];
    std::uint32_t used_slots = 0; // a bit each
    bool at_once = false;         // the picture that has begun is not stored
    std::uint32_t most_reordered = 0;
    std::uint64_t output_count = 0;
};

} // namespace orv_utils_v4::h264
