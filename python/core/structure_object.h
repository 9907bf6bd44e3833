// Structures as Python objects. An object is a place: the root of a structure, a member of another object, or an entry
// of a list of one; it finds its bytes anew each time it is asked, so that nothing dangles when a list shrinks.
#pragma once

#include "structure_numbers.h"

#include <memory>

namespace orv_python {

/// Makes the types, and adds them to the module.
bool add_structure_types(PyObject* module);

/// A structure of its own. Null with a Python error when there is no memory.
PyObject* new_structure(int number, std::shared_ptr<void> holder, bool read_only);

template <class T>
PyObject* wrap(std::shared_ptr<const T> held)
{
    return new_structure(structure_number<T>, std::const_pointer_cast<T>(std::move(held)), true);
}

/// The structure that the object is; null with a Python error where it is none, or another one.
const void* structure_of(PyObject* object, int number);
/// Its number; -1, without an error, where it is none.
int number_of(PyObject* object);

} // namespace orv_python
