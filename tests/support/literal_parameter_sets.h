// The parameter sets once more, as tables of rows over a reader of single bits and values by name. It shares no code
// with the libraries; the tests and the fuzz entry points hold the real parses against it.
#pragma once

#include "support/literal_bits.h"
#include "support/named_values.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace literal {

/// What a code of 32 zero bits throws; where it begins.
struct malformed_code {
    std::size_t bit_position;
};

/// A structure that is being read: its values, the bits, and the prefix of its names.
struct structure {
    support::named_values& all;
    bit_reader& bits;
    std::string prefix = {};

    std::int64_t& number(std::string_view name) const { return all.at({prefix, name}).number; }
    std::vector<std::int64_t>& array(std::string_view name) const { return all.at({prefix, name}).entries; }
    structure nested(std::string_view name) const { return {all, bits, std::string(prefix).append(name) + '.'}; }

    std::uint32_t ue() const
    {
        const std::size_t start = bits.position;
        const auto code = bits.ue();
        if (!code)
            throw malformed_code{start};
        return *code;
    }

    std::int32_t se() const
    {
        const std::size_t start = bits.position;
        const auto code = bits.se();
        if (!code)
            throw malformed_code{start};
        return *code;
    }
};

/// The descriptors of H.264 7.2: ue(v), se(v), and any other number for u(n).
constexpr unsigned int ue = 1000;
constexpr unsigned int se = 1001;

/// A row of a syntax table. With `flag` it is read only when that element is 1.
struct row {
    const char* name;
    unsigned int descriptor;
    const char* flag = nullptr;
};

inline void read(const structure& s, const std::vector<row>& table)
{
    for (const row& r : table)
        if (r.flag == nullptr || s.number(r.flag) == 1)
            s.number(r.name) = r.descriptor == ue   ? std::int64_t{s.ue()}
                               : r.descriptor == se ? std::int64_t{s.se()}
                                                    : std::int64_t{s.bits.get(r.descriptor)};
}

constexpr std::int64_t most_entries = 128;

/// How many allocations succeed, of those that arrays ask for. A test whose allocations fail sets it.
inline std::size_t allocations_left = SIZE_MAX;

/// What gets out where one does not.
struct out_of_memory {};

/// The entries that an array of so many has room for, when it began with them: flags come in words.
inline std::size_t room(std::string_view name, std::size_t size)
{
    return name == "cbr_flag" ? (size + 63) / 64 * 64 : size;
}

/// Gives the arrays `count` entries; false when that is too many, or there is no memory for one.
inline bool size_arrays(const structure& s, std::int64_t count, std::initializer_list<std::string_view> names)
{
    if (count > most_entries)
        return false;
    for (const std::string_view name : names) {
        std::vector<std::int64_t>& array = s.array(name);
        if (room(name, array.size()) < static_cast<std::size_t>(count) && allocations_left-- == 0)
            return false;
        array.resize(static_cast<std::size_t>(count));
    }
    return true;
}

/// The same for an array of records, each member of which is an array here.
inline bool size_records(const structure& s, std::int64_t count, const std::vector<std::string_view>& members)
{
    if (!size_arrays(s, count, {members.front()}))
        return false;
    for (const std::string_view member : members)
        s.array(member).resize(static_cast<std::size_t>(count));
    return true;
}

// H.264 7.3.2.1.1.1
inline bool scaling_list(const structure& s, std::int64_t size)
{
    if (!size_arrays(s, size, {"values"}))
        return false;
    std::int64_t last = 8;
    bool sending = true;
    std::vector<std::int64_t>& values = s.array("values");
    for (std::size_t j = 0; j < static_cast<std::size_t>(size); ++j) {
        if (sending) {
            const std::int64_t sum = last + s.se();
            const std::int64_t next = (sum % 256 + 256) % 256;
            s.number("useDefaultScalingMatrixFlag") = j == 0 && next == 0 ? 1 : 0;
            sending = next != 0;
            last = sending ? next : last;
        }
        values[j] = last;
    }
    s.number("valid") = 1;
    return true;
}

/// `count` lists of a parameter set, each behind its flag.
inline bool scaling_lists(const structure& s, const std::string& name, int count, std::int64_t size)
{
    for (int i = 0; i < count; ++i) {
        const structure list = s.nested(name + '[' + std::to_string(i) + ']');
        list.number("present") = list.bits.get(1);
        if (list.number("present") == 1 && !scaling_list(list, size))
            return false;
    }
    return true;
}

