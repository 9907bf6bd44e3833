#include "framing.h"
#include "json_output.h"
#include "names.h"
#include "show_info.h"

#include <utility>

namespace orv_h264 {

namespace {

template <typename T>
json or_null(const std::optional<T>& value)
{
    return value ? json(*value) : json();
}

json or_null(const std::string& name)
{
    return name.empty() ? json() : json(name);
}

json json_of(const std::optional<fraction>& value)
{
    if (!value)
        return nullptr;
    return {{"numerator", value->numerator}, {"denominator", value->denominator}, {"value", value->value()}};
}

json json_of(const picture_size& size)
{
    return {{"width", size.width}, {"height", size.height}};
}

json hrd_json(bool present, const brenik::h264_hrd_parameters& hrd)
{
    if (!present)
        return nullptr;
    json schedules = json::array();
    for (const cpb_schedule& schedule : schedules_of(hrd))
        schedules.push_back({{"bit_rate", schedule.bit_rate}, {"cpb_size", schedule.size}, {"cbr", schedule.constant}});
    return schedules;
}

json colour_json(const brenik::h264_nal_sps& sps)
{
    const brenik::h264_vui_parameters& vui = sps.vui;
    if (!sps.vui_parameters_present_flag || !vui.video_signal_type_present_flag)
        return nullptr;
    const bool described = vui.colour_description_present_flag;
    const auto number = [&](std::uint8_t value) { return described ? json(value) : json(); };
    const auto name = [&](const std::string& words) { return described ? or_null(words) : json(); };
    return {
        {"full_range", vui.video_full_range_flag},
        {"video_format", vui.video_format},
        {"format", vui.video_format_to_str()},
        {"colour_primaries", number(vui.colour_primaries)},
        {"primaries", name(colour_primaries_name(vui.colour_primaries))},
        {"transfer_characteristics", number(vui.transfer_characteristics)},
        {"transfer", name(transfer_characteristics_name(vui.transfer_characteristics))},
        {"matrix_coefficients", number(vui.matrix_coefficients)},
        {"matrix", name(matrix_coefficients_name(vui.matrix_coefficients))},
    };
}

json sequence_json(const sequence_summary& sequence)
{
    const brenik::h264_nal_sps& sps = sequence.sps;
    const bool vui = sps.vui_parameters_present_flag;
    const auto fields = field_rate(sps);
    return {
        {"offset", sequence.offset},
        {"codec", codec_string(sps)},
        {"profile_idc", sps.profile_idc},
        {"profile", or_null(profile_name(sps))},
        {"level_idc", sps.level_idc},
        {"level", level_name(sps)},
        {"size", json_of(cropped_size(sps))},
        {"coded_size", json_of(picture_size{sps.getPicWidth(), sps.getPicHeight()})},
        {"display_size", json_of(display_size(sps))},
        {"sample_aspect_ratio", json_of(sample_aspect_ratio(sps))},
        {"chroma_format_idc", chroma_format_of(sps)},
        {"chroma_format", or_null(chroma_format_name(chroma_format_of(sps)))},
        {"bit_depth_luma", std::uint64_t{sps.bit_depth_luma_minus8} + 8},
        {"bit_depth_chroma", std::uint64_t{sps.bit_depth_chroma_minus8} + 8},
        {"scan_type", scan_type(sequence)},
        {"top_field_first", or_null(sequence.top_field_first)},
        {"frame_pictures", sequence.frame_pictures},
        {"mbaff_pictures", sequence.mbaff_pictures},
        {"field_pictures", sequence.field_pictures},
        {"cabac", sequence.cabac},
        {"cavlc", sequence.cavlc},
        {"max_num_ref_frames", sps.max_num_ref_frames},
        {"field_rate", json_of(fields)},
        {"frame_rate", fields ? json_of(std::optional(half(*fields))) : json()},
        {"fixed_frame_rate", fields ? json(static_cast<bool>(sps.vui.fixed_frame_rate_flag)) : json()},
        {"colour", colour_json(sps)},
        {"nal_hrd", hrd_json(vui && sps.vui.nal_hrd_parameters_present_flag, sps.vui.nal_hrd)},
        {"vcl_hrd", hrd_json(vui && sps.vui.vcl_hrd_parameters_present_flag, sps.vui.vcl_hrd)},
    };
}

json frames_json(const frame_totals& frames)
{
    const bit_rate_meter& rate = frames.bit_rate();
    json object = {{"count", frames.frames()},
                   {"key_frames", frames.key_frames()},
                   {"joined_frames", 0},
                   {"pictures", frames.frames()},
                   {"coded_pictures", frames.coded_pictures()},
                   {"key_frame_distance", nullptr},
                   {"seconds", rate.mean() ? json(rate.seconds()) : json()},
                   {"mean_bit_rate", or_null(rate.mean())},
                   {"peak_bit_rate", or_null(rate.peak())}};
    if (const auto distance = frames.key_distance())
        object["key_frame_distance"] = {{"min", distance->least}, {"max", distance->most}, {"mean", distance->mean}};
    return object;
}

json types_json(const stream_summary& summary)
{
    json types = json::array();
    for (std::size_t type = 0; type < summary.types.size(); ++type)
        if (const stream_summary::type_count& count = summary.types[type]; count.units > 0)
            types.push_back({{"nal_unit_type", type},
                             {"name", brenik::h264_nal_unit_type_to_str(static_cast<brenik::h264_nal_unit_type>(type))},
                             {"units", count.units},
                             {"bytes", count.bytes}});
    return types;
}

json problems_json(const std::vector<problem_kind>& kinds)
{
    json problems = json::array();
    for (const problem_kind& kind : kinds)
        problems.push_back({{"message", kind.message},
                            {"first_offset", kind.first_offset},
                            {"last_offset", kind.last_offset},
                            {"count", kind.count},
                            {"bytes", kind.bytes}});
    return problems;
}

} // namespace

void print_json_info(const stream_input& input, const stream_summary& summary)
{
    json object = json_head("orv-h264/info", input.name());
    object["framing"] = framing_name(input.framing());
    object["size"] = input.bytes_read();
    json& sequences = object["sequences"] = json::array();
    for (const sequence_summary& sequence : summary.sequences)
        sequences.push_back(sequence_json(sequence));
    object["further_sequences"] = summary.further_sequences;
    object["frames"] = frames_json(summary.frames);
    object["nal_units"] = types_json(summary);
    object["encoder"] = or_null(summary.encoder);
    object["problems"] = problems_json(summary.problems.kinds());
    print_json(object);
}

} // namespace orv_h264
