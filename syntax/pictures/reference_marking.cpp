// Decoded reference picture marking, H.264 clause 8.2.5, with the picture numbers of 8.2.4.1.
#include <orv-utils-v4/h264_syntax/reference_marking.h>

#include "operation_5.h"

#include <orv-utils-v4/h264_syntax/picture_size.h>

#include <algorithm>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::uint8_t both_fields = 3;

std::uint8_t fields_of(const slice_header& header)
{
    if (!header.field_pic_flag)
        return both_fields;
    return header.bottom_field_flag ? 2 : 1;
}

std::uint32_t most_frames_of(const seq_parameter_set_data& sps)
{
    constexpr std::uint32_t most = reference_marking::most_frames;
    return std::clamp(sps.max_num_ref_frames, std::uint32_t{1}, most);
}

/// FrameNumWrap (8-27).
std::int64_t FrameNumWrap(const reference_frame& frame, std::uint32_t frame_num, const seq_parameter_set_data& sps)
{
    const std::int64_t FrameNum = frame.frame_num;
    return FrameNum > frame_num ? FrameNum - static_cast<std::int64_t>(MaxFrameNum(sps)) : FrameNum;
}

/// `a` - `b` modulo MaxFrameNum, a power of two.
std::uint64_t frame_nums_between(std::uint64_t b, std::uint64_t a, const seq_parameter_set_data& sps)
{
    const std::uint64_t last = MaxFrameNum(sps) - 1;
    return (a + last + 1 - (b & last)) & last;
}

/// Of [`from`, `to`) the one with something marked for short-term reference and the lowest FrameNumWrap; or null.
reference_frame* oldest_short_term(reference_frame* from, reference_frame* to, std::uint32_t frame_num,
                                   const seq_parameter_set_data& sps)
{
    reference_frame* oldest = nullptr;
    std::int64_t lowest = 0;
    for (; from != to; ++from) {
        if (from->short_term == 0)
            continue;
        const std::int64_t wrap = FrameNumWrap(*from, frame_num, sps);
        if (oldest == nullptr || wrap < lowest) {
            oldest = from;
            lowest = wrap;
        }
    }
    return oldest;
}

bool marked(const reference_frame& frame)
{
    return (frame.short_term | frame.long_term) != 0;
}

} // namespace

bool reference_marking::uses(std::uint64_t number) const noexcept
{
    return std::any_of(begin(), end(), [&](const reference_frame& f) { return f.number == number && !f.non_existing; });
}

// The frames between are non-existing ones; of many the last ones push all others out.
marking_result reference_marking::before_picture(const marked_picture& picture) noexcept
{
    marking_result result;
    const std::uint64_t frame_num = picture.header.frame_num;
    const std::uint64_t behind = frame_nums_between(PrevRefFrameNum, frame_num, picture.sps);
    if (!any_picture) // a stream may begin anywhere
        PrevRefFrameNum = static_cast<std::uint32_t>(frame_nums_between(1, frame_num, picture.sps));
    const bool follows = picture.idr || picture.second_field || !any_picture || behind <= 1;
    any_picture = true;
    if (follows)
        return result;
    result.missing = behind - 1;
    for (std::uint64_t i = std::min<std::uint64_t>(result.missing, most_frames); i > 0; --i)
        infer_frame(static_cast<std::uint32_t>(frame_nums_between(i, frame_num, picture.sps)), picture.sps);
    return result;
}

void reference_marking::infer_frame(std::uint32_t frame_num, const seq_parameter_set_data& sps) noexcept
{
    slide(frame_num, sps);
    frames.grow();
    frames.back() = {0, frame_num, 0, both_fields, 0, true};
    PrevRefFrameNum = frame_num;
}

