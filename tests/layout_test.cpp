// The layout in memory and the signatures that other builds rely on: member order, widths, offsets, constness. Sizes
// are those of LP64.
#include <orv-utils-v4/h264.h>

#include "support/dirty_memory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

using namespace brenik;

namespace {

using reservoir_type = bit_io::reservoir<unsigned int, 0>;
using source_type = bit_io::data_source_memory_alt1<unsigned char, const unsigned char*>;
using reader_type = bit_io::reader<reservoir_type, source_type>;

template <typename T, typename Signature>
constexpr bool callable_as = std::is_convertible_v<T, Signature>;

/// How far `member` lies behind the start of `object`.
template <typename Object, typename Member>
std::size_t offset_in(const Object& object, const Member& member)
{
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&object));
}

} // namespace

static_assert(sizeof(void*) == 8 && sizeof(std::size_t) == 8, "the sizes below are those of LP64");

// Enumerations
static_assert(std::is_same_v<std::uint32_t, std::underlying_type_t<h2645_common_nalfmt>>);
static_assert(std::is_same_v<std::uint32_t, std::underlying_type_t<h264_nal_unit_type>>);
static_assert(std::is_convertible_v<h2645_common_nalfmt, unsigned int>, "unscoped");
static_assert(nalfmt_none == 0 && nalfmt_length1 == 1 && nalfmt_length2 == 2 && nalfmt_length3 == 3);
static_assert(nalfmt_length4 == 4 && nalfmt_annexb == 5);
static_assert(h264_nal_unit_type_unspecified_0 == 0 && h264_nal_unit_type_slice_non_idr == 1);
static_assert(h264_nal_unit_type_slice_data_partition_a == 2 && h264_nal_unit_type_slice_data_partition_b == 3);
static_assert(h264_nal_unit_type_slice_data_partition_c == 4 && h264_nal_unit_type_slice_idr == 5);
static_assert(h264_nal_unit_type_sei == 6 && h264_nal_unit_type_sps == 7 && h264_nal_unit_type_pps == 8);
static_assert(h264_nal_unit_type_aud == 9 && h264_nal_unit_type_end_of_seq == 10);
static_assert(h264_nal_unit_type_end_of_stream == 11 && h264_nal_unit_type_filler_data == 12);
static_assert(h264_nal_unit_type_sps_extension == 13 && h264_nal_unit_type_prefix_nal_unit == 14);
static_assert(h264_nal_unit_type_subset_sps == 15 && h264_nal_unit_type_dps == 16);
static_assert(h264_nal_unit_type_reserved_17 == 17 && h264_nal_unit_type_reserved_18 == 18);
static_assert(h264_nal_unit_type_slice_auxiliary == 19 && h264_nal_unit_type_slice_extension == 20);
static_assert(h264_nal_unit_type_slice_extension_depth == 21 && h264_nal_unit_type_reserved_22 == 22);
static_assert(h264_nal_unit_type_reserved_23 == 23 && h264_nal_unit_type_unspecified_24 == 24);
static_assert(h264_nal_unit_type_unspecified_31 == 31);

