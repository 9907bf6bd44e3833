#include "piece_feeder.h"

#include "support/feed.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using brenik::h2645_common_nalfmt;
using orv_h264::gap_reason;
using support::aud;
using support::bytes;
using support::fed;
using support::feed;
using support::forbidden;
using support::pps;
using support::sps;
using support::stream_builder;

const bytes small = {0x11, 0x22, 0x33};

/// The fields of one expected item, compared by what they tell a person.
struct expected {
    bool is_unit;
    std::uint64_t offset;
    std::uint64_t size;
    unsigned int framing_size;
    gap_reason reason;
};

expected unit_at(std::uint64_t offset, unsigned int framing_size, std::uint64_t length)
{
    return {true, offset, framing_size + length, framing_size, {}};
}

expected gap_at(std::uint64_t offset, std::uint64_t size, gap_reason reason)
{
    return {false, offset, size, 0, reason};
}

void expect_items(const bytes& stream, h2645_common_nalfmt nalfmt, const std::vector<expected>& wanted,
                  std::size_t max_unit = orv_h264::piece_feeder::usual_max_unit)
{
    for (const std::size_t piece : {1U, 2U, 3U, 4U, 5U, 7U, 64U, 100000U}) {
        SCOPED_TRACE("pieces of " + std::to_string(piece));
        const std::vector<fed> items = feed(stream, nalfmt, {piece, max_unit});
        EXPECT_TRUE(support::tiles(items, stream));
        ASSERT_EQ(items.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            EXPECT_EQ(items[i].is_unit, wanted[i].is_unit) << "item " << i;
            EXPECT_EQ(items[i].offset, wanted[i].offset) << "item " << i;
            EXPECT_EQ(items[i].size, wanted[i].size) << "item " << i;
            EXPECT_EQ(items[i].framing_size, wanted[i].framing_size) << "item " << i;
            EXPECT_EQ(items[i].reason, wanted[i].reason) << "item " << i;
        }
    }
}

void expect_annexb(const bytes& stream, const std::vector<expected>& wanted,
                   std::size_t max_unit = orv_h264::piece_feeder::usual_max_unit)
{
    expect_items(stream, brenik::nalfmt_annexb, wanted, max_unit);
}

TEST(PieceFeederAnnexB, UnitsLieBehindStartCodesOfThreeAndFourBytes)
{
    expect_annexb(stream_builder().zeros(1).annexb_unit(sps, small).annexb_unit(pps, small),
                  {unit_at(0, 4, 4), unit_at(8, 3, 4)});
}

TEST(PieceFeederAnnexB, OneZeroByteBelongsToTheStartCodeAndTheOthersArePadding)
{
    expect_annexb(stream_builder().zeros(5).annexb_unit(sps, small).zeros(9).annexb_unit(pps, small).zeros(3),
                  {unit_at(4, 4, 4), unit_at(20, 4, 4)});
}

TEST(PieceFeederAnnexB, TwoZeroBytesAtTheVeryEndBelongToTheLastUnit)
{
    expect_annexb(stream_builder().annexb_unit(sps, small).zeros(2), {unit_at(0, 3, 6)});
}

TEST(PieceFeederAnnexB, AUnitMayBeItsHeaderAlone)
{
    expect_annexb(stream_builder().annexb_unit(aud, {}).annexb_unit(aud, {}), {unit_at(0, 3, 1), unit_at(4, 3, 1)});
}

TEST(PieceFeederAnnexB, InputWithoutAStartCodeIsOneGap)
{
    expect_annexb(stream_builder().junk(50),
                  {gap_at(0, 50, gap_reason::before_first_unit), gap_at(50, 0, gap_reason::no_unit)});
}

TEST(PieceFeederAnnexB, EmptyInputHasNoUnit)
{
    expect_annexb({}, {gap_at(0, 0, gap_reason::no_unit)});
}

TEST(PieceFeederAnnexB, ZerosAloneArePaddingWithoutAUnit)
{
    for (const std::size_t count : {1U, 2U, 3U, 4U, 300U})
        expect_annexb(stream_builder().zeros(count), {gap_at(count, 0, gap_reason::no_unit)});
}

