// Members into plain Python values, and into text.
#include "value_conversion.h"

#include <memory>
#include <string>

namespace orv_python {

namespace {

PyObject* plain(const kind& of, const void* at);

PyObject* plain_list(const list_access& list, const void* at)
{
    const std::size_t size = list.size(at);
    PyObject* const made = PyList_New(static_cast<Py_ssize_t>(size));
    for (std::size_t i = 0; made != nullptr && i < size; ++i) {
        PyObject* const entry = list.entry == nullptr ? PyBool_FromLong(list.bit(at, i))
                                                      : plain(*list.of, list.entry(const_cast<void*>(at), i));
        if (entry == nullptr) {
            Py_DECREF(made);
            return nullptr;
        }
        PyList_SET_ITEM(made, static_cast<Py_ssize_t>(i), entry);
    }
    return made;
}

PyObject* plain_structure(const structure& s, const void* at, bool with_name)
{
    PyObject* const dict = PyDict_New();
    if (dict == nullptr)
        return nullptr;
    bool done = true;
    if (with_name) {
        PyObject* const name = PyUnicode_FromString(s.name);
        done = name != nullptr && PyDict_SetItemString(dict, "structure", name) == 0;
        Py_XDECREF(name);
    }
    for (std::size_t i = 0; done && i < s.member_count; ++i) {
        PyObject* const value = plain(*s.members[i].of, static_cast<const char*>(at) + s.members[i].offset);
        done = value != nullptr && PyDict_SetItemString(dict, s.members[i].name, value) == 0;
        Py_XDECREF(value);
    }
    if (!done) {
        Py_DECREF(dict);
        return nullptr;
    }
    return dict;
}

PyObject* plain(const kind& of, const void* at)
{
    switch (of.what) {
    case form::structure:
        return plain_structure(structures[of.structure], at, false);
    case form::list:
        return plain_list(*of.list, at);
    case form::choice: {
        const std::size_t chosen = of.choice->chosen(at);
        const int number = chosen < of.choice->count ? of.choice->structures[chosen] : -1;
        if (number < 0)
            Py_RETURN_NONE;
        return plain_structure(structures[number], of.choice->at(const_cast<void*>(at), chosen), true);
    }
    default:
        return of.get(at);
    }
}

bool append_value(std::string& text, const kind& of, const void* at);

bool same(const kind& of, const void* a, const void* b)
{
    PyObject* const x = plain(of, a);
    PyObject* const y = x == nullptr ? nullptr : plain(of, b);
    const bool equal = y != nullptr && PyObject_RichCompareBool(x, y, Py_EQ) == 1;
    Py_XDECREF(x);
    Py_XDECREF(y);
    return equal;
}

/// Appends what makes the structure again: the members that are not as in a new one.
bool append_structure(std::string& text, const structure& of, const void* at)
{
    const owned_structure usual(of.make(), of.destroy);
    const char* before = "";
    text += std::string(of.name) + '(';
    for (std::size_t i = 0; i < of.member_count; ++i) {
        const member& m = of.members[i];
        const char* const value = static_cast<const char*>(at) + m.offset;
        if (same(*m.of, value, static_cast<const char*>(usual.get()) + m.offset))
            continue;
        text += std::string(before) + m.name + '=';
        before = ", ";
        if (!append_value(text, *m.of, value))
            return false;
    }
    text += ')';
    return !PyErr_Occurred();
}

bool append_list(std::string& text, const list_access& list, const void* at)
{
    text += '[';
    for (std::size_t i = 0; i < list.size(at); ++i) {
        text += i == 0 ? "" : ", ";
        if (list.entry == nullptr)
            text += list.bit(at, i) ? "True" : "False";
        else if (!append_value(text, *list.of, list.entry(const_cast<void*>(at), i)))
            return false;
    }
    text += ']';
    return true;
}

bool append_value(std::string& text, const kind& of, const void* at)
{
    if (of.what == form::structure)
        return append_structure(text, structures[of.structure], at);
    if (of.what == form::list)
        return append_list(text, *of.list, at);
    if (of.what == form::choice) {
        const std::size_t chosen = of.choice->chosen(at);
        const int number = chosen < of.choice->count ? of.choice->structures[chosen] : -1;
        if (number >= 0)
            return append_structure(text, structures[number], of.choice->at(const_cast<void*>(at), chosen));
        text += "None";
        return true;
    }
    PyObject* const value = of.get(at);
    PyObject* const shown = value == nullptr ? nullptr : PyObject_ASCII(value);
    const char* const characters = shown == nullptr ? nullptr : PyUnicode_AsUTF8(shown);
    if (characters != nullptr)
        text += characters;
    Py_XDECREF(shown);
    Py_XDECREF(value);
    return characters != nullptr;
}

const char* type_text(const kind& of)
{
    switch (of.what) {
    case form::number:
        return "int";
    case form::flag:
        return "bool";
    case form::bytes:
        return "bytes";
    case form::text:
        return "str";
    default:
        return structures[of.structure].name;
    }
}

std::string full_type(const kind& of)
{
    if (of.what == form::list)
        return "List[" + full_type(*of.list->of) + "]";
    if (of.what != form::choice)
        return type_text(of);
    std::string text;
    for (std::size_t i = 0; i < of.choice->count; ++i)
        text += std::string(i == 0 ? "" : " | ") +
                (of.choice->structures[i] < 0 ? "None" : structures[of.choice->structures[i]].name);
    return text;
}

} // namespace

// Making Python objects may run Python code too, by the collector: a copy stays as it is meanwhile.
PyObject* dict_of(const structure& of, const void* at)
{
    try {
        const owned_structure copy(of.copy(at), of.destroy);
        return plain_structure(of, copy.get(), false);
    } catch (...) {
        return PyErr_NoMemory();
    }
}

PyObject* text_of_structure(const structure& of, const void* at)
{
    try {
        const owned_structure copy(of.copy(at), of.destroy);
        std::string text;
        if (!append_structure(text, of, copy.get()))
            return nullptr;
        return PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size()));
    } catch (...) {
        return PyErr_NoMemory();
    }
}

PyObject* members_of(const structure& of)
{
    PyObject* const all = PyList_New(0);
    for (std::size_t i = 0; all != nullptr && i < of.member_count; ++i) {
        const member& m = of.members[i];
        PyObject* const one =
            Py_BuildValue("ssLKs", m.name, full_type(*m.of).c_str(), static_cast<long long>(m.of->lowest),
                          static_cast<unsigned long long>(m.of->highest), m.about);
        if (one == nullptr || PyList_Append(all, one) != 0) {
            Py_XDECREF(one);
            Py_DECREF(all);
            return nullptr;
        }
        Py_DECREF(one);
    }
    return all;
}

} // namespace orv_python
