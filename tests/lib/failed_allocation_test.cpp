// Parses that run out of memory: the k-th allocation throws, for every k that a parse reaches.
#include "support/failing_new.h"
#include "support/literal_sei_parse.h"
#include "support/parameter_set_fields.h"
#include "support/parsed.h"
#include "support/pps_builder.h"
#include "support/sei_builder.h"
#include "support/slice_context.h"
#include "support/slice_header_fields.h"
#include "support/sps_builder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

namespace {

using brenik::h2645_common_bitreader;
using brenik::h264_hrd_parameters;
using brenik::h264_nal_pps;
using brenik::h264_nal_slice_header;
using brenik::h264_nal_sps;
using brenik::h264_scaling_list;
using brenik::h264_vui_parameters;
using support::armed_new;

/// A parse whose allocation `k`, counted from 0, fails; it must not throw.
template <typename Parse>
bool with_failing_allocation(std::size_t k, Parse parse)
{
    try {
        const armed_new memory(k);
        return parse();
    } catch (...) {
        ADD_FAILURE() << "allocation " << k << " got out";
        return false;
    }
}

h2645_common_bitreader reader(const support::guarded_buffer& buffer)
{
    return {buffer.begin(), buffer.end()};
}

h264_nal_pps parse_pps(const support::pps_description& description, std::size_t k, bool valid, bool& result)
{
    brenik::h2645_common_base_store<h264_nal_sps> store;
    h264_nal_sps sps;
    sps.valid = true;
    sps.chroma_format_idc = 3;
    store.insert_or_assign(0, sps);
    const support::guarded_buffer buffer(support::written_rbsp(description).made());
    h2645_common_bitreader br = reader(buffer);
    h264_nal_pps pps;
    pps.valid = valid;
    result = with_failing_allocation(k, [&] { return pps.parse(br, store); });
    return pps;
}

} // namespace

TEST(FailedAllocation, AScalingListGivesFalseAndValidKeepsItsValue)
{
    const support::guarded_buffer buffer(support::written(support::rising_list(16, 5)).made());
    for (const bool valid : {false, true}) {
        h2645_common_bitreader br = reader(buffer);
        h264_scaling_list list;
        list.valid = valid;
        EXPECT_FALSE(with_failing_allocation(0, [&] { return list.parse(br, 16); }));
        EXPECT_EQ(valid, list.valid);
        EXPECT_TRUE(list.values.empty());
        EXPECT_EQ(0U, br.bits_consumed());
        EXPECT_TRUE(with_failing_allocation(1, [&] { return list.parse(br, 16); }));
        EXPECT_TRUE(list.valid);
        EXPECT_EQ(1U, armed_new::made());
    }
}

TEST(FailedAllocation, AScalingListThatHasRoomNeedsNone)
{
    const support::guarded_buffer buffer(support::written(support::rising_list(16, 5)).made());
    h2645_common_bitreader br = reader(buffer);
    h264_scaling_list list;
    list.values.resize(64);
    EXPECT_TRUE(with_failing_allocation(0, [&] { return list.parse(br, 16); }));
    EXPECT_EQ(16U, list.values.size());
}

TEST(FailedAllocation, HrdParametersKeepTheArraysResizedBeforeIt)
{
    const support::element_writer writer = support::written(support::hrd_of(3));
    const support::guarded_buffer buffer(writer.made());
    for (std::size_t k = 0; k <= 3; ++k)
        for (const bool valid : {false, true}) {
            h2645_common_bitreader br = reader(buffer);
            h264_hrd_parameters hrd;
            hrd.valid = valid;
            const bool result = with_failing_allocation(k, [&] { return hrd.parse(br); });
            EXPECT_EQ(k == 3, result) << k;
            EXPECT_EQ(k == 3 || valid, hrd.valid) << k;
            EXPECT_EQ(2U, hrd.cpb_cnt_minus1);
            EXPECT_EQ(k > 0 ? 3U : 0U, hrd.bit_rate_value_minus1.size()) << k;
            EXPECT_EQ(k > 1 ? 3U : 0U, hrd.cpb_size_value_minus1.size()) << k;
            EXPECT_EQ(k > 2 ? 3U : 0U, hrd.cbr_flag.size()) << k;
            EXPECT_EQ(k == 3 ? writer.size_in_bits() : writer.elements()[3].position, br.bits_consumed());
        }
}

