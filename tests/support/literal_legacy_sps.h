// The legacy interface's reads once more, as tables of rows over a reader of single bits and values by name. It shares
// no code with the libraries; the tests and the fuzz entry points hold the real reads against it. Bits behind the data
// are zeros without end.
#pragma once

#include "support/literal_bits.h"
#include "support/named_values.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace literal::legacy {

/// A record that is being read: its values and the bits.
struct record {
    support::named_values& all;
    legacy_bit_reader& bits;

    std::int64_t& number(std::string_view name) const { return all.at(name).number; }
};

/// The descriptors of H.264 7.2: ue(v), a pair of u(16), and any other number for u(n).
constexpr unsigned int ue = 1000;
constexpr unsigned int two_halves = 1001;

/// A row of a syntax table: what is stored is the value plus `more`, the low `kept_bits` of it. A row without a name
/// is not stored.
struct row {
    const char* name;
    unsigned int descriptor;
    std::int64_t more = 0;
    unsigned int kept_bits = 32;
};

inline std::int64_t read(const record& r, unsigned int descriptor)
{
    if (descriptor == ue)
        return r.bits.ue();
    if (descriptor != two_halves)
        return r.bits.u(descriptor);
    const std::int64_t high = r.bits.u(16);
    return high * 65536 + r.bits.u(16);
}

inline void read(const record& r, std::initializer_list<row> table)
{
    for (const row& line : table) {
        const std::int64_t value = read(r, line.descriptor) + line.more;
        if (line.name != nullptr)
            r.number(line.name) = value % (std::int64_t{1} << line.kept_bits);
    }
}

/// Reads the table when the flag, which is read first, is 1.
inline bool read_behind(const char* flag, const record& r, std::initializer_list<row> table)
{
    read(r, {{flag, 1}});
    const bool present = r.number(flag) == 1;
    if (present)
        read(r, table);
    return present;
}

// H.264 7.3.2.1.1.1
inline void scaling_list(const record& r, std::int64_t size)
{
    std::int64_t last = 8;
    std::int64_t next = r.bits.u(1) == 1 ? 8 : 0;
    for (std::int64_t j = 0; j < size && next != 0; ++j) {
        next = ((last + r.bits.se()) % 256 + 256) % 256;
        last = next;
    }
}

inline void high_profile_group(const record& r)
{
    read(r, {{"chroma_format_idc", ue}});
    const bool is_444 = r.number("chroma_format_idc") == 3;
    if (is_444)
        read(r, {{"separate_colour_plane_flag", 1}});
    read(r, {{"bit_depth_luma", ue, 8}, {"bit_depth_chroma", ue, 8}, {"qprime_y_zero_transform_bypass_flag", 1}});
    if (!read_behind("seq_scaling_matrix_present_flag", r, {}))
        return;
    for (int i = 0; i < 6; ++i)
        scaling_list(r, 16);
    for (int i = 0; i < (is_444 ? 6 : 2); ++i)
        scaling_list(r, 64);
}

/// False when the data ends within the cycle, whose count is then not followed.
inline bool pic_order_cnt(const record& r)
{
    read(r, {{"pic_order_cnt_type", ue, 0, 8}});
    if (r.number("pic_order_cnt_type") == 0)
        read(r, {{"max_pic_order_cnt_lsb", ue, 4, 8}});
    if (r.number("pic_order_cnt_type") != 1)
        return true;
    read(r, {{"delta_pic_order_always_zero_flag", 1}, {nullptr, ue}, {nullptr, ue}});
    for (std::int64_t cycle = r.bits.ue(); cycle > 0; --cycle) {
        if (r.bits.at_end())
            return false;
        r.bits.ue();
    }
    return true;
}

