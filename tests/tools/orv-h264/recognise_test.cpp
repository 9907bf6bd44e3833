#include "recognise.h"

#include "support/stream_builder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orv_h264::container_name;
using orv_h264::is_annexb;
using support::aud;
using support::bytes;
using support::idr_slice;
using support::pps;
using support::sps;
using support::stream_builder;

orv_h264::input_window window_of(const bytes& stream)
{
    return orv_h264::input_window([stream, at = std::size_t{0}](unsigned char* out, std::size_t size) mutable {
        const std::size_t count = std::min(size, stream.size() - at);
        std::copy_n(stream.data() + at, count, out);
        at += count;
        return count;
    });
}

bool annexb(const bytes& stream)
{
    orv_h264::input_window window = window_of(stream);
    return is_annexb(window);
}

std::string container(const bytes& stream)
{
    orv_h264::input_window window = window_of(stream);
    const char* const name = container_name(window);
    return name == nullptr ? "none" : name;
}

const bytes payload(40, 0x55);

TEST(Recognise, StartCodesOfThreeAndFourBytesAreAnnexB)
{
    EXPECT_TRUE(annexb(stream_builder().annexb_unit(sps, payload).annexb_unit(pps, payload)));
    EXPECT_TRUE(annexb(stream_builder().zeros(1).annexb_unit(aud, {0x10}).zeros(1).annexb_unit(sps, payload)));
}

TEST(Recognise, ALoneDelimiterIsAnnexB)
{
    EXPECT_TRUE(annexb(stream_builder().annexb_unit(aud, {0x10})));
    EXPECT_TRUE(annexb(stream_builder().zeros(1).annexb_unit(aud, {0x10})));
}

TEST(Recognise, AnnexBMayBeginInTheMiddleOfAUnit)
{
    EXPECT_TRUE(annexb(stream_builder().junk(500).annexb_unit(sps, payload)));
}

TEST(Recognise, AnnexBMayBeginWithBytesThatLookLikeLengths)
{
    // Two "units" of 30000 bytes and one beyond the look behind 2-byte prefixes, which hold start codes all over.
    stream_builder units;
    while (units.here() < 2 * orv_h264::recognise_size)
        units.zeros(1).annexb_unit(idr_slice, bytes(300, 0x55));
    bytes stream = units;
    for (const std::size_t at : {0U, 30002U, 60004U})
        std::copy_n(bytes(stream_builder().prefix(2, 30000).raw({idr_slice, 0x55, 0x55})).begin(), 5,
                    stream.begin() + static_cast<std::ptrdiff_t>(at));
    EXPECT_TRUE(annexb(stream));
}

TEST(Recognise, LengthPrefixesOfAnySizeAreNotAnnexB)
{
    for (std::size_t k = 1; k <= 4; ++k)
        EXPECT_FALSE(annexb(stream_builder().prefixed_unit(k, sps, payload).prefixed_unit(k, pps, payload))) << k;
}

TEST(Recognise, ALengthThatLooksLikeAStartCodeIsNotAnnexB)
{
    // 00 00 01 2D: a unit of 301 bytes behind a 4-byte prefix, or a start code before the header 2D.
    const bytes slice(300, 0x55);
    EXPECT_FALSE(annexb(stream_builder().prefixed_unit(4, idr_slice, slice).prefixed_unit(4, idr_slice, slice)));
    EXPECT_FALSE(annexb(stream_builder().prefixed_unit(4, idr_slice, slice)));
}

TEST(Recognise, LengthPrefixedUnitsThatGoOnBehindTheLookAreNotAnnexB)
{
    const bytes slice(300, 0x55);
    stream_builder stream;
    while (stream.here() < 2 * orv_h264::recognise_size)
        stream.prefixed_unit(4, idr_slice, slice);
    EXPECT_FALSE(annexb(stream));
}

TEST(Recognise, EmptyInputAndNoiseAreNotAnnexB)
{
    EXPECT_FALSE(annexb({}));
    EXPECT_FALSE(annexb(stream_builder().zeros(100)));
    EXPECT_FALSE(annexb(stream_builder().junk(100)));
}

TEST(Recognise, FewerBytesThanAnyAnnexBUnitAndZerosAloneHoldNothing)
{
    const auto nothing = [](const bytes& stream) {
        orv_h264::input_window window = window_of(stream);
        return orv_h264::holds_nothing(window);
    };
    EXPECT_TRUE(nothing({}));
    EXPECT_TRUE(nothing(stream_builder().junk(3)));
    EXPECT_TRUE(nothing(stream_builder().zeros(100)));
    EXPECT_TRUE(nothing(stream_builder().zeros(2 * orv_h264::recognise_size)));
    EXPECT_FALSE(nothing(stream_builder().junk(4)));
    EXPECT_FALSE(nothing(stream_builder().zeros(100).junk(1)));
    EXPECT_FALSE(nothing(stream_builder().annexb_unit(aud, {})));
}

TEST(Recognise, ContainersAreKnownByTheirFirstBytes)
{
    EXPECT_EQ(container(stream_builder().prefix(4, 24).raw({'f', 't', 'y', 'p', 'i', 's', 'o', 'm'})), "MP4");
    EXPECT_EQ(container(stream_builder().raw({0x1A, 0x45, 0xDF, 0xA3, 0x9F})), "Matroska");
    stream_builder packets;
    for (int i = 0; i < 3; ++i)
        packets.raw({'G'}).junk(187);
    EXPECT_EQ(container(packets), "MPEG transport stream");
}

TEST(Recognise, OtherBytesAreNoContainer)
{
    EXPECT_EQ(container({}), "none");
    EXPECT_EQ(container(stream_builder().raw({'G'}).junk(600)), "none");
    EXPECT_EQ(container(stream_builder().annexb_unit(sps, payload)), "none");
}

} // namespace
