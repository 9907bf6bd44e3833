#include "consequences.h"

#include "json_output.h"
#include "words.h"

#include <numeric>
#include <string>
#include <variant>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

fact number(std::string_view name, std::int64_t value, std::string text)
{
    return {name, std::to_string(value), std::move(text)};
}

fact words(std::string_view name, std::string_view value, std::string text)
{
    return {name, json_text(value), std::move(text)};
}

fact fraction_fact(std::string_view name, h264::ratio value, std::string text)
{
    const std::uint64_t divisor = std::gcd(value.numerator, value.denominator);
    return {name,
            fmt::format(R"({{"numerator":{},"denominator":{},"value":{:.7g}}})", value.numerator / divisor,
                        value.denominator / divisor,
                        static_cast<double>(value.numerator) / static_cast<double>(value.denominator)),
            std::move(text)};
}

/// H.264 A.2, A.3 and RFC 6381
void add_profile(std::vector<fact>& to, const h264::seq_parameter_set_data& sps)
{
    const std::string_view profile = h264::profile_name(sps);
    const h264::level_limits* const limits = h264::limits_of_level(sps);
    const std::string codec = h264::codec_string(sps).data();
    if (!profile.empty())
        to.push_back(words("profile", profile, fmt::format("profile {}", profile)));
    if (limits != nullptr)
        to.push_back(words("level", limits->name, fmt::format("level {}", limits->name)));
    to.push_back(words("codec", codec, fmt::format("codec {}", codec)));
}

/// H.264 7.4.2.1.1
void add_size(std::vector<fact>& to, const h264::seq_parameter_set_data& sps)
{
    const h264::picture_size coded = h264::coded_size(sps);
    const h264::picture_size size = h264::cropped_size(sps);
    to.push_back(number("cropped_width", static_cast<std::int64_t>(size.width), ""));
    to.push_back(number("cropped_height", static_cast<std::int64_t>(size.height),
                        size.width == 0 ? fmt::format("coded size {}x{}, cropped to nothing", coded.width, coded.height)
                                        : fmt::format("cropped size {}x{}", size.width, size.height)));
}

/// H.264 E.2.1 and E.2.2
void add_vui(std::vector<fact>& to, const h264::vui_parameters& vui)
{
    if (const h264::ratio rate = h264::field_rate(vui); rate.denominator != 0)
        to.push_back(fraction_fact("field_rate", rate,
                                   fmt::format("field rate {:.7g} Hz", static_cast<double>(rate.numerator) /
                                                                           static_cast<double>(rate.denominator))));
    const auto add_schedules = [&](std::string_view name, std::string_view kind, const h264::hrd_parameters& hrd) {
        std::string json = "[";
        std::string text;
        for (std::uint32_t i = 0; i < h264::schedule_count(hrd); ++i) {
            const std::uint64_t rate = h264::BitRate(hrd, i);
            const std::uint64_t size = h264::CpbSize(hrd, i);
            json += fmt::format(R"({}{{"bit_rate":{},"cpb_size":{},"cbr":{}}})", i == 0 ? "" : ",", rate, size,
                                hrd.cbr_flag[i]);
            text += fmt::format("{}{} bit/s{}, buffer of {} bits", i == 0 ? "" : "; ", rate,
                                hrd.cbr_flag[i] ? " constant" : " at most", size);
        }
        to.push_back({name, json + ']', fmt::format("{} HRD: {}", kind, text)});
    };
    if (vui.nal_hrd_parameters_present_flag)
        add_schedules("nal_hrd", "NAL", vui.nal_hrd_parameters);
    if (vui.vcl_hrd_parameters_present_flag)
        add_schedules("vcl_hrd", "VCL", vui.vcl_hrd_parameters);
}

std::vector<fact> of_sps(const h264::seq_parameter_set_data& sps)
{
    std::vector<fact> all;
    add_profile(all, sps);
    add_size(all, sps);
    if (sps.vui_parameters_present_flag)
        add_vui(all, sps.vui_parameters);
    return all;
}

std::vector<fact> of_slice(const h264::unit_reading& reading)
{
    const h264::nal_unit_header& header = reading.unit.header;
    const bool idr = header.nal_unit_type == 19 ? reading.context.primary_idr : IdrPicFlag(header);
    std::vector<fact> all;
    if (idr)
        all.push_back(number("IdrPicFlag", 1, "IDR picture"));
    all.push_back(number("pps_id", reading.pps->pic_parameter_set_id, ""));
    if (reading.sps == nullptr)
        return all;
    all.push_back(number("sps_id", reading.sps->seq_parameter_set_id,
                         fmt::format("stands on PPS {} and SPS {}", reading.pps->pic_parameter_set_id,
                                     reading.sps->seq_parameter_set_id)));
    return all;
}

} // namespace

std::vector<fact> consequences_of(const h264::unit_reading& reading)
{
    if (reading.result.failure)
        return {};
    if (const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&reading.unit.rbsp))
        return of_sps(sps->seq_parameter_set_data);
    if (const auto* const sps = std::get_if<h264::subset_seq_parameter_set_rbsp>(&reading.unit.rbsp))
        return of_sps(sps->seq_parameter_set_data);
    return reading.pps == nullptr ? std::vector<fact>() : of_slice(reading);
}

} // namespace orv_h264
