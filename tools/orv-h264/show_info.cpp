#include "show_info.h"

#include "framing.h"
#include "names.h"
#include "printable.h"
#include "terminal.h"
#include "words.h"

#include <cstdio>
#include <string>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

constexpr int label_width = 22;

void print_row(std::string_view label, std::string_view text)
{
    if (!text.empty())
        fmt::print("{:<{}}{}\n", label, label_width, text);
}

void print_heading(std::string_view text)
{
    fmt::print("\n{}\n", emphasised(stdout, emphasis::strong, text));
}

std::string ratio_text(const h264::ratio& ratio)
{
    return fmt::format("{}:{}", ratio.numerator, ratio.denominator);
}

std::string rate_text(const h264::ratio& rate)
{
    const double value = static_cast<double>(rate.numerator) / static_cast<double>(rate.denominator);
    const std::string hertz = fmt::format("{:.7g} Hz", value);
    return rate.denominator == 1 ? hertz : fmt::format("{} ({}/{})", hertz, rate.numerator, rate.denominator);
}

std::string size_text(const h264::picture_size& size)
{
    return fmt::format("{}x{}", size.width, size.height);
}

std::string or_number(const std::string& name, std::uint64_t number)
{
    return name.empty() ? fmt::format("unknown ({})", number) : name;
}

std::string or_dash(std::string name)
{
    return name.empty() ? "-" : name;
}

std::string display_text(const h264::seq_parameter_set_data& sps)
{
    const h264::picture_size size = h264::cropped_size(sps);
    const h264::ratio sample = known(h264::sample_aspect_ratio(sps.vui_parameters)).value_or(h264::ratio{1, 1});
    const auto shape = known({size.width * sample.numerator, size.height * sample.denominator});
    return shape ? fmt::format("{} ({})", size_text(display_size(sps)), ratio_text(*shape)) : "";
}

std::string bit_depth_text(const h264::seq_parameter_set_data& sps)
{
    const std::uint64_t luma = h264::BitDepthY(sps);
    const std::uint64_t chroma = h264::BitDepthC(sps);
    if (luma == chroma || sps.chroma_format_idc == 0)
        return fmt::format("{} bits", luma);
    return fmt::format("{} bits luma, {} bits chroma", luma, chroma);
}

std::string scan_text(const sequence_summary& sequence)
{
    std::string text = scan_type(sequence);
    if (sequence.top_field_first && !sequence.sps.frame_mbs_only_flag)
        text += *sequence.top_field_first ? ", top field first" : ", bottom field first";
    if (sequence.field_pictures > 0)
        text += fmt::format(" ({} coded fields, {} coded frames)", sequence.field_pictures,
                            sequence.frame_pictures + sequence.mbaff_pictures);
    return text;
}

const char* entropy_text(const sequence_summary& sequence)
{
    return sequence.cabac ? (sequence.cavlc ? "CABAC and CAVLC" : "CABAC") : (sequence.cavlc ? "CAVLC" : "");
}

std::string reorder_text(const sequence_summary& sequence)
{
    const promised_depth promised = promised_reorder_depth(sequence.sps);
    return fmt::format("{} used, {} {}", sequence.reorder_depth, promised.frames,
                       promised.sent ? "promised" : "inferred");
}

std::string colour_text(const h264::vui_parameters& vui)
{
    if (!vui.video_signal_type_present_flag)
        return "";
    std::string range = vui.video_full_range_flag ? "full range" : "limited range";
    if (!vui.colour_description_present_flag)
        return range;
    return fmt::format(
        "{}; primaries {}; transfer {}; matrix {}", range,
        or_number(words_of("colour_primaries", vui.colour_primaries), vui.colour_primaries),
        or_number(words_of("transfer_characteristics", vui.transfer_characteristics), vui.transfer_characteristics),
        or_number(words_of("matrix_coefficients", vui.matrix_coefficients), vui.matrix_coefficients));
}

void print_hrd(const char* label, bool present, const h264::hrd_parameters& hrd, const second_rates& rates)
{
    for (std::uint32_t i = 0; present && i < h264::schedule_count(hrd); ++i) {
        std::string text = fmt::format("{} bit/s{}, buffer of {} bits", h264::BitRate(hrd, i),
                                       hrd.cbr_flag[i] ? " constant" : " at most", h264::CpbSize(hrd, i));
        if (rates.seconds > 0)
            text += fmt::format("; {} of {} seconds above, the fullest {:.0f} bits", rates.above[i], rates.seconds,
                                rates.largest);
        print_row(label, text);
    }
}

void print_rates(const h264::vui_parameters& vui)
{
    const auto fields = known(h264::field_rate(vui));
    if (!fields)
        return;
    print_row("Field rate", rate_text(*fields));
    print_row("Frame rate",
              rate_text(*known(h264::frame_rate(vui))) + (vui.fixed_frame_rate_flag ? ", fixed" : ", not fixed"));
}

