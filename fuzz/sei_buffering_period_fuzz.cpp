// The parse of buffering period messages against the literal parse. Input: a byte that says how many SPSs are stored,
// for each of them its id and what take_vui() takes, and then see expect_same_in_a_row().
#include "sei_sps.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    support::buffering_period_parses parses;
    for (unsigned int count = input.byte() % 4; count > 0; --count) {
        const unsigned char id = input.byte();
        parses.stored[id] = fuzz::take_vui(input);
    }
    fuzz::expect_same_in_a_row(input, parses);
    return 0;
}
