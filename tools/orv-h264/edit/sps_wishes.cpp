#include "edit/sps_wishes.h"

#include "stream_input.h"

#include <algorithm>
#include <iterator>
#include <numeric>

#include <fmt/format.h>

namespace orv_h264::editing {

namespace {

using h264::seq_parameter_set_data;

/// A level and its level_idc; 1b has 9, or 11 and constraint_set3_flag in the profiles that are older than it (A.3.1).
struct named_level {
    const char* name;
    std::uint8_t level_idc;
};

// H.264 Table A-1, the lowest first
constexpr named_level named_levels[] = {
    {"1", 10},   {"1b", 9},   {"1.1", 11}, {"1.2", 12}, {"1.3", 13}, {"2", 20},   {"2.1", 21},
    {"2.2", 22}, {"3", 30},   {"3.1", 31}, {"3.2", 32}, {"4", 40},   {"4.1", 41}, {"4.2", 42},
    {"5", 50},   {"5.1", 51}, {"5.2", 52}, {"6", 60},   {"6.1", 61}, {"6.2", 62},
};

constexpr std::uint8_t level_1b = 9;

bool has_flag_for_1b(const seq_parameter_set_data& sps)
{
    return sps.profile_idc == 66 || sps.profile_idc == 77 || sps.profile_idc == 88;
}

/// The SPS at another level.
seq_parameter_set_data at_level(seq_parameter_set_data sps, std::uint8_t level_idc)
{
    sps.level_idc = level_idc;
    if (has_flag_for_1b(sps)) {
        sps.constraint_set3_flag = level_idc == level_1b;
        sps.level_idc = level_idc == level_1b ? 11 : level_idc;
    }
    return sps;
}

/// Frames that the decoded picture buffer has to hold.
std::uint32_t frames_needed(const seq_parameter_set_data& sps)
{
    const bool told = sps.vui_parameters_present_flag && sps.vui_parameters.bitstream_restriction_flag;
    return std::max(sps.max_num_ref_frames, told ? sps.vui_parameters.max_dec_frame_buffering : 0);
}

/// A.3.1 and A.3.2: MaxFS, the sides of the picture, MaxMBPS where there is a rate, and MaxDpbMbs.
bool is_allowed(const seq_parameter_set_data& sps, const h264::ratio& frames_in_second)
{
    const h264::level_limits& limits = *h264::limits_of_level(sps);
    const std::uint64_t width = h264::PicWidthInMbs(sps);
    const std::uint64_t height = h264::FrameHeightInMbs(sps);
    const std::uint64_t longest_squared = std::uint64_t{8} * limits.MaxFS;
    constexpr std::uint64_t longest = 0xFFFF; // squares of more do not fit
    if (width > longest || height > longest || width * height > limits.MaxFS || width * width > longest_squared ||
        height * height > longest_squared)
        return false;
    if (width * height * frames_in_second.numerator > std::uint64_t{limits.MaxMBPS} * frames_in_second.denominator)
        return false;
    return h264::MaxDpbFrames(sps) >= frames_needed(sps);
}

h264::ratio rate_of(const seq_parameter_set_data& sps, const sps_wishes& wishes)
{
    if (wishes.rate)
        return *wishes.rate;
    return sps.vui_parameters_present_flag ? h264::frame_rate(sps.vui_parameters) : h264::ratio{};
}

seq_parameter_set_data lowest_level(const seq_parameter_set_data& sps, const h264::ratio& rate)
{
    for (const named_level& level : named_levels)
        if (seq_parameter_set_data there = at_level(sps, level.level_idc); is_allowed(there, rate))
            return there;
    throw refusal(exit_usage_or_io, fmt::format("--level auto: no level of Table A-1 allows {} x {} macroblocks{}",
                                                h264::PicWidthInMbs(sps), h264::FrameHeightInMbs(sps),
                                                rate.denominator == 0 ? "" : " at this rate"));
}

class change_list {
public:
    /// Of an element of seq_parameter_set_data(), or of its VUI parameters.
    void add(const char* name, std::int64_t value)
    {
        changes.push_back({std::string("seq_parameter_set_data.") + name, value});
    }
    void add_vui(const char* name, std::int64_t value)
    {
        if (!has_vui)
            add("vui_parameters_present_flag", 1);
        has_vui = true;
        changes.push_back({std::string("seq_parameter_set_data.vui_parameters.") + name, value});
    }

