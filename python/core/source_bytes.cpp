#include "source_bytes.h"

#include <utility>

namespace orv_python {

namespace {

struct locked_bytes final : source_bytes {
    explicit locked_bytes(py::handle object)
    {
        if (PyObject_GetBuffer(object.ptr(), &view, PyBUF_SIMPLE) != 0)
            throw py::error_already_set();
        start = static_cast<const unsigned char*>(view.buf);
        size = static_cast<std::size_t>(view.len);
        may_change = view.readonly == 0;
    }
    ~locked_bytes() override
    {
        if (!Py_IsInitialized())
            return;
        const PyGILState_STATE state = PyGILState_Ensure(); // the last user may be a thread without it
        PyBuffer_Release(&view);
        PyGILState_Release(state);
    }

    Py_buffer view = {};
};

struct owned_bytes final : source_bytes {
    explicit owned_bytes(std::vector<unsigned char> of) : bytes(std::move(of))
    {
        start = bytes.data();
        size = bytes.size();
    }

    std::vector<unsigned char> bytes;
};

} // namespace

std::shared_ptr<const source_bytes> lock_bytes(py::handle object)
{
    return std::make_shared<const locked_bytes>(object);
}

std::shared_ptr<const source_bytes> own_bytes(std::vector<unsigned char> bytes)
{
    return std::make_shared<const owned_bytes>(std::move(bytes));
}

} // namespace orv_python
