// Rules over frame_num and picture order counts (H.264 7.4.1.2.2, 7.4.2.1.1, 7.4.3, 8.2.1).
#include "check/number_facts.h"

#include <fmt/format.h>

namespace orv_h264 {

std::optional<std::uint64_t> numbering_facts::step() const
{
    if (!PrevRefFrameNum || picture.idr)
        return {};
    const std::uint64_t MaxFrameNum = h264::MaxFrameNum(sps);
    return (picture.frame_num + MaxFrameNum - *PrevRefFrameNum % MaxFrameNum) % MaxFrameNum;
}

bool numbering_facts::repeats_last() const
{
    return last.known && picture.reference == last.reference && picture.structure == last.structure &&
           picture.frame_num == last.frame_num && picture.count == last.count;
}

namespace {

using enum severity;

verdict no_frame_missing(const numbering_facts& f)
{
    const std::uint64_t step = f.step().value_or(0);
    if (step <= 1 || f.sps.gaps_in_frame_num_value_allowed_flag)
        return {};
    return breach{"frame_num", fmt::format("{}, {} missing", f.picture.frame_num, step - 1),
                  fmt::format("{}", (*f.PrevRefFrameNum + 1) % h264::MaxFrameNum(f.sps))};
}

/// Conditions a) to c) of the clause for a frame_num that is PrevRefFrameNum again.
bool may_share_number(const numbering_facts& f)
{
    const bool fields = f.last.known && f.last.reference && f.picture.reference && f.picture.is_other_field_of(f.last);
    return fields && (f.last.idr || f.last.resets || !f.last_but_one.known || !f.last_but_one.reference ||
                      f.last_but_one.number_behind() != *f.PrevRefFrameNum);
}

/// Fields of one frame of which the first one alone is a reference are seen in practice.
verdict number_is_new(const numbering_facts& f)
{
    if (f.step() != 0U || !f.whole || f.repeats_last() || may_share_number(f))
        return {};
    breach how = breach_of("frame_num", f.picture.frame_num,
                           fmt::format("{}", (*f.PrevRefFrameNum + 1) % h264::MaxFrameNum(f.sps)));
    if (!f.picture.reference && f.last.reference && f.picture.is_other_field_of(f.last))
        how.level = warning;
    return how;
}

bool both_others(const numbering_facts& f)
{
    return f.last.known && !f.last.reference && !f.picture.reference;
}

verdict others_in_output_order(const numbering_facts& f)
{
    if (!both_others(f) || !f.whole || f.picture.count >= f.last.count)
        return {};
    return breach{"", fmt::format("picture order count {}", f.picture.count),
                  fmt::format("at least {}, that of the picture before", f.last.count)};
}

verdict others_apart(const numbering_facts& f)
{
    const bool second_of_pair = f.last.field() && f.picture.is_other_field_of(f.last) && !f.last.second_field;
    if (f.sps.pic_order_cnt_type != 2 || !both_others(f) || second_of_pair || !f.whole || f.repeats_last() ||
        (f.last.field() && !f.last.second_field))
        return {};
    return breach{"nal_ref_idc", "0 in two pictures one behind the other", "above 0 in one of them"};
}

verdict counts_fit(const count_facts& f)
{
    if (!f.picture.findings.has(h264::picture_finding::count_out_of_range))
        return {};
    return breach{"", "a picture order count beyond 32 bits", "-2^31 to 2^31 - 1"};
}

verdict counts_differ(const count_facts& f)
{
    if (!f.shared)
        return {};
    return breach{"", fmt::format("picture order count {} once more", *f.shared), "one that no other picture has"};
}

verdict fields_stay_together(const count_facts& f)
{
    if (!f.parted || f.shared)
        return {};
    return breach{"", fmt::format("picture order counts {} and {}", f.picture.count.top, f.picture.count.bottom),
                  "counts of two fields with none of another picture between"};
}

verdict counts_go_on(const output_step_facts& f)
{
    if (f.missing == 0)
        return {};
    return breach{"", fmt::format("picture order count {}, {} left out", f.picture.count.lower(), f.missing),
                  "steps as before"};
}

verdict has_both_fields(const count_facts& f)
{
    if (!f.picture.lone_field())
        return {};
    return breach{"", "a field alone", "both fields of a frame"};
}

constexpr rule_over<numbering_facts> rules_of_numbers[] = {
    {{"picture-others-in-output-order", error, "7.4.1.2.2",
      "non-reference pictures one behind the other are sent in output order",
      "A decoder outputs them as they come: they need no place in its buffer.",
      "two non-reference B pictures with picture order counts 4 and 2"},
     others_in_output_order},
    {{"picture-others-apart", error, "7.4.2.1.1",
      "with pic_order_cnt_type 2 no two non-reference pictures stand one behind the other",
      "Their picture order counts would be the same.", "two non-reference frames in a row with pic_order_cnt_type 2"},
     others_apart},
    {{"picture-frame-num-goes-on", error, "7.4.3", "frame_num goes on by one behind each reference picture",
      "Pictures are missing, and gaps_in_frame_num_value_allowed_flag does not allow that.",
      "frame_num 4 behind a reference picture with 2"},
     no_frame_missing},
    {{"picture-frame-num-is-new", error, "7.4.3", "frame_num is another one than that of the reference picture before",
      "Two frames with one number cannot be told apart by those that refer to them.",
      "two reference frames with frame_num 3"},
     number_is_new},
};

constexpr rule_over<count_facts> rules_of_counts[] = {
    {{"picture-has-both-fields", warning, "7.4.1.2.4", "a field is followed by the other one of its frame",
      "Players show a frame of which half is missing, or drop it.", "two top fields one behind the other"},
     has_both_fields},
    {{"picture-counts-fit", error, "8.2.1", "picture order counts fit 32 bits",
      "They overflow in decoders, which output pictures in a wrong order then.",
      "delta_pic_order_cnt_bottom 2147483647 where TopFieldOrderCnt is 4"},
     counts_fit},
    {{"picture-counts-differ", error, "8.2.1", "pictures of a sequence have different picture order counts",
      "It is not told which of two is output first.", "two pictures with pic_order_cnt_lsb 4"},
     counts_differ},
    {{"picture-fields-stay-together", error, "8.2.1",
      "no picture comes between the two fields of another in output order", "A frame is output at once.",
      "a frame with counts 0 and 5 beside one with 2 and 3"},
     fields_stay_together},
};

constexpr rule_over<output_step_facts> rules_of_steps[] = {
    {{"picture-counts-go-on", note, "8.2.1", "picture order counts go on in the steps of the pictures before",
      "Any steps are allowed. Where all have been the same, a longer one may be a picture that was lost.",
      "picture order counts 0, 2, 4 and so on to 20, then 24"},
     counts_go_on},
};

} // namespace

std::span<const rule_over<numbering_facts>> numbering_rules()
{
    return rules_of_numbers;
}

std::span<const rule_over<count_facts>> count_rules()
{
    return rules_of_counts;
}

std::span<const rule_over<output_step_facts>> output_step_rules()
{
    return rules_of_steps;
}

} // namespace orv_h264
