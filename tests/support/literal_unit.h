// NAL units spelled by hand, element by element: name, descriptor and value as the tables of H.264 have them. They are
// put into bits here, by a writer that knows no table, and what the syntax library tells of these bits has to be the
// same list. Nothing of syntax/texts/ has a part in it.
#pragma once

#include "support/bit_writer.h"
#include "support/literal_ranges.h"
#include "support/unit_maker.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace literal {

using namespace orv_utils_v4::h264;

/// A descriptor, clause 7.2, with its number of bits; 0 where the value tells it.
struct descriptor {
    coding how;
    unsigned bits = 0;
};
constexpr descriptor u(unsigned n)
{
    return {coding::u, n};
}
constexpr descriptor u_v(unsigned n)
{
    return {coding::u_v, n};
}
constexpr descriptor i(unsigned n)
{
    return {coding::i, n};
}
constexpr descriptor i_v(unsigned n)
{
    return {coding::i_v, n};
}
constexpr descriptor f(unsigned n)
{
    return {coding::f, n};
}
constexpr descriptor b = {coding::b, 8};
constexpr descriptor ue = {coding::ue, 0};
constexpr descriptor se = {coding::se, 0};
constexpr descriptor st = {coding::st, 0};

/// A line of a table.
struct line {
    std::string name; ///< with its indices: "cbr_flag[1]"
    descriptor how;
    std::int64_t value;
    std::string bytes = {}; ///< of st(v), and of numbers of more than 64 bits, in place of the value
};
using lines = std::vector<line>;

inline std::string at(const std::string& name, std::size_t index)
{
    return name + "[" + std::to_string(index) + "]";
}

template <class... Parts>
lines join(lines first, const Parts&... parts)
{
    (first.insert(first.end(), parts.begin(), parts.end()), ...);
    return first;
}

inline void put(support::bit_writer& to, const line& x)
{
    switch (x.how.how) {
    case coding::ue:
        to.ue(static_cast<std::uint32_t>(x.value));
        return;
    case coding::se:
        to.se(static_cast<std::int32_t>(x.value));
        return;
    case coding::st:
        for (const char c : x.bytes)
            to.u(8, static_cast<unsigned char>(c));
        to.u(8, 0);
        return;
    default:
        for (const char c : x.bytes)
            to.u(8, static_cast<unsigned char>(c));
        if (x.bytes.empty())
            to.u(x.how.bits, static_cast<std::uint64_t>(x.value));
    }
}

inline support::bit_writer in_bits(const lines& unit)
{
    support::bit_writer bits;
    for (const line& x : unit)
        put(bits, x);
    return bits;
}

/// rbsp_trailing_bits() behind the elements.
inline lines with_trailing_bits(lines unit)
{
    unit.push_back({"rbsp_stop_one_bit", f(1), 1});
    for (std::size_t n = in_bits(unit).bits(); n % 8 != 0; ++n)
        unit.push_back({"rbsp_alignment_zero_bit", f(1), 0});
    return unit;
}

inline lines nal_header(unsigned nal_ref_idc, unsigned nal_unit_type)
{
    return {
        {"forbidden_zero_bit", f(1), 0}, {"nal_ref_idc", u(2), nal_ref_idc}, {"nal_unit_type", u(5), nal_unit_type}};
}

/// A unit with its trailing bits.
inline lines unit_of(unsigned nal_unit_type, const lines& rbsp)
{
    return with_trailing_bits(join(nal_header(nal_unit_type == 6 ? 0 : 3, nal_unit_type), rbsp));
}

inline lines ff_coded(const char* last_name, std::size_t number)
{
    lines coded(number / 255, {"ff_byte", f(8), 255});
    coded.push_back({last_name, u(8), static_cast<std::int64_t>(number % 255)});
    return coded;
}

/// A message, clause 7.3.2.3.1, with the alignment bits of its payload.
inline lines sei_message_of(std::uint32_t payload_type, lines payload)
{
    std::size_t bits = in_bits(payload).bits();
    if (bits % 8 != 0) {
        payload.push_back({"bit_equal_to_one", f(1), 1});
        for (++bits; bits % 8 != 0; ++bits)
            payload.push_back({"bit_equal_to_zero", f(1), 0});
    }
    return join(ff_coded("last_payload_type_byte", payload_type), ff_coded("last_payload_size_byte", bits / 8),
                payload);
}

inline lines sei_of(std::uint32_t payload_type, const lines& payload)
{
    return unit_of(6, sei_message_of(payload_type, payload));
}

