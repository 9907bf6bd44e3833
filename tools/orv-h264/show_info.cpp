#include "show_info.h"

#include "container/show_container.h"

#include "framing.h"
#include "names.h"
#include "printable.h"
#include "show_sequences.h"
#include "standard_output.h"

#include <string>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

std::string or_dash(const std::string& name)
{
    return name.empty() ? "-" : name;
}

std::string bit_rate_row(const frame_totals& frames)
{
    std::string text = fmt::format("mean {:.0f} bit/s", *frames.bit_rate().mean());
    if (frames.padding() != 0)
        text += fmt::format(" ({:.0f} bit/s without padding)", *frames.unit_bit_rate());
    if (const auto peak = frames.bit_rate().peak())
        text += fmt::format(", peak {:.0f} bit/s", *peak);
    return text;
}

void print_frames(const frame_totals& frames)
{
    if (frames.bit_rate().mean()) {
        std::string text = fmt::format("{:.6f} s", frames.bit_rate().seconds());
        if (frames.timed_frames() < frames.frames())
            text += fmt::format(", that of {} of the {} frames", frames.timed_frames(), frames.frames());
        print_row("Duration", text);
        print_row("Bit rate", bit_rate_row(frames));
    }
    print_row("Frames", fmt::format("{}, {} of them key frames", frames.pictures(), frames.key_frames()));
    if (const auto distance = frames.key_distance())
        print_row("Key-frame distance",
                  fmt::format("{} to {} frames, mean {:.4g}", distance->least, distance->most, distance->mean));
}

void print_groups(const group_totals& groups)
{
    if (groups.closed + groups.open + groups.gradual == 0)
        return;
    std::string text = fmt::format("{} closed, {} open", groups.closed, groups.open);
    if (groups.gradual > 0)
        text += fmt::format(", {} from a gradual refresh", groups.gradual);
    print_row("Groups", text);
    if (groups.recovery_points > 0)
        print_row("Recovery points", fmt::format("{}, recovery_frame_cnt {} to {}", groups.recovery_points,
                                                 groups.least_recovery_frame_cnt, groups.most_recovery_frame_cnt));
}

void print_encoder(const std::optional<encoder_text>& encoder)
{
    constexpr std::size_t most_settings = 96;
    if (!encoder)
        return;
    print_row("Encoder", encoder->name);
    std::string settings = encoder->settings;
    if (settings.size() > most_settings)
        settings.replace(most_settings, std::string::npos, " ...");
    print_row("Encoder settings", settings);
}

std::string layer_name(const layer_summary& layer)
{
    const h264::slice_layer& what = layer.layer;
    if (layer.scalable)
        return fmt::format("D{} Q{} T{}", what.dependency_id, what.quality_id, what.temporal_id);
    return fmt::format("view {}{}", what.view_id, what.depth ? " depth" : "");
}

std::string layer_row(const layer_summary& layer)
{
    if (!layer.sps)
        return "-";
    const h264::seq_parameter_set_data& sps = *layer.sps;
    std::string text = fmt::format("{}, level {}, {}", or_number(h264::profile_name(sps), sps.profile_idc),
                                   level_name(sps), size_text(h264::cropped_size(sps)));
    return layer.frame_rate ? text + ", " + rate_text(*layer.frame_rate) : text;
}

void print_layers(const stream_summary& summary)
{
    const std::vector<layer_summary> layers = summary.layers.layers();
    if (layers.empty())
        return;
    print_heading("  pictures       units       bytes       bit/s  layer or view");
    for (const layer_summary& layer : layers) {
        const auto rate = bit_rate_of(layer, summary.frames);
        write_output(fmt::format("{:>10}  {:>10}  {:>10}  {:>10}  {}: {}\n", layer.pictures, layer.units, layer.bytes,
                                 rate ? fmt::format("{}", *rate) : "-", layer_name(layer), layer_row(layer)));
    }
    if (summary.layers.further_units() > 0)
        print_row("Layers",
                  fmt::format("{} shown, {} units of further ones not", layers.size(), summary.layers.further_units()));
}

void print_container(const stream_input& input, const stream_summary& summary)
{
    if (input.in_container() == nullptr)
        return;
    print_row("Container", text_of(*input.in_container()));
    for (const auto& [label, text] : lines_of(*input.in_container(), *summary.container))
        print_row(label, text);
}

void print_types(const stream_summary& summary)
{
    print_heading("     units       bytes  NAL unit type");
    for (std::size_t type = 0; type < summary.types.size(); ++type)
        if (const stream_summary::type_count& count = summary.types[type]; count.units > 0)
            write_output(fmt::format("{:>10}  {:>10}  {:>2}  {}\n", count.units, count.bytes, type,
                                     brenik::h264_nal_unit_type_to_str(static_cast<brenik::h264_nal_unit_type>(type))));
}

void print_sei(const sei_counts& sei)
{
    if (sei.by_type().empty())
        return;
    print_heading("  messages  SEI payload type");
    for (const auto& [type, count] : sei.by_type())
        write_output(fmt::format("{:>10}  {:>3}  {}\n", count, type, or_dash(payload_name(type))));
    if (sei.further_messages() > 0)
        write_output(fmt::format("{:>10}  of further types\n", sei.further_messages()));
    if (sei.units_not_read() > 0)
        write_output(fmt::format("{} SEI units are not among them\n", sei.units_not_read()));
}

void print_kinds(const char* heading, const std::vector<problem_kind>& kinds)
{
    if (kinds.empty())
        return;
    print_heading(heading);
    for (const problem_kind& kind : kinds)
        write_output(fmt::format("{}\n", describe(kind)));
}

} // namespace

void print_info(const stream_input& input, const stream_summary& summary)
{
    print_row("File", printable(input.name()));
    print_container(input, summary);
    print_row("Framing", framing_name(input.framing()) + (input.framing_recognised() ? ", recognised" : ""));
    print_row("Size", fmt::format("{} bytes", input.bytes_read()) + (input.in_container() ? " of the track" : ""));
    print_sequences(summary.sequences, summary.further_sequences);
    print_frames(summary.frames);
    print_groups(summary.groups.totals());
    print_encoder(summary.encoder);
    print_layers(summary);
    print_types(summary);
    print_sei(summary.sei);
    print_kinds("Problems", summary.problems.kinds());
    print_kinds("Findings", summary.findings.kinds());
}

} // namespace orv_h264
