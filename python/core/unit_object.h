// Unit and Gap, the Python types of what a stream is split into. They are made for every unit of a stream, so that they
// are plain types of the interpreter, and no classes of pybind11.
#pragma once

#include "source_bytes.h"

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <cstdint>

namespace orv_python {

namespace h264 = orv_utils_v4::h264;

/// A unit that was found, or a gap.
struct found_unit {
    std::uint64_t number = 0;
    std::uint64_t offset = 0; ///< of its header byte in the stream
    std::uint64_t size = 0;
    std::uint64_t stated_length = 0;
    std::size_t place = 0; ///< in the source
    unsigned framing_size = 0;
    unsigned char header = 0;
    bool cut = false;
    bool is_gap = false;
    h264::split_gap_reason reason = h264::split_gap_reason::before_first_unit;
    std::shared_ptr<const source_bytes> source; ///< null of a gap

    const unsigned char* bytes() const { return source->start + place; }
};

/// Makes the two types, and adds them to the module.
bool add_unit_types(PyObject* module);

/// A new Unit or Gap.
py::object unit_object(const found_unit& unit);

/// The unit that an object is; null where it is none.
const found_unit* unit_in(py::handle object);

} // namespace orv_python
