// The coder that writes. A value that its element cannot hold is refused, with the element's name; after the first
// refusal nothing is written.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/bit_writer.h>
#include <orv-utils-v4/h264_syntax/bounded_list.h>

#include <array>
#include <cstddef>
#include <string>
#include <variant>
#include <vector>

namespace orv_utils_v4::h264 {

class writer {
public:
    static constexpr bool changes = false;
    static constexpr bool reads = false;

    /// Writes to `bits`; how it went is left in `to`.
    writer(bit_writer& bits, outcome& to) : bw(bits), out(to) {}

    struct open_structure {
        ~open_structure() {} // so that nobody finds it unused
    };
    open_structure structure(const char*) { return {}; }

    bool going() const noexcept { return !stopped; }
    bool byte_aligned() const noexcept { return stopped || bw.bits() % 8 == 0; }

    template <class X>
    void u(unsigned n, label name, X x)
    {
        if (encodable(name, x, 0, highest_u(n)))
            bw.u(n, static_cast<std::uint32_t>(x));
    }
    template <class X>
    void u(unsigned n, label name, X x, std::int64_t, std::int64_t)
    {
        u(n, name, x);
    }
    template <class X>
    void u_bound(unsigned n, label name, X x, std::int64_t lowest, std::int64_t highest)
    {
        if (encodable(name, x, lowest, highest))
            u(n, name, x);
    }
    template <class X>
    void u_v(std::uint64_t n, label name, X x)
    {
        if (n > 32)
            fail(reason::too_large, name, static_cast<std::int64_t>(n), 32);
        else if (n != 0)
            u(static_cast<unsigned>(n), name, x);
    }
    template <class X>
    void u_v(std::uint64_t n, label name, X x, std::int64_t, std::int64_t)
    {
        u_v(n, name, x);
    }
    void u_v_long(std::uint64_t n, label name, std::uint64_t x)
    {
        if (n > widest_number)
            return fail(reason::too_large, name, static_cast<std::int64_t>(n), widest_number);
        const auto bits = static_cast<unsigned>(n);
        if (bits == 0 || !encodable(name, x, 0, highest_u(bits)))
            return;
        bw.u(bits > 32 ? bits - 32 : 0, static_cast<std::uint32_t>(x >> 32));
        bw.u(bits > 32 ? 32 : bits, static_cast<std::uint32_t>(x));
    }
    template <class X>
    void i(unsigned n, label name, X x)
    {
        const std::int64_t half = std::int64_t{1} << (n - 1);
        if (encodable(name, x, -half, half - 1))
            bw.u(n, static_cast<std::uint32_t>(x));
    }
    template <class X>
    void i(unsigned n, label name, X x, std::int64_t, std::int64_t)
    {
        i(n, name, x);
    }
    template <class X>
    void i_v(std::uint64_t n, label name, X x)
    {
        if (n > 32)
            fail(reason::too_large, name, static_cast<std::int64_t>(n), 32);
        else if (n != 0)
            i(static_cast<unsigned>(n), name, x);
    }
    void flag(label name, bool x) { u(1, name, x); }
    void flag(label name, bool x, std::int64_t, std::int64_t) { u(1, name, x); }
    void b(label name, std::uint8_t x) { u(8, name, x); }
    void f(unsigned n, label name, std::uint32_t pattern) { u(n, name, pattern); }
    template <class X>
    void ue(label name, X x, std::int64_t = 0, std::int64_t = highest_ue)
    {
        if (encodable(name, x, 0, highest_ue))
            bw.ue(static_cast<std::uint32_t>(x));
    }
    template <class X>
    void ue_bound(label name, X x, std::int64_t lowest, std::int64_t highest)
    {
        if (encodable(name, x, lowest, highest))
            ue(name, x);
    }
    template <class X>
    void se(label name, X x, std::int64_t = -highest_se, std::int64_t = highest_se)
    {
        if (encodable(name, x, -highest_se, highest_se))
            bw.se(static_cast<std::int32_t>(x));
    }
    template <std::size_t N>
    void u_bytes(label name, const std::array<std::uint8_t, N>& x)
    {
        for (const std::uint8_t byte : x)
            u(8, name, byte);
    }
    void st(label name, const std::string& x)
    {
        if (x.find('\0') != std::string::npos)
            fail(reason::too_small, name, 0, 1);
        for (const char byte : x)
            u(8, name, static_cast<unsigned char>(byte));
        u(8, name, 0);
    }

