// The two generations of NAL framing, which share no code, against each other: over real streams the newer reader and
// the legacy scanner find the same units, and both writers write the same bytes. Where they part is told, too.
#include "support/guarded_writer.h"
#include "support/legacy_nal_written.h"
#include "support/legacy_units.h"
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
using support::legacy_nal_written;
using support::legacy_units;
using support::stream_builder;

constexpr std::size_t longest_legacy_unit = 16777214;

brenik::h2645_common_nalfmt framing(unsigned int nal_length_size)
{
    return static_cast<brenik::h2645_common_nalfmt>(nal_length_size == 0 ? brenik::nalfmt_annexb : nal_length_size);
}

/// All units that the newer reader finds.
std::vector<found_unit> newer_units(const guarded_buffer& stream, unsigned int nal_length_size)
{
    std::vector<found_unit> units;
    bytes out(stream.size() + 3);
    brenik::h264_nal_reader reader(framing(nal_length_size));
    const auto offset = [&](const unsigned char* p) { return static_cast<std::size_t>(p - stream.begin()); };
    for (unsigned char* next = stream.begin();; next = reader.next) {
        reader.scan(next, stream.end());
        if (!reader.found || reader.incomplete)
            return units;
        const std::size_t fence = offset(reader.find_unit_end());
        const std::size_t size = reader.block_decode(out.data(), out.size());
        units.push_back({offset(reader.nal_start), fence, static_cast<unsigned char>(reader.nal.encode_header()),
                         bytes(out.data(), out.data() + size)});
    }
}

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

bytes newer_written(unsigned int k, unsigned char header, const bytes& payload)
{
    support::guarded_writer w(framing(k), brenik::h264_nal_writer::recommended_output_size(payload.size()));
    w.encode(header, payload);
    return w.output();
}

bytes legacy_written(unsigned int k, unsigned char header, const bytes& payload)
{
    return legacy_nal_written(payload.size() * 3 / 2 + 16, k, header, payload).output();
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
    for (const found_unit& u : legacy_units(stream, 0))
        for (const unsigned int k : {0U, 3U, 4U})
            ASSERT_TRUE(newer_written(k, u.header, u.payload) == legacy_written(k, u.header, u.payload)) << u.start;
}

INSTANTIATE_TEST_SUITE_P(Streams, GenerationsOfNalFraming, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& tested) { return support::test_name(tested.param); });

TEST(GenerationsOfNalWriting, AreTheSameForRandomPayloadsWhereAPrefixHoldsTheLength)
{
    support::random_source random(68);
    for (int round = 0; round < 3000; ++round) {
        bytes payload = support::zero_heavy_up_to(random, 150);
        if (!payload.empty() && payload.back() == 0)
            payload.back() = 0x80;
        for (unsigned int k = 0; k <= 4; ++k)
            ASSERT_EQ(newer_written(k, support::sps, payload), legacy_written(k, support::sps, payload));
    }
}

TEST(GenerationsOfNalWriting, DifferInTwoZerosAtTheEndInAnnexBAlone)
{
    for (std::size_t zeros = 0; zeros <= 9; ++zeros)
        for (unsigned int k = 0; k <= 4; ++k) {
            const bytes payload = stream_builder().raw({7}).zeros(zeros);
            bytes expected = legacy_written(k, support::sps, payload);
            if (k == 0 && zeros != 0 && zeros % 2 == 0)
                expected.push_back(3);
            EXPECT_EQ(expected, newer_written(k, support::sps, payload)) << zeros << " zeros, prefix of " << k;
        }
}

TEST(GenerationsOfNalWriting, DifferInALengthThatItsPrefixDoesNotHold)
{
    EXPECT_EQ(bytes{}, newer_written(1, support::sps, bytes(255, 7)));
    EXPECT_EQ(257U, legacy_written(1, support::sps, bytes(255, 7)).size());
    EXPECT_EQ(newer_written(1, support::sps, bytes(254, 7)), legacy_written(1, support::sps, bytes(254, 7)));
}

TEST(GenerationsOfNalWriting, DifferInAnOutputThatIsTooSmall)
{
    const bytes payload(40, 7);
    support::guarded_writer w(brenik::nalfmt_annexb, 20);
    EXPECT_EQ(0U, w.encode(support::sps, payload));
    EXPECT_EQ(17, legacy_nal_written(20, 0, support::sps, payload).result);
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
