#include "explain.h"

#include "container/show_container.h"
#include "element_text.h"
#include "json_output.h"
#include "loss_texts.h"
#include "memory_guard.h"
#include "names.h"
#include "registered_trace.h"
#include "standard_output.h"
#include "table_output.h"
#include "unit_run.h"
#include "words.h"

#include <orv-utils-v4/h264_syntax/clauses.h>

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// Bits of a unit, emulation-prevention bytes removed.
struct bit_range {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
};

/// An element with the structures around it.
struct chosen_element {
    std::string path; // of the structures, joined by dots
    std::string structure;
    std::string name;
    std::string descriptor;
    std::string value;
    std::string words;
    std::string range; // "" of elements without one
    std::uint64_t byte = 0;
    std::uint64_t bit = 0;
    std::uint64_t bits = 0;
    bool inside = true;
};

std::string range_text(const h264::traced_element& e)
{
    if (e.bytes != nullptr)
        return "";
    return e.lowest == e.highest ? fmt::format("{}", e.lowest) : fmt::format("{} to {}", e.lowest, e.highest);
}

/// Keeps the elements that have some of the bits, and a few around them.
class element_window final : public h264::visitor {
public:
    static constexpr std::size_t most_around = 3;

    void begin(const h264::unit_place& place, const bit_range& wanted)
    {
        place_of.begin(place);
        bits = wanted;
    }

    /// Throws std::bad_alloc when memory ran out on the way.
    void end() const { guarded.check(); }

    void open(const char* name) override
    {
        guarded([&] {
            path.emplace_back(name);
            if (path.back() == registered_trace::structure)
                place_of.mark();
        });
    }
    void close() override
    {
        guarded([&] { path.pop_back(); });
    }
    void element(const h264::traced_element& e) override
    {
        guarded([&] { add(e); });
    }

    std::deque<chosen_element> before;
    std::vector<chosen_element> hits;
    std::vector<chosen_element> after;

private:
    void add(const h264::traced_element& e)
    {
        if (e.bit > bits.last) {
            if (after.size() < most_around)
                after.push_back(placed(e));
        } else if (e.bit + e.bits <= bits.first) {
            before.push_back(placed(e));
            if (before.size() > most_around)
                before.pop_front();
        } else {
            hits.push_back(placed(e));
        }
    }

    chosen_element placed(const h264::traced_element& e)
    {
        chosen_element p;
        p.structure = path.back();
        p.path = fmt::format("{}", fmt::join(path, "."));
        p.name = text_of(e.name);
        append_descriptor(p.descriptor, e);
        append_value(p.value, e);
        p.words = words_of(e);
        p.range = range_text(e);
        p.byte = place_of(e.bit);
        p.bit = e.bit;
        p.bits = e.bits;
        p.inside = e.inside;
        return p;
    }

    memory_guard guarded;
    place_finder place_of;
    bit_range bits;
    std::vector<std::string_view> path;
};

bool is_slice_type(unsigned type)
{
    return (type >= 1 && type <= 5) || (type >= 19 && type <= 21);
}

class explanation final : public unit_run {
public:
    explanation(const explain_options& chosen, const stream_input& from)
        : unit_run(from.name(), false),
          options(chosen),
          framing(from.framing()),
          among_others(from.in_container() != nullptr && from.in_container()->has_own_offsets())
    {
    }

    exit_status print(stream_input& input)
    {
        object = json_head("orv-h264/explain", input.name());
        object["offset"] = options.offset;
        object["bit"] = options.bit ? json(*options.bit) : json();
        if (input.in_container() != nullptr)
            tell_container(*input.in_container());
        run(input);
        if (what.empty())
            take_end(input);
        object["what"] = what;
        tell();
        return broken ? exit_broken_stream : exit_clean;
    }

private:
    void tell_container(const container_stream& of)
    {
        object["container"] = orv_h264::json_of(of);
        container = text_of(of);
        if (!of.has_own_offsets())
            container += "; places count in the stream that they make";
    }

    bool enough() const override { return !what.empty(); }

