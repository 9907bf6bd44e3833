#include <orv-utils-v4/h264/nal.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using brenik::h264_nal;
using brenik::h264_nal_unit_type;
using brenik::h264_nal_unit_type_str;
using brenik::h264_nal_unit_type_to_str;

h264_nal decoded(unsigned int byte)
{
    h264_nal nal;
    nal.decode_header(static_cast<unsigned char>(byte));
    return nal;
}

} // namespace

TEST(Nal, ANewHeaderIsZeroAndInvalid)
{
    const h264_nal nal{};
    EXPECT_EQ(0, nal.nal_ref_idc);
    EXPECT_EQ(brenik::h264_nal_unit_type_unspecified_0, nal.nal_unit_type);
    EXPECT_FALSE(nal.valid);
    EXPECT_EQ(-1, nal.encode_header());
}

TEST(Nal, AnSpsHeaderGoesThereAndBack)
{
    const h264_nal nal = decoded(0x67);
    EXPECT_EQ(3, nal.nal_ref_idc);
    EXPECT_EQ(brenik::h264_nal_unit_type_sps, nal.nal_unit_type);
    EXPECT_TRUE(nal.valid);
    EXPECT_EQ(0x67, nal.encode_header());
}

TEST(Nal, EveryByteWithoutTheForbiddenBitGoesThereAndBack)
{
    for (unsigned int byte = 0; byte < 128; ++byte) {
        const h264_nal nal = decoded(byte);
        EXPECT_TRUE(nal.valid);
        EXPECT_EQ(byte / 32, nal.nal_ref_idc);
        EXPECT_EQ(byte % 32, nal.nal_unit_type);
        EXPECT_EQ(static_cast<int>(byte), nal.encode_header());
    }
}

TEST(Nal, EveryByteWithTheForbiddenBitChangesValidAlone)
{
    for (unsigned int byte = 128; byte < 256; ++byte) {
        h264_nal nal = decoded(0x65);
        nal.decode_header(static_cast<unsigned char>(byte));
        EXPECT_FALSE(nal.valid) << byte;
        EXPECT_EQ(3, nal.nal_ref_idc) << byte;
        EXPECT_EQ(brenik::h264_nal_unit_type_slice_idr, nal.nal_unit_type) << byte;
        EXPECT_EQ(-1, nal.encode_header()) << byte;
    }
}

TEST(Nal, AGoodByteAfterAForbiddenOneIsValidAgain)
{
    h264_nal nal = decoded(0x80);
    nal.decode_header(0x09);
    EXPECT_TRUE(nal.valid);
    EXPECT_EQ(0, nal.nal_ref_idc);
    EXPECT_EQ(brenik::h264_nal_unit_type_aud, nal.nal_unit_type);
}

TEST(Nal, MembersOutOfRangeAreMasked)
{
    h264_nal nal;
    nal.nal_ref_idc = 6;
    nal.nal_unit_type = static_cast<h264_nal_unit_type>(37);
    nal.valid = true;
    EXPECT_EQ(0x45, nal.encode_header());
    nal.nal_ref_idc = 255;
    nal.nal_unit_type = static_cast<h264_nal_unit_type>(0xFFFFFFFF);
    EXPECT_EQ(0x7F, nal.encode_header());
}

TEST(NalUnitTypeName, IsThatOfTheTableAndRowsOfOneTextAreOnePointer)
{
    for (unsigned int a = 0; a < 32; ++a) {
        EXPECT_EQ(h264_nal_unit_type_str[a], h264_nal_unit_type_to_str(static_cast<h264_nal_unit_type>(a)));
        for (unsigned int b = a + 1; b < 32; ++b)
            EXPECT_EQ(std::string(h264_nal_unit_type_str[a]) == h264_nal_unit_type_str[b],
                      h264_nal_unit_type_str[a] == h264_nal_unit_type_str[b])
                << a << " and " << b;
    }
}

TEST(NalUnitTypeName, ATypeAbove31IsTheEmptyString)
{
    for (unsigned int type : {32U, 33U, 255U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_STREQ("", h264_nal_unit_type_to_str(static_cast<h264_nal_unit_type>(type))) << type;
}
