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

} // namespace
