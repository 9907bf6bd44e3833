// What Python sees of readings, and what it can do with units.
#include "reading.h"
#include "structure_object.h"

#include "element_text.h"

#include <pybind11/stl.h>

#include <utility>

namespace orv_python {

namespace {

const char* reason_name(h264::reason why)
{
    static constexpr const char* names[] = {
        "none",      "unit_ends", "payload_ends",    "malformed_code",  "too_large",     "too_small",
        "no_sps",    "no_pps",    "no_partition_a",  "no_source_slice", "wrong_kind",    "wrong_count",
        "no_memory", "no_room",   "no_such_element", "ambiguous",       "unit_too_long",
    };
    static_assert(std::size(names) == static_cast<std::size_t>(h264::reason::unit_too_long) + 1);
    return names[static_cast<std::size_t>(why)];
}

const char* ending_name(h264::ending end)
{
    static constexpr const char* names[] = {"unknown", "sound", "no_stop_bit", "cabac_zero_words", "bytes_behind"};
    static_assert(std::size(names) == static_cast<std::size_t>(h264::ending::bytes_behind) + 1);
    return names[static_cast<std::size_t>(end)];
}

py::object failure_or_none(const h264::failure& failure)
{
    return failure ? py::object(failure_tuple(failure)) : py::none();
}

py::list finding_tuples(const h264::outcome& result)
{
    py::list all;
    for (const h264::finding& f : result.findings)
        all.append(py::make_tuple(orv_h264::text_of(f.element), f.bit, f.value, f.lowest, f.highest));
    return all;
}

template <class T>
py::object structure_or_none(const std::shared_ptr<const T>& held)
{
    if (held == nullptr)
        return py::none();
    PyObject* const made = wrap(held);
    if (made == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
}

py::object structure_of_own(int number, std::shared_ptr<void> held)
{
    if (number < 0)
        return py::none();
    PyObject* const made = new_structure(number, std::move(held), false);
    if (made == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
}

/// The bytes that a stream reads of a unit, without emulation prevention.
std::vector<unsigned char> clean_bytes(const unsigned char* unit, std::size_t size, bool whole)
{
    const unsigned type = size == 0 ? 0 : unit[0] & 0x1FU;
    const bool slice = (type >= 1 && type <= 5) || (type >= 19 && type <= 21);
    const bool set = type == 7 || type == 8 || type == 13 || type == 15 || type == 16;
    const std::size_t most = slice ? h264::stream::most_slice_header_bytes
                             : set ? h264::stream::most_parameter_set_bytes
                                   : h264::stream::most_unit_bytes;
    const std::size_t taken = whole ? size : std::min(size, most);
    std::vector<unsigned char> clean(taken);
    clean.resize(h264::unescape(unit, taken, clean.data(), clean.size()));
    return clean;
}

/// Of st(v) its bytes, of others the number.
py::object long_value(const h264::traced_element& e)
{
    py::bytes bytes(reinterpret_cast<const char*>(e.bytes), e.size);
    if (e.how == h264::coding::st)
        return bytes;
    return py::handle(reinterpret_cast<PyObject*>(&PyLong_Type)).attr("from_bytes")(bytes, "big");
}

/// Elements as Python shall have them.
class element_list final : public h264::visitor {
public:
    element_list(const unsigned char* unit, std::size_t size, std::uint64_t at) : places(unit, size), offset(at) {}

    void open(const char* name) override
    {
        guarded([&] {
            lengths.push_back(path.size());
            path += path.empty() ? "" : ".";
            path += name;
        });
    }
    void close() override
    {
        if (!lengths.empty()) {
            path.resize(lengths.back());
            lengths.pop_back();
        }
    }
    void element(const h264::traced_element& e) override
    {
        guarded([&] {
            std::string descriptor;
            orv_h264::append_descriptor(descriptor, e);
            const py::object value = e.bytes == nullptr ? py::object(py::int_(e.value)) : long_value(e);
            const py::object lowest = e.bytes == nullptr ? py::object(py::int_(e.lowest)) : py::none();
            const py::object highest = e.bytes == nullptr ? py::object(py::int_(e.highest)) : py::none();
            all.append(py::make_tuple(path, orv_h264::text_of(e.name), value, e.bit, e.bits, offset + places(e.bit / 8),
                                      descriptor, lowest, highest, e.inside));
        });
    }

    py::list all;
    bool failed = false;

private:
    template <class Work>
    void guarded(const Work& work) noexcept
    {
        try {
            if (!failed)
                work();
        } catch (...) { // nothing may go through the library
            failed = true;
        }
    }

    h264::byte_map places;
    std::uint64_t offset;
    std::string path;
    std::vector<std::size_t> lengths; // of the paths around it
};

py::tuple trace_bytes(const unsigned char* bytes, std::size_t size, std::uint64_t offset, const kept_context& context)
{
    const std::vector<unsigned char> clean = clean_bytes(bytes, size, false);
    element_list elements(bytes, size, offset);
    h264::nal_unit unit;
    h264::outcome result;
    h264::trace(unit, clean.data(), clean.size(), context.view(), result, elements);
    if (elements.failed)
        throw std::bad_alloc();
    return py::make_tuple(elements.all, failure_or_none(result.failure));
}

bool is_slice(unsigned type)
{
    return (type >= 1 && type <= 5) || (type >= 19 && type <= 21);
}

/// The unit with emulation prevention and without framing; or None and the failure.
py::tuple written(const h264::nal_unit& unit, const h264::unit_context& context, const std::vector<unsigned char>* old,
                  std::uint64_t data_bit)
{
    std::vector<unsigned char> room;
    h264::outcome result;
    const auto write = [&](h264::bit_writer& to) {
        result = h264::outcome();
        return old == nullptr ? h264::write(unit, context, to, result)
                              : h264::write_before_data(unit, context, old->data(), old->size(), data_bit, to, result);
    };
    h264::bit_writer counts;
    bool done = write(counts);
    h264::bit_writer bits = counts;
    if (!done && result.failure.why == h264::reason::no_room) {
        room.resize(static_cast<std::size_t>(result.failure.bound));
        bits = h264::bit_writer(room.data(), room.size());
        done = write(bits);
    }
    if (!done)
        return py::make_tuple(py::none(), failure_or_none(result.failure));
    constexpr std::size_t start_code = 3;
    std::vector<unsigned char> framed(room.size() + room.size() / 2 + 40);
    const std::size_t size = h264::frame(room.data(), room.size(), 0, false, framed.data(), framed.size());
    const std::size_t begin = std::min(start_code, size);
    return py::make_tuple(py::bytes(reinterpret_cast<const char*>(framed.data()) + begin, size - begin), py::none());
}

py::tuple write_unit(py::handle header, py::handle rbsp, const kept_context& context, const py::object& old,
                     std::uint64_t data_bit)
{
    h264::nal_unit unit;
    make_unit(unit, header, rbsp);
    if (old.is_none())
        return written(unit, context.view(), nullptr, 0);
    const std::shared_ptr<const source_bytes> bytes = lock_bytes(old);
    const std::vector<unsigned char> clean = clean_bytes(bytes->start, bytes->size, true);
    return written(unit, context.view(), &clean, data_bit);
}

py::tuple edit_unit(const py::object& source, const std::vector<std::pair<std::string, std::int64_t>>& values,
                    const kept_context& context)
{
    const std::shared_ptr<const source_bytes> bytes = lock_bytes(source);
    const std::vector<unsigned char> clean = clean_bytes(bytes->start, bytes->size, true);
    h264::nal_unit unit;
    h264::outcome result;
    const h264::unit_context with = context.view();
    h264::read(unit, clean.data(), clean.size(), with, result);
    if (result.failure)
        return py::make_tuple(py::none(), failure_tuple(result.failure));
    const std::uint64_t data_bit = result.bits;
    for (const auto& [path, value] : values) {
        h264::outcome how;
        if (!h264::edit(unit, with, path, value, how))
            return py::make_tuple(py::none(), failure_tuple(how.failure), path);
    }
    return written(unit, with, is_slice(unit.header.nal_unit_type) ? &clean : nullptr, data_bit);
}

/// Reads one unit by itself.
std::shared_ptr<kept_reading> read_unit(const py::object& source, const kept_context& context)
{
    auto kept = std::make_shared<kept_reading>();
    const std::shared_ptr<const source_bytes> bytes = lock_bytes(source);
    kept->unit.source = bytes;
    kept->unit.size = bytes->size;
    kept->unit.header = bytes->size == 0 ? static_cast<unsigned char>(0) : bytes->start[0];
    const std::vector<unsigned char> clean = clean_bytes(bytes->start, bytes->size, false);
    h264::nal_unit unit;
    h264::read(unit, clean.data(), clean.size(), context.view(), kept->result);
    take_rbsp(*kept, unit);
    kept->context = context;
    return kept;
}

template <class Set, std::size_t N>
py::dict sets_of(const std::shared_ptr<const Set> (&sets)[N])
{
    py::dict all;
    for (std::size_t id = 0; id < N; ++id)
        if (sets[id] != nullptr)
            all[py::int_(id)] = structure_or_none(sets[id]);
    return all;
}

py::bytes unescaped(const py::object& source)
{
    const std::shared_ptr<const source_bytes> bytes = lock_bytes(source);
    const std::vector<unsigned char> clean = clean_bytes(bytes->start, bytes->size, true);
    return {reinterpret_cast<const char*>(clean.data()), clean.size()};
}

} // namespace

py::tuple failure_tuple(const h264::failure& failure)
{
    return py::make_tuple(reason_name(failure.why), orv_h264::text_of(failure.element), failure.bit, failure.value,
                          failure.bound, orv_h264::text_of(failure));
}

void add_reading_types(py::module_& m)
{
    py::class_<kept_context>(m, "Context")
        .def(py::init<>())
        .def("sps", [](const kept_context& c) { return c.sets == nullptr ? py::dict() : sets_of(c.sets->sps); })
        .def("subset_sps",
             [](const kept_context& c) { return c.sets == nullptr ? py::dict() : sets_of(c.sets->subset_sps); })
        .def("pps", [](const kept_context& c) { return c.sets == nullptr ? py::dict() : sets_of(c.sets->pps); })
        .def("dps", [](const kept_context& c) { return c.sets == nullptr ? py::dict() : sets_of(c.sets->dps); });
    using reading = kept_reading;
    py::class_<reading, std::shared_ptr<reading>>(m, "Reading")
        .def("unit", [](const reading& r) { return unit_object(r.unit); })
        .def("header",
             [](const reading& r) { return structure_of_own(structure_number<h264::nal_unit_header>, r.header); })
        .def("rbsp", [](const reading& r) { return structure_of_own(r.rbsp_number, r.rbsp); })
        .def("sps", [](const reading& r) { return structure_or_none(r.sps); })
        .def("pps", [](const reading& r) { return structure_or_none(r.pps); })
        .def("context", [](const reading& r) { return r.context; })
        .def("failure", [](const reading& r) { return failure_or_none(r.result.failure); })
        .def("failed", [](const reading& r) { return bool(r.result.failure); })
        .def("findings", [](const reading& r) { return finding_tuples(r.result); })
        .def("finding_count", [](const reading& r) { return r.result.finding_count; })
        .def("ending", [](const reading& r) { return ending_name(r.result.ending); })
        .def("bits", [](const reading& r) { return r.result.bits; })
        .def("trace", [](const reading& r) {
            return trace_bytes(r.unit.bytes(), static_cast<std::size_t>(r.unit.size), r.unit.offset, r.context);
        });
    py::class_<reading_feed>(m, "ReadingFeed")
        .def(py::init<py::object, bool, h264::framing, std::size_t>())
        .def("next_batch", &reading_feed::next_batch);
    m.def("write_unit", write_unit);
    m.def("edit_unit", edit_unit);
    m.def("read_unit", read_unit);
    m.def("unescape", unescaped);
    m.def("trace_unit", [](const py::object& source, const kept_context& context) {
        const std::shared_ptr<const source_bytes> bytes = lock_bytes(source);
        return trace_bytes(bytes->start, bytes->size, 0, context);
    });
    m.def("clause_of", [](const std::string& name) { return h264::clause_of(name.c_str()); });
    m.def("semantics_of", [](const std::string& name) { return h264::semantics_of(name.c_str()); });
}

} // namespace orv_python
