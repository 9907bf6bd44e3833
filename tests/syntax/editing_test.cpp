// Editing: what a path names, what a new value brings into the syntax, and that a refusal changes nothing.
#include "support/small_units.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

seq_parameter_set_data& sps_in(nal_unit& unit)
{
    return std::get<seq_parameter_set_rbsp>(unit.rbsp).seq_parameter_set_data;
}
pic_parameter_set_rbsp& pps_in(nal_unit& unit)
{
    return std::get<pic_parameter_set_rbsp>(unit.rbsp);
}

/// An edit that is done; what it leaves is written and read back the same.
void change(nal_unit& unit, const char* path, std::int64_t value, const unit_context& context = {})
{
    outcome result;
    EXPECT_TRUE(edit(unit, context, path, value, result)) << path << ": " << text_of(result.failure.why);
    const std::vector<unsigned char> bytes = written(unit, context);
    nal_unit again;
    read(again, bytes.data(), bytes.size(), context, result);
    EXPECT_FALSE(result.failure) << path;
    EXPECT_TRUE(again == unit) << path;
}

/// An edit that is refused; the unit is as it was.
failure refused(const nal_unit& unit, const char* path, std::int64_t value, const unit_context& context = {})
{
    nal_unit copy = unit;
    outcome result;
    EXPECT_FALSE(edit(copy, context, path, value, result)) << path;
    EXPECT_TRUE(copy == unit) << path;
    return result.failure;
}

/// With VUI and both kinds of HRD parameters.
nal_unit timed_sps()
{
    nal_unit unit = sps_unit(timed_sps_data(0, 24));
    sps_in(unit).vui_parameters.vcl_hrd_parameters_present_flag = true;
    return unit;
}

TEST(Editing, ANameAloneIsAPathWhereOneElementHasIt)
{
    nal_unit unit = sps_unit(sps_data());
    change(unit, "level_idc", 40);
    EXPECT_EQ(sps_in(unit).level_idc, 40);
    change(unit, "nal_ref_idc", 1);
    EXPECT_EQ(unit.header.nal_ref_idc, 1);
}

TEST(Editing, StructuresAroundItMayStandInFront)
{
    nal_unit unit = timed_sps();
    change(unit, "vui_parameters.pic_struct_present_flag", 1);
    EXPECT_TRUE(sps_in(unit).vui_parameters.pic_struct_present_flag);
    change(unit, "seq_parameter_set_rbsp.seq_parameter_set_data.vui_parameters.aspect_ratio_info_present_flag", 1);
    EXPECT_TRUE(sps_in(unit).vui_parameters.aspect_ratio_info_present_flag);
    change(unit, "nal_unit.nal_ref_idc", 2);
    EXPECT_EQ(unit.header.nal_ref_idc, 2);
}

TEST(Editing, AnIndexNamesOneOfAList)
{
    nal_unit unit = sps_unit(sps_data());
    sps_in(unit).pic_order_cnt_type = 1;
    sps_in(unit).num_ref_frames_in_pic_order_cnt_cycle = 12;
    change(unit, "offset_for_ref_frame[11]", -5);
    EXPECT_EQ(sps_in(unit).offset_for_ref_frame[11], -5);
    EXPECT_EQ(sps_in(unit).offset_for_ref_frame[1], 0);
    change(unit, "seq_parameter_set_data.offset_for_ref_frame[1]", 7);
    EXPECT_EQ(sps_in(unit).offset_for_ref_frame[1], 7);
}

TEST(Editing, PathsOfSeveralElementsAreAmbiguous)
{
    const failure f = refused(timed_sps(), "bit_rate_scale", 1);
    EXPECT_EQ(f.why, reason::ambiguous);
    EXPECT_EQ(f.value, 2);
    EXPECT_EQ(refused(timed_sps(), "hrd_parameters.bit_rate_scale", 1).why, reason::ambiguous);
}

