// The output order conformance of a decoder, H.264 clause C.4, without its samples.
#include <orv-utils-v4/h264_syntax/output_order.h>

#include <orv-utils-v4/h264_syntax/derived.h>

#include <algorithm>

namespace orv_utils_v4::h264 {

std::uint32_t most_buffered_frames(const seq_parameter_set_data& sps) noexcept
{
    const vui_parameters& vui = sps.vui_parameters;
    const std::uint32_t frames =
        vui.bitstream_restriction_flag ? vui.max_dec_frame_buffering : inferred_reorder_frames(sps);
    return std::min(frames, reference_marking::most_frames);
}

std::uint32_t most_reordered_frames(const seq_parameter_set_data& sps) noexcept
{
    if (sps.pic_order_cnt_type == 2)
        return 0;
    const vui_parameters& vui = sps.vui_parameters;
    return vui.bitstream_restriction_flag ? std::min(vui.max_num_reorder_frames, output_order::most_waiting)
                                          : most_buffered_frames(sps);
}

void output_order::end_sequence(bool discard, picture_sink& to)
{
    for (picture& p : waiting)
        p.discarded = discard;
    while (!waiting.empty())
        bump(to);
}

void output_order::begin(const picture& next, const seq_parameter_set_data& sps, const reference_marking& marking,
                         picture_sink& to)
{
    most_reordered = most_reordered_frames(sps);
    const std::size_t size = std::max(most_buffered_frames(sps), std::min(sps.max_num_ref_frames, most_waiting));
    at_once = mode == output_mode::when_decoded;
    while (!at_once && fullness(marking, next.number) >= size) {
        const bool first = waiting.empty() || next.count.lower() < waiting[lowest()].count.lower();
        if (next.nal_ref_idc == 0 && first)
            at_once = true;
        else if (waiting.empty()) // more is used for reference than the buffer holds
            return;
        else
            bump(to);
    }
}

void output_order::begin_alone() noexcept
{
    at_once = true;
}

void output_order::end(const picture& complete, picture_sink& to)
{
    if (at_once)
        return output(complete, to);
    waiting.grow();
    waiting.back() = complete;
    while (mode == output_mode::early && waiting.size() > most_reordered)
        bump(to);
}

/// Frame buffers that are not empty: their frames are waiting, or used for reference.
std::size_t output_order::fullness(const reference_marking& marking, std::uint64_t except) const noexcept
{
    const auto of_references = std::count_if(
        marking.begin(), marking.end(), [&](const reference_frame& f) { return f.non_existing || f.number != except; });
    const auto of_others =
        std::count_if(waiting.begin(), waiting.end(), [&](const picture& p) { return !marking.uses(p.number); });
    return static_cast<std::size_t>(of_references + of_others);
}

/// The picture that is output next.
std::size_t output_order::lowest() const noexcept
{
    const auto* const found = std::min_element(waiting.begin(), waiting.end(), [](const picture& a, const picture& b) {
        return a.count.lower() < b.count.lower();
    });
    return static_cast<std::size_t>(found - waiting.begin());
}

void output_order::bump(picture_sink& to)
{
    picture* const next = waiting.begin() + lowest();
    const picture gone = *next;
    std::copy(next + 1, waiting.end(), next);
    waiting.resize(waiting.size() - 1);
    output(gone, to);
}

void output_order::output(picture picture, picture_sink& to)
{
    picture.output_number = output_count++;
    to.output(picture);
}

} // namespace orv_utils_v4::h264
