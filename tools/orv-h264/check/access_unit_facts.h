// What rules over access units look at: where each unit stands in its own, and what came before it.
#pragma once

#include "check/rule.h"
#include "check/sent_slice.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace orv_h264 {

/// What is known of a stream in front of an access unit.
struct stream_so_far {
    bool any_picture = false;
    bool sequence_ended = false; ///< by an end of sequence, with no picture behind it yet
    bool stream_ended = false;   ///< by an end of stream, right before
    /// The first slice of the primary coded picture right before; unread where there is none.
    sent_slice first_slice = {};
    std::uint32_t last_macroblock = 0; ///< first_mb_in_slice of the latest slice of that picture
};

/// An access unit as a whole. A breach is one of its first primary slice, or else of its first unit.
struct access_unit_facts {
    const h264::access_unit& of;
    const stream_so_far& before;
    const sent_slice* first_slice; ///< of the primary coded picture, where its header was read; or null
    unsigned planes_begun;         ///< colour planes with a slice from macroblock 0 on: bit 1 << colour_plane_id

    bool has_slices() const;
    /// Its slices differ in one element alone from the picture before, whose last ones they may be.
    const char* one_difference() const;
};

/// A unit in its access unit.
struct ordered_unit_facts {
    const h264::access_unit& of;
    std::size_t at; ///< index of the unit
    const sent_slices& slices;
    const stream_so_far& before;

    const h264::access_unit_part& unit() const { return of.parts[at]; }
    unsigned type() const { return unit().header.nal_unit_type; }
    /// A slice or partition of that role stands before the unit, or behind it.
    bool any_before(h264::unit_role role) const;
    bool any_behind(h264::unit_role role) const;
};

/// A slice in its coded picture, and the first one and the one before it there.
struct picture_slice_facts {
    const h264::access_unit& of;
    const sent_slice& first;
    const sent_slice& before;
    const sent_slice& slice;
    bool begun_before; ///< another slice of the picture begins with the same macroblock

    /// Arbitrary slice order is not allowed: in all profiles but Baseline and Extended (A.2).
    bool in_order() const;
};

std::span<const rule_over<access_unit_facts>> access_unit_rules();
std::span<const rule_over<ordered_unit_facts>> unit_order_rules();
std::span<const rule_over<ordered_unit_facts>> slice_order_rules();
std::span<const rule_over<picture_slice_facts>> picture_slice_rules();

} // namespace orv_h264
