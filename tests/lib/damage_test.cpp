// Every structure of both interfaces, damaged in every small way, through the real parse and the literal one. What is
// read can only be read, and ends at an unmapped page.
#include "support/damage.h"
#include "support/read_only_input.h"
#include "support/subject.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::compared;
using support::element;
using support::object_state;
using support::object_states;
using support::subject;

/// Tests of one group of structures.
class Damage : public testing::TestWithParam<support::subject_group> {
protected:
    /// Calls `use(subject)` for one after another, until something does not hold.
    template <typename Use>
    void each_subject(Use use) const
    {
        for (const subject& what : GetParam().make()) {
            SCOPED_TRACE(what.name);
            use(what);
            if (HasFailure())
                return;
        }
    }

    support::bit_range put(const bytes& data, unsigned char first_bit = 0)
    {
        const unsigned char* const start = memory.put(data);
        return {start, memory.end(), first_bit};
    }

    /// Whether what holds for every parse holds for this one, of each object.
    testing::AssertionResult sound(const subject& what, const bytes& data)
    {
        std::string fault;
        for (const object_state state : object_states)
            fault += what.check(put(data), state);
        return result_of(fault);
    }

    static testing::AssertionResult result_of(const std::string& fault)
    {
        return fault.empty() ? testing::AssertionSuccess() : testing::AssertionFailure() << fault;
    }

    void parse_random_bytes(const subject& what, const bytes& first_bytes);

private:
    support::read_only_input memory;
};

/// Random bytes, both dense and full of zeros, parsed one after another into the same object, from every bit of a
/// byte. With `first_bytes` the structure begins with one of these, at the first bit.
void Damage::parse_random_bytes(const subject& what, const bytes& first_bytes)
{
    support::random_source random(2);
    for (int i = 0; i < 1500; ++i) {
        bytes data = support::zero_heavy_up_to(random, 40);
        if (i % 4 != 0)
            for (unsigned char& byte : data)
                byte = static_cast<unsigned char>(random());
        if (!first_bytes.empty() && !data.empty())
            data[0] = first_bytes[support::pick(random, first_bytes.size())];
        const auto first_bit = static_cast<unsigned char>(first_bytes.empty() ? i % 8 : 0);
        const object_state state = i % 50 == 0 ? object_state::fresh : object_state::as_left;
        ASSERT_TRUE(result_of(what.check(put(data, first_bit), state))) << "bytes " << i;
    }
}

} // namespace

TEST_P(Damage, NoneAndTheWholeIsRead)
{
    each_subject([&](const subject& what) {
        ASSERT_TRUE(sound(what, what.valid.made()));
        for (const object_state state : object_states) {
            const compared c = what.parse(put(what.valid.made()), state);
            EXPECT_TRUE(c.end.result || !what.end);
            EXPECT_EQ(what.end.value_or(c.end.position), c.end.position);
        }
    });
}

TEST_P(Damage, EveryLengthIsReadAsTheModelReadsIt)
{
    each_subject([&](const subject& what) {
        for (std::size_t length = 0; length < what.valid.size_in_bits(); ++length)
            ASSERT_TRUE(sound(what, support::first_bits(what.valid.made(), length))) << length << " bits";
    });
}

TEST_P(Damage, EveryFlippedBitIsReadAsTheModelReadsIt)
{
    each_subject([&](const subject& what) {
        for (std::size_t i = 0; i < what.valid.size_in_bits(); ++i)
            ASSERT_TRUE(sound(what, support::with_flipped_bit(what.valid.made(), i))) << "bit " << i;
    });
}

TEST_P(Damage, EveryElementAtItsLimitsIsKept)
{
    each_subject([&](const subject& what) {
        std::size_t turn = 0;
        each_limit(what.valid, [&](const bytes& data, const element& e, std::int64_t value) {
            if (HasFatalFailure())
                return;
            const object_state state = object_states[turn++ % std::size(object_states)];
            const compared c = what.parse(put(data), state);
            ASSERT_EQ("", fault_of(c, what.most_entries)) << e.name << ' ' << e.entry << " set to " << value;
            const std::int64_t kept = what.end ? what.kept_value(c, e).value_or(value) : value;
            ASSERT_EQ(value, kept) << e.name;
        });
    });
}

TEST_P(Damage, EveryMalformedCodeThrowsAndValidKeepsItsValue)
{
    each_subject([&](const subject& what) {
        each_malformed_code(what.valid, [&](const bytes& data, const element& e) {
            ASSERT_TRUE(HasFatalFailure() || sound(what, data)) << e.name;
            for (const object_state state : object_states) {
                if (what.legacy || !what.end || HasFatalFailure())
                    return;
                const compared c = what.parse(put(data), state);
                const bool throws = !what.looked_ahead(e);
                ASSERT_EQ(throws, c.end.threw) << e.name;
                ASSERT_EQ(e.position, throws ? c.end.code_start : c.end.position) << e.name;
                ASSERT_EQ(throws ? c.before.at("valid").number : 0, c.after.at("valid").number) << e.name;
            }
        });
    });
}

TEST_P(Damage, RandomBytesAreReadAsTheModelReadsThem)
{
    each_subject([&](const subject& what) {
        support::random_source random(1);
        for (int i = 0; i < 200; ++i)
            ASSERT_TRUE(sound(what, support::with_random_bytes(what.valid.made(), random))) << "damage " << i;
        ASSERT_NO_FATAL_FAILURE(parse_random_bytes(what, {}));
        if (!what.first_bytes.empty())
            parse_random_bytes(what, what.first_bytes);
    });
}

TEST_P(Damage, EveryFailedAllocationLeavesWhatTheModelLeaves)
{
    std::size_t failures = 0;
    each_subject([&](const subject& what) {
        for (int i = 0; i < (what.grows ? 2 : 4); ++i) {
            support::parse_without_memory parse;
            for (std::size_t k = 0; k == 0 || parse.failed; ++k) {
                parse = check_without_memory(what, put(what.valid.made()), support::memory_states[i], k);
                ASSERT_EQ("", parse.fault) << "allocation " << k;
                failures += parse.failed ? 1 : 0;
            }
        }
    });
    const std::string group = GetParam().name;
    EXPECT_EQ(group.starts_with("legacy") || group == "recovery_point", failures == 0);
}

INSTANTIATE_TEST_SUITE_P(Of, Damage, testing::ValuesIn(support::subject_groups()),
                         [](const auto& group) { return group.param.name; });
