// Pictures out of access units: the stages of decoding without samples, in their order.
#include <orv-utils-v4/h264_syntax/pictures.h>

#include "hidden.h"
#include "operation_5.h"
#include "picture_clock.h"
#include "picture_slots.h"

#include <algorithm>

namespace orv_utils_v4::h264 {

namespace {

bool opposite(picture_structure a, picture_structure b)
{
    return (a == picture_structure::top_field && b == picture_structure::bottom_field) ||
           (a == picture_structure::bottom_field && b == picture_structure::top_field);
}

} // namespace

struct ORV_UTILS_V4_HIDDEN pictures::state : picture_sink {
    explicit state(output_mode mode) : order(mode) {}

    picture_order_counter counter;
    reference_marking marking;
    output_order order;
    picture_clock clock;
    day_clock days;
    picture* open = nullptr; // that has begun, in `order`
    const picture empty;     // what it begins as: of a value that g++ knows it makes rep stos, as in add_part()
    bool is_open = false;
    picture_times own;                // of the access unit that came last, where it is a second field or has no picture
    bool latest_is_open = false;      // else they are those of `open`
    std::uint32_t open_frame_num = 0; // behind its marking
    std::uint64_t count = 0;
    std::uint64_t sequence = 0;
    picture_sink* to = nullptr;

