// What a stream has lost, as text for a person: bytes that belong to no unit, and units that are not whole.
#pragma once

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <cstdint>
#include <string>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// Why the bytes belong to no unit; `most_bytes` is the limit of the splitter.
std::string describe(const h264::split_gap& gap, std::uint64_t most_bytes);

/// Likewise, with the size.
std::string describe_with_size(const h264::split_gap& gap, std::uint64_t most_bytes);

/// Of a unit that is cut.
std::string describe_cut(const h264::split_unit& unit);

/// Of an input without any unit.
std::string describe_no_unit(bool input_is_empty);

/// Where the framing of the unit begins.
constexpr std::uint64_t begin_of(const h264::split_unit& unit)
{
    return unit.offset - unit.framing_size;
}

} // namespace orv_h264
