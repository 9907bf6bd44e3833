// The layout in memory and the signatures of the SEI payloads: member order, widths, offsets, constness. Sizes are
// those of LP64 with vectors of three pointers.
#include <orv-utils-v4/h264.h>

#include "support/dirty_memory.h"
#include "support/sei_fields.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

using namespace brenik;

namespace {

/// Whether every member is a T.
template <typename T, typename... Members>
constexpr bool all_are = (std::is_same_v<T, Members> && ...);

/// What the records of the interface have in common.
template <typename T>
constexpr bool is_plain = std::is_standard_layout_v<T> && !std::is_polymorphic_v<T> && std::is_copy_assignable_v<T> &&
                          std::is_nothrow_move_constructible_v<T>;

using u8 = std::uint8_t;
using u32 = std::uint32_t;
using i32 = std::int32_t;
using numbers = std::vector<u32>;
using sps_store = h2645_common_base_store<h264_nal_sps>;
using timing = h264_nal_sei_pic_timing;
using timestamp = h264_nal_sei_pic_timing::timestamp_t;
using period = h264_nal_sei_buffering_period;
using pan_scan = h264_nal_sei_pan_scan_rect;
using rect = h264_nal_sei_pan_scan_rect::rect;
using recovery = h264_nal_sei_recovery_point;
using user_data = h264_nal_sei_user_data_unreg;
using uuid = iso_iec_11578_uuid;

/// Whether an overload of the picture timing's parse() has exactly this type.
template <typename Signature>
constexpr bool parses_as = requires
{
    static_cast<Signature>(&timing::parse);
};

} // namespace

static_assert(sizeof(void*) == 8 && sizeof(numbers) == 24, "the sizes below");

// Picture timing
static_assert(is_plain<timestamp> && sizeof(timestamp) == 20 && alignof(timestamp) == 4);
static_assert(all_are<bool, decltype(timestamp::clock_timestamp_flag), decltype(timestamp::nuit_field_based_flag),
                      decltype(timestamp::full_timestamp_flag), decltype(timestamp::discontinuity_flag),
                      decltype(timestamp::cnt_dropped_flag), decltype(timestamp::seconds_flag),
                      decltype(timestamp::minutes_flag), decltype(timestamp::hours_flag)>);
static_assert(
    all_are<u8, decltype(timestamp::ct_type), decltype(timestamp::counting_type), decltype(timestamp::n_frames),
            decltype(timestamp::seconds_value), decltype(timestamp::minutes_value), decltype(timestamp::hours_value)>);
static_assert(all_are<i32, decltype(timestamp::time_offset)>);
static_assert(offsetof(timestamp, clock_timestamp_flag) == 0 && offsetof(timestamp, ct_type) == 1);
static_assert(offsetof(timestamp, nuit_field_based_flag) == 2 && offsetof(timestamp, counting_type) == 3);
static_assert(offsetof(timestamp, full_timestamp_flag) == 4 && offsetof(timestamp, discontinuity_flag) == 5);
static_assert(offsetof(timestamp, cnt_dropped_flag) == 6 && offsetof(timestamp, seconds_flag) == 7);
static_assert(offsetof(timestamp, minutes_flag) == 8 && offsetof(timestamp, hours_flag) == 9);
static_assert(offsetof(timestamp, n_frames) == 10 && offsetof(timestamp, seconds_value) == 11);
static_assert(offsetof(timestamp, minutes_value) == 12 && offsetof(timestamp, hours_value) == 13);
static_assert(offsetof(timestamp, time_offset) == 16);
static_assert(std::is_same_v<decltype(&timestamp::ct_type_to_str), const char* (timestamp::*)() const>);

static_assert(is_plain<timing> && sizeof(timing) == 48);
static_assert(all_are<u32, decltype(timing::cpb_removal_delay), decltype(timing::dpb_output_delay)>);
static_assert(all_are<u8, decltype(timing::pic_struct)> && all_are<bool, decltype(timing::valid)>);
static_assert(all_are<std::vector<timestamp>, decltype(timing::timestamps)>);
static_assert(offsetof(timing, cpb_removal_delay) == 0 && offsetof(timing, dpb_output_delay) == 4);
static_assert(offsetof(timing, pic_struct) == 8 && offsetof(timing, timestamps) == 16);
static_assert(offsetof(timing, valid) == 40);
static_assert(parses_as<bool (timing::*)(h2645_common_bitreader&, const h264_nal_sps&)>);
static_assert(parses_as<bool (timing::*)(h2645_common_bitreader&, const sps_store&)>);
static_assert(std::is_same_v<decltype(&timing::NumClockTS), u32 (timing::*)() const>);
static_assert(std::is_same_v<decltype(&timing::pic_struct_to_str), const char* (timing::*)() const>);

