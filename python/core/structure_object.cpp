// Structure and List, the two Python types, and a type for each structure below the first.
#include "structure_object.h"

#include "value_conversion.h"

#include <new>
#include <string>
#include <vector>

namespace orv_python {

namespace {

/// A Structure or a List.
struct place {
    PyObject_HEAD place* parent;  // null of a root
    std::shared_ptr<void> holder; // of a root
    const kind* of;               // null of a root
    int number;                   // of a structure; -1 of a list
    std::size_t step;             // in the parent: the offset of a member, or the index of an entry
    int alternative;              // of the choice at `step`; -1 where that is none
    bool read_only;               // of a root
};

PyTypeObject* structure_type = nullptr;
PyTypeObject* list_type = nullptr;
std::vector<PyTypeObject*>& types()
{
    static std::vector<PyTypeObject*> all; // as `structures`
    return all;
}

place* as_place(PyObject* object)
{
    return reinterpret_cast<place*>(object);
}

void* find(const place* p);

void* fail_gone()
{
    PyErr_SetString(PyExc_ReferenceError,
                    "what this stands for is not there any more: the list or the choice that it lies in "
                    "has changed");
    return nullptr;
}

/// Where the entry of the list is; null with a Python error.
void* find_entry(const place* parent, std::size_t index)
{
    void* const list = find(parent);
    if (list == nullptr)
        return nullptr;
    const list_access& access = *parent->of->list;
    return index < access.size(list) ? access.entry(list, index) : fail_gone();
}

/// Where the bytes are; null with a Python error. As deep as messages nest.
void* find(const place* p)
{
    if (p->parent == nullptr)
        return p->holder.get();
    if (p->parent->number < 0)
        return find_entry(p->parent, p->step);
    void* const around = find(p->parent);
    if (around == nullptr)
        return nullptr;
    void* const at = static_cast<char*>(around) + p->step;
    if (p->alternative < 0)
        return at;
    const choice_access& access = *p->of->choice;
    void* const chosen = access.at(at, static_cast<std::size_t>(p->alternative));
    return chosen != nullptr ? chosen : fail_gone();
}

/// The same for someone who writes.
void* find_to_write(const place* p)
{
    const place* root = p;
    while (root->parent != nullptr)
        root = root->parent;
    if (root->read_only) {
        PyErr_SetString(PyExc_AttributeError, "this is what a stream holds, and cannot be changed; take a copy()");
        return nullptr;
    }
    return find(p);
}

place* allocate(PyTypeObject* type)
{
    place* const made = as_place(type->tp_alloc(type, 0));
    if (made == nullptr)
        return nullptr;
    made->parent = nullptr;
    new (&made->holder) std::shared_ptr<void>();
    made->of = nullptr;
    made->number = -1;
    made->step = 0;
    made->alternative = -1;
    made->read_only = false;
    return made;
}

void deallocate(PyObject* self)
{
    place* const p = as_place(self);
    Py_XDECREF(reinterpret_cast<PyObject*>(p->parent));
    p->holder.~shared_ptr();
    PyTypeObject* const type = Py_TYPE(self);
    type->tp_free(self);
    Py_DECREF(type);
}

PyObject* inner(place* parent, std::size_t step, const kind& of, int number, int alternative)
{
    place* const made = allocate(number < 0 ? list_type : types()[static_cast<std::size_t>(number)]);
    if (made == nullptr)
        return nullptr;
    Py_INCREF(parent);
    made->parent = parent;
    made->of = &of;
    made->number = number;
    made->step = step;
    made->alternative = alternative;
    return reinterpret_cast<PyObject*>(made);
}

/// The Python value of what lies at `at`, which `step` leads to from `parent`.
PyObject* value_at(place* parent, std::size_t step, const kind& of, const void* at)
{
    switch (of.what) {
    case form::structure:
        return inner(parent, step, of, of.structure, -1);
    case form::list:
        return inner(parent, step, of, -1, -1);
    case form::choice: {
        const std::size_t chosen = of.choice->chosen(at);
        const int number = chosen < of.choice->count ? of.choice->structures[chosen] : -1;
        if (number < 0)
            Py_RETURN_NONE;
        return inner(parent, step, of, number, static_cast<int>(chosen));
    }
    default:
        return of.get(at);
    }
}

/// How many SEI messages are around the place.
int messages_around(const place* p)
{
    int count = 0;
    for (; p != nullptr; p = p->parent)
        count += p->number == number_of_sei_message;
    return count;
}

/// Sets what lies at `at`, a part of `parent`.
bool set_at(const place* parent, const kind& of, void* at, PyObject* value, const char* name)
{
    const bool may_nest = of.what == form::choice || of.what == form::list || of.what == form::structure;
    if (may_nest && messages_around(parent) + messages_in_python(value) > deepest_messages) {
        PyErr_Format(PyExc_ValueError, "%s: more than %d SEI messages lie in one another", name, deepest_messages);
        return false;
    }
    return of.set(of, at, value, name);
}

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
    // Conversion may run Python code, which may change where it lies: it is looked for behind that.
    PyObject* const plain = settled(value);
    if (plain == nullptr)
        return -1;
    void* const base = find_to_write(as_place(self));
    const bool done =
        base != nullptr && set_at(as_place(self), *m.of, static_cast<char*>(base) + m.offset, plain, m.name);
    Py_DECREF(plain);
    return done ? 0 : -1;
}

bool is_list(PyObject* object)
{
    return Py_IS_TYPE(object, list_type);
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
     "to_dict($self)\n--\n\nThe members as numbers, lists and dictionaries. T(**x.to_dict()) is equal to an x of type "
     "T. Where "
     "one of\nseveral structures may stand, the dictionary says its name as \"structure\"."},
    {"__reduce__", reduce_structure, METH_NOARGS, nullptr},
    {"_made_of", structure_made_of, METH_O | METH_CLASS, nullptr},
    {"_members", structure_members, METH_NOARGS | METH_CLASS, nullptr},
    {},
};

