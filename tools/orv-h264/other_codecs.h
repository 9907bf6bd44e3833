// Streams of other codecs that have the start codes of Annex B too, known by the units of their head.
#pragma once

#include "signatures.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace orv_h264 {

/// How a unit behind a start code begins; zeros where it is shorter.
using unit_head = std::array<unsigned char, 6>;

/// The codec or container that the units make, where they make no H.264.
std::optional<known_format> other_codec(std::span<const unit_head> units);

/// The unit has a type that an H.264 stream has, with a nal_ref_idc that goes with it (H.264 7.4.1).
bool may_be_h264(unsigned char header);

} // namespace orv_h264
