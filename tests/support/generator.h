// The coder that makes structures up: it goes through a text as the writer would and gives each element a value of its
// range, its edges more often than others. What it makes is sound, so that writing and reading it back give the same.
#pragma once

#include "coders/coder.h"
#include "coders/writer.h"

#include <orv-utils-v4/h264_syntax.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orv_utils_v4::h264 {

class generator {
public:
    static constexpr bool changes = true;
    static constexpr bool reads = false;

    explicit generator(std::uint64_t seed) : random(seed) {}

    /// The elements of this name get this value, whatever they are drawn as.
    void force(const std::string& name, std::int64_t value) { forced[name] = value; }
    /// They are drawn no larger than this.
    void cap(const std::string& name, std::int64_t highest) { caps[name] = highest; }
    void free(const std::string& name) { forced.erase(name); }

    /// A number from 0 to `highest`.
    std::uint64_t draw(std::uint64_t highest)
    {
        return std::uniform_int_distribution<std::uint64_t>(0, highest)(random);
    }
    bool coin() { return draw(1) == 1; }

    /// What was made cannot be kept: a list would be too long.
    bool failed() const { return stopped; }
    const std::string& why() const { return reason_of_stop; }
    void start_again() { stopped = false; }

    struct open_structure {
        ~open_structure() {} // so that nobody finds it unused
    };
    open_structure structure(const char*) { return {}; }
    bool going() const { return !stopped; }
    bool byte_aligned() const { return true; }

    template <class X>
    void u(unsigned n, label name, X& x)
    {
        set(name, x, 0, highest_u(n));
    }
    template <class X>
    void u(unsigned, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        set(name, x, lowest, highest);
    }
    template <class X>
    void u_bound(unsigned, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        set_count(name, x, lowest, highest);
    }
    template <class X>
    void u_v(std::uint64_t n, label name, X& x)
    {
        u_v(n, name, x, 0, n == 0 || n > 32 ? 0 : highest_u(static_cast<unsigned>(n)));
    }
    template <class X>
    void u_v(std::uint64_t n, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        stopped = stopped || n > 32;
        if (n != 0 && n <= 32)
            set(name, x, lowest, std::min(highest, highest_u(static_cast<unsigned>(n))));
    }
    template <class X>
    void i(unsigned n, label name, X& x)
    {
        set(name, x, -(std::int64_t{1} << (n - 1)), (std::int64_t{1} << (n - 1)) - 1);
    }
    template <class X>
    void i(unsigned, label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        set(name, x, lowest, highest);
    }
    void u_v_long(std::uint64_t n, label name, std::uint64_t& x)
    {
        stopped = stopped || n > widest_number;
        if (n != 0 && n <= widest_number)
            set(name, x, 0, highest_u(static_cast<unsigned>(n)));
    }
    template <class X>
    void i_v(std::uint64_t n, label name, X& x)
    {
        stopped = stopped || n > 32;
        if (n != 0 && n <= 32)
            i(static_cast<unsigned>(n), name, x);
    }
    void flag(label name, bool& x) { set(name, x, 0, 1); }
    void flag(label name, bool& x, std::int64_t lowest, std::int64_t highest) { set(name, x, lowest, highest); }
    void b(label name, std::uint8_t& x) { set(name, x, 0, 255); }
    void f(unsigned, label, std::uint32_t) {}
    template <class X>
    void ue(label name, X& x, std::int64_t lowest = 0, std::int64_t highest = highest_ue)
    {
        set(name, x, lowest, highest);
    }
    template <class X>
    void ue_bound(label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        set_count(name, x, lowest, highest);
    }
    template <class X>
    void se(label name, X& x, std::int64_t lowest = -highest_se, std::int64_t highest = highest_se)
    {
        set(name, x, lowest, highest);
    }
    template <std::size_t N>
    void u_bytes(label, std::array<std::uint8_t, N>& x)
    {
        std::generate(x.begin(), x.end(), [this] { return static_cast<std::uint8_t>(draw(255)); });
    }
    void st(label, std::string& x)
    {
        x.clear();
        for (std::uint64_t n = draw(5); n > 0; --n)
            x += static_cast<char>(1 + draw(254));
    }

