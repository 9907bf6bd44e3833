#include <orv-utils-v4/h264_legacy/golomb.h>

#include "support/bit_writer.h"
#include "support/guarded_buffer.h"
#include "support/legacy_bits_walk.h"
#include "support/stream_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using support::bit_writer;
using support::bytes;
using support::guarded_buffer;
using support::legacy_bits_walk;

constexpr unsigned int smallest_of_24_zeros = 16777215;
constexpr unsigned int largest = 33554430;

/// `written`, and enough behind it for an open-ended reader.
bytes with_room(const bit_writer& written)
{
    bytes made = written.bytes();
    made.resize(made.size() + 10);
    return made;
}

/// One code of each kind over `content`, which the unmapped page follows.
struct decoded {
    guarded_buffer data;
    unsigned int ue;
    int se;
    std::size_t consumed;

    explicit decoded(const bytes& content) : data(content)
    {
        be_bitfield b;
        be_bitfield_open(&b, data.begin());
        se = h264_se_golomb_read(&b);
        be_bitfield_open(&b, data.begin());
        ue = h264_ue_golomb_read(&b);
        consumed = static_cast<std::size_t>(b.ptr - data.begin() - 4) * 8 + b.bits;
    }
};

decoded decode(const bit_writer& written)
{
    return decoded(with_room(written));
}

} // namespace

TEST(LegacyGolomb, EightZeroBytesAreACodeOf48Bits)
{
    const struct {
        bit_writer bits;
        unsigned int ue;
        int se;
        std::size_t consumed;
    } cases[] = {{bit_writer().u(8, 0x80), 0, 0, 1},
                 {bit_writer().u(5, 0b00111), 6, -3, 5},
                 {bit_writer().u(7, 0b0001000), 7, 4, 7},
                 {bit_writer().ue(smallest_of_24_zeros - 1), smallest_of_24_zeros - 1, -8388607, 47},
                 {bit_writer().u(64, 0), smallest_of_24_zeros, 8388608, 48},
                 {bit_writer().u(24, 0).u(24, 0xFFFFFF), largest, -16777215, 48}};
    for (const auto& c : cases) {
        const decoded code = decode(c.bits);
        EXPECT_EQ(c.ue, code.ue);
        EXPECT_EQ(c.se, code.se);
        EXPECT_EQ(c.consumed, code.consumed);
    }
}

/// The one bit behind the zeros counts as the first bit of the suffix, and the last bit of the suffix is left over.
TEST(LegacyGolomb, ACodeOfExactly24ZerosIsMisread)
{
    for (const std::uint32_t value : {smallest_of_24_zeros, 20000001U, largest}) {
        const decoded code = decode(bit_writer().ue(value));
        const std::uint32_t suffix = value - smallest_of_24_zeros;
        EXPECT_EQ(smallest_of_24_zeros + (1U << 23) + suffix / 2, code.ue);
        EXPECT_EQ(48U, code.consumed);
    }
}

TEST(LegacyGolomb, PrefixesOf0To30ZerosWithSuffixesOfZerosAndOnes)
{
    for (unsigned int zeros = 0; zeros <= 30; ++zeros)
        for (const std::uint64_t suffix : {std::uint64_t{0}, ~std::uint64_t{0}})
            for (unsigned int first = 0; first < 8; ++first) {
                const bytes content = with_room(bit_writer().u(first, 0).u(zeros, 0).flag(true).u(zeros, suffix));
                const guarded_buffer data(content);
                legacy_bits_walk walk(data.begin(), data.size(), legacy_bits_walk::end::open);
                ASSERT_EQ("", walk.read(static_cast<unsigned char>(first)));
                ASSERT_EQ("", walk.ue());
                if (zeros < 24) {
                    ASSERT_EQ(first + 2 * zeros + 1, walk.model.position);
                } else {
                    ASSERT_EQ(first + 48, walk.model.position);
                }
            }
}

TEST(LegacyGolomb, EveryStringOf16BitsAgainstSingleBits)
{
    guarded_buffer data(bytes{0, 0, 0x93, 0x6C, 0x5A, 0xE1, 0, 0, 0, 0});
    for (unsigned int bits = 0; bits < 65536; ++bits) {
        data.begin()[0] = static_cast<unsigned char>(bits / 256);
        data.begin()[1] = static_cast<unsigned char>(bits % 256);
        legacy_bits_walk ue(data.begin(), data.size(), legacy_bits_walk::end::open);
        ASSERT_EQ("", ue.ue()) << bits;
        legacy_bits_walk se(data.begin(), data.size(), legacy_bits_walk::end::open);
        ASSERT_EQ("", se.se()) << bits;
        ASSERT_EQ("", se.se()) << bits;
    }
}

TEST(LegacyGolomb, ValuesWrittenAreRead)
{
    for (std::uint32_t value = 0; value < smallest_of_24_zeros; value += 1 + value / 7) {
        const decoded code = decode(bit_writer().ue(value));
        ASSERT_EQ(value, code.ue);
        const auto number = static_cast<std::int32_t>(value / 2);
        ASSERT_EQ(number, decode(bit_writer().se(number)).se);
        ASSERT_EQ(-number, decode(bit_writer().se(-number)).se);
    }
}
