// Rules over the limits of levels in time (H.264 A.3): how fast pictures follow each other, and how large they are.
#include "check/level_facts.h"
#include "check/profile_numbers.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// The profiles that Table A-4 is about.
bool has_limits_of_main(const h264::seq_parameter_set_data& sps)
{
    const bool intra_alone = sps.constraint_set3_flag && sps.profile_idc >= high_10;
    const unsigned profiles[] = {main_profile, high, high_10, high_422, high_444};
    return !intra_alone && std::find(std::begin(profiles), std::end(profiles), sps.profile_idc) != std::end(profiles);
}

/// SliceRate, Table A-4; nothing where it has no limit.
std::optional<std::uint32_t> SliceRate(const h264::seq_parameter_set_data& sps)
{
    if (!has_limits_of_main(sps) || sps.level_idc < 30)
        return {};
    if (sps.level_idc == 30)
        return 22;
    return sps.level_idc <= 40 ? 60 : 24;
}

/// What the level lets a decoder take for the picture, in macroblocks.
double macroblocks_in_time(const picture_load_facts& f)
{
    if (f.seconds)
        return *f.seconds * f.level.MaxMBPS;
    const auto size = static_cast<double>(h264::PicSizeInMbs(*f.unit.sps, f.unit.field()));
    return std::max(size, shortest_interval(*f.unit.sps, f.unit.field()) * f.level.MaxMBPS);
}

verdict slices_keep_to_rate(const picture_load_facts& f)
{
    const std::optional<std::uint32_t> rate = SliceRate(*f.unit.sps);
    if (!rate || static_cast<double>(f.slices) <= macroblocks_in_time(f) / *rate)
        return {};
    return breach{"", fmt::format("{} slices at level {}", f.slices, f.level.name),
                  fmt::format("at most {:.0f}, by SliceRate {}", std::floor(macroblocks_in_time(f) / *rate), *rate)};
}

/// Of a macroblock that is not compressed; 384 in 4:2:0 with 8 bits.
std::uint64_t bytes_of_macroblock(const h264::seq_parameter_set_data& sps)
{
    const h264::picture_size by = h264::chroma_subsampling(sps);
    const std::uint64_t chroma =
        sps.chroma_format_idc == 0 ? 0 : std::uint64_t{512} / (std::uint64_t{by.width} * by.height);
    return std::max<std::uint64_t>(384, (256 * h264::BitDepthY(sps) + chroma * h264::BitDepthC(sps)) / 8);
}

/// Of the others it is doubtful what is to be compressed by MinCR.
bool is_counted_in_384(unsigned profile)
{
    return profile == 66 || profile == main_profile || profile == extended || profile == high;
}

verdict picture_is_compressed(const picture_load_facts& f)
{
    const std::uint64_t raw = bytes_of_macroblock(*f.unit.sps);
    const double most = static_cast<double>(raw) * macroblocks_in_time(f) / f.level.MinCR;
    if (static_cast<double>(f.bytes) <= most)
        return {};
    breach how{"", fmt::format("{} bytes at level {}", f.bytes, f.level.name),
               fmt::format("at most {:.0f}, by MinCR {}", std::floor(most), f.level.MinCR)};
    if (raw != 384 || !is_counted_in_384(f.unit.sps->profile_idc))
        how.level = severity::warning;
    return how;
}

verdict keeps_to_rate(const picture_interval_facts& f)
{
    constexpr double rounding = 1e-7;
    const double least = std::max(static_cast<double>(f.macroblocks) / f.level.MaxMBPS, f.shortest);
    if (f.seconds + rounding >= least)
        return {};
    return breach{"", fmt::format("{:.6f} seconds behind a picture of {} macroblocks", f.seconds, f.macroblocks),
                  fmt::format("at least {:.6f} at level {}", least, f.level.name)};
}

verdict direct_inference_at_level(const sps_facts& f)
{
    if (!has_limits_of_main(f.sps) || f.sps.level_idc < 30 || f.sps.direct_8x8_inference_flag ||
        !f.sps.frame_mbs_only_flag) // else a rule of its own has told it
        return {};
    return breach_of("direct_8x8_inference_flag", 0, "1 from level 3 on");
}

/// All that the SPS says of the load is there.
bool tells_its_load(const sps_facts& f)
{
    const h264::vui_parameters& vui = f.vui();
    return !f.is_subset && vui.bitstream_restriction_flag && h264::frame_rate(vui).denominator != 0 &&
           (vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag);
}

/// No rule is broken at that level that is kept at the SPS's own.
bool keeps_rules_at(const sps_facts& lower, const sps_facts& own)
{
    const std::span<const rule_over<sps_facts>> rules = sps_rules();
    return std::none_of(rules.begin(), rules.end(),
                        [&](const auto& one) { return one.judge(lower) && !one.judge(own); });
}

