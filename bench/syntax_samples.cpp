#include "syntax_samples.h"

#include <cstdlib>

namespace bench {

using namespace orv_utils_v4::h264;

namespace {

template <class Rbsp>
std::vector<unsigned char> written(unsigned nal_unit_type, unsigned nal_ref_idc, const Rbsp& rbsp)
{
    const seq_parameter_set_rbsp sps = sample_sps();
    const pic_parameter_set_rbsp pps = sample_pps();
    parameter_sets sets;
    sets.sps[0] = &sps;
    sets.pps[0] = &pps;
    unit_context context;
    context.sets = &sets;
    nal_unit unit;
    unit.header.nal_unit_type = static_cast<std::uint8_t>(nal_unit_type);
    unit.header.nal_ref_idc = static_cast<std::uint8_t>(nal_ref_idc);
    unit.rbsp = rbsp;
    std::vector<unsigned char> bytes(1024);
    bit_writer bits(bytes.data(), bytes.size());
    outcome result;
    if (!write(unit, context, bits, result))
        std::abort();
    bytes.resize(bits.bytes());
    return bytes;
}

} // namespace

seq_parameter_set_rbsp sample_sps()
{
    seq_parameter_set_rbsp sps;
    seq_parameter_set_data& x = sps.seq_parameter_set_data;
    x.profile_idc = 100;
    x.level_idc = 40;
    x.log2_max_frame_num_minus4 = 4;
    x.log2_max_pic_order_cnt_lsb_minus4 = 4;
    x.max_num_ref_frames = 4;
    x.pic_width_in_mbs_minus1 = 119;
    x.pic_height_in_map_units_minus1 = 67;
    x.frame_mbs_only_flag = true;
    x.direct_8x8_inference_flag = true;
    x.frame_cropping_flag = true;
    x.frame_crop_bottom_offset = 4;
    x.vui_parameters_present_flag = true;
    vui_parameters& vui = x.vui_parameters;
    vui.aspect_ratio_info_present_flag = true;
    vui.aspect_ratio_idc = 1;
    vui.video_signal_type_present_flag = true;
    vui.colour_description_present_flag = true;
    vui.chroma_loc_info_present_flag = true;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1001;
    vui.time_scale = 60000;
    vui.fixed_frame_rate_flag = true;
    vui.nal_hrd_parameters_present_flag = true;
    vui.nal_hrd_parameters.bit_rate_value_minus1[0] = 156249;
    vui.nal_hrd_parameters.cpb_size_value_minus1[0] = 1249999;
    vui.low_delay_hrd_flag = false;
    vui.pic_struct_present_flag = true;
    vui.bitstream_restriction_flag = true;
    vui.max_num_reorder_frames = 2;
    vui.max_dec_frame_buffering = 4;
    return sps;
}

pic_parameter_set_rbsp sample_pps()
{
    pic_parameter_set_rbsp pps;
    pps.num_ref_idx_l0_default_active_minus1 = 2;
    return pps;
}

const std::vector<unsigned char>& sps_sample()
{
    static const std::vector<unsigned char> bytes = written(7, 3, sample_sps());
    return bytes;
}

const std::vector<unsigned char>& pps_sample()
{
    static const std::vector<unsigned char> bytes = written(8, 3, sample_pps());
    return bytes;
}

const std::vector<unsigned char>& slice_sample()
{
    slice_layer_without_partitioning_rbsp slice;
    slice.slice_header.slice_type = 5;
    slice.slice_header.frame_num = 77;
    slice.slice_header.pic_order_cnt_lsb = 154;
    slice.slice_header.num_ref_idx_active_override_flag = true;
    slice.slice_header.num_ref_idx_l0_active_minus1 = 1;
    slice.slice_header.slice_qp_delta = -3;
    static const std::vector<unsigned char> bytes = written(1, 0, slice);
    return bytes;
}

} // namespace bench