    h264::visitor* before(const listed_unit& unit) override
    {
        if (among_others && !holds(unit))
            return nullptr;
        if (options.offset >= unit.place.offset + unit.place.size) {
            behind = unit.place.offset + unit.place.size;
            return nullptr;
        }
        if (options.offset < unit.begin()) {
            what = "zero padding";
            object["zeros_from"] = behind;
            object["zeros_to"] = unit.begin();
            return nullptr;
        }
        add_unit(unit);
        if (options.offset < unit.place.offset) {
            what = framing_text(unit);
            return nullptr;
        }
        if (!find_bits(unit.place)) {
            what = "emulation prevention byte (H.264 7.4.1): no part of the RBSP";
            return nullptr;
        }
        found.emplace();
        found->begin(unit.place, wanted);
        return &source.emplace(*found);
    }

    void take(const listed_unit& unit, const h264::unit_reading* reading) override
    {
        if (!found)
            return;
        found->end();
        const bool read = !found->hits.empty();
        what = read ? "syntax element" : unread_text(unit, *reading);
        if (read)
            add_elements();
    }

    void take_gap(const h264::split_gap& gap) override
    {
        if (options.offset < gap.offset || options.offset >= gap.offset + gap.size)
            return;
        what = "gap: " + describe_with_size(gap, options.stream.max_unit);
        broken = true;
    }

    void complain(const listed_unit* unit, std::uint64_t offset, const std::string& about, bool is_problem) override
    {
        if (unit == nullptr || !holds(*unit))
            return;
        broken = broken || is_problem;
        object["wrong"].push_back({{"offset", offset}, {"message", about}});
    }

    bool holds(const listed_unit& unit) const
    {
        return options.offset >= unit.begin() && options.offset < unit.place.offset + unit.place.size;
    }

    std::string framing_text(const listed_unit& unit) const
    {
        if (unit.in_record)
            return "length of a parameter set in the decoder configuration record (ISO/IEC 14496-15 5.3.3.1)";
        if (framing != h264::framing::annex_b)
            return fmt::format("length prefix of {} bytes", unit.framing_size);
        return unit.framing_size == 4 && options.offset == unit.begin() ? "zero_byte before a start code (H.264 B.1)"
                                                                        : "start code (H.264 B.1)";
    }

    /// False when the byte is none of the unit without emulation prevention.
    bool find_bits(const h264::unit_place& place)
    {
        h264::byte_map raw_bytes(place.bytes, place.size);
        const std::uint64_t target = options.offset - place.offset;
        std::uint64_t byte = 0;
        while (raw_bytes(byte) < target)
            ++byte;
        h264::byte_map again(place.bytes, place.size);
        wanted.first = 8 * byte + options.bit.value_or(0);
        wanted.last = 8 * byte + options.bit.value_or(7);
        return again(byte) == target;
    }

    std::string unread_text(const listed_unit& unit, const h264::unit_reading& reading)
    {
        const h264::outcome& result = reading.result;
        if (result.failure)
            return fmt::format("not read: {}", text_of(result.failure));
        if (!is_slice_type(unit.type()))
            return std::holds_alternative<std::monostate>(reading.unit.rbsp)
                       ? "payload of a unit type without a syntax in H.264"
                       : "bytes behind the trailing bits";
        const unsigned char* const end = unit.place.bytes + unit.place.size;
        const unsigned char* const at = unit.place.bytes + (options.offset - unit.place.offset);
        if (result.ending == h264::ending::cabac_zero_words &&
            std::all_of(at, end, [](unsigned char byte) { return byte == 0 || byte == 3; }))
            return "cabac_zero_words (H.264 7.3.2.10)";
        object["slice_data_bit"] = wanted.first - result.bits;
        return "slice data (H.264 7.3.4)";
    }

    void add_unit(const listed_unit& unit)
    {
        const auto type = static_cast<brenik::h264_nal_unit_type>(unit.type());
        object["unit"] = {{"number", unit.place.number},       {"offset", unit.begin()},
                          {"framing_size", unit.framing_size}, {"length", unit.place.size},
                          {"nal_unit_type", unit.type()},      {"name", brenik::h264_nal_unit_type_to_str(type)}};
        if (unit.packet)
            object["unit"]["packet_offset"] = *unit.packet;
    }

    void add_elements()
    {
        for (const chosen_element& e : found->before)
            object["before"].push_back(json_of(e));
        for (const chosen_element& e : found->hits)
            object["elements"].push_back(json_of(e));
        for (const chosen_element& e : found->after)
            object["after"].push_back(json_of(e));
    }

