// Sequences laid beside each other, written as words: a letter is an entry.
#include "diff/sequence_alignment.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>

namespace {

using orv_h264::align;
using orv_h264::aligned_entry;
using orv_h264::alignment;

/// Letters that differ in their case alone have the same data.
std::vector<aligned_entry> entries(const std::string& word)
{
    std::vector<aligned_entry> made;
    for (const char c : word) {
        const auto data = static_cast<std::uint64_t>(std::tolower(static_cast<unsigned char>(c)));
        const std::uint64_t whole = static_cast<unsigned char>(c);
        made.push_back({{{whole, 7}}, {{whole, 9}}, {{data, 8}}, true, true});
    }
    return made;
}

/// For each letter of a: = beside its like, M moved, ~ beside another one, - removed; and for those of b alone +.
std::string marks(const std::string& a, const std::string& b, bool pair_rest = true)
{
    const alignment made = align(entries(a), entries(b), pair_rest);
    std::string text;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const std::uint32_t j = made.of_a[i];
        if (j != alignment::none) {
            EXPECT_EQ(i, made.of_b[j]) << a << ' ' << b;
            EXPECT_EQ(made.moved_a[i], made.moved_b[j]);
        }
        text += j == alignment::none ? '-' : made.moved_a[i] ? 'M' : a[i] == b[j] ? '=' : '~';
    }
    return text +
           std::string(static_cast<std::size_t>(std::count(made.of_b.begin(), made.of_b.end(), alignment::none)), '+');
}

TEST(SequenceAlignment, FindsWhatIsTheSame)
{
    EXPECT_EQ("", marks("", ""));
    EXPECT_EQ("====", marks("abcd", "abcd"));
    EXPECT_EQ("----", marks("abcd", ""));
    EXPECT_EQ("++++", marks("", "abcd"));
}

TEST(SequenceAlignment, FindsWhatIsRemovedAndInserted)
{
    EXPECT_EQ("=--=", marks("abcd", "ad"));
    EXPECT_EQ("====++", marks("abcd", "abxycd"));
    EXPECT_EQ("-====+", marks("xabcd", "abcdy"));
}

TEST(SequenceAlignment, PairsWhatHasChangedInItsOrder)
{
    EXPECT_EQ("=~~=", marks("abcd", "axyd"));
    EXPECT_EQ("=~~=+", marks("abcd", "axyzd"));
    EXPECT_EQ("=~-=", marks("abcd", "axd"));
    EXPECT_EQ("~~~", marks("abc", "xyz"));
    EXPECT_EQ("=--=++", marks("abcd", "axyd", false));
}

TEST(SequenceAlignment, FindsWhatHasMoved)
{
    EXPECT_EQ("=M====", marks("axbcde", "abcdxe"));
    EXPECT_EQ("MM====", marks("xyabcd", "abcdxy"));
    EXPECT_EQ("=M=~=", marks("axbcd", "abydx")) << "and what has changed beside it";
}

TEST(SequenceAlignment, EntriesThatComeManyTimesFollowThoseThatDoNot)
{
    EXPECT_EQ("-=======", marks("xaxbxcxd", "axbxcxd"));
    EXPECT_EQ("====+", marks("xxxx", "xxxxx"));
    EXPECT_EQ("===--", marks("xxxxx", "xxx"));
    EXPECT_EQ("=======+", marks("xaxaxax", "xaxaxxax"));
}

TEST(SequenceAlignment, DataTellWhatHasChangedBetweenWhatIsTheSame)
{
    EXPECT_EQ("=-~=", marks("axbc", "aBc"));
    EXPECT_EQ("=~~=+", marks("abcd", "aBxCd"));
    EXPECT_EQ("====", marks("xXxX", "xXxX"));
    EXPECT_EQ("=M~===", marks("axbcde", "aBcdXe")) << "it has moved and changed";
    EXPECT_EQ("=M====", marks("abcdef", "acBdef")) << "what is the same comes first";
}

