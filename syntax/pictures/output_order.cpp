// The output order conformance of a decoder, H.264 clause C.4, without its samples.
#include <orv-utils-v4/h264_syntax/output_order.h>

#include "picture_slots.h"

#include <orv-utils-v4/h264_syntax/derived.h>

#include <algorithm>
#include <bit>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::uint32_t most_frames = output_order::most_waiting; // a name that is no symbol

/// Frame buffers, at least as many as references need.
std::size_t buffers_of(const seq_parameter_set_data& sps)
{
    return std::max(most_buffered_frames(sps), std::min(sps.max_num_ref_frames, most_frames));
}

} // namespace

std::uint32_t most_buffered_frames(const seq_parameter_set_data& sps) noexcept
{
    const vui_parameters& vui = sps.vui_parameters;
    const std::uint32_t frames =
        vui.bitstream_restriction_flag ? vui.max_dec_frame_buffering : inferred_reorder_frames(sps);
    return std::min(frames, most_frames);
}

std::uint32_t most_reordered_frames(const seq_parameter_set_data& sps) noexcept
{
    if (sps.pic_order_cnt_type == 2)
        return 0;
    const vui_parameters& vui = sps.vui_parameters;
    return vui.bitstream_restriction_flag ? std::min(vui.max_num_reorder_frames, most_frames)
                                          : most_buffered_frames(sps);
}

void output_order::end_sequence(bool discard, picture_sink& to)
{
    for (const waiting_picture& w : waiting)
        slots[w.slot].discarded = discard;
    while (!waiting.empty())
        bump(to);
}

// Each of them slides the window before it is stored, so that the last one needs the most room.
void output_order::make_room(const seq_parameter_set_data& sps, const reference_marking& marking, picture_sink& to)
{
    constexpr std::uint64_t no_picture = ~std::uint64_t{0};
    while (!waiting.empty() && fullness(marking, no_picture) > buffers_of(sps))
        bump(to);
}

void output_order::begin(const picture& next, const seq_parameter_set_data& sps, const reference_marking& marking,
                         picture_sink& to)
{
    at_once = mode == output_mode::when_decoded;
    if (at_once)
        return;
    if (mode == output_mode::early)
        most_reordered = most_reordered_frames(sps);
    const std::size_t size = buffers_of(sps);
    for (std::size_t full = fullness(marking, next.number); full >= size;) {
        const waiting_picture* const first = lowest();
        const bool precedes = waiting.empty() || next.count.lower() < first->count;
        at_once = next.nal_ref_idc == 0 && precedes;
        if (at_once || waiting.empty()) // else more is used for reference than the buffer holds
            return;
        full -= marking.uses(first->number) ? 0 : 1;
        picture_slots::bump(*this, first, to);
    }
}

void output_order::begin_alone() noexcept
{
    at_once = true;
}

void output_order::end(const picture& complete, picture_sink& to)
{
    const std::uint8_t slot = picture_slots::free_slot(*this);
    slots[slot] = complete;
    picture_slots::end(*this, slot, to);
}

void picture_slots::end(output_order& of, const picture& complete, picture_sink& to)
{
    end(of, static_cast<std::uint8_t>(&complete - of.slots), to);
}

std::uint8_t picture_slots::free_slot(const output_order& of) noexcept
{
    return static_cast<std::uint8_t>(std::countr_one(of.used_slots));
}

void picture_slots::end(output_order& of, std::uint8_t slot, picture_sink& to)
{
    const picture& complete = of.slots[slot];
    if (of.at_once)
        return of.output(of.slots[slot], to);
    of.used_slots |= std::uint32_t{1} << slot;
    of.waiting.grow();
    of.waiting.back() = {complete.count.lower(), complete.number, slot};
    while (of.mode == output_mode::early && of.waiting.size() > of.most_reordered)
        of.bump(to);
}

/// Frame buffers that are not empty: their frames are used for reference, or waiting. Both lists are in decoding order.
std::size_t output_order::fullness(const reference_marking& marking, std::uint64_t except) const noexcept
{
    std::size_t full = 0;
    const waiting_picture* w = waiting.begin();
    for (const reference_frame& f : marking) {
        if (f.non_existing) {
            ++full;
            continue;
        }
        for (; w != waiting.end() && w->number < f.number; ++w)
            ++full;
        if (w != waiting.end() && w->number == f.number)
            ++w;
        full += f.number != except ? 1 : 0;
    }
    return full + static_cast<std::size_t>(waiting.end() - w);
}

/// The picture that is output next.
const output_order::waiting_picture* output_order::lowest() const noexcept
{
    return std::min_element(waiting.begin(), waiting.end(),
                            [](const waiting_picture& a, const waiting_picture& b) { return a.count < b.count; });
}

void output_order::bump(picture_sink& to)
{
    picture_slots::bump(*this, lowest(), to);
}

void picture_slots::bump(output_order& of, const output_order::waiting_picture* next, picture_sink& to)
{
    const std::uint8_t slot = next->slot;
    output_order::waiting_picture* const place = of.waiting.begin() + (next - of.waiting.begin());
    std::copy(place + 1, of.waiting.end(), place);
    of.waiting.resize(of.waiting.size() - 1);
    of.used_slots &= ~(std::uint32_t{1} << slot);
    of.output(of.slots[slot], to);
}

void output_order::output(picture& picture, picture_sink& to)
{
    picture.output_number = output_count++;
    to.output(picture);
}

} // namespace orv_utils_v4::h264
