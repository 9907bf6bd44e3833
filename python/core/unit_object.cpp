#include "unit_object.h"

#include "place_object.h"

#include <new>

namespace orv_python {

namespace {

struct unit_type_object {
    PyObject_HEAD found_unit unit;
};

PyTypeObject* unit_type = nullptr;
PyTypeObject* gap_type = nullptr;

const found_unit& unit_of(PyObject* self)
{
    return reinterpret_cast<unit_type_object*>(self)->unit;
}

void deallocate_unit(PyObject* self)
{
    PyTypeObject* const type = Py_TYPE(self);
    reinterpret_cast<unit_type_object*>(self)->unit.~found_unit();
    type->tp_free(self);
    Py_DECREF(type);
}

template <auto Member>
PyObject* number(PyObject* self, void*)
{
    return PyLong_FromUnsignedLongLong(unit_of(self).*Member);
}

PyObject* nal_ref_idc(PyObject* self, void*)
{
    return PyLong_FromLong(unit_of(self).header >> 5 & 3);
}
PyObject* nal_unit_type(PyObject* self, void*)
{
    return PyLong_FromLong(unit_of(self).header & 0x1F);
}
PyObject* cut(PyObject* self, void*)
{
    return PyBool_FromLong(unit_of(self).cut);
}
PyObject* data(PyObject* self, void*)
{
    return PyMemoryView_FromObject(self);
}
Py_ssize_t size(PyObject* self)
{
    return static_cast<Py_ssize_t>(unit_of(self).size);
}

int get_buffer(PyObject* self, Py_buffer* view, int flags)
{
    const found_unit& unit = unit_of(self);
    return PyBuffer_FillInfo(view, self, const_cast<unsigned char*>(unit.bytes()), static_cast<Py_ssize_t>(unit.size),
                             1, flags);
}

PyObject* unit_text(PyObject* self)
{
    const found_unit& unit = unit_of(self);
    return PyUnicode_FromFormat("<Unit %llu at %llu: type %d, nal_ref_idc %d, %llu bytes%s>",
                                static_cast<unsigned long long>(unit.number),
                                static_cast<unsigned long long>(unit.offset), unit.header & 0x1F, unit.header >> 5 & 3,
                                static_cast<unsigned long long>(unit.size), unit.cut ? ", cut" : "");
}

const char* gap_reason_name(h264::split_gap_reason reason)
{
    switch (reason) {
    case h264::split_gap_reason::before_first_unit:
        return "before_first_unit";
    case h264::split_gap_reason::between_units:
        return "between_units";
    case h264::split_gap_reason::no_header:
        return "no_header";
    case h264::split_gap_reason::too_large:
        return "too_large";
    case h264::split_gap_reason::cut_prefix:
        return "cut_prefix";
    case h264::split_gap_reason::no_memory:
        return "no_memory";
    }
    return "";
}

PyObject* reason(PyObject* self, void*)
{
    return PyUnicode_FromString(gap_reason_name(unit_of(self).reason));
}

PyObject* gap_text(PyObject* self)
{
    const found_unit& gap = unit_of(self);
    return PyUnicode_FromFormat("<Gap at %llu: %s, %llu bytes>", static_cast<unsigned long long>(gap.offset),
                                gap_reason_name(gap.reason), static_cast<unsigned long long>(gap.size));
}

// The word before the colon is the type that stubs give.
PyGetSetDef unit_members[] = {
    {"number", number<&found_unit::number>, nullptr, "int: How many units come before it.", nullptr},
    {"offset", number<&found_unit::offset>, nullptr, "int: Where its header byte lies in the stream.", nullptr},
    {"size", number<&found_unit::size>, nullptr, "int: Its bytes, without the framing; 1 at least.", nullptr},
    {"framing_size", number<&found_unit::framing_size>, nullptr,
     "int: Bytes of its start code, with a zero byte before it, or of its length prefix.", nullptr},
    {"stated_length", number<&found_unit::stated_length>, nullptr, "int: What the length prefix says; 0 in Annex B.",
     nullptr},
    {"cut", cut, nullptr, "bool: The stream ends before the unit, by its length prefix, does.", nullptr},
    {"nal_ref_idc", nal_ref_idc, nullptr, "int: Of the header byte, 0 to 3.", nullptr},
    {"nal_unit_type", nal_unit_type, nullptr, "int: Of the header byte, 0 to 31.", nullptr},
    {"data", data, nullptr,
     "memoryview: The unit, the header byte first, emulation prevention in. Nothing is copied where the source is a\n"
     "buffer or a file by its path, and the source stays locked as long as the view lives.",
     nullptr},
    {},
};

PyGetSetDef gap_members[] = {
    {"reason", reason, nullptr,
     "str: before_first_unit, between_units, no_header, too_large (a unit above the limit), cut_prefix or no_memory (a "
     "unit without).",
     nullptr},
    {"offset", number<&found_unit::offset>, nullptr, "int: Where it begins in the stream.", nullptr},
    {"size", number<&found_unit::size>, nullptr, "int: Its bytes.", nullptr},
    {"stated_length", number<&found_unit::stated_length>, nullptr, "int: What the length prefix says, with too_large.",
     nullptr},
    {"nal_ref_idc", nal_ref_idc, nullptr, "int: Of the unit, with too_large.", nullptr},
    {"nal_unit_type", nal_unit_type, nullptr, "int: Of the unit, with too_large.", nullptr},
    {},
};

PyTypeObject* make_unit_type()
{
    static PyType_Slot slots[] = {
        {Py_tp_doc,
         const_cast<char*>("A NAL unit of a stream. bytes(unit) copies it; where bytes are taken, it is taken as "
                           "they are.")},
        {Py_tp_dealloc, slot(deallocate_unit)},
        {Py_tp_getset, unit_members},
        {Py_tp_repr, slot(unit_text)},
        {Py_sq_length, slot(size)},
        {Py_bf_getbuffer, slot(get_buffer)},
        {0, nullptr},
    };
    static PyType_Spec layout = {"orv_h264.Unit", sizeof(unit_type_object), 0,
                                 Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
    return reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&layout));
}

PyTypeObject* make_gap_type()
{
    static PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>("Bytes of a stream that belong to no unit.")},
        {Py_tp_dealloc, slot(deallocate_unit)},
        {Py_tp_getset, gap_members},
        {Py_tp_repr, slot(gap_text)},
        {0, nullptr},
    };
    static PyType_Spec layout = {"orv_h264.Gap", sizeof(unit_type_object), 0,
                                 Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
    return reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&layout));
}

} // namespace

bool add_unit_types(PyObject* module)
{
    unit_type = make_unit_type();
    gap_type = make_gap_type();
    return unit_type != nullptr && gap_type != nullptr &&
           PyModule_AddObjectRef(module, "Unit", reinterpret_cast<PyObject*>(unit_type)) == 0 &&
           PyModule_AddObjectRef(module, "Gap", reinterpret_cast<PyObject*>(gap_type)) == 0;
}

py::object unit_object(const found_unit& unit)
{
    PyTypeObject* const type = unit.is_gap ? gap_type : unit_type;
    PyObject* const made = type->tp_alloc(type, 0);
    if (made == nullptr)
        throw py::error_already_set();
    new (&reinterpret_cast<unit_type_object*>(made)->unit) found_unit(unit);
    return py::reinterpret_steal<py::object>(made);
}

const found_unit* unit_in(py::handle object)
{
    return Py_IS_TYPE(object.ptr(), unit_type) ? &unit_of(object.ptr()) : nullptr;
}

} // namespace orv_python
