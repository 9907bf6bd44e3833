#include "avcc.h"

#include "element_text.h"
#include "framing.h"
#include "input_file.h"
#include "json_output.h"
#include "messages.h"
#include "record_file.h"
#include "standard_output.h"
#include "stream_input.h"
#include "table_output.h"
#include "trace_lines.h"
#include "unit_lines.h"

#include <orv-utils-v4/h264_syntax.h>

#include <algorithm>
#include <span>
#include <string_view>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// What the lists are called.
struct list_names {
    std::string_view count;
    std::string_view length;
    std::string_view unit;
    const char* member; // of JSON
};
constexpr list_names sps_names = {"numOfSequenceParameterSets", "sequenceParameterSetLength",
                                  "sequenceParameterSetNALUnit", "sps"};
constexpr list_names pps_names = {"numOfPictureParameterSets", "pictureParameterSetLength",
                                  "pictureParameterSetNALUnit", "pps"};
constexpr list_names sps_extension_names = {"numOfSequenceParameterSetExt", "sequenceParameterSetExtLength",
                                            "sequenceParameterSetExtNALUnit", "sps_ext"};

/// Shows a record from its begin to where it fails.
class record_view : h264::unit_sink {
public:
    record_view(const avcc_options& chosen, const std::string& name, std::span<unsigned char> input)
        : options(chosen),
          problems(name),
          object(json_head("orv-h264/avcc", name)),
          base(input.data()),
          record(input.last(without_box_header(input).size())),
          units(make_unit_printer(options.format != output_format::text, {}))
    {
    }

    exit_status run()
    {
        read_record();
        if (!result.sound())
            complain(record.data() + result.bytes, fmt::format("{}: {}", failing, text_of(result.why)));
        show_members();
        object["problems"] = complained;
        if (options.format == output_format::json)
            print_json(object);
        else if (is_table(options.format))
            print_facts(options.format, object);
        return problems.status();
    }

private:
    /// One of another version is read as if it were of the first.
    void read_record()
    {
        result = read(r, record.data(), record.size());
        version = r.configurationVersion;
        if (result.why == h264::configuration_reason::unknown_version) {
            complain(record.data(), fmt::format("configurationVersion is {}, not 1", version));
            record.front() = 1;
            result = read(r, record.data(), record.size());
        }
        failing = result.sound() ? "" : text_of(result.element);
    }

    void show_members()
    {
        show("configurationVersion", version);
        show("AVCProfileIndication", r.AVCProfileIndication);
        show("profile_compatibility", r.profile_compatibility);
        show("AVCLevelIndication", r.AVCLevelIndication);
        show("lengthSizeMinusOne", r.lengthSizeMinusOne);
        show_sets(sps_names, 7, r.sequenceParameterSetNALUnit);
        show_sets(pps_names, 8, r.pictureParameterSetNALUnit);
        if (r.extension_belongs() && (r.extension_present || !result.sound())) {
            show("chroma_format", r.chroma_format);
            show("bit_depth_luma_minus8", r.bit_depth_luma_minus8);
            show("bit_depth_chroma_minus8", r.bit_depth_chroma_minus8);
            show_sets(sps_extension_names, 13, r.sequenceParameterSetExtNALUnit);
        }
        if (r.behind.size != 0)
            show_behind({r.behind.bytes, r.behind.size});
    }

    /// False, and nothing more is shown, where the record fails with this element or before it.
    bool show(std::string_view name, std::uint64_t value)
    {
        ended = ended || failing == name;
        if (ended)
            return false;
        object[std::string(name)] = value;
        if (options.format == output_format::text)
            write_output(fmt::format("{} {}\n", name, value));
        return true;
    }

