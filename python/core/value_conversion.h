// Python values into members and back. Conversion may run Python code, which may change the very structure that a value
// is for: settled() does that first, and what takes its result runs none.
#pragma once

#include "structure_numbers.h"

namespace orv_python {

/// The value with everything done that may run Python code: numbers are int, iterables lists, bytes-like objects bytes,
/// all the way down. A new reference, or null with a Python error.
PyObject* settled(PyObject* value, int depth = 0);

/// How deep SEI messages may lie in one another in a settled value; more rather than less.
int messages_in_python(PyObject* value);

/// The members as a dictionary of plain Python values.
PyObject* dict_of(const structure& of, const void* at);
/// What repr() says: the members that are not as in a new one.
PyObject* text_of_structure(const structure& of, const void* at);
/// For those who make stubs: (name, type, lowest, highest, what the header says) of each member.
PyObject* members_of(const structure& of);
/// Sets the members that the dictionary names; false with a Python error.
bool set_members(PyObject* object, PyObject* dict);

} // namespace orv_python
