#include "reading.h"

#include "structure_object.h"

#include <utility>

namespace orv_python {

void take_rbsp(kept_reading& to, const h264::nal_unit& unit)
{
    to.header = std::make_shared<h264::nal_unit_header>(unit.header);
    std::visit(
        [&to](const auto& rbsp) {
            using type = std::decay_t<decltype(rbsp)>;
            if constexpr (!std::is_same_v<type, std::monostate>) {
                to.rbsp = std::make_shared<type>(rbsp);
                to.rbsp_number = structure_number<type>;
            }
        },
        unit.rbsp);
}

namespace {

template <class Variant, std::size_t... I>
bool put_alternative(Variant& to, int number, const void* from, std::index_sequence<I...>)
{
    const auto put = [&]<std::size_t J>() {
        using type = std::variant_alternative_t<J, Variant>;
        constexpr int own = structure_number<type>; // below 0 of what is no structure
        if (own < 0 || own != number)
            return false;
        to.template emplace<J>(*static_cast<const type*>(from));
        return true;
    };
    return (put.template operator()<I>() || ...);
}

} // namespace

void make_unit(h264::nal_unit& to, py::handle header, py::handle rbsp)
{
    const void* const head = structure_of(header.ptr(), structure_number<h264::nal_unit_header>);
    if (head == nullptr)
        throw py::error_already_set();
    to.header = *static_cast<const h264::nal_unit_header*>(head);
    to.rbsp = std::monostate();
    if (rbsp.is_none())
        return;
    const int number = number_of(rbsp.ptr());
    const void* const from = structure_of(rbsp.ptr(), number);
    if (from == nullptr)
        throw py::error_already_set();
    using variant = decltype(to.rbsp);
    if (!put_alternative(to.rbsp, number, from, std::make_index_sequence<std::variant_size_v<variant>>()))
        throw py::type_error(std::string(structures[number].name) + " is not the RBSP of a unit");
}

py::list reading_feed::next_batch()
{
    const busy_mark mark(busy);
    readings.clear();
    while (readings.empty())
        if (!read_some())
            break;
    py::list batch;
    for (std::shared_ptr<kept_reading>& reading : readings)
        batch.append(std::move(reading));
    readings.clear();
    return batch;
}

bool reading_feed::read_some()
{
    if (flushed)
        return false;
    if (next == units.units.size()) {
        next = 0;
        flushed = !units.read_more();
    }
    const bool may_change = next < units.units.size() && units.units[next].source->may_change;
    const released_lock lock(!may_change);
    for (std::size_t i = 0; i < batch_units && next < units.units.size(); ++i)
        push(units.units[next++]);
    if (flushed) {
        if (sets_are_held)
            follower.expect_all();
        stream.flush(*this);
    }
    if (no_memory) {
        flushed = true;
        throw std::bad_alloc();
    }
    return true;
}

void reading_feed::push(const found_unit& unit)
{
    waiting.push_back(unit);
    const unsigned type = unit.header & 0x1F;
    if (sets_are_held)
        follower.expect_all();
    stream.push({unit.bytes(), static_cast<std::size_t>(unit.size), unit.offset, unit.number}, *this);
    // What is not handed on is held, and may be read before its turn.
    const bool is_set = type == 7 || type == 8 || type == 15 || type == 16;
    sets_are_held = !waiting.empty() && (sets_are_held || is_set);
}

void reading_feed::take(const h264::unit_reading& reading)
{
    try {
        keep(reading);
    } catch (...) { // nothing may go through the stream
        no_memory = true;
    }
    waiting.pop_front();
}

void reading_feed::keep(const h264::unit_reading& reading)
{
    const auto kept = std::make_shared<kept_reading>();
    kept->unit = waiting.front();
    follower.look(reading);
    take_rbsp(*kept, reading.unit);
    kept->result = reading.result;
    kept->context = follower.keep(reading.context);
    kept->sps = follower.keep(reading.sps, *reading.context.sets);
    kept->pps = follower.keep(reading.pps);
    readings.push_back(kept);
}

} // namespace orv_python