// H.264 E.1.2
inline bool hrd_parameters(const structure& s)
{
    static const std::vector<row> head = {{"cpb_cnt_minus1", ue}, {"bit_rate_scale", 4}, {"cpb_size_scale", 4}};
    static const std::vector<row> tail = {{"initial_cpb_removal_delay_length_minus1", 5},
                                          {"cpb_removal_delay_length_minus1", 5},
                                          {"dpb_output_delay_length_minus1", 5},
                                          {"time_offset_length", 5}};
    read(s, head);
    const std::int64_t count = s.number("cpb_cnt_minus1") + 1;
    if (!size_arrays(s, count, {"bit_rate_value_minus1", "cpb_size_value_minus1", "cbr_flag"}))
        return false;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        s.array("bit_rate_value_minus1")[i] = s.ue();
        s.array("cpb_size_value_minus1")[i] = s.ue();
        s.array("cbr_flag")[i] = s.bits.get(1);
    }
    read(s, tail);
    s.number("valid") = 1;
    return true;
}

// H.264 Table E-1
inline void sample_aspect_ratio(const structure& s)
{
    static const std::map<std::int64_t, std::pair<int, int>> table_e_1 = {
        {1, {1, 1}},     {2, {12, 11}}, {3, {10, 11}}, {4, {16, 11}},  {5, {40, 33}},  {6, {24, 11}},
        {7, {20, 11}},   {8, {32, 11}}, {9, {80, 33}}, {10, {18, 11}}, {11, {15, 11}}, {12, {64, 33}},
        {13, {160, 99}}, {14, {4, 3}},  {15, {3, 2}},  {16, {2, 1}}};
    static const std::vector<row> extended = {{"sar_width", 16}, {"sar_height", 16}};
    if (s.number("aspect_ratio_idc") == 255) {
        s.number("extended_sar") = 1;
        return read(s, extended);
    }
    const auto ratio = table_e_1.find(s.number("aspect_ratio_idc"));
    s.number("sar_width") = ratio == table_e_1.end() ? 0 : ratio->second.first;
    s.number("sar_height") = ratio == table_e_1.end() ? 0 : ratio->second.second;
}

// H.264 E.1.1
inline bool vui_parameters(const structure& s)
{
    static const std::vector<row> aspect_ratio = {{"aspect_ratio_info_present_flag", 1},
                                                  {"aspect_ratio_idc", 8, "aspect_ratio_info_present_flag"}};
    static const std::vector<row> video = {{"overscan_info_present_flag", 1},
                                           {"overscan_appropriate_flag", 1, "overscan_info_present_flag"},
                                           {"video_signal_type_present_flag", 1},
                                           {"video_format", 3, "video_signal_type_present_flag"},
                                           {"video_full_range_flag", 1, "video_signal_type_present_flag"},
                                           {"colour_description_present_flag", 1, "video_signal_type_present_flag"}};
    static const std::vector<row> colour = {
        {"colour_primaries", 8}, {"transfer_characteristics", 8}, {"matrix_coefficients", 8}};
    static const std::vector<row> chroma_and_timing = {
        {"chroma_loc_info_present_flag", 1},
        {"chroma_sample_loc_type_top_field", ue, "chroma_loc_info_present_flag"},
        {"chroma_sample_loc_type_bottom_field", ue, "chroma_loc_info_present_flag"},
        {"timing_info_present_flag", 1},
        {"num_units_in_tick", 32, "timing_info_present_flag"},
        {"time_scale", 32, "timing_info_present_flag"},
        {"fixed_frame_rate_flag", 1, "timing_info_present_flag"}};
    static const std::vector<row> low_delay = {{"low_delay_hrd_flag", 1}};
    static const std::vector<row> restriction = {
        {"pic_struct_present_flag", 1},
        {"bitstream_restriction_flag", 1},
        {"motion_vectors_over_pic_boundaries_flag", 1, "bitstream_restriction_flag"},
        {"max_bytes_per_pic_denom", ue, "bitstream_restriction_flag"},
        {"max_bits_per_mb_denom", ue, "bitstream_restriction_flag"},
        {"log2_max_mv_length_horizontal", ue, "bitstream_restriction_flag"},
        {"log2_max_mv_length_vertical", ue, "bitstream_restriction_flag"},
        {"max_num_reorder_frames", ue, "bitstream_restriction_flag"},
        {"max_dec_frame_buffering", ue, "bitstream_restriction_flag"}};
    read(s, aspect_ratio);
    if (s.number("aspect_ratio_info_present_flag") == 1)
        sample_aspect_ratio(s);
    read(s, video);
    // The flag may be left from an earlier structure.
    if (s.number("video_signal_type_present_flag") == 1 && s.number("colour_description_present_flag") == 1)
        read(s, colour);
    read(s, chroma_and_timing);
    bool any_hrd = false;
    for (const std::string hrd : {"nal_hrd", "vcl_hrd"}) {
        const bool present = s.bits.get(1) == 1;
        s.number(hrd + "_parameters_present_flag") = present ? 1 : 0;
        any_hrd = any_hrd || present;
        if (present && !hrd_parameters(s.nested(hrd))) {
            s.number("valid") = 0;
            return false;
        }
    }
    if (any_hrd)
        read(s, low_delay);
    read(s, restriction);
    s.number("valid") = 1;
    return true;
}

