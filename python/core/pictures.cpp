// Access units and pictures of a source.
#include "module_parts.h"
#include "unit_feed.h"

#include <orv-utils-v4/h264_syntax.h>

#include <pybind11/stl.h>

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

namespace orv_python {

namespace {

struct kept_part {
    found_unit unit;
    h264::unit_role role = h264::unit_role::other;
    bool damaged = false;
};

/// An access unit, and of its picture what is known with it.
struct kept_access_unit {
    std::uint64_t number = 0;
    std::vector<kept_part> parts;
    h264::picture_structure structure = h264::picture_structure::frame;
    bool has_picture = false;
    bool idr = false;
    unsigned nal_ref_idc = 0;
    std::uint8_t slice_kinds = 0;
    h264::picture_findings findings;
    std::int64_t picture = -1; ///< its number
    h264::picture_times times;
};

struct kept_picture {
    h264::picture is;
    std::vector<kept_access_unit> units;
    bool output = false;
};

const char* name_of(h264::unit_role role)
{
    static constexpr const char* names[] = {"delimiter", "parameter_set", "sei",   "prefix", "primary",
                                            "redundant", "auxiliary",     "layer", "end",    "other"};
    static_assert(std::size(names) == static_cast<std::size_t>(h264::unit_role::other) + 1);
    return names[static_cast<std::size_t>(role)];
}

const char* name_of(h264::picture_structure structure)
{
    static constexpr const char* names[] = {"frame", "mbaff_frame", "top_field", "bottom_field"};
    static_assert(std::size(names) == static_cast<std::size_t>(h264::picture_structure::bottom_field) + 1);
    return names[static_cast<std::size_t>(structure)];
}

const char* name_of(h264::time_source source)
{
    static constexpr const char* names[] = {"none", "assumed_rate", "caller", "constant_rate", "hrd"};
    static_assert(std::size(names) == static_cast<std::size_t>(h264::time_source::hrd) + 1);
    return names[static_cast<std::size_t>(source)];
}

py::tuple fraction_of(const h264::exact_time& time)
{
    return py::make_tuple(time.numerator, time.denominator);
}

py::tuple kinds_of(std::uint8_t slice_kinds)
{
    static constexpr const char* names[] = {"P", "B", "I", "SP", "SI"};
    py::list all;
    for (unsigned kind = 0; kind < std::size(names); ++kind)
        if ((slice_kinds >> kind & 1) != 0)
            all.append(names[kind]);
    return py::tuple(all);
}

py::tuple findings_of(const h264::picture_findings& findings)
{
    py::list all;
    for (unsigned what = 0; what < h264::picture_findings::kinds; ++what)
        if (findings.has(static_cast<h264::picture_finding>(what)))
            all.append(h264::text_of(static_cast<h264::picture_finding>(what)));
    return py::tuple(all);
}

py::dict access_unit_dict(const kept_access_unit& unit)
{
    py::list parts;
    py::list roles;
    bool damaged = false;
    for (const kept_part& part : unit.parts) {
        parts.append(unit_object(part.unit));
        roles.append(name_of(part.role));
        damaged = damaged || part.damaged;
    }
    py::dict all;
    all["number"] = unit.number;
    all["units"] = py::tuple(parts);
    all["roles"] = py::tuple(roles);
    all["has_picture"] = unit.has_picture;
    all["structure"] = name_of(unit.structure);
    all["idr"] = unit.idr;
    all["nal_ref_idc"] = unit.nal_ref_idc;
    all["slice_types"] = kinds_of(unit.slice_kinds);
    all["findings"] = findings_of(unit.findings);
    all["damaged"] = damaged;
    all["picture"] = unit.picture < 0 ? py::object(py::none()) : py::object(py::int_(unit.picture));
    all["decoding_stamp"] = fraction_of(unit.times.decoding_stamp);
    all["presentation_stamp"] = fraction_of(unit.times.presentation_stamp);
    return all;
}

py::list clocks_of(const h264::picture& picture)
{
    py::list all;
    for (unsigned i = 0; i < picture.clock_count && i < h264::picture::most_clocks; ++i) {
        const h264::time_of_day& t = picture.clocks[i];
        all.append(py::make_tuple(t.hours, t.minutes, t.seconds, t.frames, t.frames_dropped, t.ticks));
    }
    return all;
}

py::dict picture_dict(const kept_picture& kept)
{
    const h264::picture& p = kept.is;
    py::list units;
    for (const kept_access_unit& unit : kept.units)
        units.append(access_unit_dict(unit));
    py::dict all;
    all["number"] = p.number;
    all["output_number"] = kept.output ? py::object(py::int_(p.output_number)) : py::object(py::none());
    all["access_units"] = py::tuple(units);
    all["offset"] = p.offset;
    all["end"] = p.end;
    all["structure"] = p.both_fields ? "both_fields" : name_of(p.structure);
    all["first_field"] = name_of(p.structure);
    all["nal_ref_idc"] = p.nal_ref_idc;
    all["slice_types"] = kinds_of(p.slice_kinds);
    all["idr"] = p.idr;
    all["recovery_point"] = p.recovery_point;
    all["discarded"] = p.discarded;
    all["sequence"] = p.sequence;
    all["counts"] = p.has_count ? py::object(py::make_tuple(p.count.top, p.count.bottom)) : py::object(py::none());
    all["fields_shown"] = p.fields_shown;
    all["time_source"] = name_of(p.times.source);
    all["decoding_time"] = fraction_of(p.times.decoding);
    all["presentation_time"] = fraction_of(p.times.presentation);
    all["duration"] = fraction_of(p.times.duration);
    all["decoding_stamp"] = fraction_of(p.times.decoding_stamp);
    all["presentation_stamp"] = fraction_of(p.times.presentation_stamp);
    all["clocks"] = clocks_of(p);
    all["findings"] = findings_of(p.findings);
    return all;
}

enum class wanted : std::uint8_t { access_units, decoded, output };

class picture_feed : h264::access_unit_sink, h264::picture_sink {
public:
    picture_feed(py::object source, bool pieces, h264::framing framing, std::size_t most_bytes, wanted what,
                 h264::output_mode mode, std::uint32_t clock, unsigned bits)
        : feed(std::move(source), pieces, framing, most_bytes, false), gives(what), pictures(mode)
    {
        stamp.clock = clock;
        stamp.bits = static_cast<std::uint8_t>(bits);
        if (clock == 0 || bits < 1 || bits > 64)
            throw py::value_error("a clock has a rate above 0, and timestamps have 1 to 64 bits");
    }

