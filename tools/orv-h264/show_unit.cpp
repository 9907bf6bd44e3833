#include "show_unit.h"

#include "json_fields.h"
#include "show_syntax.h"
#include "standard_output.h"
#include "text_fields.h"

#include <iterator>
#include <variant>

#include <fmt/compile.h>

namespace orv_h264 {

namespace {

json fields_json(const walked_unit& walked)
{
    json object = json::object();
    {
        json_fields fields(object);
        show_fields(fields, walked);
    }
    return object;
}

} // namespace

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

json unit_json(const shown_unit& shown)
{
    json object = {{"offset", shown.where.offset},
                   {"framing_size", shown.where.framing_size},
                   {"length", shown.where.length},
                   {"rbsp_size", shown.rbsp_size},
                   {"nal_ref_idc", shown.nal.nal_ref_idc},
                   {"nal_unit_type", static_cast<unsigned int>(shown.nal.nal_unit_type)},
                   {"name", brenik::h264_nal_unit_type_to_str(shown.nal.nal_unit_type)}};
    object["valid"] = nullptr;
    object["fields"] = nullptr;
    if (shown.walked == nullptr || std::holds_alternative<std::monostate>(shown.walked->syntax))
        return object;
    object["valid"] = problems_of(*shown.walked).empty();
    object["fields"] = fields_json(*shown.walked);
    return object;
}

} // namespace orv_h264
