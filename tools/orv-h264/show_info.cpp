#include "show_info.h"

#include "framing.h"
#include "names.h"
#include "printable.h"
#include "terminal.h"

#include <cstdio>
#include <numeric>
#include <string_view>

#include <fmt/format.h>

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

std::string ratio_text(const fraction& ratio)
{
    return fmt::format("{}:{}", ratio.numerator, ratio.denominator);
}

std::string rate_text(const fraction& rate)
{
    const std::string hertz = fmt::format("{:.7g} Hz", rate.value());
    return rate.denominator == 1 ? hertz : fmt::format("{} ({}/{})", hertz, rate.numerator, rate.denominator);
}

std::string size_text(const picture_size& size)
{
    return fmt::format("{}x{}", size.width, size.height);
}

std::string or_number(const std::string& name, std::uint64_t number)
{
    return name.empty() ? fmt::format("unknown ({})", number) : name;
}

std::string display_text(const brenik::h264_nal_sps& sps)
{
    const picture_size size = cropped_size(sps);
    const fraction sample = sample_aspect_ratio(sps).value_or(fraction{1, 1});
    const std::uint64_t width = size.width * sample.numerator;
    const std::uint64_t height = size.height * sample.denominator;
    const std::uint64_t divisor = std::gcd(width, height);
    if (divisor == 0)
        return "";
    return fmt::format("{} ({}:{})", size_text(display_size(sps)), width / divisor, height / divisor);
}

std::string bit_depth_text(const brenik::h264_nal_sps& sps)
{
    const std::uint64_t luma = std::uint64_t{sps.bit_depth_luma_minus8} + 8;
    const std::uint64_t chroma = std::uint64_t{sps.bit_depth_chroma_minus8} + 8;
    if (luma == chroma || chroma_format_of(sps) == 0)
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

std::string colour_text(const brenik::h264_nal_sps& sps)
{
    const brenik::h264_vui_parameters& vui = sps.vui;
    if (!sps.vui_parameters_present_flag || !vui.video_signal_type_present_flag)
        return "";
    std::string range = vui.video_full_range_flag ? "full range" : "limited range";
    if (!vui.colour_description_present_flag)
        return range;
    return fmt::format(
        "{}; primaries {}; transfer {}; matrix {}", range,
        or_number(colour_primaries_name(vui.colour_primaries), vui.colour_primaries),
        or_number(transfer_characteristics_name(vui.transfer_characteristics), vui.transfer_characteristics),
        or_number(matrix_coefficients_name(vui.matrix_coefficients), vui.matrix_coefficients));
}

void print_hrd(const char* label, bool present, const brenik::h264_hrd_parameters& hrd)
{
    if (!present)
        return;
    for (const cpb_schedule& schedule : schedules_of(hrd))
        print_row(label, fmt::format("{} bit/s{}, buffer of {} bits", schedule.bit_rate,
                                     schedule.constant ? " constant" : " at most", schedule.size));
}

void print_rates(const brenik::h264_nal_sps& sps)
{
    const auto fields = field_rate(sps);
    if (!fields)
        return;
    print_row("Field rate", rate_text(*fields));
    print_row("Frame rate", rate_text(half(*fields)) + (sps.vui.fixed_frame_rate_flag ? ", fixed" : ", not fixed"));
}

void print_sequence(const sequence_summary& sequence)
{
    const brenik::h264_nal_sps& sps = sequence.sps;
    print_row("Codec string", codec_string(sps));
    print_row("Profile", or_number(profile_name(sps), sps.profile_idc));
    print_row("Level", level_name(sps));
    print_row("Picture size",
              fmt::format("{} (coded {}x{})", size_text(cropped_size(sps)), sps.getPicWidth(), sps.getPicHeight()));
    if (const auto shape = sample_aspect_ratio(sps))
        print_row("Sample aspect ratio", ratio_text(*shape));
    print_row("Display size", display_text(sps));
    print_row("Chroma format", or_number(chroma_format_name(chroma_format_of(sps)), chroma_format_of(sps)));
    print_row("Bit depth", bit_depth_text(sps));
    print_row("Scan type", scan_text(sequence));
    print_row("Entropy coding", entropy_text(sequence));
    print_row("Reference frames", fmt::format("{}", sps.max_num_ref_frames));
    print_rates(sps);
    print_row("Colour", colour_text(sps));
    if (!sps.vui_parameters_present_flag)
        return;
    print_hrd("NAL HRD", sps.vui.nal_hrd_parameters_present_flag, sps.vui.nal_hrd);
    print_hrd("VCL HRD", sps.vui.vcl_hrd_parameters_present_flag, sps.vui.vcl_hrd);
}

void print_sequences(const std::vector<sequence_summary>& sequences, std::uint64_t further)
{
    if (sequences.size() == 1)
        print_sequence(sequences.front());
    else
        for (std::size_t i = 0; i < sequences.size(); ++i) {
            print_heading(fmt::format("Sequence {} of {}, from offset {}, {} pictures", i + 1, sequences.size(),
                                      sequences[i].offset, sequences[i].pictures()));
            print_sequence(sequences[i]);
        }
    if (sequences.size() > 1)
        print_heading("All sequences");
    if (further > 0)
        print_row("Sequences", fmt::format("{} shown, {} further ones not", sequences.size(), further));
}

void print_frames(const frame_totals& frames)
{
    if (const auto mean = frames.bit_rate().mean()) {
        const auto peak = frames.bit_rate().peak();
        print_row("Duration", fmt::format("{:.6f} s", frames.bit_rate().seconds()));
        print_row("Bit rate",
                  fmt::format("mean {:.0f} bit/s{}", *mean, peak ? fmt::format(", peak {:.0f} bit/s", *peak) : ""));
    }
    print_row("Frames", fmt::format("{}, {} of them key frames", frames.frames(), frames.key_frames()));
    if (const auto distance = frames.key_distance())
        print_row("Key-frame distance",
                  fmt::format("{} to {} frames, mean {:.4g}", distance->least, distance->most, distance->mean));
}

void print_types(const stream_summary& summary)
{
    print_heading("     units       bytes  NAL unit type");
    for (std::size_t type = 0; type < summary.types.size(); ++type)
        if (const stream_summary::type_count& count = summary.types[type]; count.units > 0)
            fmt::print("{:>10}  {:>10}  {:>2}  {}\n", count.units, count.bytes, type,
                       brenik::h264_nal_unit_type_to_str(static_cast<brenik::h264_nal_unit_type>(type)));
}

void print_problems(const std::vector<problem_kind>& kinds)
{
    if (kinds.empty())
        return;
    print_heading("Problems");
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
    print_row("Encoder", summary.encoder);
    print_types(summary);
    print_problems(summary.problems.kinds());
}

} // namespace orv_h264
