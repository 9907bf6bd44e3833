// The parse of pan-scan rectangle messages against the literal parse. Input: see expect_same_in_a_row().
#include "sei_sps.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    fuzz::expect_same_in_a_row(input, support::pan_scan_rect_parses());
    return 0;
}
