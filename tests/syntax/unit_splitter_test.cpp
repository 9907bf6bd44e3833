// The unit splitter: units, gaps with their reasons, limits, and the same of any cut.
#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;
using support::stream_builder;

using lines = std::vector<std::string>;

constexpr const char* reasons[] = {"before_first_unit", "between_units", "no_header",
                                   "too_large",         "cut_prefix",    "no_memory"};

/// "unit OFFSET FRAMING_SIZE BYTES [of LENGTH] [cut]" and "gap REASON OFFSET SIZE".
class split_lines : public split_sink {
public:
    void unit(const split_unit& u) override
    {
        std::string line = "unit " + std::to_string(u.offset) + " " + std::to_string(u.framing_size);
        for (std::size_t i = 0; i < u.size; ++i)
            line += " " + std::to_string(u.bytes[i]);
        all.push_back(line + (u.stated_length == 0 ? "" : " of " + std::to_string(u.stated_length)) +
                      (u.cut ? " cut" : ""));
    }
    void gap(const split_gap& g) override
    {
        all.push_back(std::string("gap ") + reasons[static_cast<int>(g.reason)] + " " + std::to_string(g.offset) + " " +
                      std::to_string(g.size));
    }

    lines all;
};

struct splitting {
    framing how = framing::annex_b;
    std::size_t most = unit_splitter::usual_most_bytes;
};

/// Each piece lies at the end of a page of its own.
lines split_in(const bytes& stream, const splitting& s, const std::function<std::size_t()>& next_size)
{
    split_lines to;
    unit_splitter splitter(s.how, s.most);
    for (std::size_t at = 0; at < stream.size();) {
        const std::size_t size = std::min(stream.size() - at, next_size());
        const auto from = stream.begin() + static_cast<std::ptrdiff_t>(at);
        const support::guarded_buffer piece(bytes(from, from + static_cast<std::ptrdiff_t>(size)));
        splitter.push(piece.begin(), piece.size(), to);
        at += size;
    }
    splitter.flush(to);
    return to.all;
}

/// The lines of the stream, which are the same whole and byte by byte.
lines split(const bytes& stream, const splitting& s = {})
{
    lines whole = split_in(stream, s, [&] { return stream.size(); });
    EXPECT_EQ(split_in(stream, s, [] { return std::size_t{1}; }), whole);
    return whole;
}

TEST(UnitSplitter, StartCodesOfThreeAndFourBytes)
{
    EXPECT_EQ(split({0, 0, 1, 9, 8, 0, 0, 0, 1, 7, 0, 0, 1, 6}), (lines{"unit 3 3 9 8", "unit 9 4 7", "unit 13 3 6"}));
}

TEST(UnitSplitter, ZerosAroundUnitsBelongToNone)
{
    EXPECT_EQ(split({0, 0, 0, 0, 0, 1, 9, 0, 0, 0, 0, 0, 0, 1, 7, 8, 0, 0, 0, 0}),
              (lines{"unit 6 4 9", "unit 14 4 7 8"}));
    EXPECT_EQ(split({0, 0, 1, 7, 8, 0}), (lines{"unit 3 3 7 8"}));
    EXPECT_EQ(split({0, 0, 1, 7, 8, 0, 0}), (lines{"unit 3 3 7 8"}));
}

TEST(UnitSplitter, ZerosInsideAUnitStay)
{
    EXPECT_EQ(split({0, 0, 1, 7, 0, 0, 2, 0, 0, 3, 0, 1}), (lines{"unit 3 3 7 0 0 2 0 0 3 0 1"}));
}

TEST(UnitSplitter, ForbiddenBitUnitsAreUnits)
{
    EXPECT_EQ(split({0, 0, 1, 0xE7, 1, 0, 0, 1, 7}), (lines{"unit 3 3 231 1", "unit 8 3 7"}));
    EXPECT_EQ(split({2, 0xE7, 1, 1, 7}, {framing::length_1}), (lines{"unit 1 1 231 1 of 2", "unit 4 1 7 of 1"}));
}

