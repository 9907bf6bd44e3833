// The picture order counts of a sequence, in their order.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// Keeps the highest counts of a sequence: one that never ends has no end of them.
class count_list {
public:
    /// What the counts of a picture meet with.
    struct meeting {
        std::optional<std::int64_t> shared; ///< another picture has it
        bool parted = false;                ///< they lie between two of another picture, or another's between them
    };

    /// The next picture of the sequence.
    meeting add(const h264::picture& picture);
    /// Another sequence begins.
    void clear() { pictures.clear(); }

private:
    static constexpr std::size_t most = std::size_t{1} << 16;

    bool lies_inside_another(std::int64_t count) const;
    bool any_between(std::int64_t low, std::int64_t high) const;

    std::map<std::int64_t, std::uint64_t> pictures; // their numbers by their counts
};

} // namespace orv_h264
