// The layout in memory and the signatures of the frame scan. Offsets are those of LP64.
#include <orv-utils-v4/h264_legacy.h>

#include "support/dirty_memory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace {

/// Whether every member is a T.
template <typename T, typename... Members>
constexpr bool all_are = (std::is_same_v<T, Members> && ...);

using u8 = std::uint8_t;
using info = h264_common_frame_scan_info;
using state = h264_nal_parser_state;
using flags = h264_common_frame_scan_flags;
using position = const unsigned char*;

} // namespace

static_assert(sizeof(void*) == 8, "the sizes below");

static_assert(std::is_standard_layout_v<info> && std::is_trivially_copyable_v<info> && sizeof(info) == 32);
static_assert(
    all_are<u8, decltype(info::complete), decltype(info::need_more_data), decltype(info::has_aud),
            decltype(info::has_sps), decltype(info::has_pps), decltype(info::has_sei), decltype(info::has_slice)>);
static_assert(all_are<std::uint32_t, decltype(info::field_duration)>);
static_assert(all_are<position, decltype(info::frame_start), decltype(info::frame_end)>);
static_assert(offsetof(info, complete) == 0 && offsetof(info, need_more_data) == 1 && offsetof(info, has_aud) == 2);
static_assert(offsetof(info, has_sps) == 3 && offsetof(info, has_pps) == 4 && offsetof(info, has_sei) == 5);
static_assert(offsetof(info, has_slice) == 6 && offsetof(info, field_duration) == 8);
static_assert(offsetof(info, frame_start) == 16 && offsetof(info, frame_end) == 24);

static_assert(h264_common_frame_scan_split_fields == 1 && std::is_convertible_v<flags, unsigned int>);

static_assert(
    std::is_same_v<decltype(&h264_common_frame_scan), position (*)(info&, bool&, h264_sps&, position, position, int,
                                                                   unsigned char*, std::size_t, unsigned int)>);
static_assert(std::is_same_v<decltype(&h264_common_frame_scan_on_NAL), void (*)(info&, bool&, h264_sps&, state&)>);

TEST(FrameScanLayout, AnEmptyBraceMakesZerosAndNulls)
{
    const support::made_on_dirty_memory<info> made;
    EXPECT_EQ(0U, made->complete | made->need_more_data | made->has_aud | made->has_sps | made->has_pps |
                      made->has_sei | made->has_slice | made->field_duration);
    EXPECT_EQ(nullptr, made->frame_start);
    EXPECT_EQ(nullptr, made->frame_end);
}
