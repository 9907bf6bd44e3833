// What the texts are written over. A coder goes through a structure element by element, in the order of the text, and
// does one thing with them: `reader` reads them out of bits (and tells them, when it is made with a visitor), `writer`
// writes them, `editor` sets those that a path names. All coders have the same members:
//
//   structure(name)                      opens a structure, until what it returns goes
//   u(n, name, x[, low, high])           an element by its descriptor; low and high are the range that the standard
//   u_v(n, …) i(n, …) i_v(n, …) ue(name, x, …) se(…) flag(name, x[, low, high]) b(name, x) st(name, x)   states. A
//   value
//                                        outside is a finding: it is stored
//   u_v_long(n, name, x)                 u(v) of up to 63 bits, kept in 64
//   ue_bound(name, x, low, high) u_bound(n, …)   the same, where more than `high` would run past an array: a failure
//   u_bytes(name, x)                     u(8 * N) of N bytes kept in an array
//   f(n, name, value)                    a fixed pattern
//   infer(x, value)                      what an element that is not sent is inferred as; only where it is not sent
//   count(name, v, n)                    gives a growing list its n entries
//   entry(name, list, i), entries_end(name, list, n)   entries of a bounded list whose number shows on the way
//   append(name, v, i)                   entry i of a growing list whose number shows on the way, or null when there
//   can
//                                        be none; entries_end(name, v, n) behind the last one
//   as<T>(v)                             the alternative of a variant, or null where it is another one
//   flags_left(name, v)                  flags up to the stop bit
//   byte_aligned(), more_rbsp_data(x), more_bits(x), going()
//   fail(why, name, value, bound)        what only the text can know
#pragma once

#include <orv-utils-v4/h264_syntax/element.h>
#include <orv-utils-v4/h264_syntax/outcome.h>

#include <cstdint>
#include <limits>
#include <type_traits>

namespace orv_utils_v4::h264 {

/// The structure as a text takes it: a coder that does not change it gets it const.
template <class Coder, class T>
using in = std::conditional_t<Coder::changes, T, const T>;

/// Ceil( Log2( x ) ), clause 5.7; 0 for x up to 1.
constexpr unsigned Ceil_Log2(std::uint64_t x) noexcept
{
    unsigned bits = 0;
    while (bits < 64 && (std::uint64_t{1} << bits) < x)
        ++bits;
    return bits;
}

constexpr std::int64_t highest_ue = 0xFFFFFFFE;
constexpr std::int64_t highest_se = 0x7FFFFFFF;

/// The greatest number of n bits, n from 1 to 63.
constexpr std::int64_t highest_u(unsigned n) noexcept
{
    return static_cast<std::int64_t>((std::uint64_t{1} << n) - 1);
}

/// The most bits of an element that is told with its value.
constexpr std::uint64_t widest_number = 63;

/// Goes on with the alternative T of a variant; a coder that does not make it refuses another one.
template <class T, class Coder, class Variant, class... Context>
void code_as(Coder& c, Variant& variant, const Context&... context)
{
    if (auto* const x = c.template as<T>(variant))
        code(c, *x, context...);
}

/// Closes a structure when it goes.
template <class Coder>
class structure_scope {
public:
    explicit structure_scope(Coder& of) noexcept : coder(of) {}
    structure_scope(const structure_scope&) = delete;
    structure_scope& operator=(const structure_scope&) = delete;
    ~structure_scope() { coder.close(); }

private:
    Coder& coder;
};

/// A value that an element can have and its member cannot hold.
template <class X>
constexpr bool holds(std::int64_t value) noexcept
{
    return value >= static_cast<std::int64_t>(std::numeric_limits<X>::min()) &&
           value <= static_cast<std::int64_t>(std::numeric_limits<X>::max());
}

} // namespace orv_utils_v4::h264
