#include "report/number_column.h"

#include "report/base64.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using orv_h264::base64;
using orv_h264::number_column;

std::string column_of(const std::vector<std::uint64_t>& numbers)
{
    number_column column;
    for (const std::uint64_t number : numbers)
        column.add(number);
    return column.text();
}

std::string text_of(const std::vector<unsigned char>& bytes)
{
    return base64({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

} // namespace

TEST(NumberColumn, BytesAreToldAsRfc4648Has)
{
    const std::pair<const char*, const char*> of_the_rfc[] = {{"", ""},
                                                              {"f", "Zg=="},
                                                              {"fo", "Zm8="},
                                                              {"foo", "Zm9v"},
                                                              {"foob", "Zm9vYg=="},
                                                              {"fooba", "Zm9vYmE="},
                                                              {"foobar", "Zm9vYmFy"}};
    for (const auto& [bytes, text] : of_the_rfc)
        EXPECT_EQ(text, base64(bytes));
    EXPECT_EQ("//79", text_of({0xFF, 0xFE, 0xFD}));
}

TEST(NumberColumn, NumbersTakeSevenBitsAByteTheLowestFirst)
{
    EXPECT_EQ(text_of({0, 0x7F, 0x80, 1, 0xFF, 0x7F, 0x80, 0x80, 1}), column_of({0, 127, 128, 16383, 16384}));
    EXPECT_EQ(text_of({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1}),
              column_of({std::numeric_limits<std::uint64_t>::max()}));
}

TEST(NumberColumn, BehindTwoThatAreEqualStandsHowManyFurtherOnesAre)
{
    EXPECT_EQ(text_of({5}), column_of({5}));
    EXPECT_EQ(text_of({5, 5, 0}), column_of({5, 5}));
    EXPECT_EQ(text_of({5, 5, 2, 6, 5, 6, 6, 1}), column_of({5, 5, 5, 5, 6, 5, 6, 6, 6}));
    EXPECT_EQ(text_of({5, 5, 0xE6, 7}), column_of(std::vector<std::uint64_t>(1000, 5)));
}

TEST(NumberColumn, SmallNumbersOfEitherSignAreShortAndNoneIsZero)
{
    number_column column;
    for (const std::int64_t number : {0, -1, 1, -64, 64})
        column.add_signed(number);
    EXPECT_EQ(text_of({0, 1, 2, 127, 0x80, 1}), column.text());
    number_column optional;
    optional.add_optional({});
    optional.add_optional(0);
    optional.add_optional(-1);
    EXPECT_EQ(text_of({0, 1, 2}), optional.text());
}
