// The legacy NAL scanner; that it does as the literal one is in nal_parser_literal_test.cpp.
#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include "support/legacy_scanned.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace {

using support::bytes;
using support::legacy_scanned;
using support::stream_builder;

constexpr std::size_t longest_unit = 16777214;

/// The payload that a unit with `payload` behind its header comes out as.
bytes scanned_payload(const bytes& payload)
{
    const legacy_scanned s(stream_builder().annexb_unit(support::sps, payload));
    EXPECT_EQ(1, s.state.found);
    return s.payload();
}

} // namespace

TEST(LegacyNalScan, UnitsComeOneAfterAnother)
{
    legacy_scanned s(bytes{0, 0, 1, 0x65, 0xAA, 0, 0, 3, 1, 0, 0, 1, 0x41});
    EXPECT_EQ(1, s.state.found);
    EXPECT_EQ(0, s.state.overflow);
    EXPECT_EQ(5, s.state.nal_unit_type);
    EXPECT_EQ(3, s.state.nal_ref_idc);
    EXPECT_EQ((bytes{0xAA, 0, 0, 1}), s.payload());
    EXPECT_EQ(s.output.begin(), s.state.nal);
    EXPECT_EQ(s.input.begin(), s.state.raw_nal);
    EXPECT_EQ(s.next, s.state.raw_nal_fence);
    EXPECT_EQ(9U, s.next_offset());
    s.scan();
    EXPECT_EQ(1, s.state.found);
    EXPECT_EQ(1, s.state.nal_unit_type);
    EXPECT_EQ(2, s.state.nal_ref_idc);
    EXPECT_EQ(bytes{}, s.payload());
    EXPECT_EQ(9U, s.raw_offset());
    EXPECT_EQ(s.input.end(), s.state.raw_nal_fence);
    EXPECT_EQ(s.input.end(), s.next);
}

TEST(LegacyNalScan, ARangeOfNothingIsReturnedAsItIs)
{
    const bytes stream = {0, 0, 1, support::sps};
    h264_nal_parser_state state;
    unsigned char out[4];
    for (unsigned int k = 0; k <= 4; ++k) {
        EXPECT_EQ(nullptr, h264_nal_parser_scan(&state, out, 4, nullptr, nullptr, k));
        EXPECT_EQ(stream.data() + 2, h264_nal_parser_scan(&state, out, 4, stream.data() + 2, stream.data(), k));
        EXPECT_EQ(0, state.found);
        EXPECT_EQ(nullptr, state.raw_nal);
    }
}

TEST(LegacyNalScan, AStartCodeBeforeAForbiddenHeaderIsPassedOver)
{
    const legacy_scanned s(
        stream_builder().annexb_unit(support::forbidden, {1, 2}).annexb_unit(support::pps, {3}).made());
    EXPECT_EQ(1, s.state.found);
    EXPECT_EQ(8, s.state.nal_unit_type);
    EXPECT_EQ(6U, s.raw_offset());
    EXPECT_EQ(bytes{3}, s.payload());
}

TEST(LegacyNalScan, EveryHeaderByteIsTakenApart)
{
    for (unsigned int header = 0; header < 256; ++header)
        for (const unsigned int k : {0U, 1U}) {
            const bytes stream = k == 0 ? bytes{0, 0, 1, static_cast<unsigned char>(header), 7}
                                        : bytes{2, static_cast<unsigned char>(header), 7};
            const legacy_scanned s(stream, k);
            EXPECT_EQ(header < 128 ? 1 : 0, s.state.found);
            EXPECT_EQ(header < 128 ? header / 32 : 7, s.state.nal_ref_idc);
            EXPECT_EQ(header < 128 ? header % 32 : 77, s.state.nal_unit_type);
        }
}

TEST(LegacyNalScan, EmulationPreventionBytesAreDropped)
{
    EXPECT_EQ((bytes{0, 0, 1}), scanned_payload({0, 0, 3, 1}));
    EXPECT_EQ((bytes{0, 0}), scanned_payload({0, 0, 3}));
    EXPECT_EQ((bytes{0, 0, 0, 0}), scanned_payload({0, 0, 3, 0, 0, 3}));
    EXPECT_EQ((bytes{7, 0, 0, 9}), scanned_payload({7, 0, 0, 3, 9})) << "whatever byte follows";
    EXPECT_EQ((bytes{0, 0, 3, 3}), scanned_payload({0, 0, 3, 3, 3}));
    EXPECT_EQ((bytes{1, 0, 3}), scanned_payload({1, 0, 3}));
    EXPECT_EQ((bytes{0, 1, 3}), scanned_payload({0, 1, 3}));
    EXPECT_EQ((bytes{0, 0, 4, 0, 0}), scanned_payload({0, 0, 4, 0, 0}));
}

TEST(LegacyNalScan, ZeroZeroAndLessThanThreeEndsAUnit)
{
    for (const unsigned char third : bytes{0, 1, 2})
        for (std::size_t before = 0; before < 5; ++before) {
            legacy_scanned s(
                stream_builder().annexb_unit(support::sps, {}).fill(before, 9).raw({0, 0, third, support::pps, 8}));
            EXPECT_EQ(bytes(before, 9), s.payload());
            EXPECT_EQ(4 + before, s.next_offset());
            EXPECT_EQ(s.next, s.state.raw_nal_fence);
        }
}

