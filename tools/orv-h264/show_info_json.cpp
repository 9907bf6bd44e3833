#include "framing.h"
#include "names.h"
#include "show_info.h"

#include "container/show_container.h"
#include "show_rows.h"
#include "words.h"

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

json object_of(const std::optional<h264::ratio>& ratio)
{
    if (!ratio)
        return nullptr;
    return json_fraction(static_cast<std::int64_t>(ratio->numerator), static_cast<std::int64_t>(ratio->denominator));
}

json object_of(const h264::picture_size& size)
{
    return {{"width", size.width}, {"height", size.height}};
}

json hrd_json(bool present, const h264::hrd_parameters& hrd, const second_rates& rates)
{
    if (!present)
        return nullptr;
    json schedules = json::array();
    for (std::uint32_t i = 0; i < h264::schedule_count(hrd); ++i)
        schedules.push_back({{"bit_rate", h264::BitRate(hrd, i)},
                             {"cpb_size", h264::CpbSize(hrd, i)},
                             {"cbr", hrd.cbr_flag[i]},
                             {"seconds", rates.seconds},
                             {"seconds_above", rates.above[i]},
                             {"fullest_second", rates.seconds > 0 ? json(rounded(rates.largest, 0)) : json()}});
    return schedules;
}

json colour_json(const h264::vui_parameters& vui)
{
    if (!vui.video_signal_type_present_flag)
        return nullptr;
    const bool described = vui.colour_description_present_flag;
    const auto number = [&](std::uint8_t value) { return described ? json(value) : json(); };
    const auto name = [&](const char* element, std::uint8_t value) {
        return described ? or_null(words_of(element, value)) : json();
    };
    return {
        {"full_range", vui.video_full_range_flag},
        {"video_format", vui.video_format},
        {"format", or_null(words_of("video_format", vui.video_format))},
        {"colour_primaries", number(vui.colour_primaries)},
        {"primaries", name("colour_primaries", vui.colour_primaries)},
        {"transfer_characteristics", number(vui.transfer_characteristics)},
        {"transfer", name("transfer_characteristics", vui.transfer_characteristics)},
        {"matrix_coefficients", number(vui.matrix_coefficients)},
        {"matrix", name("matrix_coefficients", vui.matrix_coefficients)},
    };
}

json profile_json(const h264::seq_parameter_set_data& sps)
{
    return {{"profile_idc", sps.profile_idc},
            {"profile", or_null(std::string(h264::profile_name(sps)))},
            {"level_idc", sps.level_idc},
            {"level", level_name(sps)},
            {"size", object_of(h264::cropped_size(sps))}};
}

json sequence_json(const sequence_summary& sequence, const sequence_summary* before)
{
    const h264::seq_parameter_set_data& sps = sequence.sps;
    const h264::vui_parameters& vui = sps.vui_parameters;
    const auto fields = known(h264::field_rate(vui));
    const promised_depth promised = promised_reorder_depth(sps);
    json object = {
        {"offset", sequence.offset},
        {"changes", before != nullptr ? json(changes_between(before->sps, sps)) : json::array()},
        {"codec", h264::codec_string(sps).data()},
    };
    object.update(profile_json(sps));
    object.update({
        {"coded_size", object_of(h264::coded_size(sps))},
        {"display_size", object_of(display_size(sps))},
        {"sample_aspect_ratio", object_of(known(h264::sample_aspect_ratio(vui)))},
        {"chroma_format_idc", sps.chroma_format_idc},
        {"chroma_format", or_null(words_of("chroma_format_idc", sps.chroma_format_idc))},
        {"bit_depth_luma", h264::BitDepthY(sps)},
        {"bit_depth_chroma", h264::BitDepthC(sps)},
        {"scan_type", scan_type(sequence)},
        {"top_field_first", or_null(sequence.top_field_first)},
        {"pictures", sequence.pictures},
        {"frame_pictures", sequence.frame_pictures},
        {"mbaff_pictures", sequence.mbaff_pictures},
        {"field_pictures", sequence.field_pictures},
        {"cabac", sequence.cabac},
        {"cavlc", sequence.cavlc},
        {"max_num_ref_frames", sps.max_num_ref_frames},
        {"reorder_depth", sequence.reorder_depth},
        {"max_num_reorder_frames", promised.frames},
        {"max_num_reorder_frames_sent", promised.sent},
        {"field_rate", object_of(fields)},
        {"frame_rate", object_of(known(h264::frame_rate(vui)))},
        {"fixed_frame_rate", fields ? json(vui.fixed_frame_rate_flag) : json()},
        {"colour", colour_json(vui)},
        {"nal_hrd", hrd_json(vui.nal_hrd_parameters_present_flag, vui.nal_hrd_parameters, sequence.nal_seconds)},
        {"vcl_hrd", hrd_json(vui.vcl_hrd_parameters_present_flag, vui.vcl_hrd_parameters, sequence.vcl_seconds)},
    });
    return object;
}

