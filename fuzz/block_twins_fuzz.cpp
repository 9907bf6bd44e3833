// The blocks of every vector that this machine has: the walk from place to place against that in plain C++, where rows
// of places begin, and escapes dropped and inserted against a look at every byte. Input: a byte for the third byte that
// is searched for, one for how far a walk steps on, two bytes for the room of the output, high byte first, and the
// data.
#include "input.h"

#include "bytescan/bytescan.h"
#include "bytescan/escapes.h"

#include "support/all_runs.h"
#include "support/literal_escapes.h"

namespace {

using brenik::bytescan::milestone;
using brenik::bytescan::passage;
using brenik::bytescan::third_byte;

constexpr third_byte kinds[] = {{0, 3}, {0, 2}, {1, 0}, {3, 0}, {0, 0}, {0, 255}};

/// Where the walk finds its places.
template <typename Runs>
std::vector<std::size_t> places(const fuzz::exact_block& data, third_byte kind, std::size_t step)
{
    std::vector<std::size_t> found;
    brenik::bytescan::zero_pairs_of<Runs> pairs(data.begin(), data.end(), kind);
    for (const unsigned char* p = pairs.next(); p != data.end(); p = pairs.next()) {
        found.push_back(static_cast<std::size_t>(p - data.begin()));
        const std::size_t left = static_cast<std::size_t>(data.end() - p);
        pairs.resume(p + std::min(step, left));
    }
    return found;
}

/// And where rows of neighbouring places begin.
template <typename Runs>
std::vector<std::size_t> rows(const fuzz::exact_block& data, third_byte kind)
{
    std::vector<std::size_t> found;
    brenik::bytescan::place_rows_of<Runs> all(data.begin(), data.end(), kind);
    for (auto few = all.next_few(); !few.empty(); few = all.next_few())
        for (const unsigned char* const row : few)
            found.push_back(static_cast<std::size_t>(row - data.begin()));
    return found;
}

/// How far each kind goes before it leaves the rest to its callers is its own affair.
template <typename Runs>
void drop(const fuzz::exact_block& data, std::size_t room, bool few_first)
{
    const fuzz::exact_block out(room);
    passage at = {data.begin(), data.end(), out.begin(), out.end()};
    milestone behind_escape = {at.read, at.write};
    const bool met_end =
        (few_first && brenik::bytescan::take_first_few(at)) || brenik::bytescan::drop_escapes<Runs>(at, behind_escape);
    const fuzz::bytes all(data.begin(), data.end());
    const auto read = static_cast<std::size_t>(at.read - data.begin());
    const support::passed expected = support::escapes_dropped(all, read);
    fuzz::expect(expected.read == read && (!met_end || support::ends_unit(all, read)), "it stops where it says");
    fuzz::expect(expected.written == fuzz::bytes(out.begin(), at.write), "escapes are dropped");
    fuzz::expect(behind_escape.read == data.begin() + expected.behind_escape_read &&
                     behind_escape.write == out.begin() + expected.behind_escape_written,
                 "the last escape is where it says");
}

template <typename Runs>
void insert(const fuzz::exact_block& data, std::size_t room)
{
    const fuzz::exact_block out(room);
    passage at = {data.begin(), data.end(), out.begin(), out.end()};
    brenik::bytescan::insert_escapes<Runs>(at);
    const auto read = static_cast<std::size_t>(at.read - data.begin());
    const support::passed expected = support::escapes_inserted(fuzz::bytes(data.begin(), data.end()), read);
    fuzz::expect(expected.read == read, "it stops where it says");
    fuzz::expect(expected.written == fuzz::bytes(out.begin(), at.write), "escapes are inserted");
}

/// The data for every kind of run.
template <typename... Runs>
struct every {
    static void take(const fuzz::exact_block& data, third_byte kind, std::size_t step, std::size_t room)
    {
        const auto expected = places<support::plain_runs>(data, kind, step);
        std::vector<std::size_t> all_rows = places<support::plain_runs>(data, kind, 1);
        for (std::size_t i = all_rows.size(); i-- > 1;)
            if (all_rows[i] == all_rows[i - 1] + 1)
                all_rows.erase(all_rows.begin() + static_cast<std::ptrdiff_t>(i));
        const auto take_one = [&]<typename One>(const One*) {
            if (!support::can_run<One>())
                return;
            fuzz::expect(places<One>(data, kind, step) == expected, "both walks find the same places");
            fuzz::expect(rows<One>(data, kind) == all_rows, "both find the same rows");
            drop<One>(data, room, false);
            drop<One>(data, room, true);
            insert<One>(data, room);
        };
        (take_one(static_cast<const Runs*>(nullptr)), ...);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const third_byte kind = kinds[input.byte() % std::size(kinds)];
    const std::size_t step = std::size_t{1} + input.byte();
    const std::size_t room_high = input.byte();
    const std::size_t room = room_high % 16 * 256 + input.byte();
    const fuzz::exact_block block = input.rest_block();
    support::all_runs<every>::take(block, kind, step, room);
    return 0;
}
