// The bytes of a unit on their way to a reader.
#pragma once

#include <orv-utils-v4/h264_syntax/nal_unit.h>

#include <cstddef>

namespace orv_utils_v4::h264 {

/// nalUnitHeaderBytes, clause 7.3.1: 1, 3 or 4, or fewer where the unit has no more. 0 of no bytes.
std::size_t header_bytes(const unsigned char* unit, std::size_t size) noexcept;

/// The first bytes of a unit without emulation prevention.
struct clean_bytes {
    const unsigned char* data = nullptr;
    std::size_t size = 0;
};

/// unescape() where there is something to take out of the first `most` bytes of the unit, into `room`, which is as
/// large; else the bytes where they are.
clean_bytes unescaped(const unsigned char* unit, std::size_t size, std::size_t most, unsigned char* room) noexcept;

} // namespace orv_utils_v4::h264
