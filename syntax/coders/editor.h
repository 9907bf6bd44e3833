// The coder that edits: it goes through a structure as the writer would and gives the elements that a path names
// another value. The elements behind it are those that the new value brings; those that were not there before hold what
// is inferred. A path is the element's name with its indices, and as many of the structures around it as tell it apart:
// "time_scale", "vui_parameters.time_scale", "nal_hrd_parameters..." is not needed.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/bounded_list.h>

#include <array>
#include <cstddef>
#include <new>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orv_utils_v4::h264 {

class editor {
public:
    static constexpr bool changes = true;
    static constexpr bool reads = false;
    /// The most structures in one another; deeper ones are not named.
    static constexpr std::size_t deepest = 16;
    /// The most entries that a list is given.
    static constexpr std::size_t most_entries = std::size_t{1} << 20;

    editor(std::string_view element_path, std::int64_t new_value, outcome& to)
        : path(element_path), value(new_value), out(to)
    {
    }

    auto structure(const char* name)
    {
        if (depth < deepest)
            names[depth] = name;
        ++depth;
        return structure_scope<editor>(*this);
    }
    void close() { --depth; }

    bool going() const noexcept { return !stopped; }
    bool byte_aligned() const noexcept { return true; }
    /// How many elements the path named.
    std::size_t named() const noexcept { return found; }

    template <class X>
    void u(unsigned n, label name, X& x)
    {
        set(name, x, 0, highest_u(n));
    }
    template <class X>
    void u(unsigned n, label name, X& x, std::int64_t, std::int64_t)
    {
        u(n, name, x);
    }
    template <class X>
    void u_bound(unsigned, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        set(name, x, lowest, highest);
        bounded(name, x, lowest, highest);
    }
    template <class X>
    void u_v(std::uint64_t n, label name, X& x)
    {
        if (n != 0)
            set(name, x, 0, highest_u(n > 32 ? 32 : static_cast<unsigned>(n)));
    }
    template <class X>
    void u_v(std::uint64_t n, label name, X& x, std::int64_t, std::int64_t)
    {
        u_v(n, name, x);
    }
    void u_v_long(std::uint64_t n, label name, std::uint64_t& x)
    {
        auto kept = static_cast<std::int64_t>(x);
        if (n != 0)
            set(name, kept, 0, highest_u(static_cast<unsigned>(n > widest_number ? widest_number : n)));
        x = static_cast<std::uint64_t>(kept);
    }
    template <class X>
    void i(unsigned n, label name, X& x)
    {
        const std::int64_t half = std::int64_t{1} << (n - 1);
        set(name, x, -half, half - 1);
    }
    template <class X>
    void i(unsigned n, label name, X& x, std::int64_t, std::int64_t)
    {
        i(n, name, x);
    }
    template <class X>
    void i_v(std::uint64_t n, label name, X& x)
    {
        if (n != 0)
            i(n > 32 ? 32 : static_cast<unsigned>(n), name, x);
    }
    void flag(label name, bool& x) { set(name, x, 0, 1); }
    void flag(label name, bool& x, std::int64_t, std::int64_t) { set(name, x, 0, 1); }
    void b(label name, std::uint8_t& x) { set(name, x, 0, 255); }
    void f(unsigned, label, std::uint32_t) {}
    template <class X>
    void ue(label name, X& x, std::int64_t = 0, std::int64_t = highest_ue)
    {
        set(name, x, 0, highest_ue);
    }
    template <class X>
    void ue_bound(label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        set(name, x, lowest, highest);
        bounded(name, x, lowest, highest);
    }
    template <class X>
    void se(label name, X& x, std::int64_t = -highest_se, std::int64_t = highest_se)
    {
        set(name, x, -highest_se, highest_se);
    }
    template <std::size_t N>
    void u_bytes(label, std::array<std::uint8_t, N>&)
    {
    }
    void st(label, std::string&) {}