// H.264 Table E-1
inline void sample_aspect_ratio(const record& r)
{
    static const std::map<std::int64_t, std::pair<int, int>> table_e_1 = {
        {0, {0, 1}},    {1, {1, 1}},     {2, {12, 11}}, {3, {10, 11}}, {4, {16, 11}},  {5, {40, 33}},
        {6, {24, 11}},  {7, {20, 11}},   {8, {32, 11}}, {9, {80, 33}}, {10, {18, 11}}, {11, {15, 11}},
        {12, {64, 33}}, {13, {160, 99}}, {14, {4, 3}},  {15, {3, 2}},  {16, {2, 1}}};
    const std::int64_t idc = r.number("aspect_ratio_idc");
    if (idc == 255)
        return read(r, {{"sar_width", 16}, {"sar_height", 16}});
    const auto ratio = table_e_1.find(idc);
    if (ratio == table_e_1.end())
        return;
    r.number("sar_width") = ratio->second.first;
    r.number("sar_height") = ratio->second.second;
}

// H.264 E.1.2
inline void hrd_parameters(const record& r)
{
    const std::int64_t cpb_cnt_minus1 = r.bits.ue();
    if (cpb_cnt_minus1 >= 32)
        return;
    read(r, {{nullptr, 4}, {nullptr, 4}});
    for (std::int64_t i = 0; i <= cpb_cnt_minus1; ++i)
        read(r, {{nullptr, ue}, {nullptr, ue}, {nullptr, 1}});
    read(r, {{"initial_cpb_removal_delay_length", 5, 1},
             {"cpb_removal_delay_length", 5, 1},
             {"dpb_output_delay_length", 5, 1},
             {"time_offset_length", 5}});
}

// H.264 E.1.1 up to pic_struct_present_flag
inline void vui_parameters(const record& r)
{
    if (read_behind("aspect_ratio_info_present_flag", r, {{"aspect_ratio_idc", 8}}))
        sample_aspect_ratio(r);
    read_behind("overscan_info_present_flag", r, {{"overscan_info_appropriate_flag", 1}});
    if (read_behind("video_signal_type_present_flag", r, {{"video_format", 3}, {"video_full_range_flag", 1}}))
        read_behind("colour_description_present_flag", r,
                    {{"colour_primaries", 8}, {"transfer_characteristics", 8}, {"matrix_coefficients", 8}});
    read_behind("chroma_location_info_present_flag", r,
                {{"chroma_sample_location_type_top_field", ue}, {"chroma_sample_location_type_bottom_field", ue}});
    read_behind("timing_info_present_flag", r,
                {{"num_units_in_ticks", two_halves}, {"time_scale", two_halves}, {"fixed_frame_rate_flag", 1}});
    bool any_hrd = false;
    for (const char* const flag : {"nal_hrd_parameters_present_flag", "vcl_hrd_parameters_present_flag"})
        if (read_behind(flag, r, {})) {
            hrd_parameters(r);
            any_hrd = true;
        }
    if (any_hrd)
        read(r, {{"low_delay_hrd_flag", 1}});
    read(r, {{"pic_struct_present_flag", 1}});
}

// H.264 7.3.2.1.1. False when a count is not followed to its end.
inline bool sps(const record& r)
{
    static const std::set<std::int64_t> high_profiles = {44, 83, 86, 100, 110, 118, 122, 128, 244};
    read(r, {{"profile_idc", 8},
             {"constraint_set0_flag", 1},
             {"constraint_set1_flag", 1},
             {"constraint_set2_flag", 1},
             {"constraint_set3_flag", 1},
             {"constraint_set4_flag", 1},
             {"constraint_set5_flag", 1},
             {"reserved_zero_2bits", 2},
             {"level_idc", 8},
             {"seq_parameter_set_id", ue}});
    if (high_profiles.contains(r.number("profile_idc")))
        high_profile_group(r);
    read(r, {{"log2_max_frame_num", ue, 4, 8}});
    r.number("max_frame_num") = std::int64_t{1} << r.number("log2_max_frame_num") % 32;
    const bool whole = pic_order_cnt(r);
    read(r, {{"max_num_ref_frames", ue, 0, 8},
             {"gaps_in_frame_num_value_allowed_flag", 1},
             {"pic_width_in_mbps", ue, 1},
             {"pic_height_in_map_units", ue, 1},
             {"frame_mbs_only_flag", 1}});
    if (r.number("frame_mbs_only_flag") == 0)
        read(r, {{"mb_adaptive_frame_field_flag", 1}});
    read(r, {{"direct_8x8_inference_flag", 1}});
    read_behind("frame_cropping_flag", r,
                {{"frame_crop_left_offset", ue},
                 {"frame_crop_right_offset", ue},
                 {"frame_crop_top_offset", ue},
                 {"frame_crop_bottom_offset", ue}});
    if (read_behind("vui_parameters_present_flag", r, {}))
        vui_parameters(r);
    return whole;
}

