// The scaling lists of a parameter set, each behind its present flag (H.264 7.3.2.1.1 and 7.3.2.2).
#pragma once

#include "syntax_reads.h"

#include <orv-utils-v4/h264/scaling_list.h>

#include <array>
#include <cstddef>

namespace brenik {

constexpr unsigned entries_4x4 = 16;
constexpr unsigned entries_8x8 = 64;

/// Reads the first `count` lists of `size` entries; false when one of those that are present fails.
inline bool parse_scaling_lists(h2645_common_bitreader& br, std::array<h264_scaling_list, 6>& lists, std::size_t count,
                                unsigned size)
{
    for (std::size_t i = 0; i < count; ++i) {
        lists[i].present = u<1>(br);
        if (lists[i].present && !lists[i].parse(br, size))
            return false;
    }
    return true;
}

/// How many 8x8 lists there are: one of intra and one of inter prediction, and in 4:4:4 for each colour component.
constexpr std::size_t scaling_list_8x8_count(std::uint32_t chroma_format_idc) noexcept
{
    return chroma_format_idc == 3 ? 6 : 2;
}

} // namespace brenik