// Buffering period
static_assert(is_plain<period> && sizeof(period) == 112);
static_assert(all_are<u32, decltype(period::seq_parameter_set_id)> && all_are<bool, decltype(period::valid)>);
static_assert(
    all_are<numbers, decltype(period::nal_initial_cpb_removal_delay),
            decltype(period::nal_initial_cpb_removal_delay_offset), decltype(period::vcl_initial_cpb_removal_delay),
            decltype(period::vcl_initial_cpb_removal_delay_offset)>);
static_assert(offsetof(period, seq_parameter_set_id) == 0 && offsetof(period, nal_initial_cpb_removal_delay) == 8);
static_assert(offsetof(period, nal_initial_cpb_removal_delay_offset) == 32);
static_assert(offsetof(period, vcl_initial_cpb_removal_delay) == 56);
static_assert(offsetof(period, vcl_initial_cpb_removal_delay_offset) == 80 && offsetof(period, valid) == 104);
static_assert(std::is_same_v<decltype(&period::parse), bool (period::*)(h2645_common_bitreader&, const sps_store&)>);

// Pan-scan rectangle
static_assert(is_plain<rect> && sizeof(rect) == 16 && alignof(rect) == 4);
static_assert(all_are<i32, decltype(rect::pan_scan_rect_left_offset), decltype(rect::pan_scan_rect_right_offset),
                      decltype(rect::pan_scan_rect_top_offset), decltype(rect::pan_scan_rect_bottom_offset)>);
static_assert(offsetof(rect, pan_scan_rect_left_offset) == 0 && offsetof(rect, pan_scan_rect_right_offset) == 4);
static_assert(offsetof(rect, pan_scan_rect_top_offset) == 8 && offsetof(rect, pan_scan_rect_bottom_offset) == 12);
static_assert(is_plain<pan_scan> && sizeof(pan_scan) == 48);
static_assert(all_are<u32, decltype(pan_scan::pan_scan_rect_id), decltype(pan_scan::pan_scan_cnt_minus1),
                      decltype(pan_scan::pan_scan_rect_repetition_period)>);
static_assert(all_are<bool, decltype(pan_scan::pan_scan_rect_cancel_flag), decltype(pan_scan::valid)>);
static_assert(all_are<std::vector<rect>, decltype(pan_scan::rects)>);
static_assert(offsetof(pan_scan, pan_scan_rect_id) == 0 && offsetof(pan_scan, pan_scan_rect_cancel_flag) == 4);
static_assert(offsetof(pan_scan, pan_scan_cnt_minus1) == 8 && offsetof(pan_scan, rects) == 16);
static_assert(offsetof(pan_scan, pan_scan_rect_repetition_period) == 40 && offsetof(pan_scan, valid) == 44);
static_assert(std::is_same_v<decltype(&pan_scan::parse), bool (pan_scan::*)(h2645_common_bitreader&)>);

// Recovery point. The last element of the message is the second member.
static_assert(is_plain<recovery> && sizeof(recovery) == 8 && alignof(recovery) == 4);
static_assert(all_are<u32, decltype(recovery::recovery_frame_cnt)>);
static_assert(all_are<u8, decltype(recovery::changing_slice_group_idc)>);
static_assert(all_are<bool, decltype(recovery::exact_match_flag), decltype(recovery::broken_link_flag),
                      decltype(recovery::valid)>);
static_assert(offsetof(recovery, recovery_frame_cnt) == 0 && offsetof(recovery, changing_slice_group_idc) == 4);
static_assert(offsetof(recovery, exact_match_flag) == 5 && offsetof(recovery, broken_link_flag) == 6);
static_assert(offsetof(recovery, valid) == 7);
static_assert(std::is_same_v<decltype(&recovery::parse), bool (recovery::*)(h2645_common_bitreader&)>);

