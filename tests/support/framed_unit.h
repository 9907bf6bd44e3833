// A unit as it lies in a stream, behind its framing.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <stdexcept>
#include <vector>

namespace orv_utils_v4::h264 {

/// The unit with emulation prevention, without framing.
inline std::vector<unsigned char> escaped_bytes(const std::vector<unsigned char>& unescaped)
{
    constexpr unsigned prefix_size = 4;
    std::vector<unsigned char> framed(2 * unescaped.size() + 40);
    framed.resize(frame(unescaped.data(), unescaped.size(), prefix_size, false, framed.data(), framed.size()));
    if (framed.size() < prefix_size)
        throw std::runtime_error("the unit has no bytes");
    return {framed.begin() + prefix_size, framed.end()};
}

/// Likewise, of what the unit holds.
inline std::vector<unsigned char> bytes_of(const nal_unit& unit, const unit_context& context = {})
{
    std::vector<unsigned char> bytes(std::size_t{64} * 1024);
    bit_writer to(bytes.data(), bytes.size());
    outcome result;
    if (!write(unit, context, to, result))
        throw std::runtime_error(text_of(result.failure.why));
    bytes.resize(static_cast<std::size_t>(to.bytes()));
    return escaped_bytes(bytes);
}

} // namespace orv_utils_v4::h264
