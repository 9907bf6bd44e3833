#include "report/report_units.h"

#include "consequences.h"
#include "names.h"

#include <algorithm>
#include <utility>

namespace orv_h264 {

namespace {

constexpr unsigned sei_type = 6;

bool is_set_unit(unsigned type)
{
    return type == 7 || type == 8 || type == 13 || type == 15 || type == 16;
}

/// FNV-1a.
std::uint64_t sum_of(const unsigned char* bytes, std::size_t size)
{
    std::uint64_t sum = 0xCBF29CE484222325U;
    for (std::size_t i = 0; i < size; ++i)
        sum = (sum ^ bytes[i]) * 0x100000001B3U;
    return sum;
}

/// Of an RBSP the payload types of its messages, H.264 7.3.2.3.1, as far as they are there.
template <class Take>
void for_payload_types(const unsigned char* at, const unsigned char* fence, Take take)
{
    const auto number = [&] {
        std::size_t value = 0;
        for (; at != fence && *at == 255; ++at)
            value += 255;
        return at == fence ? value : value + *at++;
    };
    while (fence - at > 2) { // the trailing bits are no message
        take(static_cast<std::uint32_t>(number()));
        at += std::min(number(), static_cast<std::size_t>(fence - at));
    }
}

json place_of(const listed_unit& unit)
{
    const unsigned type = unit.type();
    return {{"nal_unit_type", type},       {"name", short_unit_name(static_cast<brenik::h264_nal_unit_type>(type))},
            {"unit", unit.place.number},   {"offset", unit.shown()},
            {"in_record", unit.in_record}, {"size", unit.place.size}};
}

} // namespace

h264::visitor* report_units::before(const listed_unit& unit)
{
    tracing = is_set_unit(unit.type()) ? wants_set(unit) : unit.type() == sei_type && wants_messages(unit);
    if (!tracing)
        return nullptr;
    rows.begin();
    trace.begin(unit.place);
    return &source;
}

void report_units::take(const listed_unit& unit, const h264::unit_reading* reading)
{
    if (!tracing)
        return;
    trace.end();
    if (unit.type() == sei_type)
        return add_messages(unit);
    for (const fact& what : consequences_of(*reading))
        rows.follows(what);
    json object = place_of(unit);
    object["rows"] = rows.take();
    if (has_room(object))
        sets.back().object = std::move(object);
    else
        ++further;
}

/// Counts it; true of the first one of its like.
bool report_units::wants_set(const listed_unit& unit)
{
    const unit_key key = {unit.type(), unit.place.size, sum_of(unit.place.bytes, unit.place.size)};
    const auto found = places.find(key);
    if (found != places.end()) {
        ++sets[found->second].count;
        return false;
    }
    if (sets.size() == most_sets) {
        ++further;
        return false;
    }
    places.emplace(key, sets.size());
    sets.push_back({1, nullptr});
    return true;
}

bool report_units::wants_messages(const listed_unit& unit)
{
    constexpr std::size_t enough_bytes = std::size_t{64} * 1024;
    unescaped.resize(std::min(unit.place.size, enough_bytes));
    const std::size_t size = h264::unescape(unit.place.bytes, unit.place.size, unescaped.data(), unescaped.size());
    bool any_new = false;
    if (size > 1)
        for_payload_types(unescaped.data() + 1, unescaped.data() + size,
                          [&](std::uint32_t type) { any_new = any_new || !shown_payloads.contains(type); });
    return any_new && bytes < most_bytes;
}

void report_units::add_messages(const listed_unit& unit)
{
    for (report_trace::message& message : rows.take_messages()) {
        if (shown_payloads.contains(message.payload_type))
            continue;
        json object = place_of(unit);
        object["payload_type"] = message.payload_type;
        object["payload"] = message.payload_type_name;
        object["rows"] = std::move(message.rows);
        if (!has_room(object))
            continue;
        shown_payloads.insert(message.payload_type);
        message_list.push_back(std::move(object));
    }
}

bool report_units::has_room(const json& object)
{
    const std::size_t size = json_line(object).size();
    if (bytes + size > most_bytes)
        return false;
    bytes += size;
    return true;
}

json report_units::parameter_sets() const
{
    json list = json::array();
    for (const known_set& set : sets) {
        if (set.object.is_null())
            continue;
        list.push_back(set.object);
        list.back()["count"] = set.count;
    }
    return list;
}

} // namespace orv_h264