    template <class List>
    void show_sets(const list_names& names, unsigned type, const List& sets)
    {
        const bool fails_here = failing.starts_with(names.unit) || failing.starts_with(names.length);
        if (!show(names.count, fails_here ? result.units : sets.size()))
            return;
        json& shown = object[names.member] = json::array();
        for (std::size_t i = 0; i < sets.size(); ++i)
            show_set(shown, sets[i], type, fmt::format("{}[{}]", names.unit, i));
        const auto rest = record.subspan(result.bytes);
        if (failing.starts_with(names.unit) && !rest.empty()) // as much as there is of it
            show_set(shown, {rest.data(), rest.size()}, type, failing);
        ended = ended || fails_here;
    }

    void show_set(json& list, const h264::unit_view& set, unsigned type, const std::string& name)
    {
        if (set.size == 0)
            return complain(set.bytes, fmt::format("{} is no NAL unit", name));
        if (set.type() != type)
            complain(set.bytes, fmt::format("{} is a unit of type {}", name, set.type()));
        current = {{set.bytes, set.size, offset_of(set.bytes), number++}, 2};
        stream.push(current.place, *this);
        stream.flush(*this);
        if (options.format == output_format::text)
            write_output(shown_unit);
        else
            list.push_back(json::parse(shown_unit));
    }

    h264::visitor* before(const h264::unit_place&) override { return units->begin(current); }

    void take(const h264::unit_reading& reading) override
    {
        for (const h264::finding& finding : reading.result.findings)
            problems.note(current.begin(), text_of(finding));
        if (reading.result.failure)
            complain(current.place.bytes, text_of(reading.result.failure));
        else if (const std::string_view wrong = text_of(reading.result.ending); !wrong.empty())
            complain(current.place.bytes, std::string(wrong));
        shown_unit = units->end({reading.place, current.framing_size}, &reading);
    }

    void show_behind(byte_span behind)
    {
        object["behind"] = hex_digits(behind);
        if (options.format == output_format::text)
            write_output(fmt::format("behind the record: {}\n", hex_start(behind)));
    }

    void complain(const unsigned char* where, const std::string& what)
    {
        problems.add(offset_of(where), what);
        complained.push_back({{"offset", offset_of(where)}, {"message", what}});
    }

    std::uint64_t offset_of(const unsigned char* where) const { return static_cast<std::uint64_t>(where - base); }

    const avcc_options& options;
    complaints problems;
    json object;
    json complained = json::array();
    unsigned char* base;
    std::span<unsigned char> record;
    h264::AVCDecoderConfigurationRecord r;
    h264::configuration_outcome result;
    unsigned version = 1;
    std::string failing; // the element that the record fails with, or ""
    bool ended = false;  // nothing behind it is shown
    h264::stream stream;
    std::unique_ptr<unit_printer> units;
    listed_unit current;
    std::uint64_t number = 0; // of units
    std::string shown_unit;
};

/// Throws refusal for an input that is known, and is no record. A damaged record may hold what passes for a stream; it
/// begins with its version, a stream with zeros of a start code or of a length.
void refuse_streams(const std::string& name, const recognition& what, std::span<const unsigned char> input)
{
    if (!input.empty() && input[0] == 1)
        return;
    refuse_other_formats(name, what);
    if (what.kind == input_kind::stream && input.size() >= 2 && input[0] + input[1] == 0)
        throw refusal(
            exit_usage_or_io,
            fmt::format("{}: this is an H.264 stream ({}), no record; orv-h264 convert --avcc makes one of it", name,
                        framing_name(what.framing)));
}

} // namespace

exit_status avcc(const avcc_options& options)
{
    input_file file(options.path);
    input_window window([&file](unsigned char* out, std::size_t size) { return file.read(out, size); });
    window.fill(largest_record + 1);
    if (window.size() > largest_record)
        throw refusal(exit_usage_or_io, fmt::format("{}: too large for a decoder configuration record", file.name()));
    refuse_streams(file.name(), recognise(window), {window.start(), window.size()});
    return record_view(options, file.name(), {window.start(), window.size()}).run();
}

} // namespace orv_h264
