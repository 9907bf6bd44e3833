#include "show_syntax.h"

#include "show_structures.h"

#include <algorithm>

namespace orv_h264 {

namespace {

// H.264 7.3.2.4, access_unit_delimiter_rbsp()
void show(field_printer& p, const brenik::h264_nal_aud& aud, const walked_unit&)
{
    p.u(3, "primary_pic_type", aud.primary_pic_type);
}

void show(std::string&, std::monostate, const walked_unit&) {}

void show(std::string& lines, const walked_sei& sei, const walked_unit&)
{
    show_messages(lines, sei);
}

template <typename Syntax>
void show(std::string& lines, const Syntax& syntax, const walked_unit& unit)
{
    field_printer printer(lines, last_known_bit(unit.outcome));
    show(printer, syntax, unit);
}

} // namespace

std::size_t last_known_bit(const parse_outcome& outcome)
{
    if (outcome.parsed && !outcome.truncated())
        return field_printer::no_limit;
    return std::min({outcome.bits, outcome.bits_consumed, outcome.malformed_code.value_or(outcome.bits)});
}

std::string show_fields(const walked_unit& unit)
{
    std::string lines;
    std::visit([&](const auto& syntax) { show(lines, syntax, unit); }, unit.syntax);
    return lines;
}

} // namespace orv_h264