// User data and UUID
static_assert(is_plain<uuid> && std::is_trivial_v<uuid> && sizeof(uuid) == 16 && alignof(uuid) == 1);
static_assert(std::is_same_v<unsigned char[16], decltype(uuid::bytes)> && offsetof(uuid, bytes) == 0);
static_assert(std::is_same_v<decltype(&uuid::operator==), bool (uuid::*)(const uuid&) const>);
static_assert(std::is_same_v<const uuid, decltype(h264_c_uuid_libx264_debug_info)>);
static_assert(std::is_same_v<decltype(&h264_uuid_to_str), const char* (*)(const uuid&)>);
static_assert(is_plain<user_data> && sizeof(user_data) == 24);
static_assert(all_are<const uuid*, decltype(user_data::uuid)>);
static_assert(all_are<unsigned char*, decltype(user_data::payload), decltype(user_data::payload_fence)>);
static_assert(offsetof(user_data, uuid) == 0 && offsetof(user_data, payload) == 8);
static_assert(offsetof(user_data, payload_fence) == 16);
static_assert(std::is_constructible_v<user_data, unsigned char*, unsigned char*>);
static_assert(std::is_same_v<decltype(&user_data::set_ptr), void (user_data::*)(unsigned char*, unsigned char*)>);

namespace {

/// Whether every field is zero, false or without entries; of a record in an array, the entry is.
template <typename T>
bool is_zero(const T& object)
{
    for (const support::value& field : support::fields_of(object).values)
        if (field != support::value{} && field != support::value{0, {0}})
            return false;
    return true;
}

/// An object that holds one record.
timing holding(const timestamp& one)
{
    timing made;
    made.timestamps = {one};
    return made;
}

pan_scan holding(const rect& one)
{
    pan_scan made;
    made.rects = {one};
    return made;
}

template <support::made_with How>
void expect_zeros()
{
    EXPECT_TRUE(is_zero(*support::made_on_dirty_memory<timing, How>()));
    EXPECT_TRUE(is_zero(*support::made_on_dirty_memory<period, How>()));
    EXPECT_TRUE(is_zero(*support::made_on_dirty_memory<pan_scan, How>()));
    EXPECT_TRUE(is_zero(*support::made_on_dirty_memory<recovery, How>()));
    EXPECT_TRUE(is_zero(holding(*support::made_on_dirty_memory<timestamp, How>())));
    EXPECT_TRUE(is_zero(holding(*support::made_on_dirty_memory<rect, How>())));
    const support::made_on_dirty_memory<user_data, How> data;
    EXPECT_TRUE(data->uuid == nullptr && data->payload == nullptr && data->payload_fence == nullptr);
}

} // namespace

TEST(SeiLayout, AnEmptyBraceMakesZerosFalsesAndEmpties)
{
    expect_zeros<support::made_with::braces>();
    const support::made_on_dirty_memory<uuid> id;
    for (const unsigned char byte : id->bytes)
        EXPECT_EQ(0, byte);
}

TEST(SeiLayout, EveryMemberHasItsInitialiser)
{
    expect_zeros<support::made_with::no_braces>();
}

TEST(SeiLayout, EveryMemberIsAmongTheFieldsThatTestsCompare)
{
    EXPECT_EQ(4U + 15, support::names_of(timing{}).in_order.size());
    EXPECT_EQ(6U, support::names_of(period{}).in_order.size());
    EXPECT_EQ(5U + 4, support::names_of(pan_scan{}).in_order.size());
    EXPECT_EQ(5U, support::names_of(recovery{}).in_order.size());
    EXPECT_EQ(support::names_of(timing{}).in_order.size(), support::names_of(timing{}).index.size());
    EXPECT_EQ(support::names_of(pan_scan{}).in_order.size(), support::names_of(pan_scan{}).index.size());
}

TEST(SeiLayout, TheTwoTextsOfAUuidAreTheSameEveryTime)
{
    const uuid other{};
    EXPECT_EQ(h264_uuid_to_str(other), h264_uuid_to_str(other));
    EXPECT_EQ(h264_uuid_to_str(h264_c_uuid_libx264_debug_info), h264_uuid_to_str(h264_c_uuid_libx264_debug_info));
}
