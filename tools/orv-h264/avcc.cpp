#include "avcc.h"

#include "framing.h"
#include "input_file.h"
#include "json_fields.h"
#include "json_output.h"
#include "messages.h"
#include "names.h"
#include "rbsp_decoder.h"
#include "show_unit.h"
#include "stream_input.h"
#include "stream_walker.h"
#include "text_fields.h"

#include <orv-utils-v4/h264_legacy.h>

#include <algorithm>
#include <span>
#include <string_view>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

// ISO/IEC 14496-15, 5.2.4.1: what stands before the first parameter set, and before each of them.
constexpr std::size_t fixed_size = 6;
constexpr std::size_t length_size = 2;

// No record is larger: 31 and 255 parameter sets of 65535 bytes each, and an extension.
constexpr std::size_t largest_input = std::size_t{32} * 1024 * 1024;

/// The record behind the size and type of a box, or all of the input where there are none.
std::span<unsigned char> without_box_header(std::span<unsigned char> input)
{
    constexpr std::size_t header_size = 8;
    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    const bool is_box = text.size() >= header_size && text.substr(4, 4) == "avcC";
    return is_box ? input.subspan(header_size) : input;
}

json unit_json(const shown_unit& shown)
{
    std::string text;
    {
        json_fields fields(text);
        tell_unit(fields, shown);
    }
    return json::parse(text);
}

class record_view {
public:
    record_view(const avcc_options& chosen, const std::string& name, std::span<unsigned char> input)
        : options(chosen),
          problems(name),
          object(json_head("orv-h264/avcc", name)),
          base(input.data()),
          record(without_box_header(input))
    {
        for (const char* member : {"configurationVersion", "AVCProfileIndication", "profile_compatibility",
                                   "AVCLevelIndication", "lengthSizeMinusOne", "numOfSequenceParameterSets", "sps",
                                   "numOfPictureParameterSets", "pps", "extension"})
            object[member] = nullptr;
        object["problems"] = json::array();
    }

    exit_status run()
    {
        h264_AVCDecoderConfigurationRecord r;
        unsigned char* const fence = record.data() + record.size();
        const bool whole = h264_AVCDecoderConfigurationRecord_parse(&r, record.data(), fence) == 0;
        show_all(r, whole);
        if (options.format == output_format::json)
            print_json(object);
        return problems.status();
    }

private:
    void show_all(const h264_AVCDecoderConfigurationRecord& r, bool whole)
    {
        if (record.size() < fixed_size)
            return complain(record, fmt::format("{} bytes are too few for a record", record.size()));
        show_head(r);
        rest = record.subspan(fixed_size);
        if (!take_sets("sps", r.numOfSequenceParameterSets, brenik::h264_nal_unit_type_sps))
            return;
        if (rest.empty())
            return complain(rest, "the record ends before numOfPictureParameterSets");
        const std::size_t pps_count = rest.front();
        show("numOfPictureParameterSets", pps_count);
        rest = rest.subspan(1);
        if (!take_sets("pps", pps_count, brenik::h264_nal_unit_type_pps))
            return;
        if (!whole)
            complain(rest, "the record ends directly behind a numOfPictureParameterSets of 0");
        show_extension();
    }

    void show_head(const h264_AVCDecoderConfigurationRecord& r)
    {
        show("configurationVersion", r.configurationVersion);
        show("AVCProfileIndication", r.AVCProfileIndication);
        show("profile_compatibility", r.profile_compatibility);
        show("AVCLevelIndication", r.AVCLevelIndication);
        show("lengthSizeMinusOne", r.lengthSizeMinusOne);
        show("numOfSequenceParameterSets", r.numOfSequenceParameterSets);
        if (r.configurationVersion != 1)
            complain(record, fmt::format("configurationVersion is {}, not 1", r.configurationVersion));
    }

    /// False when the record ends before all of them.
    bool take_sets(const char* list, std::size_t count, brenik::h264_nal_unit_type type)
    {
        object[list] = json::array();
        for (std::size_t i = 0; i < count; ++i) {
            const std::string which = fmt::format("{} {} of {}", short_unit_name(type), i + 1, count);
            if (rest.size() < length_size) {
                complain(rest, fmt::format("the record ends before {}", which));
                return false;
            }
            const std::size_t stated = length_size + (std::size_t{rest[0]} << 8U | rest[1]);
            const bool cut = stated > rest.size();
            if (cut)
                complain(rest, fmt::format("{} has {} bytes and runs past the end of the record", which,
                                           stated - length_size));
            take_set(list, rest.first(std::min(stated, rest.size())), type, which);
            if (cut)
                return false;
            rest = rest.subspan(stated);
        }
        return true;
    }

    void take_set(const char* list, std::span<unsigned char> entry, brenik::h264_nal_unit_type type,
                  const std::string& which)
    {
        brenik::h264_nal_reader reader(brenik::nalfmt_length2);
        reader.scan(entry.data(), entry.data() + entry.size());
        if (!reader.found)
            return complain(entry, fmt::format("{} is not a NAL unit", which));
        unit where;
        where.offset = offset_of(entry);
        where.framing_size = length_size;
        where.length = brenik::range_size(reader.nal_header, reader.find_unit_end());
        const brenik::h264_nal nal = reader.nal;
        const std::size_t rbsp_size = decoder.whole(reader).size();
        const walked_unit walked = walker.walk(reader);
        if (nal.nal_unit_type != type)
            complain(entry,
                     fmt::format("{} is a unit of type {}", which, static_cast<unsigned int>(nal.nal_unit_type)));
        for (const std::string& problem : problems_of(walked))
            complain(entry, problem);
        const shown_unit shown = {where, nal, rbsp_size, &walked};
        if (options.format == output_format::json)
            object[list].push_back(unit_json(shown));
        else
            printer.print(shown);
    }

    void show_extension()
    {
        if (rest.empty())
            return;
        object["extension"] = hex_digits(rest);
        if (options.format != output_format::json)
            fmt::print("extension {}\n", hex_start(rest));
    }

    void show(const char* name, std::uint64_t value)
    {
        object[name] = value;
        if (options.format != output_format::json)
            fmt::print("{} {}\n", name, value);
    }

    void complain(std::span<unsigned char> where, const std::string& what)
    {
        problems.add(offset_of(where), what);
        object["problems"].push_back({{"offset", offset_of(where)}, {"message", what}});
    }

    std::uint64_t offset_of(std::span<unsigned char> where) const { return brenik::range_size(base, where.data()); }

    const avcc_options& options;
    complaints problems;
    json object;
    unsigned char* base;
    std::span<unsigned char> record;
    std::span<unsigned char> rest; // what has not been read
    stream_walker walker;
    rbsp_decoder decoder;
    unit_printer printer;
};

/// Throws refusal for an input that is known, and is no record.
void refuse_streams(const std::string& name, const recognition& what)
{
    refuse_other_formats(name, what);
    if (what.kind == input_kind::stream)
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
    window.fill(largest_input + 1);
    if (window.size() > largest_input)
        throw refusal(exit_usage_or_io, fmt::format("{}: too large for a decoder configuration record", file.name()));
    refuse_streams(file.name(), recognise(window));
    return record_view(options, file.name(), {window.start(), window.size()}).run();
}

} // namespace orv_h264
