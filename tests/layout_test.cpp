// The layout in memory and the signatures that other builds rely on, as a table held against layout.txt: of every class
// its size, alignment and traits, of every member its offset, size and type, of every enumeration its values. The sizes
// are those of LP64 and libstdc++.
#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_legacy.h>

#include "support/dirty_memory.h"
#include "support/legacy_fields.h"
#include "support/sei_fields.h"
#include "support/slice_header_fields.h"

#include <cxxabi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

using namespace brenik;

namespace {

using support::made_with;

const std::filesystem::path table_file = std::filesystem::path(ORV_TEST_STREAMS).parent_path() / "layout.txt";

/// The name of a member, function, object or enumerator, without what it belongs to.
template <auto Named>
std::string name_of()
{
    const std::string whole = __PRETTY_FUNCTION__; // "… [with auto Named = &brenik::h264_nal::valid; …" or likewise
    const std::size_t end = whole.find_first_of(";])", whole.find("Named = "));
    const std::size_t start = whole.find_last_of(" :&(", end - 1) + 1;
    return whole.substr(start, end - start);
}

/// The name of a type, the same from every compiler of the Itanium C++ ABI.
template <typename T>
std::string type_name()
{
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(typeid(T).name(), nullptr, nullptr, nullptr), &std::free);
    std::string text = name.get();
    const std::pair<const char*, const char*> shorter[] = {{"brenik::", ""},
                                                           {"unsigned char", "u8"},
                                                           {"unsigned short", "u16"},
                                                           {"unsigned int", "u32"},
                                                           {"unsigned long", "u64"},
                                                           {", std::allocator<u32> ", ""},
                                                           {", std::allocator<int> ", ""},
                                                           {", std::allocator<bool> ", ""},
                                                           {", std::allocator<u8> ", ""}};
    for (const auto& [from, to] : shorter)
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
            text.replace(at, std::strlen(from), to);
    return text;
}

/// Where members lie, and what they are.
class placed_members {
public:
    explicit placed_members(const void* object) : start(static_cast<const char*>(object)) {}

    template <typename Member>
    void operator()(const std::string& name, const Member& member)
    {
        const auto offset = reinterpret_cast<const char*>(&member) - start;
        text += text.empty() ? " " : ", ";
        // NOLINTNEXTLINE(bugprone-sizeof-expression): the size of a pointer itself is meant
        text += name + '@' + std::to_string(offset) + ':' + std::to_string(sizeof(Member)) + ' ' + type_name<Member>();
    }

    template <typename Structure>
    void enter(const std::string& name, const Structure& structure, const char* index = "")
    {
        (*this)(name + index, structure);
    }

    std::string text;

private:
    const char* start;
};

/// The members that are not zero, false, null or without entries. One that is of a class has a row of its own.
class members_not_zero {
public:
    template <typename Member>
    void operator()(const std::string& name, const Member& member)
    {
        if (!is_zero(member))
            names += ' ' + name;
    }

    template <typename Structure>
    void enter(const std::string& /*name*/, const Structure& /*structure*/, const char* /*index*/ = "")
    {
    }

    std::string names;

private:
    template <typename Member>
    static bool is_zero(const Member& member)
    {
        if constexpr (std::is_array_v<Member>)
            return std::all_of(std::begin(member), std::end(member), [](auto entry) { return entry == 0; });
        else if constexpr (!std::is_class_v<Member>)
            return member == Member{};
        else if constexpr (requires { member.push_back({}); })
            return member.empty();
        else
            return true;
    }
};

/// Shows the visitor these members or, where none are named, those that tests compare.
template <typename T, auto... Members, typename Visitor>
void each_member(Visitor& visit, const T& object)
{
    if constexpr (sizeof...(Members) != 0)
        (visit(name_of<Members>(), object.*Members), ...);
    else if constexpr (requires { support::each_field(visit, object); })
        support::each_field(visit, object);
}

/// A line for each class, each enumeration, and each function or object.
class table {
public:
    template <typename T, auto... Members>
    void add()
    {
        const support::made_on_dirty_memory<T, made_with::braces> object;
        add_object<T, Members...>(*object);
        expect_zeros<T, Members...>(*object);
        expect_zeros<T, Members...>(*support::made_on_dirty_memory<T, made_with::no_braces>());
    }

