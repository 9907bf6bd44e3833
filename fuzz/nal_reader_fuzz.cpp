// The NAL reader against the literal one. Input: a byte for the framing, a byte for a place to cut, a byte that says
// how many block sizes follow, the block sizes, and the stream.
#include "input.h"

#include "support/literal_walk.h"

namespace {

/// Decodes the unit found in blocks of the sizes given, round and round, until one comes back empty.
void decode_in_blocks(support::literal_walk& walk, const fuzz::bytes& sizes)
{
    std::size_t round = 0;
    do {
        const std::size_t size = sizes.empty() ? 64 : std::size_t{1} + sizes[round++ % sizes.size()];
        const fuzz::exact_block out(size);
        fuzz::expect_none(walk.decode(out.begin(), size));
    } while (walk.decoded() != 0);
}

void read_units(support::literal_walk& walk, std::size_t start, std::size_t end, const fuzz::bytes& sizes)
{
    fuzz::expect_none(walk.scan(start, end));
    for (;;) {
        decode_in_blocks(walk, sizes);
        fuzz::expect_none(walk.rewind());
        const fuzz::exact_block whole(end - start);
        fuzz::expect_none(walk.decode(whole.begin(), whole.size()));
        if (walk.model.incomplete || walk.model.next >= end)
            return;
        fuzz::expect_none(walk.scan(walk.model.next, end));
    }
}

/// Decodes the first unit onto itself.
void decode_in_place(unsigned int nalfmt, const fuzz::bytes& stream)
{
    const fuzz::exact_block buffer(stream);
    support::literal_walk walk(nalfmt, buffer.begin(), buffer.size());
    fuzz::expect_none(walk.scan(0, stream.size()));
    if (!walk.model.found)
        return;
    const fuzz::bytes expected = walk.model.block_decode(stream.size());
    unsigned char* const out = walk.real.payload;
    fuzz::expect(walk.real.block_decode(out, stream.size()) == expected.size() &&
                     std::equal(expected.begin(), expected.end(), out),
                 "decoding in place gives what decoding elsewhere gives");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int nalfmt = input.byte() % 6;
    const std::size_t cut_byte = input.byte();
    const fuzz::bytes sizes = input.take(input.byte() % 8);
    const fuzz::bytes stream = input.rest();
    const std::size_t cut = cut_byte % (stream.size() + 1);

    const fuzz::exact_block part(stream.data(), cut);
    support::literal_walk cut_walk(nalfmt, part.begin(), part.size());
    read_units(cut_walk, 0, cut, sizes);

    const fuzz::exact_block whole(stream);
    support::literal_walk walk(nalfmt, whole.begin(), whole.size());
    read_units(walk, 0, stream.size(), sizes);
    fuzz::expect_none(walk.scan_annex_b(cut, stream.size()));
    fuzz::expect_none(walk.scan(0, stream.size()));
    fuzz::expect_none(walk.scan_annex_b(cut, stream.size()));
    fuzz::expect(walk.input_unchanged(), "the reader never writes to its input");
    decode_in_place(nalfmt, stream);
    return 0;
}