/// The elements of a nesting message with zero bits up to a byte, and a message behind them.
inline lines with_nested_message(lines nesting)
{
    while (in_bits(nesting).bits() % 8 != 0)
        nesting.push_back({"sei_nesting_zero_bit", f(1), 0});
    return join(nesting, sei_message_of(147, {{"preferred_transfer_characteristics", u(8), 18}}));
}

/// What a trace tells, in the form of the lines above, as text.
class told_lines : public visitor {
public:
    void open(const char*) override {}
    void close() override {}
    void element(const traced_element& e) override
    {
        std::string name = e.name.name();
        for (unsigned n = 0; n < e.name.depth(); ++n)
            name = at(name, e.name.index(n));
        const std::string bytes = e.bytes == nullptr ? "" : std::string(e.bytes, e.bytes + e.size);
        told.push_back(text_of(name, e.how, e.bit, e.bits, e.value, bytes));
        if (!e.inside)
            told.back() += " outside";
        if (e.bytes == nullptr && e.how != coding::f && !varying_ranges().contains(e.name.name())) {
            EXPECT_EQ(range(e.lowest, e.highest), range_of(e)) << name;
        }
    }
    /// What the standard states for it.
    static range range_of(const traced_element& e)
    {
        for (const auto& [narrow, names] : narrow_ranges()) {
            if (names.contains(e.name.name()))
                return narrow;
        }
        const std::int64_t half = std::int64_t{1} << (e.bits - 1);
        switch (e.how) {
        case coding::ue:
            return {0, 0xFFFFFFFE};
        case coding::se:
            return {-0x7FFFFFFF, 0x7FFFFFFF};
        case coding::i:
        case coding::i_v:
            return {-half, half - 1};
        default:
            return {0, half - 1 + half};
        }
    }
    static std::string text_of(const std::string& name, coding how, std::uint64_t bit, std::uint64_t bits,
                               std::int64_t value, const std::string& bytes)
    {
        static constexpr const char* names[] = {"f", "u", "u_v", "i", "i_v", "b", "ue", "se", "st"};
        return name + " " + names[static_cast<int>(how)] + " " + std::to_string(value) + bytes + ", " +
               std::to_string(bits) + " bits at " + std::to_string(bit);
    }

    std::vector<std::string> told;
};

inline std::vector<std::string> texts_of(const lines& unit)
{
    std::vector<std::string> texts;
    std::uint64_t bit = 0;
    for (const line& x : unit) {
        support::bit_writer one;
        put(one, x);
        texts.push_back(told_lines::text_of(x.name, x.how.how, bit, one.bits(), x.value, x.bytes));
        bit += one.bits();
    }
    return texts;
}

/// Holds what is told of the unit, what is read and what is written again against the lines.
/// @param data bytes of a slice behind its header
/// @return the structure, so that a test can ask for its members
inline nal_unit expect_told(const lines& unit, const unit_context& context = {}, const std::string& data = {})
{
    const support::bit_writer bits = in_bits(unit);
    std::vector<unsigned char> all = bits.bytes();
    all.insert(all.end(), data.begin(), data.end());

    nal_unit traced;
    outcome result;
    told_lines listener;
    trace(traced, all.data(), all.size(), context, result, listener);
    EXPECT_FALSE(result.failure) << result.failure.element.name() << ": " << text_of(result.failure.why);
    EXPECT_EQ(result.finding_count, 0U) << result.findings[0].element.name();
    EXPECT_EQ(result.bits, bits.bits());
    const std::vector<std::string> expected = texts_of(unit);
    for (std::size_t n = 0; n < expected.size() && n < listener.told.size(); ++n) {
        EXPECT_EQ(listener.told[n], expected[n]) << "line " << n;
        if (listener.told[n] != expected[n])
            break;
    }
    EXPECT_EQ(listener.told.size(), expected.size());

    nal_unit whole;
    read(whole, all.data(), all.size(), context, result);
    EXPECT_TRUE(whole == traced);
    EXPECT_EQ(written(whole, context), bits.bytes()) << "written again";
    return whole;
}

/// The RBSP that a unit has to hold.
template <class Rbsp>
const Rbsp& rbsp_of(const nal_unit& unit)
{
    static const Rbsp none{};
    const Rbsp* const held = std::get_if<Rbsp>(&unit.rbsp);
    EXPECT_NE(held, nullptr);
    return held == nullptr ? none : *held;
}

/// The payload that the first message of a unit has to hold.
template <class Payload>
const Payload& payload_of(const nal_unit& unit)
{
    static const Payload none{};
    const sei_rbsp& sei = rbsp_of<sei_rbsp>(unit);
    const Payload* const held = sei.sei_messages.empty() ? nullptr : std::get_if<Payload>(&sei.sei_messages[0].payload);
    EXPECT_NE(held, nullptr);
    return held == nullptr ? none : *held;
}

} // namespace literal