    template <typename T, auto... Members>
    void add_object(const T& object)
    {
        text += type_name<T>() + ' ' + std::to_string(sizeof(T)) + " align " + std::to_string(alignof(T));
        text += std::is_standard_layout_v<T> ? ", standard layout" : "";
        text += std::is_trivially_copyable_v<T> ? ", trivially copyable" : "";
        text += std::is_aggregate_v<T> ? ", aggregate" : "";
        text += std::is_polymorphic_v<T> ? ", polymorphic" : "";
        text += std::is_nothrow_move_constructible_v<T> && std::is_copy_assignable_v<T> ? ", value:" : ":";
        placed_members members(&object);
        each_member<T, Members...>(members, object);
        text += members.text + '\n';
    }

    /// The values of an enumeration.
    template <auto... Enumerators>
    void values()
    {
        using enumeration = std::common_type_t<decltype(Enumerators)...>;
        text += type_name<enumeration>() + " of " + type_name<std::underlying_type_t<enumeration>>();
        text += std::is_convertible_v<enumeration, int> ? ", unscoped:" : ":";
        ((text += ' ' + name_of<Enumerators>() + '=' + std::to_string(Enumerators)), ...);
        text += '\n';
    }

    /// Functions and objects.
    template <auto... Addresses>
    void signatures()
    {
        (text.append(name_of<Addresses>() + ": " + type_name<decltype(Addresses)>() + '\n'), ...);
    }

    std::string text = "# Written by tests/layout_test.cpp; HACKING.md tells how.\n";
    std::string not_zero; ///< members that a new object does not have as zero

private:
    template <typename T, auto... Members>
    void expect_zeros(const T& made)
    {
        members_not_zero found;
        each_member<T, Members...>(found, made);
        if (!found.names.empty())
            not_zero += type_name<T>() + ':' + found.names + '\n';
    }
};

using bit_reader = bit_io::reader<bit_io::reservoir<unsigned int, 0>,
                                  bit_io::data_source_memory_alt1<unsigned char, const unsigned char*>>;
using timestamp = h264_nal_sei_pic_timing::timestamp_t;
using pic_timing = h264_nal_sei_pic_timing;
using buffering = h264_nal_sei_buffering_period;
using rect = h264_nal_sei_pan_scan_rect::rect;
using pan_scan = h264_nal_sei_pan_scan_rect;
using recovery = h264_nal_sei_recovery_point;
using user_data = h264_nal_sei_user_data_unreg;
using uuid = iso_iec_11578_uuid;
using list_step = h264_nal_slice_header::ref_pic_list_modification_entry_t::entry;
using list_steps = h264_nal_slice_header::ref_pic_list_modification_entry_t;
using slice_header = h264_nal_slice_header;
using scanned = h264_nal_parser_state;
using record = h264_AVCDecoderConfigurationRecord;
using frame_info = h264_common_frame_scan_info;
using slice_info = h264_nal_slice_info;
using timing_info = h264_sei_picture_timing_info;
using sei_pair = h264_sei_pair;
using scaling_list = h264_scaling_list;
using hrd = h264_hrd_parameters;
using vui = h264_vui_parameters;
using sps = h264_nal_sps;
using pps = h264_nal_pps;
using aud = h264_nal_aud;
using reader_base = h2645_common_nal_reader_base;
using nal_reader = h264_nal_reader;
using nal_writer = h264_nal_writer;
using reservoir = decltype(bit_reader::reservoir);
using source = decltype(bit_reader::source);
using bitreader = h2645_common_bitreader;
using nal = h264_nal;
using bits = be_bitfield;
using legacy_sps = h264_sps;
using sps_store = h2645_common_base_store<sps>;

