// Units in their framing: start codes, length prefixes, and emulation prevention from behind the header bytes on.
#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;
using support::guarded_buffer;

constexpr std::size_t enough(std::size_t size)
{
    return size + size / 2 + 40;
}

bytes framed(const bytes& unit, unsigned prefix_size, bool zero_byte = false)
{
    const guarded_buffer out(enough(unit.size()));
    const std::size_t size = frame(unit.data(), unit.size(), prefix_size, zero_byte, out.begin(), out.size());
    EXPECT_TRUE(out.surroundings_untouched());
    return {out.begin(), out.begin() + size};
}

TEST(Frame, StartCodesAreThreeOrFourBytes)
{
    EXPECT_EQ(framed({0x67, 1, 2}, 0), (bytes{0, 0, 1, 0x67, 1, 2}));
    EXPECT_EQ(framed({0x67, 1, 2}, 0, true), (bytes{0, 0, 0, 1, 0x67, 1, 2}));
    EXPECT_EQ(framed({0x0A}, 0), (bytes{0, 0, 1, 0x0A}));
}

TEST(Frame, LengthPrefixesHaveTheirBytesAndNoZeroByte)
{
    EXPECT_EQ(framed({0x67, 1, 2}, 1), (bytes{3, 0x67, 1, 2}));
    EXPECT_EQ(framed({0x67, 1, 2}, 2), (bytes{0, 3, 0x67, 1, 2}));
    EXPECT_EQ(framed({0x67, 1, 2}, 3, true), (bytes{0, 0, 3, 0x67, 1, 2}));
    EXPECT_EQ(framed({0x67, 1, 2}, 4, true), (bytes{0, 0, 0, 3, 0x67, 1, 2}));
    EXPECT_EQ(framed({0x0A}, 1), (bytes{1, 0x0A}));
}

TEST(Frame, EscapesStandBehindTwoZeros)
{
    EXPECT_EQ(framed({0x67, 0, 0, 1, 0, 0, 3, 0, 0, 4}, 1), (bytes{12, 0x67, 0, 0, 3, 1, 0, 0, 3, 3, 0, 0, 4}));
    EXPECT_EQ(framed({0x67, 0, 0, 0, 0, 0, 9}, 1), (bytes{9, 0x67, 0, 0, 3, 0, 0, 3, 0, 9}));
}

TEST(Frame, ZerosAtTheEndAreEscapedInEveryFraming)
{
    for (unsigned k = 1; k <= 4; ++k)
        EXPECT_EQ(framed({0x65, 0x80, 0, 0}, k),
                  bytes(support::stream_builder().prefix(k, 5).raw({0x65, 0x80, 0, 0, 3})));
    EXPECT_EQ(framed({0x65, 0x80, 0, 0}, 0), (bytes{0, 0, 1, 0x65, 0x80, 0, 0, 3}));
}

// Type 14 with an SVC extension, type 20 with an MVC extension, type 21 with a 3D-AVC one
TEST(Frame, HeadersOfThreeAndFourBytesHaveNoEscapes)
{
    EXPECT_EQ(framed({0x6E, 0x80, 0, 0x03, 0x11}, 1), (bytes{5, 0x6E, 0x80, 0, 0x03, 0x11}));
    EXPECT_EQ(framed({0x74, 0, 0, 0x01, 0x11}, 1), (bytes{5, 0x74, 0, 0, 0x01, 0x11}));
    EXPECT_EQ(framed({0x75, 0x80, 0, 0x11}, 1), (bytes{4, 0x75, 0x80, 0, 0x11}));
}

TEST(Frame, EscapesStandRightBehindALongHeader)
{
    EXPECT_EQ(framed({0x74, 0, 0, 0x01, 0, 0, 1}, 1), (bytes{8, 0x74, 0, 0, 0x01, 0, 0, 3, 1}));
    EXPECT_EQ(framed({0x75, 0x80, 0, 0, 0, 2}, 1), (bytes{7, 0x75, 0x80, 0, 0, 0, 3, 2}));
    EXPECT_EQ(framed({0x67, 0, 0, 2}, 0), (bytes{0, 0, 1, 0x67, 0, 0, 3, 2}));
}

TEST(Frame, AHeaderWithTheForbiddenBitGoesOutAsItIs)
{
    EXPECT_EQ(framed({0xE7, 1, 0, 0, 1}, 0), (bytes{0, 0, 1, 0xE7, 1, 0, 0, 3, 1}));
    EXPECT_EQ(framed({0x80}, 1), (bytes{1, 0x80}));
    EXPECT_EQ(framed({0xF4, 0, 0, 0x01, 0x11}, 2), (bytes{0, 5, 0xF4, 0, 0, 0x01, 0x11}));
}

