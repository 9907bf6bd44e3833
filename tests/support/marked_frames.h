// The frames that are used for reference, as a text: "0 3t 1L2 4tbL0 x7" are a frame, the top field of another one, a
// long-term frame with index 2, one whose top field is short-term and whose bottom field is long-term, and a
// non-existing frame with frame_num 7.
#pragma once

#include "support/made_slice.h"
#include "support/small_units.h"

#include <cstdint>
#include <string>

namespace orv_utils_v4::h264 {

inline std::string letters_of(unsigned fields)
{
    return std::string((fields & 1) != 0 ? "t" : "") + ((fields & 2) != 0 ? "b" : "");
}

inline std::string text_of(const reference_frame& f)
{
    std::string text = f.non_existing ? "x" + std::to_string(f.frame_num) : std::to_string(f.number);
    if (f.short_term != 3)
        text += letters_of(f.short_term);
    if (f.long_term != 0)
        text += (f.long_term != 3 ? letters_of(f.long_term) : "") + "L" + std::to_string(f.long_term_frame_idx);
    return text;
}

template <class Frames>
std::string text_of_frames(const Frames& frames)
{
    std::string text;
    for (const reference_frame& f : frames)
        text += (text.empty() ? "" : " ") + text_of(f);
    return text;
}

/// Slices pushed through reference_marking, each of a picture of its own.
class marked_frames {
public:
    explicit marked_frames(std::uint32_t max_num_ref_frames)
    {
        sps.max_num_ref_frames = max_num_ref_frames;
        sps.frame_mbs_only_flag = false;
    }
    marked_frames& add(const made_slice& slice)
    {
        ++number;
        mark(slice, false);
        return *this;
    }
    /// The second field of the frame that came before.
    marked_frames& add_second(const made_slice& slice)
    {
        mark(slice, true);
        return *this;
    }
    marked_frames& add_pair(const made_slice& slice) { return add(top(slice)).add_second(bottom(slice)); }

    std::string text() const { return text_of_frames(marking); }

    seq_parameter_set_data sps = sps_data();
    reference_marking marking;
    marking_result last; ///< of the latest picture

private:
    void mark(const made_slice& slice, bool second_field)
    {
        const marked_picture picture{sps, slice.header, slice.nal_ref_idc, slice.idr(), second_field, number};
        last = marking.before_picture(picture);
        const marking_result after = marking.after_picture(picture);
        last.no_such_picture = after.no_such_picture;
        last.too_many = after.too_many;
    }
    std::uint64_t number = ~std::uint64_t{0};
};

} // namespace orv_utils_v4::h264
