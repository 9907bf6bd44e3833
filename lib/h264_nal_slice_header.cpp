// H.264 clauses 7.3.3 and 7.3.3.1: the slice header up to the modification of the reference picture lists. It does not
// go further.
#include <orv-utils-v4/h264/nal_slice_header.h>

#include "held_bits.h"
#include "syntax_reads.h"
#include "wrapping.h"

namespace brenik {

const char* h264_slice_type_t_str[5] = {"P", "B", "I", "SP", "SI"};

const char* h264_slice_type_t_to_string(const h264_slice_type_t& t)
{
    const auto index = static_cast<std::uint32_t>(t);
    return index <= h264_slice_type_SI ? h264_slice_type_t_str[index] : "";
}

namespace {

/// u(v) of log2_minus4 + 4 bits; the width is kept in 8 bits.
std::uint32_t read_log2_minus4(held_bits& br, std::uint32_t log2_minus4)
{
    return br.get_wide(static_cast<unsigned char>(wrapping_add(log2_minus4, 4)));
}

/// ref_pic_list_modification() of one list; mostly there is none.
[[gnu::always_inline]] inline bool read_list(held_bits& br, h2645_common_bitreader& owner,
                                             h264_nal_slice_header::ref_pic_list_modification_entry_t& list)
{
    if (br.peek_flag()) {
        br.put_back();
        return list.parse(owner);
    }
    list.ref_pic_list_modification_flag = u<1>(br);
    return true;
}

} // namespace

h264_slice_type_t h264_nal_slice_header::getSliceType() const
{
    return static_cast<h264_slice_type_t>(slice_type % 5);
}

// H.264 7.3.3.1, ref_pic_list_modification() of one list
bool h264_nal_slice_header::ref_pic_list_modification_entry_t::parse(h2645_common_bitreader& br)
{
    constexpr std::uint32_t last_with_pic_num = 2;
    constexpr std::uint32_t end_of_list = 3;
    ref_pic_list_modification_flag = u<1>(br);
    if (!ref_pic_list_modification_flag)
        return true;
    // No idc begins with 24 zero bits.
    while (br.peek24() != 0) {
        const std::uint32_t idc = br.ue();
        if (idc == end_of_list)
            return true;
        entries.push_back({idc, idc <= last_with_pic_num ? br.ue() : 0});
    }
    return false;
}

// H.264 7.3.3, slice_header()
bool h264_nal_slice_header::parse(h2645_common_bitreader& br, const h2645_common_base_store<h264_nal_sps>& sps_store,
                                  const h2645_common_base_store<h264_nal_pps>& pps_store, const h264_nal& nal)
{
    held_bits bits(br);
    const auto slice_header = [&] {
        IdrPicFlag = nal.nal_unit_type == h264_nal_unit_type_slice_idr;
        first_mb_in_slice = bits.ue();
        slice_type = bits.ue();
        pic_parameter_set_id = bits.ue();
        const h264_nal_pps* const pps = pps_store.find(pic_parameter_set_id);
        const h264_nal_sps* const sps = pps == nullptr ? nullptr : sps_store.find(pps->seq_parameter_set_id);
        if (sps == nullptr)
            return false;
        const h264_slice_type_t kind = getSliceType();
        const bool is_b = kind == h264_slice_type_B;
        const bool is_intra = kind == h264_slice_type_I || kind == h264_slice_type_SI;

        if (sps->separate_colour_plane_flag)
            colour_plane_id = u<2>(bits);
        frame_num = read_log2_minus4(bits, sps->log2_max_frame_num_minus4);
        if (!sps->frame_mbs_only_flag) {
            field_pic_flag = u<1>(bits);
            if (field_pic_flag)
                bottom_field_flag = u<1>(bits);
        }
        if (IdrPicFlag)
            idr_pic_id = bits.ue();
        const bool bottom_order_sent = pps->bottom_field_pic_order_in_frame_present_flag && !field_pic_flag;
        if (sps->pic_order_cnt_type == 0) {
            pic_order_cnt_lsb = read_log2_minus4(bits, sps->log2_max_pic_order_cnt_lsb_minus4);
            if (bottom_order_sent)
                delta_pic_order_cnt_bottom = bits.se();
        }
        if (sps->pic_order_cnt_type == 1 && !sps->delta_pic_order_always_zero_flag) {
            delta_pic_order_cnt[0] = bits.se();
            if (bottom_order_sent)
                delta_pic_order_cnt[1] = bits.se();
        }
        if (pps->redundant_pic_cnt_present_flag)
            redundant_pic_cnt = bits.ue();
        if (is_b)
            direct_spatial_mv_pred_flag = u<1>(bits);
        if (!is_intra) {
            num_ref_idx_active_override_flag = u<1>(bits);
            if (num_ref_idx_active_override_flag) {
                num_ref_idx_l0_active_minus1 = bits.ue();
                if (is_b)
                    num_ref_idx_l1_active_minus1 = bits.ue();
            }
        }
        if (!is_intra && !read_list(bits, br, ref_pic_list_modification_l0))
            return false;
        if (is_b && !read_list(bits, br, ref_pic_list_modification_l1))
            return false;
        return true;
    };
    const bool whole = slice_header();
    bits.put_back();
    return valid = whole;
}

} // namespace brenik
