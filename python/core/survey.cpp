// What the tool knows of a whole stream: its survey, and how it tells what bytes are.
#include "module_parts.h"
#include "unit_feed.h"

#include "json_output.h"
#include "loss_texts.h"
#include "recognise.h"
#include "show_info.h"
#include "stream_summary.h"

#include <algorithm>
#include <cstring>

namespace orv_python {

namespace {

/// (framing or None, why not).
py::tuple recognise_framing(const py::object& source)
{
    const std::shared_ptr<const source_bytes> bytes = lock_bytes(source);
    std::size_t at = 0;
    orv_h264::input_window window([&](unsigned char* out, std::size_t size) {
        const std::size_t taken = std::min(size, bytes->size - at);
        if (taken != 0)
            std::memcpy(out, bytes->start + at, taken);
        at += taken;
        return taken;
    });
    const orv_h264::recognition what = orv_h264::recognise(window);
    switch (what.kind) {
    case orv_h264::input_kind::nothing:
        return py::make_tuple(h264::framing::annex_b, "");
    case orv_h264::input_kind::stream:
        return py::make_tuple(what.framing, "");
    case orv_h264::input_kind::record:
        return py::make_tuple(py::none(), "this is a decoder configuration record, no stream");
    case orv_h264::input_kind::foreign:
        return py::make_tuple(py::none(),
                              std::string("this is ") + what.format.name +
                                  (what.format.holds ? "; take the H.264 stream out of it first" : ", not H.264"));
    case orv_h264::input_kind::unknown:
        break;
    }
    return py::make_tuple(py::none(), "no H.264 stream is recognised");
}

/// The JSON text of `orv-h264 info --json`.
std::string info(py::object source, bool pieces, h264::framing framing, std::size_t most_bytes, const std::string& name)
{
    unit_feed feed(std::move(source), pieces, framing, most_bytes, true);
    orv_h264::stream_survey survey(framing, most_bytes);
    while (feed.read_more()) {
        const bool may_change = std::any_of(feed.units.begin(), feed.units.end(), [](const found_unit& unit) {
            return unit.source != nullptr && unit.source->may_change;
        });
        const released_lock lock(!may_change);
        for (const found_unit& u : feed.units) {
            if (u.is_gap)
                survey.gap({u.reason, u.offset, u.size, u.stated_length, u.header});
            else
                survey.unit(
                    {u.bytes(), static_cast<std::size_t>(u.size), u.offset, u.framing_size, u.stated_length, u.cut});
        }
    }
    survey.finish(feed.bytes_read());
    if (!feed.any)
        survey.summary.problems.add(feed.bytes_read(), orv_h264::describe_no_unit(feed.bytes_read() == 0));
    return orv_h264::json_line(orv_h264::info_json(name, framing, feed.bytes_read(), survey.summary));
}

} // namespace

void add_survey(py::module_& m)
{
    m.def("recognise_framing", recognise_framing);
    m.def("info", info);
}

} // namespace orv_python