    py::list next_batch()
    {
        const busy_mark mark(busy);
        ready_units.clear();
        ready.clear();
        while (ready_units.empty() && ready.empty() && read_some()) {
        }
        py::list batch;
        for (const kept_access_unit& unit : ready_units)
            batch.append(access_unit_dict(unit));
        for (const kept_picture& picture : ready)
            batch.append(picture_dict(picture));
        return batch;
    }

private:
    static constexpr std::size_t batch_units = 256;
    /// Behind so many later pictures one goes without its output number, as in the rows of the tool.
    static constexpr std::size_t most_waiting = 1024;

    bool read_some()
    {
        if (ended)
            return false;
        ended = true; // where what follows throws, there is no going on
        if (next == feed.units.size()) {
            next = 0;
            last = !feed.read_more();
            stamps.insert(stamps.end(), feed.stamps.begin(), feed.stamps.end());
        }
        // Units that were pushed before wait where they lie: one source has all of them, or each piece a copy.
        const found_unit* const latest = next < feed.units.size() ? &feed.units[next]
                                         : waiting.empty()        ? nullptr
                                                                  : &waiting.back();
        const bool may_change = latest != nullptr && latest->source->may_change;
        const released_lock lock(!may_change);
        for (std::size_t i = 0; i < batch_units && next < feed.units.size(); ++i) {
            const found_unit& unit = feed.units[next++];
            waiting.push_back(unit);
            units.push({unit.bytes(), static_cast<std::size_t>(unit.size), unit.offset, unit.number}, *this, true);
        }
        if (last) {
            units.flush(*this);
            pictures.flush(*this);
            while (!decoded_pictures.empty())
                give_first();
        }
        ended = last;
        return true;
    }