json sequences_json(const std::vector<sequence_summary>& sequences)
{
    json list = json::array();
    const sequence_summary* before = nullptr;
    for (const sequence_summary& sequence : sequences) {
        list.push_back(sequence_json(sequence, before));
        before = &sequence;
    }
    return list;
}

json frames_json(const frame_totals& frames)
{
    json object = {{"count", frames.frames()}};
    object.update(json_of(frames));
    object.erase("record");
    object.erase("frames");
    object["key_frame_distance"] = nullptr;
    if (const auto distance = frames.key_distance())
        object["key_frame_distance"] = {
            {"min", distance->least}, {"max", distance->most}, {"mean", rounded(distance->mean, 3)}};
    return object;
}

json groups_json(const group_totals& groups)
{
    const bool any = groups.recovery_points > 0;
    return {{"closed", groups.closed},
            {"open", groups.open},
            {"gradual", groups.gradual},
            {"recovery_points", groups.recovery_points},
            {"recovery_frame_cnt_min", any ? json(groups.least_recovery_frame_cnt) : json()},
            {"recovery_frame_cnt_max", any ? json(groups.most_recovery_frame_cnt) : json()}};
}

json layer_json(const layer_summary& layer, const frame_totals& frames)
{
    const h264::slice_layer& what = layer.layer;
    const auto of = [](bool said, auto value) { return said ? json(value) : json(); };
    json object = {{"dependency_id", of(layer.scalable, what.dependency_id)},
                   {"quality_id", of(layer.scalable, what.quality_id)},
                   {"temporal_id", of(layer.scalable, what.temporal_id)},
                   {"view_id", of(!layer.scalable, what.view_id)},
                   {"depth", of(!layer.scalable, what.depth)},
                   {"pictures", layer.pictures},
                   {"units", layer.units},
                   {"bytes", layer.bytes},
                   {"bit_rate", or_null(bit_rate_of(layer, frames))}};
    if (layer.sps)
        object.update(profile_json(*layer.sps));
    else
        for (const char* name : {"profile_idc", "profile", "level_idc", "level", "size"})
            object[name] = nullptr;
    object["frame_rate"] = object_of(layer.frame_rate);
    return object;
}

json layers_json(const stream_summary& summary)
{
    json list = json::array();
    for (const layer_summary& layer : summary.layers.layers())
        list.push_back(layer_json(layer, summary.frames));
    return list;
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

json sei_json(const sei_counts& sei)
{
    json types = json::array();
    for (const auto& [type, count] : sei.by_type())
        types.push_back({{"payload_type", type}, {"name", or_null(payload_name(type))}, {"messages", count}});
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

/// `container` is null where the stream is in none.
json whole(std::string_view name, h264::framing framing, std::uint64_t bytes, const container_stream* container,
           const stream_summary& summary)
{
    json object = json_head("orv-h264/info", name);
    object["framing"] = framing_name(framing);
    object["size"] = bytes;
    if (container != nullptr) {
        object["container"] = json_of(*container);
        add_totals(object["container"], *summary.container, container->track().tick);
    }
    object["sequences"] = sequences_json(summary.sequences);
    object["further_sequences"] = summary.further_sequences;
    object["frames"] = frames_json(summary.frames);
    object["groups"] = groups_json(summary.groups.totals());
    object["layers"] = layers_json(summary);
    object["further_layer_units"] = summary.layers.further_units();
    object["nal_units"] = types_json(summary);
    object["sei"] = sei_json(summary.sei);
    object["further_sei_messages"] = summary.sei.further_messages();
    object["sei_units_not_read"] = summary.sei.units_not_read();
    object["encoder"] = summary.encoder ? json(summary.encoder->name) : json();
    object["encoder_settings"] = summary.encoder ? or_null(summary.encoder->settings) : json();
    object["problems"] = problems_json(summary.problems.kinds());
    object["findings"] = problems_json(summary.findings.kinds());
    return object;
}

} // namespace

json info_json(const stream_input& input, const stream_summary& summary)
{
    return whole(input.name(), input.framing(), input.bytes_read(), input.in_container(), summary);
}

json info_json(std::string_view name, h264::framing framing, std::uint64_t bytes, const stream_summary& summary)
{
    return whole(name, framing, bytes, nullptr, summary);
}

} // namespace orv_h264
