// The search for pairs of zeros: what each kind of block finds against plain C++, and the walk from place to place, or
// from row to row, against a look at every place.
#include "bytescan/bytescan.h"

#include "support/all_runs.h"
#include "support/guarded_buffer.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using brenik::bytescan::block_bytes;
using brenik::bytescan::block_places;
using brenik::bytescan::place_rows_of;
using brenik::bytescan::scalar_block;
using brenik::bytescan::third_byte;
using brenik::bytescan::zero_pairs_of;
using support::bytes;
using support::guarded_buffer;
using support::random_source;

constexpr third_byte kinds[] = {{0, 3}, {0, 2}, {1, 0}, {3, 0}, {0, 0}, {0, 255}};

/// Bytes of which about one in `one_in` is zero, the others small or large.
bytes random_bytes(random_source& random, std::size_t size, std::size_t one_in)
{
    bytes data(size);
    for (unsigned char& byte : data)
        if (support::pick(random, one_in) != 0)
            byte = static_cast<unsigned char>(support::pick(random, 2) != 0 ? support::pick(random, 6)
                                                                            : support::pick(random, 256));
    return data;
}

bool is_pair(const bytes& data, std::size_t p, third_byte kind)
{
    return p + 3 <= data.size() && data[p] == 0 && data[p + 1] == 0 && kind.holds(data[p + 2]);
}

/// Walks through the pairs, each time going on `step` behind the last, as long as the walk agrees with a look at every
/// place.
template <typename Runs>
void expect_every_pair(const guarded_buffer& buffer, const bytes& data, third_byte kind, std::size_t step)
{
    zero_pairs_of<Runs> pairs(buffer.begin(), buffer.end(), kind);
    std::size_t at = 0;
    for (;;) {
        std::size_t expected = at;
        while (expected < data.size() && !is_pair(data, expected, kind))
            ++expected;
        const auto found = static_cast<std::size_t>(pairs.next() - buffer.begin());
        ASSERT_EQ(expected, found) << "from " << at << " of " << data.size();
        if (found == data.size())
            return;
        at = found + step;
        pairs.resume(buffer.begin() + at);
    }
}

/// All rows against a look at every place.
template <typename Runs>
void expect_every_row(const guarded_buffer& buffer, const bytes& data, third_byte kind)
{
    std::vector<std::size_t> expected;
    for (std::size_t p = 0; p < data.size(); ++p)
        if (is_pair(data, p, kind) && (p == 0 || !is_pair(data, p - 1, kind)))
            expected.push_back(p);
    place_rows_of<Runs> rows(buffer.begin(), buffer.end(), kind);
    std::vector<std::size_t> found;
    for (auto few = rows.next_few(); !few.empty(); few = rows.next_few())
        for (const unsigned char* const row : few)
            found.push_back(static_cast<std::size_t>(row - buffer.begin()));
    ASSERT_EQ(expected, found) << "of " << data.size();
    ASSERT_TRUE(rows.next_few().empty()) << "it stays there";
}

template <typename Runs>
void expect_as_in_plain_cpp(const guarded_buffer& buffer, third_byte kind)
{
    const std::uint64_t found = Runs::places(buffer.begin(), kind);
    ASSERT_EQ(scalar_block::places(buffer.begin(), kind), found);
    ASSERT_EQ(found >> 48, Runs::first_places(buffer.begin() + 48, kind)); // to the very end of the block
    ASSERT_EQ(scalar_block::has_pair(buffer.begin()), Runs::has_pair(buffer.begin()));
}

template <typename Runs>
class ZeroPairs : public testing::Test {
protected:
    void SetUp() override
    {
        if (!support::can_run<Runs>())
            GTEST_SKIP() << "this machine has no such vectors";
    }
};

TYPED_TEST_SUITE(ZeroPairs, support::all_runs<testing::Types>);

} // namespace

TYPED_TEST(ZeroPairs, ABlockTellsEachThirdByteAtEachPlace)
{
    for (std::size_t place = 0; place < block_places; ++place)
        for (unsigned int value = 0; value < 256; ++value) {
            bytes data(block_bytes, 0x80);
            data[place] = data[place + 1] = 0;
            data[place + 2] = static_cast<unsigned char>(value);
            const guarded_buffer buffer(data);
            for (const third_byte kind : kinds) {
                const std::uint64_t found = TypeParam::places(buffer.begin(), kind);
                ASSERT_EQ(kind.holds(data[place + 2]), (found >> place & 1) != 0) << place << ", " << value;
                ASSERT_EQ(scalar_block::places(buffer.begin(), kind), found) << place << ", " << value;
                ASSERT_EQ(found & 0xFFFF, TypeParam::first_places(buffer.begin(), kind)) << place << ", " << value;
            }
        }
}

