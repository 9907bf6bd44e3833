// The coder that reads: over the bits of one unit, header bytes first, emulation-prevention bytes removed. With `told`
// it is the trace too. The first failure is kept; after it nothing is read, and elements keep what they hold. A failure
// inside an SEI payload ends that payload alone.
#pragma once

#include "coders/bit_cursor.h"
#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/bounded_list.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <variant>
#include <vector>

namespace orv_utils_v4::h264 {

/// Tells nobody.
class untold {
public:
    static constexpr bool tells = false;
    void open(const char*) {}
    void close() {}
};

/// Tells a visitor.
class told {
public:
    static constexpr bool tells = true;
    explicit told(visitor& to) : listener(&to) {}
    void open(const char* name) { listener->open(name); }
    void close() { listener->close(); }
    void element(const traced_element& e) { listener->element(e); }

private:
    visitor* listener;
};

template <class Telling>
class reader {
public:
    static constexpr bool changes = true;
    static constexpr bool reads = true;

    /// [data, fence) are the bytes of the unit; how it went is left in `to`. What reaches past them fails with
    /// unit_ends.
    reader(const unsigned char* data, const unsigned char* fence, outcome& to, Telling telling = {})
        : unit(data),
          bits(data, static_cast<std::size_t>(fence - data)),
          limit(8 * static_cast<std::uint64_t>(fence - data)),
          out(to),
          tell(telling)
    {
    }

    auto structure(const char* name)
    {
        tell.open(name);
        return structure_scope<reader>(*this);
    }
    void close() { tell.close(); }

    bool going() const noexcept { return !stopped; }
    std::uint64_t position() const noexcept { return bits.position(); }
    bool byte_aligned() const noexcept { return stopped || position() % 8 == 0; }

    template <class X>
    void u(unsigned n, label name, X& x)
    {
        number(name, coding::u, x, n, 0, highest_u(n));
    }
    template <class X>
    void u(unsigned n, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        number(name, coding::u, x, n, lowest, highest);
    }
    template <class X>
    void u_bound(unsigned n, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        bounded(name, x, lowest, highest, [&](auto& to) { u(n, name, to, lowest, highest); });
    }
    template <class X>
    void u_v(std::uint64_t n, label name, X& x)
    {
        u_v(n, name, x, 0, n == 0 || n > 32 ? 0 : highest_u(static_cast<unsigned>(n)));
    }
    template <class X>
    void u_v(std::uint64_t n, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        if (wide(n, name))
            number(name, coding::u_v, x, static_cast<unsigned>(n), lowest, highest);
    }
    /// u(v) of 0 to 63 bits.
    void u_v_long(std::uint64_t n, label name, std::uint64_t& x)
    {
        if (n > widest_number)
            return fail(reason::too_large, name, static_cast<std::int64_t>(n), widest_number);
        if (n == 0)
            return;
        const auto width = static_cast<unsigned>(n);
        const unsigned low = width > 32 ? 32 : width;
        auto kept_value = static_cast<std::int64_t>(x);
        element(name, coding::u_v, kept_value, 0, highest_u(width), [&](std::int64_t& value) {
            const std::uint64_t high_part = width > low ? bits.take(width - low) : 0;
            value = static_cast<std::int64_t>(high_part << low | bits.take(low));
            return true;
        });
        x = static_cast<std::uint64_t>(kept_value);
    }
    template <class X>
    void i(unsigned n, label name, X& x)
    {
        const std::int64_t half = std::int64_t{1} << (n - 1);
        signed_number(name, coding::i, x, n, -half, half - 1);
    }
    template <class X>
    void i(unsigned n, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        signed_number(name, coding::i, x, n, lowest, highest);
    }
    template <class X>
    void i_v(std::uint64_t n, label name, X& x)
    {
        if (!wide(n, name))
            return;
        const std::int64_t half = std::int64_t{1} << (n - 1);
        signed_number(name, coding::i_v, x, static_cast<unsigned>(n), -half, half - 1);
    }
    void flag(label name, bool& x) { number(name, coding::u, x, 1, 0, 1); }
    void flag(label name, bool& x, std::int64_t lowest, std::int64_t highest)
    {
        number(name, coding::u, x, 1, lowest, highest);
    }
    void b(label name, std::uint8_t& x) { number(name, coding::b, x, 8, 0, 255); }
    void f(unsigned n, label name, std::uint32_t pattern)
    {
        std::uint32_t x = 0;
        number(name, coding::f, x, n, pattern, pattern);
    }
    template <class X>
    void ue(label name, X& x, std::int64_t lowest = 0, std::int64_t highest = highest_ue)
    {
        const bit_cursor::code next = bit_cursor::code_in(bits.peek_inside());
        if (!is_usual<X>(next.number, next.bits, lowest, highest))
            return any_ue(name, x, lowest, highest);
        take_usual(name, x, next.number, next.bits);
    }
    template <class X>
    void ue_bound(label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        bounded(name, x, lowest, highest, [&](auto& to) { ue(name, to, lowest, highest); });
    }
    template <class X>
    void se(label name, X& x, std::int64_t lowest = -highest_se, std::int64_t highest = highest_se)
    {
        const bit_cursor::code next = bit_cursor::code_in(bits.peek_inside());
        const std::int64_t value = mapped(next.number);
        if (!is_usual<X>(value, next.bits, lowest, highest))
            return any_se(name, x, lowest, highest);
        take_usual(name, x, value, next.bits);
    }

