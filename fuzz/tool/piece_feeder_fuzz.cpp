// The piece feeder of the tool: the same units and gaps for every split, and together they tile the input. Input: a
// byte each for the framing, the bytes of a read (modulo 32; above that, how much more the next read gives) and the
// largest unit, and the stream.
#include "input.h"

#include "support/feed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const auto nalfmt = static_cast<brenik::h2645_common_nalfmt>(1 + input.byte() % 5);
    const std::size_t reads = input.byte();
    const support::feed_options split{1 + reads % 32, std::size_t{1} + input.byte(), reads / 32};
    const fuzz::bytes stream = input.rest();

    const auto whole = support::feed(stream, nalfmt, {stream.size() + 1, split.max_unit});
    fuzz::expect(support::tiles(whole, stream), "units, gaps and zero padding tile the input");
    fuzz::expect(support::feed(stream, nalfmt, split) == whole, "every split gives the same");
    return 0;
}
