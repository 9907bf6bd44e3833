#include "unit_lines.h"

#include "consequences.h"
#include "element_text.h"
#include "json_output.h"
#include "names.h"
#include "terminal.h"
#include "trace_json.h"
#include "trace_lines.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>
#include <vector>

#include <fmt/compile.h>
#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// The bytes behind the first header byte, emulation prevention removed.
class rbsp_measure {
public:
    std::size_t operator()(const h264::unit_place& place)
    {
        if (room.size() < place.size)
            room.resize(place.size);
        return h264::unescape(place.bytes, place.size, room.data(), place.size) - 1;
    }

private:
    std::vector<unsigned char> room;
};

std::string type_name(unsigned type, bool long_names)
{
    const auto named = static_cast<brenik::h264_nal_unit_type>(type);
    return long_names ? brenik::h264_nal_unit_type_to_str(named) : short_unit_name(named);
}

unsigned ref_idc_of(const listed_unit& unit)
{
    return unit.place.bytes[0] >> 5U & 3U;
}

class text_units final : public unit_printer {
public:
    explicit text_units(const unit_style& chosen)
        : style(chosen), lines(chosen.positions), trace(lines, chosen.positions)
    {
    }

    h264::visitor* begin(const listed_unit& unit) override
    {
        lines.text.clear(); // its memory goes on
        begin_unit(unit, marks);
        trace.begin(unit.place);
        return &source;
    }

    std::string_view end(const listed_unit& unit, const h264::unit_reading* reading) override
    {
        if (reading != nullptr) {
            trace.end();
            for (const fact& what : consequences_of(*reading))
                lines.follows(what);
        } else {
            lines.text.clear();
            begin_unit(unit, {});
        }
        return lines.text;
    }

private:
    void begin_unit(const listed_unit& unit, const emphasis_marks& around)
    {
        fmt::memory_buffer line; // of which more is filled at a time than of a string
        fmt::format_to(
            std::back_inserter(line),
            FMT_COMPILE("{}offset {:>10}  framing {}  length {:>8}  rbsp {:>8}  nal_ref_idc {}  type {:>2}  {}{}{}\n"),
            around.begin, unit.shown(), unit.framing_size, unit.place.size, rbsp_size(unit.place), ref_idc_of(unit),
            unit.type(), type_name(unit.type(), style.long_names), unit.in_record ? "  (in the record)" : "",
            around.end);
        lines.text.append(line.data(), line.size());
    }

    unit_style style;
    emphasis_marks marks = marks_of(stdout, emphasis::strong);
    rbsp_measure rbsp_size;
    trace_lines lines;
    annotated_trace trace;
    registered_trace source{trace};
};

class json_units final : public unit_printer {
public:
    explicit json_units(const unit_style& chosen)
        : style(chosen), fields(chosen.positions), trace(fields, chosen.positions)
    {
    }

    h264::visitor* begin(const listed_unit& unit) override
    {
        trace.begin(unit.place);
        return &source;
    }

    std::string_view end(const listed_unit& unit, const h264::unit_reading* reading) override
    {
        line.clear();
        fmt::format_to(std::back_inserter(line),
                       FMT_COMPILE(R"({{"record":"unit","number":{},"offset":{},"framing_size":{},"length":{},)"
                                   R"("rbsp_size":{},"nal_ref_idc":{},"nal_unit_type":{},"name":{})"),
                       unit.place.number, unit.shown(), unit.framing_size, unit.place.size, rbsp_size(unit.place),
                       ref_idc_of(unit), unit.type(), json_text(type_name(unit.type(), style.long_names)));
        if (unit.packet)
            fmt::format_to(std::back_inserter(line), R"(,"stream_offset":{})", unit.begin());
        if (unit.in_record)
            put(R"(,"in_record":true)");
        if (reading != nullptr)
            put_members(*reading);
        else
            put(R"(,"valid":null,"fields":null})");
        put("\n");
        return {line.data(), line.size()};
    }

private:
    void put(std::string_view text) { line.append(text.begin(), text.end()); }

    void put_members(const h264::unit_reading& reading)
    {
        trace.end();
        for (const fact& what : consequences_of(reading))
            fields.follows(what);
        const h264::outcome& result = reading.result;
        const bool valid = !result.failure && text_of(result.ending).empty();
        fmt::format_to(std::back_inserter(line), FMT_COMPILE(R"(,"valid":{},"findings":{},"fields":)"), valid,
                       result.finding_count);
        put(fields.take());
        put("}");
    }

    unit_style style;
    rbsp_measure rbsp_size;
    fmt::memory_buffer line;
    trace_json fields;
    annotated_trace trace;
    registered_trace source{trace};
};

} // namespace

std::unique_ptr<unit_printer> make_unit_printer(bool as_json, const unit_style& style)
{
    if (as_json)
        return std::make_unique<json_units>(style);
    return std::make_unique<text_units>(style);
}

} // namespace orv_h264
