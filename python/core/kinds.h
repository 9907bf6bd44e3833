// How the members of the library's structures look from Python, a table for each C++ type. Nothing here knows a
// structure by name: structures.cpp has the list that list-structures takes from the public headers, and the compiler
// the types.
#pragma once

#include <orv-utils-v4/h264_syntax/bounded_list.h>

#include <Python.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace orv_python {

namespace h264 = orv_utils_v4::h264;

struct kind;

/// A list: how long it is, and where its entries are.
struct list_access {
    const kind* of;   ///< an entry
    std::size_t most; ///< entries
    bool fixed;       ///< always `most` of them
    std::size_t (*size)(const void*);
    void (*resize)(void*, std::size_t);
    void* (*entry)(void*, std::size_t); ///< null of a list of bits, which the two below are for
    bool (*bit)(const void*, std::size_t);
    void (*set_bit)(void*, std::size_t, bool);
};

/// One of several structures, or none.
struct choice_access {
    std::size_t count;
    const int* structures; ///< their numbers; -1 is nothing
    std::size_t (*chosen)(const void*);
    void* (*at)(void*, std::size_t);              ///< null unless it is that one
    void (*put)(void*, std::size_t, const void*); ///< a copy
};

enum class form : std::uint8_t { number, flag, bytes, text, structure, list, choice };

/// A C++ type.
struct kind {
    form what;
    PyObject* (*get)(const void*); ///< of the first four forms
    /// Takes a Python value, or leaves what is there, sets a Python error and returns false.
    bool (*set)(const kind&, void*, PyObject*, const char* name);
    std::int64_t lowest = 0; ///< of a number
    std::uint64_t highest = 0;
    int structure = -1; ///< its number
    const list_access* list = nullptr;
    const choice_access* choice = nullptr;
};

/// The number of a structure; list-structures gives it to those that it lists.
template <class T>
inline constexpr int structure_number = -1;

// What set() of each form does; templates below call these.
bool flag_from(PyObject* value, bool& to, const char* name);
bool number_from(PyObject* value, std::int64_t lowest, std::uint64_t highest, std::uint64_t& to, const char* name);
bool set_structure(const kind&, void* at, PyObject* value, const char* name);
bool set_choice(const kind&, void* at, PyObject* value, const char* name);
bool set_text(const kind&, void* at, PyObject* value, const char* name);
PyObject* text_of(const void* at);
/// A list or tuple of the entries of any iterable but text, at most `most` of them; else null with a Python error.
PyObject* entries_from(PyObject* value, std::size_t most, const char* name);

template <class T>
constexpr kind make_kind();
template <class T>
inline constexpr kind kind_of = make_kind<T>();

template <class T>
PyObject* get_number(const void* at)
{
    if constexpr (std::is_same_v<T, bool>)
        return PyBool_FromLong(*static_cast<const bool*>(at));
    else if constexpr (std::is_signed_v<T>)
        return PyLong_FromLongLong(*static_cast<const T*>(at));
    else
        return PyLong_FromUnsignedLongLong(*static_cast<const T*>(at));
}

template <class T>
bool set_number(const kind& of, void* at, PyObject* value, const char* name)
{
    if constexpr (std::is_same_v<T, bool>) {
        static_cast<void>(of);
        return flag_from(value, *static_cast<bool*>(at), name);
    } else {
        std::uint64_t bits = 0;
        if (!number_from(value, of.lowest, of.highest, bits, name))
            return false;
        *static_cast<T*>(at) = static_cast<T>(bits);
        return true;
    }
}

/// What a container does, the same for all of them.
template <class C>
struct container;

template <class T>
struct container<std::vector<T>> {
    using entry = T;
    static constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    static constexpr bool fixed = false;
};
template <class T, std::size_t N>
struct container<h264::bounded_list<T, N>> {
    using entry = T;
    static constexpr std::size_t most = N;
    static constexpr bool fixed = false;
};
template <class T, std::size_t N>
struct container<T[N]> {
    using entry = T;
    static constexpr std::size_t most = N;
    static constexpr bool fixed = true;
};

template <class C>
std::size_t size_of(const void* at)
{
    if constexpr (container<C>::fixed)
        return container<C>::most;
    else
        return static_cast<const C*>(at)->size();
}

template <class C>
void resize(void* at, std::size_t n)
{
    if constexpr (!container<C>::fixed)
        static_cast<C*>(at)->resize(n);
}

template <class C>
void* entry_of(void* at, std::size_t i)
{
    return &(*static_cast<C*>(at))[i];
}

template <class C>
bool fill(C& to, PyObject* entries)
{
    using entry = typename container<C>::entry;
    PyObject** const values = PySequence_Fast_ITEMS(entries);
    const auto count = static_cast<std::size_t>(PySequence_Fast_GET_SIZE(entries));
    resize<C>(&to, count);
    for (std::size_t i = 0; i < count && i < size_of<C>(&to); ++i) {
        if constexpr (std::is_same_v<C, std::vector<bool>>) {
            bool bit = false;
            if (!flag_from(values[i], bit, "an entry"))
                return false;
            to[i] = bit;
        } else {
            if (!kind_of<entry>.set(kind_of<entry>, &to[i], values[i], "an entry"))
                return false;
        }
    }
    return true;
}

template <class T>
void take(T& to, T& from)
{
    to = std::move(from);
}
template <class T, std::size_t N>
void take(T (&to)[N], T (&from)[N])
{
    for (std::size_t i = 0; i < N; ++i)
        take(to[i], from[i]);
}