TEST(FailedAllocation, VuiParametersBecomeInvalid)
{
    const support::guarded_buffer buffer(support::written(support::full_vui()).made());
    for (std::size_t k = 0; k <= 6; ++k)
        for (const bool valid : {false, true}) {
            h2645_common_bitreader br = reader(buffer);
            h264_vui_parameters vui;
            vui.valid = vui.nal_hrd.valid = vui.vcl_hrd.valid = valid;
            EXPECT_EQ(k == 6, with_failing_allocation(k, [&] { return vui.parse(br); })) << k;
            EXPECT_EQ(k == 6, vui.valid) << k;
            EXPECT_EQ(k >= 3 || valid, vui.nal_hrd.valid) << k;
            EXPECT_EQ(k >= 6 || valid, vui.vcl_hrd.valid) << k;
            EXPECT_EQ(k >= 3, vui.vcl_hrd_parameters_present_flag) << k;
        }
}

TEST(FailedAllocation, AnSpsBecomesInvalidButForThePictureOrderCountCycle)
{
    // Twelve lists, the cycle, and three arrays of each HRD.
    constexpr std::size_t lists = 12;
    constexpr std::size_t cycle = lists;
    constexpr std::size_t all = lists + 1 + 6;
    const support::guarded_buffer buffer(support::written_rbsp(support::full_sps()).made());
    for (std::size_t k = 0; k <= all; ++k)
        for (const bool valid : {false, true}) {
            h2645_common_bitreader br = reader(buffer);
            h264_nal_sps sps;
            sps.valid = valid;
            EXPECT_EQ(k == all, with_failing_allocation(k, [&] { return sps.parse(br); })) << k;
            EXPECT_EQ(k == cycle ? valid : k == all, sps.valid) << k;
            EXPECT_EQ(k == 0 ? 0U : 16U, sps.scaling_list_4x4[0].values.size()) << k;
            EXPECT_EQ(k < lists ? 0U : 64U, sps.scaling_list_8x8[5].values.size()) << k;
            EXPECT_EQ(k > lists - 1, sps.scaling_list_8x8[5].valid) << k;
            EXPECT_EQ(k < lists ? 0U : 1U, sps.SubWidthC) << k;
            EXPECT_EQ(k < cycle ? 0U : 5U, sps.num_ref_frames_in_pic_order_cnt_cycle) << k;
            EXPECT_EQ(k <= cycle ? 0U : 5U, sps.offset_for_ref_frame.size()) << k;
            EXPECT_EQ(k <= cycle ? 0U : 6U, sps.max_num_ref_frames) << k;
            EXPECT_EQ(k == all, sps.vui.valid) << k;
        }
}

TEST(FailedAllocation, SliceGroupsGiveFalseAndValidKeepsItsValue)
{
    for (const std::uint32_t map_type : {0U, 2U, 6U}) {
        const std::size_t all = map_type == 2 ? 2 : 1;
        for (std::size_t k = 0; k <= all; ++k)
            for (const bool valid : {false, true}) {
                bool result = false;
                const h264_nal_pps pps = parse_pps(support::pps_of_map_type(map_type), k, valid, result);
                EXPECT_EQ(k == all, result) << map_type;
                EXPECT_EQ(k == all || valid, pps.valid) << map_type;
                EXPECT_EQ(map_type, pps.slice_group_map_type);
                EXPECT_EQ(k == 1 && map_type == 0 ? 3U : 0U, pps.run_length_minus1.size());
                EXPECT_EQ(k >= 1 && map_type == 2 ? 2U : 0U, pps.top_left.size());
                EXPECT_EQ(k == 2 && map_type == 2 ? 2U : 0U, pps.bottom_right.size());
                EXPECT_EQ(k == 1 && map_type == 6 ? 7U : 0U, pps.slice_group_id.size());
            }
    }
}