// The bit reader
static_assert(std::is_same_v<unsigned int, decltype(reservoir_type::bits)>);
static_assert(std::is_same_v<unsigned char, decltype(reservoir_type::empty_count)>);
static_assert(std::is_same_v<const unsigned char*, decltype(source_type::start)>);
static_assert(std::is_same_v<const unsigned char*, decltype(source_type::cursor)>);
static_assert(std::is_same_v<const unsigned char*, decltype(source_type::fence)>);
static_assert(std::is_base_of_v<reader_type, h2645_common_bitreader>);
static_assert(sizeof(h2645_common_bitreader) == 32 && sizeof(reader_type) == 32);
static_assert(std::is_standard_layout_v<reader_type> && std::is_standard_layout_v<h2645_common_bitreader>);
static_assert(std::is_trivially_copyable_v<h2645_common_bitreader>);
static_assert(!std::is_default_constructible_v<h2645_common_bitreader>);
static_assert(offsetof(reader_type, reservoir) == 0 && offsetof(reader_type, source) == 8);
static_assert(offsetof(reservoir_type, bits) == 0 && offsetof(reservoir_type, empty_count) == 4);
static_assert(offsetof(source_type, start) == 0 && offsetof(source_type, cursor) == 8);
static_assert(offsetof(source_type, fence) == 16);
static_assert(callable_as<decltype(&reader_type::get<unsigned int>), unsigned int (reader_type::*)(unsigned char)>);
static_assert(callable_as<decltype(&reader_type::peek24), unsigned int (reader_type::*)()>);
static_assert(callable_as<decltype(&reader_type::byte_align), void (reader_type::*)()>);
static_assert(callable_as<decltype(&reader_type::bits_consumed), std::size_t (reader_type::*)() const>);
static_assert(std::is_same_v<decltype(&h2645_common_bitreader::ue), unsigned int (h2645_common_bitreader::*)()>);
static_assert(std::is_same_v<decltype(&h2645_common_bitreader::se), int (h2645_common_bitreader::*)()>);
static_assert(std::is_same_v<decltype(&h2645_common_more_rbsp_data), bool (*)(h2645_common_bitreader&)>);
static_assert(std::is_same_v<decltype(&h2645_common_skip_rbsp_trailing_bits), bool (*)(h2645_common_bitreader&)>);
static_assert(std::is_base_of_v<std::runtime_error, h2645_common_malformed_code>);
static_assert(callable_as<decltype(&h2645_common_malformed_code::bit_position),
                          std::size_t (h2645_common_malformed_code::*)() const>);

// The NAL unit header
static_assert(std::is_same_v<unsigned char, decltype(h264_nal::nal_ref_idc)>);
static_assert(std::is_same_v<h264_nal_unit_type, decltype(h264_nal::nal_unit_type)>);
static_assert(std::is_same_v<bool, decltype(h264_nal::valid)>);
static_assert(sizeof(h264_nal) == 12 && std::is_trivially_copyable_v<h264_nal>);
static_assert(offsetof(h264_nal, nal_ref_idc) == 0 && offsetof(h264_nal, nal_unit_type) == 4);
static_assert(offsetof(h264_nal, valid) == 8);
static_assert(std::is_same_v<decltype(&h264_nal::encode_header), int (h264_nal::*)() const>);
static_assert(std::is_same_v<decltype(&h264_nal::decode_header), void (h264_nal::*)(unsigned char)>);
static_assert(std::is_same_v<decltype(&h264_nal_unit_type_to_str), const char* (*)(h264_nal_unit_type)>);
static_assert(std::is_same_v<decltype(h264_nal_unit_type_str), const char* const[32]>);

// The access unit delimiter
static_assert(std::is_same_v<std::uint8_t, decltype(h264_nal_aud::primary_pic_type)>);
static_assert(std::is_same_v<bool, decltype(h264_nal_aud::valid)>);
static_assert(sizeof(h264_nal_aud) == 2 && std::is_trivially_copyable_v<h264_nal_aud>);
static_assert(offsetof(h264_nal_aud, primary_pic_type) == 0 && offsetof(h264_nal_aud, valid) == 1);
static_assert(std::is_same_v<decltype(&h264_nal_aud::parse), bool (h264_nal_aud::*)(h2645_common_bitreader&)>);