    static json json_of(const chosen_element& e)
    {
        json element = {{"structure", e.path},
                        {"name", e.name},
                        {"descriptor", e.descriptor},
                        {"value", e.value},
                        {"meaning", nullptr},
                        {"range", nullptr},
                        {"inside", e.inside},
                        {"byte", e.byte},
                        {"bit_in_byte", e.bit % 8},
                        {"bit", e.bit},
                        {"bits", e.bits},
                        {"clause", h264::clause_of(e.structure.c_str())},
                        {"semantics", h264::semantics_of(e.structure.c_str())}};
        if (!e.words.empty())
            element["meaning"] = e.words;
        if (!e.range.empty())
            element["range"] = e.range;
        return element;
    }

    /// Behind the last unit.
    void take_end(const stream_input& input)
    {
        if (among_others) {
            if (options.offset >= input.size().value_or(options.offset + 1))
                throw refusal(exit_usage_or_io, fmt::format("{}: offset {} lies behind the end, at {}", input.name(),
                                                            options.offset, *input.size()));
            what = fmt::format("no unit of track {}: the container's own, or another track's",
                               input.in_container()->track().number);
            return;
        }
        if (options.offset >= input.bytes_read())
            throw refusal(exit_usage_or_io, fmt::format("{}: offset {} lies behind the end, at {}", input.name(),
                                                        options.offset, input.bytes_read()));
        what = "zero padding";
        object["zeros_from"] = behind;
        object["zeros_to"] = input.bytes_read();
    }

    void tell()
    {
        if (options.format == output_format::json)
            print_json(object);
        else if (is_table(options.format))
            print_facts(options.format, object);
        else
            print_text();
    }

    static void print_line(std::string_view label, const std::string& text)
    {
        write_output(fmt::format("{:<12}{}\n", label, text));
    }

    void print_text() const
    {
        if (!container.empty())
            print_line("Container", container);
        print_line("Place", options.bit ? fmt::format("byte {}, bit {}", options.offset, *options.bit)
                                        : fmt::format("byte {}", options.offset));
        print_line("What", what);
        if (object.contains("zeros_from"))
            print_line("Zeros", fmt::format("{} to {}", object["zeros_from"].dump(), object["zeros_to"].dump()));
        if (object.contains("unit")) {
            const json& unit = object["unit"];
            print_line("Unit", fmt::format("{}, offset {}, {} bytes, type {}, {}", unit["number"].dump(),
                                           unit["offset"].dump(), unit["length"].dump(), unit["nal_unit_type"].dump(),
                                           unit["name"].get<std::string>()));
        }
        if (object.contains("slice_data_bit"))
            print_line("Bit", fmt::format("{} of the slice data", object["slice_data_bit"].dump()));
        if (found && !found->hits.empty())
            print_elements();
        if (object.contains("wrong"))
            for (const json& wrong : object["wrong"])
                print_line("Wrong", wrong["message"].get<std::string>());
    }

    void print_elements() const
    {
        for (const chosen_element& e : found->before)
            print_line("Before", value_text(e));
        for (const chosen_element& e : found->hits) {
            const std::string clause = h264::clause_of(e.structure.c_str());
            const std::string semantics = h264::semantics_of(e.structure.c_str());
            print_line("Element", value_text(e));
            print_line("  in", e.path);
            print_line("  coded", fmt::format("{}, {} bit{} from byte {}, bit {} (bit {} of the unit)", e.descriptor,
                                              e.bits, e.bits == 1 ? "" : "s", e.byte, e.bit % 8, e.bit));
            if (!e.range.empty())
                print_line("  range", e.inside ? e.range : e.range + ": the value lies outside of it");
            if (!clause.empty())
                print_line("  clause",
                           fmt::format("H.264 {}{}", clause,
                                       semantics.empty() ? "" : fmt::format(", semantics in {}", semantics)));
        }
        for (const chosen_element& e : found->after)
            print_line("After", value_text(e));
    }

    static std::string value_text(const chosen_element& e)
    {
        return fmt::format("{} {}{}", e.name, e.value, e.words.empty() ? "" : fmt::format(" ({})", e.words));
    }

    const explain_options& options;
    h264::framing framing;
    bool among_others; // units, in a file that has more than them
    json object;
    std::string container; // as text
    std::string what;      // "" until it is found
    std::optional<element_window> found;
    std::optional<registered_trace> source;
    bit_range wanted;
    std::uint64_t behind = 0; // the last unit before the place
    bool broken = false;
};

} // namespace

exit_status explain(const explain_options& options)
{
    stream_input input(options.stream);
    return explanation(options, input).print(input);
}

} // namespace orv_h264