    template <class X, class V>
    void infer(const X&, V)
    {
    }
    template <class T>
    void count(label name, const std::vector<T>& v, std::uint64_t n)
    {
        entries_end(name, v, n);
    }
    template <class T, std::size_t N>
    const T& entry(label name, const bounded_list<T, N>& list, std::size_t i)
    {
        static constexpr T none{};
        if (i < list.size())
            return list[i];
        fail(reason::wrong_count, name, static_cast<std::int64_t>(list.size()), static_cast<std::int64_t>(i) + 1);
        return none;
    }
    template <class List>
    void entries_end(label name, const List& list, std::uint64_t n)
    {
        if (list.size() != n)
            fail(reason::wrong_count, name, static_cast<std::int64_t>(list.size()), static_cast<std::int64_t>(n));
    }
    template <class T>
    const T* append(label name, const std::vector<T>& v, std::size_t i)
    {
        if (i < v.size())
            return &v[i];
        fail(reason::wrong_count, name, static_cast<std::int64_t>(v.size()), static_cast<std::int64_t>(i) + 1);
        return nullptr;
    }
    template <class T, class... Ts>
    const T* as(const std::variant<Ts...>& v)
    {
        const T* const held = std::get_if<T>(&v);
        if (held == nullptr)
            fail(reason::wrong_kind, "payload");
        return held;
    }

    void more_rbsp_data(const bool&) {}
    bool more_rbsp_data(std::size_t i, std::size_t size) const { return !stopped && i < size; }
    void stop_bit(label name) { f(1, name, 1); }
    void end_of_unit() {}
    void more_bits(const bool&) {}
    void flags_left(const char* name, const std::vector<bool>& v)
    {
        for (std::size_t i = 0; i < v.size() && going(); ++i)
            flag(name, v[i]);
    }
    void run(const char* name, unsigned byte, std::uint64_t x)
    {
        constexpr std::uint64_t longest = 0xFFFFFFFF; // as long as a unit of a stream
        if (x > longest)
            return fail(reason::too_large, name, static_cast<std::int64_t>(x), longest);
        for (std::uint64_t i = 0; i < x && going(); ++i)
            f(8, name, byte);
    }
    void bytes_left(const char* name, const std::vector<std::uint8_t>& x, std::uint32_t first_index = 0)
    {
        for (std::size_t i = 0; i < x.size() && going(); ++i)
            b({name, first_index + static_cast<std::uint32_t>(i)}, x[i]);
    }
    bool more_payload(std::size_t i, std::size_t size) const noexcept { return !stopped && i < size; }

    void ff_coded(const char* last_name, std::uint32_t x)
    {
        for (; x >= 0xFF; x -= 0xFF)
            f(8, "ff_byte", 0xFF);
        u(8, last_name, x);
    }
    /// The size is that of what `text` writes.
    template <class Text>
    void payload(std::uint32_t, Text text)
    {
        if (stopped)
            return;
        bit_writer counted;
        writer counting(counted, out);
        text(counting);
        stopped = counting.stopped;
        if (counted.bytes() > 0xFFFFFFFF)
            return fail(reason::too_large, "payload_size", static_cast<std::int64_t>(counted.bytes()), 0xFFFFFFFF);
        ff_coded("last_payload_size_byte", static_cast<std::uint32_t>(counted.bytes()));
        text(*this);
    }

    void fail(reason why, label name, std::int64_t value = 0, std::int64_t bound = 0)
    {
        if (!out.failure)
            out.failure = {why, name, bw.bits(), value, bound};
        stopped = true;
    }

private:
    template <class X>
    bool encodable(label name, X x, std::int64_t lowest, std::int64_t highest)
    {
        const auto value = static_cast<std::int64_t>(x);
        if (value < lowest)
            fail(reason::too_small, name, value, lowest);
        else if (value > highest)
            fail(reason::too_large, name, value, highest);
        return !stopped;
    }

    bit_writer& bw;
    outcome& out;
    bool stopped = false;
};

} // namespace orv_utils_v4::h264