TEST(Editing, PathsOfNoElementAreRefused)
{
    const nal_unit unit = sps_unit(sps_data());
    for (const char* path : {"", "time_scale", "evel_idc", "xlevel_idc", "level_idc ", "level_idc[0]", "level",
                             "vui_parameters.level_idc", "parameter_set_data.level_idc", ".level_idc",
                             "offset_for_ref_frame", "nal_unit.level_idc", "more.nal_unit.nal_ref_idc"})
        EXPECT_EQ(refused(unit, path, 1).why, reason::no_such_element) << path;
}

TEST(Editing, IndicesAreSpelledOneWay)
{
    nal_unit unit = sps_unit(sps_data());
    sps_in(unit).pic_order_cnt_type = 1;
    sps_in(unit).num_ref_frames_in_pic_order_cnt_cycle = 2;
    for (const char* path :
         {"offset_for_ref_frame", "offset_for_ref_frame[2]", "offset_for_ref_frame[01]", "offset_for_ref_frame[-1]",
          "offset_for_ref_frame[1", "offset_for_ref_frame1]", "offset_for_ref_frame[]", "offset_for_ref_frame[1][0]"})
        EXPECT_EQ(refused(unit, path, 1).why, reason::no_such_element) << path;
}

TEST(Editing, AValueThatTheElementCannotHoldIsRefused)
{
    const nal_unit unit = sps_unit(sps_data());
    const auto check = [&](const char* path, std::int64_t value, reason why, std::int64_t bound) {
        const failure f = refused(unit, path, value);
        EXPECT_EQ(f.why, why) << path << " " << value;
        EXPECT_STREQ(f.element.name(), path);
        EXPECT_EQ(f.value, value);
        EXPECT_EQ(f.bound, bound);
    };
    check("level_idc", 256, reason::too_large, 255);
    check("level_idc", -1, reason::too_small, 0);
    check("frame_mbs_only_flag", 2, reason::too_large, 1);
    check("pic_width_in_mbs_minus1", 0xFFFFFFFF, reason::too_large, 0xFFFFFFFE);
    check("max_num_ref_frames", -1, reason::too_small, 0);
    const failure f = refused(pps_unit(), "pic_init_qp_minus26", -0x80000000LL);
    EXPECT_EQ(f.why, reason::too_small);
    EXPECT_EQ(refused(pps_unit(), "num_slice_groups_minus1", 8).why, reason::too_large);
}

TEST(Editing, ValuesOutsideTheStandardsRangeThatHaveACodeAreTaken)
{
    nal_unit unit = sps_unit(sps_data());
    outcome result;
    EXPECT_TRUE(edit(unit, {}, "seq_parameter_set_id", 40, result));
    EXPECT_EQ(sps_in(unit).seq_parameter_set_id, 40U);
}

TEST(Editing, VuiThatComesInHoldsWhatIsInferred)
{
    nal_unit unit = sps_unit(sps_data());
    change(unit, "vui_parameters_present_flag", 1);
    vui_parameters inferred;
    inferred.max_num_reorder_frames = inferred.max_dec_frame_buffering = MaxDpbFrames(sps_in(unit));
    EXPECT_TRUE(sps_in(unit).vui_parameters == inferred);
    change(unit, "bitstream_restriction_flag", 1);
    EXPECT_EQ(sps_in(unit).vui_parameters.max_bytes_per_pic_denom, 2U);
    EXPECT_EQ(sps_in(unit).vui_parameters.log2_max_mv_length_vertical, 15U);
    change(unit, "nal_hrd_parameters_present_flag", 1);
    EXPECT_EQ(sps_in(unit).vui_parameters.nal_hrd_parameters.time_offset_length, 24);
}

TEST(Editing, WhatFollowsFromAnElementIsInferredAnew)
{
    nal_unit unit = sps_unit(sps_data(0, 45, 36));
    EXPECT_EQ(sps_in(unit).vui_parameters.max_dec_frame_buffering, 5U);
    change(unit, "level_idc", 40);
    EXPECT_EQ(sps_in(unit).vui_parameters.max_dec_frame_buffering, 16U);
    nal_unit pps = pps_unit();
    change(pps, "chroma_qp_index_offset", -3);
    EXPECT_EQ(pps_in(pps).second_chroma_qp_index_offset, -3);
}