TYPED_TEST(ZeroPairs, ABlockTellsASingleZeroFromTwo)
{
    for (std::size_t place = 0; place < block_bytes; ++place) {
        bytes data(block_bytes, 1);
        data[place] = 0;
        EXPECT_EQ(0U, TypeParam::places(guarded_buffer(data).begin(), {0, 255})) << place;
    }
}

TYPED_TEST(ZeroPairs, BlocksAgreeWithPlainCppOnRandomBytes)
{
    random_source random(7);
    for (int round = 0; round < 20000; ++round) {
        const guarded_buffer buffer(random_bytes(random, block_bytes, 1 + support::pick(random, 9)));
        for (const third_byte kind : kinds)
            expect_as_in_plain_cpp<TypeParam>(buffer, kind);
    }
}

TYPED_TEST(ZeroPairs, EverySizeAndStartHasEveryPair)
{
    random_source random(8);
    for (std::size_t size = 0; size <= 200; ++size)
        for (const std::size_t one_in : {2U, 3U, 30U}) {
            const bytes data = random_bytes(random, size, one_in);
            for (const third_byte kind : kinds)
                for (std::size_t step = 1; step <= 3; ++step) {
                    const auto touching = step == 2 ? guarded_buffer::touching::start : guarded_buffer::touching::end;
                    expect_every_pair<TypeParam>(guarded_buffer(data, touching), data, kind,
                                                 std::min<std::size_t>(step, 3));
                    if (this->HasFatalFailure())
                        return;
                }
        }
}

TYPED_TEST(ZeroPairs, AFullBlockOfZerosHasAPairAtEveryPlace)
{
    const bytes data(300, 0);
    expect_every_pair<TypeParam>(guarded_buffer(data), data, {0, 3}, 1);
    expect_every_pair<TypeParam>(guarded_buffer(data), data, {0, 3}, 3);
}

TYPED_TEST(ZeroPairs, GoingOnAheadOfTheSearchPassesWhatLiesBefore)
{
    bytes data(400, 0x55);
    std::fill_n(data.begin() + 100, 3, 0);
    std::fill_n(data.begin() + 300, 3, 0);
    const guarded_buffer buffer(data);
    zero_pairs_of<TypeParam> pairs(buffer.begin(), buffer.end(), {0, 3});
    pairs.resume(buffer.begin() + 200);
    EXPECT_EQ(buffer.begin() + 300, pairs.next());
    pairs.resume(buffer.begin() + 301);
    EXPECT_EQ(buffer.end(), pairs.next());
}

TYPED_TEST(ZeroPairs, EverySizeAndStartHasEveryRow)
{
    random_source random(10);
    for (std::size_t size = 0; size <= 400; ++size)
        for (const std::size_t one_in : {1U, 2U, 3U, 30U}) {
            const bytes data = random_bytes(random, size, one_in);
            const auto touching = size % 2 == 0 ? guarded_buffer::touching::start : guarded_buffer::touching::end;
            for (const third_byte kind : kinds)
                expect_every_row<TypeParam>(guarded_buffer(data, touching), data, kind);
            if (this->HasFatalFailure())
                return;
        }
}

TYPED_TEST(ZeroPairs, RowsGoOnFromListToList)
{
    random_source random(11);
    const std::size_t largest = 20 * block_places * block_places;
    for (const std::size_t one_in : {1U, 2U, 4U, 200U}) {
        const bytes data = random_bytes(random, largest + support::pick(random, block_places), one_in);
        expect_every_row<TypeParam>(guarded_buffer(data), data, {0, 1});
    }
    bytes zeros(largest, 0);
    expect_every_row<TypeParam>(guarded_buffer(zeros), zeros, {0, 1});
    zeros[zeros.size() / 2] = 1;
    expect_every_row<TypeParam>(guarded_buffer(zeros), zeros, {0, 1});
}

TEST(FirstOfFew, IsTheFirstPlaceOrBehindThemAll)
{
    random_source random(9);
    for (int round = 0; round < 20000; ++round) {
        const std::size_t few = support::pick(random, 14);
        const bytes data = random_bytes(random, few + 4, 1 + support::pick(random, 5));
        const guarded_buffer buffer(data);
        for (const third_byte kind : kinds) {
            std::size_t expected = 0;
            while (expected < few && !is_pair(data, expected, kind))
                ++expected;
            const auto found =
                static_cast<std::size_t>(brenik::bytescan::first_of_few(buffer.begin(), few, kind) - buffer.begin());
            ASSERT_TRUE(expected < few ? found == expected : found >= few && found <= few + 2)
                << testing::PrintToString(data) << ", " << few;
        }
    }
}
