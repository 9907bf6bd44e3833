// The piece feeder of the tool: the same units and gaps for every split, and together they tile the input. Input: a
// byte each for the framing, the bytes of a read and the largest unit, and the stream.
#include "input.h"

#include "support/feed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const auto nalfmt = static_cast<brenik::h2645_common_nalfmt>(1 + input.byte() % 5);
    const std::size_t piece = 1 + input.byte() % 32;
    const std::size_t max_unit = 1 + input.byte();
    const fuzz::bytes stream = input.rest();

    const auto whole = support::feed(stream, nalfmt, {stream.size() + 1, max_unit});
    fuzz::expect(support::tiles(whole, stream), "units, gaps and zero padding tile the input");
    fuzz::expect(support::feed(stream, nalfmt, {piece, max_unit}) == whole, "every split gives the same");
    return 0;
}