// The NAL reader
using reader_base = h2645_common_nal_reader_base;
static_assert(std::is_standard_layout_v<reader_base> && std::is_trivially_copyable_v<reader_base>);
static_assert(std::is_same_v<unsigned char*, decltype(reader_base::next)> && offsetof(reader_base, next) == 0);
static_assert(std::is_same_v<unsigned char*, decltype(reader_base::data)> && offsetof(reader_base, data) == 8);
static_assert(std::is_same_v<unsigned char*, decltype(reader_base::data_fence)>);
static_assert(offsetof(reader_base, data_fence) == 16);
static_assert(std::is_same_v<unsigned char*, decltype(reader_base::nal_header)>);
static_assert(offsetof(reader_base, nal_header) == 24);
static_assert(std::is_same_v<unsigned char*, decltype(reader_base::nal_start)>);
static_assert(offsetof(reader_base, nal_start) == 32);
static_assert(std::is_same_v<unsigned char*, decltype(reader_base::payload)> && offsetof(reader_base, payload) == 40);
static_assert(std::is_same_v<std::uint32_t, decltype(reader_base::nal_length)>);
static_assert(offsetof(reader_base, nal_length) == 48);
static_assert(std::is_same_v<std::uint32_t, decltype(reader_base::payload_length)>);
static_assert(offsetof(reader_base, payload_length) == 52);
static_assert(std::is_same_v<std::uint32_t, decltype(reader_base::zero_count)>);
static_assert(offsetof(reader_base, zero_count) == 56);
static_assert(std::is_same_v<bool, decltype(reader_base::found)> && offsetof(reader_base, found) == 60);
static_assert(std::is_same_v<bool, decltype(reader_base::gave_up)> && offsetof(reader_base, gave_up) == 61);
static_assert(std::is_same_v<bool, decltype(reader_base::incomplete)> && offsetof(reader_base, incomplete) == 62);
static_assert(std::is_same_v<bool, decltype(reader_base::length_known)> && offsetof(reader_base, length_known) == 63);
static_assert(std::is_same_v<unsigned char*, decltype(reader_base::decode_ptr)>);
static_assert(offsetof(reader_base, decode_ptr) == 64);
static_assert(std::is_same_v<unsigned char*, decltype(reader_base::decode_fence)>);
static_assert(offsetof(reader_base, decode_fence) == 72);
static_assert(std::is_same_v<h2645_common_nalfmt, decltype(reader_base::nalfmt)>);
static_assert(offsetof(reader_base, nalfmt) == 80);
static_assert(callable_as<decltype(&reader_base::rewind), void (reader_base::*)()>);
static_assert(callable_as<decltype(&reader_base::do_give_up), void (reader_base::*)()>);
static_assert(std::is_same_v<h264_nal_reader, h2645_common_nal_reader<h264_nal, h2645_common_nalfmt>>);
static_assert(std::is_base_of_v<reader_base, h264_nal_reader> && std::is_trivially_copyable_v<h264_nal_reader>);
static_assert(sizeof(h264_nal_reader) == 96 && alignof(h264_nal_reader) == 8);
static_assert(std::is_same_v<h264_nal, decltype(h264_nal_reader::nal)>);
using scan_signature = void (h264_nal_reader::*)(unsigned char*, unsigned char*);
static_assert(std::is_same_v<decltype(&h264_nal_reader::scan), scan_signature>);
static_assert(std::is_same_v<decltype(&h264_nal_reader::scan_annex_b), scan_signature>);
static_assert(std::is_same_v<decltype(&h264_nal_reader::block_decode),
                             std::size_t (h264_nal_reader::*)(unsigned char*, std::size_t)>);
static_assert(std::is_same_v<decltype(&h264_nal_reader::find_unit_end), unsigned char* (h264_nal_reader::*)() const>);
static_assert(!std::is_convertible_v<h2645_common_nalfmt, h264_nal_reader>, "made explicitly");

// The NAL writer
static_assert(std::is_same_v<h264_nal_writer, h2645_common_nal_writer<h264_nal, h2645_common_nalfmt>>);
static_assert(sizeof(h264_nal_writer) == 32 && std::is_standard_layout_v<h264_nal_writer>);
static_assert(std::is_trivially_copyable_v<h264_nal_writer>);
static_assert(std::is_same_v<h2645_common_nalfmt, decltype(h264_nal_writer::nalfmt)>);
static_assert(std::is_same_v<unsigned char*, decltype(h264_nal_writer::buffer)>);
static_assert(std::is_same_v<unsigned char*, decltype(h264_nal_writer::write)>);
static_assert(std::is_same_v<unsigned char*, decltype(h264_nal_writer::fence)>);
static_assert(offsetof(h264_nal_writer, nalfmt) == 0 && offsetof(h264_nal_writer, buffer) == 8);
static_assert(offsetof(h264_nal_writer, write) == 16 && offsetof(h264_nal_writer, fence) == 24);
static_assert(callable_as<decltype(&h264_nal_writer::setbuf),
                          void (h264_nal_writer::*)(unsigned char*, unsigned char*, unsigned char*)>);