bool level_suffices(const sps_facts& lower, const sps_facts& own)
{
    const h264::level_limits* const level = h264::limits_of_level(lower.sps);
    const h264::ratio rate = h264::frame_rate(own.vui());
    const double seconds = static_cast<double>(rate.denominator) / static_cast<double>(rate.numerator);
    const picture_interval_facts frames{*level, h264::PicSizeInMbs(own.sps, false), shortest_interval(lower.sps, false),
                                        seconds};
    return !keeps_to_rate(frames) && keeps_rules_at(lower, own);
}

verdict level_is_needed(const sps_facts& f)
{
    const h264::level_limits* const own = h264::limits_of_level(f.sps);
    if (own == nullptr || !tells_its_load(f))
        return {};
    h264::seq_parameter_set_data lower = f.sps;
    if (f.sps.profile_idc <= extended)
        lower.constraint_set3_flag = false; // with level_idc 11 it is level 1b
    for (const unsigned level :
         {10U, 11U, 12U, 13U, 20U, 21U, 22U, 30U, 31U, 32U, 40U, 41U, 42U, 50U, 51U, 52U, 60U, 61U}) {
        if (level >= f.sps.level_idc)
            return {};
        lower.level_idc = static_cast<std::uint8_t>(level);
        if (level_suffices({lower, false}, f))
            return breach_of("level_idc", fmt::format("{}, level {}", f.sps.level_idc, own->name),
                             fmt::format("{}: frame size, rate, buffers and HRD keep to level {}", level,
                                         h264::limits_of_level(lower)->name));
    }
    return {};
}

using enum severity;

constexpr rule_over<picture_load_facts> of_picture_loads[] = {
    {{"level-picture-compressed", error, "A.3.1", "a picture is compressed by MinCR of the level",
      "Decoders take in no more bytes than 384 for each macroblock that the level has time for, divided by MinCR. The "
      "first picture of a stream is looked at, and those with timing messages; without these no time is known. Of more "
      "than 8 bits or 4:2:0 the larger macroblocks are counted; in the profiles above High it is a warning.",
      "an IDR picture of 3000 bytes for 12 macroblocks at level 1"},
     picture_is_compressed},
    {{"level-slices-of-picture", error, "A.3.3", "a picture has no more slices than SliceRate of the level allows",
      "Each slice takes a decoder time, which the level counts in macroblocks. The first picture of a stream is looked "
      "at, and those with timing messages.",
      "100 slices in a picture of 99 macroblocks at level 3"},
     slices_keep_to_rate},
};

constexpr rule_over<picture_interval_facts> of_decoding_rate[] = {
    {{"level-decoding-rate", error, "A.3.1",
      "a picture is removed no sooner than MaxMBPS lets the one before it be decoded",
      "It is told by cpb_removal_delay. No picture takes less than 1/172 of a second, a field half of that; from level "
      "6 "
      "on 1/300.",
      "cpb_removal_delay 1 behind 0 with a tick of 1/1000 of a second"},
     keeps_to_rate},
};

constexpr rule_over<picture_interval_facts> of_output_rate[] = {
    {{"level-output-rate", error, "A.3.1", "a picture is output no sooner behind another one than MaxMBPS lets it",
      "It is told by dpb_output_delay; displays take the pictures at no higher rate.",
      "dpb_output_delay 39 of a picture that is removed 40 ticks of 1/1000 of a second behind one with 78"},
     keeps_to_rate},
};

constexpr rule_over<sps_facts> of_level[] = {
    {{"level-lower-suffices", note, "A.3.1", "no lower level suffices for what the SPS says",
      "Devices of a lower level may play the stream. What is known is the frame size, the rate, the buffers and the "
      "HRD; "
      "motion vectors and the compression of pictures are not looked at.",
      "level_idc 51 for 64x48 at 25 Hz and 1 Mbit/s"},
     level_is_needed},
    {{"level-direct-inference", error, "A.3.3", "direct_8x8_inference_flag is 1 from level 3 on",
      "Decoders of these levels keep the motion vectors of 8x8 blocks alone.",
      "level_idc 30, direct_8x8_inference_flag 0"},
     direct_inference_at_level},
};

} // namespace

double shortest_interval(const h264::seq_parameter_set_data& sps, bool field)
{
    return 1.0 / (sps.level_idc >= 60 ? 300 : 172) / (field ? 2 : 1);
}

std::span<const rule_over<picture_load_facts>> picture_load_rules()
{
    return of_picture_loads;
}

std::span<const rule_over<picture_interval_facts>> decoding_interval_rules()
{
    return of_decoding_rate;
}

std::span<const rule_over<picture_interval_facts>> output_interval_rules()
{
    return of_output_rate;
}

std::span<const rule_over<sps_facts>> level_sps_rules()
{
    return of_level;
}

} // namespace orv_h264
