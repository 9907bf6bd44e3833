// Rules over sequence parameter sets: what their elements say together (H.264 7.4.2.1.1, Annexes A and E). Ranges of
// single elements are in the texts of the syntax library, and told by value-in-range.
#include "check/facts.h"
#include "check/profile_numbers.h"

#include <array>
#include <cmath>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

bool is_one_of(unsigned value, std::initializer_list<unsigned> list)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

verdict known_profile(const sps_facts& f)
{
    if (h264::profile_name(f.sps)[0] != '\0')
        return {};
    return breach_of("profile_idc", f.sps.profile_idc, "a profile of Annex A, G, H, I or J");
}

verdict known_level(const sps_facts& f)
{
    if (h264::limits_of_level(f.sps) != nullptr)
        return {};
    return breach_of("level_idc", f.sps.level_idc, "a level of Table A-1");
}

/// The greatest chroma_format_idc of the profiles that send it.
std::uint32_t greatest_chroma_format(unsigned profile)
{
    if (is_one_of(profile, {high_444, cavlc_444}))
        return 3;
    return profile == high_422 ? 2 : 1;
}

verdict chroma_format_of_profile(const sps_facts& f)
{
    const std::uint32_t most = greatest_chroma_format(f.sps.profile_idc);
    if (f.is_subset || f.sps.chroma_format_idc <= most)
        return {};
    return breach_of("chroma_format_idc", f.sps.chroma_format_idc,
                     fmt::format("at most {} in the {} profile", most, h264::profile_name(f.sps)));
}

/// Of luma and chroma, in bits.
std::uint64_t greatest_bit_depth(unsigned profile)
{
    if (is_one_of(profile, {high_444, cavlc_444}))
        return 14;
    return is_one_of(profile, {high_10, high_422}) ? 10 : 8;
}

verdict luma_depth_of_profile(const sps_facts& f)
{
    const std::uint64_t most = greatest_bit_depth(f.sps.profile_idc);
    if (f.is_subset || h264::BitDepthY(f.sps) <= most)
        return {};
    return breach_of("bit_depth_luma_minus8", f.sps.bit_depth_luma_minus8,
                     fmt::format("at most {} in the {} profile", most - 8, h264::profile_name(f.sps)));
}

verdict chroma_depth_of_profile(const sps_facts& f)
{
    const std::uint64_t most = greatest_bit_depth(f.sps.profile_idc);
    if (f.is_subset || h264::BitDepthC(f.sps) <= most)
        return {};
    return breach_of("bit_depth_chroma_minus8", f.sps.bit_depth_chroma_minus8,
                     fmt::format("at most {} in the {} profile", most - 8, h264::profile_name(f.sps)));
}

verdict bypass_of_profile(const sps_facts& f)
{
    if (!f.sps.qpprime_y_zero_transform_bypass_flag || is_one_of(f.sps.profile_idc, {high_444, cavlc_444}))
        return {};
    return breach_of("qpprime_y_zero_transform_bypass_flag", 1, "0 but in the 4:4:4 profiles");
}

verdict frames_only_in_baseline(const sps_facts& f)
{
    if (f.sps.profile_idc != baseline || f.sps.frame_mbs_only_flag)
        return {};
    return breach_of("frame_mbs_only_flag", 0, "1 in the Baseline profile");
}

verdict frames_only_at_level(const sps_facts& f)
{
    if (f.sps.frame_mbs_only_flag || f.is_subset || (f.sps.level_idc > 20 && f.sps.level_idc < 42))
        return {};
    const h264::level_limits* const level = h264::limits_of_level(f.sps);
    if (level == nullptr || f.sps.profile_idc == baseline)
        return {};
    return breach_of("frame_mbs_only_flag", 0,
                     fmt::format("1 at level {} (fields are for levels 2.1 to 4.1)", level->name));
}

verdict direct_inference_of_fields(const sps_facts& f)
{
    if (f.sps.frame_mbs_only_flag || f.sps.direct_8x8_inference_flag)
        return {};
    return breach_of("direct_8x8_inference_flag", 0, "1 where frame_mbs_only_flag is 0");
}

verdict direct_inference_of_extended(const sps_facts& f)
{
    if (f.sps.profile_idc != extended || f.sps.direct_8x8_inference_flag)
        return {};
    return breach_of("direct_8x8_inference_flag", 0, "1 in the Extended profile");
}