    template <class X, class V>
    void infer(X& x, V inferred)
    {
        if (!stopped)
            x = static_cast<X>(inferred);
    }
    template <class T>
    void count(label name, std::vector<T>& v, std::uint64_t n)
    {
        entries_end(name, v, n);
    }
    template <class T, std::size_t N>
    T& entry(label name, bounded_list<T, N>& list, std::size_t i)
    {
        if (i >= N)
            fail(reason::too_large, name, static_cast<std::int64_t>(i) + 1, N);
        else if (i >= list.size())
            list.resize(i + 1);
        return list[i < N ? i : N - 1];
    }
    template <class T, std::size_t N>
    void entries_end(label, bounded_list<T, N>& list, std::uint64_t n)
    {
        list.resize(static_cast<std::size_t>(n));
    }
    template <class T>
    void entries_end(label name, std::vector<T>& v, std::uint64_t n)
    {
        if (v.size() == n || stopped)
            return;
        if (n > most_entries)
            return fail(reason::too_large, name, static_cast<std::int64_t>(n), most_entries);
        try {
            v.resize(static_cast<std::size_t>(n));
        } catch (...) {
            fail(reason::no_memory, name);
        }
    }
    template <class T>
    T* append(label name, std::vector<T>& v, std::size_t i)
    {
        if (i >= v.size())
            entries_end(name, v, i + 1);
        return i < v.size() ? &v[i] : nullptr;
    }
    template <class T, class... Ts>
    T* as(std::variant<Ts...>& v)
    {
        if (T* const held = std::get_if<T>(&v))
            return held;
        return &v.template emplace<T>();
    }

    void more_rbsp_data(bool& x) { set("more_rbsp_data", x, 0, 1); }
    bool more_rbsp_data(std::size_t i, std::size_t size) const { return !stopped && i < size; }
    void stop_bit(label) {}
    void end_of_unit() {}
    void more_bits(bool&) {}
    void flags_left(const char* name, std::vector<bool>& v)
    {
        for (std::size_t i = 0; i < v.size() && going(); ++i) {
            bool x = v[i];
            flag(name, x);
            v[i] = x;
        }
    }
    void run(const char*, unsigned, std::uint64_t&) {}
    void bytes_left(const char* name, std::vector<std::uint8_t>& x, std::uint32_t first_index = 0)
    {
        for (std::size_t i = 0; i < x.size() && going(); ++i)
            b({name, first_index + static_cast<std::uint32_t>(i)}, x[i]);
    }
    bool more_payload(std::size_t i, std::size_t size) const noexcept { return !stopped && i < size; }
    void ff_coded(const char*, std::uint32_t&) {}
    template <class Text>
    void payload(std::uint32_t&, Text text)
    {
        text(*this);
    }

    void fail(reason why, label name, std::int64_t found_value = 0, std::int64_t bound = 0)
    {
        if (!out.failure)
            out.failure = {why, name, 0, found_value, bound};
        stopped = true;
    }

private:
    template <class X>
    [[gnu::noinline]] void set(label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        if (stopped || !matches(name))
            return;
        ++found;
        if (value < lowest || value < static_cast<std::int64_t>(std::numeric_limits<X>::min()))
            return fail(reason::too_small, name, value, lowest);
        if (value > highest || value > static_cast<std::int64_t>(std::numeric_limits<X>::max()))
            return fail(reason::too_large, name, value, highest);
        x = static_cast<X>(value);
    }
    /// What was put into the structure by hand may break its bounds.
    template <class X>
    void bounded(label name, const X& x, std::int64_t lowest, std::int64_t highest)
    {
        if (x > highest)
            fail(reason::too_large, name, x, highest);
        else if (x < lowest)
            fail(reason::too_small, name, x, lowest);
    }
    bool matches(label name) const;

    std::string_view path;
    std::int64_t value;
    outcome& out;
    const char* names[deepest] = {};
    std::size_t depth = 0;
    std::size_t found = 0;
    bool stopped = false;
};

} // namespace orv_utils_v4::h264
