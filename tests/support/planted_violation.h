// Streams that break rules of `orv-h264 check` on purpose, a table for each family of rules.
#pragma once

#include "support/made_stream.h"

#include <ostream>
#include <span>
#include <string_view>
#include <vector>

namespace support {

/// A stream, and all that is wrong with it.
struct planted_violation {
    std::string_view what;   ///< was planted
    std::string_view broken; ///< as broken_rules() tells it
    std::vector<unsigned char> (*make)();
    orv_utils_v4::h264::framing how = orv_utils_v4::h264::framing::annex_b;
    std::uint64_t most_unit_bytes = orv_utils_v4::h264::unit_splitter::usual_most_bytes;
};

inline std::ostream& operator<<(std::ostream& out, const planted_violation& planted)
{
    return out << planted.what;
}

/// The table of a family of rules, in a file of its own: it puts itself into the list of all.
struct planted_table {
    planted_table(std::string_view of, std::span<const planted_violation> its) noexcept
        : family(of), rows(its), next(first)
    {
        first = this;
    }

    std::string_view family;
    std::span<const planted_violation> rows;
    const planted_table* next;
    static inline const planted_table* first = nullptr;
};

} // namespace support