verdict crop_inside_picture(const sps_facts& f)
{
    const h264::picture_size left = h264::cropped_size(f.sps);
    if (!f.sps.frame_cropping_flag || (left.width != 0 && left.height != 0))
        return {};
    const h264::picture_size whole = h264::coded_size(f.sps);
    return breach_of("frame_cropping_flag",
                     fmt::format("{} + {} units of {}, {} + {} of {}", f.sps.frame_crop_left_offset,
                                 f.sps.frame_crop_right_offset, whole.width, f.sps.frame_crop_top_offset,
                                 f.sps.frame_crop_bottom_offset, whole.height),
                     "less than the picture");
}

verdict frame_size_at_level(const sps_facts& f)
{
    const h264::level_limits* const level = h264::limits_of_level(f.sps);
    const std::uint64_t size = h264::picture_area(h264::PicWidthInMbs(f.sps), h264::FrameHeightInMbs(f.sps));
    if (level == nullptr || size <= level->MaxFS)
        return {};
    return breach_of("level_idc", fmt::format("{} macroblocks a frame at level {}", size, level->name),
                     fmt::format("MaxFS {}", level->MaxFS));
}

verdict frame_shape_at_level(const sps_facts& f)
{
    const h264::level_limits* const level = h264::limits_of_level(f.sps);
    const std::uint64_t side = std::max(h264::PicWidthInMbs(f.sps), h264::FrameHeightInMbs(f.sps));
    if (level == nullptr || h264::picture_area(side, side) <= std::uint64_t{level->MaxFS} * 8)
        return {};
    return breach_of(
        "level_idc", fmt::format("a side of {} macroblocks at level {}", side, level->name),
        fmt::format("at most {}, the root of 8 * MaxFS", static_cast<unsigned>(std::sqrt(level->MaxFS * 8.0))));
}

verdict macroblock_rate_at_level(const sps_facts& f)
{
    const h264::level_limits* const level = h264::limits_of_level(f.sps);
    const h264::ratio rate = h264::frame_rate(f.vui());
    const std::uint64_t size = h264::PicSizeInMbs(f.sps, false);
    if (level == nullptr || rate.denominator == 0 || !f.vui().fixed_frame_rate_flag || size > level->MaxFS)
        return {};
    const auto per_second =
        static_cast<double>(size) * static_cast<double>(rate.numerator) / static_cast<double>(rate.denominator);
    if (per_second <= level->MaxMBPS)
        return {};
    return breach_of("time_scale", fmt::format("{:.0f} macroblocks a second at level {}", per_second, level->name),
                     fmt::format("MaxMBPS {}", level->MaxMBPS));
}

verdict references_in_buffer(const sps_facts& f)
{
    const std::uint32_t most = h264::MaxDpbFrames(f.sps);
    if (h264::limits_of_level(f.sps) == nullptr || f.sps.max_num_ref_frames <= most)
        return {};
    return breach_of("max_num_ref_frames", f.sps.max_num_ref_frames, fmt::format("at most MaxDpbFrames {}", most));
}

verdict buffering_in_buffer(const sps_facts& f)
{
    const std::uint32_t most = h264::MaxDpbFrames(f.sps);
    if (!f.vui().bitstream_restriction_flag || f.vui().max_dec_frame_buffering <= most)
        return {};
    return breach_of("max_dec_frame_buffering", f.vui().max_dec_frame_buffering,
                     fmt::format("at most MaxDpbFrames {}", most));
}

verdict buffering_holds_references(const sps_facts& f)
{
    if (!f.vui().bitstream_restriction_flag || f.vui().max_dec_frame_buffering >= f.sps.max_num_ref_frames)
        return {};
    return breach_of("max_dec_frame_buffering", f.vui().max_dec_frame_buffering,
                     fmt::format("at least max_num_ref_frames {}", f.sps.max_num_ref_frames));
}

verdict reordering_in_buffering(const sps_facts& f)
{
    if (!f.vui().bitstream_restriction_flag || f.vui().max_num_reorder_frames <= f.vui().max_dec_frame_buffering)
        return {};
    return breach_of("max_num_reorder_frames", f.vui().max_num_reorder_frames,
                     fmt::format("at most max_dec_frame_buffering {}", f.vui().max_dec_frame_buffering));
}

