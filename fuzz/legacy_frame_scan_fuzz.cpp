// The frame scan against the literal one over the units that the legacy scanner finds. Input: a byte each for the
// framing (0 for Annex B, else the size of the length prefixes), the flags and the room for a unit (255: for any), and
// the stream.
#include "input.h"

#include "support/scanned_units.h"

#include <algorithm>

namespace {

/// What the call that returned `f` says of itself; `from` is where it began.
void expect_sound(const support::frame_outcome& f, std::size_t from, std::size_t size)
{
    fuzz::expect(f.result >= from && f.result <= size, "the result lies in the input, and not before the call");
    fuzz::expect(f.start == support::nowhere || (f.start >= from && f.start < size), "the frame begins in the input");
    fuzz::expect(f.end == support::nowhere || (f.end > f.start && f.end < size), "the frame ends in the input");
    fuzz::expect(!(f.complete && f.need_more_data), "a whole frame needs no more");
    if (f.complete)
        fuzz::expect(f.result == f.end && f.result > from, "behind a whole frame the next call begins further on");
    else if (f.start != support::nowhere)
        fuzz::expect(f.result == f.start, "the next call begins the same frame again");
    else
        fuzz::expect(!f.need_more_data, "no frame began");
    fuzz::expect(f.sps_updated == f.has_sps, "an SPS that was passed was read");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const int nal_length_size = input.byte() % 5;
    const unsigned int flags = input.byte();
    const std::size_t room = input.byte();
    const fuzz::bytes stream = input.rest();
    const std::size_t scratch_size = room == 255 ? stream.size() : room;

    const auto units = support::scanned_units(fuzz::exact_block(stream), nal_length_size, scratch_size);
    const auto expected = literal::scan_frames(units, flags % 2 == 1);
    support::frame_scanner<fuzz::exact_block> scanner(stream, nal_length_size, scratch_size, flags);
    const auto frames = support::scan_frames(scanner);
    for (std::size_t i = 0; i < frames.size(); ++i)
        expect_sound(frames[i], i == 0 ? 0 : frames[i - 1].result, stream.size());
    fuzz::expect(frames == expected, "the frames are those of the literal scan");
    return 0;
}