    void take(const access_unit& unit, const timestamp* stamp);
    void begin(const access_unit& unit, const timestamp* stamp);
    void place(const access_unit& unit);
    void add_second_field(const access_unit& unit, const timestamp* stamp);
    void mark(const access_unit& unit, bool second_field);
    void close();
    bool is_second_field(const access_unit& unit) const;
    void add_clocks(const access_unit& unit);
    void output(const picture& picture) override;
};

pictures::pictures(output_mode mode) : s(std::make_unique<state>(mode)) {}
pictures::~pictures() = default;
pictures::pictures(pictures&&) noexcept = default;
pictures& pictures::operator=(pictures&&) noexcept = default;

void pictures::take(const access_unit& unit, picture_sink& to, const timestamp* stamp)
{
    s->to = &to;
    s->take(unit, stamp);
}

void pictures::flush(picture_sink& to)
{
    s->to = &to;
    s->close();
    s->order.end_sequence(false, *s);
}

const reference_marking& pictures::marking() const noexcept
{
    return s->marking;
}

picture_times pictures::latest_times() const noexcept
{
    return s->latest_is_open ? s->open->times : s->own;
}

void pictures::state::take(const access_unit& unit, const timestamp* stamp)
{
    latest_is_open = false;
    if (unit.header == nullptr) {
        own = {};
        return to->access_unit_came(unit, nullptr);
    }
    const bool second_field = is_second_field(unit);
    if (second_field) {
        add_second_field(unit, stamp);
    } else {
        close();
        begin(unit, stamp);
        latest_is_open = true;
    }
    to->access_unit_came(unit, open);
    if (!unit.field() || second_field || unit.ends_sequence())
        close();
}

// Complementary field pairs, clauses 3.30 and 3.31.
bool pictures::state::is_second_field(const access_unit& unit) const
{
    return is_open && open->has_count && unit.whole && unit.sps != nullptr &&
           opposite(open->structure, unit.structure) && unit.header->frame_num == open_frame_num && !unit.idr &&
           (unit.nal_ref_idc != 0) == (open->nal_ref_idc != 0) && !with_operation_5(*unit.header);
}

void pictures::state::begin(const access_unit& unit, const timestamp* stamp)
{
    open = &picture_slots::next(order);
    *open = empty;
    is_open = true;
    open->number = count++;
    open->access_unit = unit.number;
    open->offset = unit.parts.front().place.offset;
    open->end = unit.parts.back().place.offset + unit.parts.back().place.size;
    open->structure = unit.structure;
    open->nal_ref_idc = unit.nal_ref_idc;
    open->slice_kinds = unit.slice_kinds;
    open->idr = unit.idr;
    open->recovery_point = unit.message<recovery_point>() != nullptr;
    open->fields_shown = fields_shown(unit);
    open->findings = unit.findings;
    add_clocks(unit);
    clock.begin(unit, stamp, open->times);
    place(unit);
}

// Its place in the order. A picture that cannot be told one follows all that came before.
void pictures::state::place(const access_unit& unit)
{
    const bool known = unit.sps != nullptr && unit.whole;
    const slice_header& header = *unit.header;
    if (!known || unit.idr || (unit.nal_ref_idc != 0 && with_operation_5(header))) {
        order.end_sequence(unit.idr && header.dec_ref_pic_marking.no_output_of_prior_pics_flag, *this);
        ++sequence;
    }
    open->sequence = sequence;
    open->has_count = known;
    if (!known) {
        ++sequence;
        return order.begin_alone();
    }
    mark(unit, false);
    order.begin(*open, *unit.sps, marking, *this);
}

void pictures::state::mark(const access_unit& unit, bool second_field)
{
    const slice_header& header = *unit.header;
    const marked_picture marked{*unit.sps, header, unit.nal_ref_idc, unit.idr, second_field, open->number};
    const picture_order_count count_before = counter.next(*unit.sps, header, unit.nal_ref_idc, unit.idr);
    const picture_order_count now = picture_order_counter::after_marking(count_before, header);
    if (!count_before.in_range())
        open->findings.add(picture_finding::count_out_of_range);
    if (!second_field)
        open->count = now;
    else if (unit.structure == picture_structure::top_field)
        open->count.top = now.top;
    else
        open->count.bottom = now.bottom;

    const marking_result before = marking.before_picture(marked);
    if (before.missing != 0 && unit.sps->gaps_in_frame_num_value_allowed_flag)
        order.make_room(*unit.sps, marking, *this);
    else if (before.missing != 0)
        open->findings.add(picture_finding::frame_num_gap);
    const marking_result after = marking.after_picture(marked);
    if (after.no_such_picture)
        open->findings.add(picture_finding::no_such_reference);
    if (after.too_many)
        open->findings.add(picture_finding::too_many_frames);
    open_frame_num = unit.nal_ref_idc != 0 && with_operation_5(header) ? 0 : header.frame_num;
}

void pictures::state::add_second_field(const access_unit& unit, const timestamp* stamp)
{
    open->both_fields = true;
    open->end = unit.parts.back().place.offset + unit.parts.back().place.size;
    open->nal_ref_idc = std::max(open->nal_ref_idc, unit.nal_ref_idc);
    open->slice_kinds |= unit.slice_kinds;
    open->recovery_point = open->recovery_point || unit.message<recovery_point>() != nullptr;
    own = clock.add_second_field(unit, stamp, open->fields_shown, open->times);
    open->fields_shown = static_cast<std::uint8_t>(open->fields_shown + fields_shown(unit));
    open->findings.add(unit.findings);
    add_clocks(unit);
    mark(unit, true);
}

void pictures::state::add_clocks(const access_unit& unit)
{
    const bool may_be_sent = unit.sps != nullptr && unit.sps->vui_parameters.pic_struct_present_flag;
    const auto* const timing = may_be_sent ? unit.message<pic_timing>() : nullptr;
    for (unsigned i = 0; timing != nullptr && i < timing->NumClockTS(); ++i) {
        if (timing->timestamps[i].clock_timestamp_flag && open->clock_count < picture::most_clocks)
            open->clocks[open->clock_count++] = days.next(timing->timestamps[i]);
    }
}

void pictures::state::close()
{
    if (!is_open)
        return;
    is_open = false;
    if (open->lone_field())
        open->findings.add(picture_finding::second_field_missing);
    clock.end(open->fields_shown, open->times);
    to->decoded(*open);
    picture_slots::end(order, *open, *this);
}

void pictures::state::output(const picture& picture)
{
    h264::picture& complete = picture_slots::output(order, picture);
    clock.output(complete.fields_shown, complete.times);
    to->output(complete);
}

} // namespace orv_utils_v4::h264