void add_framing(table& t)
{
    t.values<nalfmt_none, nalfmt_length1, nalfmt_length2, nalfmt_length3, nalfmt_length4, nalfmt_annexb>();
    t.values<h264_nal_unit_type_unspecified_0, h264_nal_unit_type_slice_non_idr,
             h264_nal_unit_type_slice_data_partition_a, h264_nal_unit_type_slice_data_partition_b,
             h264_nal_unit_type_slice_data_partition_c, h264_nal_unit_type_slice_idr, h264_nal_unit_type_sei,
             h264_nal_unit_type_sps, h264_nal_unit_type_pps, h264_nal_unit_type_aud, h264_nal_unit_type_end_of_seq,
             h264_nal_unit_type_end_of_stream, h264_nal_unit_type_filler_data, h264_nal_unit_type_sps_extension,
             h264_nal_unit_type_prefix_nal_unit, h264_nal_unit_type_subset_sps, h264_nal_unit_type_dps,
             h264_nal_unit_type_reserved_17, h264_nal_unit_type_reserved_18, h264_nal_unit_type_slice_auxiliary,
             h264_nal_unit_type_slice_extension, h264_nal_unit_type_slice_extension_depth,
             h264_nal_unit_type_reserved_22, h264_nal_unit_type_reserved_23, h264_nal_unit_type_unspecified_24,
             h264_nal_unit_type_unspecified_25, h264_nal_unit_type_unspecified_26, h264_nal_unit_type_unspecified_27,
             h264_nal_unit_type_unspecified_28, h264_nal_unit_type_unspecified_29, h264_nal_unit_type_unspecified_30,
             h264_nal_unit_type_unspecified_31>();
    t.add<reservoir, &reservoir::bits, &reservoir::empty_count>();
    t.add<source, &source::start, &source::cursor, &source::fence>();
    t.add_object<bit_reader, &bit_reader::reservoir, &bit_reader::source>(bit_reader(source()));
    t.add_object<bitreader, &bitreader::reservoir, &bitreader::source>(bitreader(nullptr, nullptr));
    t.add<nal, &nal::nal_ref_idc, &nal::nal_unit_type, &nal::valid>();
    t.add<aud, &aud::primary_pic_type, &aud::valid>();
    t.add<reader_base, &reader_base::next, &reader_base::data, &reader_base::data_fence, &reader_base::nal_header,
          &reader_base::nal_start, &reader_base::payload, &reader_base::nal_length, &reader_base::payload_length,
          &reader_base::zero_count, &reader_base::found, &reader_base::gave_up, &reader_base::incomplete,
          &reader_base::length_known, &reader_base::decode_ptr, &reader_base::decode_fence, &reader_base::nalfmt>();
    t.add<nal_reader, &nal_reader::nalfmt, &nal_reader::nal>();
    t.add<nal_writer, &nal_writer::nalfmt, &nal_writer::buffer, &nal_writer::write, &nal_writer::fence>();
    t.signatures<&bit_reader::peek24, &bit_reader::byte_align, &bit_reader::bits_consumed, &bitreader::ue,
                 &bitreader::se, &h2645_common_more_rbsp_data, &h2645_common_skip_rbsp_trailing_bits,
                 &h2645_common_malformed_code::bit_position, &nal::encode_header, &nal::decode_header,
                 &h264_nal_unit_type_to_str, &aud::parse, &reader_base::rewind, &reader_base::do_give_up,
                 &nal_reader::scan, &nal_reader::scan_annex_b, &nal_reader::block_decode, &nal_reader::find_unit_end,
                 &nal_writer::setbuf, &nal_writer::data_length, &nal_writer::full, &nal_writer::recommended_output_size,
                 &nal_writer::block_encode, &h264_nal_unit_type_str>();
}

void add_parameter_sets(table& t)
{
    t.values<h264_video_format_component, h264_video_format_pal, h264_video_format_ntsc, h264_video_format_secam,
             h264_video_format_mac, h264_video_format_unspecified>();
    t.add<scaling_list>();
    t.add<hrd>();
    t.add<vui>();
    t.add<sps>();
    t.add<pps>();
    t.add<sps_store, &sps_store::current, &sps_store::entries>();
    t.signatures<&scaling_list::parse, &hrd::parse, &vui::parse, &vui::video_format_to_str, &h264_video_format_to_str,
                 &sps_store::find, &sps_store::at, &sps_store::insert_or_assign, &sps_store::erase, &sps_store::size,
                 &sps_store::current_id, &sps_store::set_current_id, &sps::parse, &sps::getCropLeft, &sps::getCropRight,
                 &sps::getCropTop, &sps::getCropBottom, &sps::getPicWidth, &sps::getCroppedPicWidth, &sps::getPicHeight,
                 &sps::getCroppedPicHeight, &pps::parse>();
}