    template <std::size_t N>
    void u_bytes(label name, std::array<std::uint8_t, N>& x)
    {
        if (stopped)
            return;
        const std::uint64_t begin = position();
        std::array<std::uint8_t, N> read = {};
        for (std::uint8_t& byte : read)
            byte = static_cast<std::uint8_t>(bits.take(8));
        if (past_end())
            return ends_in(name, begin);
        x = read;
        if constexpr (Telling::tells) {
            traced_element e = {name, coding::u, begin, 8 * N};
            e.bytes = x.data();
            e.size = N;
            tell.element(e);
        }
    }

    /// st(v): bytes up to a null byte, which is read too.
    void st(label name, std::string& x)
    {
        if (stopped)
            return;
        const std::uint64_t begin = position();
        for (;;) {
            const auto byte = static_cast<char>(bits.take(8));
            if (past_end())
                return ends_in(name, begin);
            if (byte == 0)
                break;
            if (!kept([&] { x.push_back(byte); }))
                return fail_at(reason::no_memory, name, begin, 0, 0);
        }
        if constexpr (Telling::tells) {
            traced_element e = {name, coding::st, begin, position() - begin};
            e.bytes = reinterpret_cast<const unsigned char*>(x.data());
            e.size = x.size();
            tell.element(e);
        }
    }

    template <class X, class V>
    void infer(X& x, V value)
    {
        if (!stopped)
            x = static_cast<X>(value);
    }

    template <class T>
    void count(label name, std::vector<T>& v, std::uint64_t n)
    {
        if (stopped)
            return;
        // an entry takes a bit at least
        if (n > bits_left())
            return ends_in(name, position());
        if (!kept([&] { v.resize(static_cast<std::size_t>(n)); }))
            fail_at(reason::no_memory, name, position(), 0, 0);
    }
    template <class T, std::size_t N>
    T& entry(label name, bounded_list<T, N>& list, std::size_t i)
    {
        if (i < N)
            list.resize(i + 1);
        else
            fail(reason::too_large, name, static_cast<std::int64_t>(i) + 1, N);
        return list.back();
    }
    template <class List>
    void entries_end(label, List&, std::size_t)
    {
    }
    template <class T>
    T* append(label name, std::vector<T>& v)
    {
        if (!stopped && kept([&] { v.emplace_back(); }))
            return &v.back();
        fail(reason::no_memory, name);
        return nullptr;
    }
    /// The same, in a loop whose number of entries shows on the way; `i` is the size of the list.
    template <class T>
    T* append(label name, std::vector<T>& v, std::size_t)
    {
        return append(name, v);
    }
    template <class T, class... Ts>
    T* as(std::variant<Ts...>& v)
    {
        if constexpr (std::is_trivially_destructible_v<T>) { // made anew where it stands, as of a slice behind a slice
            if (T* const held = std::get_if<T>(&v))
                return new (held) T();
        }
        return &v.template emplace<T>();
    }

