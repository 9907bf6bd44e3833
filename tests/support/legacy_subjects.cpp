// The structures of the legacy interface.
#include "support/subject_of.h"

#include "support/legacy_parse.h"
#include "support/sei_builder.h"
#include "support/slice_header_builder.h"

#include <cstdint>

namespace support {

namespace {

h264_sps slice_sps(unsigned int frame_num_width, bool fields, bool planes)
{
    h264_sps seq;
    seq.log2_max_frame_num = static_cast<std::uint8_t>(frame_num_width);
    seq.frame_mbs_only_flag = fields ? 0 : 1;
    seq.separate_colour_plane_flag = planes ? 1 : 0;
    return seq;
}

slice_header_description slice_of(const h264_sps& seq)
{
    slice_header_description slice;
    slice.first_mb_in_slice = 300;
    slice.pic_parameter_set_id = 5;
    slice.frame_num_width = seq.log2_max_frame_num;
    slice.frame_num = 1;
    if (seq.separate_colour_plane_flag == 1)
        slice.colour_plane_id = 2;
    if (seq.frame_mbs_only_flag == 0)
        slice.field_pic_flag = true;
    slice.bottom_field_flag = true;
    return slice;
}

/// pic_timing() up to pic_struct.
element_writer timing_of(unsigned int cpb_width, unsigned int dpb_width)
{
    return element_writer()
        .u("cpb_removal_delay", cpb_width, 0x5A)
        .u("dpb_output_delay", dpb_width, 0x3C)
        .u("pic_struct", 4, 7);
}

} // namespace

/// The bitstream restriction is not read.
std::vector<subject> legacy_sps_subjects()
{
    sps_description no_lists = full_legacy_sps();
    no_lists.scaling_lists.reset();
    sps_description frames = no_lists;
    frames.vui->vcl_hrd.reset();
    frames.chroma_format_idc = 1;
    frames.frame_mbs_only_flag = true;
    sps_description vui;
    vui.vui.emplace();
    sps_description cycle;
    cycle.pic_order_cnt_type = 1;
    cycle.offset_for_ref_frame = {-1, 2, 300};
    sps_description short_lists = high_sps();
    scaling_matrix& lists = short_lists.scaling_lists.emplace();
    lists[0] = lists[7] = scaling_list_description{{-8}};
    lists[2] = list_of({9, 17, 30, 0});
    lists[6] = list_of({9, 200, 3, 0});
    short_lists.vui = full_vui();
    std::vector<subject> all;
    using named = std::vector<std::pair<const char*, sps_description>>;
    for (auto [name, seq] : named{{"everything", full_legacy_sps()},
                                  {"no lists", no_lists},
                                  {"frames", frames},
                                  {"baseline", {}},
                                  {"VUI", vui},
                                  {"cycle", cycle},
                                  {"lists that end early", short_lists}}) {
        if (seq.vui)
            seq.vui->bitstream_restriction_flag = false;
        const element_writer writer = written(seq);
        all.push_back(subject_of(name, legacy_sps_parses(), writer, numbered_sps(3)));
        all.back().end = end_of(writer, seq.vui ? "vui.pic_struct_present_flag" : "vui_parameters_present_flag");
        all.back().first_bytes = {44, 66, 77, 83, 86, 88, 100, 110, 118, 122, 128, 138, 244};
    }
    return all;
}

std::vector<subject> legacy_slice_subjects()
{
    const h264_nal_slice_info filled{1, 2, 3, 4, 5, 6, 7};
    std::vector<subject> all;
    for (const unsigned int width : {9U, 0U, 1U, 4U, 16U, 24U, 25U, 255U})
        for (const bool fields : {true, false})
            for (const bool planes : {true, false}) {
                const h264_sps seq = slice_sps(width, fields, planes);
                const bool readable = width > 0 && width < 25;
                all.push_back(subject_of("frame_num of " + std::to_string(width) + " bits", legacy_slice_parses{seq},
                                         written(slice_of(readable ? seq : slice_sps(9, fields, planes))), filled));
                all.back().typical = all.size() == 1;
                if (!readable)
                    all.back().end.reset();
            }
    return all;
}

std::vector<subject> legacy_timing_subjects()
{
    std::vector<subject> all;
    const auto add = [&](unsigned int cpb, unsigned int dpb, unsigned int present) {
        h264_sps seq;
        seq.nal_hrd_parameters_present_flag = present & 1;
        seq.vcl_hrd_parameters_present_flag = present >> 1 & 1;
        seq.pic_struct_present_flag = static_cast<std::uint8_t>(present >> 2);
        seq.cpb_removal_delay_length = static_cast<std::uint8_t>(cpb);
        seq.dpb_output_delay_length = static_cast<std::uint8_t>(dpb);
        const element_writer writer = timing_of(cpb < 25 ? cpb : 24, dpb < 25 ? dpb : 24);
        all.push_back(subject_of("delays of " + std::to_string(cpb) + " and " + std::to_string(dpb) + " bits",
                                 legacy_timing_parses{seq}, writer, {9, 9, 9, 9}));
        all.back().end.reset();
        all.back().typical = all.size() == 1;
    };
    add(24, 24, 7);
    for (const unsigned int cpb : {0U, 1U, 9U, 24U})
        for (const unsigned int dpb : {0U, 1U, 17U, 24U})
            for (unsigned int present = 0; present < 8; ++present)
                add(cpb, dpb, present);
    for (const unsigned int cpb : {7U, 25U, 32U, 255U})
        for (const unsigned int dpb : {3U, 25U, 32U, 255U})
            add(cpb, dpb, 6);
    return all;
}

} // namespace support
