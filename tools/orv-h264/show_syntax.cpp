#include "show_syntax.h"

#include "show_structures.h"
#include "text_fields.h"

#include <algorithm>

namespace orv_h264 {

namespace {

// H.264 7.3.2.4, access_unit_delimiter_rbsp()
void show(field_printer& p, const brenik::h264_nal_aud& aud, const walked_unit&)
{
    p.u(3, "primary_pic_type", aud.primary_pic_type);
}

void show(field_sink&, std::monostate, const walked_unit&) {}

void show(field_sink& sink, const walked_sei& sei, const walked_unit&)
{
    show_messages(sink, sei);
}

template <typename Syntax>
void show(field_sink& sink, const Syntax& syntax, const walked_unit& unit)
{
    field_printer printer(sink, last_known_bit(unit.outcome));
    show(printer, syntax, unit);
}

} // namespace

std::size_t last_known_bit(const parse_outcome& outcome)
{
    if (outcome.parsed && !outcome.truncated())
        return field_printer::no_limit;
    return std::min({outcome.bits, outcome.bits_consumed, outcome.malformed_code.value_or(outcome.bits)});
}

void show_fields(field_sink& sink, const walked_unit& unit)
{
    std::visit([&](const auto& syntax) { show(sink, syntax, unit); }, unit.syntax);
}

std::string show_fields(const walked_unit& unit)
{
    std::string lines;
    text_fields fields(lines);
    show_fields(fields, unit);
    return lines;
}

} // namespace orv_h264
