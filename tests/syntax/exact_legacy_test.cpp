// The SPS of the legacy interface against this reading, field by field, over every real stream. Where they depart from
// one another the table says so; docs/deviations.md tells why.
#include "support/exact_comparison.h"

#include <orv-utils-v4/h264_legacy.h>

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

constexpr departure departures[] = {
    {"chroma_format_idc", true}, // of profiles that do not tell it, not inferred
    {"bit_depth_luma", true},
    {"bit_depth_chroma", true},
    {"final_frame_width", false}, // without a chroma format crop units are luma samples
    {"final_frame_height", false},
    // the unit is read in another way behind them
    {"profiles of depth and of two resolutions", false}, // they do not tell the chroma format
    {"codes of 24 zeros and more", false},
};

/// Told of an SPS: whether it has a code that the legacy interface reads in another way.
class long_codes : public visitor {
public:
    void open(const char*) override {}
    void close() override {}
    void element(const traced_element& e) override
    {
        constexpr std::uint64_t of_24_zeros = 49;
        any = any || ((e.how == coding::ue || e.how == coding::se) && e.bits >= of_24_zeros);
    }

    bool any = false;
};

class comparing : public exact_comparison {
public:
    visitor* before(const unit_place&) override { return &(codes = long_codes()); }

private:
    void compare(const unit_reading& reading) override
    {
        const auto* const set = std::get_if<seq_parameter_set_rbsp>(&reading.unit.rbsp);
        if (set == nullptr || reading.result.failure)
            return;
        const std::uint8_t profile_idc = set->seq_parameter_set_data.profile_idc;
        if (profile_idc == 134 || profile_idc == 135 || profile_idc == 138 || profile_idc == 139)
            return static_cast<void>(shown.insert("profiles of depth and of two resolutions"));
        if (codes.any)
            return static_cast<void>(shown.insert("codes of 24 zeros and more"));
        ++compared["sps"];
        rbsp.resize(rbsp.size() + 64); // the parse is open-ended
        be_bitfield bits;
        be_bitfield_open(&bits, rbsp.data() + 1);
        h264_sps old;
        old.parse_sps(bits);
        hold_sps(old, set->seq_parameter_set_data);
        if (set->seq_parameter_set_data.vui_parameters_present_flag)
            hold_vui(old, set->seq_parameter_set_data.vui_parameters);
    }

    long_codes codes;

    /// Numbers of any width.
    void hold_number(const char* name, std::uint64_t old, std::uint64_t now) { hold(name, old, now); }

    void hold_sps(h264_sps& old, const seq_parameter_set_data& now)
    {
        hold_number("profile_idc", old.profile_idc, now.profile_idc);
        hold_number("constraint_set0_flag", old.constraint_set0_flag, now.constraint_set0_flag);
        hold_number("constraint_set1_flag", old.constraint_set1_flag, now.constraint_set1_flag);
        hold_number("constraint_set2_flag", old.constraint_set2_flag, now.constraint_set2_flag);
        hold_number("constraint_set3_flag", old.constraint_set3_flag, now.constraint_set3_flag);
        hold_number("constraint_set4_flag", old.constraint_set4_flag, now.constraint_set4_flag);
        hold_number("constraint_set5_flag", old.constraint_set5_flag, now.constraint_set5_flag);
        hold_number("reserved_zero_2bits", old.reserved_zero_2bits, now.reserved_zero_2bits);
        hold_number("level_idc", old.level_idc, now.level_idc);
        hold_number("seq_parameter_set_id", old.seq_parameter_set_id, now.seq_parameter_set_id);
        hold_number("chroma_format_idc", old.chroma_format_idc, now.chroma_format_idc);
        hold_number("separate_colour_plane_flag", old.separate_colour_plane_flag, now.separate_colour_plane_flag);
        hold_number("bit_depth_luma", old.bit_depth_luma, BitDepthY(now));
        hold_number("bit_depth_chroma", old.bit_depth_chroma, BitDepthC(now));
        hold_number("qpprime_y_zero_transform_bypass_flag", old.qprime_y_zero_transform_bypass_flag,
                    now.qpprime_y_zero_transform_bypass_flag);
        hold_number("seq_scaling_matrix_present_flag", old.seq_scaling_matrix_present_flag,
                    now.seq_scaling_matrix_present_flag);
        hold_number("max_frame_num", old.max_frame_num, MaxFrameNum(now));
        hold_number("pic_order_cnt_type", old.pic_order_cnt_type, now.pic_order_cnt_type);
        hold_number("max_pic_order_cnt_lsb", old.max_pic_order_cnt_lsb,
                    now.pic_order_cnt_type == 0 ? pic_order_cnt_lsb_bits(now) : 0);
        hold_number("delta_pic_order_always_zero_flag", old.delta_pic_order_always_zero_flag,
                    now.delta_pic_order_always_zero_flag);
        hold_number("max_num_ref_frames", old.max_num_ref_frames, now.max_num_ref_frames);
        hold_number("gaps_in_frame_num_value_allowed_flag", old.gaps_in_frame_num_value_allowed_flag,
                    now.gaps_in_frame_num_value_allowed_flag);
        hold_number("pic_width_in_mbs", old.pic_width_in_mbps, PicWidthInMbs(now));
        hold_number("pic_height_in_map_units", old.pic_height_in_map_units, PicHeightInMapUnits(now));
        hold_number("frame_mbs_only_flag", old.frame_mbs_only_flag, now.frame_mbs_only_flag);
        hold_number("mb_adaptive_frame_field_flag", old.mb_adaptive_frame_field_flag, now.mb_adaptive_frame_field_flag);
        hold_number("direct_8x8_inference_flag", old.direct_8x8_inference_flag, now.direct_8x8_inference_flag);
        hold_number("frame_cropping_flag", old.frame_cropping_flag, now.frame_cropping_flag);
        hold_number("frame_crop_left_offset", old.frame_crop_left_offset, now.frame_crop_left_offset);
        hold_number("frame_crop_right_offset", old.frame_crop_right_offset, now.frame_crop_right_offset);
        hold_number("frame_crop_top_offset", old.frame_crop_top_offset, now.frame_crop_top_offset);
        hold_number("frame_crop_bottom_offset", old.frame_crop_bottom_offset, now.frame_crop_bottom_offset);
        hold_number("vui_parameters_present_flag", old.vui_parameters_present_flag, now.vui_parameters_present_flag);
        hold_number("final_frame_width", static_cast<unsigned>(old.get_final_frame_width()), cropped_size(now).width);
        hold_number("final_frame_height", static_cast<unsigned>(old.get_final_frame_height()),
                    cropped_size(now).height);
    }