TEST(PieceFeederAnnexB, AStartCodeAloneHasNoUnit)
{
    expect_annexb(stream_builder().start_code(),
                  {gap_at(0, 3, gap_reason::no_header), gap_at(3, 0, gap_reason::no_unit)});
}

TEST(PieceFeederAnnexB, AForbiddenUnitAloneIsAUnitAllTheSame)
{
    expect_annexb(stream_builder().annexb_unit(forbidden, small), {gap_at(0, 7, gap_reason::forbidden_bit)});
}

TEST(PieceFeederAnnexB, BytesBeforeTheFirstStartCodeAreAGap)
{
    expect_annexb(stream_builder().zeros(2).junk(5).zeros(1).annexb_unit(sps, small),
                  {gap_at(2, 5, gap_reason::before_first_unit), unit_at(7, 4, 4)});
}

TEST(PieceFeederAnnexB, AForbiddenHeaderMakesAGapFromItsStartCodeOn)
{
    expect_annexb(stream_builder().annexb_unit(sps, small).zeros(1).annexb_unit(forbidden, small).annexb_unit(pps, {}),
                  {unit_at(0, 3, 4), gap_at(8, 7, gap_reason::forbidden_bit), unit_at(15, 3, 1)});
}

TEST(PieceFeederAnnexB, AStartCodeAtTheVeryEndIsAGap)
{
    expect_annexb(stream_builder().annexb_unit(sps, small).start_code(),
                  {unit_at(0, 3, 4), gap_at(7, 3, gap_reason::no_header)});
}

TEST(PieceFeederAnnexB, BytesBehindAnEarlyStopAreAGap)
{
    expect_annexb(stream_builder().annexb_unit(sps, {0x11, 0, 0, 2, 0x44}).annexb_unit(pps, {}),
                  {unit_at(0, 3, 2), gap_at(5, 4, gap_reason::early_stop), unit_at(9, 3, 1)});
}

TEST(PieceFeederAnnexB, BytesBehindZeroPaddingInsideAUnitAreAGap)
{
    expect_annexb(stream_builder().annexb_unit(sps, {0x11}).zeros(6).junk(2).annexb_unit(pps, {}),
                  {unit_at(0, 3, 2), gap_at(11, 2, gap_reason::early_stop), unit_at(13, 3, 1)});
}

TEST(PieceFeederAnnexB, AUnitOfTheLargestLengthIsKeptAndALongerOneIsAGap)
{
    const bytes stream = stream_builder()
                             .annexb_unit(sps, bytes(19, 0x55))
                             .zeros(1)
                             .annexb_unit(pps, bytes(20, 0x55))
                             .zeros(1)
                             .annexb_unit(aud, {0x10});
    expect_annexb(stream, {unit_at(0, 3, 20), gap_at(23, 25, gap_reason::too_large), unit_at(48, 4, 2)}, 20);
}

TEST(PieceFeederAnnexB, ATooLargeUnitMayBeTheLast)
{
    expect_annexb(stream_builder().annexb_unit(sps, bytes(500, 0x55)), {gap_at(0, 504, gap_reason::too_large)}, 20);
}

TEST(PieceFeederAnnexB, TheReaderHandsOutTheRbspOfTheUnit)
{
    const std::vector<fed> items = feed(
        stream_builder().annexb_unit(sps, {0x11, 0, 0, 3, 1, 0, 0, 3}).annexb_unit(pps, {}), brenik::nalfmt_annexb);
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].rbsp, (bytes{0x11, 0, 0, 1, 0, 0}));
    EXPECT_EQ(items[0].header, sps);
    EXPECT_EQ(items[1].rbsp, bytes());
}

class PieceFeederLengthPrefixed : public testing::TestWithParam<unsigned int> {
protected:
    unsigned int k = GetParam();
    h2645_common_nalfmt nalfmt = static_cast<h2645_common_nalfmt>(k);
};

INSTANTIATE_TEST_SUITE_P(AllSizes, PieceFeederLengthPrefixed, testing::Values(1, 2, 3, 4));

