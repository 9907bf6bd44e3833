// The parse of picture parameter sets against the literal parse. Input: a byte that says how many SPSs are stored, two
// bytes for each of them (its id; its chroma_format_idc, and whether it is valid in the highest bit), and then see
// expect_same_in_a_row().
#include "structure.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    support::pps_parses parses;
    parses.stored.clear();
    for (unsigned int count = input.byte() % 4; count > 0; --count) {
        const unsigned char id = input.byte();
        const unsigned char sps = input.byte();
        parses.stored[id] = {sps >= 128, sps % 128};
    }
    fuzz::expect_same_in_a_row(input, parses);
    return 0;
}
