// Fingerprints: the same for the same bits, wherever they lie, and other ones for others.
#include "diff/fingerprint.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

using orv_h264::fingerprint;
using orv_h264::fingerprint_maker;
using orv_h264::fingerprint_of_bits;
using bytes = std::vector<unsigned char>;

bytes random_bytes(std::size_t size, unsigned seed)
{
    std::mt19937 random(seed);
    bytes made(size);
    for (unsigned char& byte : made)
        byte = static_cast<unsigned char>(random());
    return made;
}

/// The bytes behind so many bits that are 1.
bytes shifted(const bytes& of, unsigned bits)
{
    bytes made(of.size() + bits / 8 + 1, 0xFF);
    std::fill(made.begin() + bits / 8, made.end(), static_cast<unsigned char>(0));
    made[bits / 8] = static_cast<unsigned char>(0xFF00 >> bits % 8 & 0xFF);
    for (std::size_t i = 0; i < of.size(); ++i) {
        const unsigned wide = static_cast<unsigned>(of[i]) << 8 >> bits % 8;
        made[i + bits / 8] |= static_cast<unsigned char>(wide >> 8);
        made[i + bits / 8 + 1] |= static_cast<unsigned char>(wide & 0xFF);
    }
    return made;
}

TEST(Fingerprint, HowBytesAreCutMakesNoDifference)
{
    const bytes all = random_bytes(1000, 1);
    fingerprint_maker whole;
    whole.add(all);
    for (const std::size_t piece : {1U, 2U, 6U, 7U, 8U, 13U, 999U}) {
        fingerprint_maker pieces;
        for (std::size_t at = 0; at < all.size(); at += piece)
            pieces.add(std::span(all).subspan(at, std::min(piece, all.size() - at)));
        EXPECT_EQ(whole.made(), pieces.made()) << piece;
    }
}

TEST(Fingerprint, EveryChangeOfABitShows)
{
    bytes all = random_bytes(100, 2);
    std::set<fingerprint> seen;
    for (std::size_t bit = 0; bit < all.size() * 8; ++bit) {
        all[bit / 8] ^= static_cast<unsigned char>(0x80 >> bit % 8);
        fingerprint_maker maker;
        maker.add(all);
        seen.insert(maker.made());
        all[bit / 8] ^= static_cast<unsigned char>(0x80 >> bit % 8);
    }
    EXPECT_EQ(all.size() * 8, seen.size());
}

TEST(Fingerprint, LengthCounts)
{
    std::set<fingerprint> seen;
    fingerprint_maker maker;
    for (int i = 0; i < 50; ++i) {
        seen.insert(maker.made());
        maker.add(bytes{0});
    }
    EXPECT_EQ(50U, seen.size());
}

TEST(Fingerprint, BitsAreTheSameAtAnyPlace)
{
    for (const std::size_t size : {1U, 2U, 100U, 4096U, 5000U}) {
        bytes data = random_bytes(size, static_cast<unsigned>(size));
        data.back() |= 1;
        const fingerprint at_start = fingerprint_of_bits(data, 0);
        for (unsigned bits = 1; bits < 20; ++bits)
            EXPECT_EQ(at_start, fingerprint_of_bits(shifted(data, bits), bits))
                << size << " bytes, " << bits << " bits";
    }
}

TEST(Fingerprint, ZeroBitsAtTheEndMakeNoDifference)
{
    const bytes data = {0x12, 0x34, 0x50};
    const fingerprint made = fingerprint_of_bits(data, 3);
    EXPECT_EQ(made, fingerprint_of_bits(bytes{0x12, 0x34, 0x50, 0, 0, 0}, 3));
    EXPECT_NE(made, fingerprint_of_bits(bytes{0x12, 0x34, 0x58}, 3));
    EXPECT_EQ(17U, orv_h264::bits_up_to_last_one(data, 3));
    EXPECT_EQ(0U, orv_h264::bits_up_to_last_one(data, 20));
    EXPECT_EQ(0U, orv_h264::bits_up_to_last_one(bytes{0, 0}, 0));
    EXPECT_EQ(0U, orv_h264::bits_up_to_last_one({}, 5));
}

TEST(Fingerprint, PlacesBehindTheEndHaveNoBits)
{
    EXPECT_EQ(fingerprint_of_bits({}, 0), fingerprint_of_bits(bytes{1, 2}, 16));
    EXPECT_EQ(fingerprint_of_bits({}, 0), fingerprint_of_bits(bytes{1, 2}, 1000));
}

} // namespace