TEST(FailedAllocation, AScalingListMakesThePpsInvalid)
{
    for (std::size_t k = 0; k <= 12; ++k)
        for (const bool valid : {false, true}) {
            bool result = false;
            const h264_nal_pps pps = parse_pps(support::full_pps(3), k, valid, result);
            EXPECT_EQ(k == 12, result) << k;
            EXPECT_EQ(k == 12, pps.valid) << k;
            EXPECT_TRUE(pps.more_rbsp_data_present && pps.transform_8x8_mode_flag);
            EXPECT_EQ(k == 12 ? 3 : 0, pps.second_chroma_qp_index_offset) << k;
            for (std::size_t i = 0; i < 6; ++i) {
                EXPECT_EQ(i < k, pps.pic_scaling_list_4x4[i].valid) << k;
                EXPECT_EQ(i <= k, pps.pic_scaling_list_4x4[i].present) << k;
                EXPECT_EQ(i + 6 < k, pps.pic_scaling_list_8x8[i].valid) << k;
                EXPECT_EQ(i + 6 <= k, pps.pic_scaling_list_8x8[i].present) << k;
            }
        }
}

TEST(FailedAllocation, ThePictureTimingKeepsItsTimestampsAndValid)
{
    const auto writer = support::written(support::full_pic_timing());
    const support::guarded_buffer buffer(writer.made());
    const h264_nal_sps sps = support::sps_with({{true}, {true}, true});
    support::sei_sps_store store;
    store.insert_or_assign(2, sps);
    store.set_current_id(2);
    for (const bool from_store : {false, true})
        for (const std::size_t k : {std::size_t{0}, std::size_t{1}})
            for (const bool valid : {false, true}) {
                h2645_common_bitreader br = reader(buffer);
                brenik::h264_nal_sei_pic_timing timing;
                timing.valid = valid;
                timing.timestamps.resize(2);
                EXPECT_EQ(k == 1, with_failing_allocation(
                                      k, [&] { return from_store ? timing.parse(br, store) : timing.parse(br, sps); }));
                EXPECT_EQ(k == 1 || valid, timing.valid);
                EXPECT_EQ(0xABCDEFU, timing.cpb_removal_delay);
                EXPECT_EQ(0x123456U, timing.dpb_output_delay);
                EXPECT_EQ(5, timing.pic_struct);
                EXPECT_EQ(k == 1 ? 3U : 2U, timing.timestamps.size());
                EXPECT_EQ(k == 1 ? writer.size_in_bits() : 24 + 24 + 4, br.bits_consumed());
            }
}

TEST(FailedAllocation, TheBufferingPeriodKeepsTheArraysResizedBeforeItAndValid)
{
    support::buffering_period_description description;
    description.nal = support::pairs_from(100, 3);
    description.vcl = support::pairs_from(200, 2);
    const auto writer = support::written(description);
    const support::guarded_buffer buffer(writer.made());
    const auto store = support::store_with({{0, {{true, 2}, {true, 1}, false}}});
    for (std::size_t k = 0; k <= 4; ++k)
        for (const bool valid : {false, true}) {
            h2645_common_bitreader br = reader(buffer);
            brenik::h264_nal_sei_buffering_period period;
            period.valid = valid;
            EXPECT_EQ(k == 4, with_failing_allocation(k, [&] { return period.parse(br, store); })) << k;
            EXPECT_EQ(k == 4 || valid, period.valid) << k;
            EXPECT_EQ(k > 0 ? 3U : 0U, period.nal_initial_cpb_removal_delay.size()) << k;
            EXPECT_EQ(k > 1 ? 3U : 0U, period.nal_initial_cpb_removal_delay_offset.size()) << k;
            EXPECT_EQ(k > 2 ? 2U : 0U, period.vcl_initial_cpb_removal_delay.size()) << k;
            EXPECT_EQ(k > 3 ? 2U : 0U, period.vcl_initial_cpb_removal_delay_offset.size()) << k;
            EXPECT_EQ(k < 2 ? 1U : k < 4 ? 1 + 6 * 24U : writer.size_in_bits(), br.bits_consumed()) << k;
        }
}

