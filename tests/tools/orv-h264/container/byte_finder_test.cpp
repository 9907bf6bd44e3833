// A search for bytes in a file.
#include "container/byte_finder.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_h264::byte_finder;
using orv_h264::input_file;
using support::bytes;

constexpr std::size_t piece = std::size_t{256} * 1024; // that is read at once

/// Bytes that do not come twice.
bytes key_of(std::size_t size)
{
    bytes key;
    for (std::size_t i = 0; i < size; ++i)
        key.push_back(static_cast<unsigned char>(i < 4 ? 0xF0 + i : i * 7 / 5));
    return key;
}

class ByteFinder : public testing::Test {
protected:
    /// Where they are found in zeros that have them at these places.
    std::optional<std::uint64_t> found(const bytes& key, std::initializer_list<std::size_t> places,
                                       std::uint64_t from = 0, std::uint64_t reach = byte_finder::usual_reach)
    {
        bytes content(2 * piece + 1000);
        for (const std::size_t place : places)
            std::copy(key.begin(), key.end(), content.begin() + static_cast<std::ptrdiff_t>(place));
        return in(content, key, from, reach);
    }

    std::optional<std::uint64_t> in(const bytes& content, const bytes& key, std::uint64_t from = 0,
                                    std::uint64_t reach = byte_finder::usual_reach)
    {
        const input_file file(folder.write("in", content));
        return byte_finder(file).find(key, from, reach);
    }

    support::temporary_folder folder;
};

TEST_F(ByteFinder, FindsTheFirstPlaceFromWhereItBegins)
{
    const bytes key = key_of(30);
    EXPECT_EQ(0U, found(key, {0, 500}));
    EXPECT_EQ(500U, found(key, {0, 500}, 1));
    EXPECT_EQ(500U, found(key, {0, 500}, 500));
    EXPECT_EQ(std::nullopt, found(key, {0, 500}, 501));
}

TEST_F(ByteFinder, FindsAcrossTheBorderOfWhatIsReadAtOnce)
{
    for (const std::size_t size : {1U, 2U, 63U, 64U, 65U, 5000U})
        for (const std::size_t before : {0U, 1U, 2U, 62U, 63U, 64U, 65U})
            EXPECT_EQ(piece - before, found(key_of(size), {piece - before}))
                << size << " bytes, " << before << " before";
}

TEST_F(ByteFinder, FindsAtTheVeryEnd)
{
    const bytes key = key_of(70);
    EXPECT_EQ(2 * piece + 930, found(key, {2 * piece + 930}));
    bytes cut(2 * piece);
    cut.insert(cut.end(), key.begin(), key.end() - 1);
    EXPECT_EQ(std::nullopt, in(cut, key)) << "the last byte is missing";
}

TEST_F(ByteFinder, GoesNoFurtherThanItsReach)
{
    const bytes key = key_of(10);
    EXPECT_EQ(600U, found(key, {600}, 100, 500));
    EXPECT_EQ(std::nullopt, found(key, {600}, 100, 499));
    EXPECT_EQ(100U, found(key, {100}, 100, 0));
    EXPECT_EQ(piece + 5, found(key, {piece + 5}, 0, piece + 5));
    EXPECT_EQ(std::nullopt, found(key, {piece + 5}, 0, piece + 4));
}

TEST_F(ByteFinder, HoldsAllBytesAgainstTheFile)
{
    bytes key = key_of(9000);
    bytes content = key;
    content.back() ^= 1; // only the first 8999 are there
    content.insert(content.end(), key.begin(), key.end());
    EXPECT_EQ(9000U, in(content, key));
    key.back() ^= 2;
    EXPECT_EQ(std::nullopt, in(content, key));
}

TEST_F(ByteFinder, FindsNothingInNothingAndNoEmptyBytes)
{
    EXPECT_EQ(std::nullopt, in({}, key_of(3)));
    EXPECT_EQ(std::nullopt, in(bytes(100), {}));
    EXPECT_EQ(std::nullopt, in(key_of(9), key_of(10)));
    EXPECT_EQ(std::nullopt, in(bytes(100), bytes(1), 100));
    for (const std::uint64_t beyond : {std::uint64_t{1} << 40U, ~std::uint64_t{0} - 3, ~std::uint64_t{0}})
        EXPECT_EQ(std::nullopt, in(bytes(100), bytes(80), beyond));
}

TEST_F(ByteFinder, AFinderIsGoodForSeveralSearches)
{
    const bytes key = key_of(8);
    bytes content(3 * piece);
    for (const std::size_t place : {std::size_t{7}, piece - 3, 2 * piece})
        std::copy(key.begin(), key.end(), content.begin() + static_cast<std::ptrdiff_t>(place));
    const input_file file(folder.write("in", content));
    byte_finder finder(file);
    EXPECT_EQ(piece - 3, finder.find(key, 8));
    EXPECT_EQ(2 * piece, finder.find(key, piece)) << "onwards";
    EXPECT_EQ(7U, finder.find(key, 0)) << "back";
}

TEST_F(ByteFinder, GivesUpWhereEveryPlaceBeginsLikeTheBytes)
{
    bytes key(std::size_t{1} << 20U); // 4096 places like its begin, each to be compared over a megabyte
    key.back() = 1;
    EXPECT_EQ(std::nullopt, in(bytes(std::size_t{2} << 20U), key));
    bytes content(key.size() + 10);
    content.back() = 1;
    EXPECT_EQ(10U, in(content, key)) << "a few such places are looked at";
}

} // namespace