verdict no_low_delay_at_a_fixed_rate(const sps_facts& f)
{
    const bool sent = f.vui().nal_hrd_parameters_present_flag || f.vui().vcl_hrd_parameters_present_flag;
    if (!sent || !f.vui().fixed_frame_rate_flag || !f.vui().low_delay_hrd_flag)
        return {};
    return breach_of("low_delay_hrd_flag", 1, "0 where fixed_frame_rate_flag is 1");
}

verdict hrds_share_their_lengths(const sps_facts& f)
{
    const h264::vui_parameters& vui = f.vui();
    if (!vui.nal_hrd_parameters_present_flag || !vui.vcl_hrd_parameters_present_flag)
        return {};
    const auto lengths = [](const h264::hrd_parameters& hrd) {
        return std::array{hrd.initial_cpb_removal_delay_length_minus1, hrd.cpb_removal_delay_length_minus1,
                          hrd.dpb_output_delay_length_minus1, hrd.time_offset_length};
    };
    if (lengths(vui.nal_hrd_parameters) == lengths(vui.vcl_hrd_parameters))
        return {};
    return breach_of("initial_cpb_removal_delay_length_minus1", "other lengths for VCL than for NAL", "the same");
}

/// cpbBrNalFactor of Table A-2 is 1.2 times this; 1000 where the profile has no row.
std::uint64_t vcl_factor(unsigned profile)
{
    if (profile == high)
        return 1250;
    if (profile == high_10)
        return 3000;
    return is_one_of(profile, {high_422, high_444, cavlc_444}) ? 4000 : 1000;
}

using limit_of_row = std::uint32_t h264::level_limits::*;

/// The lowest schedule has to keep to the level.
verdict hrd_keeps_to_level(const sps_facts& f, const h264::hrd_parameters& hrd, bool nal, limit_of_row which,
                           std::string_view element)
{
    const h264::level_limits* const level = h264::limits_of_level(f.sps);
    if (level == nullptr || f.is_subset)
        return {};
    const std::uint64_t factor = vcl_factor(f.sps.profile_idc) * (nal ? 6 : 5) / 5;
    const std::uint64_t most = level->*which * factor;
    std::uint64_t lowest = ~std::uint64_t{0};
    for (std::uint32_t i = 0; i < h264::schedule_count(hrd); ++i)
        lowest = std::min(lowest, which == &h264::level_limits::MaxBR ? h264::BitRate(hrd, i) : h264::CpbSize(hrd, i));
    if (lowest <= most)
        return {};
    return breach_of(element, fmt::format("{} at level {}", lowest, level->name), fmt::format("at most {}", most));
}

verdict nal_rate_at_level(const sps_facts& f)
{
    if (!f.vui().nal_hrd_parameters_present_flag)
        return {};
    return hrd_keeps_to_level(f, f.vui().nal_hrd_parameters, true, &h264::level_limits::MaxBR,
                              "bit_rate_value_minus1[0]");
}

verdict vcl_rate_at_level(const sps_facts& f)
{
    if (!f.vui().vcl_hrd_parameters_present_flag)
        return {};
    return hrd_keeps_to_level(f, f.vui().vcl_hrd_parameters, false, &h264::level_limits::MaxBR,
                              "bit_rate_value_minus1[0]");
}

verdict nal_buffer_at_level(const sps_facts& f)
{
    if (!f.vui().nal_hrd_parameters_present_flag)
        return {};
    return hrd_keeps_to_level(f, f.vui().nal_hrd_parameters, true, &h264::level_limits::MaxCPB,
                              "cpb_size_value_minus1[0]");
}

verdict vcl_buffer_at_level(const sps_facts& f)
{
    if (!f.vui().vcl_hrd_parameters_present_flag)
        return {};
    return hrd_keeps_to_level(f, f.vui().vcl_hrd_parameters, false, &h264::level_limits::MaxCPB,
                              "cpb_size_value_minus1[0]");
}

