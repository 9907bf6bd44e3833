// Which bytes count behind two zeros.
#pragma once

#include <cstddef>

namespace brenik::bytescan {

/// The third byte of a place that is searched for: `value`, or one that differs from it by at most `slack` when their
/// bits are compared (with `value` 0, any up to `slack`).
struct third_byte {
    unsigned char value;
    unsigned char slack;

    bool holds(unsigned char byte) const noexcept { return (byte ^ value) <= slack; }

    /// The largest that it holds.
    unsigned char largest() const noexcept { return value | slack; }
};

/// Whether two zeros and such a byte are at `p`.
inline bool is_place(const unsigned char* p, third_byte third) noexcept
{
    return p[0] == 0 && p[1] == 0 && third.holds(p[2]);
}

/// The first place of the `few` at `p`, with four bytes behind them; where the look ended, behind them, when there is
/// none. As the clauses word it: where units are small and alike, the machine foresees each step.
inline const unsigned char* first_of_few(const unsigned char* p, std::size_t few, third_byte third) noexcept
{
    for (const unsigned char* const behind = p + few; p < behind;) {
        if (p[2] > third.largest())
            p += 3;
        else if (is_place(p, third))
            return p;
        else
            ++p;
    }
    return p;
}

constexpr third_byte one = {1, 0};       ///< of a start code (H.264 B.1)
constexpr third_byte three = {3, 0};     ///< of an escape
constexpr third_byte at_most_3 = {0, 3}; ///< of what ends a unit, or is an escape, or must become one

} // namespace brenik::bytescan
