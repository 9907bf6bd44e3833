// Rules over the marking of reference pictures (H.264 7.4.3.3, 8.2.5).
#include "check/reference_facts.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// As pictures are named to a person: "frame_num 3, 4, 7".
template <class Is>
std::string names_of(const h264::reference_marking& marking, Is is)
{
    std::string text;
    for (const h264::reference_frame& f : marking)
        if (is(f))
            text += fmt::format("{}{}", text.empty() ? "frame_num " : ", ", f.frame_num);
    return text.empty() ? "none" : text;
}

std::string short_terms(const h264::reference_marking& marking)
{
    return names_of(marking, [](const h264::reference_frame& f) { return f.short_term != 0; });
}

std::string long_terms(const h264::reference_marking& marking)
{
    std::string text;
    for (const h264::reference_frame& f : marking)
        if (f.long_term != 0)
            text += fmt::format("{}{}", text.empty() ? "LongTermFrameIdx " : ", ", f.long_term_frame_idx);
    return text.empty() ? "none" : text;
}

bool has_difference(const h264::marking_operation& o)
{
    return o.memory_management_control_operation == 1 || o.memory_management_control_operation == 3;
}

bool has_index(const h264::marking_operation& o)
{
    return o.memory_management_control_operation == 3 || o.memory_management_control_operation == 6;
}

/// A breach by the element of this operation: others of its name may come before it.
template <class Has>
breach breach_at(const operation_facts& f, std::string_view element, Has has, std::string found, std::string allowed)
{
    const auto& list = f.picture.header.dec_ref_pic_marking.operations;
    breach how = breach_of(element, std::move(found), std::move(allowed));
    how.nth = static_cast<std::size_t>(std::count_if(list.begin(), list.begin() + f.index, has));
    return how;
}

/// picNumX of operations 1 and 3.
std::int64_t picNumX(const operation_facts& f)
{
    const h264::slice_header& header = f.picture.header;
    const std::int64_t frame_num = header.frame_num;
    const std::int64_t CurrPicNum = header.field_pic_flag ? 2 * frame_num + 1 : frame_num;
    return CurrPicNum - (std::int64_t{f.operation().difference_of_pic_nums_minus1} + 1);
}

/// Operations 1 and 3 name a short-term picture.
verdict names_short_term(const operation_facts& f, std::uint32_t kind)
{
    if (f.kind() != kind || f.marking == nullptr)
        return {};
    const h264::named_reference named = f.marking->short_term(f.picture, picNumX(f));
    const bool inferred = kind == 3 && named.frame != nullptr && named.frame->non_existing;
    if (named.frame != nullptr && !inferred)
        return {};
    return breach_at(f, "difference_of_pic_nums_minus1", has_difference,
                     fmt::format("{}, which is PicNum {}, {}", f.operation().difference_of_pic_nums_minus1, picNumX(f),
                                 inferred ? "a frame inferred for a gap" : "not used for short-term reference"),
                     fmt::format("a short-term reference that is there: {}", short_terms(*f.marking)));
}

verdict unmarks_short_term(const operation_facts& f)
{
    return names_short_term(f, 1);
}

verdict lengthens_short_term(const operation_facts& f)
{
    return names_short_term(f, 3);
}

verdict unmarks_long_term(const operation_facts& f)
{
    const std::uint32_t number = f.operation().long_term_pic_num;
    if (f.kind() != 2 || f.marking == nullptr || f.marking->long_term(f.picture, number).frame != nullptr)
        return {};
    const auto has_number = [](const h264::marking_operation& o) { return o.memory_management_control_operation == 2; };
    return breach_at(f, "long_term_pic_num", has_number, fmt::format("{}, not used for long-term reference", number),
                     fmt::format("a long-term reference that is there: {}", long_terms(*f.marking)));
}

verdict index_is_allowed(const operation_facts& f)
{
    const std::int64_t index = f.operation().long_term_frame_idx;
    const bool in_range = index < f.picture.sps.max_num_ref_frames; // else value-in-range has told it
    if (!has_index(f.operation()) || !f.highest_idx || !in_range || index <= *f.highest_idx)
        return {};
    return breach_at(f, "long_term_frame_idx", has_index, fmt::format("{}", index),
                     *f.highest_idx < 0 ? "none: MaxLongTermFrameIdx is \"no long-term frame indices\""
                                        : fmt::format("at most MaxLongTermFrameIdx {}", *f.highest_idx));
}

verdict fields_share_an_index(const operation_facts& f)
{
    if (f.kind() != 3 || f.marking == nullptr || !f.picture.header.field_pic_flag)
        return {};
    const h264::reference_frame* const frame = f.marking->short_term(f.picture, picNumX(f)).frame;
    const std::uint32_t index = f.operation().long_term_frame_idx;
    if (frame == nullptr || frame->long_term == 0 || frame->long_term_frame_idx == index)
        return {};
    return breach_at(f, "long_term_frame_idx", has_index, fmt::format("{}", index),
                     fmt::format("{}, as its other field has", frame->long_term_frame_idx));
}

