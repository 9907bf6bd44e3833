// The blocks of this machine against those in plain C++: the walk from place to place, and escapes dropped and
// inserted. Input: a byte for the third byte that is searched for, one for how far a walk steps on, two bytes for the
// room of the output, high byte first, and the data.
#include "input.h"

#include "bytescan/block_scalar.h"
#include "bytescan/bytescan.h"
#include "bytescan/escapes.h"

namespace {

using brenik::bytescan::milestone;
using brenik::bytescan::native_block;
using brenik::bytescan::passage;
using brenik::bytescan::scalar_block;
using brenik::bytescan::third_byte;

constexpr third_byte kinds[] = {{0, 3}, {0, 2}, {1, 0}, {3, 0}, {0, 0}, {0, 255}};

/// Where the walk finds its places.
template <typename Block>
std::vector<std::size_t> places(const fuzz::exact_block& data, third_byte kind, std::size_t step)
{
    std::vector<std::size_t> found;
    brenik::bytescan::zero_pairs_of<Block> pairs(data.begin(), data.end(), kind);
    for (const unsigned char* p = pairs.next(); p != data.end(); p = pairs.next()) {
        found.push_back(static_cast<std::size_t>(p - data.begin()));
        const std::size_t left = static_cast<std::size_t>(data.end() - p);
        pairs.resume(p + std::min(step, left));
    }
    return found;
}

/// What a passage leaves behind.
struct passed {
    std::size_t read;
    fuzz::bytes written;
    std::size_t behind_escape_read;
    std::size_t behind_escape_written;
    bool met_end;

    bool operator==(const passed&) const = default;
};

template <typename Block>
passed dropped(const fuzz::exact_block& data, std::size_t room)
{
    const fuzz::exact_block out(room);
    passage at = {data.begin(), data.end(), out.begin(), out.end()};
    milestone behind_escape = {at.read, at.write};
    const bool met_end = brenik::bytescan::drop_escapes<Block>(at, behind_escape);
    return {static_cast<std::size_t>(at.read - data.begin()), fuzz::bytes(out.begin(), at.write),
            static_cast<std::size_t>(behind_escape.read - data.begin()),
            static_cast<std::size_t>(behind_escape.write - out.begin()), met_end};
}

template <typename Block>
passed inserted(const fuzz::exact_block& data, std::size_t room)
{
    const fuzz::exact_block out(room);
    passage at = {data.begin(), data.end(), out.begin(), out.end()};
    brenik::bytescan::insert_escapes<Block>(at);
    return {static_cast<std::size_t>(at.read - data.begin()), fuzz::bytes(out.begin(), at.write), 0, 0, false};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const third_byte kind = kinds[input.byte() % std::size(kinds)];
    const std::size_t step = std::size_t{1} + input.byte();
    const std::size_t room_high = input.byte();
    const std::size_t room = room_high % 16 * 256 + input.byte();
    const fuzz::exact_block block(input.rest());
    fuzz::expect(places<native_block>(block, kind, step) == places<scalar_block>(block, kind, step),
                 "both walks find the same places");
    fuzz::expect(dropped<native_block>(block, room) == dropped<scalar_block>(block, room),
                 "both drop the same escapes");
    fuzz::expect(inserted<native_block>(block, room) == inserted<scalar_block>(block, room),
                 "both insert the same escapes");
    return 0;
}
