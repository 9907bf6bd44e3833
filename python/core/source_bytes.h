// Bytes that units lie in: a Python object's own, locked as long as a unit of them lives, or a copy of pieces.
#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace orv_python {

namespace py = pybind11;

/// Bytes that stay where they are.
struct source_bytes {
    const unsigned char* start = nullptr;
    std::size_t size = 0;
    bool may_change = false; ///< someone with the interpreter's lock may write to them

    source_bytes() = default;
    source_bytes(const source_bytes&) = delete;
    source_bytes& operator=(const source_bytes&) = delete;
    virtual ~source_bytes() = default;
};

/// The bytes of an object with the buffer protocol, contiguous: it can neither be resized nor closed meanwhile.
std::shared_ptr<const source_bytes> lock_bytes(py::handle object);

/// A copy of their own.
std::shared_ptr<const source_bytes> own_bytes(std::vector<unsigned char> bytes);

/// Lets other threads run, unless the bytes that are read meanwhile could be written to by them.
class released_lock {
public:
    explicit released_lock(bool release)
    {
        if (release)
            state = PyEval_SaveThread();
    }
    ~released_lock()
    {
        if (state != nullptr)
            PyEval_RestoreThread(state);
    }
    released_lock(const released_lock&) = delete;
    released_lock& operator=(const released_lock&) = delete;

private:
    PyThreadState* state = nullptr;
};

/// Says that an iterator is at work: one thread may be in it.
class busy_mark {
public:
    explicit busy_mark(bool& of) : busy(of)
    {
        if (busy)
            throw std::runtime_error("this iterator is at work already, in another thread or below itself");
        busy = true;
    }
    ~busy_mark() { busy = false; }
    busy_mark(const busy_mark&) = delete;
    busy_mark& operator=(const busy_mark&) = delete;

private:
    bool& busy;
};

} // namespace orv_python
