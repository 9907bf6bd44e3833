#include <orv-utils-v4/h2645_common/uuid.h>

#include <gtest/gtest.h>

#include <cstddef>

namespace {

/// Its bytes are those of no other place, with a zero among them.
constexpr iso_iec_11578_uuid counted = {{0, 17, 34, 51, 68, 85, 102, 119, 136, 153, 170, 187, 204, 221, 238, 255}};

} // namespace

TEST(Uuid, AnEqualCopyAndItselfAreEqual)
{
    const iso_iec_11578_uuid copy = counted;
    EXPECT_TRUE(counted == copy);
    EXPECT_TRUE(copy == counted);
    EXPECT_TRUE(copy == copy);
    EXPECT_TRUE(iso_iec_11578_uuid{} == iso_iec_11578_uuid{});
}

TEST(Uuid, OneByteThatDiffersMakesADifference)
{
    for (std::size_t i = 0; i < sizeof counted; ++i)
        for (unsigned int value = 0; value < 256; ++value) {
            iso_iec_11578_uuid other = counted;
            other.bytes[i] = static_cast<unsigned char>(value);
            EXPECT_EQ(value == counted.bytes[i], counted == other) << i << ' ' << value;
            EXPECT_EQ(value == counted.bytes[i], other == counted) << i << ' ' << value;
        }
}

TEST(Uuid, TheSameBytesInAnotherOrderAreAnother)
{
    iso_iec_11578_uuid turned{};
    for (std::size_t i = 0; i < sizeof counted; ++i)
        turned.bytes[i] = counted.bytes[15 - i];
    EXPECT_FALSE(counted == turned);
}
