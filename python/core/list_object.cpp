// List, the Python type of the lists in structures.
#include "place_object.h"
#include "structure_object.h"
#include "value_conversion.h"

namespace orv_python {

namespace {

const list_access& access_of(PyObject* self)
{
    return *as_place(self)->of->list;
}

Py_ssize_t list_size(PyObject* self)
{
    const void* const at = find(as_place(self));
    return at == nullptr ? -1 : static_cast<Py_ssize_t>(access_of(self).size(at));
}

PyObject* list_entry(PyObject* self, Py_ssize_t index)
{
    void* const at = find(as_place(self));
    if (at == nullptr)
        return nullptr;
    const list_access& access = access_of(self);
    const auto i = static_cast<std::size_t>(index);
    if (index < 0 || i >= access.size(at)) {
        PyErr_SetString(PyExc_IndexError, "list index out of range");
        return nullptr;
    }
    return access.entry == nullptr ? PyBool_FromLong(access.bit(at, i))
                                   : value_at(as_place(self), i, *access.of, access.entry(at, i));
}

/// Sets the entry of the list at `at` to a settled value.
bool set_found_entry(PyObject* self, void* at, std::size_t i, PyObject* plain)
{
    const list_access& access = access_of(self);
    if (access.entry != nullptr)
        return set_at(as_place(self), *access.of, access.entry(at, i), plain, "an entry");
    bool bit = false;
    if (!flag_from(plain, bit, "an entry"))
        return false;
    access.set_bit(at, i, bit);
    return true;
}

bool set_entry(PyObject* self, std::size_t i, PyObject* value)
{
    PyObject* const plain = settled(value);
    void* const at = plain == nullptr ? nullptr : find_to_write(as_place(self));
    bool done = false;
    if (at != nullptr && i < access_of(self).size(at))
        done = set_found_entry(self, at, i, plain);
    else if (at != nullptr)
        PyErr_SetString(PyExc_IndexError, "list assignment index out of range");
    Py_XDECREF(plain);
    return done;
}

} // namespace

/// A Python list of the entries; structures in it are copies. Each entry is looked for anew, since making objects may
/// run Python code, by the collector.
PyObject* copied_entries(PyObject* self, PyObject*)
{
    PyObject* made = PyList_New(0);
    for (Py_ssize_t i = 0; made != nullptr && i < list_size(self); ++i) {
        PyObject* entry = list_entry(self, i);
        if (entry != nullptr && number_of(entry) >= 0)
            Py_SETREF(entry, copy_structure(entry, nullptr));
        else if (entry != nullptr && Py_IS_TYPE(entry, list_type))
            Py_SETREF(entry, copied_entries(entry));
        const bool done = entry != nullptr && PyList_Append(made, entry) == 0;
        Py_XDECREF(entry);
        if (!done) {
            Py_DECREF(made);
            return nullptr;
        }
    }
    if (PyErr_Occurred())
        Py_CLEAR(made);
    return made;
}

namespace {

/// Does it with a Python list of the entries, and takes what became of that.
PyObject* as_python_list(PyObject* self, const char* method, PyObject* arguments)
{
    PyObject* const list = copied_entries(self);
    PyObject* const function = list == nullptr ? nullptr : PyObject_GetAttrString(list, method);
    PyObject* result = function == nullptr ? nullptr : PyObject_CallObject(function, arguments);
    Py_XDECREF(function);
    PyObject* const plain = result == nullptr ? nullptr : settled(list);
    void* const at = plain == nullptr ? nullptr : find_to_write(as_place(self));
    if (at == nullptr || !set_at(as_place(self), *as_place(self)->of, at, plain, "the list"))
        Py_CLEAR(result);
    Py_XDECREF(plain);
    Py_XDECREF(list);
    return result;
}

bool may_grow(PyObject* self)
{
    if (access_of(self).fixed)
        PyErr_Format(PyExc_TypeError, "this list always has %zu entries", access_of(self).most);
    return !access_of(self).fixed;
}

template <const char* const& method>
PyObject* list_method(PyObject* self, PyObject* arguments)
{
    return may_grow(self) ? as_python_list(self, method, arguments) : nullptr;
}
constexpr const char *extend = "extend", *insert = "insert", *pop = "pop", *clear = "clear";

PyObject* list_append(PyObject* self, PyObject* value)
{
    PyObject* const plain = may_grow(self) ? settled(value) : nullptr;
    void* const at = plain == nullptr ? nullptr : find_to_write(as_place(self));
    bool done = false;
    if (at != nullptr) {
        const list_access& access = access_of(self);
        const std::size_t size = access.size(at);
        if (size >= access.most) {
            PyErr_Format(PyExc_ValueError, "this list has room for %zu entries", access.most);
        } else {
            try {
                access.resize(at, size + 1);
                done = set_found_entry(self, at, size, plain);
                if (!done)
                    access.resize(at, size);
            } catch (...) {
                PyErr_NoMemory();
            }
        }
    }
    Py_XDECREF(plain);
    return done ? Py_NewRef(Py_None) : nullptr;
}

PyObject* list_get(PyObject* self, PyObject* key)
{
    if (PyIndex_Check(key)) {
        Py_ssize_t index = PyNumber_AsSsize_t(key, PyExc_IndexError);
        if (index == -1 && PyErr_Occurred())
            return nullptr;
        if (index < 0) {
            const Py_ssize_t size = list_size(self);
            if (size < 0)
                return nullptr;
            index += size;
        }
        return list_entry(self, index);
    }
    PyObject* const list = PySequence_List(self);
    PyObject* const result = list == nullptr ? nullptr : PyObject_GetItem(list, key);
    Py_XDECREF(list);
    return result;
}

int list_set(PyObject* self, PyObject* key, PyObject* value)
{
    if (value != nullptr && PyIndex_Check(key)) {
        Py_ssize_t index = PyNumber_AsSsize_t(key, PyExc_IndexError);
        const Py_ssize_t size = index == -1 && PyErr_Occurred() ? -1 : list_size(self);
        if (size < 0)
            return -1;
        if (index < 0)
            index += size;
        return set_entry(self, static_cast<std::size_t>(index), value) ? 0 : -1; // a negative one is above all sizes
    }
    if (value == nullptr && !may_grow(self))
        return -1;
    PyObject* const arguments = value == nullptr ? PyTuple_Pack(1, key) : PyTuple_Pack(2, key, value);
    PyObject* const result = arguments == nullptr
                                 ? nullptr
                                 : as_python_list(self, value == nullptr ? "__delitem__" : "__setitem__", arguments);
    Py_XDECREF(arguments);
    Py_XDECREF(result);
    return result == nullptr ? -1 : 0;
}

PyObject* compare_lists(PyObject* self, PyObject* other, int operation)
{
    const bool sequence = PyList_Check(other) || PyTuple_Check(other) || Py_IS_TYPE(other, list_type);
    if ((operation != Py_EQ && operation != Py_NE) || !sequence)
        Py_RETURN_NOTIMPLEMENTED;
    PyObject* const a = PySequence_List(self);
    PyObject* const b = a == nullptr ? nullptr : PySequence_List(other);
    PyObject* const result = b == nullptr ? nullptr : PyObject_RichCompare(a, b, operation);
    Py_XDECREF(a);
    Py_XDECREF(b);
    return result;
}

PyObject* list_text(PyObject* self)
{
    PyObject* const list = PySequence_List(self);
    PyObject* const text = list == nullptr ? nullptr : PyObject_Repr(list);
    Py_XDECREF(list);
    return text;
}

PyMethodDef list_methods[] = {
    {"append", list_append, METH_O, "append($self, value, /)\n--\n\nOne more entry behind the others."},
    {"extend", list_method<extend>, METH_VARARGS, "Further entries behind the others."},
    {"insert", list_method<insert>, METH_VARARGS, "An entry before the one with this index."},
    {"pop", list_method<pop>, METH_VARARGS,
     "Takes the last entry out, or the one with this index; of a structure, a copy."},
    {"clear", list_method<clear>, METH_VARARGS, "Leaves none."},
    {"copy", copied_entries, METH_NOARGS,
     "copy($self)\n--\n\nA Python list of the entries; structures in it are copies."},
    {},
};

} // namespace

PyTypeObject* make_list_type()
{
    static PyType_Slot slots[] = {
        {Py_tp_doc,
         const_cast<char*>("A list in a structure. It is the list of the structure itself: what is set in it is set "
                           "there.\nAn entry that is a structure is the one at its index.")},
        {Py_tp_dealloc, slot(deallocate)},
        {Py_tp_methods, list_methods},
        {Py_tp_repr, slot(list_text)},
        {Py_tp_richcompare, slot(compare_lists)},
        {Py_tp_hash, slot(PyObject_HashNotImplemented)},
        {Py_sq_length, slot(list_size)},
        {Py_sq_item, slot(list_entry)},
        {Py_mp_length, slot(list_size)},
        {Py_mp_subscript, slot(list_get)},
        {Py_mp_ass_subscript, slot(list_set)},
        {0, nullptr},
    };
    static PyType_Spec layout = {"orv_h264.structures.List", sizeof(place), 0,
                                 Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION | Py_TPFLAGS_SEQUENCE, slots};
    return make_type(layout, nullptr);
}

} // namespace orv_python