// 8.2.5.1
marking_result reference_marking::after_picture(const marked_picture& picture) noexcept
{
    marking_result result;
    if (picture.nal_ref_idc == 0)
        return result;
    const dec_ref_pic_marking& marking = picture.header.dec_ref_pic_marking;
    const std::uint8_t fields = fields_of(picture.header);
    if (picture.idr)
        frames.clear();
    else if (!marking.adaptive_ref_pic_marking_mode_flag && !(has_entry(picture) && frames.back().short_term != 0))
        slide(picture.header.frame_num, picture.sps);
    reference_frame& current = entry_of(picture);
    if (picture.idr) {
        current.long_term = marking.long_term_reference_flag ? fields : 0;
    } else if (marking.adaptive_ref_pic_marking_mode_flag) {
        for (const marking_operation& operation : marking.operations)
            result.no_such_picture |= !operate(picture, operation, current);
    }
    if ((current.long_term & fields) == 0)
        current.short_term |= fields;
    current.frame_num = with_operation_5(picture.header) ? 0 : picture.header.frame_num;
    PrevRefFrameNum = current.frame_num;
    if (marking.adaptive_ref_pic_marking_mode_flag)
        drop_unused();
    result.too_many = drop_what_is_too_much(picture.sps);
    return result;
}

/// The frame of the picture, at the end of all: a second field finds that of the first one.
reference_frame& reference_marking::entry_of(const marked_picture& picture) noexcept
{
    if (!has_entry(picture)) {
        frames.grow();
        frames.back() = {picture.number, picture.header.frame_num, 0, 0, 0, false};
    }
    return frames.back();
}

// The sliding window, 8.2.5.3. A frame with a field of each kind is in both numbers. What nothing is marked of goes.
void reference_marking::slide(std::uint32_t frame_num, const seq_parameter_set_data& sps) noexcept
{
    std::uint32_t marks = 0; // numShortTerm + numLongTerm
    for (const reference_frame& f : frames)
        marks += (f.short_term != 0 ? 1U : 0U) + (f.long_term != 0 ? 1U : 0U);
    for (const std::uint32_t most = most_frames_of(sps); marks >= most; --marks) {
        reference_frame* const oldest = oldest_short_term(frames.begin(), frames.end(), frame_num, sps);
        if (oldest == nullptr)
            return;
        oldest->short_term = 0;
        if (oldest->long_term != 0)
            continue;
        std::copy(oldest + 1, frames.end(), oldest);
        frames.resize(frames.size() - 1);
    }
}

bool reference_marking::operate(const marked_picture& picture, const marking_operation& operation) noexcept
{
    const bool begun = !frames.empty() && frames.back().number == picture.number && !frames.back().non_existing;
    const bool known = operate(picture, operation, begun ? frames.back() : entry_of(picture));
    drop_unused();
    return known;
}

named_reference reference_marking::short_term(const marked_picture& picture, std::int64_t PicNum) const noexcept
{
    reference_marking copy = *this;
    const named_fields found = copy.find_short_term(picture, PicNum);
    return {found.of == nullptr ? nullptr : begin() + (found.of - copy.begin()), found.fields};
}

named_reference reference_marking::long_term(const marked_picture& picture, std::uint32_t LongTermPicNum) const noexcept
{
    reference_marking copy = *this;
    const named_fields found = copy.find_long_term(picture, LongTermPicNum);
    return {found.of == nullptr ? nullptr : begin() + (found.of - copy.begin()), found.fields};
}

