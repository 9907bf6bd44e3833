#include "annotated_trace.h"

#include "json_output.h"
#include "names.h"
#include "words.h"

#include <orv-utils-v4/h264_syntax/registered_user_data.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

/// The entries of a scaling list from its deltas, H.264 7.3.2.1.1.1.
std::string scaling_list(const std::vector<std::int64_t>& deltas, std::size_t size)
{
    std::int64_t last = 8;
    std::int64_t next = 8;
    std::vector<std::int64_t> list;
    for (std::size_t j = 0; j < size; ++j) {
        if (next != 0) {
            if (j == deltas.size())
                return ""; // it is cut
            next = (last + deltas[j] + 256) & 255;
            if (j == 0 && next == 0)
                return "default";
        }
        last = next == 0 ? last : next;
        list.push_back(last);
    }
    return fmt::format("{}", fmt::join(list, " "));
}

bool has_fixed_patterns_alone(std::string_view structure)
{
    return structure == "rbsp_trailing_bits" || structure == "slice_data" || structure.starts_with("slice_data_in_");
}

} // namespace

void annotated_trace::begin(const h264::unit_place& place)
{
    place_of.begin(place);
    path.clear();
    first_byte.reset();
    run.clear();
    guarded = {};
}

void annotated_trace::end()
{
    guarded.check();
}

void annotated_trace::open(const char* name)
{
    guarded([&] {
        tell_bytes();
        path.push_back({name, repeated_names(name)});
        if (inside("sei_message"))
            payload_type = payload_size = ff_bytes = 0;
        else if (inside("scaling_list"))
            deltas.clear();
        else if (inside("pic_timing"))
            clocks.clear();
        else if (inside(registered_trace::structure))
            begin_registered();
        unopened = !all && has_fixed_patterns_alone(name);
        if (unopened) // until one of its elements is told
            return;
        sink.open(name, inside("sei_payload") ? heading_of_message() : name);
    });
}

void annotated_trace::close()
{
    guarded([&] {
        tell_bytes();
        if (inside("scaling_list"))
            tell_scaling_list();
        else if (inside("pic_timing"))
            tell_clocks();
        else if (inside(registered_trace::structure))
            tell_registration();
        if (!std::exchange(unopened, false))
            sink.close();
        path.pop_back();
    });
}

void annotated_trace::element(const h264::traced_element& e)
{
    guarded([&] {
        const bool goes_on = first_byte && e.how == h264::coding::b && e.name.name() == first_byte->name.name();
        if (!goes_on)
            tell_bytes();
        if (e.how == h264::coding::b) {
            if (!goes_on)
                first_byte = e;
            else
                first_byte->bits += e.bits;
            run.push_back(static_cast<unsigned char>(e.value));
        } else if (all || is_told(e)) {
            if (std::exchange(unopened, false))
                sink.open(path.back().name, path.back().name);
            const std::string words = words_of(e);
            sink.element({e, place_of(e.bit), words, path.back().repeated.has(e.name.name())});
        }
        note(e);
    });
}

bool annotated_trace::is_told(const h264::traced_element& e) const
{
    const std::string_view name = e.name.name();
    const bool in_heading = name == "nal_ref_idc" || name == "nal_unit_type" || inside("sei_message");
    return !in_heading && (e.how != h264::coding::f || !e.inside);
}

void annotated_trace::tell_bytes()
{
    if (!first_byte)
        return;
    const h264::traced_element first = *std::exchange(first_byte, std::nullopt);
    const std::string words = first.bits == 8 ? words_of(first) : "";
    sink.bytes({first, place_of(first.bit), words, false}, run);
    keep_registration(first);
    run.clear();
}

void annotated_trace::begin_registered()
{
    place_of.mark();
    registered = {};
}

/// Keeps what tells whose the user data are.
void annotated_trace::keep_registration(const h264::traced_element& first)
{
    constexpr std::size_t enough = 16;
    if (!inside(registered_trace::structure))
        return;
    if (first.name.name() == std::string_view("itu_t_t35_country_code"))
        registered.itu_t_t35_country_code = run.front();
    else if (first.name.name() == std::string_view("itu_t_t35_payload_byte"))
        registered.itu_t_t35_payload_byte.assign(
            run.begin(), run.begin() + static_cast<std::ptrdiff_t>(std::min(enough, run.size())));
}

/// Keeps what something follows from.
void annotated_trace::note(const h264::traced_element& e)
{
    const std::string_view name = e.name.name();
    if (inside("sei_message")) {
        if (name == "ff_byte")
            ff_bytes += 255;
        else
            (name == "last_payload_type_byte" ? payload_type : payload_size) =
                std::exchange(ff_bytes, 0) + static_cast<std::uint32_t>(e.value);
    } else if (inside("scaling_list")) {
        deltas.push_back(e.value);
    } else if (name.ends_with("scaling_list_present_flag")) {
        list_size = e.name.index(0) < 6 ? 16 : 64;
    } else if (inside("pic_timing")) {
        constexpr std::string_view parts[] = {"hours_value", "minutes_value", "seconds_value", "n_frames"};
        const auto* const part = std::find(std::begin(parts), std::end(parts), name);
        if (name == "clock_timestamp_flag")
            clocks.emplace_back();
        else if (part != std::end(parts) && !clocks.empty())
            clocks.back()[static_cast<std::size_t>(part - parts)] = e.value;
    }
}

std::string annotated_trace::heading_of_message()
{
    const std::string_view name = payload_name(payload_type);
    sink.follows({"payloadType", std::to_string(payload_type), ""});
    sink.follows({"payloadSize", std::to_string(payload_size), ""});
    sink.follows({"payload", name.empty() ? "null" : fmt::format("\"{}\"", name), ""});
    return fmt::format("sei_message payloadType {}{}, payloadSize {}", payload_type,
                       name.empty() ? "" : fmt::format(" ({})", name), payload_size);
}

void annotated_trace::tell_scaling_list()
{
    const std::string list = scaling_list(deltas, list_size);
    if (list.empty())
        return;
    std::string as_json = list == "default" ? "\"default\"" : "[" + list + "]";
    std::replace(as_json.begin(), as_json.end(), ' ', ',');
    sink.follows({"list", std::move(as_json), list == "default" ? "the default list" : list});
}

/// The times of day of the timestamps; null of one that does not tell all of it.
void annotated_trace::tell_clocks()
{
    std::string as_json;
    std::string text;
    for (const auto& [hours, minutes, seconds, frames] : clocks) {
        const bool whole = hours && minutes && seconds && frames;
        const std::string time =
            whole ? fmt::format("{:02}:{:02}:{:02}:{:02}", *hours, *minutes, *seconds, *frames) : "";
        as_json += (as_json.empty() ? "" : ",") + (whole ? '"' + time + '"' : "null");
        text += (text.empty() || !whole ? "" : ", ") + time;
    }
    if (!text.empty())
        sink.follows({"time", '[' + as_json + ']', text});
}

/// Who the user data are registered for, where it is known.
void annotated_trace::tell_registration()
{
    const std::string_view name = h264::registered_name(registered);
    if (!name.empty())
        sink.follows({"registered_for", json_text(name), fmt::format("registered for {}", name)});
}

} // namespace orv_h264
