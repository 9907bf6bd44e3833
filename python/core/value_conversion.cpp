// Python values into members.
#include "value_conversion.h"

#include "structure_object.h"

#include <cstring>
#include <memory>

namespace orv_python {

namespace {

constexpr int deepest_value = 32; // lists and dictionaries in one another

bool may_nest(int number)
{
    return number == number_of_sei_message || number == number_of_sei_rbsp || number == number_of_scalable_nesting ||
           number == number_of_mvc_scalable_nesting || number == number_of_mvcd_scalable_nesting;
}

int messages_in(const kind& of, const void* at);

int messages_in(int number, const void* at)
{
    if (!may_nest(number))
        return 0;
    int most = 0;
    const structure& s = structures[number];
    for (std::size_t i = 0; i < s.member_count; ++i)
        most = std::max(most, messages_in(*s.members[i].of, static_cast<const char*>(at) + s.members[i].offset));
    return most + (number == number_of_sei_message ? 1 : 0);
}

int messages_in(const kind& of, const void* at)
{
    void* const place = const_cast<void*>(at);
    if (of.what == form::structure)
        return messages_in(of.structure, at);
    if (of.what == form::choice) {
        const std::size_t chosen = of.choice->chosen(at);
        return chosen < of.choice->count ? messages_in(of.choice->structures[chosen], of.choice->at(place, chosen)) : 0;
    }
    int most = 0;
    if (of.what == form::list && may_nest(of.list->of->structure))
        for (std::size_t i = 0; i < of.list->size(at); ++i)
            most = std::max(most, messages_in(*of.list->of, of.list->entry(place, i)));
    return most;
}

/// A structure made of a dictionary; null with a Python error.
owned_structure made_of(int number, PyObject* dict)
{
    const structure& s = structures[number];
    owned_structure made(s.make(), s.destroy);
    PyObject *key, *value;
    for (Py_ssize_t at = 0; PyDict_Next(dict, &at, &key, &value);) {
        if (PyUnicode_CompareWithASCIIString(key, "structure") == 0)
            continue;
        std::size_t i = 0;
        while (i < s.member_count && PyUnicode_CompareWithASCIIString(key, s.members[i].name) != 0)
            ++i;
        if (i == s.member_count) {
            PyErr_Format(PyExc_TypeError, "%s has no member %R", s.name, key);
            return {nullptr, s.destroy};
        }
        const member& m = s.members[i];
        if (!m.of->set(*m.of, static_cast<char*>(made.get()) + m.offset, value, m.name))
            return {nullptr, s.destroy};
    }
    return made;
}

int named(PyObject* dict)
{
    PyObject* const name = PyDict_GetItemString(dict, "structure");
    for (int number = 0; name != nullptr && PyUnicode_Check(name) && number < structure_count; ++number)
        if (PyUnicode_CompareWithASCIIString(name, structures[number].name) == 0)
            return number;
    return -1;
}

PyObject* settled_list(PyObject* value, int depth)
{
    PyObject* const list = PySequence_List(value);
    for (Py_ssize_t i = 0; list != nullptr && i < PyList_GET_SIZE(list); ++i) {
        PyObject* const entry = PyList_GET_ITEM(list, i);
        if (PyLong_CheckExact(entry) || PyBool_Check(entry))
            continue;
        PyObject* const plain_entry = settled(entry, depth);
        if (plain_entry == nullptr || PyList_SetItem(list, i, plain_entry) != 0) {
            Py_DECREF(list);
            return nullptr;
        }
    }
    return list;
}

PyObject* settled_dict(PyObject* value, int depth)
{
    PyObject* const copy = PyDict_Copy(value);
    PyObject* const made = copy == nullptr ? nullptr : PyDict_New();
    PyObject *key, *entry;
    bool done = made != nullptr;
    for (Py_ssize_t at = 0; done && PyDict_Next(copy, &at, &key, &entry);) {
        done = PyUnicode_CheckExact(key);
        if (!done)
            PyErr_SetString(PyExc_TypeError, "members are named by str");
        PyObject* const plain_entry = done ? settled(entry, depth) : nullptr;
        done = plain_entry != nullptr && PyDict_SetItem(made, key, plain_entry) == 0;
        Py_XDECREF(plain_entry);
    }
    Py_XDECREF(copy);
    if (done)
        return made;
    Py_XDECREF(made);
    return nullptr;
}

} // namespace

bool flag_from(PyObject* value, bool& to, const char* name)
{
    const long number = PyLong_Check(value) ? PyLong_AsLong(value) : 2;
    if (number == -1 && PyErr_Occurred())
        PyErr_Clear();
    if (number != 0 && number != 1) {
        PyErr_Format(PyLong_Check(value) ? PyExc_OverflowError : PyExc_TypeError, "%s: True or False is needed, not %R",
                     name, value);
        return false;
    }
    to = number == 1;
    return true;
}

bool number_from(PyObject* value, std::int64_t lowest, std::uint64_t highest, std::uint64_t& to, const char* name)
{
    if (!PyLong_Check(value)) {
        PyErr_Format(PyExc_TypeError, "%s: an int is needed, not %R", name, Py_TYPE(value));
        return false;
    }
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(value, &overflow);
    bool fits = overflow == 0 && number >= lowest && (number < 0 || static_cast<std::uint64_t>(number) <= highest);
    to = static_cast<std::uint64_t>(number);
    if (overflow > 0 && highest > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        to = PyLong_AsUnsignedLongLong(value);
        fits = !PyErr_Occurred();
        PyErr_Clear();
    }
    if (!fits)
        PyErr_Format(PyExc_OverflowError, "%s holds %lld to %llu, not %R", name, static_cast<long long>(lowest),
                     static_cast<unsigned long long>(highest), value);
    return fits;
}

bool set_structure(const kind& of, void* at, PyObject* value, const char* name)
{
    try {
        if (number_of(value) == of.structure) {
            const void* const from = structure_of(value, of.structure);
            if (from != nullptr)
                structures[of.structure].assign(at, from);
            return from != nullptr;
        }
        if (!PyDict_Check(value)) {
            PyErr_Format(PyExc_TypeError, "%s: a %s or a dict is needed, not %R", name, structures[of.structure].name,
                         Py_TYPE(value));
            return false;
        }
        const owned_structure made = made_of(of.structure, value);
        if (made != nullptr)
            structures[of.structure].assign(at, made.get());
        return made != nullptr;
    } catch (...) {
        PyErr_NoMemory();
        return false;
    }
}

bool set_choice(const kind& of, void* at, PyObject* value, const char* name)
{
    const choice_access& access = *of.choice;
    const bool is_dict = PyDict_Check(value);
    const int number = is_dict ? named(value) : number_of(value);
    std::size_t chosen = 0;
    while (chosen < access.count && access.structures[chosen] != number)
        ++chosen;
    if (chosen == access.count || (number < 0 && value != Py_None)) {
        PyErr_Format(PyExc_TypeError, "%s: %R is none of the structures that may stand here", name,
                     is_dict ? value : reinterpret_cast<PyObject*>(Py_TYPE(value)));
        return false;
    }
    try {
        owned_structure made(nullptr, nullptr);
        const void* from = nullptr;
        if (is_dict) {
            made = made_of(number, value);
            from = made.get();
        } else if (number >= 0) {
            from = structure_of(value, number);
        }
        if (from == nullptr && number >= 0)
            return false;
        access.put(at, chosen, from);
        return true;
    } catch (...) {
        PyErr_NoMemory();
        return false;
    }
}

bool set_vector_of_bytes(const kind&, void* at, PyObject* value, const char* name)
{
    auto& to = *static_cast<std::vector<std::uint8_t>*>(at);
    if (!PyBytes_Check(value)) {
        PyErr_Format(PyExc_TypeError, "%s: bytes are needed, not %R", name, Py_TYPE(value));
        return false;
    }
    try {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(PyBytes_AS_STRING(value));
        to.assign(bytes, bytes + PyBytes_GET_SIZE(value));
        return true;
    } catch (...) {
        PyErr_NoMemory();
        return false;
    }
}

bool set_uuid(const kind&, void* at, PyObject* value, const char* name)
{
    auto& to = *static_cast<std::array<std::uint8_t, 16>*>(at);
    if (!PyBytes_Check(value) || PyBytes_GET_SIZE(value) != static_cast<Py_ssize_t>(to.size())) {
        PyErr_Format(PyBytes_Check(value) ? PyExc_ValueError : PyExc_TypeError, "%s: 16 bytes are needed", name);
        return false;
    }
    std::memcpy(to.data(), PyBytes_AS_STRING(value), to.size());
    return true;
}

PyObject* bytes_of_vector(const void* at)
{
    const auto& bytes = *static_cast<const std::vector<std::uint8_t>*>(at);
    return PyBytes_FromStringAndSize(reinterpret_cast<const char*>(bytes.data()),
                                     static_cast<Py_ssize_t>(bytes.size()));
}

PyObject* bytes_of_uuid(const void* at)
{
    const auto& bytes = *static_cast<const std::array<std::uint8_t, 16>*>(at);
    return PyBytes_FromStringAndSize(reinterpret_cast<const char*>(bytes.data()),
                                     static_cast<Py_ssize_t>(bytes.size()));
}

// Bytes that are not UTF-8 become lone surrogates, as in names of files, so that nothing is lost.
PyObject* text_of(const void* at)
{
    const auto& text = *static_cast<const std::string*>(at);
    return PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
}

bool set_text(const kind&, void* at, PyObject* value, const char* name)
{
    if (!PyUnicode_Check(value)) {
        PyErr_Format(PyExc_TypeError, "%s: a str is needed, not %R", name, Py_TYPE(value));
        return false;
    }
    PyObject* const bytes = PyUnicode_AsEncodedString(value, "utf-8", "surrogateescape");
    if (bytes == nullptr)
        return false;
    bool done = std::memchr(PyBytes_AS_STRING(bytes), 0, static_cast<std::size_t>(PyBytes_GET_SIZE(bytes))) == nullptr;
    if (!done)
        PyErr_Format(PyExc_ValueError, "%s: a null character would end it", name);
    try {
        if (done)
            static_cast<std::string*>(at)->assign(PyBytes_AS_STRING(bytes),
                                                  static_cast<std::size_t>(PyBytes_GET_SIZE(bytes)));
    } catch (...) {
        PyErr_NoMemory();
        done = false;
    }
    Py_DECREF(bytes);
    return done;
}

PyObject* entries_from(PyObject* value, std::size_t most, const char* name)
{
    if (!PyList_Check(value)) {
        PyErr_Format(PyExc_TypeError, "%s: a list is needed, not %R", name, Py_TYPE(value));
        return nullptr;
    }
    if (static_cast<std::size_t>(PyList_GET_SIZE(value)) > most) {
        PyErr_Format(PyExc_ValueError, "%s has room for %zu entries, not %zd", name, most, PyList_GET_SIZE(value));
        return nullptr;
    }
    Py_INCREF(value);
    return value;
}

PyObject* settled(PyObject* value, int depth)
{
    if (depth > deepest_value) {
        PyErr_SetString(PyExc_ValueError, "too many lists and dictionaries lie in one another");
        return nullptr;
    }
    const bool as_it_is = value == Py_None || PyLong_Check(value) || PyBytes_Check(value) || PyUnicode_Check(value) ||
                          PyFloat_Check(value) || number_of(value) >= 0;
    if (as_it_is) {
        Py_INCREF(value);
        return value;
    }
    if (PyDict_Check(value))
        return settled_dict(value, depth + 1);
    if (PyByteArray_Check(value) || PyMemoryView_Check(value))
        return PyBytes_FromObject(value);
    if (PyIndex_Check(value))
        return PyNumber_Index(value);
    return settled_list(value, depth + 1);
}

int messages_in_python(PyObject* value)
{
    const int number = number_of(value);
    if (number >= 0) {
        const void* const at = may_nest(number) ? structure_of(value, number) : nullptr;
        PyErr_Clear();
        return at == nullptr ? 0 : messages_in(number, at);
    }
    int most = 0;
    if (PyList_Check(value))
        for (Py_ssize_t i = 0; i < PyList_GET_SIZE(value); ++i)
            most = std::max(most, messages_in_python(PyList_GET_ITEM(value, i)));
    if (!PyDict_Check(value))
        return most;
    PyObject *key, *entry;
    for (Py_ssize_t at = 0; PyDict_Next(value, &at, &key, &entry);)
        most = std::max(most, messages_in_python(entry));
    return most + 1;
}

bool set_members(PyObject* object, PyObject* dict)
{
    const structure& s = structures[number_of(object)];
    PyObject* const copy = PyDict_Copy(dict);
    PyObject *key, *value;
    bool done = copy != nullptr;
    for (Py_ssize_t at = 0; done && PyDict_Next(copy, &at, &key, &value);) {
        std::size_t i = 0;
        while (i < s.member_count && PyUnicode_CompareWithASCIIString(key, s.members[i].name) != 0)
            ++i;
        if (i == s.member_count && PyUnicode_CompareWithASCIIString(key, "structure") == 0)
            continue;
        done = i < s.member_count;
        if (!done)
            PyErr_Format(PyExc_TypeError, "%s has no member %R", s.name, key);
        done = done && PyObject_SetAttr(object, key, value) == 0;
    }
    Py_XDECREF(copy);
    return done;
}

} // namespace orv_python
