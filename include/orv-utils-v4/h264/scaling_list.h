/// @file
/// One scaling list as transmitted, H.264 clause 7.3.2.1.1.1.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>
#include <vector>

namespace brenik {

/// A scaling list as it is sent: scaling_list() of H.264 clause 7.3.2.1.1.1. No default or fall-back list is put in
/// place of one that is not sent.
class ORV_UTILS_V4_EXPORT h264_scaling_list {
public:
    /// The entries in the order of transmission (the scan order), 1 to 255 each: 16 of a 4x4 list, 64 of an 8x8 list.
    std::vector<std::uint8_t> values;
    /// The first delta made nextScale 0: the default list is meant, and every entry holds 8.
    bool useDefaultScalingMatrixFlag = false;
    /// The list's present flag, which the parameter set reads before it parses the list.
    bool present = false;
    /// Set by a successful parse, never cleared.
    bool valid = false;

    /// Reads a list of `size` entries, at most 128. Bits past the end read as deltas of 0.
    /// @return false, with `valid` as it was, when `size` is above 128 (nothing changes) or memory runs out
    /// @throws h2645_common_malformed_code from the bit reader
    bool parse(h2645_common_bitreader& br, unsigned size);
};

} // namespace brenik
