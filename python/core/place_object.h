// What Structure and List have in common: each object is a place, which is
// walked to anew each time it is used.
#pragma once

#include "structure_numbers.h"

#include <memory>
#include <vector>

namespace orv_python {

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

inline place* as_place(PyObject* object)
{
    return reinterpret_cast<place*>(object);
}

/// The types, which add_structure_types() makes.
extern PyTypeObject* structure_type;
extern PyTypeObject* list_type;
std::vector<PyTypeObject*>& types();

/// Where the bytes are; null with a Python error. As deep as messages nest.
void* find(const place* p);
/// The same for someone who writes.
void* find_to_write(const place* p);

/// An empty one; null with a Python error.
place* allocate(PyTypeObject* type);
void deallocate(PyObject* self);

/// The Python value of what lies at `at`, which `step` leads to from `parent`.
PyObject* value_at(place* parent, std::size_t step, const kind& of, const void* at);
/// Sets what lies at `at`, a part of `parent`, to a settled value.
bool set_at(const place* parent, const kind& of, void* at, PyObject* value, const char* name);

/// What List.copy() and Structure.copy() do.
PyObject* copied_entries(PyObject* self, PyObject* = nullptr);
PyObject* copy_structure(PyObject* self, PyObject*);

PyTypeObject* make_type(PyType_Spec& layout, PyTypeObject* base);
PyTypeObject* make_list_type();

template <class Function>
void* slot(Function* function)
{
    return reinterpret_cast<void*>(function);
}

} // namespace orv_python
