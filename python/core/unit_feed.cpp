#include "unit_feed.h"

#include <algorithm>
#include <utility>

namespace orv_python {

unit_feed::unit_feed(py::object source, bool pieces, h264::framing framing, std::size_t most_bytes, bool gaps)
    : splitter(framing, most_bytes), want_gaps(gaps)
{
    if (pieces)
        iterator = std::move(source);
    else
        buffer = lock_bytes(source);
}

void unit_feed::unit(const h264::split_unit& u)
{
    found_unit& found = units.emplace_back();
    found.number = count++;
    found.offset = u.offset;
    found.size = u.size;
    found.stated_length = u.stated_length;
    found.framing_size = u.framing_size;
    found.header = u.bytes[0];
    found.cut = u.cut;
    any = true;
    if (buffer != nullptr) {
        found.place = static_cast<std::size_t>(u.offset);
        found.source = buffer;
        return;
    }
    found.place = copied.size();
    copied.insert(copied.end(), u.bytes, u.bytes + u.size);
}

void unit_feed::gap(const h264::split_gap& g)
{
    any = any || g.is_unit();
    if (!want_gaps)
        return;
    found_unit& found = units.emplace_back();
    found.offset = g.offset;
    found.size = g.size;
    found.stated_length = g.stated_length;
    found.header = g.header;
    found.is_gap = true;
    found.reason = g.reason;
}

bool unit_feed::read_more()
{
    units.clear();
    stamps.clear();
    while (units.empty() && !ended) {
        ended = true; // where what follows throws, there is no going on
        try {
            ended = !(buffer != nullptr ? read_buffer() : read_piece());
        } catch (...) {
            units.clear(); // some have no source
            throw;
        }
    }
    return !units.empty();
}

bool unit_feed::read_buffer()
{
    const auto at = static_cast<std::size_t>(position);
    const std::size_t size = std::min(batch_bytes, buffer->size - at);
    const released_lock lock(!buffer->may_change);
    if (size == 0) {
        splitter.flush(*this);
        return false;
    }
    splitter.push(buffer->start + at, size, *this);
    position += size;
    return true;
}

py::object unit_feed::next_piece()
{
    PyObject* const piece = PyIter_Next(iterator.ptr());
    if (piece == nullptr && PyErr_Occurred())
        throw py::error_already_set();
    return py::reinterpret_steal<py::object>(piece);
}

bool unit_feed::read_piece()
{
    py::object piece = next_piece();
    if (!piece) {
        flush();
        return false;
    }
    if (py::isinstance<py::tuple>(piece)) {
        const auto stamped = py::reinterpret_borrow<py::tuple>(piece);
        if (stamped.size() != 3)
            throw py::type_error("a piece is bytes, or a tuple of bytes and two timestamps");
        piece = stamped[0];
        if (!stamped[1].is_none()) {
            piece_stamp stamp = {position, position, stamped[1].cast<std::int64_t>(), {}};
            if (!stamped[2].is_none())
                stamp.decoding = stamped[2].cast<std::int64_t>();
            stamps.push_back(stamp);
        }
    }
    const std::shared_ptr<const source_bytes> bytes = lock_bytes(piece);
    if (!stamps.empty() && stamps.back().start == position)
        stamps.back().end = position + bytes->size;
    push(bytes->start, bytes->size, !bytes->may_change);
    return true;
}

void unit_feed::push(const unsigned char* bytes, std::size_t size, bool release)
{
    const released_lock lock(release);
    if (size != 0)
        splitter.push(bytes, size, *this);
    position += size;
    keep_copied();
}

void unit_feed::flush()
{
    const released_lock lock(true);
    splitter.flush(*this);
    keep_copied();
}

void unit_feed::keep_copied()
{
    const auto source = copied.empty() ? nullptr : own_bytes(std::move(copied));
    copied = {};
    for (found_unit& found : units)
        if (!found.is_gap && found.source == nullptr)
            found.source = source;
}

} // namespace orv_python
