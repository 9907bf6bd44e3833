// The time of the hypothetical reference decoder (H.264 Annex C), exact: whole units of a clock that the clock tick t_c
// and the 90 kHz clock both are multiples of, and bits that follow one another at a bit rate.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <optional>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// Numbers of a broken stream, too: products go to the end of the range instead of beyond it.
__extension__ using wide_number = __int128;

/// a * b, at most 2^126 away from 0.
wide_number product(wide_number a, wide_number b) noexcept;
/// a + b, likewise.
wide_number sum(wide_number a, wide_number b) noexcept;
/// The greatest whole number that is not above a / b, and the least that is not below; b is above 0.
wide_number floor_of(wide_number a, wide_number b) noexcept;
wide_number ceil_of(wide_number a, wide_number b) noexcept;
/// As far as it fits.
std::int64_t narrowed(wide_number a) noexcept;

struct hrd_clock {
    std::int64_t second = 0;    ///< units of the clock, below 2^49
    std::int64_t tick = 0;      ///< likewise of t_c, (C-1)
    std::int64_t of_90_khz = 0; ///< likewise of a tick of 90 kHz

    friend bool operator==(const hrd_clock&, const hrd_clock&) = default;
};

/// Nothing where the VUI does not tell the clock tick.
std::optional<hrd_clock> clock_of(const h264::vui_parameters& vui) noexcept;

/// A moment: units of the clock, and the time that the bits take behind that.
struct hrd_time {
    wide_number units = 0;
    std::int64_t bits = 0;
};

/// Bits of a schedule on its clock.
struct bit_clock {
    hrd_clock clock;
    std::uint64_t bit_rate = 1; ///< BitRate[ SchedSelIdx ]

    /// The time from `from` to `units`, times the bit rate, times clock.second: exact, below 0 where `from` comes
    /// later.
    wide_number between(const hrd_time& from, wide_number units) const noexcept;
    /// The whole bits that come from `from` to `units`.
    std::int64_t bits_between(const hrd_time& from, wide_number units) const noexcept;
    /// Rounded once, for a person.
    double seconds(const hrd_time& time) const noexcept;
};

} // namespace orv_h264
