// What a way of delivery asks of a stream beside the standard: a small text file, a requirement a line.
//
//     about Streams for calls: no picture waits for another.   # what the profile is for
//     max_num_reorder_frames  is 0          # an element, by its name, or by structure and name:
//     vui_parameters.time_scale frame_rate              one of 25 30000/1001 slices                  at least 4 warning
//     # a quantity, and how much a breach weighs max_dec_frame_buffering present
#pragma once

#include "check/rule.h"
#include "embedded_file.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orv_h264 {

/// An exact number; the denominator is above 0.
struct fraction {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;
};

/// What is measured of a stream, where a requirement names no element.
enum class quantity : std::uint8_t {
    none,
    width,         ///< of the cropped picture, luma samples
    height,        ///< likewise
    frame_rate,    ///< that the SPS tells, frames a second
    hrd_bit_rate,  ///< of the NAL HRD's first schedule, bits a second
    hrd_buffer,    ///< likewise, bits
    delimiters,    ///< access unit delimiters in an access unit
    slices,        ///< of the primary coded picture, in an access unit
    picture_bytes, ///< of the units of an access unit
    key_distance,  ///< pictures from a key picture (IDR or recovery point) to the next
    key_seconds,   ///< likewise, by their presentation times
    b_pictures,    ///< with B slices, one after the other in output order
};

/// Its name in a profile; "" of none.
std::string_view name_of(quantity what);

enum class relation : std::uint8_t { is, is_not, at_most, at_least, one_of, present };

struct requirement {
    quantity of = quantity::none;
    std::string structure; ///< of the element; "" for any
    std::string element;   ///< where it is of no quantity
    relation how = relation::is;
    std::vector<fraction> values;
    std::string allowed; ///< "at most 41", as the file says it

    /// The rule that it makes. The texts are its own.
    rule what;
    std::string id, clause, title, about, example;

    bool is_met_by(fraction value) const;
};

struct delivery_profile {
    std::string name;
    std::string about;
    std::vector<std::unique_ptr<requirement>> requirements;
};

/// The profile in the text. Throws refusal with `from` and the line where one does not say what it should.
delivery_profile parse_profile(std::string_view name, std::string_view text, const std::string& from);

/// The profile of that name that comes with the tool, or else of that file. Throws refusal and std::system_error.
delivery_profile load_profile(const std::string& name_or_path);

/// Those that come with the tool, as files.
std::span<const embedded_file> shipped_profiles();

} // namespace orv_h264
