// Elements read straight out of memory, against the bit reader that they are read for: the same values, and the reader
// left as if it had read them itself.
#include "held_bits.h"

#include "support/guarded_buffer.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using brenik::h2645_common_bitreader;
using brenik::held_bits;
using support::bytes;
using support::guarded_buffer;
using support::random_source;

/// Where a reader stands and what it has loaded.
std::string state(const h2645_common_bitreader& reader)
{
    return std::to_string(reader.reservoir.bits) + ", " + std::to_string(reader.reservoir.empty_count) + " empty, at " +
           std::to_string(reader.source.cursor - reader.source.start);
}

/// One element of some kind; what reading it gave.
template <typename Reader>
std::string read(Reader& reader, std::size_t kind)
{
    constexpr std::size_t kinds_of_u = 25;
    constexpr std::size_t kinds_of_wide = 40;
    try {
        if (kind < kinds_of_u)
            return std::to_string(reader.template get<unsigned int>(static_cast<unsigned char>(kind + 1)));
        if (kind < kinds_of_u + kinds_of_wide)
            return std::to_string(reader.get_wide(static_cast<unsigned char>(kind - kinds_of_u)));
        return kind % 2 == 0 ? std::to_string(reader.ue()) : std::to_string(reader.se());
    } catch (const brenik::h2645_common_malformed_code& e) {
        return "malformed at " + std::to_string(e.bit_position());
    }
}

/// Reads the same elements both ways, the first few of them by the owner alone.
void expect_the_same(const bytes& data, std::size_t by_owner, const std::function<std::size_t()>& next_kind,
                     std::size_t elements)
{
    const guarded_buffer buffer(data);
    h2645_common_bitreader exact(buffer.begin(), buffer.end());
    h2645_common_bitreader owner(buffer.begin(), buffer.end());
    for (std::size_t i = 0; i < by_owner; ++i) {
        const std::size_t kind = next_kind();
        ASSERT_EQ(read(exact, kind), read(owner, kind));
    }
    held_bits held(owner);
    for (std::size_t i = 0; i < elements; ++i) {
        const std::size_t kind = next_kind();
        if (kind % 3 == 0) {
            ASSERT_EQ(h2645_common_bitreader(exact).get<unsigned int>(1) == 1, held.peek_flag()) << "element " << i;
        }
        const std::string expected = read(exact, kind);
        const std::string value = read(held, kind);
        ASSERT_EQ(expected, value) << "element " << i << " of kind " << kind;
        if (value.front() == 'm') {
            ASSERT_EQ(state(exact), state(owner)) << "what throws leaves the owner where it threw";
            return;
        }
    }
    held.put_back();
    ASSERT_EQ(state(exact), state(owner)) << data.size() << " bytes, " << elements << " elements";
    ASSERT_EQ(exact.get<unsigned int>(25), owner.get<unsigned int>(25));
}

} // namespace

TEST(HeldBits, LeaveTheReaderAsItsOwnReadsWould)
{
    random_source random(57);
    for (int round = 0; round < 20000; ++round) {
        const bytes data = round % 3 == 0 ? support::zero_heavy_up_to(random, 40) : [&] {
            bytes made(support::pick(random, 40));
            for (unsigned char& byte : made)
                byte = static_cast<unsigned char>(support::pick(random, 256));
            return made;
        }();
        const std::size_t by_owner = support::pick(random, 4) == 0 ? support::pick(random, 3) : 0;
        expect_the_same(
            data, by_owner, [&] { return support::pick(random, 90); }, support::pick(random, 20));
        if (HasFatalFailure())
            FAIL() << testing::PrintToString(data);
    }
}

TEST(HeldBits, EveryWidthAtEveryBit)
{
    random_source random(58);
    bytes data(24);
    for (unsigned char& byte : data)
        byte = static_cast<unsigned char>(support::pick(random, 256));
    for (std::size_t first = 0; first < 25; ++first)
        for (std::size_t second = 0; second < 25; ++second) {
            std::size_t reads = 0;
            expect_the_same(
                data, 0, [&] { return reads++ % 2 == 0 ? first : second; }, 6);
        }
}

TEST(HeldBits, TheFlagAheadIsNotConsumed)
{
    const bytes data = {0x40, 0, 0, 0, 0, 0, 0, 0, 0x80};
    for (const std::size_t size : {9U, 1U}) { // with eight bytes ahead, and without
        h2645_common_bitreader owner(data.data(), data.data() + size);
        held_bits held(owner);
        EXPECT_FALSE(held.peek_flag());
        EXPECT_EQ(0U, held.get<unsigned int>(1));
        EXPECT_TRUE(held.peek_flag());
        EXPECT_EQ(1U, held.get<unsigned int>(1));
    }
}