    std::vector<element_value> changes;

private:
    bool has_vui = false;
};

void add_level(change_list& to, const seq_parameter_set_data& sps, const sps_wishes& wishes,
               std::vector<std::string>& remarks)
{
    const h264::ratio rate = rate_of(sps, wishes);
    const auto* const named = std::find_if(std::begin(named_levels), std::end(named_levels),
                                           [&](const named_level& row) { return row.name == wishes.level; });
    const bool automatic = named == std::end(named_levels);
    const seq_parameter_set_data there = automatic ? lowest_level(sps, rate) : at_level(sps, named->level_idc);
    if (automatic && rate.denominator == 0)
        remarks.emplace_back("--level auto: the stream tells no rate, and MaxMBPS is not considered");
    if (!automatic && !is_allowed(there, rate))
        remarks.push_back(fmt::format("--level {}: Table A-1 does not allow the pictures, their rate or their number "
                                      "at this level",
                                      wishes.level));
    if (there.constraint_set3_flag != sps.constraint_set3_flag)
        to.add("constraint_set3_flag", there.constraint_set3_flag ? 1 : 0);
    to.add("level_idc", there.level_idc);
}

/// Of one side, in units; throws where the unit does not divide it.
std::int64_t in_crop_units(const char* side, std::uint32_t samples, std::uint64_t unit)
{
    if (samples % unit != 0)
        throw refusal(exit_usage_or_io, fmt::format("--crop: {} samples {} are no multiple of {}, the unit of this "
                                                    "stream (H.264 7.4.2.1.1)",
                                                    samples, side, unit));
    return static_cast<std::int64_t>(samples / unit);
}

// H.264 (7-19) to (7-22)
void add_crop(change_list& to, const seq_parameter_set_data& sps, const wanted_crop& crop)
{
    const h264::picture_size chroma = h264::chroma_subsampling(sps);
    const std::uint64_t unit_x = chroma.width;
    const std::uint64_t unit_y = chroma.height * (sps.frame_mbs_only_flag ? 1 : 2);
    const h264::picture_size coded = h264::coded_size(sps);
    if (std::uint64_t{crop.left} + crop.right >= coded.width || std::uint64_t{crop.top} + crop.bottom >= coded.height)
        throw refusal(exit_usage_or_io, fmt::format("--crop: nothing is left of {}x{}", coded.width, coded.height));
    const bool any = crop.left != 0 || crop.right != 0 || crop.top != 0 || crop.bottom != 0;
    to.add("frame_cropping_flag", any ? 1 : 0);
    if (!any)
        return;
    to.add("frame_crop_left_offset", in_crop_units("on the left", crop.left, unit_x));
    to.add("frame_crop_right_offset", in_crop_units("on the right", crop.right, unit_x));
    to.add("frame_crop_top_offset", in_crop_units("at the top", crop.top, unit_y));
    to.add("frame_crop_bottom_offset", in_crop_units("at the bottom", crop.bottom, unit_y));
}

// H.264 Table E-1, from aspect_ratio_idc 1 on
constexpr std::uint16_t aspect_ratios[][2] = {{1, 1},    {12, 11}, {10, 11}, {16, 11}, {40, 33}, {24, 11},
                                              {20, 11},  {32, 11}, {80, 33}, {18, 11}, {15, 11}, {64, 33},
                                              {160, 99}, {4, 3},   {3, 2},   {2, 1}};

void add_sar(change_list& to, const h264::ratio& sar)
{
    constexpr int Extended_SAR = 255;
    const auto* const row = std::find_if(std::begin(aspect_ratios), std::end(aspect_ratios), [&](const auto& known) {
        return known[0] == sar.numerator && known[1] == sar.denominator;
    });
    const bool known = row != std::end(aspect_ratios);
    to.add_vui("aspect_ratio_info_present_flag", 1);
    to.add_vui("aspect_ratio_idc", known ? row - std::begin(aspect_ratios) + 1 : Extended_SAR);
    if (known)
        return;
    to.add_vui("sar_width", static_cast<std::int64_t>(sar.numerator));
    to.add_vui("sar_height", static_cast<std::int64_t>(sar.denominator));
}

void add_signal_type(change_list& to, const sps_wishes& wishes)
{
    to.add_vui("video_signal_type_present_flag", 1);
    if (wishes.full_range)
        to.add_vui("video_full_range_flag", *wishes.full_range ? 1 : 0);
    if (!wishes.colour)
        return;
    to.add_vui("colour_description_present_flag", 1);
    to.add_vui("colour_primaries", wishes.colour->colour_primaries);
    to.add_vui("transfer_characteristics", wishes.colour->transfer_characteristics);
    to.add_vui("matrix_coefficients", wishes.colour->matrix_coefficients);
}

} // namespace

bool sps_wishes::any() const
{
    return sar || rate || !level.empty() || colour || crop || full_range;
}

std::vector<element_value> changes_of(const seq_parameter_set_data& sps, const sps_wishes& wishes,
                                      std::vector<std::string>& remarks)
{
    change_list to;
    if (!wishes.level.empty())
        add_level(to, sps, wishes, remarks);
    if (wishes.crop)
        add_crop(to, sps, *wishes.crop);
    if (wishes.sar)
        add_sar(to, *wishes.sar);
    if (wishes.full_range || wishes.colour)
        add_signal_type(to, wishes);
    if (wishes.rate) { // two fields a frame, E.2.1
        const bool odd = wishes.rate->denominator % 2 != 0;
        to.add_vui("timing_info_present_flag", 1);
        const auto ticks = static_cast<std::int64_t>(odd ? wishes.rate->denominator : wishes.rate->denominator / 2);
        to.add_vui("num_units_in_tick", ticks);
        to.add_vui("time_scale", static_cast<std::int64_t>(wishes.rate->numerator * (odd ? 2 : 1)));
    }
    return to.changes;
}

} // namespace orv_h264::editing