void print_sequence(const sequence_summary& sequence)
{
    const h264::seq_parameter_set_data& sps = sequence.sps;
    const h264::vui_parameters& vui = sps.vui_parameters;
    print_row("Codec string", h264::codec_string(sps).data());
    print_row("Profile", or_number(h264::profile_name(sps), sps.profile_idc));
    print_row("Level", level_name(sps));
    print_row("Picture size",
              fmt::format("{} (coded {})", size_text(h264::cropped_size(sps)), size_text(h264::coded_size(sps))));
    if (const auto shape = known(h264::sample_aspect_ratio(vui)))
        print_row("Sample aspect ratio", ratio_text(*shape));
    print_row("Display size", display_text(sps));
    print_row("Chroma format", or_number(words_of("chroma_format_idc", sps.chroma_format_idc), sps.chroma_format_idc));
    print_row("Bit depth", bit_depth_text(sps));
    print_row("Scan type", scan_text(sequence));
    print_row("Entropy coding", entropy_text(sequence));
    print_row("Reference frames", fmt::format("{}", sps.max_num_ref_frames));
    print_row("Reorder depth", reorder_text(sequence));
    print_rates(vui);
    print_row("Colour", colour_text(vui));
    print_hrd("NAL HRD", vui.nal_hrd_parameters_present_flag, vui.nal_hrd_parameters, sequence.nal_seconds);
    print_hrd("VCL HRD", vui.vcl_hrd_parameters_present_flag, vui.vcl_hrd_parameters, sequence.vcl_seconds);
}

void print_sequences(const std::vector<sequence_summary>& sequences, std::uint64_t further)
{
    if (sequences.size() == 1)
        print_sequence(sequences.front());
    else
        for (std::size_t i = 0; i < sequences.size(); ++i) {
            print_heading(fmt::format("Sequence {} of {}, from offset {}, {} pictures", i + 1, sequences.size(),
                                      sequences[i].offset, sequences[i].pictures));
            if (i > 0)
                print_row("Changes",
                          fmt::format("{}", fmt::join(changes_between(sequences[i - 1].sps, sequences[i].sps), ", ")));
            print_sequence(sequences[i]);
        }
    if (sequences.size() > 1)
        print_heading("All sequences");
    if (further > 0)
        print_row("Sequences", fmt::format("{} shown, {} further ones not", sequences.size(), further));
}

std::string bit_rate_text(const frame_totals& frames)
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
        print_row("Bit rate", bit_rate_text(frames));
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
    const std::string& settings = encoder->settings;
    print_row("Encoder settings",
              settings.size() <= most_settings ? settings : settings.substr(0, most_settings) + " ...");
}

std::string layer_name(const layer_summary& layer)
{
    const h264::slice_layer& what = layer.layer;
    if (layer.scalable)
        return fmt::format("D{} Q{} T{}", what.dependency_id, what.quality_id, what.temporal_id);
    return fmt::format("view {}{}", what.view_id, what.depth ? " depth" : "");
}

std::string layer_text(const layer_summary& layer)
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
        fmt::print("{:>10}  {:>10}  {:>10}  {:>10}  {}: {}\n", layer.pictures, layer.units, layer.bytes,
                   rate ? fmt::format("{}", *rate) : "-", layer_name(layer), layer_text(layer));
    }
    if (summary.layers.further_units() > 0)
        print_row("Layers",
                  fmt::format("{} shown, {} units of further ones not", layers.size(), summary.layers.further_units()));
}

void print_types(const stream_summary& summary)
{
    print_heading("     units       bytes  NAL unit type");
    for (std::size_t type = 0; type < summary.types.size(); ++type)
        if (const stream_summary::type_count& count = summary.types[type]; count.units > 0)
            fmt::print("{:>10}  {:>10}  {:>2}  {}\n", count.units, count.bytes, type,
                       brenik::h264_nal_unit_type_to_str(static_cast<brenik::h264_nal_unit_type>(type)));
}

void print_sei(const sei_counts& sei)
{
    if (sei.by_type().empty())
        return;
    print_heading("  messages  SEI payload type");
    for (const auto& [type, count] : sei.by_type())
        fmt::print("{:>10}  {:>3}  {}\n", count, type, or_dash(payload_name(type)));
    if (sei.further_messages() > 0)
        fmt::print("{:>10}  of further types\n", sei.further_messages());
    if (sei.units_not_read() > 0)
        fmt::print("{} SEI units are not among them\n", sei.units_not_read());
}

void print_kinds(const char* heading, const std::vector<problem_kind>& kinds)
{
    if (kinds.empty())
        return;
    print_heading(heading);
    for (const problem_kind& kind : kinds)
        fmt::print("{}\n", describe(kind));
}

} // namespace

void print_info(const stream_input& input, const stream_summary& summary)
{
    print_row("File", printable(input.name()));
    print_row("Framing", framing_name(input.framing()));
    print_row("Size", fmt::format("{} bytes", input.bytes_read()));
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
