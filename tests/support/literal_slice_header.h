// The slice header once more, as tables of rows over values by name. It shares no code with the libraries; the tests
// and the fuzz entry point hold the real parse against it.
#pragma once

#include "support/literal_parameter_sets.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <vector>

namespace literal {

/// What a slice sees of an SPS.
struct slice_sps {
    bool separate_colour_plane_flag;
    std::int64_t log2_max_frame_num_minus4;
    bool frame_mbs_only_flag;
    std::int64_t pic_order_cnt_type;
    std::int64_t log2_max_pic_order_cnt_lsb_minus4;
    bool delta_pic_order_always_zero_flag;
};

/// What a slice sees of a PPS.
struct slice_pps {
    std::int64_t seq_parameter_set_id;
    bool bottom_field_pic_order_in_frame_present_flag;
    bool redundant_pic_cnt_present_flag;
};

/// The parameter sets by their ids, and the type of the unit.
struct slice_surroundings {
    std::map<std::int64_t, slice_sps> sps;
    std::map<std::int64_t, slice_pps> pps;
    std::int64_t nal_unit_type;
};

/// Asks for memory where a list that began empty has no room for another entry.
inline void make_room(std::size_t size)
{
    if ((size == 0 || std::has_single_bit(size)) && allocations_left-- == 0)
        throw out_of_memory();
}

// H.264 7.3.3.1
inline bool ref_pic_list_modification(const structure& s)
{
    static const std::vector<row> head = {{"ref_pic_list_modification_flag", 1}};
    read(s, head);
    if (s.number("ref_pic_list_modification_flag") == 0)
        return true;
    while (s.bits.peek(24) != 0) {
        const std::int64_t idc = s.ue();
        if (idc == 3)
            return true;
        const std::int64_t value = idc == 0 || idc == 1 || idc == 2 ? s.ue() : 0;
        make_room(s.array("modification_of_pic_nums_idc").size());
        s.array("modification_of_pic_nums_idc").push_back(idc);
        s.array("pic_num_value").push_back(value);
    }
    return false;
}

/// u(v) of log2_minus4 + 4 bits, modulo 256.
inline std::vector<row> counter(const char* name, std::int64_t log2_minus4)
{
    return {{name, static_cast<unsigned int>((log2_minus4 + 4) % 256)}};
}

inline void read_if(bool sent, const structure& s, const std::vector<row>& table)
{
    if (sent)
        read(s, table);
}

inline void slice_pic_order_cnt(const structure& s, const slice_sps& sps, const slice_pps& pps)
{
    const bool both_fields = pps.bottom_field_pic_order_in_frame_present_flag && s.number("field_pic_flag") == 0;
    if (sps.pic_order_cnt_type == 0) {
        read(s, counter("pic_order_cnt_lsb", sps.log2_max_pic_order_cnt_lsb_minus4));
        read_if(both_fields, s, {{"delta_pic_order_cnt_bottom", se}});
    } else if (sps.pic_order_cnt_type == 1 && !sps.delta_pic_order_always_zero_flag) {
        std::vector<std::int64_t>& deltas = s.array("delta_pic_order_cnt");
        deltas[0] = s.se();
        if (both_fields)
            deltas[1] = s.se();
    }
}

// H.264 Table 7-6
enum class slice_kind { p, b, i, sp, si };

/// From direct_spatial_mv_pred_flag on.
inline bool slice_references(const structure& s, slice_kind kind)
{
    static const std::set<slice_kind> with_list_0 = {slice_kind::p, slice_kind::sp, slice_kind::b};
    static const std::vector<row> counts = {{"num_ref_idx_active_override_flag", 1},
                                            {"num_ref_idx_l0_active_minus1", ue, "num_ref_idx_active_override_flag"}};
    if (!with_list_0.contains(kind))
        return true;
    const bool is_b = kind == slice_kind::b;
    read_if(is_b, s, {{"direct_spatial_mv_pred_flag", 1}});
    read(s, counts);
    read_if(is_b, s, {{"num_ref_idx_l1_active_minus1", ue, "num_ref_idx_active_override_flag"}});
    return ref_pic_list_modification(s.nested("ref_pic_list_modification_l0")) &&
           (!is_b || ref_pic_list_modification(s.nested("ref_pic_list_modification_l1")));
}

// H.264 7.3.3
inline bool slice_header(const structure& s, const slice_surroundings& surroundings)
{
    static const std::vector<row> head = {{"first_mb_in_slice", ue}, {"slice_type", ue}, {"pic_parameter_set_id", ue}};
    static const std::vector<row> fields = {{"field_pic_flag", 1}, {"bottom_field_flag", 1, "field_pic_flag"}};
    static const std::vector<row> idr = {{"idr_pic_id", ue, "IdrPicFlag"}};
    s.number("IdrPicFlag") = surroundings.nal_unit_type == 5 ? 1 : 0;
    read(s, head);
    const auto pps = surroundings.pps.find(s.number("pic_parameter_set_id"));
    if (pps == surroundings.pps.end())
        return not_valid(s);
    const auto sps = surroundings.sps.find(pps->second.seq_parameter_set_id);
    if (sps == surroundings.sps.end())
        return not_valid(s);
    read_if(sps->second.separate_colour_plane_flag, s, {{"colour_plane_id", 2}});
    read(s, counter("frame_num", sps->second.log2_max_frame_num_minus4));
    read_if(!sps->second.frame_mbs_only_flag, s, fields);
    read(s, idr);
    slice_pic_order_cnt(s, sps->second, pps->second);
    read_if(pps->second.redundant_pic_cnt_present_flag, s, {{"redundant_pic_cnt", ue}});
    if (!slice_references(s, static_cast<slice_kind>(s.number("slice_type") % 5)))
        return not_valid(s);
    s.number("valid") = 1;
    return true;
}

} // namespace literal