TEST(UnitSplitter, BytesBeforeTheFirstStartCodeAreAGap)
{
    EXPECT_EQ(split({5, 0, 5, 0, 0, 0, 1, 9}), (lines{"gap before_first_unit 0 3", "unit 7 4 9"}));
    EXPECT_EQ(split({0, 0, 5, 0, 0}), (lines{"gap before_first_unit 2 1"}));
}

TEST(UnitSplitter, BytesBehindThreeZerosAreAGap)
{
    EXPECT_EQ(split({0, 0, 1, 9, 0, 0, 0, 2, 4, 0, 0, 1, 7}),
              (lines{"unit 3 3 9", "gap between_units 7 2", "unit 12 3 7"}));
    EXPECT_EQ(split({0, 0, 1, 9, 0, 0, 0, 2, 0}), (lines{"unit 3 3 9", "gap between_units 7 1"}));
}

TEST(UnitSplitter, AStartCodeWithoutAUnitIsAGap)
{
    EXPECT_EQ(split({0, 0, 1, 0, 0, 1, 9}), (lines{"gap no_header 0 3", "unit 6 3 9"}));
    EXPECT_EQ(split({0, 0, 1, 9, 0, 0, 0, 1}), (lines{"unit 3 3 9", "gap no_header 4 4"}));
    EXPECT_EQ(split({0, 0, 1, 0, 0}), (lines{"gap no_header 0 3"}));
}

TEST(UnitSplitter, NothingGivesNothing)
{
    EXPECT_EQ(split({}), lines());
    EXPECT_EQ(split({0, 0, 0}), lines());
    EXPECT_EQ(split({}, {framing::length_4}), lines());
}

TEST(UnitSplitter, LengthPrefixesOfEverySize)
{
    const lines expected[] = {{"unit 1 1 9 0 0 of 3", "unit 5 1 7 of 1"},
                              {"unit 2 2 9 0 0 of 3", "unit 7 2 7 of 1"},
                              {"unit 3 3 9 0 0 of 3", "unit 9 3 7 of 1"},
                              {"unit 4 4 9 0 0 of 3", "unit 11 4 7 of 1"}};
    for (unsigned k = 1; k <= 4; ++k) {
        const bytes stream = stream_builder().prefix(k, 3).raw({9, 0, 0}).prefix(k, 1).raw({7});
        EXPECT_EQ(split(stream, {static_cast<framing>(k)}), expected[k - 1]);
    }
}

TEST(UnitSplitter, ALengthOfZeroIsAGapAndReadingGoesOn)
{
    EXPECT_EQ(split({0, 0, 0, 1, 7}, {framing::length_2}), (lines{"gap no_header 0 2", "unit 4 2 7 of 1"}));
}

TEST(UnitSplitter, ACutUnitIsHandedOnAsCut)
{
    EXPECT_EQ(split({0, 5, 9, 0, 0}, {framing::length_2}), (lines{"unit 2 2 9 0 0 of 5 cut"}));
}

TEST(UnitSplitter, ACutPrefixIsAGap)
{
    EXPECT_EQ(split({0, 1, 9, 0}, {framing::length_2}), (lines{"unit 2 2 9 of 1", "gap cut_prefix 3 1"}));
    EXPECT_EQ(split({1, 2, 3}, {framing::length_4}), (lines{"gap cut_prefix 0 3"}));
}

TEST(UnitSplitter, AUnitOfTheMostBytesIsHandedOnAndALongerOneIsAGap)
{
    const splitting four = {framing::annex_b, 4};
    EXPECT_EQ(split({0, 0, 1, 9, 8, 7, 6, 0, 0, 0, 1, 5}, four), (lines{"unit 3 3 9 8 7 6", "unit 11 4 5"}));
    EXPECT_EQ(split({0, 0, 1, 9, 8, 7, 6, 5, 0, 0, 1, 5}, four), (lines{"gap too_large 0 8", "unit 11 3 5"}));
    EXPECT_EQ(split({0, 0, 1, 9, 8, 7, 6, 0, 0}, four), (lines{"unit 3 3 9 8 7 6"}));
    EXPECT_EQ(split({3, 9, 8, 7, 5, 9, 8, 7, 6, 5, 1, 4}, {framing::length_1, 4}),
              (lines{"unit 1 1 9 8 7 of 3", "gap too_large 4 6", "unit 11 1 4 of 1"}));
}

