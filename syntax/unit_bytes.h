// The bytes of a unit on their way to a reader.
#pragma once

#include <orv-utils-v4/h264_syntax/nal_unit.h>

#include <cstddef>

namespace orv_utils_v4::h264 {

/// nalUnitHeaderBytes, clause 7.3.1: 1, 3 or 4, or fewer where the unit has no more. 0 of no bytes.
std::size_t header_bytes(const unsigned char* unit, std::size_t size) noexcept;

/// A unit and an outcome as nothing has been read into them.
inline void begin_reading(nal_unit& to, outcome& result) noexcept
{
    to.header = nal_unit_header();
    to.rbsp.emplace<std::monostate>();
    result = outcome();
}

} // namespace orv_utils_v4::h264
