// The legacy NAL scanner against the literal one. Input: a byte for the prefix size, a byte for the room of the output,
// a byte for a place to cut, and the stream.
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
    return 0;
}
