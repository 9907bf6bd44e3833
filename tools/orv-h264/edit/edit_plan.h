// What a user asks of `orv-h264 edit`, as it is written on the command line and as it is kept.
#pragma once

#include "edit/sps_wishes.h"

#include <orv-utils-v4/h264_syntax.h>

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// An element that a unit has to have with this value; `unit` stands for its number, as inspect --tsv counts.
struct edit_condition {
    std::string path;
    std::int64_t value = 0;
};

/// --set: the one element of a unit whose path ends so gets the value, wherever the conditions hold.
struct edit_assignment {
    std::string path;
    std::int64_t value = 0;
    std::vector<edit_condition> where;
    std::string text; ///< as the user wrote it
};

/// --delete.
struct unit_deletion {
    std::bitset<32> types;
    std::vector<edit_condition> where;
    std::string text;
};

/// Which pictures, or which one unit.
enum class edit_place { unit, first_picture, idr_picture, picture };

/// --insert and --insert-sei.
struct unit_insertion {
    std::vector<unsigned char> unit; ///< as it stands behind its start code
    edit_place at = edit_place::first_picture;
    std::uint64_t number = 0;   ///< of the unit
    bool behind = false;        ///< it, or the picture; else before it
    bool before_slices = false; ///< of the picture: directly before its first slice, as an SEI message belongs
    std::string text;
};

struct edit_plan {
    std::vector<edit_assignment> sets;
    std::vector<unit_deletion> deletions;
    std::vector<unit_insertion> insertions;
    std::vector<std::uint32_t> removed_payloads; ///< payload types of SEI messages
    sps_wishes sps;
    edit_place sei_at = edit_place::first_picture; ///< of insertions that are before_slices
    bool add_aud = false;
    bool remove_aud = false;
    bool remove_filler = false;
    bool repeat_headers = false;
    bool force = false;

    bool removes_payload(std::uint32_t payload_type) const;
    bool removes_messages() const { return remove_filler || !removed_payloads.empty(); }
    /// Anything is asked for.
    bool any() const;
};

// All of these throw std::invalid_argument, the text for the user.

/// PATH=VALUE, or PATH=VALUE where NAME=VALUE and NAME=VALUE ...
edit_assignment parse_assignment(const std::string& text);

/// TYPES, or TYPES where NAME=VALUE and ...
unit_deletion parse_deletion(const std::string& text);

/// hex:BYTES or file:PATH, then before or after, then unit N, first, idr or picture. Throws std::system_error when
/// the file cannot be read.
unit_insertion parse_insertion(const std::string& text);

/// UUID:TEXT: a unit with one message, before the slices of the first picture.
unit_insertion parse_sei_insertion(const std::string& text);

/// first, idr or picture.
edit_place parse_picture_place(const std::string& text);

/// Payload types by number or name: "5,pic_timing".
std::vector<std::uint32_t> parse_payload_types(const std::string& text);

/// A number in decimal or behind 0x in hexadecimal, perhaps with a sign.
std::int64_t parse_value(std::string_view text);

} // namespace orv_h264