    void hold_vui(h264_sps& old, const vui_parameters& now)
    {
        hold_number("aspect_ratio_info_present_flag", old.aspect_ratio_info_present_flag,
                    now.aspect_ratio_info_present_flag);
        hold_number("aspect_ratio_idc", old.aspect_ratio_idc, now.aspect_ratio_idc);
        const ratio sar = sample_aspect_ratio(now);
        if (sar.numerator != 0) {
            hold_number("sar_width", old.sar_width, sar.numerator);
            hold_number("sar_height", old.sar_height, sar.denominator);
        }
        hold_number("overscan_info_present_flag", old.overscan_info_present_flag, now.overscan_info_present_flag);
        hold_number("overscan_appropriate_flag", old.overscan_info_appropriate_flag, now.overscan_appropriate_flag);
        hold_number("video_signal_type_present_flag", old.video_signal_type_present_flag,
                    now.video_signal_type_present_flag);
        if (now.video_signal_type_present_flag) {
            hold_number("video_format", old.video_format, now.video_format);
            hold_number("video_full_range_flag", old.video_full_range_flag, now.video_full_range_flag);
        }
        if (now.colour_description_present_flag) {
            hold_number("colour_primaries", old.colour_primaries, now.colour_primaries);
            hold_number("transfer_characteristics", old.transfer_characteristics, now.transfer_characteristics);
            hold_number("matrix_coefficients", old.matrix_coefficients, now.matrix_coefficients);
        }
        hold_number("chroma_loc_info_present_flag", old.chroma_location_info_present_flag,
                    now.chroma_loc_info_present_flag);
        hold_number("chroma_sample_loc_type_top_field", old.chroma_sample_location_type_top_field,
                    now.chroma_sample_loc_type_top_field);
        hold_number("chroma_sample_loc_type_bottom_field", old.chroma_sample_location_type_bottom_field,
                    now.chroma_sample_loc_type_bottom_field);
        hold_number("timing_info_present_flag", old.timing_info_present_flag, now.timing_info_present_flag);
        hold_number("num_units_in_tick", old.num_units_in_ticks, now.num_units_in_tick);
        hold_number("time_scale", old.time_scale, now.time_scale);
        hold_number("fixed_frame_rate_flag", old.fixed_frame_rate_flag, now.fixed_frame_rate_flag);
        hold_number("nal_hrd_parameters_present_flag", old.nal_hrd_parameters_present_flag,
                    now.nal_hrd_parameters_present_flag);
        hold_number("vcl_hrd_parameters_present_flag", old.vcl_hrd_parameters_present_flag,
                    now.vcl_hrd_parameters_present_flag);
        hold_number("pic_struct_present_flag", old.pic_struct_present_flag, now.pic_struct_present_flag);
        const hrd_parameters* const hrd =
            now.vcl_hrd_parameters_present_flag ? &now.vcl_hrd_parameters : timing_hrd(now); // the one read last
        if (hrd == nullptr)
            return;
        ++compared["hrd"];
        hold_number("low_delay_hrd_flag", old.low_delay_hrd_flag, now.low_delay_hrd_flag);
        hold_number("initial_cpb_removal_delay_length", old.initial_cpb_removal_delay_length,
                    hrd->initial_cpb_removal_delay_length_minus1 + 1U);
        hold_number("cpb_removal_delay_length", old.cpb_removal_delay_length,
                    hrd->cpb_removal_delay_length_minus1 + 1U);
        hold_number("dpb_output_delay_length", old.dpb_output_delay_length, hrd->dpb_output_delay_length_minus1 + 1U);
        hold_number("time_offset_length", old.time_offset_length, hrd->time_offset_length);
    }
};

TEST(ExactLegacy, SpsDepartsInWhatTheTableSaysAlone)
{
    check_departures<comparing>(departures, {"sps", "hrd"});
}

} // namespace