/// Two bytes that do not both fit are dropped, and the byte behind them still fits.
TEST(LegacyNalScan, APairIsDroppedWholeAndTheByteBehindItMayFit)
{
    const bytes stream = stream_builder().annexb_unit(support::sps, {4, 5, 6, 7, 8, 9});
    const bytes expected[] = {
        {}, {6}, {4, 5}, {4, 5, 6}, {4, 5, 6, 9}, {4, 5, 6, 7, 8}, {4, 5, 6, 7, 8, 9}, {4, 5, 6, 7, 8, 9}};
    for (std::size_t room = 0; room < std::size(expected); ++room) {
        const legacy_scanned s(stream, 0, room);
        EXPECT_EQ(expected[room], s.payload()) << room;
        EXPECT_EQ(room < 6 ? 1 : 0, s.state.overflow);
        EXPECT_EQ(s.input.end(), s.state.raw_nal_fence);
    }
}

TEST(LegacyNalScan, AnOutputOfNothingMayBeNull)
{
    const bytes stream = stream_builder().annexb_unit(support::sps, {1, 2, 9, 0, 0, 3});
    h264_nal_parser_state state;
    const unsigned char* const end = stream.data() + stream.size();
    EXPECT_EQ(end, h264_nal_parser_scan(&state, nullptr, 0, stream.data(), end, 0));
    EXPECT_EQ(1, state.found);
    EXPECT_EQ(1, state.overflow);
    EXPECT_EQ(nullptr, state.nal_fence);
}

TEST(LegacyNalScan, ALengthOfZeroGivesUpTheRange)
{
    for (unsigned int k = 1; k <= 4; ++k) {
        const legacy_scanned s(stream_builder().prefix(k, 0).prefixed_unit(k, support::sps, {1}), k);
        EXPECT_EQ(s.input.end(), s.next);
        EXPECT_TRUE(s.took_nothing());
        EXPECT_EQ(0U, s.raw_offset());
        EXPECT_EQ(nullptr, s.state.raw_nal_fence);
    }
}

TEST(LegacyNalScan, ACutUnitGivesUpTheRange)
{
    for (unsigned int k = 1; k <= 4; ++k)
        for (std::size_t there = 0; there <= 3; ++there) {
            const legacy_scanned s(stream_builder().prefix(k, 3).raw(bytes(there, 7)), k);
            EXPECT_EQ(s.input.end(), s.next);
            EXPECT_EQ(there == 3, !s.took_nothing());
            EXPECT_EQ(there == 3 ? s.input.end() : nullptr, s.state.raw_nal_fence);
        }
}

TEST(LegacyNalScan, APrefixedUnitWithAForbiddenHeaderIsSkipped)
{
    for (unsigned int k = 1; k <= 4; ++k) {
        legacy_scanned s(
            stream_builder().prefixed_unit(k, support::forbidden, {0, 0, 1}).prefixed_unit(k, support::pps, {9}), k);
        EXPECT_EQ(k + 4, s.next_offset());
        EXPECT_TRUE(s.took_nothing());
        EXPECT_EQ(0U, s.raw_offset());
        EXPECT_EQ(nullptr, s.state.raw_nal_fence);
        s.scan();
        EXPECT_EQ(1, s.state.found);
        EXPECT_EQ(8, s.state.nal_unit_type);
    }
}

/// The bytes behind the place are then taken for a length prefix.
TEST(LegacyNalScan, APrefixedUnitEndsAtAStartCodeInsideIt)
{
    for (unsigned int k = 1; k <= 4; ++k)
        for (const unsigned char third : bytes{0, 1, 2}) {
            legacy_scanned s(stream_builder().prefixed_unit(k, support::sps, {9, 0, 0, third, 1, 8, 7}), k);
            EXPECT_EQ(1, s.state.found);
            EXPECT_EQ(bytes{9}, s.payload());
            EXPECT_EQ(k + 2, s.next_offset());
            EXPECT_EQ(s.next, s.state.raw_nal_fence);
            s.scan();
            EXPECT_EQ(k + 2, s.raw_offset());
        }
}

TEST(LegacyNalScan, AUnitOf16777215BytesGivesUpTheRange)
{
    for (const unsigned int k : {3U, 4U})
        for (const std::size_t length : {longest_unit, longest_unit + 1}) {
            const legacy_scanned s(stream_builder()
                                       .prefix(k, static_cast<std::uint32_t>(length))
                                       .fill(1, support::sps)
                                       .fill(length - 1, 0x55)
                                       .raw({7, 7}),
                                   k, longest_unit);
            if (length == longest_unit) {
                EXPECT_EQ(longest_unit - 1, s.payload().size());
                EXPECT_EQ(k + longest_unit, s.next_offset());
            } else {
                EXPECT_TRUE(s.took_nothing());
                EXPECT_EQ(s.input.end(), s.next);
            }
        }
}