/// What a slice or a picture timing message sees of an SPS.
struct stored_sps {
    bool separate_colour_plane_flag;
    unsigned int log2_max_frame_num;
    bool frame_mbs_only_flag;
    bool hrd;
    unsigned int cpb_removal_delay_length;
    unsigned int dpb_output_delay_length;
    bool pic_struct_present_flag;

    explicit stored_sps(const support::named_values& seq)
    {
        const auto number = [&](const char* name) { return static_cast<unsigned int>(seq.at(name).number); };
        separate_colour_plane_flag = number("separate_colour_plane_flag") != 0;
        log2_max_frame_num = number("log2_max_frame_num");
        frame_mbs_only_flag = number("frame_mbs_only_flag") == 1;
        hrd = number("nal_hrd_parameters_present_flag") != 0 || number("vcl_hrd_parameters_present_flag") != 0;
        cpb_removal_delay_length = number("cpb_removal_delay_length");
        dpb_output_delay_length = number("dpb_output_delay_length");
        pic_struct_present_flag = number("pic_struct_present_flag") != 0;
    }
};

// H.264 7.3.3, the first fields; false when there is no payload
inline bool slice(const record& r, const stored_sps& seq)
{
    if (r.bits.bytes.empty())
        return false;
    read(r, {{"first_mb_in_slice", ue}, {"slice_type", ue}, {"pic_parameter_set_id", ue}});
    if (seq.separate_colour_plane_flag)
        read(r, {{"colour_plane_id", 2}});
    r.number("frame_num") = r.bits.u(seq.log2_max_frame_num);
    r.number("field_pic_flag") = r.number("bottom_field_flag") = 0;
    if (!seq.frame_mbs_only_flag)
        read_behind("field_pic_flag", r, {{"bottom_field_flag", 1}});
    return true;
}

// H.264 D.1.3 up to pic_struct, and Table D-1; false when there is no payload
inline bool pic_timing(const record& r, const stored_sps& seq)
{
    static const std::map<std::int64_t, std::int64_t> durations = {{0, 2}, {1, 1}, {2, 1}, {3, 2}, {4, 2},
                                                                   {5, 3}, {6, 3}, {7, 4}, {8, 6}};
    r.number("cpb_removal_delay") = r.number("dpb_output_delay") = r.number("pic_struct") = 0;
    r.number("field_duration") = 2;
    if (r.bits.bytes.empty())
        return false;
    if (seq.hrd) {
        r.number("cpb_removal_delay") = r.bits.u(seq.cpb_removal_delay_length);
        r.number("dpb_output_delay") = r.bits.u(seq.dpb_output_delay_length);
    }
    if (!seq.pic_struct_present_flag)
        return true;
    read(r, {{"pic_struct", 4}});
    const auto duration = durations.find(r.number("pic_struct"));
    r.number("field_duration") = duration == durations.end() ? 0 : duration->second;
    return true;
}

/// Where an SEI message lies in some bytes; positions are -1 until they are known.
struct message {
    bool valid = false;
    std::int64_t type = 0;
    std::int64_t size = 0;
    std::int64_t data = -1;
    std::int64_t fence = -1;
};

// H.264 7.3.2.3.1
inline message sei_message(const std::vector<unsigned char>& bytes, std::size_t start)
{
    message m;
    std::size_t at = start;
    for (std::int64_t* const sum : {&m.type, &m.size}) {
        do {
            if (at == bytes.size())
                return m;
            *sum += bytes[at];
        } while (bytes[at++] == 255);
    }
    m.data = static_cast<std::int64_t>(at);
    m.fence = m.data + m.size;
    m.valid = m.fence <= static_cast<std::int64_t>(bytes.size());
    return m;
}

} // namespace literal::legacy
