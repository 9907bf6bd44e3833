#include "check/byte_check.h"

#include <cstring>

#include <fmt/format.h>

namespace orv_h264 {

std::optional<std::size_t> byte_facts::unsound_escape() const
{
    const unsigned char* const fence = bytes.data() + bytes.size();
    const unsigned char* at = bytes.data();
    while (fence - at > 2) {
        at = static_cast<const unsigned char*>(std::memchr(at, 0, static_cast<std::size_t>(fence - at - 2)));
        if (at == nullptr)
            return {};
        const bool unsound = at[1] == 0 && (at[2] < 3 || (at[2] == 3 && fence - at > 3 && at[3] > 3));
        if (unsound)
            return static_cast<std::size_t>(at - bytes.data());
        ++at;
    }
    return {};
}

namespace {

verdict escapes_are_sound(const byte_facts& f)
{
    const std::optional<std::size_t> at = f.unsound_escape();
    if (!at)
        return {};
    const unsigned char* const b = f.bytes.data() + *at;
    const bool escape = b[2] == 3;
    return breach{
        "", fmt::format("00 00 {:02x}{} at byte {} of the unit", b[2], escape ? fmt::format(" {:02x}", b[3]) : "", *at),
        escape ? "00 00 03 before 00, 01, 02 and 03 alone" : "00 00 03 between"};
}

verdict last_byte_is_not_zero(const byte_facts& f)
{
    if (f.bytes.empty() || f.bytes.back() != 0)
        return {};
    return breach{"", "00 as the last byte", "any other, 03 behind cabac_zero_words"};
}

using enum severity;

constexpr rule_over<byte_facts> of_bytes[] = {
    {{"unit-escapes-sound", error, "7.4.1",
      "a unit has no 00 00 00, 00 00 01 and 00 00 02, and 00 00 03 only where it is needed",
      "Readers take the first two for a start code, and the others for damage: bytes were lost or never escaped.",
      "00 00 02 in slice data"},
     escapes_are_sound},
    {{"unit-last-byte", error, "7.4.1", "the last byte of a unit is not zero",
      "In Annex B framing it would count for the zeros between units.", "a sample of MP4 whose unit ends in 00"},
     last_byte_is_not_zero},
};

} // namespace

std::span<const rule_over<byte_facts>> byte_rules()
{
    return of_bytes;
}

void byte_check::unit(const listed_unit& unit, const h264::unit_reading& reading)
{
    const byte_facts facts{{reading.place.bytes, reading.place.size}};
    log.judge(byte_rules(), facts, unit.place.number);
}

} // namespace orv_h264