TEST_P(PieceFeederLengthPrefixed, UnitsFollowTheirPrefixes)
{
    expect_items(stream_builder().prefixed_unit(k, sps, small).prefixed_unit(k, pps, {}), nalfmt,
                 {unit_at(0, k, 4), unit_at(k + 4, k, 1)});
}

TEST_P(PieceFeederLengthPrefixed, PrefixesOfZeroAreOneGapAndReadingGoesOn)
{
    expect_items(stream_builder().prefixed_unit(k, sps, small).prefix(k, 0).prefix(k, 0).prefixed_unit(k, pps, small),
                 nalfmt, {unit_at(0, k, 4), gap_at(k + 4, k + k, gap_reason::zero_length), unit_at(3 * k + 4, k, 4)});
}

TEST_P(PieceFeederLengthPrefixed, EmptyInputHasNoUnit)
{
    expect_items({}, nalfmt, {gap_at(0, 0, gap_reason::no_unit)});
}

TEST_P(PieceFeederLengthPrefixed, PrefixesOfZeroAloneHaveNoUnit)
{
    expect_items(stream_builder().prefix(k, 0).prefix(k, 0), nalfmt,
                 {gap_at(0, k, gap_reason::zero_length), gap_at(k, k, gap_reason::cut_prefix),
                  gap_at(2 * k, 0, gap_reason::no_unit)});
}

TEST_P(PieceFeederLengthPrefixed, APrefixAloneHasNoUnit)
{
    expect_items(stream_builder().prefix(k, 1), nalfmt,
                 {gap_at(0, k, gap_reason::cut_prefix), gap_at(k, 0, gap_reason::no_unit)});
}

TEST_P(PieceFeederLengthPrefixed, AForbiddenHeaderIsAGapOverTheWholeUnit)
{
    expect_items(stream_builder().prefixed_unit(k, forbidden, small).prefixed_unit(k, pps, small), nalfmt,
                 {gap_at(0, k + 4, gap_reason::forbidden_bit), unit_at(k + 4, k, 4)});
}

TEST_P(PieceFeederLengthPrefixed, AForbiddenUnitCutByTheEndIsAGapToTheEnd)
{
    expect_items(stream_builder().prefix(k, 100).unit(forbidden, small), nalfmt,
                 {gap_at(0, k + 4, gap_reason::forbidden_bit)});
}

TEST_P(PieceFeederLengthPrefixed, TooFewBytesForAPrefixAndAHeaderAreAGap)
{
    for (unsigned int rest = 1; rest <= k; ++rest)
        expect_items(stream_builder().prefixed_unit(k, sps, small).fill(rest, 1), nalfmt,
                     {unit_at(0, k, 4), gap_at(k + 4, rest, gap_reason::cut_prefix)});
}

TEST_P(PieceFeederLengthPrefixed, AUnitCutByTheEndIsHandedOnAsFarAsItGoes)
{
    const bytes stream = stream_builder().prefix(k, 100).unit(sps, small);
    expect_items(stream, nalfmt, {unit_at(0, k, 4)});
    const std::vector<fed> items = feed(stream, nalfmt);
    EXPECT_TRUE(items[0].cut);
    EXPECT_EQ(items[0].stated_length, 100U);
    EXPECT_EQ(items[0].rbsp, small);
}

TEST_P(PieceFeederLengthPrefixed, BytesBehindAnEarlyStopAreAGapToTheUnitsEnd)
{
    expect_items(stream_builder().prefixed_unit(k, sps, {0x11, 0, 0, 1, 0x44}).prefixed_unit(k, pps, {}), nalfmt,
                 {unit_at(0, k, 2), gap_at(k + 2, 4, gap_reason::early_stop), unit_at(k + 6, k, 1)});
}

TEST_P(PieceFeederLengthPrefixed, ZerosBehindAnEarlyStopArePadding)
{
    expect_items(stream_builder().prefixed_unit(k, sps, {0x11, 0, 0, 0, 0, 0}).prefixed_unit(k, pps, small), nalfmt,
                 {unit_at(0, k, 2), unit_at(k + 7, k, 4)});
}