static_assert(callable_as<decltype(&h264_nal_writer::data_length), std::size_t (h264_nal_writer::*)() const>);
static_assert(callable_as<decltype(&h264_nal_writer::full), bool (h264_nal_writer::*)() const>);
static_assert(callable_as<decltype(&h264_nal_writer::recommended_output_size), std::size_t (*)(std::size_t)>);
static_assert(
    std::is_same_v<decltype(&h264_nal_writer::block_encode),
                   std::size_t (h264_nal_writer::*)(unsigned char*, std::size_t, const h264_nal&, unsigned int)>);

TEST(Layout, TheReadersHeaderLiesRightBehindTheFraming)
{
    const h264_nal_reader reader;
    EXPECT_EQ(80U, offset_in(reader, reader.nalfmt));
    EXPECT_EQ(84U, offset_in(reader, reader.nal));
    EXPECT_EQ(92U, offset_in(reader, reader.nal.valid));
}

TEST(Layout, TheBitReadersFiveMembersLieInOrder)
{
    const h2645_common_bitreader br(nullptr, nullptr);
    EXPECT_EQ(0U, offset_in(br, br.reservoir.bits));
    EXPECT_EQ(4U, offset_in(br, br.reservoir.empty_count));
    EXPECT_EQ(8U, offset_in(br, br.source.start));
    EXPECT_EQ(16U, offset_in(br, br.source.cursor));
    EXPECT_EQ(24U, offset_in(br, br.source.fence));
}

TEST(Layout, TheLibraryWritesAtTheseOffsets)
{
    // The members are read as bytes, so that a library built with another layout would show.
    h264_nal nal;
    nal.decode_header(0x67);
    unsigned char bytes[sizeof nal];
    std::memcpy(bytes, &nal, sizeof nal);
    EXPECT_EQ(3, bytes[0]);
    EXPECT_EQ(7, bytes[4]);
    EXPECT_EQ(1, bytes[8]);

    unsigned char stream[] = {0, 0, 1, 0x65, 9};
    h264_nal_reader reader(nalfmt_annexb);
    reader.scan(stream, stream + sizeof stream);
    unsigned char read[sizeof reader];
    std::memcpy(read, &reader, sizeof reader);
    EXPECT_EQ(1, read[60]);
    EXPECT_EQ(5, read[80]);
    EXPECT_EQ(3, read[84]);
    EXPECT_EQ(5, read[88]);
    EXPECT_EQ(1, read[92]);
}

TEST(Layout, AnEmptyBraceMakesZeros)
{
    const support::made_on_dirty_memory<h264_nal> nal;
    EXPECT_EQ(0, nal->nal_ref_idc);
    EXPECT_EQ(0U, nal->nal_unit_type);
    EXPECT_FALSE(nal->valid);

    const support::made_on_dirty_memory<h264_nal_aud> aud;
    EXPECT_EQ(0, aud->primary_pic_type);
    EXPECT_FALSE(aud->valid);

    const support::made_on_dirty_memory<h264_nal_writer> writer;
    EXPECT_EQ(nalfmt_none, writer->nalfmt);
    EXPECT_EQ(nullptr, writer->buffer);
    EXPECT_EQ(nullptr, writer->write);
    EXPECT_EQ(nullptr, writer->fence);

    const support::made_on_dirty_memory<h264_nal_reader> reader;
    EXPECT_EQ(nullptr, reader->next);
    EXPECT_EQ(nullptr, reader->data);
    EXPECT_EQ(nullptr, reader->data_fence);
    EXPECT_EQ(nullptr, reader->nal_header);
    EXPECT_EQ(nullptr, reader->nal_start);
    EXPECT_EQ(nullptr, reader->payload);
    EXPECT_EQ(0U, reader->nal_length);
    EXPECT_EQ(0U, reader->payload_length);
    EXPECT_EQ(0U, reader->zero_count);
    EXPECT_FALSE(reader->found || reader->gave_up);
    EXPECT_FALSE(reader->incomplete || reader->length_known);
    EXPECT_EQ(nullptr, reader->decode_ptr);
    EXPECT_EQ(nullptr, reader->decode_fence);
    EXPECT_EQ(nalfmt_none, reader->nalfmt);
    EXPECT_EQ(0, reader->nal.nal_ref_idc);
    EXPECT_EQ(0U, reader->nal.nal_unit_type);
    EXPECT_FALSE(reader->nal.valid);
}
