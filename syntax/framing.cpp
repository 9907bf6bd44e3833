// A unit in its framing: with emulation prevention put in, and as it stands.
#include "unit_bytes.h"

#include "bytescan/bytescan.h"
#include "bytescan/passage.h"

#include <orv-utils-v4/h264/nal_writer.h>

#include <cstring>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::size_t start_code = 3;
constexpr unsigned longest_prefix = 4;

bool holds(unsigned prefix_size, std::size_t length)
{
    return prefix_size >= sizeof length || length >> 8 * prefix_size == 0;
}

void put_prefix(unsigned char* out, unsigned prefix_size, std::size_t length)
{
    for (unsigned i = prefix_size; i > 0; --i, length >>= 8)
        out[i - 1] = static_cast<unsigned char>(length & 0xFF);
}

/// Copies bytes up to two zeros and a byte of at most 2, which end a unit. True when there is no such place.
bool copy_without_end(brenik::bytescan::passage bytes)
{
    constexpr unsigned char largest_of_end = 2;
    if (!bytes.runs_into_itself() &&
        brenik::bytescan::native_runs::copy(bytes, {0, largest_of_end}, brenik::bytescan::block_bytes) != 0)
        return false;
    const unsigned char* const end = brenik::bytescan::find_zero_pair(bytes.read, bytes.read_fence, largest_of_end);
    std::memmove(bytes.write, bytes.read, static_cast<std::size_t>(end - bytes.read));
    return end == bytes.read_fence;
}

} // namespace

std::size_t frame(const unsigned char* bytes, std::size_t size, unsigned prefix_size, bool zero_byte,
                  unsigned char* out, std::size_t room) noexcept
{
    if (size == 0 || prefix_size > longest_prefix)
        return 0;
    // Always with a start code, so that zeros at the end are escaped in both framings (7.4.1).
    const unsigned zeros = prefix_size == 4 || (prefix_size == 0 && zero_byte) ? 1 : 0;
    brenik::h264_nal_writer nals(out, out, out + room, brenik::nalfmt_annexb);
    const std::size_t header_size = header_bytes(bytes, size);
    auto* const payload = const_cast<unsigned char*>(bytes + header_size); // it is only read
    const brenik::h264_nal placeholder;
    const std::size_t written = nals.block_encode(payload, size - header_size, placeholder, zeros);
    const std::size_t more_header = header_size - 1;
    if (written == 0 || room - written < more_header)
        return 0;
    // The header has no emulation prevention, whatever its bits: it takes the place of the writer's own byte.
    unsigned char* const header = out + start_code + zeros;
    std::memmove(header + header_size, header + 1, written - start_code - zeros - 1);
    std::memcpy(header, bytes, header_size);
    if (prefix_size == 0)
        return written + more_header;
    const std::size_t length = written + more_header - start_code - zeros;
    if (!holds(prefix_size, length))
        return 0;
    std::memmove(out + prefix_size, header, length);
    put_prefix(out, prefix_size, length);
    return prefix_size + length;
}

std::size_t frame_escaped(const unsigned char* unit, std::size_t size, unsigned prefix_size, bool zero_byte,
                          unsigned char* out, std::size_t room) noexcept
{
    if (size == 0 || unit[size - 1] == 0 || prefix_size > longest_prefix)
        return 0;
    const std::size_t before = prefix_size != 0 ? prefix_size : start_code + (zero_byte ? 1 : 0);
    const bool fits = size <= room && before <= room - size && (prefix_size == 0 || holds(prefix_size, size));
    if (!fits || !copy_without_end({unit, unit + size, out + before, out + room}))
        return 0;
    if (prefix_size != 0)
        put_prefix(out, prefix_size, size);
    else
        std::memcpy(out, zero_byte ? "\0\0\0\1" : "\0\0\1", before);
    return before + size;
}

} // namespace orv_utils_v4::h264