inline bool trailing_bits(const structure& s)
{
    const bool well_formed = s.bits.skip_rbsp_trailing_bits();
    s.number("valid") = well_formed ? 1 : 0;
    return well_formed;
}

inline bool not_valid(const structure& s)
{
    s.number("valid") = 0;
    return false;
}

inline bool high_profile_group(const structure& s)
{
    static const std::vector<row> chroma = {{"chroma_format_idc", ue}};
    static const std::vector<row> plane = {{"separate_colour_plane_flag", 1}};
    static const std::vector<row> depths = {{"bit_depth_luma_minus8", ue},
                                            {"bit_depth_chroma_minus8", ue},
                                            {"qpprime_y_zero_transform_bypass_flag", 1},
                                            {"seq_scaling_matrix_present_flag", 1}};
    s.number("high_profile_syntax_present") = 1;
    read(s, chroma);
    const bool is_444 = s.number("chroma_format_idc") == 3;
    if (is_444)
        read(s, plane);
    read(s, depths);
    return s.number("seq_scaling_matrix_present_flag") == 0 ||
           (scaling_lists(s, "scaling_list_4x4", 6, 16) && scaling_lists(s, "scaling_list_8x8", is_444 ? 6 : 2, 64));
}

/// H.264 Table 6-1
inline void subsampling(const structure& s)
{
    const std::int64_t format = s.number("chroma_format_idc");
    s.number("SubWidthC") = format == 1 || format == 2 ? 2 : 1;
    s.number("SubHeightC") = format == 1 ? 2 : 1;
}

inline bool pic_order_cnt(const structure& s)
{
    static const std::vector<row> type_0 = {{"log2_max_pic_order_cnt_lsb_minus4", ue}};
    static const std::vector<row> type_1 = {{"delta_pic_order_always_zero_flag", 1},
                                            {"offset_for_non_ref_pic", se},
                                            {"offset_for_top_to_bottom_field", se},
                                            {"num_ref_frames_in_pic_order_cnt_cycle", ue}};
    if (s.number("pic_order_cnt_type") == 0)
        read(s, type_0);
    if (s.number("pic_order_cnt_type") != 1)
        return true;
    read(s, type_1);
    if (!size_arrays(s, s.number("num_ref_frames_in_pic_order_cnt_cycle"), {"offset_for_ref_frame"}))
        return false;
    for (std::int64_t& offset : s.array("offset_for_ref_frame"))
        offset = s.se();
    return true;
}

// H.264 7.3.2.1
inline bool nal_sps(const structure& s)
{
    static const std::set<std::int64_t> high_profiles = {44, 83, 86, 100, 110, 118, 122, 128, 134, 135, 138, 139, 244};
    static const std::vector<row> head = {
        {"profile_idc", 8},          {"constraint_set0_flag", 1}, {"constraint_set1_flag", 1},
        {"constraint_set2_flag", 1}, {"constraint_set3_flag", 1}, {"constraint_set4_flag", 1},
        {"constraint_set5_flag", 1}, {"reserved_zero_2bits", 2},  {"level_idc", 8},
        {"seq_parameter_set_id", ue}};
    static const std::vector<row> order = {{"log2_max_frame_num_minus4", ue}, {"pic_order_cnt_type", ue}};
    static const std::vector<row> size = {{"max_num_ref_frames", ue},
                                          {"gaps_in_frame_num_value_allowed_flag", 1},
                                          {"pic_width_in_mbs_minus1", ue},
                                          {"pic_height_in_map_units_minus1", ue},
                                          {"frame_mbs_only_flag", 1}};
    static const std::vector<row> fields = {{"mb_adaptive_frame_field_flag", 1}};
    static const std::vector<row> cropping = {{"direct_8x8_inference_flag", 1},
                                              {"frame_cropping_flag", 1},
                                              {"frame_crop_left_offset", ue, "frame_cropping_flag"},
                                              {"frame_crop_right_offset", ue, "frame_cropping_flag"},
                                              {"frame_crop_top_offset", ue, "frame_cropping_flag"},
                                              {"frame_crop_bottom_offset", ue, "frame_cropping_flag"},
                                              {"vui_parameters_present_flag", 1}};
    read(s, head);
    if (!high_profiles.contains(s.number("profile_idc")))
        s.number("chroma_format_idc") = 1;
    else if (!high_profile_group(s))
        return not_valid(s);
    subsampling(s);
    read(s, order);
    if (!pic_order_cnt(s))
        return false;
    read(s, size);
    if (s.number("frame_mbs_only_flag") == 0)
        read(s, fields);
    read(s, cropping);
    if (s.number("vui_parameters_present_flag") == 1 && !vui_parameters(s.nested("vui")))
        return not_valid(s);
    return trailing_bits(s);
}