TEST(Frame, AHeaderThatIsCutIsFramedAsItIs)
{
    EXPECT_EQ(framed({0x74}, 1), (bytes{1, 0x74}));
    EXPECT_EQ(framed({0x74, 0, 0}, 1), (bytes{3, 0x74, 0, 0}));
}

TEST(Frame, ALengthThatDoesNotFitItsPrefixGivesNothing)
{
    EXPECT_EQ(framed(bytes(255, 0x61), 1).size(), 256U);
    EXPECT_EQ(framed(bytes(256, 0x61), 1).size(), 0U);
    EXPECT_EQ(framed(bytes(65535, 0x61), 2).size(), 65537U);
    EXPECT_EQ(framed(bytes(65536, 0x61), 2).size(), 0U);
    EXPECT_EQ(framed(bytes(65536, 0x61), 3).size(), 65539U);
    bytes escaped(255, 0x61);
    escaped[100] = escaped[101] = escaped[102] = 0;
    EXPECT_EQ(framed(escaped, 1).size(), 0U);
}

TEST(Frame, NothingAndPrefixesOfFiveBytesGiveNothing)
{
    EXPECT_EQ(framed({}, 0), bytes());
    EXPECT_EQ(framed({0x67, 1}, 5), bytes());
}

TEST(Frame, RoomForTheResultAndAStartCodeIsEnoughAndOneLessIsNot)
{
    for (const bytes& unit : {bytes{0x67, 1, 2, 3}, bytes{0x67, 0, 0, 1, 0, 0}, bytes{0x74, 0, 0, 1, 0, 0, 1},
                              bytes{0x75, 0x80, 0, 7}, bytes{0x0A}}) {
        for (unsigned prefix_size = 0; prefix_size <= 4; ++prefix_size) {
            const bytes whole = framed(unit, prefix_size);
            const std::size_t needed = whole.size() + (prefix_size == 1 || prefix_size == 2 ? 3 - prefix_size : 0);
            for (std::size_t room = 0; room <= needed + 1; ++room) {
                const guarded_buffer out(room);
                const std::size_t size = frame(unit.data(), unit.size(), prefix_size, false, out.begin(), room);
                EXPECT_EQ(size, room < needed ? 0 : whole.size()) << prefix_size << " " << room;
                EXPECT_EQ(bytes(out.begin(), out.begin() + size), size == 0 ? bytes() : whole);
                EXPECT_TRUE(out.surroundings_untouched());
            }
        }
    }
}

/// The bytes of frame() with escapes as clause 7.3.1 has them, byte by byte.
bytes literal_escapes(const bytes& unit, std::size_t header)
{
    bytes out(unit.begin(), unit.begin() + static_cast<std::ptrdiff_t>(header));
    unsigned zeros = 0;
    for (std::size_t i = header; i < unit.size(); ++i) {
        if (zeros == 2 && unit[i] <= 3) {
            out.push_back(3);
            zeros = 0;
        }
        zeros = unit[i] == 0 ? zeros + 1 : 0;
        out.push_back(unit[i]);
    }
    if (zeros == 2)
        out.push_back(3);
    return out;
}

TEST(Frame, HostileBytesComeBackByUnescape)
{
    std::mt19937 random(3);
    constexpr unsigned char soup[] = {0, 0, 0, 1, 2, 3, 4, 0x80};
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        bytes unit(6 + random() % 40);
        for (unsigned char& byte : unit)
            byte = soup[random() % std::size(soup)];
        constexpr unsigned char types[] = {0x67, 0x74, 0x75, 0x6E};
        unit[0] = types[random() % std::size(types)];
        const std::size_t header = unit[0] == 0x67 ? 1 : unit[0] == 0x75 && (unit[1] & 0x80) != 0 ? 3 : 4;
        const bytes prefixed = framed(unit, 4);
        ASSERT_GE(prefixed.size(), 4U);
        const bytes escaped(prefixed.begin() + 4, prefixed.end());
        ASSERT_EQ(escaped, literal_escapes(unit, header));
        bytes back(escaped.size());
        back.resize(unescape(escaped.data(), escaped.size(), back.data(), back.size()));
        ASSERT_EQ(back, unit);
        byte_map place(escaped.data(), escaped.size());
        for (std::size_t i = 0; i < unit.size(); ++i)
            ASSERT_EQ(escaped[place(i)], unit[i]) << i;
        ASSERT_EQ(place(unit.size()), escaped.size());
    }
}

