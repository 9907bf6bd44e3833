#include "check/marking_part.h"

#include "check/unit_of_picture.h"

#include <algorithm>

namespace orv_h264 {

namespace {

using h264::picture_finding;
using h264::slice_kind;

constexpr std::size_t most_waiting_slices = 65536;

/// Pictures of it, or next to it, may be missing.
bool is_damaged(const h264::access_unit& unit)
{
    const picture_finding losses[] = {picture_finding::no_parameter_sets, picture_finding::slice_damaged,
                                      picture_finding::first_slice_missing, picture_finding::no_primary_picture,
                                      picture_finding::limit_reached};
    return std::any_of(std::begin(losses), std::end(losses), [&](picture_finding f) { return unit.findings.has(f); });
}

/// MaxLongTermFrameIdx behind the operation.
std::optional<std::int64_t> highest_behind(const h264::marking_operation& o, std::optional<std::int64_t> before)
{
    if (o.memory_management_control_operation == 4)
        return std::int64_t{o.max_long_term_frame_idx_plus1} - 1;
    return o.memory_management_control_operation == 5 ? std::optional(std::int64_t{-1}) : before;
}

} // namespace

void marking_part::unit(const listed_unit& unit, const h264::unit_reading& reading)
{
    const h264::slice_header* const slice = h264::slice_header_of(reading.unit);
    const unsigned type = unit.type();
    if ((type != 1 && type != 2) || slice == nullptr || reading.result.failure || slice->redundant_pic_cnt != 0 ||
        slice->kind() == slice_kind::I || slice->kind() == slice_kind::SI || slices.size() == most_waiting_slices)
        return;
    const h264::ref_pic_list_modification& m = slice->ref_pic_list_modification;
    slices.push_back({unit.place.number,
                      slice->kind(),
                      {slice->num_ref_idx_l0_active_minus1, slice->num_ref_idx_l1_active_minus1},
                      {m.ref_pic_list_modification_flag_l0, m.ref_pic_list_modification_flag_l1},
                      {{m.l0.begin(), m.l0.end()}, {m.l1.begin(), m.l1.end()}}});
}

void marking_part::access_unit(const h264::access_unit& unit, const h264::picture* of)
{
    const bool told = of != nullptr && unit.header != nullptr && unit.whole && unit.sps != nullptr;
    known = known && told;
    if (told) {
        const bool second_field = of->both_fields && of->access_unit != unit.number;
        take_picture(unit, {*unit.sps, *unit.header, unit.nal_ref_idc, unit.idr, second_field, of->number});
    }
    if (!told || is_damaged(unit)) {
        known = false;
        highest_idx = {};
        open_field = {};
    }
    drop_slices_of(unit);
}

void marking_part::take_picture(const h264::access_unit& unit, const h264::marked_picture& picture)
{
    known = known || picture.idr;
    h264::marking_result result = marking.before_picture(picture);
    if (result.missing != 0 && !picture.sps.gaps_in_frame_num_value_allowed_flag) {
        known = false;
        highest_idx = {};
    }
    const std::uint64_t number = first_slice_of(unit);
    judge_lists(unit, picture);
    if (picture.idr)
        highest_idx = picture.header.dec_ref_pic_marking.long_term_reference_flag ? 0 : -1;
    else if (picture.nal_ref_idc != 0)
        judge_operations(picture, number);
    const h264::reference_marking before = marking;
    result.too_many = marking.after_picture(picture).too_many;
    if (known)
        judge_picture(picture, before, result, number);
    known = known || (picture.nal_ref_idc != 0 && h264::has_operation_5(picture.header));
    keep_first_field(picture);
}

void marking_part::judge_lists(const h264::access_unit& unit, const h264::marked_picture& picture)
{
    for (const waiting_slice& slice : slices) {
        if (slice.unit < unit.parts.front().place.number || slice.unit > unit.parts.back().place.number)
            continue;
        for (const bool second : {false, true}) {
            if (second && slice.kind != slice_kind::B)
                continue;
            log.judge(list_rules(),
                      list_facts{picture, slice.kind, second, slice.num_ref_idx_active_minus1[second],
                                 slice.modified[second], slice.modifications[second], known_marking()},
                      slice.unit);
        }
    }
}

// Each operation is judged by what those before it have left.
void marking_part::judge_operations(const h264::marked_picture& picture, std::uint64_t unit)
{
    h264::reference_marking now = marking;
    const auto& list = picture.header.dec_ref_pic_marking.operations;
    for (std::size_t i = 0; i < list.size(); ++i) {
        log.judge(operation_rules(), operation_facts{picture, i, known ? &now : nullptr, highest_idx}, unit);
        now.operate(picture, list[i]);
        highest_idx = highest_behind(list[i], highest_idx);
    }
}

void marking_part::judge_picture(const h264::marked_picture& picture, const h264::reference_marking& before,
                                 h264::marking_result result, std::uint64_t unit)
{
    marking_facts facts{picture, before, result};
    if (picture.second_field && open_field)
        facts.index_of_first_field = open_field->long_term_idx;
    facts.leaves_first_field = !picture.second_field && open_field && picture.header.field_pic_flag &&
                               picture.header.bottom_field_flag != open_field->bottom &&
                               picture.header.frame_num == open_field->frame_num && picture.nal_ref_idc != 0 &&
                               h264::has_operation_5(picture.header);
    log.judge(marking_rules(), facts, unit);
}

void marking_part::keep_first_field(const h264::marked_picture& picture)
{
    open_field = {};
    if (!picture.header.field_pic_flag || picture.second_field || picture.nal_ref_idc == 0)
        return;
    const h264::dec_ref_pic_marking& sent = picture.header.dec_ref_pic_marking;
    const bool reset = h264::has_operation_5(picture.header);
    open_field = first_field{picture.header.bottom_field_flag, reset ? 0 : picture.header.frame_num, {}};
    if (picture.idr && sent.long_term_reference_flag)
        open_field->long_term_idx = 0;
    for (const h264::marking_operation& o : sent.operations)
        if (o.memory_management_control_operation == 6)
            open_field->long_term_idx = o.long_term_frame_idx;
}

void marking_part::drop_slices_of(const h264::access_unit& unit)
{
    while (!unit.parts.empty() && !slices.empty() && slices.front().unit <= unit.parts.back().place.number)
        slices.pop_front();
}

} // namespace orv_h264
