#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

seq_parameter_set_data& high(seq_parameter_set_data& sps)
{
    sps.profile_idc = 100;
    return sps;
}

void fields(seq_parameter_set_data& sps)
{
    sps.frame_mbs_only_flag = false;
}

vui_parameters& vui(seq_parameter_set_data& sps)
{
    sps.vui_parameters_present_flag = true;
    return sps.vui_parameters;
}

/// 25 frames a second.
vui_parameters& timed(seq_parameter_set_data& sps)
{
    vui(sps).timing_info_present_flag = true;
    vui(sps).num_units_in_tick = 1;
    vui(sps).time_scale = 50;
    vui(sps).fixed_frame_rate_flag = true;
    return vui(sps);
}

/// One frame is buffered, and none comes out of order.
vui_parameters& restricted(seq_parameter_set_data& sps)
{
    vui(sps).bitstream_restriction_flag = true;
    vui(sps).log2_max_mv_length_horizontal = 9;
    vui(sps).log2_max_mv_length_vertical = 8;
    vui(sps).max_num_reorder_frames = 0;
    vui(sps).max_dec_frame_buffering = 1;
    return vui(sps);
}

void make_small(hrd_parameters& hrd)
{
    hrd.bit_rate_value_minus1[0] = 999;
    hrd.cpb_size_value_minus1[0] = 999;
}

void set_tick(seq_parameter_set_data& sps)
{
    vui(sps).timing_info_present_flag = true;
    vui(sps).num_units_in_tick = 1;
    vui(sps).time_scale = 50;
}

hrd_parameters& nal_hrd(seq_parameter_set_data& sps)
{
    set_tick(sps);
    vui(sps).nal_hrd_parameters_present_flag = true;
    vui(sps).low_delay_hrd_flag = false;
    make_small(vui(sps).nal_hrd_parameters);
    return vui(sps).nal_hrd_parameters;
}

hrd_parameters& vcl_hrd(seq_parameter_set_data& sps)
{
    set_tick(sps);
    vui(sps).vcl_hrd_parameters_present_flag = true;
    vui(sps).low_delay_hrd_flag = false;
    make_small(vui(sps).vcl_hrd_parameters);
    return vui(sps).vcl_hrd_parameters;
}

/// An SPS that `change` makes what it shall be.
template <class Change>
std::vector<unsigned char> with_sps(Change change)
{
    seq_parameter_set_data sps = sps_data();
    change(sps);
    made_stream stream(sps);
    stream.add(sps_unit(sps));
    return stream.bytes;
}

/// A PPS, likewise, behind such an SPS.
template <class Change>
std::vector<unsigned char> with_pps(Change change)
{
    made_stream stream;
    change(stream.sps(), stream.pps());
    stream.add_sets();
    return stream.bytes;
}

