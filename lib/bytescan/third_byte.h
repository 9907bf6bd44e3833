// Which bytes count behind two zeros.
#pragma once

namespace brenik::bytescan {

/// The third byte of a place that is searched for: `value`, or one that differs from it by at most `slack` when their
/// bits are compared (with `value` 0, any up to `slack`).
struct third_byte {
    unsigned char value;
    unsigned char slack;

    bool holds(unsigned char byte) const noexcept { return (byte ^ value) <= slack; }
};

/// Whether two zeros and such a byte are at `p`.
inline bool is_place(const unsigned char* p, third_byte third) noexcept
{
    return p[0] == 0 && p[1] == 0 && third.holds(p[2]);
}

constexpr third_byte one = {1, 0};       ///< of a start code (H.264 B.1)
constexpr third_byte three = {3, 0};     ///< of an escape
constexpr third_byte at_most_3 = {0, 3}; ///< of what ends a unit, or is an escape, or must become one

} // namespace brenik::bytescan