std::uint32_t most_frames(const h264::seq_parameter_set_data& sps)
{
    return std::max(sps.max_num_ref_frames, 1U);
}

/// The sliding window makes room for the picture.
bool slides(const marking_facts& f)
{
    return f.picture.nal_ref_idc != 0 && !f.picture.idr && !f.picture.second_field &&
           !f.picture.header.dec_ref_pic_marking.adaptive_ref_pic_marking_mode_flag;
}

verdict window_has_short_term(const marking_facts& f)
{
    const bool any_short =
        std::any_of(f.before.begin(), f.before.end(), [](const auto& r) { return r.short_term != 0; });
    if (!slides(f) || any_short || f.before.size() < most_frames(f.picture.sps))
        return {};
    return breach_of(
        "adaptive_ref_pic_marking_mode_flag", 0,
        fmt::format("1, with an operation that makes room: {} of {} frames are used for long-term reference",
                    f.before.size(), most_frames(f.picture.sps)));
}

verdict frames_fit(const marking_facts& f)
{
    if (!f.result.too_many || window_has_short_term(f))
        return {};
    return breach{"", "one frame more is used for reference", fmt::format("at most {}", most_frames(f.picture.sps))};
}

verdict second_field_has_the_index(const marking_facts& f)
{
    if (!f.index_of_first_field || f.picture.nal_ref_idc == 0)
        return {};
    for (const h264::marking_operation& o : f.picture.header.dec_ref_pic_marking.operations)
        if (o.memory_management_control_operation == 6 && o.long_term_frame_idx == *f.index_of_first_field)
            return {};
    return breach{
        "", "a short-term reference, or one with another index",
        fmt::format("operation 6 with long_term_frame_idx {}, as the first field has", *f.index_of_first_field)};
}

verdict reset_keeps_fields_together(const marking_facts& f)
{
    if (!f.leaves_first_field)
        return {};
    return breach_of("memory_management_control_operation", 5, "in a frame, or the first field of one");
}

using enum severity;

constexpr rule_over<operation_facts> of_operations[] = {
    {{"marking-unmarks-short-term", error, "7.4.3.3", "operation 1 names a short-term reference that is there",
      "The number counts from the current picture. Decoders that do not find it keep frames for good, and drop others.",
      "difference_of_pic_nums_minus1 4 behind an IDR picture and two others"},
     unmarks_short_term},
    {{"marking-unmarks-long-term", error, "7.4.3.3", "operation 2 names a long-term reference that is there",
      "The number is LongTermFrameIdx of a frame; of a field twice that, and 1 for one of the same parity.",
      "long_term_pic_num 1 where only LongTermFrameIdx 0 is assigned"},
     unmarks_long_term},
    {{"marking-lengthens-short-term", error, "7.4.3.3", "operation 3 names a short-term reference that is there",
      "It becomes a long-term reference; a frame inferred for a gap in frame_num cannot.",
      "difference_of_pic_nums_minus1 4 behind an IDR picture and two others"},
     lengthens_short_term},
    {{"marking-index-allowed", error, "7.4.3.3", "long_term_frame_idx is at most MaxLongTermFrameIdx",
      "Operation 4 sets it; behind an IDR picture it is 0 with long_term_reference_flag, else there are no indices.",
      "operation 6 without an operation 4 since the IDR picture"},
     index_is_allowed},
    {{"marking-fields-share-index", warning, "8.2.5.4.3", "the long-term fields of a frame have one LongTermFrameIdx",
      "Long-term frames are told by one index; the field that had another one is lost in most decoders.",
      "operation 3 with index 1 for a field whose other field has index 0"},
     fields_share_an_index},
};

constexpr rule_over<marking_facts> of_marking[] = {
    {{"marking-frames-fit", error, "8.2.5.1", "no more than max_num_ref_frames frames are used for reference",
      "Decoders have no room for more: one frame is lost, each chooses another.",
      "max_num_ref_frames 1, and operations that mark no picture as unused"},
     frames_fit},
    {{"marking-window-has-short-term", error, "8.2.5.3", "the sliding window has a short-term frame to drop",
      "Where all frames are long-term ones, an operation has to make room for a reference picture.",
      "max_num_ref_frames 1, a long-term IDR picture, and a reference picture without operations"},
     window_has_short_term},
    {{"marking-second-field-has-index", error, "7.4.3.3", "the second field of a long-term field gets the same index",
      "long_term_reference_flag or operation 6 of a first field goes with operation 6 of the second one.",
      "an IDR field with long_term_reference_flag 1 before a field without operations"},
     second_field_has_the_index},
    {{"marking-reset-between-fields", warning, "7.4.3.3", "operation 5 does not come in what would be a second field",
      "By clause 3.30 it is no second field then: both are fields without a partner, frames of half the lines.",
      "a top field, and a bottom field of the same frame_num with operation 5"},
     reset_keeps_fields_together},
};

} // namespace

std::span<const rule_over<operation_facts>> operation_rules()
{
    return of_operations;
}

std::span<const rule_over<marking_facts>> marking_rules()
{
    return of_marking;
}

} // namespace orv_h264