/// Puts a new list in the place of the old one, when all of it could be made. Entries of an array that are not given
/// are as in a new one.
template <class C>
bool set_list(const kind&, void* at, PyObject* value, const char* name)
{
    PyObject* const entries = entries_from(value, container<C>::most, name);
    if (entries == nullptr)
        return false;
    bool done = false;
    try {
        if constexpr (container<C>::fixed) {
            struct {
                C list = {};
            } made;
            done = fill<C>(made.list, entries);
            if (done)
                take(*static_cast<C*>(at), made.list);
        } else {
            C made;
            done = fill<C>(made, entries);
            if (done)
                *static_cast<C*>(at) = std::move(made);
        }
    } catch (...) {
        PyErr_NoMemory();
    }
    Py_DECREF(entries);
    return done;
}

inline bool bit_of(const void* at, std::size_t i)
{
    return (*static_cast<const std::vector<bool>*>(at))[i];
}

inline void set_bit_of(void* at, std::size_t i, bool bit)
{
    (*static_cast<std::vector<bool>*>(at))[i] = bit;
}

template <class C>
constexpr list_access make_list()
{
    using entry = typename container<C>::entry;
    list_access list = {
        &kind_of<entry>, container<C>::most, container<C>::fixed, size_of<C>, resize<C>, nullptr, nullptr, nullptr};
    if constexpr (std::is_same_v<C, std::vector<bool>>) {
        list.bit = bit_of;
        list.set_bit = set_bit_of;
    } else {
        list.entry = entry_of<C>;
    }
    return list;
}
template <class C>
inline constexpr list_access list_of = make_list<C>();

template <class V, class Indices>
struct choice_of;
template <class... T, std::size_t... I>
struct choice_of<std::variant<T...>, std::index_sequence<I...>> {
    using variant = std::variant<T...>;
    static constexpr int structures[] = {structure_number<T>...};

    static std::size_t chosen(const void* at) { return static_cast<const variant*>(at)->index(); }
    template <std::size_t J>
    static void* get(void* at)
    {
        return std::get_if<J>(static_cast<variant*>(at));
    }
    template <std::size_t J>
    static void put_one(void* at, const void* from)
    {
        using alternative = std::variant_alternative_t<J, variant>;
        alternative copy =
            from == nullptr ? alternative() : *static_cast<const alternative*>(from); // it may lie in `at`
        static_cast<variant*>(at)->template emplace<J>(std::move(copy));
    }
    static void* at(void* place, std::size_t i)
    {
        static constexpr void* (*functions[])(void*) = {get<I>...};
        return functions[i](place);
    }
    static void put(void* place, std::size_t i, const void* from)
    {
        static constexpr void (*functions[])(void*, const void*) = {put_one<I>...};
        functions[i](place, from);
    }
    static constexpr choice_access access = {sizeof...(T), structures, chosen, at, put};
};

template <class T>
inline constexpr bool is_variant = false;
template <class... T>
inline constexpr bool is_variant<std::variant<T...>> = true;

PyObject* bytes_of_vector(const void* at);
PyObject* bytes_of_uuid(const void* at);
bool set_vector_of_bytes(const kind&, void* at, PyObject* value, const char* name);
bool set_uuid(const kind&, void* at, PyObject* value, const char* name);

template <class T>
constexpr kind make_kind()
{
    if constexpr (std::is_same_v<T, bool>) {
        return {form::flag, get_number<bool>, set_number<bool>, 0, 1};
    } else if constexpr (std::is_integral_v<T>) {
        using limits = std::numeric_limits<T>;
        return {form::number, get_number<T>, set_number<T>, static_cast<std::int64_t>(limits::min()),
                static_cast<std::uint64_t>(limits::max())};
    } else if constexpr (std::is_same_v<T, std::vector<std::uint8_t>>) {
        return {form::bytes, bytes_of_vector, set_vector_of_bytes};
    } else if constexpr (std::is_same_v<T, std::array<std::uint8_t, 16>>) {
        return {form::bytes, bytes_of_uuid, set_uuid, 16, 16};
    } else if constexpr (std::is_same_v<T, std::string>) {
        return {form::text, text_of, set_text};
    } else if constexpr (is_variant<T>) {
        using access = choice_of<T, std::make_index_sequence<std::variant_size_v<T>>>;
        kind made = {form::choice, nullptr, set_choice};
        made.choice = &access::access;
        return made;
    } else if constexpr (structure_number<T> >= 0) {
        kind made = {form::structure, nullptr, set_structure};
        made.structure = structure_number<T>;
        return made;
    } else {
        kind made = {form::list, nullptr, set_list<T>};
        made.list = &list_of<T>;
        return made;
    }
}

/// A member of a structure.
struct member {
    const char* name;
    std::size_t offset;
    const kind* of;
    const char* about;
};

/// A structure of the public headers.
struct structure {
    const char* name;
    const char* about;
    const member* members;
    std::size_t member_count;
    void* (*make)();
    void* (*copy)(const void*);
    void (*destroy)(void*);
    void (*assign)(void* to, const void* from); ///< `from` may lie in `to`
    bool (*equal)(const void*, const void*);
};

/// A structure that goes with what holds it.
using owned_structure = std::unique_ptr<void, void (*)(void*)>;

extern const structure structures[];
extern const int structure_count;

template <class T>
struct structure_functions {
    static void* make() { return new T(); }
    static void* copy(const void* from) { return new T(*static_cast<const T*>(from)); }
    static void destroy(void* at) { delete static_cast<T*>(at); }
    static void assign(void* to, const void* from)
    {
        T copy(*static_cast<const T*>(from));
        *static_cast<T*>(to) = std::move(copy);
    }
    static bool equal(const void* a, const void* b) { return *static_cast<const T*>(a) == *static_cast<const T*>(b); }
};

/// The most SEI messages that lie in one another.
constexpr int deepest_messages = 16;

} // namespace orv_python