// Lists

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

/// A Python list of the entries; structures in it are copies. Each entry is looked for anew, since making objects may
/// run Python code, by the collector.
PyObject* copied_entries(PyObject* self, PyObject* = nullptr)
{
    PyObject* made = PyList_New(0);
    for (Py_ssize_t i = 0; made != nullptr && i < list_size(self); ++i) {
        PyObject* entry = list_entry(self, i);
        if (entry != nullptr && number_of(entry) >= 0)
            Py_SETREF(entry, copy_structure(entry, nullptr));
        else if (entry != nullptr && is_list(entry))
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

PyTypeObject* make_type(PyType_Spec& spec, PyTypeObject* base)
{
    PyObject* const bases = base == nullptr ? nullptr : PyTuple_Pack(1, base);
    if (base != nullptr && bases == nullptr)
        return nullptr;
    auto* const type = reinterpret_cast<PyTypeObject*>(PyType_FromSpecWithBases(&spec, bases));
    Py_XDECREF(bases);
    return type;
}

template <class Function>
void* slot(Function* function)
{
    return reinterpret_cast<void*>(function);
}

PyTypeObject* make_structure_base()
{
    static PyType_Slot slots[] = {
        {Py_tp_doc,
         const_cast<char*>("A structure of the standard, with its members under their names there.\n\nIt is made with "
                           "members by name; the others hold what the standard infers.\nTwo of the same type "
                           "are equal when their members are.")},
        {Py_tp_new, slot(make_structure)},
        {Py_tp_dealloc, slot(deallocate)},
        {Py_tp_methods, structure_methods},
        {Py_tp_repr, slot(structure_text)},
        {Py_tp_richcompare, slot(compare_structures)},
        {Py_tp_hash, slot(PyObject_HashNotImplemented)},
        {0, nullptr},
    };
    static PyType_Spec spec = {"orv_h264.structures.Structure", sizeof(place), 0,
                               Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
    return make_type(spec, nullptr);
}

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
    static PyType_Spec spec = {"orv_h264.structures.List", sizeof(place), 0,
                               Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION | Py_TPFLAGS_SEQUENCE, slots};
    return make_type(spec, nullptr);
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
    PyType_Spec spec = {name->c_str(), sizeof(place), 0, Py_TPFLAGS_DEFAULT, slots};
    return make_type(spec, structure_type);
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
