// The two generations of NAL framing, which share only the loops over bytes (lib/bytescan), against each other: over
// real streams the newer reader and the legacy scanner find the same units, and both writers write the same bytes.
// Where they part is told, too.
#include "support/both_framings.h"
#include "support/guarded_buffer.h"
#include "support/stream_builder.h"
#include "support/stream_files.h"
#include "support/zero_heavy.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace {

using support::bytes;
using support::found_unit;
using support::guarded_buffer;
using support::legacy_units;
using support::legacy_written;
using support::newer_units;
using support::newer_written;
using support::stream_builder;

constexpr std::size_t longest_legacy_unit = 16777214;

/// The units of `stream`, escaped as they are there, behind prefixes of `k` bytes.
bytes prefixed(const guarded_buffer& stream, const std::vector<found_unit>& units, unsigned int k)
{
    stream_builder made;
    for (const found_unit& u : units) {
        const bytes body(stream.begin() + u.start + 3, stream.begin() + u.fence);
        made.prefix(k, static_cast<std::uint32_t>(body.size())).raw(body);
    }
    return made;
}

class GenerationsOfNalFraming : public testing::TestWithParam<std::filesystem::path> {};

} // namespace

TEST_P(GenerationsOfNalFraming, FindTheSameUnitsInAnnexB)
{
    const guarded_buffer stream(support::read_file(GetParam()));
    const std::vector<found_unit> units = legacy_units(stream, 0);
    EXPECT_GT(units.size(), 3U);
    EXPECT_TRUE(newer_units(stream, 0) == units);
}

TEST_P(GenerationsOfNalFraming, FindTheSameUnitsBehindPrefixes)
{
    const guarded_buffer annexb(support::read_file(GetParam()));
    const std::vector<found_unit> units = legacy_units(annexb, 0);
    for (const unsigned int k : {3U, 4U}) {
        const guarded_buffer stream(prefixed(annexb, units, k));
        const std::vector<found_unit> again = legacy_units(stream, k);
        EXPECT_TRUE(newer_units(stream, k) == again);
        EXPECT_TRUE(std::equal(
            units.begin(), units.end(), again.begin(), again.end(),
            [](const found_unit& a, const found_unit& b) { return a.header == b.header && a.payload == b.payload; }));
    }
}

TEST_P(GenerationsOfNalFraming, WriteTheSameBytes)
{
    const guarded_buffer stream(support::read_file(GetParam()));
    for (const found_unit& u : legacy_units(stream, 0)) {
        const guarded_buffer payload(u.payload);
        const auto header = static_cast<unsigned char>(u.header);
        for (const unsigned int k : {0U, 3U, 4U})
            ASSERT_TRUE(newer_written(k, header, payload) == legacy_written(k, header, payload)) << u.start;
    }
}

INSTANTIATE_TEST_SUITE_P(Streams, GenerationsOfNalFraming, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& tested) { return support::test_name(tested.param); });

TEST(GenerationsOfNalWriting, AreTheSameForRandomPayloadsButForTwoDepartures)
{
    support::random_source random(68);
    for (int round = 0; round < 3000; ++round) {
        const guarded_buffer payload(support::zero_heavy_up_to(random, 300));
        for (unsigned int k = 0; k <= 4; ++k)
            ASSERT_EQ(support::newer_of(legacy_written(k, support::sps, payload), k, payload),
                      newer_written(k, support::sps, payload));
    }
}

TEST(GenerationsOfNalWriting, DifferInTwoZerosAtTheEndInAnnexBAlone)
{
    const guarded_buffer payload(bytes{7, 0, 0});
    EXPECT_EQ((bytes{0, 0, 1, 0x67, 7, 0, 0, 3}), newer_written(0, 0x67, payload));
    EXPECT_EQ((bytes{0, 0, 1, 0x67, 7, 0, 0}), legacy_written(0, 0x67, payload));
    EXPECT_EQ((bytes{4, 0x67, 7, 0, 0}), newer_written(1, 0x67, payload));
}

TEST(GenerationsOfNalWriting, DifferInALengthThatItsPrefixDoesNotHold)
{
    const guarded_buffer payload(bytes(255, 7));
    EXPECT_EQ(bytes{}, newer_written(1, support::sps, payload));
    EXPECT_EQ(257U, legacy_written(1, support::sps, payload).size());
}

TEST(GenerationsOfNalReading, DifferInUnitsAbove16777214Bytes)
{
    for (const std::size_t length : {longest_legacy_unit, longest_legacy_unit + 1}) {
        const guarded_buffer stream(stream_builder().prefixed_unit(4, support::sps, bytes(length - 1, 7)).made());
        EXPECT_EQ(1U, newer_units(stream, 4).size());
        EXPECT_EQ(length == longest_legacy_unit ? 1U : 0U, legacy_units(stream, 4).size());
    }
}

TEST(GenerationsOfNalReading, DifferInAStartCodeInsideAPrefixedUnit)
{
    const guarded_buffer stream(
        stream_builder().prefixed_unit(2, support::sps, {9, 0, 0, 1, 7}).prefixed_unit(2, support::pps, {8}).made());
    EXPECT_EQ(2U, newer_units(stream, 2).size());
    const std::vector<found_unit> units = legacy_units(stream, 2);
    ASSERT_EQ(1U, units.size()) << "the next length is the 00 00 of the start code";
    EXPECT_EQ(newer_units(stream, 2)[0], units[0]);
}
