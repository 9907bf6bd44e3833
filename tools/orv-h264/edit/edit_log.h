// What was done to each unit of a stream, in order: a byte a unit. The proof follows it through input and output.
#pragma once

#include "edit/unit_editor.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orv_h264 {

class edit_log {
public:
    /// The next unit of the output, or one of the input that is left out.
    /// @param bytes of a unit that is not the input's: what they hash to is kept
    void add(unit_fate fate, std::span<const unsigned char> bytes)
    {
        fates.push_back(fate);
        if (fate == unit_fate::rewritten || fate == unit_fate::inserted)
            hashes.push_back(hash_of(bytes.data(), bytes.size()));
    }

    std::size_t size() const { return fates.size(); }
    unit_fate at(std::size_t i) const { return fates[i]; }
    /// Of the units that are rewritten or inserted, in order.
    std::uint64_t hash_at(std::size_t i) const { return hashes[i]; }

private:
    std::vector<unit_fate> fates;
    std::vector<std::uint64_t> hashes;
};

} // namespace orv_h264
