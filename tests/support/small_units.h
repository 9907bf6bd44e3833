// Small sound units, made by hand: a test takes one, changes what it is about, and writes it.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <utility>

namespace orv_utils_v4::h264 {

/// A unit of the type, with nal_ref_idc 3 where the type may have one above 0.
template <class Rbsp>
nal_unit unit_of(unsigned nal_unit_type, Rbsp rbsp)
{
    nal_unit unit;
    unit.header.nal_unit_type = static_cast<std::uint8_t>(nal_unit_type);
    const bool of_no_reference = nal_unit_type == 6 || (nal_unit_type >= 9 && nal_unit_type <= 12);
    unit.header.nal_ref_idc = of_no_reference ? 0 : 3;
    unit.rbsp = std::move(rbsp);
    return unit;
}

/// Main profile, level 3, `width` by `height` macroblocks, picture order count type 2; what is inferred is there.
inline seq_parameter_set_data sps_data(std::uint32_t id = 0, std::uint32_t width = 4, std::uint32_t height = 3)
{
    seq_parameter_set_data sps;
    sps.profile_idc = 77;
    sps.level_idc = 30;
    sps.seq_parameter_set_id = id;
    sps.pic_order_cnt_type = 2;
    sps.max_num_ref_frames = 1;
    sps.pic_width_in_mbs_minus1 = width - 1;
    sps.pic_height_in_map_units_minus1 = height - 1;
    sps.frame_mbs_only_flag = true;
    sps.direct_8x8_inference_flag = true;
    sps.vui_parameters.max_num_reorder_frames = inferred_reorder_frames(sps);
    sps.vui_parameters.max_dec_frame_buffering = inferred_reorder_frames(sps);
    return sps;
}

/// With NAL HRD parameters whose delays have `delay_bits` bits each.
inline seq_parameter_set_data timed_sps_data(std::uint32_t id, unsigned delay_bits)
{
    seq_parameter_set_data sps = sps_data(id);
    sps.vui_parameters_present_flag = true;
    sps.vui_parameters.nal_hrd_parameters_present_flag = true;
    sps.vui_parameters.low_delay_hrd_flag = false;
    hrd_parameters& hrd = sps.vui_parameters.nal_hrd_parameters;
    hrd.initial_cpb_removal_delay_length_minus1 = static_cast<std::uint8_t>(delay_bits - 1);
    hrd.cpb_removal_delay_length_minus1 = static_cast<std::uint8_t>(delay_bits - 1);
    hrd.dpb_output_delay_length_minus1 = static_cast<std::uint8_t>(delay_bits - 1);
    return sps;
}

inline nal_unit sps_unit(const seq_parameter_set_data& sps)
{
    return unit_of(7, seq_parameter_set_rbsp{sps});
}

inline pic_parameter_set_rbsp pps_rbsp(std::uint32_t id = 0, std::uint32_t sps_id = 0)
{
    pic_parameter_set_rbsp pps;
    pps.pic_parameter_set_id = id;
    pps.seq_parameter_set_id = sps_id;
    return pps;
}

inline nal_unit pps_unit(std::uint32_t id = 0, std::uint32_t sps_id = 0)
{
    return unit_of(8, pps_rbsp(id, sps_id));
}

/// An I slice of an IDR picture (5), of another (1), or of an auxiliary one (19).
inline nal_unit slice_unit(unsigned nal_unit_type, std::uint32_t pps_id = 0)
{
    slice_layer_without_partitioning_rbsp slice;
    slice.slice_header.slice_type = 7;
    slice.slice_header.pic_parameter_set_id = pps_id;
    return unit_of(nal_unit_type, slice);
}

/// A message of the type with this payload.
template <class Payload>
sei_message message_of(std::uint32_t payload_type, Payload payload)
{
    sei_message message;
    message.payload_type = payload_type;
    message.payload = std::move(payload);
    return message;
}

/// The sets of one SPS and one PPS, both with the id 0, and the context that goes with them.
struct small_sets {
    seq_parameter_set_rbsp sps;
    pic_parameter_set_rbsp pps = pps_rbsp();
    parameter_sets sets;
    unit_context context;

    explicit small_sets(const seq_parameter_set_data& of_sps = sps_data()) : sps{of_sps}
    {
        sets.sps[0] = &sps;
        sets.pps[0] = &pps;
        context.sets = &sets;
        context.active_sps = &sps.seq_parameter_set_data;
        context.active_pps = &pps;
    }
    small_sets(const small_sets&) = delete;
    small_sets& operator=(const small_sets&) = delete;
};

} // namespace orv_utils_v4::h264
