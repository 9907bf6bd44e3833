// Valid parameter sets, damaged in every small way, against the literal parses.
#include "support/literal_parse.h"
#include "support/pps_builder.h"
#include "support/sps_builder.h"
#include "support/sweep.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using support::object_of;
using support::parse_random_bytes;
using support::sweep;

void sweep_sps(const support::sps_description& sps)
{
    const support::sps_parses parses;
    sweep<support::sps_parses>(parses, support::written_rbsp(sps), object_of(parses, support::full_sps())).everything();
}

/// A PPS whose SPS has the chroma format.
void sweep_pps(const support::pps_description& pps, std::int64_t chroma_format_idc = 1)
{
    const support::pps_parses parses{{{0, {true, chroma_format_idc}}, {1, {false, 3}}, {3, {true, 3}}}};
    support::pps_description earlier = support::full_pps(static_cast<std::uint32_t>(chroma_format_idc));
    earlier.num_slice_groups_minus1 = 1;
    earlier.slice_group_map_type = 6;
    earlier.slice_group_id = {1, 0, 1, 2, 3, 1, 2, 0, 1};
    sweep<support::pps_parses>(parses, support::written_rbsp(pps), object_of(parses, earlier)).everything();
}

void sweep_vui(const support::vui_description& vui)
{
    const support::vui_parses parses;
    sweep<support::vui_parses>(parses, support::written(vui), object_of(parses, support::full_vui())).everything();
}

void sweep_hrd(const support::hrd_description& hrd)
{
    const support::hrd_parses parses;
    sweep<support::hrd_parses>(parses, support::written(hrd), object_of(parses, support::hrd_of(5))).everything();
}

void sweep_list(unsigned int size, const support::scaling_list_description& list)
{
    const support::scaling_list_parses parses{size};
    sweep<support::scaling_list_parses>(parses, support::written(list), object_of(parses, support::rising_list(64, 20)))
        .everything();
}

} // namespace

TEST(ParameterSetSweep, ScalingLists)
{
    sweep_list(16, support::rising_list(16, 3));
    sweep_list(16, {{-8}});
    sweep_list(16, {{1, 2, 3, -14}});
    sweep_list(64, support::rising_list(64, 180));
    sweep_list(1, {{5}});
}

TEST(ParameterSetSweep, HrdParameters)
{
    sweep_hrd({});
    sweep_hrd(support::hrd_of(2));
    sweep_hrd(support::hrd_of(32));
}

TEST(ParameterSetSweep, VuiParametersWithEveryGroupAndNone)
{
    sweep_vui({});
    sweep_vui(support::full_vui());
}

TEST(ParameterSetSweep, VuiParametersWithOneGroupEach)
{
    support::vui_description vui = support::full_vui();
    vui.aspect_ratio_info_present_flag = vui.overscan_info_present_flag = vui.video_signal_type_present_flag = false;
    vui.nal_hrd.reset();
    sweep_vui(vui);
    vui = support::full_vui();
    vui.aspect_ratio_idc = 14;
    vui.colour_description_present_flag = vui.chroma_loc_info_present_flag = vui.timing_info_present_flag = false;
    vui.vcl_hrd.reset();
    vui.bitstream_restriction_flag = false;
    sweep_vui(vui);
}

TEST(ParameterSetSweep, SpsOfBaseline)
{
    sweep_sps({});
}

TEST(ParameterSetSweep, SpsOfMainWithFieldsAndCropping)
{
    support::sps_description sps;
    sps.profile_idc = 77;
    sps.pic_order_cnt_type = 2;
    sps.frame_mbs_only_flag = false;
    sps.frame_cropping_flag = true;
    sps.frame_crop_bottom_offset = 4;
    sps.vui = support::vui_description();
    sweep_sps(sps);
}

TEST(ParameterSetSweep, SpsWithPicOrderCntTypeOne)
{
    support::sps_description sps;
    sps.pic_order_cnt_type = 1;
    sps.offset_for_ref_frame = {-1, 2, 300};
    sweep_sps(sps);
}

TEST(ParameterSetSweep, SpsOfHighWithSomeScalingLists)
{
    support::sps_description sps = support::high_sps();
    sps.scaling_lists.emplace();
    (*sps.scaling_lists)[0] = support::rising_list(16, 6);
    (*sps.scaling_lists)[4] = support::scaling_list_description{{-8}};
    (*sps.scaling_lists)[7] = support::scaling_list_description{{4, 4, -16}};
    sweep_sps(sps);
}

TEST(ParameterSetSweep, SpsWithEveryElement)
{
    sweep_sps(support::full_sps());
}

TEST(ParameterSetSweep, PpsWithoutSliceGroups)
{
    sweep_pps({});
    support::pps_description pps;
    pps.tail = true;
    sweep_pps(pps);
}

TEST(ParameterSetSweep, PpsOfEverySliceGroupMapType)
{
    for (std::uint32_t map_type = 0; map_type <= 7; ++map_type) {
        SCOPED_TRACE(map_type);
        sweep_pps(support::pps_of_map_type(map_type));
    }
}

TEST(ParameterSetSweep, PpsWithEveryScalingList)
{
    sweep_pps(support::full_pps(1));
    sweep_pps(support::full_pps(3), 3);
}

TEST(ParameterSetSweep, PpsWithSixScalingLists)
{
    support::pps_description pps = support::full_pps(3);
    pps.transform_8x8_mode_flag = false;
    pps.scaling_list_count = 6;
    sweep_pps(pps, 3);
}

TEST(ParameterSetSweep, RandomBytes)
{
    for (const unsigned int size : {0U, 1U, 16U, 64U, 128U, 129U, 0xFFFFFFFFU})
        parse_random_bytes(support::scaling_list_parses{size});
    parse_random_bytes(support::hrd_parses());
    parse_random_bytes(support::vui_parses());
    parse_random_bytes(support::sps_parses());
    parse_random_bytes(support::sps_parses(), {66, 77, 100, 110, 122, 244, 44, 128});
    parse_random_bytes(
        support::pps_parses{{{0, {true, 1}}, {1, {true, 3}}, {2, {true, 0}}, {3, {false, 1}}, {4, {true, 9}}}});
}