// What is above the limit is not kept, but its end is found.
TEST(UnitSplitter, TheEndOfAUnitAboveTheLimitIsFoundInPieces)
{
    const bytes stream = stream_builder().start_code().raw({9, 0, 8, 0}).junk(50).raw({1, 0, 1}).annexb_unit(7, {5});
    EXPECT_EQ(split(stream, {framing::annex_b, 4}), (lines{"gap too_large 0 60", "unit 63 3 7 5"}));
}

TEST(UnitSplitter, ALengthAboveTheLimitIsPassedOver)
{
    EXPECT_EQ(split({0xFF, 0xFF, 0xFF, 0xFF, 9, 8}, {framing::length_4, 100}), (lines{"gap too_large 0 6"}));
}

class kept_places : public split_sink {
public:
    void unit(const split_unit& u) override { places.emplace_back(u.bytes, u.size); }
    void gap(const split_gap&) override {}

    std::vector<std::pair<const unsigned char*, std::size_t>> places;
};

TEST(UnitSplitter, AUnitThatLiesWholeInAPieceIsNotCopied)
{
    const bytes annex_b = {0, 0, 1, 9, 8, 0, 0, 1, 7, 6};
    kept_places to;
    unit_splitter splitter(framing::annex_b);
    splitter.push(annex_b.data(), annex_b.size(), to);
    ASSERT_EQ(to.places.size(), 1U);
    EXPECT_EQ(to.places[0], std::pair(annex_b.data() + 3, std::size_t{2}));

    const bytes prefixed = {2, 9, 8, 1, 7};
    kept_places of_lengths;
    unit_splitter by_length(framing::length_1);
    by_length.push(prefixed.data(), prefixed.size(), of_lengths);
    ASSERT_EQ(of_lengths.places.size(), 2U);
    EXPECT_EQ(of_lengths.places[1], std::pair(prefixed.data() + 4, std::size_t{1}));
}

// Bytes of start codes, escapes and little else, in every framing and with small limits.
TEST(UnitSplitter, HostileBytesGiveTheSameInPiecesOfAnySize)
{
    std::mt19937 random(7);
    constexpr unsigned char soup[] = {0, 0, 0, 1, 1, 3, 0x65};
    for (int round = 0; round < 1000 && !HasFailure(); ++round) {
        bytes stream(random() % 60);
        for (unsigned char& byte : stream)
            byte = soup[random() % std::size(soup)];
        const splitting s = {static_cast<framing>(round % 3), random() % 2 == 0 ? 5 : unit_splitter::usual_most_bytes};
        const lines whole = split(stream, s);
        EXPECT_EQ(split_in(stream, s, [&] { return 1 + random() % 5; }), whole) << testing::PrintToString(stream);
    }
}

// What is told of a stream lies in order and does not overlap, and what lies between is zeros.
TEST(UnitSplitter, UnitsAndGapsTileTheStream)
{
    class tiles : public split_sink {
    public:
        void unit(const split_unit& u) override { add(u.offset - u.framing_size, u.framing_size + u.size); }
        void gap(const split_gap& g) override { add(g.offset, g.size); }
        void add(std::uint64_t offset, std::uint64_t size)
        {
            EXPECT_GE(offset, end);
            for (; end < offset; ++end)
                EXPECT_EQ((*stream)[end], 0);
            end = offset + size;
        }
        const bytes* stream = nullptr;
        std::uint64_t end = 0;
    };
    std::mt19937 random(8);
    constexpr unsigned char soup[] = {0, 0, 0, 1, 2, 0x65};
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        bytes stream(random() % 80);
        for (unsigned char& byte : stream)
            byte = soup[random() % std::size(soup)];
        tiles to;
        to.stream = &stream;
        unit_splitter splitter(framing::annex_b);
        splitter.push(stream.data(), stream.size(), to);
        splitter.flush(to);
        to.add(stream.size(), 0);
    }
}

} // namespace
