// The parameter sets in force where a cut begins, as they come into its first access unit: each once, before what
// needs it, and none that the access unit carries itself (H.264 clause 7.4.1.2.1).
#pragma once

#include "cut/layer_choice.h"

#include <orv-utils-v4/h264_syntax/parameter_set_store.h>

#include <vector>

namespace orv_h264 {

struct set_preface {
    /// SPSs, their extensions and subset SPSs: behind the delimiter of the access unit, before everything else.
    std::vector<h264::unit_view> sequence_sets;
    /// PPSs, which may name an SPS of the access unit: behind its own parameter sets.
    std::vector<h264::unit_view> picture_sets;
    /// Of the access unit, how many units stand before the PPSs.
    std::size_t before_picture_sets = 0;
    /// The same of the SPSs.
    std::size_t before_sequence_sets = 0;

    std::size_t count() const { return sequence_sets.size() + picture_sets.size(); }
};

/// What comes into the access unit. The bytes are those of `in_force`.
set_preface make_preface(const h264::parameter_set_store& in_force, const h264::access_unit& first,
                         const layer_choice& layers, const h264::parameter_sets& sets);

} // namespace orv_h264
