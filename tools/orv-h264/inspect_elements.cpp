#include "inspect_elements.h"

#include "element_rows.h"
#include "loss_texts.h"
#include "messages.h"
#include "standard_output.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <string_view>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

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

    exit_status run(stream_input& input)
    {
        rows.text = element_rows::head;
        const bool any = input.read_units(*this, [this] { return shown == options.limit; });
        stream.flush(*this);
        if (!any)
            problems.add(input.bytes_read(), describe_no_unit(input.bytes_read()));
        write_output(rows.text);
        return problems.status();
    }

    void unit(const h264::split_unit& u) override
    {
        if (u.cut)
            problems.add(begin_of(u), describe_cut(u));
        stream.push({u.bytes, u.size, u.offset, units++}, *this);
    }

    void gap(const h264::split_gap& g) override
    {
        units += g.reason == h264::split_gap_reason::too_large ? 1 : 0;
        problems.add(g.offset, describe_with_size(g, options.stream.max_unit));
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
    stream_input input(options.stream);
    return element_inspection(options, input.name()).run(input);
}

} // namespace orv_h264