void add_sei(table& t)
{
    t.add<timestamp, &timestamp::clock_timestamp_flag, &timestamp::ct_type, &timestamp::nuit_field_based_flag,
          &timestamp::counting_type, &timestamp::full_timestamp_flag, &timestamp::discontinuity_flag,
          &timestamp::cnt_dropped_flag, &timestamp::seconds_flag, &timestamp::minutes_flag, &timestamp::hours_flag,
          &timestamp::n_frames, &timestamp::seconds_value, &timestamp::minutes_value, &timestamp::hours_value,
          &timestamp::time_offset>();
    t.add<pic_timing, &pic_timing::cpb_removal_delay, &pic_timing::dpb_output_delay, &pic_timing::pic_struct,
          &pic_timing::timestamps, &pic_timing::valid>();
    t.add<buffering>();
    t.add<rect, &rect::pan_scan_rect_left_offset, &rect::pan_scan_rect_right_offset, &rect::pan_scan_rect_top_offset,
          &rect::pan_scan_rect_bottom_offset>();
    t.add<pan_scan, &pan_scan::pan_scan_rect_id, &pan_scan::pan_scan_rect_cancel_flag, &pan_scan::pan_scan_cnt_minus1,
          &pan_scan::rects, &pan_scan::pan_scan_rect_repetition_period, &pan_scan::valid>();
    t.add<recovery>();
    t.add<uuid, &uuid::bytes>();
    t.add<user_data, &user_data::uuid, &user_data::payload, &user_data::payload_fence>();
    t.signatures<&timestamp::ct_type_to_str, &pic_timing::NumClockTS, &pic_timing::pic_struct_to_str, &buffering::parse,
                 &pan_scan::parse, &recovery::parse, &h264_uuid_to_str, &user_data::set_ptr, &uuid::operator==,
                 &h264_c_uuid_libx264_debug_info>();
}

void add_slice_header(table& t)
{
    t.values<h264_slice_type_P, h264_slice_type_B, h264_slice_type_I, h264_slice_type_SP, h264_slice_type_SI>();
    t.add<list_step, &list_step::modification_of_pic_nums_idc, &list_step::pic_num_value>();
    t.add<list_steps, &list_steps::ref_pic_list_modification_flag, &list_steps::entries>();
    t.add<slice_header, &slice_header::first_mb_in_slice, &slice_header::slice_type,
          &slice_header::pic_parameter_set_id, &slice_header::colour_plane_id, &slice_header::frame_num,
          &slice_header::field_pic_flag, &slice_header::bottom_field_flag, &slice_header::idr_pic_id,
          &slice_header::pic_order_cnt_lsb, &slice_header::delta_pic_order_cnt_bottom,
          &slice_header::delta_pic_order_cnt, &slice_header::redundant_pic_cnt,
          &slice_header::direct_spatial_mv_pred_flag, &slice_header::num_ref_idx_active_override_flag,
          &slice_header::num_ref_idx_l0_active_minus1, &slice_header::num_ref_idx_l1_active_minus1,
          &slice_header::ref_pic_list_modification_l0, &slice_header::ref_pic_list_modification_l1,
          &slice_header::IdrPicFlag, &slice_header::valid>();
    t.signatures<&h264_slice_type_t_to_string, &list_steps::parse, &slice_header::parse, &slice_header::getSliceType,
                 &h264_slice_type_t_str>();
}

