#include "show_sequences.h"

#include "standard_output.h"
#include "terminal.h"
#include "words.h"

#include <cstdio>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

void print_row(std::string_view label, std::string_view text)
{
    constexpr int label_width = 22;
    if (!text.empty())
        write_output(fmt::format("{:<{}}{}\n", label, label_width, text));
}

void print_heading(std::string_view text)
{
    write_output(fmt::format("\n{}\n", emphasised(stdout, emphasis::strong, text)));
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

namespace {

std::string ratio_text(const h264::ratio& ratio)
{
    return fmt::format("{}:{}", ratio.numerator, ratio.denominator);
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

} // namespace

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

} // namespace orv_h264
