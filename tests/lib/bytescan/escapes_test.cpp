// Emulation-prevention bytes dropped and inserted block by block, against a look at every byte, with each kind of block
// and whatever lies at the ends.
#include "bytescan/escapes.h"

#include "support/all_runs.h"
#include "support/guarded_buffer.h"
#include "support/literal_escapes.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

namespace {

using brenik::bytescan::milestone;
using brenik::bytescan::passage;
using support::bytes;
using support::escapes_dropped;
using support::escapes_inserted;
using support::guarded_buffer;
using support::passed;
using support::random_source;

std::size_t offset(const guarded_buffer& buffer, const unsigned char* p)
{
    return static_cast<std::size_t>(p - buffer.begin());
}

passage all_of(const guarded_buffer& from, const guarded_buffer& to)
{
    return {from.begin(), from.end(), to.begin(), to.end()};
}

/// With the first few bytes taken one by one, or all in blocks.
template <typename Runs>
void expect_dropped(const bytes& data, std::size_t room, bool few_first)
{
    const guarded_buffer from(data);
    const guarded_buffer to(room);
    passage at = all_of(from, to);
    milestone behind_escape = {at.read, at.write};
    const bool met_end =
        (few_first && brenik::bytescan::take_first_few(at)) || brenik::bytescan::drop_escapes<Runs>(at, behind_escape);
    const passed expected = escapes_dropped(data, offset(from, at.read));
    ASSERT_EQ(expected.read, offset(from, at.read));
    ASSERT_EQ(expected.written, bytes(to.begin(), at.write));
    ASSERT_TRUE(guarded_buffer::untouched(at.write, to.end())) << "bytes behind the last were written";
    ASSERT_EQ(expected.behind_escape_read, offset(from, behind_escape.read));
    ASSERT_EQ(expected.behind_escape_written, offset(to, behind_escape.write));
    ASSERT_EQ(met_end, support::ends_unit(data, expected.read) && met_end);
    ASSERT_TRUE(met_end || from.size() - expected.read < 132 || room - expected.written.size() < 66);
}

template <typename Runs>
void expect_dropped(const bytes& data, std::size_t room)
{
    expect_dropped<Runs>(data, room, false);
    expect_dropped<Runs>(data, room, true);
}

template <typename Runs>
void expect_inserted(const bytes& data, std::size_t room)
{
    const guarded_buffer from(data);
    const guarded_buffer to(room);
    passage at = all_of(from, to);
    brenik::bytescan::insert_escapes<Runs>(at);
    const passed expected = escapes_inserted(data, offset(from, at.read));
    ASSERT_EQ(expected.read, offset(from, at.read));
    ASSERT_EQ(expected.written, bytes(to.begin(), at.write));
    ASSERT_TRUE(guarded_buffer::untouched(at.write, to.end())) << "bytes behind the last were written";
    ASSERT_TRUE(from.size() - expected.read < 132 || room - expected.written.size() < 97);
}

template <typename Runs>
class Escapes : public testing::Test {
protected:
    void SetUp() override
    {
        if (!support::can_run<Runs>())
            GTEST_SKIP() << "this machine has no such vectors";
    }
};

TYPED_TEST_SUITE(Escapes, support::all_runs<testing::Types>);

/// `unit` again and again behind `before` other bytes.
bytes repeated(const bytes& unit, std::size_t before, std::size_t size)
{
    bytes data(before, 0x55);
    while (data.size() < size)
        data.push_back(unit[(data.size() - before) % unit.size()]);
    return data;
}

} // namespace

TYPED_TEST(Escapes, RowsOfAllKindsAtEveryPlaceOfABlock)
{
    const bytes units[] = {{0, 0, 3}, {0},       {0, 0, 3, 1},       {0, 0, 4},    {0, 0, 3, 0}, {0, 0, 1},
                           {0, 1, 4}, {3, 0, 0}, {0, 0, 3, 0, 0, 2}, {0, 0, 0, 1}, {9}};
    for (const bytes& unit : units)
        for (std::size_t before = 0; before < 70; ++before) {
            expect_dropped<TypeParam>(repeated(unit, before, 600), 1000);
            expect_inserted<TypeParam>(repeated(unit, before, 600), 1000);
            if (this->HasFatalFailure())
                FAIL() << testing::PrintToString(unit) << " behind " << before;
        }
}

