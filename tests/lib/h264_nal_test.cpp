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

const char* const names[32] = {
    "Unspecified",
    "Coded slice of a non-IDR picture, slice_layer_without_partitioning_rbsp()",
    "Coded slice data partition A, slice_data_partition_a_layer_rbsp()",
    "Coded slice data partition B, slice_data_partition_b_layer_rbsp()",
    "Coded slice data partition C, slice_data_partition_c_layer_rbsp()",
    "Coded slice of an IDR picture, slice_layer_without_partitioning_rbsp()",
    "Supplemental enhancement information (SEI), sei_rbsp()",
    "Sequence parameter set, seq_parameter_set_rbsp()",
    "Picture parameter set, pic_parameter_set_rbsp()",
    "Access unit delimiter, access_unit_delimiter_rbsp()",
    "End of sequence, end_of_seq_rbsp()",
    "End of stream, end_of_stream_rbsp()",
    "Filler data, filler_data_rbsp()",
    "Sequence parameter set extension, seq_parameter_set_extension_rbsp()",
    "Prefix NAL unit, prefix_nal_unit_rbsp()",
    "Subset sequence parameter set, subset_seq_parameter_set_rbsp()",
    "Depth parameter set, depth_parameter_set_rbsp()",
    "reserved",
    "reserved",
    "Coded slice of an auxiliary coded picture without partitioning, slice_layer_without_partitioning_rbsp()",
    "Coded slice extension, slice_layer_extension_rbsp()",
    "Coded slice extension for a depth view componentor a 3D-AVC texture view component, slice_layer_extension_rbsp()",
    "reserved",
    "reserved",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
};

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

TEST(NalUnitTypeName, TheTableHoldsEveryName)
{
    for (unsigned int type = 0; type < 32; ++type) {
        EXPECT_STREQ(names[type], h264_nal_unit_type_str[type]) << type;
        EXPECT_EQ(h264_nal_unit_type_str[type], h264_nal_unit_type_to_str(static_cast<h264_nal_unit_type>(type)));
    }
}

TEST(NalUnitTypeName, RowsOfOneTextAreOnePointer)
{
    for (unsigned int a = 0; a < 32; ++a)
        for (unsigned int b = a + 1; b < 32; ++b)
            EXPECT_EQ(std::string(names[a]) == names[b], h264_nal_unit_type_str[a] == h264_nal_unit_type_str[b])
                << a << " and " << b;
}

TEST(NalUnitTypeName, ATypeAbove31IsTheEmptyString)
{
    for (unsigned int type : {32U, 33U, 255U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_STREQ("", h264_nal_unit_type_to_str(static_cast<h264_nal_unit_type>(type))) << type;
}

TEST(NalUnitTypeName, OnlyTheNameOfType0IsCapitalised)
{
    EXPECT_STREQ("Unspecified", h264_nal_unit_type_to_str(brenik::h264_nal_unit_type_unspecified_0));
    EXPECT_STREQ("unspecified", h264_nal_unit_type_to_str(brenik::h264_nal_unit_type_unspecified_31));
}
