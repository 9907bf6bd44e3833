// Two sequences of fingerprints laid beside each other: what is the same in both, in order, and what has moved. The
// time is O(n log n) whatever they are.
#pragma once

#include "diff/fingerprint.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace orv_h264 {

/// An entry of a sequence.
struct aligned_entry {
    fingerprint whole;  ///< equal ones are the same
    fingerprint slices; ///< of those in it, with their headers: the picture is the same
    fingerprint data;   ///< of their data, which tell the picture where headers have changed
    bool any_slice = false;
    bool telling = false; ///< there are enough data for that
};

struct alignment {
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    /// For each entry of a sequence its partner in the other one, or none.
    std::vector<std::uint32_t> of_a;
    std::vector<std::uint32_t> of_b;
    /// Its partner is the same, but not in the order of the others.
    std::vector<bool> moved_a;
    std::vector<bool> moved_b;
};

/// First what is the same: what stands once in both, as far as it is in order, and between that the entries of a kind
/// by their number. Then, between those, what has the same slices, and what the same data, and stands once. What is
/// left and is the same by one of these has moved.
/// @param pair_rest what is left between two partners then is paired in its order, for entries that have changed
alignment align(const std::vector<aligned_entry>& a, const std::vector<aligned_entry>& b, bool pair_rest);

} // namespace orv_h264