TEST_P(PieceFeederLengthPrefixed, AUnitOfTheLargestLengthIsKeptAndALongerOneIsAGap)
{
    const bytes stream = stream_builder()
                             .prefixed_unit(k, sps, bytes(19, 0x55))
                             .prefixed_unit(k, pps, bytes(20, 0x55))
                             .prefixed_unit(k, aud, {0x10});
    expect_items(stream, nalfmt,
                 {unit_at(0, k, 20), gap_at(k + 20, k + 21, gap_reason::too_large), unit_at(2 * k + 41, k, 2)}, 20);
}

TEST(PieceFeeder, ALengthBeyondEverythingIsAGapToTheEnd)
{
    expect_items(stream_builder().prefix(4, 0xFFFFFFFF).unit(sps, small), brenik::nalfmt_length4,
                 {gap_at(0, 8, gap_reason::too_large)});
}

TEST(PieceFeeder, EveryReasonHasItsText)
{
    const std::pair<gap_reason, std::string> texts[] = {
        {gap_reason::before_first_unit, "bytes before the first start code"},
        {gap_reason::forbidden_bit, "unit whose header has the forbidden bit set"},
        {gap_reason::no_header, "start code with nothing behind it"},
        {gap_reason::early_stop, "bytes behind a place where the unit's decoding stops"},
        {gap_reason::zero_length, "length prefix of 0"},
        {gap_reason::cut_prefix, "input ends inside a length prefix or right behind it"},
    };
    for (const auto& [reason, text] : texts) {
        const orv_h264::gap g{reason, 10, 5};
        EXPECT_EQ(text, describe(g));
        EXPECT_EQ(text + " (5 bytes)", describe_with_size(g));
    }
}

TEST(PieceFeeder, AnInputWithoutAUnitIsToldByItselfAndSaysWhetherItIsEmpty)
{
    for (const auto& describe_it : {orv_h264::describe, orv_h264::describe_with_size}) {
        EXPECT_EQ("no NAL unit found: the input is empty", describe_it({gap_reason::no_unit, 0, 0}));
        EXPECT_EQ("no NAL unit found", describe_it({gap_reason::no_unit, 3, 0}));
    }
}

/// What is told of the first item, which is a gap.
std::string first_gap(const bytes& stream, h2645_common_nalfmt nalfmt, std::size_t max_unit)
{
    orv_h264::piece_feeder feeder(support::window_of(stream), nalfmt, max_unit);
    return describe_with_size(std::get<orv_h264::gap>(feeder.next()));
}

TEST(PieceFeeder, ATooLargeUnitIsToldWithItsDeclaredLengthAndTheLimit)
{
    EXPECT_EQ("unit of type 7 whose declared length of 50 bytes is above the limit of 20 (10 bytes)",
              first_gap(stream_builder().prefix(4, 50).unit(sps, bytes(5, 0x55)), brenik::nalfmt_length4, 20));
    EXPECT_EQ("unit of type 7 longer than the limit of 20 bytes (29 bytes)",
              first_gap(stream_builder().annexb_unit(sps, bytes(25, 0x55)), brenik::nalfmt_annexb, 20));
}

TEST(PieceFeeder, AnySplitOfAnyBytesGivesTheSameItemsAndTheyTileTheInput)
{
    support::random_source random(20);
    for (int round = 0; round < 5000; ++round) {
        const bytes stream = support::zero_heavy_up_to(random, 300);
        const auto nalfmt = static_cast<h2645_common_nalfmt>(1 + support::pick(random, 5));
        const std::size_t max_unit = 1 + support::pick(random, 40);
        const std::vector<fed> whole = feed(stream, nalfmt, {4096, max_unit});
        ASSERT_TRUE(support::tiles(whole, stream)) << "round " << round;
        for (const std::size_t piece : {1U, 2U, 3U, 5U, 8U, 33U})
            ASSERT_EQ(feed(stream, nalfmt, {piece, max_unit}), whole) << "round " << round << " pieces of " << piece;
    }
}

} // namespace