    /// more_rbsp_data(), clause 7.2: there is more than the stop bit and what follows it.
    void more_rbsp_data(bool& x) { x = !stopped && more_data(); }
    /// The loops of `do … while (more_rbsp_data())`: whether there is an entry i. `size` is of the list as it stands.
    bool more_rbsp_data(std::size_t, std::size_t) { return !stopped && more_data(); }

    void stop_bit(label name)
    {
        const bool set = !stopped && bits_left() != 0 && bits.peek() >> 63 == 1;
        out.ending = set ? ending::sound : ending::no_stop_bit;
        f(1, name, 1);
    }
    /// Behind the trailing bits, or behind the header of a unit that has none: nothing, cabac_zero_words, or other
    /// bytes.
    void end_of_unit()
    {
        if (stopped || out.ending == ending::no_stop_bit)
            return;
        if (out.ending == ending::unknown)
            out.ending = ending::sound;
        const unsigned char* const behind = unit + (position() + 7) / 8;
        const unsigned char* const fence = unit + limit / 8;
        if (behind != fence)
            out.ending = std::all_of(behind, fence, [](unsigned char byte) { return byte == 0; })
                             ? ending::cabac_zero_words
                             : ending::bytes_behind;
    }

    /// Whether the unit has bits left, trailing bits included.
    void more_bits(bool& x)
    {
        if (!stopped)
            x = bits_left() != 0;
    }
    /// The loops of `while (more_rbsp_data())` around a flag: all that comes before the stop bit.
    void flags_left(const char* name, std::vector<bool>& v)
    {
        v.clear();
        while (!stopped && more_data()) {
            bool x = false;
            flag(name, x);
            if (!stopped && !kept([&] { v.push_back(x); }))
                fail(reason::no_memory, name);
        }
    }

    /// Whether the next byte of the unit (or payload) is `value`.
    bool next_byte_is(unsigned value) { return !stopped && bits_left() >= 8 && bits.peek() >> 56 == value; }
    /// A run of bytes of one value: `x` counts them.
    void run(const char* name, unsigned byte, std::uint64_t& x)
    {
        for (x = 0; next_byte_is(byte); ++x)
            f(8, name, byte);
    }
    /// The bytes up to the end of the payload.
    void bytes_left(const char* name, std::vector<std::uint8_t>& x, std::uint32_t first_index = 0)
    {
        count(name, x, stopped ? 0 : bits_left() / 8);
        for (std::size_t i = 0; i < x.size() && going(); ++i)
            b({name, first_index + static_cast<std::uint32_t>(i)}, x[i]);
    }
    /// Whether the payload has bytes left; the writer's answer is `size` of the list they go to against `i`.
    bool more_payload(std::size_t, std::size_t) const noexcept { return !stopped && bits_left() >= 8; }

    /// payload_type or payload_size, clause 7.3.2.3.1: bytes FF and a last one.
    void ff_coded(const char* last_name, std::uint32_t& x)
    {
        std::uint64_t sum = 0;
        while (next_byte_is(0xFF)) {
            f(8, "ff_byte", 0xFF);
            sum += 255;
        }
        std::uint8_t last = 0;
        u(8, last_name, last);
        sum += last;
        if (sum > 0xFFFFFFFF)
            return fail(reason::too_large, last_name, static_cast<std::int64_t>(sum), 0xFFFFFFFF);
        x = static_cast<std::uint32_t>(sum);
    }
    /// Size and payload of an SEI message: `text(coder)` reads the payload, which ends where its size says.
    template <class Text>
    void payload(std::uint32_t& size, Text text)
    {
        ff_coded("last_payload_size_byte", size);
        if (stopped)
            return;
        const std::uint64_t unit_limit = limit;
        const bool outer = in_payload;
        const std::uint64_t there = bits_left() / 8;
        const bool short_of = size > there;
        limit = short_of ? limit : position() + std::uint64_t{8} * size;
        in_payload = !short_of;
        text(*this);
        in_payload = outer;
        stopped = false;
        bits.seek(limit);
        limit = unit_limit;
        if (short_of)
            fail(reason::unit_ends, "payload_size", size, static_cast<std::int64_t>(there));
    }

