// The store of parameter sets, and the AVC decoder configuration record.
#include "module_parts.h"
#include "source_bytes.h"

#include <orv-utils-v4/h264_syntax.h>

#include <pybind11/stl.h>

#include <deque>
#include <string>
#include <vector>

namespace orv_python {

namespace h264 = orv_utils_v4::h264;

namespace {

py::bytes bytes_of(const h264::unit_view& view)
{
    return {reinterpret_cast<const char*>(view.bytes), view.size};
}

py::bytes bytes_of(const std::vector<unsigned char>& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

template <class List>
py::list all_of(const List& units)
{
    py::list all;
    for (const h264::unit_view& unit : units)
        all.append(bytes_of(unit));
    return all;
}

const char* arrival_name(h264::set_arrival arrival)
{
    static constexpr const char* names[] = {"no_set", "added", "changed", "same", "damaged", "too_long", "no_memory"};
    static_assert(std::size(names) == static_cast<std::size_t>(h264::set_arrival::no_memory) + 1);
    return names[static_cast<std::size_t>(arrival)];
}

/// Views of Python's bytes, which stay as long as this.
class viewed {
public:
    h264::unit_view operator()(py::handle object)
    {
        locked.push_back(lock_bytes(object));
        return {locked.back()->start, locked.back()->size};
    }
    template <class List>
    void fill(List& to, py::handle objects, const char* name)
    {
        for (py::handle object : objects) {
            if (to.size() == List::capacity())
                throw py::value_error(std::string(name) + " has room for " + std::to_string(List::capacity()) +
                                      " units");
            to.grow();
            to.back() = (*this)(object);
        }
    }

private:
    std::deque<std::shared_ptr<const source_bytes>> locked;
};

/// (None or what was made, None or (element, text)).
py::tuple told(const h264::configuration_outcome& result, const py::object& made)
{
    if (result.sound())
        return py::make_tuple(made, py::none());
    std::string element = result.element.name();
    for (unsigned i = 0; i < result.element.depth(); ++i)
        element += '[' + std::to_string(result.element.index(i)) + ']';
    return py::make_tuple(made, py::make_tuple(element, h264::text_of(result.why)));
}

py::dict record_dict(const h264::AVCDecoderConfigurationRecord& record)
{
    py::dict all;
    all["configurationVersion"] = record.configurationVersion;
    all["AVCProfileIndication"] = record.AVCProfileIndication;
    all["profile_compatibility"] = record.profile_compatibility;
    all["AVCLevelIndication"] = record.AVCLevelIndication;
    all["lengthSizeMinusOne"] = record.lengthSizeMinusOne;
    all["sequenceParameterSetNALUnit"] = all_of(record.sequenceParameterSetNALUnit);
    all["pictureParameterSetNALUnit"] = all_of(record.pictureParameterSetNALUnit);
    all["extension_present"] = record.extension_present;
    all["chroma_format"] = record.chroma_format;
    all["bit_depth_luma_minus8"] = record.bit_depth_luma_minus8;
    all["bit_depth_chroma_minus8"] = record.bit_depth_chroma_minus8;
    all["sequenceParameterSetExtNALUnit"] = all_of(record.sequenceParameterSetExtNALUnit);
    all["behind"] = bytes_of(record.behind);
    return all;
}

void fill_record(h264::AVCDecoderConfigurationRecord& to, const py::dict& from, viewed& views)
{
    to.configurationVersion = from["configurationVersion"].cast<std::uint8_t>();
    to.AVCProfileIndication = from["AVCProfileIndication"].cast<std::uint8_t>();
    to.profile_compatibility = from["profile_compatibility"].cast<std::uint8_t>();
    to.AVCLevelIndication = from["AVCLevelIndication"].cast<std::uint8_t>();
    to.lengthSizeMinusOne = from["lengthSizeMinusOne"].cast<std::uint8_t>();
    views.fill(to.sequenceParameterSetNALUnit, from["sequenceParameterSetNALUnit"], "sequenceParameterSetNALUnit");
    views.fill(to.pictureParameterSetNALUnit, from["pictureParameterSetNALUnit"], "pictureParameterSetNALUnit");
    to.extension_present = from["extension_present"].cast<bool>();
    to.chroma_format = from["chroma_format"].cast<std::uint8_t>();
    to.bit_depth_luma_minus8 = from["bit_depth_luma_minus8"].cast<std::uint8_t>();
    to.bit_depth_chroma_minus8 = from["bit_depth_chroma_minus8"].cast<std::uint8_t>();
    views.fill(to.sequenceParameterSetExtNALUnit, from["sequenceParameterSetExtNALUnit"],
               "sequenceParameterSetExtNALUnit");
}

py::tuple read_record(const py::object& object)
{
    const std::shared_ptr<const source_bytes> bytes = lock_bytes(object);
    h264::AVCDecoderConfigurationRecord record;
    const h264::configuration_outcome result = h264::read(record, bytes->start, bytes->size);
    return told(result, record_dict(record));
}

py::tuple write_record(const py::dict& from)
{
    viewed views;
    h264::AVCDecoderConfigurationRecord record;
    fill_record(record, from, views);
    h264::configuration_outcome result = h264::write(record, nullptr, 0);
    if (result.why != h264::configuration_reason::no_room)
        return told(result, py::none());
    std::vector<unsigned char> out(result.bytes);
    result = h264::write(record, out.data(), out.size());
    return told(result, bytes_of(out));
}

py::tuple make_record(const h264::parameter_set_list& sets, unsigned length_size)
{
    h264::AVCDecoderConfigurationRecord record;
    const h264::configuration_outcome result = h264::make_configuration(record, sets, length_size);
    return told(result, result.sound() ? py::object(record_dict(record)) : py::none());
}

py::bytes write_picture(h264::parameter_set_store& store, const py::iterable& units, h264::framing how,
                        h264::in_band_sets sets)
{
    viewed view;
    std::vector<h264::unit_view> views;
    for (py::handle unit : units)
        views.push_back(view(unit));
    const auto write = [&](unsigned char* out, std::size_t room) {
        return store.write_picture(views.data(), views.size(), how, sets, out, room);
    };
    const h264::framed_size needed = write(nullptr, 0);
    if (needed.why == h264::reason::too_large)
        throw py::value_error("a unit is longer than its length prefix can say");
    std::vector<unsigned char> out(needed.bytes);
    if (!out.empty())
        write(out.data(), out.size());
    return bytes_of(out);
}

py::int_ push_record(h264::parameter_set_store& store, const py::dict& from)
{
    viewed views;
    h264::AVCDecoderConfigurationRecord record;
    fill_record(record, from, views);
    return store.push(record);
}

} // namespace

void add_parameter_set_store(py::module_& m)
{
    using store = h264::parameter_set_store;
    py::enum_<h264::in_band_sets>(m, "InBandSets")
        .value("as_found", h264::in_band_sets::as_found)
        .value("before_idr", h264::in_band_sets::before_idr)
        .value("left_out", h264::in_band_sets::left_out);
    py::class_<store>(m, "ParameterSetStore")
        .def(py::init<>())
        .def("push",
             [](store& s, const py::object& unit) {
                 viewed view;
                 return arrival_name(s.push(view(unit)));
             })
        .def("push_record", push_record)
        .def("changes", &store::changes)
        .def("all", [](const store& s) { return all_of(s.all()); })
        .def("of_sps", [](const store& s, std::uint32_t id) { return all_of(s.of_sps(id)); })
        .def("make_record", [](const store& s, unsigned length_size) { return make_record(s.all(), length_size); })
        .def("make_record_of", [](const store& s, std::uint32_t id,
                                  unsigned length_size) { return make_record(s.of_sps(id), length_size); })
        .def("write_picture", write_picture);
    m.def("read_record", read_record);
    m.def("write_record", write_record);
}

} // namespace orv_python
