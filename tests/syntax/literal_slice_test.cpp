// Slice headers of every NAL unit type, with the header extensions of types 14, 20 and 21, spelled by hand; H.264
// clauses 7.3.1, 7.3.2.8 to 7.3.2.13, 7.3.3, G.7.3.3.4, H.7.3.3.1.1 and J.7.3.3.4.
#include "support/literal_unit.h"

#include <gtest/gtest.h>

namespace {

using namespace literal;

/// An SPS, a subset SPS and a PPS with the id 0. Without a change: frame numbers of 4 bits, picture order counts of 6.
struct slice_sets_of_one {
    slice_sets_of_one()
    {
        for (seq_parameter_set_data* const x : {&sps.seq_parameter_set_data, &subset.seq_parameter_set_data}) {
            x->profile_idc = 244;
            x->log2_max_pic_order_cnt_lsb_minus4 = 2;
            x->frame_mbs_only_flag = true;
            x->pic_width_in_mbs_minus1 = 9;
            x->pic_height_in_map_units_minus1 = 9;
            x->max_num_ref_frames = 16;
        }
        sets.sps[0] = &sps;
        sets.subset_sps[0] = &subset;
        sets.pps[0] = &pps;
        context.sets = &sets;
        context.partition_a_pps = 0;
    }
    seq_parameter_set_data& base() { return sps.seq_parameter_set_data; }
    /// That of slices of types 20 and 21.
    seq_parameter_set_data& layer() { return subset.seq_parameter_set_data; }

