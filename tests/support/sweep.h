// A valid structure, damaged in every small way, through a real parse and a literal one: every bit flipped, every
// length, every element at its limits and beyond, every code malformed, and random bytes.
//
// `Parses` is one of those in literal_parse.h: `parses(object, bits)` runs both. Besides `structure` it may have
//   most_entries            a limit on the entries of arrays that is not 128
//   kept_value(c, element)  the value that a parse stored for an element, where the names do not tell
//   looked_ahead(element)   whether 32 zero bits in place of the code are seen before it is read, and do not throw
//   never_throws            that there are no malformed codes, and no `valid`
#pragma once

#include "support/element_writer.h"
#include "support/guarded_buffer.h"
#include "support/literal_parse.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace support {

template <typename Parses>
concept never_throws = Parses::never_throws;

/// Whether what holds for every parse holds for this one.
inline testing::AssertionResult sound(const compared& c, std::size_t most_entries)
{
    const std::string fault = fault_of(c, most_entries);
    return fault.empty() ? testing::AssertionSuccess() : testing::AssertionFailure() << fault;
}

/// The values an element is set to; of a scaling list's deltas, the first two and the last stand for the others.
inline std::vector<std::int64_t> values_for(const element& e)
{
    if (e.name.find("delta_scale") != std::string::npos && e.entry > 1 && e.entry % 16 != 15)
        return {};
    if (e.how == descriptor::ue)
        return {0,   1,   2,   3,   4,   5,   6,   15,   16,    31,         32,         63,         64,
                126, 127, 128, 129, 254, 255, 256, 1023, 65535, 2147483646, 2147483647, 2147483648, 4294967294};
    if (e.how == descriptor::se)
        return {0,    1,   -1,   2,   -2,   7,   -7,  8,    -8,    9,      -9,         127,        128,
                -127, 128, -128, 129, -129, 247, 248, -256, 65536, -65536, 2147483647, -2147483647};
    const std::int64_t fence = std::int64_t{1} << e.width;
    std::vector<std::int64_t> values;
    for (const std::int64_t value : {std::int64_t{0}, std::int64_t{1}, std::int64_t{16}, std::int64_t{17},
                                     fence / 2 - 1, fence / 2, fence - 2, fence - 1})
        if (value >= 0 && value < fence)
            values.push_back(value);
    return values;
}

/// A valid structure and the damage to it.
template <typename Parses>
class sweep {
public:
    using structure = typename Parses::structure;

    /// `filled` is an object that an earlier parse left.
    sweep(Parses both, element_writer structure_written, structure filled)
        : parses(std::move(both)), writer(std::move(structure_written)), earlier(std::move(filled))
    {
    }

    void whole()
    {
        const compared c = run(writer.made());
        EXPECT_TRUE(is_sound(c));
        EXPECT_TRUE(c.end.result);
        EXPECT_EQ(writer.size_in_bits(), c.end.position);
    }

    void every_bit_flipped()
    {
        for (std::size_t i = 0; i < writer.size_in_bits(); ++i) {
            bytes flipped = writer.made();
            flipped[i / 8] = static_cast<unsigned char>(flipped[i / 8] ^ 0x80U >> i % 8);
            ASSERT_TRUE(is_sound(run(flipped))) << "bit " << i;
        }
    }

    void every_length()
    {
        for (std::size_t length = 0; length < writer.size_in_bits(); ++length)
            ASSERT_TRUE(is_sound(run(first_bits(writer.made(), length)))) << length << " bits";
    }

    void every_element_at_its_limits()
    {
        for (const element& e : writer.elements())
            for (const std::int64_t value : values_for(e)) {
                const compared c = run(with_element(writer, e, value));
                ASSERT_TRUE(is_sound(c)) << e.name << ' ' << e.entry << " set to " << value;
                ASSERT_EQ(value, kept_value(c, e).value_or(value)) << e.name;
            }
    }