    /// Of the element that was read last, or of one that stands here.
    void fail(reason why, label name, std::int64_t value = 0, std::int64_t bound = 0)
    {
        const bool is_last = latest_name != nullptr && std::strcmp(latest_name, name.name()) == 0;
        fail_at(why, name, is_last ? latest_begin : position(), value, bound);
    }

private:
    template <class X, class Take>
    [[gnu::always_inline]] void element(label name, coding how, X& x, std::int64_t lowest, std::int64_t highest,
                                        Take take)
    {
        if (stopped)
            return;
        const std::uint64_t begin = position();
        std::int64_t value = 0;
        const bool sound = take(value);
        if (past_end())
            return ends_in(name, begin);
        if (!sound)
            return fail_at(reason::malformed_code, name, begin, 0, 0);
        if (!holds<X>(value))
            return beyond(name, begin, value, std::numeric_limits<X>::min(), std::numeric_limits<X>::max());
        x = static_cast<X>(value);
        latest_name = name.name();
        latest_begin = begin;
        const bool inside = value >= lowest && value <= highest;
        if (!inside)
            note(name, begin, value, lowest, highest);
        if constexpr (Telling::tells)
            tell.element({name, how, begin, position() - begin, value, lowest, highest, inside});
    }
    /// Nearly all elements are so: nobody is told of them, they lie before the end, and their value is inside its
    /// range. Those are taken in some thirty instructions that call nothing; the members any_* take all others, from
    /// their first bit on.
    template <class X>
    [[gnu::always_inline]] bool is_usual(std::int64_t value, unsigned n, std::int64_t lowest,
                                         std::int64_t highest) const noexcept
    {
        return !Telling::tells && !stopped && n != 0 && position() + n <= limit && value >= lowest &&
               value <= highest && holds<X>(value);
    }
    template <class X>
    [[gnu::always_inline]] void take_usual(label name, X& x, std::int64_t value, unsigned n) noexcept
    {
        latest_name = name.name();
        latest_begin = position();
        bits.seek(latest_begin + n);
        x = static_cast<X>(value); // at last: of a byte the compiler believes that it may be part of this object
    }
    template <class X>
    [[gnu::noinline]] void any_ue(label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        element(name, coding::ue, x, lowest, highest, [this](std::int64_t& value) {
            std::uint32_t code = 0;
            const bool sound = bits.take_code(code);
            value = code;
            return sound;
        });
    }
    template <class X>
    [[gnu::noinline]] void any_se(label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        element(name, coding::se, x, lowest, highest, [this](std::int64_t& value) {
            std::uint32_t code = 0;
            const bool sound = bits.take_code(code);
            value = mapped(code);
            return sound;
        });
    }
    template <class X>
    [[gnu::noinline]] void any_number(label name, coding how, X& x, unsigned n, std::int64_t lowest,
                                      std::int64_t highest)
    {
        element(name, how, x, lowest, highest, [this, n](std::int64_t& value) {
            value = static_cast<std::int64_t>(bits.take(n));
            return true;
        });
    }
    template <class X>
    [[gnu::always_inline]] void number(label name, coding how, X& x, unsigned n, std::int64_t lowest,
                                       std::int64_t highest)
    {
        const auto value = static_cast<std::int64_t>(bits.peek_inside() >> (64 - n));
        if (!is_usual<X>(value, n, lowest, highest))
            return any_number(name, how, x, n, lowest, highest);
        take_usual(name, x, value, n);
    }
    /// The value of se(v), clause 9.1.1.
    static std::int64_t mapped(std::uint32_t code) noexcept
    {
        return code % 2 == 0 ? -static_cast<std::int64_t>(code / 2) : static_cast<std::int64_t>(code / 2) + 1;
    }
    template <class X>
    void signed_number(label name, coding how, X& x, unsigned n, std::int64_t lowest, std::int64_t highest)
    {
        element(name, how, x, lowest, highest, [this, n](std::int64_t& value) {
            value = static_cast<std::int64_t>(bits.take(n));
            if (value >> (n - 1) != 0)
                value -= std::int64_t{1} << n;
            return true;
        });
    }
    /// Reads into a temporary, which goes to `x` when it lies within the bounds.
    template <class X, class Read>
    void bounded(label name, X& x, std::int64_t lowest, std::int64_t highest, Read read)
    {
        if (stopped)
            return;
        const std::uint64_t begin = position();
        std::uint32_t value = 0;
        const std::size_t findings = out.finding_count;
        read(value);
        if (stopped)
            return;
        if (value > highest || value < lowest) {
            if (out.finding_count != findings) {
                --out.finding_count;
                if (out.findings.size() > out.finding_count)
                    out.findings.resize(out.finding_count);
            }
            return beyond(name, begin, value, lowest, highest);
        }
        x = static_cast<X>(value);
    }
    bool wide(std::uint64_t n, label name)
    {
        if (n > 32)
            fail(reason::too_large, name, static_cast<std::int64_t>(n), 32);
        return n != 0 && n <= 32;
    }