    seq_parameter_set_rbsp sps;
    subset_seq_parameter_set_rbsp subset;
    pic_parameter_set_rbsp pps;
    parameter_sets sets;
    unit_context context;
};

enum slice_types { P, B, I, SP, SI, all_P, all_B, all_I, all_SP, all_SI };

lines slice_begins(int slice_type)
{
    return {{"first_mb_in_slice", ue, 17}, {"slice_type", ue, slice_type}, {"pic_parameter_set_id", ue, 0}};
}

const lines frame_num = {{"frame_num", u_v(4), 9}};
const lines pic_order_cnt = {{"pic_order_cnt_lsb", u_v(6), 33}};
const lines qp = {{"slice_qp_delta", se, -3}};
const lines unmodified_l0 = {{"ref_pic_list_modification_flag_l0", u(1), 0}};
const lines unmodified_l1 = {{"ref_pic_list_modification_flag_l1", u(1), 0}};
const lines counts_of_pps = {{"num_ref_idx_active_override_flag", u(1), 0}};
const lines sliding_window = {{"adaptive_ref_pic_marking_mode_flag", u(1), 0}};
const lines idr_marking = {{"no_output_of_prior_pics_flag", u(1), 0}, {"long_term_reference_flag", u(1), 1}};

const std::string slice_data = "\xA5\x5A\x80";

/// Behind the header bits of a CABAC slice, cabac_alignment_one_bit up to a byte.
lines aligned(lines unit)
{
    for (std::size_t n = in_bits(unit).bits(); n % 8 != 0; ++n)
        unit.push_back({"cabac_alignment_one_bit", f(1), 1});
    return unit;
}

lines slice_of(unsigned nal_ref_idc, unsigned type, const lines& header)
{
    return join(nal_header(nal_ref_idc, type), header);
}

const slice_header& header_of(const nal_unit& unit)
{
    static const slice_header none;
    const slice_header* const header = slice_header_of(unit);
    EXPECT_NE(header, nullptr);
    return header == nullptr ? none : *header;
}

TEST(LiteralSlice, IntraWithEveryConditionOffIsToldAndTheRestIsInferred)
{
    slice_sets_of_one with;
    const nal_unit unit =
        expect_told(slice_of(0, 1, join(slice_begins(I), frame_num, pic_order_cnt, qp)), with.context);
    const slice_header& header = header_of(unit);
    EXPECT_EQ(header.frame_num, 9U);
    EXPECT_EQ(header.pic_order_cnt_lsb, 33U);
    EXPECT_EQ(header.delta_pic_order_cnt_bottom, 0);
    EXPECT_EQ(header.slice_qp_delta, -3);
    EXPECT_FALSE(header.field_pic_flag);
    EXPECT_EQ(header.disable_deblocking_filter_idc, 0U);
}

TEST(LiteralSlice, IdrFieldOfThreeColourPlanesIsTold)
{
    slice_sets_of_one with;
    with.base().chroma_format_idc = 3;
    with.base().separate_colour_plane_flag = true;
    with.base().frame_mbs_only_flag = false;
    with.base().log2_max_frame_num_minus4 = 12;
    with.pps.entropy_coding_mode_flag = true;
    with.pps.bottom_field_pic_order_in_frame_present_flag = true;
    with.pps.redundant_pic_cnt_present_flag = true;
    with.pps.deblocking_filter_control_present_flag = true;
    const lines begins = join(slice_begins(all_I), lines{{"colour_plane_id", u(2), 2}, {"frame_num", u_v(16), 0}});
    const lines ends = join(idr_marking, qp,
                            lines{{"disable_deblocking_filter_idc", ue, 2},
                                  {"slice_alpha_c0_offset_div2", se, -6},
                                  {"slice_beta_offset_div2", se, 6}});
    const lines field = {{"field_pic_flag", u(1), 1},
                         {"bottom_field_flag", u(1), 1},
                         {"idr_pic_id", ue, 65535},
                         {"pic_order_cnt_lsb", u_v(6), 63},
                         {"redundant_pic_cnt", ue, 127}};
    const nal_unit unit = expect_told(aligned(slice_of(1, 5, join(begins, field, ends))), with.context, slice_data);
    EXPECT_EQ(header_of(unit).slice_alpha_c0_offset_div2, -6);
    EXPECT_EQ(header_of(unit).slice_beta_offset_div2, 6);
    EXPECT_EQ(header_of(unit).idr_pic_id, 65535U);
    EXPECT_EQ(header_of(unit).redundant_pic_cnt, 127U);

    const lines frame = {{"field_pic_flag", u(1), 0},
                         {"idr_pic_id", ue, 1},
                         {"pic_order_cnt_lsb", u_v(6), 2},
                         {"delta_pic_order_cnt_bottom", se, -5},
                         {"redundant_pic_cnt", ue, 0}};
    expect_told(aligned(slice_of(1, 5, join(begins, frame, ends))), with.context, slice_data);
}

TEST(LiteralSlice, PictureOrderCountsOfTypesOneAndTwoAreTold)
{
    slice_sets_of_one with;
    with.base().pic_order_cnt_type = 1;
    with.base().frame_mbs_only_flag = false;
    with.pps.bottom_field_pic_order_in_frame_present_flag = true;
    const lines delta_0 = {{"delta_pic_order_cnt[0]", se, -7}};
    const lines delta_1 = {{"delta_pic_order_cnt[1]", se, 8}};
    const lines frame = {{"field_pic_flag", u(1), 0}};
    const lines top = {{"field_pic_flag", u(1), 1}, {"bottom_field_flag", u(1), 0}};
    const nal_unit unit =
        expect_told(slice_of(0, 1, join(slice_begins(I), frame_num, frame, delta_0, delta_1, qp)), with.context);
    EXPECT_EQ(header_of(unit).delta_pic_order_cnt[0], -7);
    EXPECT_EQ(header_of(unit).delta_pic_order_cnt[1], 8);
    expect_told(slice_of(0, 1, join(slice_begins(I), frame_num, top, delta_0, qp)), with.context);
    with.base().delta_pic_order_always_zero_flag = true;
    expect_told(slice_of(0, 1, join(slice_begins(I), frame_num, frame, qp)), with.context);
    with.base().delta_pic_order_always_zero_flag = false;
    with.pps.bottom_field_pic_order_in_frame_present_flag = false;
    expect_told(slice_of(0, 1, join(slice_begins(I), frame_num, frame, delta_0, qp)), with.context);
    with.base().pic_order_cnt_type = 2;
    expect_told(slice_of(0, 1, join(slice_begins(I), frame_num, frame, qp)), with.context);
}

TEST(LiteralSlice, PredictedHasListsOfBothKindsOfModificationAndMarking)
{
    slice_sets_of_one with;
    const lines modified = {{"ref_pic_list_modification_flag_l0", u(1), 1},
                            {"modification_of_pic_nums_idc", ue, 0},
                            {"abs_diff_pic_num_minus1", ue, 3},
                            {"modification_of_pic_nums_idc", ue, 1},
                            {"abs_diff_pic_num_minus1", ue, 4},
                            {"modification_of_pic_nums_idc", ue, 2},
                            {"long_term_pic_num", ue, 5},
                            {"modification_of_pic_nums_idc", ue, 3}};
    const lines marked = {{"adaptive_ref_pic_marking_mode_flag", u(1), 1},
                          {"memory_management_control_operation", ue, 1},
                          {"difference_of_pic_nums_minus1", ue, 6},
                          {"memory_management_control_operation", ue, 2},
                          {"long_term_pic_num", ue, 7},
                          {"memory_management_control_operation", ue, 3},
                          {"difference_of_pic_nums_minus1", ue, 8},
                          {"long_term_frame_idx", ue, 9},
                          {"memory_management_control_operation", ue, 4},
                          {"max_long_term_frame_idx_plus1", ue, 10},
                          {"memory_management_control_operation", ue, 5},
                          {"memory_management_control_operation", ue, 6},
                          {"long_term_frame_idx", ue, 11},
                          {"memory_management_control_operation", ue, 0}};
    expect_told(
        slice_of(2, 1,
                 join(slice_begins(P), frame_num, pic_order_cnt,
                      lines{{"num_ref_idx_active_override_flag", u(1), 1}, {"num_ref_idx_l0_active_minus1", ue, 15}},
                      modified, marked, qp)),
        with.context);
    expect_told(
        slice_of(2, 1,
                 join(slice_begins(all_P), frame_num, pic_order_cnt, counts_of_pps, unmodified_l0, sliding_window, qp)),
        with.context);
}

TEST(LiteralSlice, AListHasThirtyTwoFields)
{
    slice_sets_of_one with;
    with.base().frame_mbs_only_flag = false;
    const lines field = {{"field_pic_flag", u(1), 1}, {"bottom_field_flag", u(1), 0}};
    const nal_unit unit = expect_told(
        slice_of(0, 1,
                 join(slice_begins(P), frame_num, field, pic_order_cnt,
                      lines{{"num_ref_idx_active_override_flag", u(1), 1}, {"num_ref_idx_l0_active_minus1", ue, 31}},
                      unmodified_l0, qp)),
        with.context);
    EXPECT_EQ(header_of(unit).num_ref_idx_l0_active_minus1, 31U);
}

TEST(LiteralSlice, BiPredictedHasBothListsAndDirectMode)
{
    slice_sets_of_one with;
    with.pps.entropy_coding_mode_flag = true;
    const lines direct = {{"direct_spatial_mv_pred_flag", u(1), 1}};
    const lines counts = {{"num_ref_idx_active_override_flag", u(1), 1},
                          {"num_ref_idx_l0_active_minus1", ue, 1},
                          {"num_ref_idx_l1_active_minus1", ue, 2}};
    const lines modified_l1 = {{"ref_pic_list_modification_flag_l1", u(1), 1},
                               {"modification_of_pic_nums_idc", ue, 1},
                               {"abs_diff_pic_num_minus1", ue, 9},
                               {"modification_of_pic_nums_idc", ue, 3}};
    const lines init = {{"cabac_init_idc", ue, 2}};
    const nal_unit unit = expect_told(aligned(slice_of(0, 1,
                                                       join(slice_begins(B), frame_num, pic_order_cnt, direct, counts,
                                                            unmodified_l0, modified_l1, init, qp))),
                                      with.context, slice_data);
    EXPECT_EQ(header_of(unit).num_ref_idx_l0_active_minus1, 1U);
    EXPECT_EQ(header_of(unit).num_ref_idx_l1_active_minus1, 2U);
    EXPECT_EQ(header_of(unit).cabac_init_idc, 2U);
    with.pps.num_ref_idx_l0_default_active_minus1 = 3;
    with.pps.num_ref_idx_l1_default_active_minus1 = 4;
    const nal_unit inferred =
        expect_told(aligned(slice_of(0, 1,
                                     join(slice_begins(all_B), frame_num, pic_order_cnt, direct, counts_of_pps,
                                          unmodified_l0, unmodified_l1, init, qp))),
                    with.context, slice_data);
    EXPECT_EQ(header_of(inferred).num_ref_idx_l0_active_minus1, 3U);
    EXPECT_EQ(header_of(inferred).num_ref_idx_l1_active_minus1, 4U);
}

/// pred_weight_table() of two references in list X: all weights for the first, none for the second.
lines weights_of(const std::string& list, bool chroma)
{
    const auto name = [&](const char* rest, std::size_t i) { return at(rest + list, i); };
    lines all = {{at("luma_weight_" + list + "_flag", 0), u(1), 1},
                 {name("luma_weight_", 0), se, -128},
                 {name("luma_offset_", 0), se, 127}};
    if (chroma)
        all = join(all, lines{{at("chroma_weight_" + list + "_flag", 0), u(1), 1},
                              {at(name("chroma_weight_", 0), 0), se, 1},
                              {at(name("chroma_offset_", 0), 0), se, -2},
                              {at(name("chroma_weight_", 0), 1), se, 3},
                              {at(name("chroma_offset_", 0), 1), se, -4}});
    all.push_back({at("luma_weight_" + list + "_flag", 1), u(1), 0});
    if (chroma)
        all.push_back({at("chroma_weight_" + list + "_flag", 1), u(1), 0});
    return all;
}

lines two_references(bool l1)
{
    lines counts = {{"num_ref_idx_active_override_flag", u(1), 1}, {"num_ref_idx_l0_active_minus1", ue, 1}};
    if (l1)
        counts.push_back({"num_ref_idx_l1_active_minus1", ue, 1});
    return counts;
}

TEST(LiteralSlice, WeightsOfOneAndOfBothListsAreTold)
{
    slice_sets_of_one with;
    with.pps.weighted_pred_flag = true;
    const lines luma_denominator = {{"luma_log2_weight_denom", ue, 7}};
    const lines denominators = {{"luma_log2_weight_denom", ue, 7}, {"chroma_log2_weight_denom", ue, 5}};
    const nal_unit unit = expect_told(slice_of(0, 1,
                                               join(slice_begins(P), frame_num, pic_order_cnt, two_references(false),
                                                    unmodified_l0, denominators, weights_of("l0", true), qp)),
                                      with.context);
    EXPECT_EQ(header_of(unit).pred_weight_table.luma_log2_weight_denom, 7U);
    EXPECT_EQ(header_of(unit).pred_weight_table.chroma_log2_weight_denom, 5U);

    const lines direct = {{"direct_spatial_mv_pred_flag", u(1), 0}};
    const lines of_b =
        join(slice_begins(B), frame_num, pic_order_cnt, direct, two_references(true), unmodified_l0, unmodified_l1);
    expect_told(slice_of(0, 1, join(of_b, qp)), with.context);
    with.pps.weighted_bipred_idc = 2;
    expect_told(slice_of(0, 1, join(of_b, qp)), with.context);
    with.pps.weighted_bipred_idc = 1;
    with.pps.weighted_pred_flag = false;
    expect_told(slice_of(0, 1, join(of_b, denominators, weights_of("l0", true), weights_of("l1", true), qp)),
                with.context);
    with.base().chroma_format_idc = 0;
    expect_told(slice_of(0, 1, join(of_b, luma_denominator, weights_of("l0", false), weights_of("l1", false), qp)),
                with.context);
    expect_told(
        slice_of(0, 1, join(slice_begins(P), frame_num, pic_order_cnt, two_references(false), unmodified_l0, qp)),
        with.context);
}

TEST(LiteralSlice, SwitchingOnesHaveTheirQuantisersAndMapUnitsTheirCycle)
{
    slice_sets_of_one with;
    with.pps.deblocking_filter_control_present_flag = true;
    with.pps.weighted_pred_flag = true;
    with.pps.num_slice_groups_minus1 = 1;
    with.pps.slice_group_map_type = 4;
    with.pps.slice_group_change_rate_minus1 = 9; // Ceil( Log2( 100 / 10 + 1 ) ) is 4
    const lines cycle = {{"disable_deblocking_filter_idc", ue, 1}, {"slice_group_change_cycle", u_v(4), 9}};
    const lines quantisers = {{"sp_for_switch_flag", u(1), 1}, {"slice_qs_delta", se, 4}};
    const lines denominators = {{"luma_log2_weight_denom", ue, 0}, {"chroma_log2_weight_denom", ue, 1}};
    const nal_unit unit =
        expect_told(slice_of(0, 1,
                             join(slice_begins(SP), frame_num, pic_order_cnt, two_references(false), unmodified_l0,
                                  denominators, weights_of("l0", true), qp, quantisers, cycle)),
                    with.context);
    EXPECT_EQ(header_of(unit).slice_qs_delta, 4);
    EXPECT_EQ(header_of(unit).slice_group_change_cycle, 9U);
    expect_told(
        slice_of(0, 1,
                 join(slice_begins(all_SI), frame_num, pic_order_cnt, qp, lines{{"slice_qs_delta", se, -4}}, cycle)),
        with.context);
    with.pps.entropy_coding_mode_flag = true; // an SI slice has no cabac_init_idc
    expect_told(
        aligned(slice_of(
            0, 1, join(slice_begins(SI), frame_num, pic_order_cnt, qp, lines{{"slice_qs_delta", se, -4}}, cycle))),
        with.context, slice_data);
    for (const std::uint32_t type : {3U, 5U, 2U}) {
        with.pps.slice_group_map_type = type;
        const lines end = type == 2 ? lines{cycle[0]} : cycle;
        expect_told(aligned(slice_of(0, 1, join(slice_begins(I), frame_num, pic_order_cnt, qp, end))), with.context,
                    slice_data);
    }
}

TEST(LiteralSlice, PartitionsAndAuxiliarySlicesAreTold)
{
    slice_sets_of_one with;
    const lines header = join(slice_begins(I), frame_num, pic_order_cnt, sliding_window, qp);
    const nal_unit a = expect_told(slice_of(1, 2, join(header, lines{{"slice_id", ue, 40}})), with.context);
    EXPECT_EQ(rbsp_of<slice_data_partition_a_layer_rbsp>(a).slice_id, 40U);
    const lines plain = {{"slice_id", ue, 41}};
    expect_told(slice_of(1, 3, plain), with.context);
    expect_told(slice_of(1, 4, plain), with.context);
    with.base().separate_colour_plane_flag = true;
    with.pps.redundant_pic_cnt_present_flag = true;
    const lines whole = {{"slice_id", ue, 41}, {"colour_plane_id", u(2), 1}, {"redundant_pic_cnt", ue, 3}};
    const nal_unit b_unit = expect_told(slice_of(1, 3, whole), with.context);
    EXPECT_EQ(rbsp_of<slice_data_partition_b_layer_rbsp>(b_unit).colour_plane_id, 1);
    EXPECT_EQ(rbsp_of<slice_data_partition_b_layer_rbsp>(b_unit).redundant_pic_cnt, 3U);
    const nal_unit c_unit = expect_told(slice_of(1, 4, whole), with.context);
    EXPECT_EQ(rbsp_of<slice_data_partition_c_layer_rbsp>(c_unit).slice_id, 41U);

    slice_sets_of_one alone;
    expect_told(slice_of(1, 19, header), alone.context);
    alone.context.primary_idr = true;
    expect_told(
        slice_of(1, 19, join(slice_begins(I), frame_num, lines{{"idr_pic_id", ue, 4}}, pic_order_cnt, idr_marking, qp)),
        alone.context);
}

/// nal_unit_header_svc_extension(), clause G.7.3.1.1.
struct svc {
    bool idr_flag = false;
    bool no_inter_layer_pred_flag = true;
    unsigned quality_id = 0;
    bool use_ref_base_pic_flag = false;

