#include "place_object.h"

#include "value_conversion.h"

#include <new>

namespace orv_python {

PyTypeObject* structure_type = nullptr;
PyTypeObject* list_type = nullptr;
std::vector<PyTypeObject*>& types()
{
    static std::vector<PyTypeObject*> all; // as `structures`
    return all;
}

namespace {

void* fail_gone()
{
    PyErr_SetString(PyExc_ReferenceError,
                    "what this stands for is not there any more: the list or the choice that it lies in has changed");
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

/// How many SEI messages are around the place.
int messages_around(const place* p)
{
    int count = 0;
    for (; p != nullptr; p = p->parent)
        count += p->number == number_of_sei_message;
    return count;
}

} // namespace

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

bool set_at(const place* parent, const kind& of, void* at, PyObject* value, const char* name)
{
    const bool may_nest = of.what == form::choice || of.what == form::list || of.what == form::structure;
    if (may_nest && messages_around(parent) + messages_in_python(value) > deepest_messages) {
        PyErr_Format(PyExc_ValueError, "%s: more than %d SEI messages lie in one another", name, deepest_messages);
        return false;
    }
    return of.set(of, at, value, name);
}

PyTypeObject* make_type(PyType_Spec& layout, PyTypeObject* base)
{
    PyObject* const bases = base == nullptr ? nullptr : PyTuple_Pack(1, base);
    if (base != nullptr && bases == nullptr)
        return nullptr;
    auto* const type = reinterpret_cast<PyTypeObject*>(PyType_FromSpecWithBases(&layout, bases));
    Py_XDECREF(bases);
    return type;
}

} // namespace orv_python