TEST(Editing, ListsGrowAndShrinkWithTheirCounts)
{
    nal_unit unit = pps_unit();
    change(unit, "num_slice_groups_minus1", 2);
    change(unit, "slice_group_map_type", 6);
    EXPECT_EQ(pps_in(unit).slice_group_id.size(), 1U);
    change(unit, "pic_size_in_map_units_minus1", 9);
    EXPECT_EQ(pps_in(unit).slice_group_id, std::vector<std::uint8_t>(10));
    change(unit, "slice_group_id[9]", 2);
    change(unit, "pic_size_in_map_units_minus1", 11);
    EXPECT_EQ(pps_in(unit).slice_group_id[9], 2);
    change(unit, "pic_size_in_map_units_minus1", 3);
    EXPECT_EQ(pps_in(unit).slice_group_id.size(), 4U);
    const failure f = refused(unit, "pic_size_in_map_units_minus1", 0xFFFFFFFE);
    EXPECT_EQ(f.why, reason::too_large);
    EXPECT_STREQ(f.element.name(), "slice_group_id");
}

TEST(Editing, ActiveReferencesBringTheirWeights)
{
    small_sets s;
    s.pps.weighted_pred_flag = true;
    s.sps.seq_parameter_set_data.max_num_ref_frames = 4;
    nal_unit unit = slice_unit(1);
    change(unit, "slice_type", 0, s.context);
    change(unit, "num_ref_idx_active_override_flag", 1, s.context);
    change(unit, "num_ref_idx_l0_active_minus1", 3, s.context);
    EXPECT_EQ(slice_header_of(unit)->pred_weight_table.l0.size(), 4U);
    change(unit, "luma_log2_weight_denom", 5, s.context);
    EXPECT_EQ(slice_header_of(unit)->pred_weight_table.l0[3].luma_weight, 32);
    const failure f = refused(unit, "num_ref_idx_l0_active_minus1", 32, s.context);
    EXPECT_EQ(f.why, reason::too_large);
}

TEST(Editing, TheTailOfAPpsIsNamedByMoreRbspData)
{
    nal_unit unit = pps_unit();
    change(unit, "more_rbsp_data", 1);
    change(unit, "transform_8x8_mode_flag", 1);
    change(unit, "second_chroma_qp_index_offset", 4);
    EXPECT_EQ(pps_in(unit).chroma_qp_index_offset, 0);
    EXPECT_EQ(pps_in(unit).second_chroma_qp_index_offset, 4);
}

TEST(Editing, CountsThatWerePutInByHandKeepToTheirBounds)
{
    nal_unit unit = timed_sps();
    sps_in(unit).vui_parameters.nal_hrd_parameters.cpb_cnt_minus1 = 32;
    const failure above = refused(unit, "level_idc", 40);
    EXPECT_EQ(above.why, reason::too_large);
    EXPECT_STREQ(above.element.name(), "cpb_cnt_minus1");
    post_filter_hint hint; // a size of 0
    const failure below = refused(unit_of(6, sei_rbsp{{message_of(22, hint)}}), "filter_hint_type", 1);
    EXPECT_EQ(below.why, reason::too_small);
    EXPECT_STREQ(below.element.name(), "filter_hint_size_y");
}

TEST(Editing, WhatLeavesTheSyntaxStaysInTheStructureUnwritten)
{
    nal_unit unit = pps_unit();
    const std::vector<unsigned char> before = written(unit, {});
    change(unit, "more_rbsp_data", 1);
    change(unit, "transform_8x8_mode_flag", 1);
    outcome result;
    EXPECT_TRUE(edit(unit, {}, "more_rbsp_data", 0, result));
    EXPECT_EQ(written(unit, {}), before);
    EXPECT_TRUE(pps_in(unit).transform_8x8_mode_flag);
}

} // namespace
