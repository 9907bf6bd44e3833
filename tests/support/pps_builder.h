// Picture parameter sets from a plain description, as the table of H.264 7.3.2.2 writes them, but for the width of a
// slice_group_id, which is the description's to say.
#pragma once

#include "support/element_writer.h"
#include "support/sps_builder.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace support {

/// pic_parameter_set_rbsp()
struct pps_description {
    std::uint32_t pic_parameter_set_id = 0;
    std::uint32_t seq_parameter_set_id = 0;
    bool entropy_coding_mode_flag = false;
    bool bottom_field_pic_order_in_frame_present_flag = false;
    std::uint32_t num_slice_groups_minus1 = 0;
    std::uint32_t slice_group_map_type = 0;
    std::vector<std::uint32_t> run_length_minus1 = {};
    std::vector<std::uint32_t> top_left = {};
    std::vector<std::uint32_t> bottom_right = {};
    bool slice_group_change_direction_flag = false;
    std::uint32_t slice_group_change_rate_minus1 = 0;
    std::optional<std::uint32_t> pic_size_in_map_units_minus1 = {}; ///< when it is not what `slice_group_id` says
    std::vector<std::uint32_t> slice_group_id = {};
    unsigned int slice_group_id_width = 2;
    std::uint32_t num_ref_idx_l0_default_active_minus1 = 0;
    std::uint32_t num_ref_idx_l1_default_active_minus1 = 0;
    bool weighted_pred_flag = false;
    unsigned int weighted_bipred_idc = 0;
    std::int32_t pic_init_qp_minus26 = 0;
    std::int32_t pic_init_qs_minus26 = 0;
    std::int32_t chroma_qp_index_offset = 0;
    bool deblocking_filter_control_present_flag = false;
    bool constrained_intra_pred_flag = false;
    bool redundant_pic_cnt_present_flag = false;
    bool tail = false; ///< what follows is written
    bool transform_8x8_mode_flag = false;
    std::optional<scaling_matrix> scaling_lists = {};
    std::size_t scaling_list_count = 6; ///< 6, 8 or 12
    std::int32_t second_chroma_qp_index_offset = 0;
};

inline void write_slice_groups(element_writer& out, const pps_description& pic)
{
    out.ue("slice_group_map_type", pic.slice_group_map_type);
    if (pic.slice_group_map_type == 0) {
        for (std::size_t i = 0; i < pic.run_length_minus1.size(); ++i)
            out.ue("run_length_minus1", pic.run_length_minus1[i], i);
    } else if (pic.slice_group_map_type == 2) {
        for (std::size_t i = 0; i < pic.top_left.size(); ++i)
            out.ue("top_left", pic.top_left[i], i).ue("bottom_right", pic.bottom_right[i], i);
    } else if (pic.slice_group_map_type >= 3 && pic.slice_group_map_type <= 5) {
        out.flag("slice_group_change_direction_flag", pic.slice_group_change_direction_flag);
        out.ue("slice_group_change_rate_minus1", pic.slice_group_change_rate_minus1);
    } else if (pic.slice_group_map_type == 6) {
        out.ue("pic_size_in_map_units_minus1",
               pic.pic_size_in_map_units_minus1.value_or(static_cast<std::uint32_t>(pic.slice_group_id.size() - 1)));
        for (std::size_t i = 0; i < pic.slice_group_id.size(); ++i)
            out.u("slice_group_id", pic.slice_group_id_width, pic.slice_group_id[i], i);
    }
}

inline void write(element_writer& out, const pps_description& pic)
{
    out.ue("pic_parameter_set_id", pic.pic_parameter_set_id);
    out.ue("seq_parameter_set_id", pic.seq_parameter_set_id);
    out.flag("entropy_coding_mode_flag", pic.entropy_coding_mode_flag);
    out.flag("bottom_field_pic_order_in_frame_present_flag", pic.bottom_field_pic_order_in_frame_present_flag);
    out.ue("num_slice_groups_minus1", pic.num_slice_groups_minus1);
    if (pic.num_slice_groups_minus1 > 0)
        write_slice_groups(out, pic);
    out.ue("num_ref_idx_l0_default_active_minus1", pic.num_ref_idx_l0_default_active_minus1);
    out.ue("num_ref_idx_l1_default_active_minus1", pic.num_ref_idx_l1_default_active_minus1);
    out.flag("weighted_pred_flag", pic.weighted_pred_flag);
    out.u("weighted_bipred_idc", 2, pic.weighted_bipred_idc);
    out.se("pic_init_qp_minus26", pic.pic_init_qp_minus26);
    out.se("pic_init_qs_minus26", pic.pic_init_qs_minus26);
    out.se("chroma_qp_index_offset", pic.chroma_qp_index_offset);
    out.flag("deblocking_filter_control_present_flag", pic.deblocking_filter_control_present_flag);
    out.flag("constrained_intra_pred_flag", pic.constrained_intra_pred_flag);
    out.flag("redundant_pic_cnt_present_flag", pic.redundant_pic_cnt_present_flag);
    if (!pic.tail)
        return;
    out.flag("transform_8x8_mode_flag", pic.transform_8x8_mode_flag);
    out.flag("pic_scaling_matrix_present_flag", pic.scaling_lists.has_value());
    if (pic.scaling_lists)
        write_scaling_matrix(out, *pic.scaling_lists, pic.scaling_list_count, "pic_scaling_list_");
    out.se("second_chroma_qp_index_offset", pic.second_chroma_qp_index_offset);
}

/// A PPS with slice groups of the map type, each array entry with a value of its own.
inline pps_description pps_of_map_type(std::uint32_t map_type, std::uint32_t num_slice_groups_minus1 = 2)
{
    pps_description pic;
    pic.num_slice_groups_minus1 = num_slice_groups_minus1;
    pic.slice_group_map_type = map_type;
    for (std::uint32_t i = 0; i <= num_slice_groups_minus1; ++i)
        pic.run_length_minus1.push_back(20 + i);
    for (std::uint32_t i = 0; i < num_slice_groups_minus1; ++i) {
        pic.top_left.push_back(3 * i);
        pic.bottom_right.push_back(100 + 3 * i);
    }
    pic.slice_group_change_direction_flag = true;
    pic.slice_group_change_rate_minus1 = 17;
    pic.slice_group_id = {0, 2, 1, 1, 2, 0, 2};
    return pic;
}

/// Every element outside the slice groups, most of them with a value that no other has.
inline pps_description full_pps(std::uint32_t chroma_format_idc)
{
    pps_description pic;
    pic.pic_parameter_set_id = 9;
    pic.entropy_coding_mode_flag = true;
    pic.num_ref_idx_l0_default_active_minus1 = 4;
    pic.num_ref_idx_l1_default_active_minus1 = 5;
    pic.weighted_pred_flag = true;
    pic.weighted_bipred_idc = 2;
    pic.pic_init_qp_minus26 = -6;
    pic.pic_init_qs_minus26 = 8;
    pic.chroma_qp_index_offset = -2;
    pic.deblocking_filter_control_present_flag = true;
    pic.redundant_pic_cnt_present_flag = true;
    pic.tail = true;
    pic.transform_8x8_mode_flag = true;
    pic.scaling_lists = full_scaling_matrix();
    pic.scaling_list_count = chroma_format_idc == 3 ? 12 : 8;
    pic.second_chroma_qp_index_offset = 3;
    return pic;
}

} // namespace support