TEST(SequenceAlignment, DataThatAreThereTwiceTellNothing)
{
    EXPECT_EQ("=--=+", marks("axXb", "aYb", false));
}

TEST(SequenceAlignment, SlicesTellMoreThanData)
{
    std::vector<aligned_entry> a = entries("xXy");
    std::vector<aligned_entry> b = entries("zX");
    b[1].whole.values[0] = 0; // with other parameter sets
    EXPECT_EQ(1U, align(a, b, false).of_a[1]);
    a[1].any_slice = false;
    EXPECT_EQ(alignment::none, align(a, b, false).of_a[1]) << "the data are there twice";
}

TEST(SequenceAlignment, DataOfFewBytesTellNothing)
{
    std::vector<aligned_entry> a = entries("xb");
    const std::vector<aligned_entry> b = entries("B");
    EXPECT_EQ(0U, align(a, b, false).of_a[1]);
    a[1].telling = false;
    EXPECT_EQ(alignment::none, align(a, b, false).of_a[1]);
}

/// The length of a longest common part, by the table.
std::size_t longest_common(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    for (const char c : a) {
        std::size_t above_left = 0;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t above = row[j + 1];
            row[j + 1] = c == b[j] ? above_left + 1 : std::max(above, row[j]);
            above_left = above;
        }
    }
    return row.back();
}

TEST(SequenceAlignment, OfEntriesThatComeOnceIsALongestOne)
{
    std::mt19937 random(5);
    for (int round = 0; round < 500; ++round) {
        std::string a = "abcdefghijklmnop";
        std::string b = a;
        for (int i = 0; i < 4; ++i)
            std::swap(b[random() % b.size()], b[random() % b.size()]);
        a.erase(random() % a.size(), random() % 3);
        b.erase(random() % b.size(), random() % 3);
        const std::string found = marks(a, b, false);
        EXPECT_EQ(longest_common(a, b), static_cast<std::size_t>(std::count(found.begin(), found.end(), '=')))
            << a << ' ' << b;
    }
}

TEST(SequenceAlignment, PartnersRiseWhateverTheSequencesAre)
{
    std::mt19937 random(6);
    for (int round = 0; round < 2000; ++round) {
        const auto word = [&] {
            std::string made(random() % 12, 'a');
            for (char& c : made)
                c = static_cast<char>('a' + random() % 3);
            return made;
        };
        const std::string a = word();
        const std::string b = word();
        const alignment found = align(entries(a), entries(b), true);
        std::int64_t last = -1;
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (found.of_a[i] == alignment::none || found.moved_a[i])
                continue;
            EXPECT_LT(last, std::int64_t{found.of_a[i]}) << a << ' ' << b;
            last = found.of_a[i];
        }
        for (std::size_t i = 0; i < a.size(); ++i)
            for (std::size_t j = 0; j < b.size(); ++j)
                EXPECT_FALSE(found.of_a[i] == alignment::none && found.of_b[j] == alignment::none && a[i] == b[j])
                    << "it would have moved: " << a << ' ' << b;
    }
}

/// Steps are not counted; hours would show.
TEST(SequenceAlignment, HostileSequencesTakeNoLongTime)
{
    constexpr std::size_t size = 400'000;
    std::vector<aligned_entry> rising(size, {{}, {}, {}, true, true});
    std::vector<aligned_entry> falling = rising;
    std::vector<aligned_entry> two = rising;
    for (std::size_t i = 0; i < size; ++i) {
        rising[i].whole.values[0] = i;
        falling[i].whole.values[0] = size - i;
        two[i].data.values[0] = i;
        two[i].whole.values[0] = i % 2;
    }
    std::vector<aligned_entry> one = rising;
    const std::clock_t begin = std::clock();
    for (const auto* a : {&rising, &falling, &two, &one})
        for (const auto* b : {&rising, &falling, &two, &one})
            align(*a, *b, true);
    EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 120);
}

} // namespace
