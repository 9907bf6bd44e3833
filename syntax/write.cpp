// The texts with the coder that writes, and what a written unit is put into.
#include "coders/writer.h"
#include "texts/nal_unit.h"
#include "unit_bytes.h"

#include <orv-utils-v4/h264/nal_writer.h>

#include <algorithm>
#include <cstring>

namespace orv_utils_v4::h264 {

namespace {

bool finish(const bit_writer& to, outcome& result)
{
    result.bits = to.bits();
    if (!result.failure && !to.fits())
        result.failure = {reason::no_room, "nal_unit", to.bits(), 0, static_cast<std::int64_t>(to.bytes())};
    return !result.failure;
}

/// Copies the bits [from, to) of `bytes`.
void copy_bits(const unsigned char* bytes, std::uint64_t from, std::uint64_t to, bit_writer& out)
{
    for (; from % 8 != 0 && from < to; ++from)
        out.u(1, bytes[from / 8] >> (7 - from % 8) & 1U);
    for (; to - from >= 8; from += 8)
        out.u(8, bytes[from / 8]);
    for (; from < to; ++from)
        out.u(1, bytes[from / 8] >> (7 - from % 8) & 1U);
}

/// Behind the last one bit of the bytes that is at or behind `from`; `from` when there is none.
std::uint64_t behind_last_one(const unsigned char* bytes, std::size_t size, std::uint64_t from)
{
    std::uint64_t end = std::uint64_t{8} * size;
    while (end > from && (bytes[(end - 1) / 8] >> (7 - (end - 1) % 8) & 1) == 0)
        end -= end % 8 == 0 && bytes[end / 8 - 1] == 0 && end >= from + 8 ? 8 : 1;
    return end;
}

void put_prefix(unsigned char* out, unsigned prefix_size, std::size_t length)
{
    for (unsigned i = prefix_size; i > 0; --i, length >>= 8)
        out[i - 1] = static_cast<unsigned char>(length & 0xFF);
}

} // namespace

bool write(const nal_unit& unit, const unit_context& context, bit_writer& to, outcome& result) noexcept
{
    result = outcome();
    writer c(to, result);
    code(c, unit, context);
    return finish(to, result);
}

bool write_before_data(const nal_unit& unit, const unit_context& context, const unsigned char* old_bytes,
                       std::size_t old_size, std::uint64_t old_data_bit, bit_writer& to, outcome& result) noexcept
{
    if (!write(unit, context, to, result) && result.failure.why != reason::no_room)
        return false;
    result.failure = {};
    const std::uint64_t data_end = behind_last_one(old_bytes, old_size, old_data_bit);
    copy_bits(old_bytes, std::min(old_data_bit, data_end), data_end, to);
    while (to.bits() % 8 != 0)
        to.u(1, 0);
    const std::size_t zero_bytes = old_size - static_cast<std::size_t>((data_end + 7) / 8);
    for (std::size_t i = 0; i < zero_bytes; ++i) // cabac_zero_words
        to.u(8, 0);
    return finish(to, result);
}

std::size_t frame(const unsigned char* bytes, std::size_t size, unsigned prefix_size, bool zero_byte,
                  unsigned char* out, std::size_t room) noexcept
{
    constexpr std::size_t start_code = 3;
    if (size == 0 || prefix_size > 4)
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
    if (prefix_size < sizeof length && length >> 8 * prefix_size != 0)
        return 0;
    std::memmove(out + prefix_size, header, length);
    put_prefix(out, prefix_size, length);
    return prefix_size + length;
}

} // namespace orv_utils_v4::h264
