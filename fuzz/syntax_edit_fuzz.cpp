// Editing an element of the last unit of a stream: on success it has its value in what is written then, and nothing
// before it has changed; on refusal the unit is as it was. Input: two bytes for the number of the element, a byte that
// says how its path is damaged (below 128 it is not), eight bytes of value, a byte for the framing, and the stream.
#include "syntax_units.h"

namespace {

using namespace fuzz;

struct edit_wanted {
    explicit edit_wanted(input& from)
    {
        element = from.byte() * 256U + from.byte();
        damage = from.byte();
        std::uint64_t bits = 0;
        for (int i = 0; i < 8; ++i)
            bits = (bits & (~std::uint64_t{0} >> 8)) << 8 | from.byte();
        std::memcpy(&value, &bits, sizeof value);
        // most elements are small
        if (damage % 4 != 0)
            value = value % (damage % 4 == 1 ? 4 : 300);
    }
    std::string damaged(std::string path) const
    {
        if (damage < 128 || path.empty())
            return path;
        const std::size_t place = element % path.size();
        switch (damage % 5) {
        case 0:
            return path.substr(place);
        case 1:
            return path.substr(0, place);
        case 2:
            path[place] = static_cast<char>(damage);
            return path;
        case 3:
            return path + "[0]";
        default:
            return path + "." + path;
        }
    }

    std::size_t element;
    unsigned damage;
    std::int64_t value;
};

/// What shows the size of a payload, before the elements in it.
bool shows_a_size(const kept_element& e)
{
    const auto ends_with = [&](std::string_view name) {
        return e.path.size() >= name.size() && e.path.compare(e.path.size() - name.size(), name.size(), name) == 0;
    };
    return ends_with("sei_message.ff_byte") || ends_with("sei_message.last_payload_size_byte");
}

std::vector<kept_element> without_sizes(std::vector<kept_element> elements)
{
    elements.erase(std::remove_if(elements.begin(), elements.end(), shows_a_size), elements.end());
    return elements;
}

std::vector<kept_element> elements_of(const bytes& data, const h264::unit_context& context, h264::outcome& result)
{
    const exact_block block(data);
    h264::nal_unit unit;
    bytes framed(data.size() * 2 + 40);
    framed.resize(h264::frame(data.data(), data.size(), 4, false, framed.data(), framed.size()));
    expect(framed.size() > 4, "what is written can be framed");
    checked_trace trace(framed.data() + 4, framed.size() - 4, true);
    h264::trace(unit, block.begin(), block.size(), context, result, trace);
    trace.expect_outcome(result);
    return without_sizes(std::move(trace.elements));
}

/// Edits the unit that comes last.
class edited_unit : public h264::unit_sink {
public:
    edited_unit(const edit_wanted& what, std::size_t unit_count) : wanted(what), last(unit_count - 1) {}

    void take(const h264::unit_reading& reading) override
    {
        if (reading.place.number != last || !reading.result.sound())
            return;
        h264::outcome result;
        const bytes old = written(reading.unit, reading.context, result);
        if (old.empty())
            return;
        const std::vector<kept_element> before = elements_of(old, reading.context, result);
        const std::size_t number = wanted.element % before.size();
        const std::string path = wanted.damaged(before[number].path);

        h264::nal_unit unit = reading.unit;
        if (!h264::edit(unit, reading.context, path, wanted.value, result)) {
            expect(bool{result.failure}, "a refusal has a reason");
            expect(unit == reading.unit, "a refusal leaves the unit as it was");
            return;
        }
        check_edited(unit, reading.context, before, path);
    }

private:
    void check_edited(const h264::nal_unit& unit, const h264::unit_context& context,
                      const std::vector<kept_element>& before, const std::string& path) const
    {
        h264::outcome result;
        const bytes now = written(unit, context, result);
        if (now.empty()) // the new value brings what cannot be written as it is inferred
            return;
        const std::vector<kept_element> after = elements_of(now, context, result);
        std::size_t same = 0;
        while (same < before.size() && same < after.size() && before[same].path == after[same].path &&
               before[same].value == after[same].value)
            ++same;
        if (same == before.size() && same == after.size())
            return; // it had the value
        expect(same < after.size(), "something has changed");
        const std::string& full = after[same].path;
        expect(full.size() >= path.size() && full.compare(full.size() - path.size(), path.size(), path) == 0,
               "the first change is that of the element");
        expect(after[same].value == wanted.value, "it has its value");
    }

    const edit_wanted& wanted;
    std::size_t last;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const edit_wanted wanted(input);
    const fuzz::unit_list list(input);
    if (list.units.empty())
        return 0;
    edited_unit sink(wanted, list.units.size());
    fuzz::h264::stream reader;
    list.push_to(reader, sink);
    return 0;
}
