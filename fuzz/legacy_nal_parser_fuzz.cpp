// The legacy NAL scanner against the literal one, and the dump against the units that the literal one finds. Input: a
// byte for the prefix size, a byte for the room of the output, a byte for a place to cut, and the stream.
#include "input.h"

#include "support/legacy_nal_walk.h"

namespace {

using support::legacy_nal_walk;

void read_units(const fuzz::bytes& stream, unsigned int nal_length_size, std::size_t room)
{
    const fuzz::exact_block block(stream);
    const fuzz::exact_block out(room);
    legacy_nal_walk walk(block.begin(), block.size());
    std::size_t start = 0;
    do {
        fuzz::expect_none(walk.scan(start, block.size(), nal_length_size, out.begin(), room));
        start = walk.next;
    } while (walk.model.found != 0);
    fuzz::expect(walk.input_unchanged(), "the scanner never writes to its input");
}

/// The two hex digits of each byte, 16 bytes a line.
std::string hex_lines(const fuzz::bytes& content)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < content.size(); ++i) {
        text += i % 16 == 0 ? "  " : "";
        text += {digits[content[i] / 16], digits[content[i] % 16], ' '};
        text += i % 16 == 15 || i + 1 == content.size() ? "\n" : "";
    }
    return text;
}

/// What the dump of all of every unit is to print.
std::string literal_dump(const fuzz::bytes& stream, unsigned int nal_length_size)
{
    literal::legacy_nal_scanner model;
    model.stream = stream;
    std::string text;
    for (std::size_t at = 0; at < stream.size();) {
        at = model.scan(0, 65536, at, stream.size(), nal_length_size);
        if (model.found == 0)
            break;
        const char* const name = h264_nal_parser_unit_type_to_str(static_cast<unsigned char>(model.nal_unit_type));
        text += "NAL: ref_ide=" + std::to_string(model.nal_ref_idc) +
                " unit_type=" + std::to_string(model.nal_unit_type) + "(" + (name == nullptr ? "(null)" : name) +
                ") len=" + std::to_string(model.output.size()) + " of=" + std::to_string(model.overflow) + "\n" +
                hex_lines(model.output);
    }
    return text;
}

void dump(const fuzz::bytes& stream, unsigned int nal_length_size)
{
    const fuzz::exact_block block(stream);
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const f = open_memstream(&text, &size);
    h264_nal_dump_dbg(f, block.begin(), block.end(), nal_length_size, 65536);
    static_cast<void>(std::fclose(f));
    fuzz::expect(std::string(text, size) == literal_dump(stream, nal_length_size), "the dump prints every unit");
    std::free(text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int nal_length_size = input.byte() % 5;
    const std::size_t room = input.byte();
    const std::size_t cut_byte = input.byte();
    const fuzz::bytes stream = input.rest();
    read_units(stream, nal_length_size, stream.size());
    read_units(stream, nal_length_size, room);
    const std::size_t cut = cut_byte % (stream.size() + 1);
    read_units(fuzz::bytes(stream.data(), stream.data() + cut), nal_length_size, room);
    dump(stream, nal_length_size);
    return 0;
}