    /// The stamp of the piece that the access unit's first header byte lies in, unless an earlier one has it.
    const h264::timestamp* stamp_of(const h264::access_unit& unit)
    {
        const std::uint64_t at = unit.parts.empty() ? 0 : unit.parts.front().place.offset;
        while (!stamps.empty() && stamps.front().end <= at)
            stamps.pop_front();
        if (stamps.empty() || stamps.front().start > at)
            return nullptr;
        stamp.presentation = stamps.front().presentation;
        stamp.has_decoding = stamps.front().decoding.has_value();
        stamp.decoding = stamps.front().decoding.value_or(0);
        stamps.pop_front();
        return &stamp;
    }

    void take(const h264::access_unit& unit) override { pictures.take(unit, *this, stamp_of(unit)); }

    void access_unit_came(const h264::access_unit& unit, const h264::picture* of) override
    {
        kept_access_unit kept;
        kept.number = unit.number;
        kept.has_picture = unit.header != nullptr;
        kept.structure = unit.structure;
        kept.idr = unit.idr;
        kept.nal_ref_idc = unit.nal_ref_idc;
        kept.slice_kinds = unit.slice_kinds;
        kept.findings = unit.findings;
        for (const h264::access_unit_part& part : unit.parts) {
            while (!waiting.empty() && waiting.front().number < part.place.number)
                waiting.pop_front();
            if (waiting.empty())
                break;
            kept.parts.push_back({waiting.front(), part.role, bool(part.failure)});
            waiting.pop_front();
        }
        if (of != nullptr) {
            kept.picture = static_cast<std::int64_t>(of->number);
            kept.times = of->times;
        }
        if (gives == wanted::access_units)
            ready_units.push_back(std::move(kept));
        else if (of != nullptr)
            coming[of->number].push_back(std::move(kept));
    }

    void decoded(const h264::picture& picture) override
    {
        if (gives == wanted::access_units)
            return;
        kept_picture kept{picture, {}, false};
        if (const auto found = coming.find(picture.number); found != coming.end()) {
            kept.units = std::move(found->second);
            coming.erase(found);
        }
        decoded_pictures.push_back(std::move(kept));
        if (gives == wanted::decoded && decoded_pictures.size() > most_waiting)
            give_first();
    }

    void output(const h264::picture& picture) override
    {
        const auto place = std::find_if(decoded_pictures.begin(), decoded_pictures.end(),
                                        [&](const kept_picture& p) { return p.is.number == picture.number; });
        if (place == decoded_pictures.end())
            return;
        place->is = picture;
        place->output = true;
        if (gives == wanted::output) {
            ready.push_back(std::move(*place));
            decoded_pictures.erase(place);
        }
        while (gives == wanted::decoded && !decoded_pictures.empty() && decoded_pictures.front().output)
            give_first();
    }

    void give_first()
    {
        ready.push_back(std::move(decoded_pictures.front()));
        decoded_pictures.pop_front();
    }

    bool busy = false;
    bool last = false;
    bool ended = false;
    unit_feed feed;
    std::size_t next = 0; // of its units
    wanted gives;
    h264::access_units units;
    h264::pictures pictures;
    h264::timestamp stamp;
    std::deque<piece_stamp> stamps;
    std::deque<found_unit> waiting;                                // that no access unit has taken
    std::map<std::uint64_t, std::vector<kept_access_unit>> coming; // of pictures that are not complete
    std::deque<kept_picture> decoded_pictures;                     // that wait
    std::vector<kept_access_unit> ready_units;
    std::vector<kept_picture> ready;
};

} // namespace

void add_pictures(py::module_& m)
{
    py::enum_<h264::output_mode>(m, "OutputMode")
        .value("bumping", h264::output_mode::bumping)
        .value("early", h264::output_mode::early)
        .value("when_decoded", h264::output_mode::when_decoded);
    py::enum_<wanted>(m, "Wanted")
        .value("access_units", wanted::access_units)
        .value("decoded", wanted::decoded)
        .value("output", wanted::output);
    py::class_<picture_feed>(m, "PictureFeed")
        .def(py::init<py::object, bool, h264::framing, std::size_t, wanted, h264::output_mode, std::uint32_t,
                      unsigned>())
        .def("next_batch", &picture_feed::next_batch);
}

} // namespace orv_python
