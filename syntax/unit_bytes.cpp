#include "unit_bytes.h"

#include "bytescan/bytescan.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <algorithm>

namespace orv_utils_v4::h264 {

std::size_t header_bytes(const unsigned char* unit, std::size_t size) noexcept
{
    nal_unit_header header;
    if (size != 0)
        header.nal_unit_type = unit[0] & 0x1F;
    header.avc_3d_extension_flag = header.nal_unit_type == 21 && size > 1 && (unit[1] & 0x80) != 0;
    return std::min<std::size_t>(header.bytes(), size);
}

std::size_t unescape(const unsigned char* unit, std::size_t size, unsigned char* out, std::size_t room) noexcept
{
    const std::size_t header = std::min(header_bytes(unit, size), room);
    std::copy(unit, unit + header, out);
    brenik::h264_nal_reader payload;
    payload.decode_ptr = const_cast<unsigned char*>(unit + header); // it is only read
    payload.decode_fence = const_cast<unsigned char*>(unit + size);
    const std::size_t decoded = payload.block_decode(out + header, room - header);
    const std::size_t unexamined = payload.decode_ptr == payload.decode_fence ? 0 : std::min<std::size_t>(decoded, 2);
    return header + decoded - unexamined;
}

clean_bytes unescaped(const unsigned char* unit, std::size_t size, std::size_t most, unsigned char* room) noexcept
{
    const std::size_t taken = std::min(size, most);
    const unsigned char* const payload = unit + header_bytes(unit, taken);
    const unsigned char* const fence = unit + taken;
    if (brenik::bytescan::find_zero_pair(payload, fence, 3) == fence)
        return {unit, taken};
    constexpr std::size_t unexamined = 2; // an escape may begin there
    const std::size_t copied = unescape(unit, taken, room, taken);
    return {room, taken == size ? copied : copied - std::min(copied, unexamined)};
}

byte_map::byte_map(const unsigned char* unit, std::size_t size) noexcept
    : start(unit),
      fence(unit + size),
      from(unit + header_bytes(unit, size)),
      to(from),
      at_from(static_cast<std::uint64_t>(from - unit))
{
    find_next_escape();
}

std::size_t byte_map::operator()(std::uint64_t unescaped) noexcept
{
    if (unescaped < at_from && from == start + at_from) // in the header
        return static_cast<std::size_t>(unescaped);
    while (unescaped >= at_from + static_cast<std::uint64_t>(to - from) && to != fence) {
        at_from += static_cast<std::uint64_t>(to - from);
        from = to + (escape_behind ? 1 : 0);
        find_next_escape();
    }
    return static_cast<std::size_t>(from - start) + static_cast<std::size_t>(unescaped - at_from);
}

// Looks no further than a header reaches, as a rule: the bytes up to there lie as they are, and the next question goes
// on.
void byte_map::find_next_escape() noexcept
{
    constexpr std::size_t looked_at = 512;
    constexpr std::size_t pair = 2;
    const bool near_end = brenik::range_size(from, fence) <= looked_at;
    const unsigned char* const end = near_end ? fence : from + looked_at;
    const unsigned char* const place = brenik::bytescan::find_zero_pair(from, end, 3);
    escape_behind = place != end && place[pair] == 3;
    if (place != end)
        to = escape_behind ? place + pair : fence; // at another place the unit ends
    else
        to = near_end ? fence : end - pair;
}

} // namespace orv_utils_v4::h264
