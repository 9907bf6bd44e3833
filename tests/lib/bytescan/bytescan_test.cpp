#include "bytescan/bytescan.h"

#include "support/guarded_buffer.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace {

using brenik::bytescan::find_zero_pair;
using support::bytes;
using support::guarded_buffer;

/// The same search, one position after another.
std::size_t first_zero_pair(const bytes& data, unsigned char largest_third)
{
    for (std::size_t p = 0; p + 3 <= data.size(); ++p)
        if (data[p] == 0 && data[p + 1] == 0 && data[p + 2] <= largest_third)
            return p;
    return data.size();
}

/// Where the search in bytes that end at an unmapped page stops.
std::size_t found_at(const bytes& data, unsigned char largest_third)
{
    const guarded_buffer buffer(data);
    return static_cast<std::size_t>(find_zero_pair(buffer.begin(), buffer.end(), largest_third) - buffer.begin());
}

} // namespace

TEST(FindZeroPair, FindsAPairAtEveryPositionOfEverySize)
{
    for (std::size_t size = 3; size <= 40; ++size)
        for (std::size_t position = 0; position + 3 <= size; ++position)
            for (unsigned char third = 0; third <= 4; ++third) {
                bytes data(size, 0xFF);
                data[position] = data[position + 1] = 0;
                data[position + 2] = third;
                for (unsigned char largest_third = 0; largest_third <= 3; ++largest_third)
                    EXPECT_EQ(third <= largest_third ? position : size, found_at(data, largest_third))
                        << size << ", " << position << ", " << int{third} << ", " << int{largest_third};
            }
}

TEST(FindZeroPair, AnEmptyRangeHasNone)
{
    EXPECT_EQ(0U, found_at({}, 3));
    unsigned char* const nowhere = nullptr;
    EXPECT_EQ(nullptr, find_zero_pair(nowhere, nowhere, 3));
}

TEST(FindZeroPair, NeverReadsBeforeTheStart)
{
    const guarded_buffer buffer({0, 1, 0, 0, 1}, guarded_buffer::touching::start);
    EXPECT_EQ(buffer.begin() + 2, find_zero_pair(buffer.begin(), buffer.end(), 3));
}

TEST(FindZeroPair, EveryStringOfSevenSmallBytesAgreesWithThePlainSearch)
{
    static constexpr unsigned char alphabet[] = {0, 1, 3, 4};
    for (unsigned int number = 0; number < 4U * 4 * 4 * 4 * 4 * 4 * 4; ++number) {
        bytes data(7);
        unsigned int rest = number;
        for (unsigned char& byte : data) {
            byte = alphabet[rest % 4];
            rest /= 4;
        }
        for (unsigned char largest_third = 2; largest_third <= 3; ++largest_third) {
            unsigned char* const start = data.data();
            ASSERT_EQ(start + first_zero_pair(data, largest_third),
                      find_zero_pair(start, start + data.size(), largest_third));
        }
    }
}