/// Rates go up and sizes go down from schedule to schedule.
verdict schedules_are_ordered(const sps_facts& f)
{
    const h264::vui_parameters& vui = f.vui();
    for (const auto* const hrd : {vui.nal_hrd_parameters_present_flag ? &vui.nal_hrd_parameters : nullptr,
                                  vui.vcl_hrd_parameters_present_flag ? &vui.vcl_hrd_parameters : nullptr})
        for (std::uint32_t i = 1; hrd != nullptr && i < h264::schedule_count(*hrd); ++i) {
            if (hrd->bit_rate_value_minus1[i] <= hrd->bit_rate_value_minus1[i - 1])
                return breach_of(fmt::format("bit_rate_value_minus1[{}]", i), hrd->bit_rate_value_minus1[i],
                                 "more than that of the schedule before");
            if (hrd->cpb_size_value_minus1[i] > hrd->cpb_size_value_minus1[i - 1])
                return breach_of(fmt::format("cpb_size_value_minus1[{}]", i), hrd->cpb_size_value_minus1[i],
                                 "at most that of the schedule before");
        }
    return {};
}

verdict matrix_fits_format(const sps_facts& f)
{
    constexpr unsigned identity = 0;
    if (f.vui().matrix_coefficients != identity ||
        (h264::BitDepthY(f.sps) == h264::BitDepthC(f.sps) && f.sps.chroma_format_idc == 3))
        return {};
    return breach_of("matrix_coefficients", identity, "not 0 unless 4:4:4 with equal bit depths");
}

verdict chroma_location_fits_format(const sps_facts& f)
{
    if (!f.vui().chroma_loc_info_present_flag || f.sps.chroma_format_idc == 1)
        return {};
    return breach_of("chroma_loc_info_present_flag", 1, "0 unless 4:2:0");
}

verdict extended_sar_is_told(const sps_facts& f)
{
    constexpr unsigned Extended_SAR = 255;
    const h264::vui_parameters& vui = f.vui();
    if (vui.aspect_ratio_idc != Extended_SAR || (vui.sar_width != 0 && vui.sar_height != 0))
        return {};
    return breach_of(vui.sar_width == 0 ? "sar_width" : "sar_height", 0, "above 0, or the ratio is unspecified");
}

verdict vectors_have_a_length(const sps_facts& f)
{
    constexpr unsigned older = 16;
    if (f.vui().log2_max_mv_length_horizontal != older && f.vui().log2_max_mv_length_vertical != older)
        return {};
    return breach_of(f.vui().log2_max_mv_length_horizontal == older ? "log2_max_mv_length_horizontal"
                                                                    : "log2_max_mv_length_vertical",
                     older, "at most 15; older editions allow 16");
}

verdict vectors_at_level(const sps_facts& f)
{
    const h264::level_limits* const level = h264::limits_of_level(f.sps);
    const std::uint32_t bits = f.vui().log2_max_mv_length_vertical;
    if (level == nullptr || !f.vui().bitstream_restriction_flag || bits > 15 || 1U << bits <= 4 * level->MaxVmvR)
        return {};
    return breach_of(
        "log2_max_mv_length_vertical", fmt::format("{} at level {}", bits, level->name),
        fmt::format("vectors of at most {} lines, which is {} quarters", level->MaxVmvR, 4 * level->MaxVmvR));
}

verdict constrained_baseline_flag(const sps_facts& f)
{
    if (!is_one_of(f.sps.profile_idc, {high, high_10, high_422, high_444, cavlc_444}) || !f.sps.constraint_set1_flag)
        return {};
    return breach_of("constraint_set1_flag", 1, "0 where profile_idc is 100 or above, which Main decoders do not read");
}

verdict frames_only_in_progressive_high(const sps_facts& f)
{
    if (!is_one_of(f.sps.profile_idc, {main_profile, extended, high, high_10}) || !f.sps.constraint_set4_flag ||
        f.sps.frame_mbs_only_flag)
        return {};
    return breach_of("constraint_set4_flag", 1, "0 where frame_mbs_only_flag is 0");
}

using enum severity;

