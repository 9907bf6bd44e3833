#include "check/check_output.h"

namespace orv_h264 {

check_printer make_check_printer(check_format format, bool among_many)
{
    switch (format) {
    case check_format::json_lines:
        return make_json_printer(among_many);
    case check_format::sarif:
        return make_sarif_printer();
    case check_format::junit:
        return make_junit_printer();
    case check_format::text:
        break;
    }
    return make_text_printer();
}

std::string found_and_allowed(const violation& what)
{
    std::string text = what.element.empty() ? what.found : what.element + " " + what.found;
    if (!what.allowed.empty())
        text += "; allowed: " + what.allowed;
    return text;
}

std::string name_of_clause(std::string_view clause)
{
    const bool elsewhere = clause.find(' ') != std::string_view::npos;
    return (elsewhere ? "" : "H.264 ") + std::string(clause);
}

json json_of(const rule& one)
{
    return {{"rule", one.id},     {"severity", name_of(one.level)}, {"clause", one.clause}, {"title", one.title},
            {"about", one.about}, {"example", one.example}};
}

json json_of(const violation& what)
{
    json object = {{"rule", what.broken->id}, {"severity", name_of(what.level)},
                   {"clause", what.clause},   {"offset", what.offset},
                   {"unit", nullptr},         {"nal_unit_type", nullptr},
                   {"element", nullptr},      {"byte", nullptr},
                   {"bit", nullptr},          {"found", what.found},
                   {"allowed", what.allowed}};
    if (what.unit) {
        object["unit"] = what.unit->number;
        object["nal_unit_type"] = what.unit->nal_unit_type;
    }
    if (!what.element.empty())
        object["element"] = what.element;
    if (what.place) {
        object["byte"] = what.place->byte;
        object["bit"] = what.place->bit;
    }
    return object;
}

} // namespace orv_h264
