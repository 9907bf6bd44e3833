// The extension _core of the Python module orv_h264. The package around it is what users see.
#include "module_parts.h"
#include "reading.h"
#include "structure_object.h"
#include "unit_feed.h"

#include <orv-utils-v4/version.h>

namespace orv_python {

namespace {

/// Gives the units of a source, a batch at a time.
class unit_batches {
public:
    unit_batches(py::object source, bool pieces, h264::framing framing, std::size_t most_bytes, bool gaps)
        : feed(std::move(source), pieces, framing, most_bytes, gaps)
    {
    }

    py::list next_batch()
    {
        const busy_mark mark(busy);
        feed.read_more();
        py::list batch(feed.units.size());
        for (std::size_t i = 0; i < feed.units.size(); ++i)
            PyList_SET_ITEM(batch.ptr(), static_cast<Py_ssize_t>(i), unit_object(feed.units[i]).release().ptr());
        feed.units.clear();
        return batch;
    }

private:
    bool busy = false;
    unit_feed feed;
};

} // namespace

} // namespace orv_python

PYBIND11_MODULE(_core, m)
{
    using namespace orv_python;
    m.attr("version") = ORV_UTILS_V4_VERSION;
    m.attr("usual_most_bytes") = h264::unit_splitter::usual_most_bytes;
    py::enum_<h264::framing>(m, "Framing")
        .value("annex_b", h264::framing::annex_b)
        .value("length_1", h264::framing::length_1)
        .value("length_2", h264::framing::length_2)
        .value("length_3", h264::framing::length_3)
        .value("length_4", h264::framing::length_4);
    py::module_ structures_module = m.def_submodule("structures");
    if (!add_unit_types(m.ptr()) || !add_structure_types(structures_module.ptr()))
        throw py::error_already_set();
    py::class_<unit_batches>(m, "UnitFeed")
        .def(py::init<py::object, bool, h264::framing, std::size_t, bool>())
        .def("next_batch", &unit_batches::next_batch);
    add_reading_types(m);
    add_derived_values(m);
    add_parameter_set_store(m);
    add_pictures(m);
    add_survey(m);
}
