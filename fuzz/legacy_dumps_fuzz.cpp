// The dumps of the legacy interface: every field of an SPS with any numbers in it, and the units of a stream, of which
// each shows so many bytes. Input: four bytes for how many, high byte first, one for the prefix size, one for the size
// of the stream, the stream, and then four bytes for each field.
#include "input.h"

#include "support/legacy_fields.h"
#include "support/literal_legacy_nal.h"

#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include <cstdio>
#include <limits>
#include <set>

namespace {

/// What `print` prints to the file it is given.
template <typename Print>
std::string printed(Print print)
{
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const f = open_memstream(&text, &size);
    print(f);
    static_cast<void>(std::fclose(f));
    std::string result(text, size);
    std::free(text);
    return result;
}

std::uint32_t take_number(fuzz::input& from)
{
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i)
        number = number << 8 | from.byte();
    return number;
}

struct field_taker {
    fuzz::input& from;

    template <typename Member>
    void operator()(const char* /*name*/, Member& member)
    {
        member = static_cast<Member>(take_number(from) & std::numeric_limits<Member>::max());
    }
};

std::string hex_digits(std::int64_t number, int least)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (; number > 0 || least > 0; number /= 16, --least)
        text.insert(text.begin(), digits[number % 16]);
    return text;
}

/// The line of a field; that of the height is the width's, too.
std::string line(const std::string& name, std::int64_t number, std::int64_t sar_width)
{
    static const std::set<std::string> in_hex = {
        "profile_idc",      "level_idc",        "seq_parameter_set_id",     "chroma_format_idc",
        "aspect_ratio_idc", "colour_primaries", "transfer_characteristics", "matrix_coefficients"};
    if (name == "sar_height")
        return "aspect_ratio: " + std::to_string(sar_width) + " / " + std::to_string(number) + "\n";
    return name + ": " + (in_hex.contains(name) ? "0x" + hex_digits(number, 2) : std::to_string(number)) + "\n";
}

void dump_sps(h264_sps seq)
{
    const std::string text = "\n" + printed([&seq](std::FILE* f) { seq.dump(f); });
    const support::named_values fields = support::fields_of(seq);
    std::size_t size = 1;
    for (const std::string& name : fields.names->in_order) {
        if (name == "sar_width")
            continue;
        const std::string expected = line(name, fields.at(name).number, fields.at("sar_width").number);
        fuzz::expect(text.find("\n" + expected) != std::string::npos, ("no line " + expected).c_str());
        size += expected.size();
    }
    fuzz::expect(text.size() == size, "a line for each field and no other");
}

/// The two hex digits of each byte, 16 bytes a line.
std::string hex_lines(const fuzz::bytes& content, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += i % 16 == 0 ? "  " : "";
        text += hex_digits(content[i], 2) + " ";
        text += i % 16 == 15 || i + 1 == count ? "\n" : "";
    }
    return text;
}

void dump_units(const fuzz::bytes& stream, unsigned int nal_length_size, int dump_bytes)
{
    literal::legacy_nal_scanner model;
    model.stream = stream;
    std::string expected;
    for (std::size_t at = 0; at < stream.size();) {
        at = model.scan(0, 65536, at, stream.size(), nal_length_size);
        if (model.found == 0)
            break;
        const char* const name = h264_nal_parser_unit_type_to_str(static_cast<unsigned char>(model.nal_unit_type));
        const std::size_t shown = dump_bytes < 1 ? 0 : static_cast<std::size_t>(dump_bytes);
        expected += "NAL: ref_ide=" + std::to_string(model.nal_ref_idc) +
                    " unit_type=" + std::to_string(model.nal_unit_type) + "(" + (name == nullptr ? "(null)" : name) +
                    ") len=" + std::to_string(model.output.size()) + " of=" + std::to_string(model.overflow) + "\n" +
                    hex_lines(model.output, std::min(shown, model.output.size()));
    }
    const fuzz::exact_block block(stream);
    const std::string text =
        printed([&](std::FILE* f) { h264_nal_dump_dbg(f, block.begin(), block.end(), nal_length_size, dump_bytes); });
    fuzz::expect(text == expected, "the dump prints every unit");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const std::uint32_t number = take_number(input);
    const auto dump_bytes = static_cast<int>(std::int64_t{number} - (std::int64_t{1} << 31));
    const unsigned int nal_length_size = input.byte() % 5;
    const std::size_t stream_size = input.byte();
    dump_units(input.take(stream_size), nal_length_size, dump_bytes);
    h264_sps seq;
    field_taker taker{input};
    support::each_field(taker, seq);
    dump_sps(seq);
    return 0;
}