    lines of(unsigned nal_ref_idc, unsigned type) const
    {
        return join(nal_header(nal_ref_idc, type), lines{{"svc_extension_flag", u(1), 1},
                                                         {"idr_flag", u(1), idr_flag},
                                                         {"priority_id", u(6), 42},
                                                         {"no_inter_layer_pred_flag", u(1), no_inter_layer_pred_flag},
                                                         {"dependency_id", u(3), 5},
                                                         {"quality_id", u(4), quality_id},
                                                         {"temporal_id", u(3), 6},
                                                         {"use_ref_base_pic_flag", u(1), use_ref_base_pic_flag},
                                                         {"discardable_flag", u(1), 1},
                                                         {"output_flag", u(1), 0},
                                                         {"reserved_three_2bits", u(2), 3}});
    }
};

/// nal_unit_header_mvc_extension(), clause H.7.3.1.1.
lines mvc(unsigned nal_ref_idc, unsigned type, bool non_idr_flag)
{
    return join(nal_header(nal_ref_idc, type),
                lines{{type == 21 ? "avc_3d_extension_flag" : "svc_extension_flag", u(1), 0},
                      {"non_idr_flag", u(1), non_idr_flag},
                      {"priority_id", u(6), 33},
                      {"view_id", u(10), 777},
                      {"temporal_id", u(3), 5},
                      {"anchor_pic_flag", u(1), 1},
                      {"inter_view_flag", u(1), 0},
                      {"reserved_one_bit", u(1), 1}});
}

/// nal_unit_header_3davc_extension(), clause J.7.3.1.1.
lines avc_3d(unsigned nal_ref_idc, bool depth_flag, bool non_idr_flag)
{
    return join(nal_header(nal_ref_idc, 21), lines{{"avc_3d_extension_flag", u(1), 1},
                                                   {"view_idx", u(8), 201},
                                                   {"depth_flag", u(1), depth_flag},
                                                   {"non_idr_flag", u(1), non_idr_flag},
                                                   {"temporal_id", u(3), 5},
                                                   {"anchor_pic_flag", u(1), 0},
                                                   {"inter_view_flag", u(1), 1}});
}

const lines base_marking = {{"adaptive_ref_base_pic_marking_mode_flag", u(1), 1},
                            {"memory_management_base_control_operation", ue, 1},
                            {"difference_of_base_pic_nums_minus1", ue, 12},
                            {"memory_management_base_control_operation", ue, 2},
                            {"long_term_base_pic_num", ue, 13},
                            {"memory_management_base_control_operation", ue, 0}};

TEST(LiteralPrefix, OfReferencePicturesHasTheirMarking)
{
    const svc plain;
    const lines store = {{"store_ref_base_pic_flag", u(1), 1}};
    const lines no_store = {{"store_ref_base_pic_flag", u(1), 0}};
    const lines end = {{"additional_prefix_nal_unit_extension_flag", u(1), 0}};
    const nal_unit unit = expect_told(with_trailing_bits(join(plain.of(2, 14), store, base_marking, end)));
    EXPECT_EQ(unit.header.nal_unit_header_svc_extension.priority_id, 42);
    EXPECT_EQ(unit.header.nal_unit_header_svc_extension.dependency_id, 5);
    EXPECT_EQ(unit.header.nal_unit_header_svc_extension.temporal_id, 6);
    EXPECT_TRUE(unit.header.nal_unit_header_svc_extension.discardable_flag);
    expect_told(with_trailing_bits(join(plain.of(2, 14), no_store, end)));
    svc x;
    x.use_ref_base_pic_flag = true;
    expect_told(with_trailing_bits(
        join(x.of(2, 14), no_store, lines{{"adaptive_ref_base_pic_marking_mode_flag", u(1), 0}}, end)));
    x.idr_flag = true;
    expect_told(with_trailing_bits(join(x.of(2, 14), store, end)));
    expect_told(with_trailing_bits(join(plain.of(2, 14), no_store,
                                        lines{{"additional_prefix_nal_unit_extension_flag", u(1), 1},
                                              {"additional_prefix_nal_unit_extension_data_flag", u(1), 1}})));
}

TEST(LiteralPrefix, OfOthersMayHaveFlagsAndOfMultiviewHasNothing)
{
    const svc plain;
    expect_told(plain.of(0, 14));
    expect_told(
        with_trailing_bits(join(plain.of(0, 14), lines{{"additional_prefix_nal_unit_extension_data_flag", u(1), 0},
                                                       {"additional_prefix_nal_unit_extension_data_flag", u(1), 1}})));
    const nal_unit unit = expect_told(mvc(2, 14, true));
    EXPECT_EQ(unit.header.nal_unit_header_mvc_extension.view_id, 777);
    EXPECT_EQ(unit.header.nal_unit_header_mvc_extension.temporal_id, 5);
    EXPECT_TRUE(unit.header.nal_unit_header_mvc_extension.anchor_pic_flag);
    EXPECT_FALSE(unit.header.nal_unit_header_mvc_extension.inter_view_flag);
}

const lines store_base = {{"store_ref_base_pic_flag", u(1), 1}};
const lines no_store_base = {{"store_ref_base_pic_flag", u(1), 0}};
const lines scan = {{"scan_idx_start", u(4), 3}, {"scan_idx_end", u(4), 15}};

/// Scalable slices, of an SPS whose slice_header_restriction_flag is 0.
struct scalable_sets : slice_sets_of_one {
    scalable_sets() { layer().profile_idc = 86; }
    seq_parameter_set_svc_extension& svc_sps() { return subset.seq_parameter_set_svc_extension; }
};

TEST(LiteralScalableSlice, WithoutInterLayerPredictionIsTold)
{
    scalable_sets with;
    const svc plain;
    expect_told(join(plain.of(0, 20), slice_begins(I), frame_num, pic_order_cnt, qp, scan), with.context);
    expect_told(join(plain.of(1, 20), slice_begins(I), frame_num, pic_order_cnt, sliding_window, store_base,
                     base_marking, qp, scan),
                with.context);
    with.svc_sps().slice_header_restriction_flag = true;
    expect_told(join(plain.of(1, 20), slice_begins(I), frame_num, pic_order_cnt, sliding_window, qp), with.context);
    svc x;
    x.use_ref_base_pic_flag = true;
    expect_told(join(x.of(1, 20), slice_begins(I), frame_num, pic_order_cnt, sliding_window, qp), with.context);
    with.svc_sps().slice_header_restriction_flag = false;
    expect_told(join(x.of(1, 20), slice_begins(I), frame_num, pic_order_cnt, sliding_window, no_store_base,
                     lines{{"adaptive_ref_base_pic_marking_mode_flag", u(1), 0}}, qp, scan),
                with.context);
    with.svc_sps().slice_header_restriction_flag = true;
    svc quality;
    quality.quality_id = 4;
    expect_told(join(quality.of(1, 20), slice_begins(P), frame_num, pic_order_cnt, qp), with.context);
    svc idr;
    idr.idr_flag = true;
    with.svc_sps().slice_header_restriction_flag = false;
    expect_told(join(idr.of(1, 20), slice_begins(I), frame_num, lines{{"idr_pic_id", ue, 3}}, pic_order_cnt,
                     idr_marking, store_base, qp, scan),
                with.context);
}

const lines layer_deblocking = {{"disable_inter_layer_deblocking_filter_idc", ue, 6},
                                {"inter_layer_slice_alpha_c0_offset_div2", se, 1},
                                {"inter_layer_slice_beta_offset_div2", se, -2}};
const lines ref_layer_offsets = {
    {"ref_layer_chroma_phase_x_plus1_flag", u(1), 0}, {"ref_layer_chroma_phase_y_plus1", u(2), 2},
    {"scaled_ref_layer_left_offset", se, 5},          {"scaled_ref_layer_top_offset", se, -6},
    {"scaled_ref_layer_right_offset", se, 7},         {"scaled_ref_layer_bottom_offset", se, -8}};

TEST(LiteralScalableSlice, WithInterLayerPredictionAndEveryConditionOnIsTold)
{
    scalable_sets with;
    with.pps.entropy_coding_mode_flag = true;
    with.pps.deblocking_filter_control_present_flag = true;
    with.pps.redundant_pic_cnt_present_flag = true;
    with.pps.weighted_bipred_idc = 1;
    with.pps.num_slice_groups_minus1 = 1;
    with.pps.slice_group_map_type = 3;
    with.pps.slice_group_change_rate_minus1 = 9;
    with.layer().frame_mbs_only_flag = false;
    with.svc_sps().inter_layer_deblocking_filter_control_present_flag = true;
    with.svc_sps().extended_spatial_scalability_idc = 2;
    with.svc_sps().seq_tcoeff_level_prediction_flag = true;
    with.svc_sps().adaptive_tcoeff_level_prediction_flag = true;
    svc x;
    x.no_inter_layer_pred_flag = false;
    const lines before_weights = join(x.of(3, 20), slice_begins(B), frame_num,
                                      lines{{"field_pic_flag", u(1), 1},
                                            {"bottom_field_flag", u(1), 0},
                                            {"pic_order_cnt_lsb", u_v(6), 7},
                                            {"redundant_pic_cnt", ue, 1},
                                            {"direct_spatial_mv_pred_flag", u(1), 1}},
                                      two_references(true), unmodified_l0, unmodified_l1);
    const lines cabac_to_groups =
        join(lines{{"cabac_init_idc", ue, 1}}, qp,
             lines{{"disable_deblocking_filter_idc", ue, 0},
                   {"slice_alpha_c0_offset_div2", se, 2},
                   {"slice_beta_offset_div2", se, 3},
                   {"slice_group_change_cycle", u_v(4), 10}}); // map units are those of the frame
    const lines layer = join(lines{{"ref_layer_dq_id", ue, 79}}, layer_deblocking,
                             lines{{"constrained_intra_resampling_flag", u(1), 1}}, ref_layer_offsets);
    const lines denominators = {{"luma_log2_weight_denom", ue, 7}, {"chroma_log2_weight_denom", ue, 5}};
    const lines weights = join(lines{{"base_pred_weight_table_flag", u(1), 0}}, denominators, weights_of("l0", true),
                               weights_of("l1", true));
    const lines modes = {{"slice_skip_flag", u(1), 0},
                         {"adaptive_base_mode_flag", u(1), 0},
                         {"default_base_mode_flag", u(1), 0},
                         {"adaptive_motion_prediction_flag", u(1), 0},
                         {"default_motion_prediction_flag", u(1), 1},
                         {"adaptive_residual_prediction_flag", u(1), 0},
                         {"default_residual_prediction_flag", u(1), 1}};
    const lines tcoeff = {{"tcoeff_level_prediction_flag", u(1), 1}};
    const nal_unit unit = expect_told(aligned(join(before_weights, weights, sliding_window, store_base, base_marking,
                                                   cabac_to_groups, layer, modes, tcoeff, scan)),
                                      with.context, slice_data);
    const auto& header = std::get<slice_header_in_scalable_extension>(rbsp_of<slice_layer_extension_rbsp>(unit).header);
    EXPECT_EQ(header.ref_layer_dq_id, 79U);
    EXPECT_EQ(header.inter_layer_slice_alpha_c0_offset_div2, 1);
    EXPECT_EQ(header.inter_layer_slice_beta_offset_div2, -2);
    EXPECT_EQ(header.scaled_ref_layer_left_offset, 5);
    EXPECT_EQ(header.scaled_ref_layer_bottom_offset, -8);
    EXPECT_EQ(header.scan_idx_start, 3);
    EXPECT_EQ(header.scan_idx_end, 15);

    const lines adaptive_modes = {{"slice_skip_flag", u(1), 0},
                                  {"adaptive_base_mode_flag", u(1), 1},
                                  {"adaptive_motion_prediction_flag", u(1), 1},
                                  {"adaptive_residual_prediction_flag", u(1), 1}};
    const lines base_weights = {{"base_pred_weight_table_flag", u(1), 1}};
    expect_told(aligned(join(before_weights, base_weights, sliding_window, no_store_base, cabac_to_groups, layer,
                             adaptive_modes, tcoeff, scan)),
                with.context, slice_data);
    const lines based_modes = {{"slice_skip_flag", u(1), 0},
                               {"adaptive_base_mode_flag", u(1), 0},
                               {"default_base_mode_flag", u(1), 1},
                               {"adaptive_residual_prediction_flag", u(1), 1}};
    expect_told(aligned(join(before_weights, base_weights, sliding_window, no_store_base, cabac_to_groups, layer,
                             based_modes, tcoeff, scan)),
                with.context, slice_data);
    const lines skipped = {{"slice_skip_flag", u(1), 1}, {"num_mbs_in_slice_minus1", ue, 24}};
    expect_told(
        join(before_weights, base_weights, sliding_window, no_store_base, cabac_to_groups, layer, skipped, tcoeff),
        with.context);
}

TEST(LiteralScalableSlice, OfIntraAndOfLumaAloneWithInterLayerPredictionIsTold)
{
    scalable_sets with;
    with.svc_sps().extended_spatial_scalability_idc = 2;
    with.svc_sps().inter_layer_deblocking_filter_control_present_flag = true;
    with.layer().chroma_format_idc = 0;
    svc x;
    x.no_inter_layer_pred_flag = false;
    const lines offsets(ref_layer_offsets.begin() + 2, ref_layer_offsets.end());
    expect_told(join(x.of(0, 20), slice_begins(I), frame_num, pic_order_cnt, qp,
                     lines{{"ref_layer_dq_id", ue, 0},
                           {"disable_inter_layer_deblocking_filter_idc", ue, 1},
                           {"constrained_intra_resampling_flag", u(1), 0}},
                     offsets,
                     lines{{"slice_skip_flag", u(1), 0},
                           {"adaptive_base_mode_flag", u(1), 0},
                           {"default_base_mode_flag", u(1), 0},
                           {"adaptive_motion_prediction_flag", u(1), 1},
                           {"adaptive_residual_prediction_flag", u(1), 0},
                           {"default_residual_prediction_flag", u(1), 0}},
                     scan),
                with.context);
}

// G.7.4.3.4
TEST(LiteralScalableSlice, OfAQualityLayerStandsOnTheOneBelow)
{
    scalable_sets with;
    with.svc_sps().extended_spatial_scalability_idc = 2;
    svc x;
    x.no_inter_layer_pred_flag = false;
    x.quality_id = 4;
    const lines modes = {{"slice_skip_flag", u(1), 0},
                         {"adaptive_base_mode_flag", u(1), 1},
                         {"adaptive_motion_prediction_flag", u(1), 1},
                         {"adaptive_residual_prediction_flag", u(1), 1}};
    const nal_unit unit =
        expect_told(join(x.of(0, 20), slice_begins(I), frame_num, pic_order_cnt, qp, modes, scan), with.context);
    const auto& header = std::get<slice_header_in_scalable_extension>(rbsp_of<slice_layer_extension_rbsp>(unit).header);
    EXPECT_EQ(header.ref_layer_dq_id, 5 * 16 + 4 - 1U);
}

TEST(LiteralMvcSlice, HasListsOfViewsAndItsOwnIdr)
{
    slice_sets_of_one with;
    with.layer().log2_max_frame_num_minus4 = 1;
    const lines head = join(slice_begins(P), lines{{"frame_num", u_v(5), 30}}, pic_order_cnt, counts_of_pps);
    const lines modified = {{"ref_pic_list_modification_flag_l0", u(1), 1},
                            {"modification_of_pic_nums_idc", ue, 4},
                            {"abs_diff_view_idx_minus1", ue, 2},
                            {"modification_of_pic_nums_idc", ue, 5},
                            {"abs_diff_view_idx_minus1", ue, 1},
                            {"modification_of_pic_nums_idc", ue, 0},
                            {"abs_diff_pic_num_minus1", ue, 6},
                            {"modification_of_pic_nums_idc", ue, 2},
                            {"long_term_pic_num", ue, 7},
                            {"modification_of_pic_nums_idc", ue, 3}};
    for (const unsigned type : {20U, 21U})
        expect_told(join(mvc(0, type, true), head, modified, qp), with.context);
    expect_told(join(mvc(1, 20, false), slice_begins(I), lines{{"frame_num", u_v(5), 0}, {"idr_pic_id", ue, 9}},
                     pic_order_cnt, idr_marking, qp),
                with.context);
    expect_told(
        join(mvc(1, 20, true), slice_begins(I), lines{{"frame_num", u_v(5), 1}}, pic_order_cnt, sliding_window, qp),
        with.context);
}

/// 3D-AVC slices of an SPS with two depth views.
struct avc_3d_sets : slice_sets_of_one {
    avc_3d_sets()
    {
        layer().profile_idc = 139;
        extension().slice_header_prediction_flag = true;
        extension().seq_view_synthesis_flag = true;
    }
    seq_parameter_set_3davc_extension& extension() { return subset.seq_parameter_set_3davc_extension; }
};

TEST(Literal3davcSlice, WithItsHeaderPredictedIsTold)
{
    avc_3d_sets with;
    with.pps.weighted_pred_flag = true;
    const lines source = {{"pre_slice_header_src", u(2), 2}};
    const lines denominators = {{"luma_log2_weight_denom", ue, 7}, {"chroma_log2_weight_denom", ue, 5}};
    const lines own_lists = join(lines{{"pre_ref_lists_src", u(2), 0}}, two_references(false), unmodified_l0);
    const nal_unit unit = expect_told(
        join(avc_3d(1, true, true), slice_begins(P), source, own_lists, lines{{"pre_pred_weight_table_src", u(2), 0}},
             denominators, weights_of("l0", true), lines{{"pre_dec_ref_pic_marking_src", u(2), 0}}, sliding_window, qp),
        with.context);
    EXPECT_EQ(unit.header.nal_unit_header_3davc_extension.view_idx, 201);
    EXPECT_TRUE(unit.header.nal_unit_header_3davc_extension.depth_flag);
    EXPECT_EQ(unit.header.nal_unit_header_3davc_extension.temporal_id, 5);
    EXPECT_TRUE(unit.header.nal_unit_header_3davc_extension.inter_view_flag);
    const lines all_taken = {{"pre_ref_lists_src", u(2), 1},
                             {"pre_pred_weight_table_src", u(2), 3},
                             {"pre_dec_ref_pic_marking_src", u(2), 2}};
    expect_told(join(avc_3d(1, false, true), slice_begins(P), source, all_taken, qp), with.context);
    expect_told(join(avc_3d(0, false, true), slice_begins(I), source, qp), with.context);
}

TEST(Literal3davcSlice, WithItsOwnHeaderIsTold)
{
    avc_3d_sets with;
    const lines own = {{"pre_slice_header_src", u(2), 0}};
    const lines begins = join(slice_begins(P), own, frame_num, pic_order_cnt, counts_of_pps, unmodified_l0);
    expect_told(
        join(avc_3d(0, true, true), begins, qp, lines{{"depth_weighted_pred_flag", u(1), 1}, {"dps_id", ue, 63}}),
        with.context);
    expect_told(join(avc_3d(0, true, true), begins, qp, lines{{"depth_weighted_pred_flag", u(1), 0}}), with.context);
    expect_told(join(avc_3d(0, false, true), begins, qp,
                     lines{{"dmvp_flag", u(1), 1}, {"slice_vsp_flag", u(1), 0}, {"dps_id", ue, 1}}),
                with.context);
    with.extension().three_dv_acquisition_idc = 1;
    with.extension().seq_view_synthesis_flag = false;
    with.extension().slice_header_prediction_flag = false;
    expect_told(join(avc_3d(1, false, false), slice_begins(B), frame_num, lines{{"idr_pic_id", ue, 2}}, pic_order_cnt,
                     lines{{"direct_spatial_mv_pred_flag", u(1), 0}}, counts_of_pps, unmodified_l0, unmodified_l1,
                     idr_marking, qp, lines{{"dmvp_flag", u(1), 1}}),
                with.context);
    expect_told(join(avc_3d(0, false, true), slice_begins(I), frame_num, pic_order_cnt, qp), with.context);
}

} // namespace
