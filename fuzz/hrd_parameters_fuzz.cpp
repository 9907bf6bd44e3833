// The parse of HRD parameters against the literal parse. Input: see expect_same_in_a_row().
#include "structure.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    fuzz::expect_same_in_a_row(input, support::hrd_parses());
    return 0;
}
