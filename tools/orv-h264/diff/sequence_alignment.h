// Two sequences of fingerprints laid beside each other: what is the same in both, in order, and what has moved. The
// time is O(n log n) whatever they are.
#pragma once

#include "diff/fingerprint.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace orv_h264 {

struct alignment {
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    /// For each entry of a sequence its partner in the other one, or none.
    std::vector<std::uint32_t> of_a;
    std::vector<std::uint32_t> of_b;
    /// Its partner is the same, but not in the order of the others.
    std::vector<bool> moved_a;
    std::vector<bool> moved_b;
};

/// First what stands once in both, as far as it is in order; between that the entries of a kind by their number; then
/// what is left and is the same, as moved.
/// @param pair_rest what is left between two partners is paired in its order, for entries that have changed
alignment align(const std::vector<fingerprint>& a, const std::vector<fingerprint>& b, bool pair_rest);

} // namespace orv_h264