TEST(FailedAllocation, ThePanScanRectKeepsItsRectsAndValid)
{
    const auto writer = support::written(support::pan_scan_of(5));
    const support::guarded_buffer buffer(writer.made());
    for (const std::size_t k : {std::size_t{0}, std::size_t{1}})
        for (const bool valid : {false, true}) {
            h2645_common_bitreader br = reader(buffer);
            brenik::h264_nal_sei_pan_scan_rect pan_scan;
            pan_scan.valid = valid;
            pan_scan.rects.resize(2);
            EXPECT_EQ(k == 1, with_failing_allocation(k, [&] { return pan_scan.parse(br); }));
            EXPECT_EQ(k == 1 || valid, pan_scan.valid);
            EXPECT_EQ(300U, pan_scan.pan_scan_rect_id);
            EXPECT_EQ(4U, pan_scan.pan_scan_cnt_minus1);
            EXPECT_EQ(k == 1 ? 5U : 2U, pan_scan.rects.size());
            EXPECT_EQ(k == 1 ? 20000U : 0U, pan_scan.pan_scan_rect_repetition_period);
            EXPECT_EQ(k == 1 ? writer.size_in_bits() : writer.elements()[3].position, br.bits_consumed());
        }
}

namespace {

/// A B slice, the steps of whose lists need further memory again and again.
support::slice_header_description slice_with_long_lists()
{
    support::slice_header_description slice = support::slice_of_type(1);
    for (std::uint32_t i = 0; i < 100; ++i) {
        slice.ref_pic_list_modification_l0.steps->push_back({i % 3, i});
        slice.ref_pic_list_modification_l1.steps->push_back({4 + i});
    }
    return slice;
}

/// Whether the list holds the first steps of the description and nothing else.
bool holds_the_first_steps(const h264_nal_slice_header::ref_pic_list_modification_entry_t& list,
                           const support::list_modification_description& description)
{
    for (std::size_t i = 0; i < list.entries.size(); ++i) {
        const support::modification_step& step = description.steps->at(i);
        if (list.entries[i].modification_of_pic_nums_idc != step.modification_of_pic_nums_idc ||
            list.entries[i].pic_num_value != step.value)
            return false;
    }
    return true;
}

} // namespace

TEST(FailedAllocation, OfASliceHeaderGetsOutAndTheEntriesBeforeItAreKept)
{
    const support::slice_header_description description = slice_with_long_lists();
    const support::slice_context context = context_of(description);
    const auto sps_store = context.sps_store();
    const auto pps_store = context.pps_store();
    const support::guarded_buffer buffer(support::written(description).made());
    h264_nal_slice_header whole;
    h2645_common_bitreader first = reader(buffer);
    ASSERT_TRUE(with_failing_allocation(armed_new::never,
                                        [&] { return whole.parse(first, sps_store, pps_store, context.nal); }));
    const std::size_t all = armed_new::made();
    ASSERT_GE(all, 4U);
    std::size_t kept_before = 0;
    for (std::size_t k = 0; k < all; ++k)
        for (const bool valid : {false, true}) {
            h2645_common_bitreader br = reader(buffer);
            h264_nal_slice_header slice;
            slice.valid = valid;
            const auto parse = [&] {
                const armed_new memory(k);
                return slice.parse(br, sps_store, pps_store, context.nal);
            };
            EXPECT_THROW(parse(), std::bad_alloc) << k;
            EXPECT_EQ(valid, slice.valid) << k;
            EXPECT_EQ(9U, slice.frame_num);
            const auto& l0 = slice.ref_pic_list_modification_l0;
            const auto& l1 = slice.ref_pic_list_modification_l1;
            EXPECT_TRUE(l0.ref_pic_list_modification_flag);
            EXPECT_TRUE(holds_the_first_steps(l0, description.ref_pic_list_modification_l0)) << k;
            EXPECT_TRUE(holds_the_first_steps(l1, description.ref_pic_list_modification_l1)) << k;
            EXPECT_EQ(l0.entries.size() == 102, l1.ref_pic_list_modification_flag) << k;
            const std::size_t kept = l0.entries.size() + l1.entries.size();
            EXPECT_TRUE(valid ? kept == kept_before : k == 0 ? kept == 0 : kept > kept_before) << k;
            kept_before = kept;
        }
}