/// 8.2.5.4; false when the operation names a picture that is not there.
bool reference_marking::operate(const marked_picture& picture, const marking_operation& operation,
                                reference_frame& current) noexcept
{
    const std::int64_t frame_num = picture.header.frame_num;
    const std::int64_t CurrPicNum = picture.header.field_pic_flag ? 2 * frame_num + 1 : frame_num;
    const std::int64_t picNumX = CurrPicNum - (std::int64_t{operation.difference_of_pic_nums_minus1} + 1);
    const std::uint32_t index = operation.long_term_frame_idx;
    switch (operation.memory_management_control_operation) {
    case 1: {
        const named_fields found = find_short_term(picture, picNumX);
        if (found.of != nullptr)
            found.of->short_term &= static_cast<std::uint8_t>(~found.fields);
        return found.of != nullptr;
    }
    case 2: {
        const named_fields found = find_long_term(picture, operation.long_term_pic_num);
        if (found.of != nullptr)
            found.of->long_term &= static_cast<std::uint8_t>(~found.fields);
        return found.of != nullptr;
    }
    case 3: {
        const named_fields found = find_short_term(picture, picNumX);
        if (found.of != nullptr) {
            found.of->short_term &= static_cast<std::uint8_t>(~found.fields);
            make_long_term(found, index);
        }
        return found.of != nullptr;
    }
    case 4:
        for (reference_frame& f : frames) {
            if (f.long_term_frame_idx >= operation.max_long_term_frame_idx_plus1)
                f.long_term = 0;
        }
        return true;
    case 5:
        for (reference_frame& f : frames)
            f.short_term = f.long_term = 0;
        return true;
    case 6:
        make_long_term({&current, fields_of(picture.header)}, index);
        return true;
    default:
        return true;
    }
}

/// What picNumX names (8-28) to (8-31): a frame of which both fields are marked, or a field.
reference_marking::named_fields reference_marking::find_short_term(const marked_picture& picture,
                                                                   std::int64_t picNumX) noexcept
{
    const bool field = picture.header.field_pic_flag;
    const std::uint8_t same_parity = fields_of(picture.header);
    for (reference_frame& f : frames) {
        const std::int64_t wrap = FrameNumWrap(f, picture.header.frame_num, picture.sps);
        if (!field && f.short_term == both_fields && wrap == picNumX)
            return {&f, both_fields};
        const std::uint8_t opposite = both_fields - same_parity;
        if (field && (f.short_term & same_parity) != 0 && 2 * wrap + 1 == picNumX)
            return {&f, same_parity};
        if (field && (f.short_term & opposite) != 0 && 2 * wrap == picNumX)
            return {&f, opposite};
    }
    return {nullptr, 0};
}

/// What LongTermPicNum names (8-32) to (8-34), likewise.
reference_marking::named_fields reference_marking::find_long_term(const marked_picture& picture,
                                                                  std::uint32_t LongTermPicNum) noexcept
{
    const bool field = picture.header.field_pic_flag;
    std::uint8_t fields = fields_of(picture.header);
    if (field && LongTermPicNum % 2 == 0)
        fields = both_fields - fields;
    const std::uint32_t index = field ? LongTermPicNum / 2 : LongTermPicNum;
    for (reference_frame& f : frames) {
        if (f.long_term_frame_idx == index && (f.long_term & fields) == fields)
            return {&f, fields};
    }
    return {nullptr, 0};
}

/// The index goes from the frame that has it; the other field of the same frame may share it.
void reference_marking::make_long_term(named_fields named, std::uint32_t long_term_frame_idx) noexcept
{
    for (reference_frame& f : frames) {
        const bool shares = &f == named.of;
        if (shares != (f.long_term_frame_idx == long_term_frame_idx))
            f.long_term = 0;
    }
    named.of->long_term |= named.fields;
    named.of->long_term_frame_idx = long_term_frame_idx;
}

void reference_marking::drop_unused() noexcept
{
    const auto kept = std::remove_if(frames.begin(), frames.end(), [](const reference_frame& f) { return !marked(f); });
    frames.resize(static_cast<std::size_t>(kept - frames.begin()));
}

/// What a stream has marked beyond its own limit, all but the current picture, which is the last one.
bool reference_marking::drop_what_is_too_much(const seq_parameter_set_data& sps) noexcept
{
    const bool too_many = frames.size() > most_frames_of(sps);
    while (frames.size() > most_frames_of(sps)) {
        reference_frame* const last = frames.end() - 1;
        reference_frame* const oldest = oldest_short_term(frames.begin(), last, last->frame_num, sps);
        reference_frame& gone = oldest != nullptr ? *oldest : frames[0];
        gone.short_term = gone.long_term = 0;
        drop_unused();
    }
    return too_many;
}

} // namespace orv_utils_v4::h264
