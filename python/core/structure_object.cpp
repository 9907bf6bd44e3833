// Structure, and a type for each structure below it.
#include "structure_object.h"

#include "place_object.h"
#include "value_conversion.h"

#include <new>
#include <string>
#include <vector>

namespace orv_python {

namespace {

// Members

PyObject* get_member(PyObject* self, void* closure)
{
    const auto& m = *static_cast<const member*>(closure);
    const void* const base = find(as_place(self));
    return base == nullptr ? nullptr
                           : value_at(as_place(self), m.offset, *m.of, static_cast<const char*>(base) + m.offset);
}

int set_member(PyObject* self, PyObject* value, void* closure)
{
    const auto& m = *static_cast<const member*>(closure);
    if (value == nullptr) {
        PyErr_Format(PyExc_AttributeError, "%s is always there", m.name);
        return -1;
    }
    // Conversion may run Python code, which may change where it lies: it is
    // looked for behind that.
    PyObject* const plain = settled(value);
    if (plain == nullptr)
        return -1;
    void* const base = find_to_write(as_place(self));
    const bool done =
        base != nullptr && set_at(as_place(self), *m.of, static_cast<char*>(base) + m.offset, plain, m.name);
    Py_DECREF(plain);
    return done ? 0 : -1;
}

// Structures

const structure& structure_at(const place* p)
{
    return structures[p->number];
}

PyObject* make_root(int number, std::shared_ptr<void> holder, bool read_only)
{
    place* const made = allocate(types()[static_cast<std::size_t>(number)]);
    if (made == nullptr)
        return nullptr;
    made->holder = std::move(holder);
    made->number = number;
    made->read_only = read_only;
    return reinterpret_cast<PyObject*>(made);
}

PyObject* make_structure(PyTypeObject* type, PyObject* arguments, PyObject* keywords)
{
    int number = 0;
    while (number < structure_count && types()[static_cast<std::size_t>(number)] != type)
        ++number;
    if (number == structure_count)
        return PyErr_Format(PyExc_TypeError, "%s cannot be made; its subclasses can", type->tp_name);
    if (PyTuple_GET_SIZE(arguments) != 0)
        return PyErr_Format(PyExc_TypeError, "%s takes its members by their names", structures[number].name);
    try {
        PyObject* const made = make_root(number, {structures[number].make(), structures[number].destroy}, false);
        if (made != nullptr && keywords != nullptr && !set_members(made, keywords)) {
            Py_DECREF(made);
            return nullptr;
        }
        return made;
    } catch (...) {
        return PyErr_NoMemory();
    }
}

} // namespace

PyObject* copy_structure(PyObject* self, PyObject*)
{
    const place* const p = as_place(self);
    const void* const at = find(p);
    if (at == nullptr)
        return nullptr;
    try {
        return make_root(p->number, {structure_at(p).copy(at), structure_at(p).destroy}, false);
    } catch (...) {
        return PyErr_NoMemory();
    }
}

namespace {

PyObject* structure_to_dict(PyObject* self, PyObject*)
{
    const void* const at = find(as_place(self));
    return at == nullptr ? nullptr : dict_of(structure_at(as_place(self)), at);
}

PyObject* reduce_structure(PyObject* self, PyObject*)
{
    PyObject* const dict = structure_to_dict(self, nullptr);
    PyObject* const make =
        dict == nullptr ? nullptr : PyObject_GetAttrString(reinterpret_cast<PyObject*>(Py_TYPE(self)), "_made_of");
    PyObject* const result = make == nullptr ? nullptr : Py_BuildValue("O(O)", make, dict);
    Py_XDECREF(make);
    Py_XDECREF(dict);
    return result;
}

PyObject* structure_made_of(PyObject* type, PyObject* dict)
{
    PyObject* const nothing = PyTuple_New(0);
    PyObject* const made = nothing == nullptr ? nullptr : PyObject_Call(type, nothing, dict);
    Py_XDECREF(nothing);
    return made;
}

PyObject* structure_members(PyObject* type, PyObject*)
{
    for (int number = 0; number < structure_count; ++number)
        if (types()[static_cast<std::size_t>(number)] == reinterpret_cast<PyTypeObject*>(type))
            return members_of(structures[number]);
    return PyTuple_New(0);
}

PyObject* structure_text(PyObject* self)
{
    const void* const at = find(as_place(self));
    return at == nullptr ? nullptr : text_of_structure(structure_at(as_place(self)), at);
}

PyObject* compare_structures(PyObject* self, PyObject* other, int operation)
{
    if ((operation != Py_EQ && operation != Py_NE) || number_of(other) != as_place(self)->number)
        Py_RETURN_NOTIMPLEMENTED;
    const void* const a = find(as_place(self));
    const void* const b = a == nullptr ? nullptr : find(as_place(other));
    if (b == nullptr)
        return nullptr;
    return PyBool_FromLong(structure_at(as_place(self)).equal(a, b) == (operation == Py_EQ));
}

PyMethodDef structure_methods[] = {
    {"copy", copy_structure, METH_NOARGS, "copy($self)\n--\n\nA structure of its own that can be changed."},
    {"__copy__", copy_structure, METH_NOARGS, nullptr},
    {"__deepcopy__", copy_structure, METH_O, nullptr},
    {"to_dict", structure_to_dict, METH_NOARGS,
     "to_dict($self)\n--\n\nThe members as numbers, lists and dictionaries. "
     "T(**x.to_dict()) is equal to an x of type "
     "T. Where "
     "one of\nseveral structures may stand, the dictionary says its name as "
     "\"structure\"."},
    {"__reduce__", reduce_structure, METH_NOARGS, nullptr},
    {"_made_of", structure_made_of, METH_O | METH_CLASS, nullptr},
    {"_members", structure_members, METH_NOARGS | METH_CLASS, nullptr},
    {},
};

PyTypeObject* make_structure_base()
{
    static PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>("A structure of the standard, with its members under "
                                      "their names there.\n\nIt is made with "
                                      "members by name; the others hold what the standard "
                                      "infers.\nTwo of the same type "
                                      "are equal when their members are.")},
        {Py_tp_new, slot(make_structure)},
        {Py_tp_dealloc, slot(deallocate)},
        {Py_tp_methods, structure_methods},
        {Py_tp_repr, slot(structure_text)},
        {Py_tp_richcompare, slot(compare_structures)},
        {Py_tp_hash, slot(PyObject_HashNotImplemented)},
        {0, nullptr},
    };
    static PyType_Spec layout = {"orv_h264.structures.Structure", sizeof(place), 0,
                                 Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
    return make_type(layout, nullptr);
}

// What a type points to lives as long as the program.
PyTypeObject* make_type_of(const structure& s)
{
    auto* const getters = new PyGetSetDef[s.member_count + 1]();
    for (std::size_t i = 0; i < s.member_count; ++i)
        getters[i] = {s.members[i].name, get_member, set_member, s.members[i].about,
                      const_cast<member*>(&s.members[i])};
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(s.about)},
        {Py_tp_getset, getters},
        {0, nullptr},
    };
    const auto* const name = new std::string(std::string("orv_h264.structures.") + s.name);
    PyType_Spec layout = {name->c_str(), sizeof(place), 0, Py_TPFLAGS_DEFAULT, slots};
    return make_type(layout, structure_type);
}

bool add(PyObject* module, const char* name, PyTypeObject* type)
{
    return type != nullptr && PyModule_AddObjectRef(module, name, reinterpret_cast<PyObject*>(type)) == 0;
}

} // namespace

bool add_structure_types(PyObject* module)
{
    structure_type = make_structure_base();
    if (!add(module, "Structure", structure_type))
        return false;
    list_type = make_list_type();
    if (!add(module, "List", list_type))
        return false;
    for (int number = 0; number < structure_count; ++number) {
        types().push_back(make_type_of(structures[number]));
        if (!add(module, structures[number].name, types().back()))
            return false;
    }
    return true;
}

PyObject* new_structure(int number, std::shared_ptr<void> holder, bool read_only)
{
    return make_root(number, std::move(holder), read_only);
}

int number_of(PyObject* object)
{
    return PyObject_TypeCheck(object, structure_type) ? as_place(object)->number : -1;
}

const void* structure_of(PyObject* object, int number)
{
    if (number_of(object) != number || number < 0) {
        PyErr_Format(PyExc_TypeError, "a %s is needed, not %R", number < 0 ? "structure" : structures[number].name,
                     Py_TYPE(object));
        return nullptr;
    }
    return find(as_place(object));
}

} // namespace orv_python