TYPED_TEST(Escapes, ARowOfEscapesThatEndsAnywhere)
{
    for (std::size_t length = 60; length < 220; ++length)
        for (const int end : {0, 1, 2, 3, 4, 255}) {
            bytes data = repeated({0, 0, 3}, 0, length);
            data.push_back(static_cast<unsigned char>(end));
            data.resize(500, 0x77);
            expect_dropped<TypeParam>(data, 1000);
            expect_inserted<TypeParam>(data, 1000);
            if (this->HasFatalFailure())
                FAIL() << length << ", " << end;
        }
}

TYPED_TEST(Escapes, AnyInputAndAnyRoom)
{
    random_source random(31);
    for (int round = 0; round < 3000; ++round) {
        const bytes data = support::zero_heavy_up_to(random, 700);
        const std::size_t room = support::pick(random, 900);
        expect_dropped<TypeParam>(data, room);
        expect_inserted<TypeParam>(data, room);
        if (this->HasFatalFailure())
            FAIL() << data.size() << " into " << room;
    }
}

TYPED_TEST(Escapes, EscapesWithoutEnd)
{
    random_source random(32);
    for (int round = 0; round < 2000; ++round) {
        bytes data;
        while (data.size() < 600) {
            data.insert(data.end(), support::pick(random, 9), 0x44);
            data.insert(data.end(), {0, 0, 3});
        }
        expect_dropped<TypeParam>(data, 1000);
        if (this->HasFatalFailure())
            FAIL();
    }
}

TYPED_TEST(Escapes, AreDroppedInPlace)
{
    random_source random(33);
    for (int round = 0; round < 1000; ++round) {
        const bytes data = support::zero_heavy_up_to(random, 700);
        const guarded_buffer buffer(data);
        passage at = all_of(buffer, buffer);
        milestone behind_escape = {at.read, at.write};
        brenik::bytescan::drop_escapes<TypeParam>(at, behind_escape);
        const passed expected = escapes_dropped(data, offset(buffer, at.read));
        ASSERT_EQ(expected.written, bytes(buffer.begin(), at.write));
        ASSERT_EQ(bytes(data.begin() + static_cast<std::ptrdiff_t>(expected.read), data.end()),
                  bytes(buffer.begin() + expected.read, buffer.end()));
    }
}

TYPED_TEST(Escapes, BlocksWithoutAnyAreCopiedInPlaceBehindOneThatWas)
{
    for (std::size_t escapes = 1; escapes <= 70; ++escapes) {
        bytes data = repeated({0, 0, 3, 5}, 0, 4 * escapes);
        for (unsigned int i = 0; i < 400; ++i)
            data.push_back(static_cast<unsigned char>(1 + i % 255));
        const guarded_buffer buffer(data);
        passage at = all_of(buffer, buffer);
        milestone behind_escape = {at.read, at.write};
        brenik::bytescan::drop_escapes<TypeParam>(at, behind_escape);
        ASSERT_EQ(escapes, static_cast<std::size_t>(at.read - at.write));
        ASSERT_EQ(escapes_dropped(data, offset(buffer, at.read)).written, bytes(buffer.begin(), at.write));
    }
}

TEST(Passage, RunsIntoItselfWhereItWritesAheadOfWhatItReads)
{
    unsigned char data[8] = {};
    EXPECT_TRUE((passage{data, data + 4, data + 3, data + 8}).runs_into_itself());
    EXPECT_TRUE((passage{data, data + 4, data + 1, data + 2}).runs_into_itself());
    EXPECT_FALSE((passage{data, data + 4, data + 4, data + 8}).runs_into_itself());
    EXPECT_FALSE((passage{data, data + 4, data, data + 4}).runs_into_itself());
    EXPECT_FALSE((passage{data + 3, data + 8, data, data + 8}).runs_into_itself());
}
