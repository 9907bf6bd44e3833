#include "inspect_elements.h"

#include "element_rows.h"
#include "framing.h"
#include "messages.h"
#include "piece_feeder.h"
#include "standard_output.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <string_view>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

const char* describe(h264::split_gap_reason reason)
{
    using h264::split_gap_reason;
    switch (reason) {
    case split_gap_reason::before_first_unit:
        return "bytes before the first start code";
    case split_gap_reason::between_units:
        return "bytes behind a place where the unit's decoding stops";
    case split_gap_reason::no_header:
        return "start code or length prefix without a unit";
    case split_gap_reason::too_large:
        return "unit longer than the limit";
    case split_gap_reason::cut_prefix:
        return "input ends inside a length prefix";
    }
    return "";
}

/// What stands behind the last element, where it is wrong; "" where it is not.
std::string_view describe(h264::ending ending)
{
    if (ending == h264::ending::no_stop_bit)
        return "the stop bit is missing";
    if (ending == h264::ending::bytes_behind)
        return "bytes behind the trailing bits";
    return "";
}

class element_inspection : public h264::split_sink, public h264::unit_sink {
public:
    element_inspection(const inspect_options& chosen, const std::string& name) : options(chosen), problems(name) {}

    exit_status run(input_window& window)
    {
        rows.text = element_rows::head;
        h264::unit_splitter splitter(
            static_cast<h264::framing>(prefix_size_of(options.stream.format.value_or(brenik::nalfmt_annexb))),
            options.stream.max_unit);
        for (window.fill(1); window.size() != 0 && shown < options.limit; window.fill(1)) {
            splitter.push(window.start(), window.size(), *this);
            window.drop(window.size());
        }
        splitter.flush(*this);
        stream.flush(*this);
        if (units == 0 && shown < options.limit)
            problems.add(window.offset(), describe(orv_h264::gap{gap_reason::no_unit, window.offset()}));
        write_output(rows.text);
        return problems.status();
    }

    void unit(const h264::split_unit& u) override
    {
        if (u.cut)
            problems.add(u.offset - u.framing_size,
                         fmt::format("unit of {} bytes runs past the end of the input", u.stated_length));
        stream.push({u.bytes, u.size, u.offset, units++}, *this);
    }

    void gap(const h264::split_gap& g) override
    {
        units += g.reason == h264::split_gap_reason::too_large ? 1 : 0;
        problems.add(g.offset, fmt::format("{} ({} bytes)", describe(g.reason), g.size));
    }

    h264::visitor* before(const h264::unit_place& place) override
    {
        if (!options.only.test(place.bytes[0] & 0x1F) || shown == options.limit)
            return nullptr;
        ++shown;
        rows.begin(place);
        return &rows;
    }

    void take(const h264::unit_reading& reading) override
    {
        constexpr std::size_t enough = std::size_t{256} * 1024;
        if (rows.text.size() >= enough) {
            write_output(rows.text);
            rows.text.clear();
        }
        if (reading.result.failure)
            problems.add(reading.place.offset, text_of(reading.result.failure));
        else if (const std::string_view wrong = describe(reading.result.ending); !wrong.empty())
            problems.add(reading.place.offset, wrong);
    }

private:
    const inspect_options& options;
    complaints problems;
    h264::stream stream;
    element_rows rows;
    std::uint64_t units = 0; // all that there are
    std::uint64_t shown = 0;
};

} // namespace

exit_status inspect_elements(const inspect_options& options)
{
    input_file file(options.stream.path);
    input_window window = open_window(file, options.stream);
    return element_inspection(options, file.name()).run(window);
}

} // namespace orv_h264
