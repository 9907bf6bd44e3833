#include "show_unit.h"

#include "show_syntax.h"
#include "standard_output.h"
#include "text_fields.h"

#include <cstdint>
#include <iterator>
#include <string_view>
#include <variant>

#include <fmt/compile.h>

namespace orv_h264 {

void unit_printer::print(const shown_unit& shown)
{
    const emphasis_marks around = shown.walked == nullptr ? emphasis_marks() : marks;
    lines = around.begin;
    fmt::format_to(
        std::back_inserter(lines),
        FMT_COMPILE("offset {:>10}  framing {}  length {:>8}  rbsp {:>8}  nal_ref_idc {}  type {:>2}  {}{}\n"),
        shown.where.offset, shown.where.framing_size, shown.where.length, shown.rbsp_size, shown.nal.nal_ref_idc,
        static_cast<unsigned int>(shown.nal.nal_unit_type), brenik::h264_nal_unit_type_to_str(shown.nal.nal_unit_type),
        around.end);
    if (shown.walked != nullptr) {
        text_fields fields(lines);
        show_fields(fields, *shown.walked);
    }
    write_output(lines);
}

void tell_unit(field_sink& sink, const shown_unit& shown)
{
    const auto number = [&](const char* name, std::uint64_t value) { sink.told({name, value}); };
    number("offset", shown.where.offset);
    number("framing_size", shown.where.framing_size);
    number("length", shown.where.length);
    number("rbsp_size", shown.rbsp_size);
    number("nal_ref_idc", shown.nal.nal_ref_idc);
    number("nal_unit_type", shown.nal.nal_unit_type);
    sink.told({"name", std::string_view(brenik::h264_nal_unit_type_to_str(shown.nal.nal_unit_type))});
    if (shown.walked == nullptr || std::holds_alternative<std::monostate>(shown.walked->syntax)) {
        sink.told({"valid", nullptr});
        sink.told({"fields", nullptr});
        return;
    }
    sink.told({"valid", problems_of(*shown.walked).empty()});
    sink.open("fields", "");
    show_fields(sink, *shown.walked);
    sink.close();
}

} // namespace orv_h264
