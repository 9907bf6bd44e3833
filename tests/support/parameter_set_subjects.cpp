// The parameter sets of the newer interface and their parts, in all their forms.
#include "support/subject_of.h"

#include "support/pps_builder.h"

#include <cstdint>

namespace support {

namespace {

template <typename Description>
using named = std::vector<std::pair<const char*, Description>>;

} // namespace

/// Sizes that an array cannot have among them: these read nothing.
std::vector<subject> scaling_list_subjects()
{
    const auto filled = left_by(scaling_list_parses{64}, written(rising_list(64, 20)));
    std::vector<subject> all;
    const auto add = [&](unsigned int size, const scaling_list_description& list) {
        all.push_back(subject_of("of " + std::to_string(size), scaling_list_parses{size}, written(list), filled));
    };
    add(16, rising_list(16, 3));
    add(64, rising_list(64, 180));
    add(16, {{-8}});
    add(16, {{1, 2, 3, -14}});
    add(1, {{5}});
    for (const unsigned int size : {0U, 128U, 129U, 0xFFFFFFFFU}) {
        add(size, rising_list(16, 3));
        all.back().end.reset();
    }
    return all;
}

std::vector<subject> hrd_subjects()
{
    const auto filled = left_by(hrd_parses(), written(hrd_of(5)));
    std::vector<subject> all = {subject_of("default", hrd_parses(), written(hrd_description()), filled)};
    for (const std::uint32_t count : {1U, 2U, 32U})
        all.push_back(subject_of("of " + std::to_string(count), hrd_parses(), written(hrd_of(count)), filled));
    return all;
}

std::vector<subject> vui_subjects()
{
    vui_description no_aspect_ratio = full_vui();
    no_aspect_ratio.aspect_ratio_info_present_flag = no_aspect_ratio.overscan_info_present_flag = false;
    no_aspect_ratio.video_signal_type_present_flag = false;
    no_aspect_ratio.nal_hrd.reset();
    vui_description no_timing = full_vui();
    no_timing.aspect_ratio_idc = 14;
    no_timing.colour_description_present_flag = no_timing.chroma_loc_info_present_flag = false;
    no_timing.timing_info_present_flag = no_timing.bitstream_restriction_flag = false;
    no_timing.vcl_hrd.reset();
    const auto filled = left_by(vui_parses(), written(full_vui()));
    return {subject_of("nothing", vui_parses(), written(vui_description()), filled),
            subject_of("every group", vui_parses(), written(full_vui()), filled),
            subject_of("no aspect ratio", vui_parses(), written(no_aspect_ratio), filled),
            subject_of("no timing", vui_parses(), written(no_timing), filled)};
}

std::vector<subject> sps_subjects()
{
    sps_description fields;
    fields.profile_idc = 77;
    fields.pic_order_cnt_type = 2;
    fields.frame_mbs_only_flag = false;
    fields.frame_cropping_flag = true;
    fields.frame_crop_bottom_offset = 4;
    fields.vui = vui_description();
    sps_description cycle;
    cycle.pic_order_cnt_type = 1;
    cycle.offset_for_ref_frame = {-1, 2, 300};
    sps_description some_lists = high_sps();
    some_lists.scaling_lists.emplace();
    (*some_lists.scaling_lists)[0] = rising_list(16, 6);
    (*some_lists.scaling_lists)[4] = scaling_list_description{{-8}};
    (*some_lists.scaling_lists)[7] = scaling_list_description{{4, 4, -16}};
    const auto filled = left_by(sps_parses(), written_rbsp(full_sps()));
    std::vector<subject> all;
    for (const auto& [name, seq] : named<sps_description>{{"baseline", {}},
                                                          {"fields and cropping", fields},
                                                          {"cycle", cycle},
                                                          {"some lists", some_lists},
                                                          {"everything", full_sps()}}) {
        all.push_back(subject_of(name, sps_parses(), written_rbsp(seq), filled));
        all.back().first_bytes = {66, 77, 100, 110, 122, 244, 44, 128};
    }
    return all;
}

std::vector<subject> pps_subjects()
{
    const pps_parses parses{{{0, {true, 1}}, {1, {false, 3}}, {2, {true, 0}}, {3, {true, 3}}, {4, {true, 9}}}};
    pps_description earlier = full_pps(3);
    earlier.seq_parameter_set_id = 3;
    pps_description six_lists = earlier;
    six_lists.transform_8x8_mode_flag = false;
    six_lists.scaling_list_count = 6;
    const pps_description twelve_lists = earlier;
    pps_description tail;
    tail.tail = true;
    earlier.num_slice_groups_minus1 = 1;
    earlier.slice_group_map_type = 6;
    earlier.slice_group_id = {1, 0, 1, 2, 3, 1, 2, 0, 1};
    const auto filled = left_by(parses, written_rbsp(earlier));
    std::vector<subject> all;
    for (const auto& [name, pic] : named<pps_description>{{"default", {}},
                                                          {"tail", tail},
                                                          {"6 lists", six_lists},
                                                          {"8 lists", full_pps(1)},
                                                          {"12 lists", twelve_lists}})
        all.push_back(subject_of(name, parses, written_rbsp(pic), filled));
    for (std::uint32_t map_type = 0; map_type <= 7; ++map_type)
        all.push_back(subject_of("map type " + std::to_string(map_type), parses,
                                 written_rbsp(pps_of_map_type(map_type)), filled));
    return all;
}

} // namespace support
