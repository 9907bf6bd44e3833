// The layout in memory and the signatures of the legacy interface's bit reader, NAL scanner and writer, and decoder
// configuration record: member order, widths, offsets, constness. Sizes are those of LP64.
#include <orv-utils-v4/h264_legacy.h>

#include "support/dirty_memory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <type_traits>

namespace {

/// Whether every member is a T.
template <typename T, typename... Members>
constexpr bool all_are = (std::is_same_v<T, Members> && ...);

template <typename T>
constexpr bool plain_record = std::is_standard_layout_v<T>&& std::is_trivially_copyable_v<T>;

using u8 = std::uint8_t;
using u32 = std::uint32_t;
using byte_ptr = const unsigned char*;
using bits = be_bitfield;
using state = h264_nal_parser_state;
using record = h264_AVCDecoderConfigurationRecord;

} // namespace

static_assert(sizeof(void*) == 8 && sizeof(std::size_t) == 8, "the sizes below");

// The bit reader
static_assert(plain_record<bits> && sizeof(bits) == 16);
static_assert(all_are<byte_ptr, decltype(bits::ptr)> && all_are<u32, decltype(bits::word)>);
static_assert(all_are<u8, decltype(bits::bits), decltype(bits::open)>);
static_assert(offsetof(bits, ptr) == 0 && offsetof(bits, word) == 8);
static_assert(offsetof(bits, bits) == 12 && offsetof(bits, open) == 13);
static_assert(std::is_same_v<decltype(&be_bitfield_open), void (*)(be_bitfield*, byte_ptr)>);
static_assert(std::is_same_v<decltype(&be_bitfield_open_until), void (*)(be_bitfield*, byte_ptr, byte_ptr)>);
static_assert(std::is_same_v<decltype(&be_bitfield_read), u32 (*)(be_bitfield*, unsigned char)>);
static_assert(std::is_same_v<decltype(&be_bitfield_read_until), u32 (*)(be_bitfield*, unsigned char, byte_ptr)>);
static_assert(std::is_same_v<decltype(&h264_ue_golomb_read), unsigned int (*)(be_bitfield*)>);
static_assert(std::is_same_v<decltype(&h264_se_golomb_read), int (*)(be_bitfield*)>);

// The NAL scanner
static_assert(plain_record<state> && sizeof(state) == 40);
static_assert(all_are<u8, decltype(state::found), decltype(state::overflow), decltype(state::nal_ref_idc),
                      decltype(state::nal_unit_type)>);
static_assert(all_are<unsigned char*, decltype(state::nal), decltype(state::nal_fence)>);
static_assert(all_are<byte_ptr, decltype(state::raw_nal), decltype(state::raw_nal_fence)>);
static_assert(offsetof(state, found) == 0 && offsetof(state, overflow) == 1);
static_assert(offsetof(state, nal_ref_idc) == 2 && offsetof(state, nal_unit_type) == 3);
static_assert(offsetof(state, nal) == 8 && offsetof(state, nal_fence) == 16);
static_assert(offsetof(state, raw_nal) == 24 && offsetof(state, raw_nal_fence) == 32);
static_assert(std::is_same_v<decltype(&h264_nal_parser_scan),
                             byte_ptr (*)(state*, unsigned char*, std::size_t, byte_ptr, byte_ptr, unsigned int)>);
static_assert(std::is_same_v<decltype(&h264_nal_parser_unit_type_to_str), const char* (*)(unsigned char)>);
static_assert(std::is_same_v<decltype(&h264_nal_dump_dbg), void (*)(FILE*, byte_ptr, byte_ptr, unsigned int, int)>);

// The NAL writer
static_assert(std::is_same_v<decltype(&h264_nal_write), int (*)(unsigned char*, std::size_t, unsigned char*,
                                                                std::size_t, unsigned int, unsigned char)>);

// The decoder configuration record
static_assert(plain_record<record> && sizeof(record) == 48);
static_assert(all_are<u8, decltype(record::configurationVersion), decltype(record::AVCProfileIndication),
                      decltype(record::profile_compatibility), decltype(record::AVCLevelIndication),
                      decltype(record::lengthSizeMinusOne), decltype(record::numOfSequenceParameterSets),
                      decltype(record::numOfPictureParameterSets)>);
static_assert(all_are<byte_ptr, decltype(record::sps_list), decltype(record::sps_list_end), decltype(record::pps_list),
                      decltype(record::pps_list_end)>);
static_assert(offsetof(record, configurationVersion) == 0 && offsetof(record, AVCProfileIndication) == 1);
static_assert(offsetof(record, profile_compatibility) == 2 && offsetof(record, AVCLevelIndication) == 3);
static_assert(offsetof(record, lengthSizeMinusOne) == 4 && offsetof(record, numOfSequenceParameterSets) == 5);
static_assert(offsetof(record, sps_list) == 8 && offsetof(record, sps_list_end) == 16);
static_assert(offsetof(record, numOfPictureParameterSets) == 24);
static_assert(offsetof(record, pps_list) == 32 && offsetof(record, pps_list_end) == 40);
static_assert(
    std::is_same_v<decltype(&h264_AVCDecoderConfigurationRecord_parse), int (*)(record*, byte_ptr, byte_ptr)>);

TEST(LegacyLayout, AnEmptyBraceMakesABitReaderOfZeros)
{
    const support::made_on_dirty_memory<bits> b;
    EXPECT_EQ(nullptr, b->ptr);
    EXPECT_EQ(0U, b->word);
    EXPECT_EQ(0, b->bits);
    EXPECT_EQ(0, b->open);
}

TEST(LegacyLayout, AnEmptyBraceMakesAScannerStateOfZeros)
{
    const support::made_on_dirty_memory<state> s;
    EXPECT_EQ(0, s->found);
    EXPECT_EQ(0, s->overflow);
    EXPECT_EQ(0, s->nal_ref_idc);
    EXPECT_EQ(0, s->nal_unit_type);
    EXPECT_EQ(nullptr, s->nal);
    EXPECT_EQ(nullptr, s->nal_fence);
    EXPECT_EQ(nullptr, s->raw_nal);
    EXPECT_EQ(nullptr, s->raw_nal_fence);
}

TEST(LegacyLayout, AnEmptyBraceMakesARecordOfZeros)
{
    const support::made_on_dirty_memory<record> r;
    EXPECT_EQ(0, r->configurationVersion);
    EXPECT_EQ(0, r->AVCProfileIndication);
    EXPECT_EQ(0, r->profile_compatibility);
    EXPECT_EQ(0, r->AVCLevelIndication);
    EXPECT_EQ(0, r->lengthSizeMinusOne);
    EXPECT_EQ(0, r->numOfSequenceParameterSets);
    EXPECT_EQ(nullptr, r->sps_list);
    EXPECT_EQ(nullptr, r->sps_list_end);
    EXPECT_EQ(0, r->numOfPictureParameterSets);
    EXPECT_EQ(nullptr, r->pps_list);
    EXPECT_EQ(nullptr, r->pps_list_end);
}