    void every_code_malformed()
    {
        for (const element& e : writer.elements()) {
            if (e.how == descriptor::u || looked_ahead(e))
                continue;
            for (int before = 0; before < 3; ++before) {
                const compared c = run(with_malformed_code(writer, e));
                ASSERT_TRUE(is_sound(c)) << e.name;
                ASSERT_TRUE(c.end.threw) << e.name;
                ASSERT_EQ(e.position, c.end.code_start) << e.name;
                ASSERT_EQ(c.before.at("valid"), c.after.at("valid")) << e.name;
            }
        }
    }

    void random_damage(random_source& random, int times)
    {
        for (int i = 0; i < times; ++i) {
            bytes damaged = writer.made();
            for (std::size_t n = 1 + pick(random, 3); n > 0; --n)
                damaged[pick(random, damaged.size())] = static_cast<unsigned char>(random());
            ASSERT_TRUE(is_sound(run(damaged))) << "damage " << i;
        }
    }

    void everything()
    {
        random_source random(1);
        whole();
        every_bit_flipped();
        every_length();
        every_element_at_its_limits();
        if constexpr (!never_throws<Parses>)
            every_code_malformed();
        random_damage(random, 200);
    }

    /// Parses `data` into a new object, one that is filled and valid, and one that is filled and not valid, in turn.
    compared run(const bytes& data)
    {
        const guarded_buffer buffer(data);
        structure object{};
        if (turn != 0)
            object = earlier;
        if constexpr (!never_throws<Parses>)
            object.valid = turn == 1;
        turn = (turn + 1) % 3;
        return parses(object, {buffer.begin(), buffer.end()});
    }

private:
    static testing::AssertionResult is_sound(const compared& c) { return sound(c, most_entries<Parses>()); }

    /// What was stored for the element; nothing for one that is not kept, as a delta is not.
    std::optional<std::int64_t> kept_value(const compared& c, const element& e) const
    {
        if constexpr (requires { parses.kept_value(c, e); })
            return parses.kept_value(c, e);
        if (!c.after.names->contain(e.name))
            return {};
        const value& field = c.after.at(e.name);
        return field.entries.empty() ? field.number : field.entries.at(e.entry);
    }

    bool looked_ahead(const element& e) const
    {
        if constexpr (requires { parses.looked_ahead(e); })
            return parses.looked_ahead(e);
        return false;
    }

    Parses parses;
    element_writer writer;
    structure earlier;
    int turn = 0;
};

/// The object that the real parse makes of a structure.
template <typename Parses, typename Description>
typename Parses::structure object_of(const Parses& parses, const Description& description)
{
    const element_writer writer = written_rbsp(description);
    typename Parses::structure object{};
    EXPECT_TRUE(parses(object, {writer.made().data(), writer.made().data() + writer.made().size()}).end.result);
    return object;
}

/// Random bytes, both dense and full of zeros, parsed one after another into the same object, from every bit of a
/// byte. With `first_bytes` the structure begins with one of these, at the first bit.
template <typename Parses>
void parse_random_bytes(const Parses& parses, const bytes& first_bytes = {})
{
    random_source random(2);
    typename Parses::structure object{};
    for (int i = 0; i < 1500; ++i) {
        bytes data = zero_heavy_up_to(random, 40);
        if (i % 4 != 0)
            for (unsigned char& byte : data)
                byte = static_cast<unsigned char>(random());
        if (!first_bytes.empty() && !data.empty())
            data[0] = first_bytes[pick(random, first_bytes.size())];
        if (i % 50 == 0)
            object = {};
        const guarded_buffer buffer(data);
        const auto first_bit = static_cast<unsigned char>(first_bytes.empty() ? i % 8 : 0);
        const compared c = parses(object, {buffer.begin(), buffer.end(), first_bit});
        ASSERT_TRUE(sound(c, most_entries<Parses>())) << "bytes " << i;
    }
}

} // namespace support
