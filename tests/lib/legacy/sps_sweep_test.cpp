// The legacy interface's SPSs, slices and picture timings, damaged in every small way, against the literal reads.
#include "support/legacy_parse.h"
#include "support/slice_header_builder.h"
#include "support/sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

using support::element_writer;
using support::legacy_slice_parses;
using support::legacy_sps_parses;
using support::legacy_timing_parses;
using support::slice_header_description;
using support::sps_description;

/// The SPS without what the legacy interface does not read.
sps_description without_restriction(sps_description seq)
{
    if (seq.vui)
        seq.vui->bitstream_restriction_flag = false;
    return seq;
}

/// Everything but the whole, which the legacy interface leaves one bit before its end.
void sweep_sps(const sps_description& seq)
{
    support::sweep<legacy_sps_parses> sweep({}, written(without_restriction(seq)), support::numbered_sps(3));
    support::random_source random(1);
    const support::compared whole = sweep.run(written(without_restriction(seq)).made());
    EXPECT_EQ("", whole.difference);
    EXPECT_EQ(support::end_of(written(without_restriction(seq)),
                              seq.vui ? "vui.pic_struct_present_flag" : "vui_parameters_present_flag"),
              whole.end.position);
    sweep.every_bit_flipped();
    sweep.every_length();
    sweep.every_element_at_its_limits();
    sweep.random_damage(random, 300);
}

h264_sps slice_sps(unsigned int frame_num_width, bool fields, bool planes)
{
    h264_sps sps;
    sps.log2_max_frame_num = static_cast<std::uint8_t>(frame_num_width);
    sps.frame_mbs_only_flag = fields ? 0 : 1;
    sps.separate_colour_plane_flag = planes ? 1 : 0;
    return sps;
}

/// pic_timing() up to pic_struct.
struct timing_description {
    unsigned int cpb_width = 24;
    unsigned int dpb_width = 24;
};

void write(element_writer& out, const timing_description& timing)
{
    out.u("cpb_removal_delay", timing.cpb_width, 0x5A);
    out.u("dpb_output_delay", timing.dpb_width, 0x3C);
    out.u("pic_struct", 4, 7);
}

} // namespace

TEST(LegacySweep, SpsWithEveryElement)
{
    sweep_sps(support::full_legacy_sps());
}

TEST(LegacySweep, SpsWithoutScalingLists)
{
    sps_description seq = support::full_legacy_sps();
    seq.scaling_lists.reset();
    sweep_sps(seq);
    seq.vui->vcl_hrd.reset();
    seq.chroma_format_idc = 1;
    seq.frame_mbs_only_flag = true;
    sweep_sps(seq);
}

TEST(LegacySweep, BaselineSps)
{
    sweep_sps({});
    sps_description seq;
    seq.vui.emplace();
    sweep_sps(seq);
}

TEST(LegacySweep, SpsWithListsThatEndEarly)
{
    sps_description seq = support::high_sps();
    support::scaling_matrix& lists = seq.scaling_lists.emplace();
    lists[0] = support::scaling_list_description{{-8}};
    lists[2] = support::list_of({9, 17, 30, 0});
    lists[6] = support::list_of({9, 200, 3, 0});
    lists[7] = support::scaling_list_description{{-8}};
    seq.vui = support::full_vui();
    sweep_sps(seq);
}

TEST(LegacySweep, RandomBytesAsSpss)
{
    support::parse_random_bytes(legacy_sps_parses());
    support::parse_random_bytes(legacy_sps_parses(), {44, 66, 77, 83, 86, 88, 100, 110, 118, 122, 128, 138, 244});
}

TEST(LegacySweep, Slices)
{
    for (const unsigned int width : {1U, 4U, 9U, 16U, 24U})
        for (const bool fields : {false, true})
            for (const bool planes : {false, true}) {
                slice_header_description slice;
                slice.first_mb_in_slice = 300;
                slice.pic_parameter_set_id = 5;
                slice.frame_num_width = width;
                slice.frame_num = 1;
                if (planes)
                    slice.colour_plane_id = 2;
                if (fields)
                    slice.field_pic_flag = true;
                slice.bottom_field_flag = true;
                support::sweep<legacy_slice_parses>({slice_sps(width, fields, planes)}, written(slice),
                                                    h264_nal_slice_info{1, 2, 3, 4, 5, 6, 7})
                    .everything();
            }
}

TEST(LegacySweep, RandomBytesAsSlices)
{
    for (const unsigned int width : {0U, 4U, 24U, 25U, 255U})
        for (const bool planes : {false, true})
            support::parse_random_bytes(legacy_slice_parses{slice_sps(width, true, planes)});
}

TEST(LegacySweep, PictureTimings)
{
    for (const unsigned int cpb : {0U, 1U, 9U, 24U, 25U, 255U})
        for (const unsigned int dpb : {0U, 1U, 17U, 24U, 25U, 255U})
            for (unsigned int present = 0; present < 8; ++present) {
                h264_sps sps;
                sps.nal_hrd_parameters_present_flag = present & 1;
                sps.vcl_hrd_parameters_present_flag = present >> 1 & 1;
                sps.pic_struct_present_flag = static_cast<std::uint8_t>(present >> 2);
                sps.cpb_removal_delay_length = static_cast<std::uint8_t>(cpb);
                sps.dpb_output_delay_length = static_cast<std::uint8_t>(dpb);
                support::parse_random_bytes(legacy_timing_parses{sps});
                if (std::max(cpb, dpb) > 24)
                    continue;
                const element_writer writer = support::written(timing_description{cpb, dpb});
                support::sweep<legacy_timing_parses> sweep({sps}, writer, {9, 9, 9, 9});
                sweep.every_bit_flipped();
                sweep.every_length();
            }
}