bytes framed_as_it_stands(const bytes& unit, unsigned prefix_size, bool zero_byte = false)
{
    const guarded_buffer from(unit);
    const guarded_buffer out(unit.size() + 4);
    const std::size_t size = frame_escaped(from.begin(), unit.size(), prefix_size, zero_byte, out.begin(), out.size());
    EXPECT_TRUE(out.surroundings_untouched());
    return {out.begin(), out.begin() + size};
}

TEST(FrameEscaped, AUnitStandsBehindItsFraming)
{
    const bytes unit = {0x41, 0, 0, 3, 1, 9};
    EXPECT_EQ(framed_as_it_stands(unit, 0), (bytes{0, 0, 1, 0x41, 0, 0, 3, 1, 9}));
    EXPECT_EQ(framed_as_it_stands(unit, 0, true), (bytes{0, 0, 0, 1, 0x41, 0, 0, 3, 1, 9}));
    EXPECT_EQ(framed_as_it_stands(unit, 1), (bytes{6, 0x41, 0, 0, 3, 1, 9}));
    EXPECT_EQ(framed_as_it_stands(unit, 2), (bytes{0, 6, 0x41, 0, 0, 3, 1, 9}));
    EXPECT_EQ(framed_as_it_stands(unit, 3), (bytes{0, 0, 6, 0x41, 0, 0, 3, 1, 9}));
    EXPECT_EQ(framed_as_it_stands(unit, 4, true), (bytes{0, 0, 0, 6, 0x41, 0, 0, 3, 1, 9}));
    EXPECT_EQ(framed_as_it_stands({0x41, 0, 0, 3}, 1), (bytes{4, 0x41, 0, 0, 3})); // cabac_zero_words
}

TEST(FrameEscaped, WhatWouldEndAUnitIsRefusedAtEveryPlace)
{
    for (std::size_t size = 4; size < 300; size += size < 20 ? 1 : 37)
        for (std::size_t place = 1; place + 3 <= size; ++place)
            for (unsigned char third = 0; third < 5; ++third) {
                bytes unit(size, 0x41);
                unit[place] = unit[place + 1] = 0;
                unit[place + 2] = third;
                const bool is_sound = third >= 3;
                ASSERT_EQ(is_sound ? size + 1 + (size > 255 ? 1 : 0) : 0,
                          framed_as_it_stands(unit, size > 255 ? 2 : 1).size())
                    << size << ", " << place << ", " << int{third};
            }
}

TEST(FrameEscaped, ZerosAtTheEndAreRefused)
{
    EXPECT_TRUE(framed_as_it_stands({0x41, 0x80, 0}, 0).empty());
    EXPECT_TRUE(framed_as_it_stands({0x41, 0x80, 0, 0}, 4).empty());
    EXPECT_TRUE(framed_as_it_stands({0}, 0).empty());
}

TEST(FrameEscaped, WhatDoesNotFitIsRefused)
{
    const bytes unit(256, 0x41);
    EXPECT_TRUE(framed_as_it_stands(unit, 1).empty());
    EXPECT_TRUE(framed_as_it_stands(unit, 5).empty());
    EXPECT_TRUE(framed_as_it_stands({}, 0).empty());
    for (std::size_t room = 0; room < 260; ++room) {
        const guarded_buffer out(room);
        EXPECT_EQ(room < 259 ? 0 : 259, frame_escaped(unit.data(), unit.size(), 0, false, out.begin(), room)) << room;
        EXPECT_TRUE(out.surroundings_untouched()) << room;
    }
}

TEST(FrameEscaped, MovesAUnitInItsOwnBuffer)
{
    for (std::size_t size = 1; size < 400; size += 3)
        for (const std::size_t from : {0U, 3U, 4U, 5U, 70U}) {
            bytes buffer(from, 0xEE);
            for (std::size_t i = 0; i < size; ++i)
                buffer.push_back(static_cast<unsigned char>(1 + i % 255));
            const bytes unit(buffer.begin() + static_cast<std::ptrdiff_t>(from), buffer.end());
            buffer.resize(size + 80);
            ASSERT_EQ(size + 4, frame_escaped(buffer.data() + from, size, 4, false, buffer.data(), buffer.size()));
            ASSERT_EQ(unit, bytes(buffer.begin() + 4, buffer.begin() + 4 + static_cast<std::ptrdiff_t>(size))) << from;
        }
}

} // namespace