constexpr planted_violation planted[] = {
    {"profile_idc 0", "sps-profile-known@0 profile_idc",
     [] { return with_sps([](seq_parameter_set_data& sps) { sps.profile_idc = 0; }); }},
    {"level_idc 255", "sps-level-known@0 level_idc",
     [] { return with_sps([](seq_parameter_set_data& sps) { sps.level_idc = 255; }); }},
    {"chroma_format_idc 2 in High", "sps-chroma-format-in-profile@0 chroma_format_idc",
     [] { return with_sps([](seq_parameter_set_data& sps) { high(sps).chroma_format_idc = 2; }); }},
    {"bit_depth_luma_minus8 2 in High", "sps-luma-depth-in-profile@0 bit_depth_luma_minus8",
     [] { return with_sps([](seq_parameter_set_data& sps) { high(sps).bit_depth_luma_minus8 = 2; }); }},
    {"bit_depth_chroma_minus8 2 in High", "sps-chroma-depth-in-profile@0 bit_depth_chroma_minus8",
     [] { return with_sps([](seq_parameter_set_data& sps) { high(sps).bit_depth_chroma_minus8 = 2; }); }},
    {"bit depth 38", "value-in-range@0 bit_depth_luma_minus8, sps-luma-depth-in-profile@0 bit_depth_luma_minus8",
     [] { return with_sps([](seq_parameter_set_data& sps) { high(sps).bit_depth_luma_minus8 = 30; }); }},
    {"lossless macroblocks in High", "sps-bypass-in-profile@0 qpprime_y_zero_transform_bypass_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) { high(sps).qpprime_y_zero_transform_bypass_flag = true; });
     }},
    {"constraint_set1_flag in High", "sps-main-flag-of-high@0 constraint_set1_flag",
     [] { return with_sps([](seq_parameter_set_data& sps) { high(sps).constraint_set1_flag = true; }); }},
    {"fields in a progressive profile", "sps-progressive-flag@0 constraint_set4_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             high(sps).constraint_set4_flag = true;
             fields(sps);
         });
     }},
    {"fields in Baseline", "sps-baseline-frames@0 frame_mbs_only_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.profile_idc = 66;
             fields(sps);
         });
     }},
    {"fields at level 5", "sps-fields-at-level@0 frame_mbs_only_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 50;
             fields(sps);
         });
     }},
    {"fields without direct_8x8_inference_flag", "sps-direct-inference-with-fields@0 direct_8x8_inference_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             fields(sps);
             sps.direct_8x8_inference_flag = false;
         });
     }},
    {"Extended without direct_8x8_inference_flag", "sps-extended-direct-inference@0 direct_8x8_inference_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.profile_idc = 88;
             sps.direct_8x8_inference_flag = false;
         });
     }},
    {"a crop beyond the picture", "sps-crop-inside-picture@0 frame_cropping_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.frame_cropping_flag = true;
             sps.frame_crop_bottom_offset = 100;
         });
     }},
    {"4096x2304 at level 1",
     "sps-frame-size-at-level@0 level_idc, sps-frame-shape-at-level@0 level_idc, sps-references-in-buffer@0 "
     "max_num_ref_frames",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 10;
             sps.pic_width_in_mbs_minus1 = 255;
             sps.pic_height_in_map_units_minus1 = 143;
         });
     }},
    {"a side of 43 macroblocks at level 1.1", "sps-frame-shape-at-level@0 level_idc",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 11;
             sps.pic_width_in_mbs_minus1 = 59;
         });
     }},
    {"17 reference frames", "value-in-range@0 max_num_ref_frames, sps-references-in-buffer@0 max_num_ref_frames",
     [] { return with_sps([](seq_parameter_set_data& sps) { sps.max_num_ref_frames = 17; }); }},
    {"5 reference frames of 1920x1088 at level 4", "sps-references-in-buffer@0 max_num_ref_frames",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 40;
             sps.pic_width_in_mbs_minus1 = 119;
             sps.pic_height_in_map_units_minus1 = 67;
             sps.max_num_ref_frames = 5;
         });
     }},
    {"60 Hz of 1920x1088 at level 4", "sps-macroblock-rate-at-level@0 time_scale",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 40;
             sps.pic_width_in_mbs_minus1 = 119;
             sps.pic_height_in_map_units_minus1 = 67;
             timed(sps).time_scale = 120;
         });
     }},
    {"time_scale 0", "value-in-range@0 time_scale",
     [] { return with_sps([](seq_parameter_set_data& sps) { timed(sps).time_scale = 0; }); }},
    {"num_units_in_tick 0", "value-in-range@0 num_units_in_tick",
     [] { return with_sps([](seq_parameter_set_data& sps) { timed(sps).num_units_in_tick = 0; }); }},
    {"sar_width 0", "vui-extended-ratio@0 sar_width",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             vui(sps).aspect_ratio_info_present_flag = true;
             vui(sps).aspect_ratio_idc = 255;
             vui(sps).sar_height = 1;
         });
     }},
    {"GBR in 4:2:0", "vui-matrix-fits-format@0 matrix_coefficients",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             vui(sps).video_signal_type_present_flag = true;
             vui(sps).colour_description_present_flag = true;
             vui(sps).matrix_coefficients = 0;
         });
     }},
    {"chroma locations in 4:0:0", "vui-chroma-location-fits-format@0 chroma_loc_info_present_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             high(sps).chroma_format_idc = 0;
             vui(sps).chroma_loc_info_present_flag = true;
         });
     }},
    {"log2_max_mv_length_horizontal 16", "vui-vector-length@0 log2_max_mv_length_horizontal",
     [] { return with_sps([](seq_parameter_set_data& sps) { restricted(sps).log2_max_mv_length_horizontal = 16; }); }},
    {"log2_max_mv_length_vertical 17", "value-in-range@0 log2_max_mv_length_vertical",
     [] { return with_sps([](seq_parameter_set_data& sps) { restricted(sps).log2_max_mv_length_vertical = 17; }); }},
    {"vectors of 4096 quarters at level 1", "vui-vertical-vectors-at-level@0 log2_max_mv_length_vertical",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 10;
             restricted(sps).log2_max_mv_length_vertical = 12;
         });
     }},
    {"more reordering than buffering", "vui-reordering-in-buffering@0 max_num_reorder_frames",
     [] { return with_sps([](seq_parameter_set_data& sps) { restricted(sps).max_num_reorder_frames = 3; }); }},
    {"a buffer above that of the level", "vui-buffering-in-buffer@0 max_dec_frame_buffering",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 40;
             sps.pic_width_in_mbs_minus1 = 119;
             sps.pic_height_in_map_units_minus1 = 67;
             restricted(sps).max_dec_frame_buffering = 5;
         });
     }},
    {"a buffer smaller than the references", "vui-buffering-holds-references@0 max_dec_frame_buffering",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.max_num_ref_frames = 4;
             restricted(sps);
         });
     }},
    {"low delay at a fixed rate", "vui-low-delay-at-fixed-rate@0 low_delay_hrd_flag",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             timed(sps).fixed_frame_rate_flag = true;
             nal_hrd(sps);
             vui(sps).low_delay_hrd_flag = true;
         });
     }},
    {"40 Mbit/s in the NAL HRD at level 3", "hrd-nal-rate-at-level@0 bit_rate_value_minus1[0]",
     [] { return with_sps([](seq_parameter_set_data& sps) { nal_hrd(sps).bit_rate_value_minus1[0] = 625000; }); }},
    {"40 Mbit/s in the VCL HRD at level 3", "hrd-vcl-rate-at-level@0 bit_rate_value_minus1[0]",
     [] { return with_sps([](seq_parameter_set_data& sps) { vcl_hrd(sps).bit_rate_value_minus1[0] = 625000; }); }},
    {"a NAL buffer of 100 Mbit at level 3", "hrd-nal-buffer-at-level@0 cpb_size_value_minus1[0]",
     [] { return with_sps([](seq_parameter_set_data& sps) { nal_hrd(sps).cpb_size_value_minus1[0] = 6250000; }); }},
    {"a VCL buffer of 100 Mbit at level 3", "hrd-vcl-buffer-at-level@0 cpb_size_value_minus1[0]",
     [] { return with_sps([](seq_parameter_set_data& sps) { vcl_hrd(sps).cpb_size_value_minus1[0] = 6250000; }); }},
    {"schedules whose rates fall", "hrd-schedules-ordered@0 bit_rate_value_minus1[1]",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             hrd_parameters& hrd = nal_hrd(sps);
             hrd.cpb_cnt_minus1 = 1;
             hrd.bit_rate_value_minus1[1] = hrd.bit_rate_value_minus1[0] - 1;
             hrd.cpb_size_value_minus1[1] = hrd.cpb_size_value_minus1[0];
         });
     }},
    {"delays of two lengths", "hrd-lengths-agree@0 initial_cpb_removal_delay_length_minus1",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             nal_hrd(sps);
             vcl_hrd(sps).cpb_removal_delay_length_minus1 = 15;
         });
     }},
    {"SPS id 40", "value-in-range@0 seq_parameter_set_id",
     [] { return with_sps([](seq_parameter_set_data& sps) { sps.seq_parameter_set_id = 40; }); }},
    {"CABAC in Baseline", "pps-cabac-in-profile@1 entropy_coding_mode_flag",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 66;
             pps.entropy_coding_mode_flag = true;
         });
     }},
    {"weights in Baseline", "pps-weights-in-baseline@1 weighted_pred_flag",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 66;
             pps.weighted_pred_flag = true;
         });
     }},
    {"bipredictive weights in Baseline", "pps-weights-in-baseline@1 weighted_bipred_idc",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 66;
             pps.weighted_bipred_idc = 2;
         });
     }},
    {"slice groups in Main", "pps-slice-groups-in-profile@1 num_slice_groups_minus1",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             static_cast<void>(sps);
             pps.num_slice_groups_minus1 = 1;
         });
     }},
    {"redundant pictures in Main", "pps-redundant-pictures-in-profile@1 redundant_pic_cnt_present_flag",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             static_cast<void>(sps);
             pps.redundant_pic_cnt_present_flag = true;
         });
     }},
    {"8x8 transforms in Main", "pps-large-transform-in-profile@1 transform_8x8_mode_flag",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             static_cast<void>(sps);
             pps.transform_8x8_mode_sent = true;
             pps.transform_8x8_mode_flag = true;
         });
     }},
    {"scaling lists in Main", "pps-scaling-in-profile@1 pic_scaling_matrix_present_flag",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             static_cast<void>(sps);
             pps.transform_8x8_mode_sent = true;
             pps.pic_scaling_matrix_present_flag = true;
         });
     }},
    {"another offset for Cr in Main", "pps-second-offset-in-profile@1 second_chroma_qp_index_offset",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             static_cast<void>(sps);
             pps.transform_8x8_mode_sent = true;
             pps.second_chroma_qp_index_offset = 2;
         });
     }},
    {"a rectangle beyond the picture", "pps-rectangles-inside-picture@1 bottom_right[0]",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 66;
             pps.num_slice_groups_minus1 = 1;
             pps.slice_group_map_type = 2;
             pps.bottom_right[0] = 12;
         });
     }},
    {"a map of 9 units for 12", "pps-map-has-the-picture@1 pic_size_in_map_units_minus1",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 66;
             pps.num_slice_groups_minus1 = 1;
             pps.slice_group_map_type = 6;
             pps.pic_size_in_map_units_minus1 = 8;
             pps.slice_group_id.resize(9);
         });
     }},
    // Nothing is wrong with these.
    {"level 6.2", "", [] { return with_sps([](seq_parameter_set_data& sps) { sps.level_idc = 62; }); }},
    {"chroma_format_idc 2 in High 4:2:2", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             high(sps).profile_idc = 122;
             sps.chroma_format_idc = 2;
         });
     }},
    {"10 bits in High 10", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             high(sps).profile_idc = 110;
             sps.bit_depth_luma_minus8 = 2;
             sps.bit_depth_chroma_minus8 = 2;
         });
     }},
    {"lossless macroblocks in High 4:4:4 Predictive", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             high(sps).profile_idc = 244;
             sps.qpprime_y_zero_transform_bypass_flag = true;
         });
     }},
    {"constraint_set1_flag in Main and Baseline", "",
     [] { return with_sps([](seq_parameter_set_data& sps) { sps.constraint_set1_flag = true; }); }},
    {"frames in a progressive profile", "",
     [] { return with_sps([](seq_parameter_set_data& sps) { high(sps).constraint_set4_flag = true; }); }},
    {"fields at level 2.1", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 21;
             fields(sps);
         });
     }},
    {"fields at level 4.1", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 41;
             fields(sps);
         });
     }},
    {"frames without direct_8x8_inference_flag", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 21;
             sps.direct_8x8_inference_flag = false;
         });
     }},
    {"a crop that leaves two lines", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.frame_cropping_flag = true;
             sps.frame_crop_bottom_offset = 23;
         });
     }},
    {"MaxFS of level 4, and 4 reference frames in it", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 40;
             sps.pic_width_in_mbs_minus1 = 119;
             sps.pic_height_in_map_units_minus1 = 67;
             sps.max_num_ref_frames = 4;
         });
     }},
    {"the longest side of level 1.1", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 11;
             sps.pic_width_in_mbs_minus1 = 55;
         });
     }},
    {"30 Hz of 1920x1088 at level 4", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 40;
             sps.pic_width_in_mbs_minus1 = 119;
             sps.pic_height_in_map_units_minus1 = 67;
             timed(sps).time_scale = 60;
         });
     }},
    {"60 Hz of 1920x1088 at level 4, where they need not be", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 40;
             sps.pic_width_in_mbs_minus1 = 119;
             sps.pic_height_in_map_units_minus1 = 67;
             timed(sps).time_scale = 120;
             vui(sps).fixed_frame_rate_flag = false;
         });
     }},
    {"an Extended_SAR", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             vui(sps).aspect_ratio_info_present_flag = true;
             vui(sps).aspect_ratio_idc = 255;
             vui(sps).sar_width = 4;
             vui(sps).sar_height = 3;
         });
     }},
    {"GBR in 4:4:4", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             high(sps).profile_idc = 244;
             sps.chroma_format_idc = 3;
             vui(sps).video_signal_type_present_flag = true;
             vui(sps).colour_description_present_flag = true;
             vui(sps).matrix_coefficients = 0;
         });
     }},
    {"chroma locations in 4:2:0", "",
     [] { return with_sps([](seq_parameter_set_data& sps) { vui(sps).chroma_loc_info_present_flag = true; }); }},
    {"the longest vectors of level 3", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             restricted(sps).log2_max_mv_length_horizontal = 15;
             restricted(sps).log2_max_mv_length_vertical = 10;
         });
     }},
    {"as much reordering as buffering", "",
     [] { return with_sps([](seq_parameter_set_data& sps) { restricted(sps).max_num_reorder_frames = 1; }); }},
    {"a buffer that is that of the level, and of the references", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             sps.level_idc = 40;
             sps.pic_width_in_mbs_minus1 = 119;
             sps.pic_height_in_map_units_minus1 = 67;
             sps.max_num_ref_frames = 4;
             restricted(sps).max_dec_frame_buffering = 4;
         });
     }},
    {"low delay at a rate that is not fixed", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             timed(sps).fixed_frame_rate_flag = false;
             nal_hrd(sps);
             vui(sps).low_delay_hrd_flag = true;
         });
     }},
    {"the rates and buffers of level 3", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             nal_hrd(sps).bit_rate_value_minus1[0] = 187499;
             vcl_hrd(sps).bit_rate_value_minus1[0] = 156249;
             vui(sps).nal_hrd_parameters.cpb_size_value_minus1[0] = 749999;
             vui(sps).vcl_hrd_parameters.cpb_size_value_minus1[0] = 624999;
         });
     }},
    {"schedules that go up", "",
     [] {
         return with_sps([](seq_parameter_set_data& sps) {
             hrd_parameters& hrd = nal_hrd(sps);
             hrd.cpb_cnt_minus1 = 1;
             hrd.bit_rate_value_minus1[1] = hrd.bit_rate_value_minus1[0] + 1;
             hrd.cpb_size_value_minus1[1] = hrd.cpb_size_value_minus1[0];
         });
     }},
    {"SPS id 31", "", [] { return with_sps([](seq_parameter_set_data& sps) { sps.seq_parameter_set_id = 31; }); }},
    {"CABAC in Main", "",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             static_cast<void>(sps);
             pps.entropy_coding_mode_flag = true;
         });
     }},
    {"weights in Main", "",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             static_cast<void>(sps);
             pps.weighted_pred_flag = true;
             pps.weighted_bipred_idc = 2;
         });
     }},
    {"slice groups and redundant pictures in Baseline", "",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 66;
             pps.num_slice_groups_minus1 = 1;
             pps.redundant_pic_cnt_present_flag = true;
         });
     }},
    {"8x8 transforms, lists and another offset in High", "",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 100;
             pps.transform_8x8_mode_sent = true;
             pps.transform_8x8_mode_flag = true;
             pps.pic_scaling_matrix_present_flag = true;
             pps.second_chroma_qp_index_offset = 2;
         });
     }},
    {"a rectangle to the last map unit", "",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 66;
             pps.num_slice_groups_minus1 = 1;
             pps.slice_group_map_type = 2;
             pps.bottom_right[0] = 11;
         });
     }},
    {"a map of 12 units", "",
     [] {
         return with_pps([](seq_parameter_set_data& sps, pic_parameter_set_rbsp& pps) {
             sps.profile_idc = 66;
             pps.num_slice_groups_minus1 = 1;
             pps.slice_group_map_type = 6;
             pps.pic_size_in_map_units_minus1 = 11;
             pps.slice_group_id.resize(12);
         });
     }},
};

const support::planted_table here("parameter_sets", planted);

} // namespace