    template <class X, class V>
    void infer(X& x, V value)
    {
        x = static_cast<X>(value);
    }
    template <class T>
    void count(label, std::vector<T>& v, std::uint64_t n)
    {
        stopped = stopped || n > most_entries;
        v.resize(stopped ? 0 : static_cast<std::size_t>(n));
    }
    template <class T, std::size_t N>
    T& entry(label, bounded_list<T, N>& list, std::size_t i)
    {
        stopped = stopped || i >= N;
        list.resize(i + 1);
        return list.back();
    }
    template <class List>
    void entries_end(label, List&, std::uint64_t)
    {
    }
    template <class T>
    T* append(label, std::vector<T>& v)
    {
        v.emplace_back();
        return &v.back();
    }
    template <class T>
    T* append(label name, std::vector<T>& v, std::size_t)
    {
        return append(name, v);
    }
    template <class T, class... Ts>
    T* as(std::variant<Ts...>& v)
    {
        return &v.template emplace<T>();
    }

    void more_rbsp_data(bool& x) { x = coin(); }
    void more_bits(bool& x) { x = coin(); }
    void flags_left(label, std::vector<bool>& v)
    {
        v.clear();
        for (std::uint64_t n = draw(5); n > 0; --n)
            v.push_back(coin());
    }
    bool more_rbsp_data(std::size_t i, std::size_t) { return !stopped && (i == 0 || (i < 4 && coin())); }
    bool more_payload(std::size_t i, std::size_t) { return !stopped && (i == 0 || (i < 4 && coin())); }
    void stop_bit(label) {}
    void end_of_unit() {}
    void run(const char*, unsigned, std::uint64_t& x) { x = draw(3); }
    void bytes_left(const char* name, std::vector<std::uint8_t>& x, std::uint32_t = 0)
    {
        const bool rest_of_payload = std::string_view(name) == "payload_byte" && !forced.contains("payload_byte");
        x.resize(rest_of_payload ? 0 : static_cast<std::size_t>(draw(4)));
        for (std::uint8_t& byte : x)
            byte = static_cast<std::uint8_t>(draw(255));
    }
    void ff_coded(const char* name, std::uint32_t& x)
    {
        const auto known = forced.find(name);
        x = static_cast<std::uint32_t>(known == forced.end() ? draw(210) : static_cast<std::uint64_t>(known->second));
        if (known != forced.end())
            forced.erase(known); // of the outermost message
    }
    template <class Text>
    void payload(std::uint32_t& size, Text text)
    {
        text(*this);
        bit_writer bits;
        outcome refused;
        writer counting(bits, refused);
        text(counting);
        size = static_cast<std::uint32_t>(bits.bytes());
    }
    void fail(reason why, label name, std::int64_t = 0, std::int64_t = 0)
    {
        stopped = true;
        reason_of_stop = std::string(name.name()) + ": " + text_of(why);
    }

private:
    static constexpr std::uint64_t most_entries = 5000;

    template <class X>
    void set(label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        const auto known = forced.find(name.name());
        const auto cap = caps.find(name.name());
        if (cap != caps.end())
            highest = std::min(highest, cap->second);
        if (!stopped && highest < lowest) { // no value is sound
            stopped = true;
            reason_of_stop = name.name();
        }
        x = static_cast<X>(known != forced.end() ? known->second : drawn(lowest, std::max(lowest, highest)));
    }
    /// What bounds a list: few entries as a rule, and now and then all.
    template <class X>
    void set_count(label name, X& x, std::int64_t lowest, std::int64_t highest)
    {
        const std::int64_t few = std::min(highest, lowest + 3);
        set(name, x, lowest, draw(15) == 0 ? highest : few);
    }
    std::int64_t drawn(std::int64_t lowest, std::int64_t highest)
    {
        const auto span = static_cast<std::uint64_t>(highest - lowest);
        switch (draw(7)) {
        case 0:
            return highest;
        case 1:
            return lowest;
        case 2:
            return lowest + static_cast<std::int64_t>(draw(span));
        default:
            return lowest + static_cast<std::int64_t>(draw(std::min<std::uint64_t>(span, 8)));
        }
    }

    std::mt19937_64 random;
    std::map<std::string, std::int64_t> forced;
    std::map<std::string, std::int64_t> caps;
    bool stopped = false;
    std::string reason_of_stop;
};

} // namespace orv_utils_v4::h264