    bool past_end() const noexcept { return position() > limit; }
    std::uint64_t bits_left() const noexcept { return position() < limit ? limit - position() : 0; }
    bool more_data()
    {
        if (last_one == unknown_bit)
            find_last_one();
        return position() < last_one;
    }
    void find_last_one()
    {
        std::uint64_t end = limit / 8;
        while (end != 0 && unit[end - 1] == 0)
            --end;
        last_one = end == 0 ? 0 : 8 * end - 1 - static_cast<unsigned>(__builtin_ctz(unit[end - 1]));
    }

    template <class Do>
    static bool kept(Do action)
    {
        try {
            action();
            return true;
        } catch (...) { // bad_alloc or length_error
            return false;
        }
    }

    [[gnu::cold, gnu::noinline]] void note(label name, std::uint64_t begin, std::int64_t value, std::int64_t lowest,
                                           std::int64_t highest)
    {
        ++out.finding_count;
        if (out.findings.size() < outcome::most_findings) {
            out.findings.grow();
            out.findings.back() = {name, begin, value, lowest, highest};
        }
    }
    [[gnu::cold, gnu::noinline]] void ends_in(label name, std::uint64_t begin)
    {
        fail_at(in_payload ? reason::payload_ends : reason::unit_ends, name, begin, 0, 0);
    }
    [[gnu::cold, gnu::noinline]] void beyond(label name, std::uint64_t begin, std::int64_t value, std::int64_t lowest,
                                             std::int64_t highest)
    {
        fail_at(value > highest ? reason::too_large : reason::too_small, name, begin, value,
                value > highest ? highest : lowest);
    }
    [[gnu::cold, gnu::noinline]] void fail_at(reason why, label name, std::uint64_t begin, std::int64_t value,
                                              std::int64_t bound)
    {
        if (!out.failure)
            out.failure = {why, name, begin, value, bound};
        stopped = true;
    }

    static constexpr std::uint64_t unknown_bit = ~std::uint64_t{0};

    const unsigned char* unit;
    bit_cursor bits;
    std::uint64_t limit; // the bit where the unit ends, or the payload
    outcome& out;
    Telling tell;
    std::uint64_t last_one = unknown_bit; // the bit number of the stop bit
    const char* latest_name = nullptr;    // of the element that was read last
    std::uint64_t latest_begin = 0;       // and its first bit
    bool stopped = false;
    bool in_payload = false;
};

} // namespace orv_utils_v4::h264
