// The texts with the coder that writes.
#include "coders/writer.h"
#include "texts/nal_unit.h"

#include <algorithm>

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

} // namespace orv_utils_v4::h264