constexpr rule_over<sps_facts> of_sps[] = {
    {{"sps-direct-inference-with-fields", error, "7.4.2.1.1", "direct_8x8_inference_flag is 1 where fields are allowed",
      "Decoders derive direct motion vectors of fields from the corners of 8x8 blocks alone.",
      "frame_mbs_only_flag 0 with direct_8x8_inference_flag 0"},
     direct_inference_of_fields},
    {{"sps-crop-inside-picture", error, "7.4.2.1.1", "the cropping leaves some of the picture",
      "The offsets are in units of 1, 2 or 4 luma samples by chroma format and frame_mbs_only_flag; players that "
      "compute "
      "a negative size fail in ways of their own.",
      "frame_crop_bottom_offset 100 in a picture of 144 lines, 4:2:0"},
     crop_inside_picture},
    {{"sps-profile-known", error, "A.2", "profile_idc is that of a profile",
      "A decoder that does not know the profile refuses the stream.", "profile_idc 0"},
     known_profile},
    {{"sps-baseline-frames", error, "A.2.1", "Baseline streams have frames only",
      "Decoders of the Baseline profile know no fields and no macroblock pairs.",
      "profile_idc 66, frame_mbs_only_flag 0"},
     frames_only_in_baseline},
    {{"sps-extended-direct-inference", error, "A.2.3", "direct_8x8_inference_flag is 1 in the Extended profile",
      "It is a constraint of the profile.", "profile_idc 88, direct_8x8_inference_flag 0"},
     direct_inference_of_extended},
    {{"sps-chroma-format-in-profile", error, "A.2.4", "chroma_format_idc is one that the profile has",
      "4:2:2 begins with High 4:2:2, 4:4:4 with High 4:4:4 Predictive.", "profile_idc 100, chroma_format_idc 2"},
     chroma_format_of_profile},
    {{"sps-luma-depth-in-profile", error, "A.2.4", "the bit depth of luma is one that the profile has",
      "High has 8 bits, High 10 and High 4:2:2 up to 10, the 4:4:4 profiles up to 14.",
      "profile_idc 100, bit_depth_luma_minus8 2"},
     luma_depth_of_profile},
    {{"sps-chroma-depth-in-profile", error, "A.2.4", "the bit depth of chroma is one that the profile has",
      "High has 8 bits, High 10 and High 4:2:2 up to 10, the 4:4:4 profiles up to 14.",
      "profile_idc 100, bit_depth_chroma_minus8 2"},
     chroma_depth_of_profile},
    {{"sps-bypass-in-profile", error, "A.2.4", "lossless macroblocks are for the 4:4:4 profiles",
      "qpprime_y_zero_transform_bypass_flag takes the transform away at the lowest quantiser.",
      "profile_idc 100, qpprime_y_zero_transform_bypass_flag 1"},
     bypass_of_profile},
    {{"sps-main-flag-of-high", warning, "A.2.2", "a stream of a High profile does not say that Main decoders read it",
      "constraint_set1_flag promises what A.2.2 asks for, of which transform_8x8_mode_flag 0 and no scaling lists are "
      "part.",
      "profile_idc 100, constraint_set1_flag 1"},
     constrained_baseline_flag},
    {{"sps-progressive-flag", error, "A.2.4", "constraint_set4_flag is for streams of frames",
      "It says that frame_mbs_only_flag is 1.", "profile_idc 100, constraint_set4_flag 1, frame_mbs_only_flag 0"},
     frames_only_in_progressive_high},
    {{"sps-level-known", error, "A.3", "level_idc is that of a level",
      "Nobody knows how much memory and time such a stream takes.", "level_idc 255"},
     known_level},
    {{"sps-frame-size-at-level", error, "A.3.1", "a frame has at most MaxFS macroblocks",
      "Decoders make room for what the level allows.", "4096x2304 at level 1"},
     frame_size_at_level},
    {{"sps-frame-shape-at-level", error, "A.3.1", "no side of a frame is longer than the root of 8 * MaxFS",
      "Line buffers of decoders have that length.", "a frame of 4096x16 at level 1"},
     frame_shape_at_level},
    {{"sps-references-in-buffer", error, "A.3.1", "max_num_ref_frames is at most MaxDpbFrames",
      "The decoded picture buffer of the level holds so many frames of this size.",
      "max_num_ref_frames 16 for 1920x1080 at level 4"},
     references_in_buffer},
    {{"sps-fields-at-level", error, "A.3.3", "fields are for levels 2.1 to 4.1",
      "frame_mbs_only_flag has to be 1 at all other levels.", "frame_mbs_only_flag 0 at level 5"},
     frames_only_at_level},
    {{"sps-macroblock-rate-at-level", error, "A.3.1", "a fixed frame rate has at most MaxMBPS macroblocks a second",
      "What is looked at is the rate that the SPS promises.", "1920x1088 at 60 Hz, level 4"},
     macroblock_rate_at_level},
    {{"hrd-nal-rate-at-level", error, "A.3.1", "the NAL HRD has a bit rate that the level allows",
      "One schedule at least has to keep to MaxBR of the level.", "20 Mbit/s at level 3"},
     nal_rate_at_level},
    {{"hrd-vcl-rate-at-level", error, "A.3.1", "the VCL HRD has a bit rate that the level allows",
      "One schedule at least has to keep to MaxBR of the level.", "20 Mbit/s at level 3"},
     vcl_rate_at_level},
    {{"hrd-nal-buffer-at-level", error, "A.3.1", "the NAL HRD has a buffer that the level allows",
      "One schedule at least has to keep to MaxCPB of the level.", "a buffer of 100 Mbit at level 3"},
     nal_buffer_at_level},
    {{"hrd-vcl-buffer-at-level", error, "A.3.1", "the VCL HRD has a buffer that the level allows",
      "One schedule at least has to keep to MaxCPB of the level.", "a buffer of 100 Mbit at level 3"},
     vcl_buffer_at_level},
    {{"vui-extended-ratio", warning, "E.2.1", "an Extended_SAR has a width and a height",
      "With one of them 0 the ratio is unspecified, and players guess.", "aspect_ratio_idc 255, sar_width 0"},
     extended_sar_is_told},
    {{"vui-matrix-fits-format", error, "E.2.1", "matrix_coefficients 0 is for 4:4:4 with equal bit depths",
      "0 says that the components are G, B and R as they are.", "matrix_coefficients 0 in a 4:2:0 stream"},
     matrix_fits_format},
    {{"vui-chroma-location-fits-format", error, "E.2.1", "only 4:2:0 has locations of chroma samples",
      "In the other formats they lie where Table 6-1 puts them.", "chroma_loc_info_present_flag 1 in a 4:2:2 stream"},
     chroma_location_fits_format},
    {{"vui-low-delay-at-fixed-rate", error, "E.2.1", "a fixed frame rate leaves no room for big pictures",
      "low_delay_hrd_flag lets a picture come late, which a fixed rate forbids.",
      "fixed_frame_rate_flag 1, low_delay_hrd_flag 1"},
     no_low_delay_at_a_fixed_rate},
    {{"vui-vector-length", warning, "E.2.1", "log2_max_mv_length_* are at most 15",
      "Older editions allow 16, which some encoders write for no limit.", "log2_max_mv_length_horizontal 16"},
     vectors_have_a_length},
    {{"vui-vertical-vectors-at-level", warning, "A.3.1", "vertical vectors keep to MaxVmvR of the level",
      "The element says how long they may be, not that any is.", "log2_max_mv_length_vertical 12 at level 1"},
     vectors_at_level},
    {{"vui-reordering-in-buffering", error, "E.2.1", "max_num_reorder_frames is at most max_dec_frame_buffering",
      "Frames that wait for others wait in the buffer.", "max_num_reorder_frames 3, max_dec_frame_buffering 2"},
     reordering_in_buffering},
    {{"vui-buffering-in-buffer", error, "E.2.1", "max_dec_frame_buffering is at most MaxDpbFrames",
      "It is the room that the stream needs of what the level has.", "max_dec_frame_buffering 16 for 1080p at level 4"},
     buffering_in_buffer},
    {{"vui-buffering-holds-references", error, "E.2.1", "max_dec_frame_buffering is at least max_num_ref_frames",
      "References lie in the buffer.", "max_dec_frame_buffering 1, max_num_ref_frames 4"},
     buffering_holds_references},
    {{"hrd-schedules-ordered", error, "E.2.2", "rates go up from schedule to schedule, and buffers do not",
      "A later schedule is a faster one with no larger buffer.", "bit_rate_value_minus1 100 behind 200"},
     schedules_are_ordered},
    {{"hrd-lengths-agree", error, "E.2.2", "NAL and VCL HRD have delays of the same lengths",
      "Picture timing has one delay for both.", "cpb_removal_delay_length_minus1 23 and 15"},
     hrds_share_their_lengths},
};

} // namespace

std::span<const rule_over<sps_facts>> sps_rules()
{
    return of_sps;
}

} // namespace orv_h264
