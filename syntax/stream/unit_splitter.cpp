// Splitting into NAL units, H.264 B.1 and ISO/IEC 14496-15.
#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include "stream/start_codes.h"

#include <algorithm>
#include <utility>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::size_t longest_look_back = 2; // of the three bytes that end a unit, those before a piece

} // namespace

void unit_splitter::push(const unsigned char* piece, std::size_t size, split_sink& to)
{
    piece_end = piece + size;
    pushed += size;
    for (const unsigned char* at = piece; at != piece_end;) {
        if (frames != framing::annex_b)
            at = in_unit ? take_prefixed(at, piece_end, to) : take_prefix(at, piece_end, to);
        else
            at = in_unit ? take_unit(at, piece_end, to) : take_between(at, piece_end, to);
    }
}

void unit_splitter::flush(split_sink& to)
{
    static constexpr unsigned char nothing = 0;
    piece_end = &nothing;
    if (frames != framing::annex_b) {
        if (in_unit)
            hand_on(held.data(), held.size(), true, to);
        else if (prefix_bytes != 0)
            to.gap({split_gap_reason::cut_prefix, pushed - prefix_bytes, prefix_bytes});
        prefix_bytes = 0;
        return;
    }
    if (in_unit) {
        while (!held.empty() && held.back() == 0) {
            held.pop_back();
            --held_size;
        }
        end_unit(&nothing, &nothing, to);
    }
    close_gap(pushed - zeros, to);
}

// Goes to the end of the Annex B unit, or keeps what there is of it. Its end may have begun before the piece. Units
// whose start codes follow at once are taken with it: the search knows more than the one end.
const unsigned char* unit_splitter::take_unit(const unsigned char* at, const unsigned char* fence, split_sink& to)
{
    const std::size_t before = std::min(held.size(), longest_look_back);
    const std::size_t behind = std::min(static_cast<std::size_t>(fence - at), longest_look_back);
    unsigned char seam[2 * longest_look_back];
    std::copy(held.end() - static_cast<std::ptrdiff_t>(before), held.end(), seam);
    std::copy(at, at + behind, seam + before);
    const unsigned char* const seam_end = seam + before + behind;
    unit_ends ends_in_seam(seam, seam_end);
    const auto in_seam = ends_in_seam.next_few();
    const std::size_t end_in_seam = in_seam.empty() ? before : static_cast<std::size_t>(in_seam.front() - seam);
    if (end_in_seam < before) {
        zeros = before - end_in_seam;
        held.resize(held.size() - zeros);
        held_size -= zeros;
        end_unit(at, at, to);
        return at;
    }
    unit_ends ends(at, fence);
    for (auto few = ends.next_few(); !few.empty(); few = ends.next_few())
        for (const unsigned char* const end : few) {
            zeros = 0;
            end_unit(at, end, to);
            const unsigned char* const code = start_code::behind(end, fence);
            if (code == fence)
                return end;
            at = code + start_code::size;
            framing_size = code == end ? 3 : 4;
            unit_offset = offset_of(at);
            in_unit = true;
        }
    hold(at, fence);
    return fence;
}

// Goes to the next start code. Bytes that are neither zero nor of a start code are a gap.
const unsigned char* unit_splitter::take_between(const unsigned char* at, const unsigned char* fence, split_sink& to)
{
    for (; at != fence; ++at) {
        if (*at == 0) {
            ++zeros;
            continue;
        }
        if (*at == 1 && zeros >= 2) {
            close_gap(offset_of(at) - zeros, to);
            framing_size = zeros >= 3 ? 4 : 3;
            unit_offset = offset_of(at) + 1;
            in_unit = true;
            return at + 1;
        }
        if (!gap_open) {
            open_gap = {any_unit ? split_gap_reason::between_units : split_gap_reason::before_first_unit, offset_of(at),
                        0};
            gap_open = true;
        }
        zeros = 0;
    }
    return at;
}

const unsigned char* unit_splitter::take_prefix(const unsigned char* at, const unsigned char* fence, split_sink& to)
{
    const auto size = static_cast<unsigned>(frames);
    for (; at != fence && prefix_bytes != size; ++at, ++prefix_bytes)
        length = length << 8 | *at;
    if (prefix_bytes != size)
        return at;
    prefix_bytes = 0;
    framing_size = size;
    unit_offset = offset_of(at);
    in_unit = length != 0;
    if (!in_unit)
        to.gap({split_gap_reason::no_header, unit_offset - size, size});
    return at;
}

const unsigned char* unit_splitter::take_prefixed(const unsigned char* at, const unsigned char* fence, split_sink& to)
{
    const std::uint64_t missing = length - held_size;
    if (static_cast<std::uint64_t>(fence - at) < missing) {
        hold(at, fence);
        return fence;
    }
    const unsigned char* const end = at + missing;
    end_unit(at, end, to);
    return end;
}

// Of a unit above the limit the last two bytes alone are kept: the next start code may begin with them, and they may be
// zeros that are none of the unit's.
void unit_splitter::hold(const unsigned char* at, const unsigned char* fence)
{
    const auto size = static_cast<std::size_t>(fence - at);
    if (held_size == 0 && size != 0)
        header = *at;
    held_size += size;
    dropped = dropped || length > most || (held_size > most && held_size - most > longest_look_back);
    if (!dropped) {
        try {
            held.insert(held.end(), at, fence);
            return;
        } catch (...) {
            dropped = true;
        }
    }
    unsigned char tail[2 * longest_look_back];
    const std::size_t before = std::min(held.size(), longest_look_back);
    const std::size_t behind = std::min(size, longest_look_back);
    std::copy(held.end() - static_cast<std::ptrdiff_t>(before), held.end(), tail);
    std::copy(fence - behind, fence, tail + before);
    const std::size_t kept = std::min(before + behind, longest_look_back);
    held.clear();
    held.reserve(longest_look_back);
    held.insert(held.end(), tail + before + behind - kept, tail + before + behind);
}

// The unit is what is held and [at, end).
void unit_splitter::end_unit(const unsigned char* at, const unsigned char* end, split_sink& to)
{
    const auto size = static_cast<std::size_t>(end - at);
    if (held_size == 0)
        return hand_on(at, held_size = size, false, to);
    hold(at, end);
    hand_on(held.data(), held.size(), false, to);
}

void unit_splitter::hand_on(const unsigned char* bytes, std::size_t size, bool cut, split_sink& to)
{
    const std::uint64_t stated = std::exchange(length, 0);
    const std::uint64_t whole = std::exchange(held_size, 0);
    const bool lost = std::exchange(dropped, false);
    in_unit = false;
    any_unit = true;
    const bool above = whole > most || stated > most;
    if (lost || above)
        to.gap({above ? split_gap_reason::too_large : split_gap_reason::no_memory, unit_offset - framing_size,
                framing_size + whole, stated,
                lost        ? header
                : size == 0 ? static_cast<unsigned char>(0)
                            : bytes[0]});
    else if (whole == 0)
        to.gap({split_gap_reason::no_header, unit_offset - framing_size, framing_size});
    else
        to.unit({bytes, size, unit_offset, framing_size, stated, cut});
    held.clear();
}

void unit_splitter::close_gap(std::uint64_t end, split_sink& to)
{
    if (!gap_open)
        return;
    gap_open = false;
    open_gap.size = end - open_gap.offset;
    to.gap(open_gap);
}

} // namespace orv_utils_v4::h264
