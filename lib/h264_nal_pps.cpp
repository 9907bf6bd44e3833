// H.264 clause 7.3.2.2: the picture parameter set.
#include <orv-utils-v4/h264/nal_pps.h>

#include "resize_counted.h"
#include "scaling_lists.h"
#include "syntax_reads.h"

namespace brenik {

template class h2645_common_base_store<h264_nal_pps>;

namespace {

/// The bits of a slice_group_id: those that hold the number of slice groups. The standard's Ceil(Log2(n)) is one less
/// where n is a power of two.
unsigned char slice_group_id_width(std::uint32_t slice_groups)
{
    unsigned char width = 0;
    for (; slice_groups != 0; slice_groups /= 2)
        ++width;
    return width;
}

bool parse_slice_group_ids(h264_nal_pps& pps, h2645_common_bitreader& br)
{
    pps.pic_size_in_map_units_minus1 = br.ue();
    const unsigned char width = slice_group_id_width(pps.num_slice_groups_minus1 + 1);
    if (!resize_counted(std::uint64_t{pps.pic_size_in_map_units_minus1} + 1, pps.slice_group_id))
        return false;
    for (std::uint32_t& id : pps.slice_group_id)
        id = br.get_wide(width);
    return true;
}

bool parse_slice_groups(h264_nal_pps& pps, h2645_common_bitreader& br)
{
    pps.slice_group_map_type = br.ue();
    switch (pps.slice_group_map_type) {
    case 0:
        if (!resize_counted(std::uint64_t{pps.num_slice_groups_minus1} + 1, pps.run_length_minus1))
            return false;
        for (std::uint32_t& run_length : pps.run_length_minus1)
            run_length = br.ue();
        return true;
    case 2:
        if (!resize_counted(pps.num_slice_groups_minus1, pps.top_left, pps.bottom_right))
            return false;
        for (std::size_t iGroup = 0; iGroup < pps.top_left.size(); ++iGroup) {
            pps.top_left[iGroup] = br.ue();
            pps.bottom_right[iGroup] = br.ue();
        }
        return true;
    case 3:
    case 4:
    case 5:
        pps.slice_group_change_direction_flag = u<1>(br);
        pps.slice_group_change_rate_minus1 = br.ue();
        return true;
    case 6:
        return parse_slice_group_ids(pps, br);
    default:
        return true;
    }
}

bool parse_tail(h264_nal_pps& pps, h2645_common_bitreader& br, std::uint32_t chroma_format_idc)
{
    pps.transform_8x8_mode_flag = u<1>(br);
    pps.pic_scaling_matrix_present_flag = u<1>(br);
    if (pps.pic_scaling_matrix_present_flag) {
        const std::size_t lists_8x8 = pps.transform_8x8_mode_flag ? scaling_list_8x8_count(chroma_format_idc) : 0;
        if (!parse_scaling_lists(br, pps.pic_scaling_list_4x4, pps.pic_scaling_list_4x4.size(), entries_4x4) ||
            !parse_scaling_lists(br, pps.pic_scaling_list_8x8, lists_8x8, entries_8x8))
            return false;
    }
    pps.second_chroma_qp_index_offset = br.se();
    return true;
}

} // namespace

// H.264 7.3.2.2, pic_parameter_set_rbsp()
bool h264_nal_pps::parse(h2645_common_bitreader& br, const h2645_common_base_store<h264_nal_sps>& sps_store)
{
    pic_parameter_set_id = br.ue();
    seq_parameter_set_id = br.ue();
    const h264_nal_sps* const sps = sps_store.find(seq_parameter_set_id);
    if (sps == nullptr || !sps->valid)
        return valid = false;
    entropy_coding_mode_flag = u<1>(br);
    bottom_field_pic_order_in_frame_present_flag = u<1>(br);
    num_slice_groups_minus1 = br.ue();
    if (num_slice_groups_minus1 > 0 && !parse_slice_groups(*this, br))
        return false;
    num_ref_idx_l0_default_active_minus1 = br.ue();
    num_ref_idx_l1_default_active_minus1 = br.ue();
    weighted_pred_flag = u<1>(br);
    weighted_bipred_idc = u<2>(br);
    pic_init_qp_minus26 = br.se();
    pic_init_qs_minus26 = br.se();
    chroma_qp_index_offset = br.se();
    deblocking_filter_control_present_flag = u<1>(br);
    constrained_intra_pred_flag = u<1>(br);
    redundant_pic_cnt_present_flag = u<1>(br);
    more_rbsp_data_present = h2645_common_more_rbsp_data(br);
    if (more_rbsp_data_present && !parse_tail(*this, br, sps->chroma_format_idc))
        return valid = false;
    return valid = h2645_common_skip_rbsp_trailing_bits(br);
}

} // namespace brenik