void add_legacy(table& t)
{
    t.values<h264_common_frame_scan_split_fields>();
    t.add<bits, &bits::ptr, &bits::word, &bits::bits, &bits::open>();
    t.add<scanned, &scanned::found, &scanned::overflow, &scanned::nal_ref_idc, &scanned::nal_unit_type, &scanned::nal,
          &scanned::nal_fence, &scanned::raw_nal, &scanned::raw_nal_fence>();
    t.add<record, &record::configurationVersion, &record::AVCProfileIndication, &record::profile_compatibility,
          &record::AVCLevelIndication, &record::lengthSizeMinusOne, &record::numOfSequenceParameterSets,
          &record::sps_list, &record::sps_list_end, &record::numOfPictureParameterSets, &record::pps_list,
          &record::pps_list_end>();
    t.add<frame_info, &frame_info::complete, &frame_info::need_more_data, &frame_info::has_aud, &frame_info::has_sps,
          &frame_info::has_pps, &frame_info::has_sei, &frame_info::has_slice, &frame_info::field_duration,
          &frame_info::frame_start, &frame_info::frame_end>();
    t.add<legacy_sps>();
    t.add<slice_info>();
    t.add<sei_pair, &sei_pair::valid, &sei_pair::payload_type, &sei_pair::payload_size, &sei_pair::start,
          &sei_pair::data, &sei_pair::fence>();
    t.add<timing_info>();
    t.signatures<
        &be_bitfield_open, &be_bitfield_open_until, &be_bitfield_read, &be_bitfield_read_until, &h264_ue_golomb_read,
        &h264_se_golomb_read, &h264_nal_parser_scan, &h264_nal_parser_unit_type_to_str, &h264_nal_dump_dbg,
        &h264_nal_write, &h264_AVCDecoderConfigurationRecord_parse, &legacy_sps::reset, &legacy_sps::parse_sps,
        &legacy_sps::discard_h264_video_scaling_matrix_list_because_nobody_fucking_cares,
        &legacy_sps::discard_h264_video_hrd_params_because_nobody_fucking_cares, &legacy_sps::get_final_frame_width,
        &legacy_sps::get_final_frame_height, &legacy_sps::get_final_field_rate, &legacy_sps::dump, &h264_slice_parse,
        &h264_sei_read_pair, &h264_sei_picture_timing_info_parse, &h264_sei_get_field_duration, &h264_common_frame_scan,
        &h264_common_frame_scan_on_NAL, &h264_aspect_ratio_stdent_presets>();
}

table whole_table()
{
    table t;
    add_framing(t);
    add_parameter_sets(t);
    add_sei(t);
    add_slice_header(t);
    add_legacy(t);
    return t;
}

/// Whether an overload of the picture timing's parse() has exactly this type.
template <typename Signature>
constexpr bool parses_as = requires
{
    static_cast<Signature>(&pic_timing::parse);
};

} // namespace

static_assert(sizeof(void*) == 8 && sizeof(std::vector<int>) == 24 && sizeof(std::vector<bool>) == 40);
static_assert(parses_as<bool (pic_timing::*)(h2645_common_bitreader&, const sps&)>);
static_assert(parses_as<bool (pic_timing::*)(h2645_common_bitreader&, const sps_store&)>);
static_assert(std::is_same_v<decltype(bit_reader(source{}).get<unsigned int>(1)), unsigned int>);
static_assert(std::is_base_of_v<bit_reader, bitreader> && !std::is_default_constructible_v<bitreader>);
static_assert(std::is_base_of_v<reader_base, nal_reader> && !std::is_convertible_v<h2645_common_nalfmt, nal_reader>);
static_assert(std::is_base_of_v<std::runtime_error, h2645_common_malformed_code>);
static_assert(std::is_constructible_v<user_data, unsigned char*, unsigned char*>);

TEST(Layout, IsThatOfTheTable)
{
    const std::string text = whole_table().text;
    if (std::getenv("ORV_WRITE_LAYOUT") != nullptr)
        std::ofstream(table_file) << text;
    std::stringstream expected;
    expected << std::ifstream(table_file).rdbuf();
    EXPECT_EQ(expected.str(), text);
}

TEST(Layout, ANewObjectHasZerosFalsesNullsAndEmpties)
{
    // With the exception of what counts empty bits, of an id that is none, and of a UUID without braces.
    EXPECT_EQ("bit_io::reservoir<u32, 0>: empty_count\nbit_io::reservoir<u32, 0>: empty_count\n"
              "h2645_common_base_store<h264_nal_sps>: current\nh2645_common_base_store<h264_nal_sps>: current\n"
              "iso_iec_11578_uuid: bytes\n",
              whole_table().not_zero);
    EXPECT_EQ(0xFFFFFFFF, sps_store().current);
}

TEST(Layout, TheLibraryWritesAtTheseOffsets)
{
    // The members are read as bytes, so that a library built with another layout would show.
    h264_nal header;
    header.decode_header(0x67);
    unsigned char bytes[sizeof header];
    std::memcpy(bytes, &header, sizeof header);
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

TEST(Layout, TheTwoTextsOfAUuidAreTheSameEveryTime)
{
    const uuid other{};
    EXPECT_EQ(h264_uuid_to_str(other), h264_uuid_to_str(other));
    EXPECT_EQ(h264_uuid_to_str(h264_c_uuid_libx264_debug_info), h264_uuid_to_str(h264_c_uuid_libx264_debug_info));
}