/// What a PPS sees of the SPS store: which SPSs there are.
struct stored_sps {
    bool valid = false;
    std::int64_t chroma_format_idc = 0;
};
using sps_store = std::map<std::int64_t, stored_sps>;

inline bool slice_group_ids(const structure& s, std::int64_t slice_groups)
{
    static const std::vector<row> head = {{"pic_size_in_map_units_minus1", ue}};
    read(s, head);
    unsigned int width = 0;
    while (slice_groups >> width != 0)
        ++width;
    if (!size_arrays(s, s.number("pic_size_in_map_units_minus1") + 1, {"slice_group_id"}))
        return false;
    for (std::int64_t& id : s.array("slice_group_id"))
        id = s.bits.get(width);
    return true;
}

inline bool slice_groups(const structure& s)
{
    static const std::vector<row> head = {{"slice_group_map_type", ue}};
    static const std::vector<row> changing = {{"slice_group_change_direction_flag", 1},
                                              {"slice_group_change_rate_minus1", ue}};
    read(s, head);
    const std::int64_t type = s.number("slice_group_map_type");
    const std::int64_t groups = s.number("num_slice_groups_minus1") + 1;
    if (type == 0) {
        if (!size_arrays(s, groups, {"run_length_minus1"}))
            return false;
        for (std::int64_t& run_length : s.array("run_length_minus1"))
            run_length = s.ue();
    }
    if (type == 2) {
        if (!size_arrays(s, groups - 1, {"top_left", "bottom_right"}))
            return false;
        for (std::size_t i = 0; i < s.array("top_left").size(); ++i)
            for (const char* const corner : {"top_left", "bottom_right"})
                s.array(corner)[i] = s.ue();
    }
    if (type == 3 || type == 4 || type == 5)
        read(s, changing);
    return type != 6 || slice_group_ids(s, groups);
}

inline bool pps_tail(const structure& s, bool is_444)
{
    static const std::vector<row> flags = {{"transform_8x8_mode_flag", 1}, {"pic_scaling_matrix_present_flag", 1}};
    static const std::vector<row> offset = {{"second_chroma_qp_index_offset", se}};
    read(s, flags);
    const int lists_8x8 = s.number("transform_8x8_mode_flag") == 0 ? 0 : is_444 ? 6 : 2;
    if (s.number("pic_scaling_matrix_present_flag") == 1 &&
        !(scaling_lists(s, "pic_scaling_list_4x4", 6, 16) && scaling_lists(s, "pic_scaling_list_8x8", lists_8x8, 64)))
        return false;
    read(s, offset);
    return true;
}

// H.264 7.3.2.2
inline bool nal_pps(const structure& s, const sps_store& store)
{
    static const std::vector<row> ids = {{"pic_parameter_set_id", ue}, {"seq_parameter_set_id", ue}};
    static const std::vector<row> groups = {{"entropy_coding_mode_flag", 1},
                                            {"bottom_field_pic_order_in_frame_present_flag", 1},
                                            {"num_slice_groups_minus1", ue}};
    static const std::vector<row> rest = {{"num_ref_idx_l0_default_active_minus1", ue},
                                          {"num_ref_idx_l1_default_active_minus1", ue},
                                          {"weighted_pred_flag", 1},
                                          {"weighted_bipred_idc", 2},
                                          {"pic_init_qp_minus26", se},
                                          {"pic_init_qs_minus26", se},
                                          {"chroma_qp_index_offset", se},
                                          {"deblocking_filter_control_present_flag", 1},
                                          {"constrained_intra_pred_flag", 1},
                                          {"redundant_pic_cnt_present_flag", 1}};
    read(s, ids);
    const auto sps = store.find(s.number("seq_parameter_set_id"));
    if (sps == store.end() || !sps->second.valid)
        return not_valid(s);
    read(s, groups);
    if (s.number("num_slice_groups_minus1") > 0 && !slice_groups(s))
        return false;
    read(s, rest);
    s.number("more_rbsp_data_present") = s.bits.more_rbsp_data() ? 1 : 0;
    if (s.number("more_rbsp_data_present") == 1 && !pps_tail(s, sps->second.chroma_format_idc == 3))
        return not_valid(s);
    return trailing_bits(s);
}

} // namespace literal
