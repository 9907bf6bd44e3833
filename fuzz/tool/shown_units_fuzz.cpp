// The units of a stream as the tool shows them: lines, JSON and a table, all told by one trace. The JSON of a unit is
// well-formed, and the table has a row for every element. Input: a byte for the framing, and the stream.
#include "../syntax_units.h"

#include "element_rows.h"
#include "unit_lines.h"

#include <algorithm>
#include <memory>

#include <nlohmann/json.hpp>

namespace {

using namespace fuzz;

/// Tells all of several visitors.
class tee : public h264::visitor {
public:
    void open(const char* name) override
    {
        for (h264::visitor* const to : listeners)
            to->open(name);
    }
    void close() override
    {
        for (h264::visitor* const to : listeners)
            to->close();
    }
    void element(const h264::traced_element& element) override
    {
        ++elements;
        for (h264::visitor* const to : listeners)
            to->element(element);
    }

    std::vector<h264::visitor*> listeners;
    std::uint64_t elements = 0;
};

class shown_units : public h264::unit_sink {
public:
    h264::visitor* before(const h264::unit_place& place) override
    {
        const orv_h264::listed_unit unit = {place, 0};
        rows.begin(place);
        all.listeners = {&rows};
        for (const auto& printer : printers)
            all.listeners.push_back(printer->begin(unit));
        return &all;
    }

    void take(const h264::unit_reading& reading) override
    {
        const orv_h264::listed_unit unit = {reading.place, 0};
        rows.end();
        const auto lines = static_cast<std::uint64_t>(std::count(rows.text.begin(), rows.text.end(), '\n'));
        expect(lines == all.elements || all.elements > most_rows, "a row for every element");
        for (std::size_t i = 0; i < std::size(printers); ++i) {
            const std::string text(printers[i]->end(unit, &reading));
            const bool is_json = i >= 2;
            expect(!text.empty() && text.back() == '\n', "whole lines");
            expect(!is_json || nlohmann::json::accept(text), "well-formed JSON");
        }
        rows.text.clear();
        all.elements = 0;
    }

private:
    static constexpr std::uint64_t most_rows = 1000; // of more some were put out already

    std::unique_ptr<orv_h264::unit_printer> printers[4] = {
        orv_h264::make_unit_printer(false, {}), orv_h264::make_unit_printer(false, {true, true}),
        orv_h264::make_unit_printer(true, {}), orv_h264::make_unit_printer(true, {true, true})};
    orv_h264::element_rows rows;
    tee all;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const fuzz::unit_list list(input);
    fuzz::h264::stream stream;
    shown_units shown;
    list.push_to(stream, shown);
    return 0;
}
